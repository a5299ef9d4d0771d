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

// Restoring division, one quotient bit per step: 64 significand bits and 8 more, so that a
// caller can see how far the quotient lies from a rounding boundary.
_btod_wide __btod_div_common(const _btod_ext &a, const _btod_ext &b) {
  uint32_t sign = (a.ext_sign_exp ^ b.ext_sign_exp) & kExtSign;
  Unpacked x = unpack(a), y = unpack(b);
  if (!x.mant)
    return {sign, 0, 0, 0};
  if (!y.mant)
    return {sign, 0x7FFF, 1ull << 63, 0};
  int32_t e = x.exp - y.exp + kExtBias;
  uint64_t r = x.mant, d = y.mant;
  bool carry = false;
  if (r < d) {
    carry = r >> 63;
    r <<= 1;
    --e;
  }
  uint64_t q = 0;
  uint32_t extra = 0;
  for (int i = 0; i < 72; ++i) {
    bool bit = carry || r >= d;
    if (bit)
      r -= d;
    if (i < 64)
      q = q << 1 | bit;
    else
      extra = extra << 1 | bit;
    carry = r >> 63;
    r <<= 1;
  }
  return {sign, e, q, static_cast<uint64_t>(extra) << 56 | (carry || r != 0)};
}
