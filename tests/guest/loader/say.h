// Output for the loader's test programs: straight to the console through the write entry point,
// so that the order of lines is the order of the calls.
#pragma once

#include <kv/syscall.h>

inline unsigned text_length(const char *s) {
  unsigned n = 0;
  while (s[n])
    ++n;
  return n;
}

inline void say(const char *s) { __syscall_write(1, s, text_length(s)); }

inline void say_line(const char *a, const char *b = "") {
  say(a);
  say(b);
  say("\n");
}
