// A program or library that cannot be loaded, with the exit status kvrun reports for it.
#pragma once

#include <stdexcept>
#include <string>

namespace kvrun {

constexpr int kStatusCannotLoad = 126;
constexpr int kStatusNotFound = 127;

struct LoadError : std::runtime_error {
  LoadError(int status, const std::string &message) : std::runtime_error(message), status(status) {}
  int status;
};

} // namespace kvrun
