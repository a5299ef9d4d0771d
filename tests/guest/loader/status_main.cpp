// Prints its arguments, one per line, and returns the number its first argument spells.
#include "say.h"

int main(int argc, char **argv) {
  for (int i = 0; i < argc; ++i)
    say_line("arg=", argv[i]);
  say_line(argv[argc] == nullptr ? "argv ends with null" : "argv not terminated");
  int value = 0;
  for (const char *p = argc > 1 ? argv[1] : ""; *p >= '0' && *p <= '9'; ++p)
    value = value * 10 + (*p - '0');
  return value;
}
