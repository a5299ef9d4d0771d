// Greets through the write entry point: the smallest program for this environment.
#include <kv/syscall.h>

int main(int argc, char **argv) {
  static const char greeting[] = "Hello from the para-virtualised ARM world!\n";
  __syscall_write(1, greeting, sizeof greeting - 1);
  for (int i = 1; i < argc; ++i) {
    const char *arg = argv[i];
    size_t n = 0;
    while (arg[n])
      ++n;
    __syscall_write(1, "  argument: ", 12);
    __syscall_write(1, arg, n);
    __syscall_write(1, "\n", 1);
  }
  return 0;
}
