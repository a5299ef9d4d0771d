// Word-at-a-time helpers for the string functions (little-endian).
#pragma once

#include <stdint.h>

namespace kv::str {

using word = uint32_t __attribute__((may_alias));

inline bool aligned(const void *p) { return (reinterpret_cast<uintptr_t>(p) & 3) == 0; }
inline bool same_alignment(const void *a, const void *b) {
  return ((reinterpret_cast<uintptr_t>(a) ^ reinterpret_cast<uintptr_t>(b)) & 3) == 0;
}

// Non-zero exactly when some byte of w is zero (the borrow can only run upward from a true
// zero byte, so the test as a whole is exact).
inline uint32_t zero_bytes(uint32_t w) { return (w - 0x01010101u) & ~w & 0x80808080u; }

inline uint32_t repeat(unsigned char c) { return c * 0x01010101u; }

} // namespace kv::str
