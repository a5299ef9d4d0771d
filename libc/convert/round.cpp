// The one place where extended results are rounded: to 64 bits (_e2e) or to a double (_e2d).
// Values below the normal range are denormalised before rounding.
#include "convert/btod.h"

using namespace kv::convert;

_btod_ext _e2e(_btod_wide w, int direction) {
  if (!w.mant)
    return make_ext(w.sign, 0, 0);
  int32_t e = w.exp;
  uint64_t m = w.mant, rest = w.rest;
  if (e <= 0) {
    shift_right_sticky(m, rest, 1 - e);
    e = 0;
  }
  if (rounds_up(rest, m & 1, direction)) {
    if (++m == 0) {
      m = 1ull << 63;
      ++e;
    } else if (e == 0 && m >> 63) {
      e = 1;
    }
  }
  if (e >= 0x7FFF)
    return make_ext(w.sign | kExtSpecial, 0x7FFF, 1ull << 63);
  return make_ext(w.sign, e, m);
}

double _e2d(_btod_wide w, int direction) {
  uint64_t sign = static_cast<uint64_t>(w.sign) << 32;
  if (!w.mant)
    return __builtin_bit_cast(double, sign);
  int32_t e = w.exp - kExtBias + 1023;
  uint64_t m = w.mant, rest = w.rest;
  shift_right_sticky(m, rest, 11);
  if (e <= 0) {
    shift_right_sticky(m, rest, 1 - e);
    e = 0;
  }
  if (rounds_up(rest, m & 1, direction)) {
    if (++m >> 53) {
      m >>= 1;
      ++e;
    } else if (e == 0 && m >> 52) {
      e = 1;
    }
  }
  if (e >= 0x7FF)
    return __builtin_bit_cast(double, sign | 0x7FFull << 52);
  return __builtin_bit_cast(double, sign | static_cast<uint64_t>(e) << 52 | (m & ((1ull << 52) - 1)));
}
