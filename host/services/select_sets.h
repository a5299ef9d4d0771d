// select on guest descriptors: the guest's fd_set words translated to host descriptors and back.
#pragma once

#include <chrono>
#include <optional>

#include "services/process.h"
#include "services/request.h"

namespace kvrun {

// select(nfds, read, write, except, _) with nfds > 0, waiting until `until` at the latest
// (none: until a descriptor is ready or the run's deadline).
Outcome select_descriptors(Process &, const Request &,
                           std::optional<std::chrono::steady_clock::time_point> until);

} // namespace kvrun
