// Integer division kernels behind the EABI division helpers. They are pure (no traps, no
// library state) so that the same sources also build natively for differential tests. Callers
// handle a zero divisor before calling them.
#pragma once

#include <stdint.h>

namespace kv::rt {

struct udivmod32_t {
  uint32_t quot;
  uint32_t rem;
};
struct sdivmod32_t {
  int32_t quot;
  int32_t rem;
};
struct udivmod64_t {
  uint64_t quot;
  uint64_t rem;
};
struct sdivmod64_t {
  int64_t quot;
  int64_t rem;
};

// divisor != 0. Signed forms truncate toward zero; the remainder takes the dividend's sign;
// the most negative value divided by -1 wraps to itself with remainder 0.
udivmod32_t udivmod32(uint32_t dividend, uint32_t divisor);
sdivmod32_t sdivmod32(int32_t dividend, int32_t divisor);
udivmod64_t udivmod64(uint64_t dividend, uint64_t divisor);
sdivmod64_t sdivmod64(int64_t dividend, int64_t divisor);

} // namespace kv::rt
