#include "bridge/shutdown.h"

#include <stdint.h>

#include "bridge/exceptions.h"
#include "runtime/exits.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"

namespace kv {

void shutdown_core() {
  run_destructors(nullptr);
  stdio::terminate_streams();
  release_exceptions();
}

} // namespace kv

KV_FUNCTION(global, void, _exit, (int status)) {
  kv::shutdown_core();
  _sys_exit(status);
}
