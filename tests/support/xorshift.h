// The pseudo-random sequence of the randomized tests: small, fast and the same on every run.
#pragma once

#include <stdint.h>

namespace kvtest {

inline uint32_t xorshift32(uint32_t &state) {
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return state;
}

inline uint64_t xorshift64(uint64_t &state) {
  state ^= state << 13;
  state ^= state >> 7;
  state ^= state << 17;
  return state;
}

} // namespace kvtest
