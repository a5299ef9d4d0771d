// One formatted case: what snprintf produced into a roomy buffer, checked byte for byte
// against the expectation together with the returned count.
#pragma once

#include <kvtest.h>
#include <stdarg.h>

#include "printf/printf.h"

struct Formatted {
  char text[160];
  int count;
};

inline Formatted format(const char *fmt, ...) {
  Formatted f;
  for (char &c : f.text)
    c = '\x7f';
  va_list args;
  va_start(args, fmt);
  f.count = vsnprintf(f.text, sizeof f.text, fmt, args);
  va_end(args);
  return f;
}

struct Case {
  Formatted got;
  const char *want; // may hold 0 bytes: `count` says how long it is
  int count;
};

inline void check_cases(const Case *cases, int n) {
  for (int i = 0; i < n; ++i) {
    const Case &c = cases[i];
    EXPECT_EQ(c.got.count, c.count);
    bool same = c.got.count == c.count && c.got.text[c.count] == 0;
    for (int k = 0; same && k < c.count; ++k)
      same = c.got.text[k] == c.want[k];
    if (!same) {
      kvtest::out("  case ");
      kvtest::out_dec(i);
      kvtest::out(": want '");
      kvtest::out(c.want, c.count > 0 ? c.count : 0);
      kvtest::out("'\n");
      EXPECT_STREQ(c.got.text, c.want);
    }
  }
}

#define CHECK_CASES(table) check_cases(table, static_cast<int>(sizeof table / sizeof table[0]))
