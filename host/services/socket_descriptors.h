// Socket descriptors in the guest's descriptor table, and waits that respect the run's deadline.
#pragma once

#include <cstdint>

#include "services/process.h"

namespace kvrun {

// The host socket behind a guest descriptor: >= 0, or minus the library's EBADF / ENOTSOCK.
int host_socket(const Process &, int32_t fd);
// Waits until the host descriptor is ready for `events` (poll flags), or the run's deadline:
// 0 when ready, the library's ETIMEDOUT when the deadline came first. Non-blocking sockets and
// `dont_wait` return at once.
int wait_until_ready(const Process &, int host_fd, short events, bool dont_wait);

} // namespace kvrun
