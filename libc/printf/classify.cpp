// Small helpers of the engine: the class of a double and the digit test.
#include "printf/state.h"

using namespace kv::printf;

KV_FUNCTION(protected, int, _fp_classify, (double value)) {
  uint64_t bits = __builtin_bit_cast(uint64_t, value) << 1;
  uint32_t e = static_cast<uint32_t>(bits >> 53);
  bool frac = (bits << 11) != 0;
  if (e == 0x7FF)
    return frac ? fp_nan : fp_infinite;
  if (e == 0)
    return frac ? fp_subnormal : fp_zero;
  return fp_normal;
}

KV_FUNCTION(protected, int, _is_digit, (int ch)) { return static_cast<unsigned>(ch - '0') < 10; }
