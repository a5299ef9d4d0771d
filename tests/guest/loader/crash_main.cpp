// Stops on the fault its argument names: read (null pointer), write (read-only data),
// jump (call through a null pointer), undefined (an undefined instruction).
#include "say.h"

extern "C" {
__attribute__((noinline)) int crash_here(volatile int *p) { return *p; }
__attribute__((noinline)) void write_here(volatile char *p) { *p = 'x'; }
__attribute__((noinline)) void undefined_here() { __asm__ volatile(".inst.n 0xde01"); }
}

static const char read_only[] = "constant";
static void (*volatile null_function)();

static bool same(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

int main(int argc, char **argv) {
  const char *what = argc > 1 ? argv[1] : "read";
  if (same(what, "read"))
    return crash_here(nullptr);
  if (same(what, "write"))
    write_here(const_cast<char *>(read_only));
  else if (same(what, "jump"))
    null_function();
  else if (same(what, "undefined"))
    undefined_here();
  say("no fault\n");
  return 0;
}
