// Byte transfers by handle. Standard input and standard error have nothing to read on this
// system, so they answer end of file without asking the system side.
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "stdio/retarget.h"

KV_FUNCTION(protected, int, _sys_read, (int handle, unsigned char *buffer, unsigned length, int mode)) {
  using namespace kv::stdio;
  if (handle == kStdinHandle || handle == kStderrHandle) {
    kv::debug_log("KV: (301) causing explicit EOF for read std file %d for %d bytes\n", handle,
                  static_cast<int>(length));
    return kSysEofBit + static_cast<int>(length);
  }
  kv::debug_log("KV: (306) _sys_read( %d, %p, %d, %x )\n", handle, buffer,
                static_cast<int>(length), mode);
  int n = __syscall_read(handle, buffer, length);
  if (n == -1)
    return -1;
  kv::debug_log("KV: (311) _syscall_read returned: %d\n", n);
  return static_cast<int>(length) - n;
}

KV_FUNCTION(protected, int, _sys_write,
            (int handle, const unsigned char *buffer, unsigned length, int)) {
  int n = __syscall_write(handle, buffer, length);
  if (n == -1)
    return -1;
  return static_cast<int>(length) - n;
}
