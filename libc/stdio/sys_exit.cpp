#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "stdio/retarget.h"

KV_FUNCTION(protected, void, _sys_exit, (int status)) {
  kv::debug_log("KV: (434) _sys_exit( %d )", status);
  __syscall_exit(status);
  __builtin_trap(); // a replaced exit entry point that returns must not let the caller go on
}
