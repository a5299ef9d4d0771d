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

} // namespace kvrun::handlers
