// Powers of ten for 0 <= n <= 852: n = 55h + l with |l| <= 27, so that 10^|l| is an exact
// product of the small powers and 10^55h a product of the rounded large ones.
#include "convert/btod.h"

namespace {

constexpr _btod_ext kOne = {0x3FFF, 0x80000000, 0};

// 10^0 to 10^27, exact: the products of the small powers, which 64 bits hold without rounding.
struct ExactPowers {
  _btod_ext p[28];
};
constexpr ExactPowers make_exact() {
  ExactPowers t{};
  uint64_t five = 1;
  for (int k = 0; k < 28; ++k, five *= 5) {
    int shift = __builtin_clzll(five);
    uint64_t m = five << shift;
    t.p[k] = {static_cast<uint32_t>(0x3FFF + k + 63 - shift), static_cast<uint32_t>(m >> 32),
              static_cast<uint32_t>(m)};
  }
  return t;
}
constexpr ExactPowers kExact = make_exact();

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
  _btod_ext a = kExact.p[l < 0 ? -l : l];
  _btod_ext b = kOne;
  bool large = h != 0;
  for (unsigned i = 0; h; h >>= 1, ++i) {
    if (!(h & 1))
      continue;
    _btod_ext p = kLarge[i].value;
    // Make the constant err the requested way.
    if (kLarge[i].error == -direction)
      p.ext_mant_lo += static_cast<uint32_t>(direction);
    // The first is taken as it is: 1 x p is exact.
    b = b.ext_sign_exp == kOne.ext_sign_exp ? p : _btod_emul(b, p, direction);
  }
  if (!large && l >= 0)
    *out = a; // 1 x a is a, exactly, in every direction
  else
    *out = l < 0 ? _btod_ediv(b, a, direction) : _btod_emul(b, a, direction);
}
