// Cost of a request: N calls of an entry point (getpid), or of an empty function through the
// same loop for calibration, or a pure computation loop for kvrun's instruction rate.
//   trap getpid N | trap empty N | trap spin N
#include <kv/syscall.h>

#include "bench_args.h"

extern "C" __attribute__((noinline)) int empty_call(void) {
  __asm__ volatile("");
  return 0;
}

int main(int argc, char **argv) {
  if (argc < 3)
    return 2;
  unsigned n = parse(argv[2]);
  int (*volatile fn)(void) = same(argv[1], "getpid") ? __syscall_getpid : empty_call;
  if (same(argv[1], "spin")) {
    volatile unsigned acc = 0;
    for (unsigned i = 0; i < n; ++i)
      acc = acc * 1664525u + 1013904223u;
    return 0;
  }
  for (unsigned i = 0; i < n; ++i)
    fn();
  return 0;
}
