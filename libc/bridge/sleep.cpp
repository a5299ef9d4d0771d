// The one entry point with logic of its own: a select on no descriptors with the wait as its
// time-out; when the wait ends early, the whole seconds that did pass.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <time.h>

#include "bridge/trap.h"
#include "support/export.h"

KV_FUNCTION(weak, int, __syscall_sleep, (unsigned seconds)) {
  // The whole wait is carried in the microseconds field as a 32-bit product.
  kv_timeval timeout = {0, static_cast<int32_t>(seconds * 1000000u)};
  time_t start = time(nullptr);
  int r = kv::bridge::trap(KV_SYS_sleep, 0, 0, 0, 0, &timeout, 0, 0);
  if (r != -1)
    return r;
  return static_cast<int>(time(nullptr) - start);
}
