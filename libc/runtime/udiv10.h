// Division by ten without a divide instruction: a shift-and-add reciprocal (0.75 * 17/16 *
// 257/256 * 65537/65536 / 8 just under 1/10) and one correction step. Pure, so the native
// tests build the same header.
#pragma once

#include <stdint.h>

namespace kv::rt {

template <typename T> struct div10_t {
  T quot;
  uint32_t rem;
};

inline div10_t<uint32_t> udiv10_32(uint32_t n) {
  uint32_t q = n - (n >> 2);
  q += q >> 4;
  q += q >> 8;
  q += q >> 16;
  q >>= 3;
  uint32_t r = n - q * 10;
  if (r >= 10)
    return {q + 1, r - 10};
  return {q, r};
}

inline div10_t<uint64_t> udiv10_64(uint64_t n) {
  uint64_t q = n - (n >> 2);
  q += q >> 4;
  q += q >> 8;
  q += q >> 16;
  q += q >> 32;
  q >>= 3;
  // The remainder is small: the low words suffice.
  uint32_t r = static_cast<uint32_t>(n) - static_cast<uint32_t>(q) * 10;
  if (r >= 10)
    return {q + 1, r - 10};
  return {q, r};
}

} // namespace kv::rt
