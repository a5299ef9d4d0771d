#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "stdio/retarget.h"

// Leaves the system side's position at the end; the engine always seeks before a transfer.
KV_FUNCTION(protected, long, _sys_flen, (int handle)) {
  kv::debug_log("KV: (379) _sys_flen( %d )\n", handle);
  return __syscall_lseek(handle, 0, KV_SEEK_END);
}

KV_FUNCTION(protected, int, _sys_seek, (int handle, long position)) {
  kv::debug_log("KV: (396) _sys_seek( %d, %ld )\n", handle, position);
  return static_cast<int>(__syscall_lseek(handle, position, KV_SEEK_SET));
}
