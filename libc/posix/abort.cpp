// abort: signal 6 to this process, then leave with -1. Stream flushing and the shutdown core
// come with the signal runtime.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "posix/signal_calls.h"
#include "support/export.h"

KV_FUNCTION(global, void, abort, (void)) {
  raise(KV_SIGABRT);
  __syscall_exit(-1);
  __builtin_trap(); // a replaced exit that returns must not let the caller go on
}
