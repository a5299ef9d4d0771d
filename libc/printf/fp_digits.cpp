// Decimal digits of a double: at most 17 significant digits, correctly rounded to nearest.
// The value is scaled by a power of ten in extended precision so that the wanted digits form
// an integer; the estimate of the decimal exponent is corrected by retrying.
#include "convert/btod.h"
#include "printf/fp_exact.h"
#include "printf/state.h"

using namespace kv::convert;

namespace {

constexpr int kMaxDigits = 17;
// Beyond this many places any non-zero double has more than 17 digits before the cut.
constexpr int kMaxFixedPlaces = 340;
// Powers up to this are exact, so the kernel's rounding is the true one.
constexpr int kExactPower = 27;

// The value times 10^-s rounded to an integer, saturated to 2^63 - 1.
uint64_t scale(uint64_t bits, int s) {
  _btod_ext v = _btod_d2e(static_cast<uint32_t>(bits >> 32), static_cast<uint32_t>(bits));
  _btod_ext p;
  int k = s < 0 ? -s : s;
  // The rounding direction of this system is always to nearest.
  _btod_etento(&p, k, 0);
  int32_t ea = exponent(v), eb = exponent(p);
  // Exponents offset so that the result comes out denormalised: its significand is then the
  // integer itself, M * 2^-16445 with the unit at the last bit.
  _btod_ext a = make_ext(0, 1, mantissa(v));
  _btod_wide w;
  if (s > 0)
    w = __btod_div_common(a, make_ext(0, eb - ea + 16446, mantissa(p)));
  else
    w = __btod_mult_common(a, make_ext(0, ea + eb - 16446, mantissa(p)));
  if (w.exp >= 1)
    return (1ull << 63) - 1;
  uint64_t integer = w.mant, fraction = w.rest;
  shift_right_sticky(integer, fraction, 1 - w.exp);
  if (k > kExactPower) {
    // The power carries a rounding error of a few units in its last place; within that
    // distance of a half, decide exactly.
    int length = 64 - (integer ? __builtin_clzll(integer) : 64);
    uint64_t margin = length >= 59 ? ~0ull : 1ull << (length < 3 ? 8 : length + 5);
    uint64_t distance = fraction >> 63 ? fraction - (1ull << 63) : (1ull << 63) - fraction;
    if (distance <= margin) {
      uint32_t field = static_cast<uint32_t>(bits >> 52);
      uint64_t m = bits & ((1ull << 52) - 1);
      int q = -1074;
      if (field) {
        m |= 1ull << 52;
        q = static_cast<int>(field) - 1075;
      }
      int c = kv::printf::compare_with_half(m, q, s, integer);
      return integer + (c > 0 || (c == 0 && (integer & 1)));
    }
  }
  return integer + rounds_up(fraction, integer & 1, 0);
}

constexpr uint64_t kPow10[18] = {1ull,
                                 10ull,
                                 100ull,
                                 1000ull,
                                 10000ull,
                                 100000ull,
                                 1000000ull,
                                 10000000ull,
                                 100000000ull,
                                 1000000000ull,
                                 10000000000ull,
                                 100000000000ull,
                                 1000000000000ull,
                                 10000000000000ull,
                                 100000000000000ull,
                                 1000000000000000ull,
                                 10000000000000000ull,
                                 100000000000000000ull};

// The high 64 bits of a 64 x 64 product, from 32-bit halves.
uint64_t mul_high(uint64_t a, uint64_t b) {
  uint64_t al = static_cast<uint32_t>(a), ah = a >> 32;
  uint64_t bl = static_cast<uint32_t>(b), bh = b >> 32;
  uint64_t mid = (al * bl >> 32) + static_cast<uint32_t>(al * bh) + static_cast<uint32_t>(ah * bl);
  return ah * bh + (al * bh >> 32) + (ah * bl >> 32) + (mid >> 32);
}

// v / 10^8 for v < 2^64: (v / 2^8) / 5^8 by a reciprocal exact for 56-bit numerators.
uint64_t div_1e8(uint64_t v) { return mul_high(v >> 8, 0xABCC77118461CEFDull) >> 18; }

// The c digits of v < 10^c, leading zeros included, at out[0..c): eight at a time by a
// reciprocal, then two at a time by the multiply-high reciprocal of 100.
void write_digits(char *out, uint64_t v, int c) {
  while (c > 8) {
    uint64_t q = div_1e8(v);
    uint32_t low = static_cast<uint32_t>(v) - static_cast<uint32_t>(q) * 100000000u;
    c -= 8;
    for (char *p = out + c + 8; p != out + c; p -= 2) {
      uint32_t h = static_cast<uint32_t>(uint64_t{low} * 0x51EB851Fu >> 37);
      uint32_t r = low - h * 100;
      p[-1] = static_cast<char>('0' + r % 10);
      p[-2] = static_cast<char>('0' + r / 10);
      low = h;
    }
    v = q;
  }
  uint32_t w = static_cast<uint32_t>(v);
  for (char *p = out + c; p != out;) {
    uint32_t q = static_cast<uint32_t>(uint64_t{w} * 0xCCCCCCCDu >> 35);
    *--p = static_cast<char>('0' + (w - q * 10));
    w = q;
  }
}

// A lower bound of floor(log10(v)) for a normal v: log2 v from below, as the exponent and the
// first 20 fraction bits (m - 1 <= log2 m), times log10 2 rounded toward the bound.
int decimal_floor_bound(uint64_t bits) {
  int32_t l = (static_cast<int32_t>(bits >> 52) - 1023) * (1 << 20) + static_cast<int32_t>(bits >> 32 & 0xFFFFF);
  int64_t c = l >= 0 ? 1292913986 : 1292913987; // log10(2) 2^32
  return static_cast<int>((l * c) >> 52);
}

} // namespace

KV_FUNCTION(protected, void, _printf_fp_digits,
            (_fp_digits_result * result, char *buffer, double value, int n, int fixed)) {
  uint64_t bits = __builtin_bit_cast(uint64_t, value) & ~(1ull << 63);
  if (!bits) {
    if (fixed) {
      *result = {-n - 1, 0, 1};
      return;
    }
    for (int i = 0; i < n; ++i)
      buffer[i] = '0';
    *result = {0, n, 0};
    return;
  }
  // floor(log2(value) * 19728 / 65536), 19728/65536 being just under log10(2). A subnormal
  // counts from its leading bit, so that the estimate is never more than one too large.
  int field = static_cast<int>(bits >> 52);
  if (!field)
    field = 12 - __builtin_clzll(bits);
  int estimate = (field - 1023) * 19728 >> 16;
  if (fixed && n > kMaxFixedPlaces) {
    fixed = 0;
    n = kMaxDigits;
  }
  // Where the estimate falls short, the retry would only move it up: start there.
  if (bits >> 52) {
    int bound = decimal_floor_bound(bits);
    if (bound > estimate)
      estimate = bound;
  }
  for (;;) {
    uint64_t digits = scale(bits, fixed ? -n : estimate - n + 1);
    if (!fixed) {
      // A quotient would be left over after n digits: the estimate was one too small; a
      // leading '0': one too large.
      if (n <= kMaxDigits && digits >= kPow10[n]) {
        ++estimate;
        continue;
      }
      if (digits < kPow10[n - 1]) {
        --estimate;
        continue;
      }
      write_digits(buffer, digits, n);
      *result = {estimate, n, 0};
      return;
    }
    int count = 0;
    while (count < kMaxDigits && digits >= kPow10[count])
      ++count;
    if (count == kMaxDigits && digits >= kPow10[kMaxDigits]) {
      fixed = 0;
      n = kMaxDigits;
      continue;
    }
    write_digits(buffer, digits, count);
    *result = {count - n - 1, count, 1};
    return;
  }
}
