// Powers of ten for 0 <= n <= 852: n = 55h + l with |l| <= 27, so that 10^|l| is an exact
// product of the small powers and 10^55h a product of the rounded large ones.
#include "convert/btod.h"

namespace {

constexpr _btod_ext kOne = {0x3FFF, 0x80000000, 0};

constexpr _btod_ext kSmall[5] = {
    {0x4002, 0xA0000000, 0}, {0x4005, 0xC8000000, 0},          {0x400C, 0x9C400000, 0},
    {0x4019, 0xBEBC2000, 0}, {0x4034, 0x8E1BC9BF, 0x04000000},
};

// The fourth word is the sign of the constant's rounding error.
struct LargePower {
  _btod_ext value;
  int error;
};
constexpr LargePower kLarge[4] = {
    {{0x40B5, 0xD0CF4B50, 0xCFE20766}, 1},
    {{0x416C, 0xAA51823E, 0x34A7EEDF}, 1},
    {{0x42D9, 0xE2A0B5DC, 0x971F303A}, -1},
    {{0x45B4, 0xC8A025FD, 0x4FC1A3E9}, -1},
};

} // namespace

KV_FUNCTION(protected, void, _btod_etento, (_btod_ext * out, int n, int direction)) {
  unsigned t = static_cast<unsigned>(n + 7067);
  unsigned h = t / 55 - 128;
  int l = static_cast<int>(t % 55) - 27;
  _btod_ext a = kOne;
  for (unsigned bits = l < 0 ? -l : l, i = 0; bits; bits >>= 1, ++i)
    if (bits & 1)
      a = _btod_emul(a, kSmall[i], direction);
  _btod_ext b = kOne;
  for (unsigned i = 0; h; h >>= 1, ++i) {
    if (!(h & 1))
      continue;
    _btod_ext p = kLarge[i].value;
    // Make the constant err the requested way.
    if (kLarge[i].error == -direction)
      p.ext_mant_lo += static_cast<uint32_t>(direction);
    b = _btod_emul(b, p, direction);
  }
  *out = l < 0 ? _btod_ediv(b, a, direction) : _btod_emul(b, a, direction);
}
