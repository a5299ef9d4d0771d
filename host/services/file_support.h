// Shared by the file services: guest paths through the sandbox, open flags, stat records.
#pragma once

#include <kv/abi.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <vector>

#include "memory/protection.h"
#include "services/errno_names.h"
#include "services/process.h"
#include "services/request.h"

namespace kvrun::files {

// The failure for the host errno now set.
inline Outcome host_failure() { return failure(from_host_errno(errno)); }

// The open flags of the system side's encoding as host flags; false for an unknown bit or no
// access mode at all.
bool host_open_flags(uint32_t guest_flags, int &host_flags);

// Reads and parses the guest path at `addr` against the working directory. error is the
// library's EFAULT, ENAMETOOLONG, ENOENT... or 0.
GuestPath guest_path(const Process &p, uint32_t addr);

// The program's sandbox, attached to Process::root on first use; null (errno set) if the root
// cannot be opened.
Sandbox *sandbox(Process &p);

// Fills the record; false (EOVERFLOW) if a size or number does not fit.
bool to_guest_stat(const struct stat &st, kv_stat &out);
// stat and fstat's answer: the record of host descriptor `host` stored at guest `addr`.
Outcome store_stat(Process &p, int host, uint32_t addr);

// The host descriptor behind a guest file descriptor (not the console); -1 if there is none.
int file_fd(const Process &p, int32_t fd);

} // namespace kvrun::files
