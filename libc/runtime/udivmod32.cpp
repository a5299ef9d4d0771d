// Unsigned 32-bit division by shift-and-subtract: the target has no divide instruction.
#include "runtime/divide.h"

namespace kv::rt {

udivmod32_t udivmod32(uint32_t n, uint32_t d) {
  if (n < d)
    return {0, n};
  // Line the divisor's top bit up with the dividend's; one quotient bit per step from there.
  int steps = __builtin_clz(d) - __builtin_clz(n);
  d <<= steps;
  uint32_t q = 0;
  for (; steps >= 0; --steps) {
    uint32_t take = n >= d;
    n -= d & (0u - take);
    q = (q << 1) | take;
    d >>= 1;
  }
  return {q, n};
}

} // namespace kv::rt
