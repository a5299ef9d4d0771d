// 64-bit shifts and multiply on 32-bit words, as the EABI helpers compute them. Pure, so the
// native tests include this same header.
#pragma once

#include <stdint.h>

namespace kv::rt {

inline uint32_t low(uint64_t v) { return static_cast<uint32_t>(v); }
inline uint32_t high(uint64_t v) { return static_cast<uint32_t>(v >> 32); }
inline uint64_t join(uint32_t lo, uint32_t hi) { return lo | static_cast<uint64_t>(hi) << 32; }

// Shift counts of 64 and more shift every bit out, as the target's register shifts do up to
// 255; 32-bit shifts by 32 are not defined in C++, hence the split at 32.
inline uint64_t shl64(uint64_t v, uint32_t n) {
  uint32_t lo = low(v), hi = high(v);
  if (n >= 64)
    return 0;
  if (n >= 32)
    return join(0, lo << (n - 32));
  if (n == 0)
    return v;
  return join(lo << n, hi << n | lo >> (32 - n));
}

inline uint64_t lshr64(uint64_t v, uint32_t n) {
  uint32_t lo = low(v), hi = high(v);
  if (n >= 64)
    return 0;
  if (n >= 32)
    return join(hi >> (n - 32), 0);
  if (n == 0)
    return v;
  return join(lo >> n | hi << (32 - n), hi >> n);
}

inline int64_t ashr64(int64_t v, uint32_t n) {
  uint32_t lo = low(static_cast<uint64_t>(v));
  int32_t hi = static_cast<int32_t>(high(static_cast<uint64_t>(v)));
  uint32_t fill = static_cast<uint32_t>(hi >> 31);
  if (n >= 64)
    return static_cast<int64_t>(join(fill, fill));
  if (n >= 32)
    return static_cast<int64_t>(join(static_cast<uint32_t>(hi >> (n - 32)), fill));
  if (n == 0)
    return v;
  return static_cast<int64_t>(
      join(lo >> n | static_cast<uint32_t>(hi) << (32 - n), static_cast<uint32_t>(hi >> n)));
}

// Low 64 bits of the product: one 32x32->64 multiply and two 32-bit cross terms.
inline uint64_t mul64(uint64_t a, uint64_t b) {
  uint64_t p = static_cast<uint64_t>(low(a)) * low(b);
  return join(low(p), high(p) + low(a) * high(b) + high(a) * low(b));
}

} // namespace kv::rt
