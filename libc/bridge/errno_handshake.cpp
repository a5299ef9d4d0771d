// The two cells, and the handshakes that tell the system side where to store into them.
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "support/export.h"

namespace {
int errno_cell;
int h_errno_cell;
} // namespace

KV_FUNCTION(weak, int *, __syscall_get_errno_addr, (void)) {
  kv::debug_log("KV: (248) sending internal errno address '%p' to system side\n", &errno_cell);
  if (__syscall_set_errno_addr(&errno_cell) == -1)
    kv::debug_log(
        "KV: (252) could not send errno address, errno might not be correctly updated\n");
  return &errno_cell;
}

KV_FUNCTION(weak, int *, __syscall_get_h_errno_addr, (void)) {
  kv::debug_log("KV: (187) sending internal h_errno address '%p' to system side\n", &h_errno_cell);
  if (__syscall_set_h_errno_addr(&h_errno_cell) == -1)
    kv::debug_log(
        "KV: (192) could not send h_errno address, h_errno might not be correctly updated\n");
  return &h_errno_cell;
}
