// The five finalisation functions. The loader runs the finalisation array backwards and higher
// priorities sit later in it, so the numbers below give the order: the end routine first, the
// directory records last.
#include "bridge/debug_log.h"
#include "bridge/shutdown.h"
#include "net/host_entry.h"
#include "posix/directories.h"
#include "posix/environ.h"
#include "time/zone_copy.h"

namespace kv {
namespace {

__attribute__((destructor(105))) void library_end() {
  shutdown_core();
  debug_log("KV: (306) ***** </libc.so> *****\n");
}

__attribute__((destructor(104))) void host_entry_end() { net::release_host_entry(); }
__attribute__((destructor(103))) void time_end() { time::release_tz_copy(); }
__attribute__((destructor(102))) void environment_end() { env::release_environment(); }
__attribute__((destructor(101))) void directories_end() { dirs::release_directories(); }

} // namespace
} // namespace kv
