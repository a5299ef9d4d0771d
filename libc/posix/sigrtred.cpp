#include "bridge/debug_log.h"
#include "runtime/exits.h"
#include "support/export.h"

// A standard stream could not be attached to the console: nothing sensible can follow.
KV_FUNCTION(global, void, __rt_SIGRTRED, (const char *)) {
  kv::debug_log("KV: (173) __rt_SIGRTRED: Redirecting standard input, output, and error streams failed\n");
  __aeabi_assert("0", "kv_signal", 174);
}
