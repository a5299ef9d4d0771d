#include "bridge/errno_cells.h"
#include "stdio/retarget.h"

// No handle is a terminal; asking must not disturb errno.
KV_FUNCTION(protected, int, _sys_istty, (int handle)) {
  int saved = __read_errno();
  int answer = isatty(handle);
  __set_errno(saved);
  return answer;
}
