// The stack main starts with: the argument strings at the top, the argv array below them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "memory/address_space.h"

namespace kvrun {

struct InitialStack {
  uint32_t sp;   // 8-byte aligned, below everything
  uint32_t argv; // guest address of the null-terminated array
};

// Returns nothing when the arguments do not fit in `limit` bytes.
std::optional<InitialStack> build_initial_stack(AddressSpace &memory, uint32_t top, uint32_t limit,
                                                const std::vector<std::string> &args);

} // namespace kvrun
