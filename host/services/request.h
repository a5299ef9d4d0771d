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
  int error = 0;        // library errno to store; 0 stores nothing
  bool h_errno = false; // store into the h_errno cell rather than errno
};

inline Outcome success(uint32_t value) { return {value, 0, false}; }
// The usual failure: -1 (which is also MAP_FAILED) with the error.
inline Outcome failure(int error) { return {0xFFFFFFFFu, error, false}; }

} // namespace kvrun
