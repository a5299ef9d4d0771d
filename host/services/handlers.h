// The handlers of the standard services, by family; each family lives in its own file.
#pragma once

#include "services/process.h"
#include "services/request.h"

namespace kvrun::handlers {

// console.cpp
Outcome write(Process &, const Request &);
// process_control.cpp
Outcome exit(Process &, const Request &);
Outcome getpid(Process &, const Request &);
// errno_cells.cpp
Outcome set_errno_addr(Process &, const Request &);
Outcome set_h_errno_addr(Process &, const Request &);
// logging.cpp
Outcome syslog(Process &, const Request &);
Outcome puts(Process &, const Request &);
// clock.cpp
Outcome time(Process &, const Request &);
Outcome select(Process &, const Request &);
// environment.cpp
Outcome copy_environ(Process &, const Request &);
// memory_map.cpp
Outcome mmap(Process &, const Request &);
Outcome munmap(Process &, const Request &);
// system_info.cpp
Outcome sysconf(Process &, const Request &);

// file_descriptors.cpp
Outcome read(Process &, const Request &);
Outcome close(Process &, const Request &);
Outcome lseek(Process &, const Request &);
Outcome fstat(Process &, const Request &);
Outcome fsync(Process &, const Request &);
Outcome ftruncate(Process &, const Request &);
Outcome fcntl(Process &, const Request &);
// file_paths.cpp
Outcome open(Process &, const Request &);
Outcome stat(Process &, const Request &);
Outcome access(Process &, const Request &);
Outcome truncate(Process &, const Request &);
Outcome mkdir(Process &, const Request &);
Outcome rmdir(Process &, const Request &);
Outcome unlink(Process &, const Request &);
Outcome remove(Process &, const Request &);
Outcome rename(Process &, const Request &);
// working_directory.cpp
Outcome chdir(Process &, const Request &);
Outcome fchdir(Process &, const Request &);
Outcome getcwd(Process &, const Request &);
// directories.cpp
Outcome opendir(Process &, const Request &);
Outcome readdir(Process &, const Request &);
Outcome closedir(Process &, const Request &);

// sockets.cpp
Outcome socket(Process &, const Request &);
Outcome bind(Process &, const Request &);
Outcome connect(Process &, const Request &);
Outcome listen(Process &, const Request &);
Outcome accept(Process &, const Request &);
Outcome sendto(Process &, const Request &);
Outcome recvfrom(Process &, const Request &);
Outcome send(Process &, const Request &);
Outcome recv(Process &, const Request &);
Outcome getsockname(Process &, const Request &);
Outcome getpeername(Process &, const Request &);
Outcome getsockopt(Process &, const Request &);
Outcome setsockopt(Process &, const Request &);
// host_lookup.cpp
Outcome gethostbyname(Process &, const Request &);
Outcome gethostbyaddr(Process &, const Request &);
// clock.cpp
Outcome os_current_time_in_ms(Process &, const Request &);
// signals.cpp
Outcome kill(Process &, const Request &);
// spawn.cpp
Outcome posix_spawn(Process &, const Request &);
// shared_memory.cpp
Outcome shm_open(Process &, const Request &);
Outcome shm_unlink(Process &, const Request &);
// digest.cpp
Outcome sha(Process &, const Request &);

} // namespace kvrun::handlers
