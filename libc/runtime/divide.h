// The library's own 32-bit division: shift-and-subtract with a signed entry and an unsigned
// second entry into the same body (div32.S). The divisor must not be zero. Quotient and
// remainder come back in r0 and r1, which is how a 64-bit value travels, low word first.
#pragma once

#include <stdint.h>

namespace kv::rt {

uint64_t udiv32_pair(uint32_t n, uint32_t d) asm("__kv_udiv32");
uint64_t sdiv32_pair(int32_t n, int32_t d) asm("__kv_sdiv32");

struct udivmod32_t {
  uint32_t quot;
  uint32_t rem;
};
struct sdivmod32_t {
  int32_t quot;
  int32_t rem;
};

inline udivmod32_t udivmod32(uint32_t n, uint32_t d) {
  uint64_t r = udiv32_pair(n, d);
  return {static_cast<uint32_t>(r), static_cast<uint32_t>(r >> 32)};
}
// Truncates toward zero; the remainder takes the dividend's sign; INT_MIN / -1 wraps.
inline sdivmod32_t sdivmod32(int32_t n, int32_t d) {
  uint64_t r = sdiv32_pair(n, d);
  return {static_cast<int32_t>(r), static_cast<int32_t>(r >> 32)};
}

} // namespace kv::rt
