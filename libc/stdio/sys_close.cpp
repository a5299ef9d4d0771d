#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "stdio/retarget.h"

KV_FUNCTION(protected, int, _sys_close, (int handle)) {
  kv::debug_log("KV: (245) _sys_close( %d )\n", handle);
  if (kv::stdio::is_console(handle))
    return 0;
  return __syscall_close(handle);
}
