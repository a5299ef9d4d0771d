// Decimal digits of a double: at most 17 significant digits, correctly rounded to nearest.
// The value is scaled by a power of ten in extended precision so that the wanted digits form
// an integer; the estimate of the decimal exponent is corrected by retrying.
#include "convert/btod.h"
#include "printf/fp_exact.h"
#include "printf/state.h"
#include "runtime/udiv10.h"

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
  for (;;) {
    uint64_t digits = scale(bits, fixed ? -n : estimate - n + 1);
    if (!fixed) {
      for (int i = n; i-- > 0;) {
        kv::rt::div10_t<uint64_t> d = kv::rt::udiv10_64(digits);
        buffer[i] = static_cast<char>('0' + d.rem);
        digits = d.quot;
      }
      if (digits) {
        ++estimate;
        continue;
      }
      if (buffer[0] == '0') {
        --estimate;
        continue;
      }
      *result = {estimate, n, 0};
      return;
    }
    char reversed[kMaxDigits];
    int count = 0;
    for (; digits && count < kMaxDigits; ++count) {
      kv::rt::div10_t<uint64_t> d = kv::rt::udiv10_64(digits);
      reversed[count] = static_cast<char>('0' + d.rem);
      digits = d.quot;
    }
    if (digits) {
      fixed = 0;
      n = kMaxDigits;
      continue;
    }
    for (int i = 0; i < count; ++i)
      buffer[i] = reversed[count - 1 - i];
    *result = {count - n - 1, count, 1};
    return;
  }
}
