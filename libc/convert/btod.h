// The extended-precision kernel of decimal conversion: a sign-and-exponent word (bias 16383,
// bit 30 marks infinities and NaNs) and a 64-bit significand with an explicit integer bit.
// Biased exponent 0 holds denormalised values, M * 2^-16445, so that a caller can offset
// exponents and have a result rounded at the units position. Pure.
#pragma once

#include <stdint.h>

#include "support/export.h"

extern "C" {

struct _btod_ext {
  uint32_t ext_sign_exp;
  uint32_t ext_mant_hi;
  uint32_t ext_mant_lo;
};

// An unrounded result: `rest` holds the bits below `mant`, the first of them in its top bit,
// with any further non-zero bits folded into its lowest bit.
struct _btod_wide {
  uint32_t sign; // 0 or 0x80000000
  int32_t exp;   // biased; may leave the field's range before rounding
  uint64_t mant;
  uint64_t rest;
};

// Rounding directions: 0 nearest (ties to even), 1 away from zero, -1 toward zero.
KV_FUNCTION(protected, _btod_ext, _btod_d2e, (uint32_t high, uint32_t low));
KV_FUNCTION(protected, void, _btod_etento, (_btod_ext * out, int n, int direction));
KV_FUNCTION(protected, _btod_ext, _btod_emul, (_btod_ext a, _btod_ext b, int direction));
KV_FUNCTION(protected, _btod_ext, _btod_ediv, (_btod_ext a, _btod_ext b, int direction));
KV_FUNCTION(protected, double, _btod_emuld, (_btod_ext a, _btod_ext b, int direction));
KV_FUNCTION(protected, double, _btod_edivd, (_btod_ext a, _btod_ext b, int direction));

// Internal steps; `extra` quotient bits are delivered in `rest` by the division.
_btod_wide __btod_mult_common(const _btod_ext &a, const _btod_ext &b);
_btod_wide __btod_div_common(const _btod_ext &a, const _btod_ext &b);
_btod_ext _e2e(_btod_wide w, int direction);
double _e2d(_btod_wide w, int direction);
}

namespace kv::convert {

constexpr uint32_t kExtSpecial = 0x40000000; // infinity or NaN
constexpr uint32_t kExtSign = 0x80000000;
constexpr int32_t kExtBias = 16383;

inline uint64_t mantissa(const _btod_ext &e) {
  return static_cast<uint64_t>(e.ext_mant_hi) << 32 | e.ext_mant_lo;
}
inline int32_t exponent(const _btod_ext &e) { return static_cast<int32_t>(e.ext_sign_exp & 0x7FFF); }
inline _btod_ext make_ext(uint32_t sign, int32_t exp, uint64_t mant) {
  return {sign | static_cast<uint32_t>(exp), static_cast<uint32_t>(mant >> 32),
          static_cast<uint32_t>(mant)};
}

// Whether the bits below a kept significand whose last bit is `odd` make it round up.
inline bool rounds_up(uint64_t rest, bool odd, int direction) {
  bool guard = rest >> 63;
  if (rest << 1)
    return direction == 0 ? guard : direction > 0;
  return guard && odd; // an exact half goes to the even neighbour in every direction
}

// (hi:lo) >> n for 0 < n, the bits shifted out of lo folded into its lowest bit.
inline void shift_right_sticky(uint64_t &hi, uint64_t &lo, int n) {
  if (n <= 0)
    return;
  if (n >= 128) {
    lo = (hi | lo) != 0;
    hi = 0;
  } else if (n >= 64) {
    uint64_t lost = lo | (n > 64 ? hi << (128 - n) : 0);
    lo = (n == 64 ? hi : hi >> (n - 64)) | (lost != 0);
    hi = 0;
  } else {
    bool lost = (lo << (64 - n)) != 0;
    lo = (lo >> n | hi << (64 - n)) | lost;
    hi >>= n;
  }
}

} // namespace kv::convert
