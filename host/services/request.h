// One trap: the call number and seven words in, a result word and perhaps an error out.
#pragma once

#include <array>
#include <cstdint>

namespace kvrun {

struct Request {
  int32_t number;
  std::array<uint32_t, 7> w;
};

struct Outcome {
  uint32_t value;
  int error = 0;   // library errno to store; 0 stores nothing
  int h_error = 0; // h_errno to store (host lookups); 0 stores nothing
};

inline Outcome success(uint32_t value) { return {value, 0, 0}; }
// The usual failure: -1 (which is also MAP_FAILED) with the error.
inline Outcome failure(int error) { return {0xFFFFFFFFu, error, 0}; }

} // namespace kvrun
