// "*** assertion failed: EXPR, file FILE, line N" on the console's error handle, then the
// process ends as abort ends it: signal 6, and if that comes back, exit status -1. Streams are
// not involved, so the report also works when they are the thing that failed.
#include "runtime/assertion.h"

#include <kv/abi.h>
#include <kv/syscall.h>
#include <stddef.h>

#include "posix/signal_calls.h"

namespace kv {

namespace {

constexpr int console_error = 2;

void put(const char *text) {
  size_t n = 0;
  while (text[n])
    ++n;
  __syscall_write(console_error, text, n);
}

} // namespace

void assertion_failed(const char *expression, const char *file, int line) {
  char digits[12];
  char *p = digits + sizeof digits;
  *--p = 0;
  *--p = '\n';
  for (; line > 0; line /= 10)
    *--p = static_cast<char>('0' + line % 10);
  put("*** assertion failed: ");
  put(expression);
  put(", file ");
  put(file);
  put(", line ");
  put(p);
  raise(KV_SIGABRT);
  __syscall_exit(-1);
  __builtin_unreachable();
}

} // namespace kv
