// Double to extended: exact. Subnormals are normalised; infinities and NaNs keep their bits and
// are marked special so that the arithmetic passes them through.
#include "convert/btod.h"

using namespace kv::convert;

KV_FUNCTION(protected, _btod_ext, _btod_d2e, (uint32_t high, uint32_t low)) {
  uint32_t sign = high & kExtSign;
  int32_t e = static_cast<int32_t>(high >> 20 & 0x7FF);
  uint64_t frac = (static_cast<uint64_t>(high & 0xFFFFF) << 32 | low) << 11;
  if (e == 0x7FF)
    return make_ext(sign | kExtSpecial, 0x7FFF, frac | 1ull << 63);
  if (e == 0) {
    if (frac == 0)
      return make_ext(sign, 0, 0);
    int shift = __builtin_clzll(frac);
    return make_ext(sign, 1 - 1023 + kExtBias - shift, frac << shift);
  }
  return make_ext(sign, e - 1023 + kExtBias, frac | 1ull << 63);
}
