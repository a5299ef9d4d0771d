// White-box: the report of a failed internal check, as the native locale would give it. The
// process must end inside the report.
#include <kv/syscall.h>

#include "runtime/assertion.h"

extern "C" int main() {
  kv::assertion_failed("ret", "kv_locale", 215);
  __syscall_write(1, "returned\n", 9);
  return 0;
}
