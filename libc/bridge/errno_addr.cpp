// The address accessors: the handshake runs on first use; a handshake that answers 0 is asked
// again next time.
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "support/export.h"

namespace {
int *errno_cache;
int *h_errno_cache;
} // namespace

KV_FUNCTION(global, int *, ___aeabi_errno_addr, (void)) {
  if (!errno_cache) {
    errno_cache = __syscall_get_errno_addr();
    kv::debug_log("KV: (273) using errno from address %p\n", errno_cache);
  }
  return errno_cache;
}

KV_FUNCTION(global, int *, ___h_errno_addr, (void)) {
  if (!h_errno_cache) {
    h_errno_cache = __syscall_get_h_errno_addr();
    kv::debug_log("KV: (346) Using h_errno from address %p\n", h_errno_cache);
  }
  return h_errno_cache;
}
