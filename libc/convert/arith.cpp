// Extended multiplication and division before rounding. Operands are normalised first so that
// denormalised inputs (biased exponent 0) work too.
#include "convert/btod.h"

using namespace kv::convert;

namespace {

struct Unpacked {
  int32_t exp;
  uint64_t mant;
};

Unpacked unpack(const _btod_ext &x) {
  int32_t e = exponent(x);
  uint64_t m = mantissa(x);
  if (e == 0)
    e = 1;
  if (m && !(m >> 63)) {
    int shift = __builtin_clzll(m);
    m <<= shift;
    e -= shift;
  }
  return {e, m};
}

// 64 x 64 -> 128 from 32-bit halves, which is what the target multiplies natively.
void mul_64x64(uint64_t a, uint64_t b, uint64_t &hi, uint64_t &lo) {
  uint64_t al = static_cast<uint32_t>(a), ah = a >> 32;
  uint64_t bl = static_cast<uint32_t>(b), bh = b >> 32;
  uint64_t ll = al * bl, lh = al * bh, hl = ah * bl, hh = ah * bh;
  uint64_t mid = (ll >> 32) + static_cast<uint32_t>(lh) + static_cast<uint32_t>(hl);
  lo = (mid << 32) | static_cast<uint32_t>(ll);
  hi = hh + (lh >> 32) + (hl >> 32) + (mid >> 32);
}

} // namespace

_btod_wide __btod_mult_common(const _btod_ext &a, const _btod_ext &b) {
  uint32_t sign = (a.ext_sign_exp ^ b.ext_sign_exp) & kExtSign;
  Unpacked x = unpack(a), y = unpack(b);
  if (!x.mant || !y.mant)
    return {sign, 0, 0, 0};
  uint64_t hi, lo;
  mul_64x64(x.mant, y.mant, hi, lo);
  int32_t e = x.exp + y.exp - kExtBias + 1;
  if (!(hi >> 63)) {
    hi = hi << 1 | lo >> 63;
    lo <<= 1;
    --e;
  }
  return {sign, e, hi, lo};
}

namespace {

// 2^62 / (dh + 1) from below, within a few units: a linear first guess (48/17 - 32/17 x, good
// to 4 bits) and three Newton steps. Every step stays at or below the true value, so the
// quotient digits estimated from it are never too large.
uint32_t reciprocal(uint32_t dh) {
  uint64_t d = uint64_t{dh} + 1;
  int64_t y = 3031545014 - static_cast<int64_t>(d * 2021161081u >> 32);
  for (int i = 0; i < 3; ++i) {
    int64_t e = static_cast<int64_t>((1ull << 62) - d * static_cast<uint64_t>(y));
    y += (y * (e >> 30)) >> 32;
  }
  return static_cast<uint32_t>(y);
}

// One quotient digit of k <= 16 bits: q = floor(r 2^k / d) and r = r 2^k - q d, for r < d. The
// estimate from the top word falls short by at most a few units; the exact remainder fixes it.
uint32_t quotient_digit(uint64_t &r, uint64_t d, uint32_t y, int k) {
  uint32_t q = static_cast<uint32_t>(uint64_t{static_cast<uint32_t>(r >> 32)} * y >> (62 - k));
  uint64_t pl = uint64_t{q} * static_cast<uint32_t>(d), ph = uint64_t{q} * static_cast<uint32_t>(d >> 32);
  uint64_t qd = pl + (ph << 32);
  uint32_t qd_top = static_cast<uint32_t>(ph >> 32) + (qd < pl);
  uint64_t n = r << k;
  uint32_t top = static_cast<uint32_t>(r >> (64 - k)) - qd_top - (n < qd);
  uint64_t rest = n - qd;
  while (top || rest >= d) {
    top -= rest < d;
    rest -= d;
    ++q;
  }
  r = rest;
  return q;
}

} // namespace

// 64 significand bits of the quotient and 8 more, so that a caller can see how far it lies
// from a rounding boundary, then a sticky bit. The first bit comes from the normalisation, the
// other 71 as 16-bit digits estimated with a reciprocal and corrected exactly.
_btod_wide __btod_div_common(const _btod_ext &a, const _btod_ext &b) {
  uint32_t sign = (a.ext_sign_exp ^ b.ext_sign_exp) & kExtSign;
  Unpacked x = unpack(a), y = unpack(b);
  if (!x.mant)
    return {sign, 0, 0, 0};
  if (!y.mant)
    return {sign, 0x7FFF, 1ull << 63, 0};
  int32_t e = x.exp - y.exp + kExtBias;
  uint64_t d = y.mant;
  if (x.mant < d)
    --e; // the numerator is taken twice; modulo 2^64 the first remainder comes out right
  uint64_t r = (x.mant < d ? x.mant << 1 : x.mant) - d;
  uint32_t inv = reciprocal(static_cast<uint32_t>(d >> 32));
  uint64_t q = 1ull << 63;
  for (int shift = 47; shift >= 15; shift -= 16)
    q |= uint64_t{quotient_digit(r, d, inv, 16)} << shift;
  uint32_t last = quotient_digit(r, d, inv, 16);
  q |= last >> 1;
  uint32_t extra = (last & 1) << 7 | quotient_digit(r, d, inv, 7);
  return {sign, e, q, static_cast<uint64_t>(extra) << 56 | (r != 0)};
}
