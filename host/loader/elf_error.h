// Why a file could not be used: a message that names the problem (the caller adds the file).
#pragma once

#include <stdexcept>
#include <string>

namespace kvrun {

struct ElfError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

} // namespace kvrun
