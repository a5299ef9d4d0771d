#include "kvtest.h"

#include <kv/syscall.h>

extern "C" const kvtest::Case __start_kvtest_cases[];
extern "C" const kvtest::Case __stop_kvtest_cases[];

namespace kvtest {
namespace {
int failures_in_case;
size_t length_of(const char *s) {
  size_t n = 0;
  while (s[n])
    ++n;
  return n;
}
// Whether the case's "Suite.Name" contains the filter text.
bool matches(const Case &c, const char *filter) {
  if (!filter)
    return true;
  char full[160];
  size_t n = 0;
  for (const char *p = c.suite; *p && n < sizeof full - 2; ++p)
    full[n++] = *p;
  full[n++] = '.';
  for (const char *p = c.name; *p && n < sizeof full - 1; ++p)
    full[n++] = *p;
  full[n] = 0;
  size_t fl = length_of(filter);
  for (size_t i = 0; i + fl <= n; ++i) {
    size_t k = 0;
    while (k < fl && full[i + k] == filter[k])
      ++k;
    if (k == fl)
      return true;
  }
  return false;
}
} // namespace

void out(const char *text, size_t length) {
  while (length) {
    int n = __syscall_write(1, text, length);
    if (n <= 0)
      return;
    text += n;
    length -= static_cast<size_t>(n);
  }
}
void out(const char *text) { out(text, length_of(text)); }

void out_udec(uint64_t value) {
  char buf[24];
  int i = sizeof buf;
  do {
    buf[--i] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value);
  out(buf + i, sizeof buf - i);
}

void out_dec(int64_t value) {
  if (value < 0) {
    out("-");
    out_udec(0 - static_cast<uint64_t>(value));
  } else {
    out_udec(static_cast<uint64_t>(value));
  }
}

void out_hex(uint64_t value) {
  char buf[16];
  int i = sizeof buf;
  do {
    buf[--i] = "0123456789abcdef"[value & 15];
    value >>= 4;
  } while (value);
  out(buf + i, sizeof buf - i);
}

bool str_equal(const char *a, const char *b) {
  if (!a || !b)
    return a == b;
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

void fail_header(const char *file, int line, const char *check) {
  out(file);
  out(":");
  out_dec(line);
  out(": ");
  out(check);
  out(" failed\n");
}

void fail_detail(const char *label, const char *text) {
  out("  ");
  out(label);
  out(" = ");
  if (text) {
    out("\"");
    out(text);
    out("\"");
  } else {
    out("(null)");
  }
  out("\n");
}

void note_failure() { ++failures_in_case; }

bool check_true(bool want, bool value, const char *text, const char *check, const char *file,
                int line) {
  if (value == want)
    return true;
  fail_header(file, line, check);
  out("  ");
  out(text);
  out(want ? " is false\n" : " is true\n");
  note_failure();
  return false;
}

bool check_str(const char *a, const char *b, const char *ta, const char *tb, const char *file,
               int line) {
  if (str_equal(a, b))
    return true;
  fail_header(file, line, "EXPECT_STREQ");
  fail_detail(ta, a);
  fail_detail(tb, b);
  note_failure();
  return false;
}

} // namespace kvtest

// Runs every TEST (or those whose "Suite.Name" contains argv[1]); exit status 0 only when
// nothing failed.
int main(int argc, char **argv) {
  const char *filter = argc > 1 ? argv[1] : nullptr;
  int passed = 0, failed = 0;
  for (const kvtest::Case *c = __start_kvtest_cases; c < __stop_kvtest_cases; ++c) {
    if (!kvtest::matches(*c, filter))
      continue;
    kvtest::failures_in_case = 0;
    c->body();
    if (kvtest::failures_in_case) {
      ++failed;
      kvtest::out("FAILED ");
    } else {
      ++passed;
      kvtest::out("ok     ");
    }
    kvtest::out(c->suite);
    kvtest::out(".");
    kvtest::out(c->name);
    kvtest::out("\n");
  }
  kvtest::out_dec(passed);
  kvtest::out(" passed, ");
  kvtest::out_dec(failed);
  kvtest::out(" failed\n");
  return failed ? 1 : 0;
}
