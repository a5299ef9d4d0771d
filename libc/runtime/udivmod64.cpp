// Unsigned 64-bit division by shift-and-subtract, with the common narrow cases kept short.
#include "runtime/divide.h"

namespace kv::rt {

udivmod64_t udivmod64(uint64_t n, uint64_t d) {
  if (n < d)
    return {0, n};
  // d <= n < 2^32: the 32-bit kernel takes a third of the work.
  if ((n >> 32) == 0) {
    udivmod32_t r = udivmod32(static_cast<uint32_t>(n), static_cast<uint32_t>(d));
    return {r.quot, r.rem};
  }
  int steps = __builtin_clzll(d) - __builtin_clzll(n);
  d <<= steps;
  uint64_t q = 0;
  for (; steps >= 0; --steps) {
    uint64_t take = n >= d;
    n -= d & (0 - take);
    q = (q << 1) | take;
    d >>= 1;
  }
  return {q, n};
}

} // namespace kv::rt
