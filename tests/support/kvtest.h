// A freestanding test framework for guest programs: TEST(Suite, Name) bodies with EXPECT_* and
// ASSERT_* checks. It prints through the write entry point directly, so it depends on no stdio.
// Tests are collected through a linker section, so no static constructors are needed.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kvtest {

struct Case {
  const char *suite;
  const char *name;
  void (*body)();
};

// Output helpers (write straight to descriptor 1).
void out(const char *text);
void out(const char *text, size_t length);
void out_dec(int64_t value);
void out_udec(uint64_t value);
void out_hex(uint64_t value);

bool str_equal(const char *a, const char *b);
void fail_header(const char *file, int line, const char *check);
void fail_detail(const char *label, const char *text);
void note_failure();

// How a checked value is shown in a failure report.
template <typename T> void show(const char *label, const T &value) {
  out("  ");
  out(label);
  out(" = ");
  if constexpr (__is_pointer(T)) {
    out("0x");
    out_hex(reinterpret_cast<uintptr_t>(value));
  } else if constexpr (__is_enum(T)) {
    out_dec(static_cast<int64_t>(value));
  } else if constexpr (static_cast<T>(-1) < static_cast<T>(0)) {
    out_dec(static_cast<int64_t>(value));
    out(" (0x");
    out_hex(static_cast<uint64_t>(value) & (sizeof(T) == 8 ? ~0ull : (1ull << (8 * sizeof(T))) - 1));
    out(")");
  } else {
    out_udec(static_cast<uint64_t>(value));
    out(" (0x");
    out_hex(static_cast<uint64_t>(value));
    out(")");
  }
  out("\n");
}

template <typename A, typename B>
bool check_eq(bool want_equal, const A &a, const B &b, const char *ta, const char *tb,
              const char *check, const char *file, int line) {
  bool equal;
  if constexpr (__is_pointer(A) || __is_pointer(B))
    equal = (const void *)a == (const void *)b;
  else
    equal = a == b;
  if (equal == want_equal)
    return true;
  fail_header(file, line, check);
  show(ta, a);
  show(tb, b);
  note_failure();
  return false;
}

bool check_true(bool want, bool value, const char *text, const char *check, const char *file,
                int line);
bool check_str(const char *a, const char *b, const char *ta, const char *tb, const char *file,
               int line);

} // namespace kvtest

#define KVTEST_CONCAT2(a, b) a##b
#define KVTEST_CONCAT(a, b) KVTEST_CONCAT2(a, b)

#define TEST(suite, name)                                                                         \
  static void kvtest_##suite##_##name();                                                          \
  __attribute__((used, section("kvtest_cases"), aligned(4))) static const kvtest::Case           \
      kvtest_case_##suite##_##name = {#suite, #name, kvtest_##suite##_##name};                  \
  static void kvtest_##suite##_##name()

#define KVTEST_EQ(want, a, b, check, onfail)                                                      \
  do {                                                                                            \
    if (!kvtest::check_eq(want, (a), (b), #a, #b, check, __FILE__, __LINE__)) {                   \
      onfail;                                                                                     \
    }                                                                                             \
  } while (0)
#define KVTEST_BOOL(want, v, check, onfail)                                                       \
  do {                                                                                            \
    if (!kvtest::check_true(want, static_cast<bool>(v), #v, check, __FILE__, __LINE__)) {         \
      onfail;                                                                                     \
    }                                                                                             \
  } while (0)
#define KVTEST_STR(a, b, onfail)                                                                  \
  do {                                                                                            \
    if (!kvtest::check_str((a), (b), #a, #b, __FILE__, __LINE__)) {                               \
      onfail;                                                                                     \
    }                                                                                             \
  } while (0)

#define EXPECT_EQ(a, b) KVTEST_EQ(true, a, b, "EXPECT_EQ", (void)0)
#define EXPECT_NE(a, b) KVTEST_EQ(false, a, b, "EXPECT_NE", (void)0)
#define EXPECT_TRUE(v) KVTEST_BOOL(true, v, "EXPECT_TRUE", (void)0)
#define EXPECT_FALSE(v) KVTEST_BOOL(false, v, "EXPECT_FALSE", (void)0)
#define EXPECT_STREQ(a, b) KVTEST_STR(a, b, (void)0)
#define ASSERT_EQ(a, b) KVTEST_EQ(true, a, b, "ASSERT_EQ", return)
#define ASSERT_NE(a, b) KVTEST_EQ(false, a, b, "ASSERT_NE", return)
#define ASSERT_TRUE(v) KVTEST_BOOL(true, v, "ASSERT_TRUE", return)
#define ASSERT_FALSE(v) KVTEST_BOOL(false, v, "ASSERT_FALSE", return)
#define ASSERT_STREQ(a, b) KVTEST_STR(a, b, return)
