#include <kv/abi.h>

#include "bridge/errno_cells.h"
#include "support/export.h"

// The console is no terminal either: line buffering of the standard streams comes from start-up.
KV_FUNCTION(global, int, isatty, (int fd)) {
  __set_errno(fd < 0 ? KV_EBADF : KV_ENOTTY);
  return 0;
}
