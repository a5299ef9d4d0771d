// White-box: the library's own classification functions, setlocale and localeconv, the native
// locale, and the decimal point that the formatting engines read.
#define __KV_LIBC_SOURCE
#include <kvtest.h>
#include <locale.h>

#include "expected_classes.h"
#include "locale/classify.h"
#include "locale/locale_access.h"
#include "locale/record.h"
#include "locale/setlocale.h"

extern "C" {
struct lconv *localeconv(void);
extern const unsigned char __ctype[256];
const unsigned char **__rt_ctype_table(void);
}

namespace {

char *const none = nullptr;

const expect::Functions library_functions = {
    isalnum, isalpha, iscntrl, isdigit, isgraph, islower, isprint,
    ispunct, isspace, isupper, isxdigit, isblank, tolower, toupper,
};

void start_initial() { kv::locale::init_record(); }

} // namespace

TEST(Internal, ClassificationInBothTables) {
  start_initial();
  expect::check_functions(library_functions, false);
  expect::check_mappings(library_functions, expect::c_mappings);
  ASSERT_NE(setlocale(LC_CTYPE, "ISO8859-1"), none);
  expect::check_functions(library_functions, true);
  expect::check_mappings(library_functions, expect::latin1_mappings);
  start_initial();
}

// Outside -1..255 a character has no class and maps to itself, in either table.
TEST(Internal, OutOfRangeCharacters) {
  const int outside[] = {-2, -128, 256, 0x141, -0xbf};
  for (int pass = 0; pass < 2; ++pass) {
    start_initial();
    if (pass)
      setlocale(LC_CTYPE, "");
    for (int c : outside) {
      EXPECT_EQ(isprint(c), 0);
      EXPECT_EQ(iscntrl(c), 0);
      EXPECT_EQ(tolower(c), c);
      EXPECT_EQ(toupper(c), c);
    }
  }
  start_initial();
}

// The empty name sets each category of the mask to its native locale, then answers the query.
TEST(Internal, NativeLocale) {
  struct Case {
    int mask;
    const char *names[5]; // collate, ctype, monetary, numeric, time afterwards
  };
  const Case cases[] = {
      {LC_ALL, {"ISO8859-1", "ISO8859-1", "ISO8859-1", "ISO8859-1", "C"}},
      {LC_NUMERIC, {"C", "C", "C", "ISO8859-1", "FI"}},
      {LC_TIME, {"C", "C", "C", "C", "C"}},
      {LC_COLLATE | LC_MONETARY, {"ISO8859-1", "C", "ISO8859-1", "C", "FI"}},
  };
  const int masks[] = {LC_COLLATE, LC_CTYPE, LC_MONETARY, LC_NUMERIC, LC_TIME};
  for (const Case &c : cases) {
    start_initial();
    setlocale(LC_TIME, "FI"); // so that the native time locale shows
    char *got = kv::locale::set_native_locale(c.mask, "");
    ASSERT_NE(got, none);
    if (c.mask & (c.mask - 1))
      EXPECT_EQ(got[0], '*');
    for (int i = 0; i < 5; ++i)
      EXPECT_STREQ(setlocale(masks[i], nullptr), c.names[i]);
  }
  // Any other name is passed on as it is.
  start_initial();
  EXPECT_EQ(kv::locale::set_native_locale(LC_CTYPE, "C"), none);
  EXPECT_STREQ(kv::locale::set_native_locale(LC_TIME, "FI"), "FI");
  EXPECT_STREQ(kv::locale::set_native_locale(LC_TIME, nullptr), "FI");
  start_initial();
}

namespace {
// A numeric block of our own, as the library lays its blocks out: size, name, name offset,
// then the three string offsets and the strings.
struct alignas(4) OwnNumeric {
  uint32_t size = sizeof(OwnNumeric);
  char name[4] = {'X', 0, 0, 0};
  int32_t name_offset = -8;
  uint32_t offsets[3] = {12, 14, 16};
  char strings[4] = {',', 0, '.', 0};
  char grouping[4] = {3, 0, 0, 0};
};
const OwnNumeric own_numeric;

char hex_digit(unsigned v) { return "0123456789abcdef"[v & 15]; }
} // namespace

// The engines read the decimal point of whatever block the numeric slot holds.
TEST(Internal, DecimalPointOfTheCurrentNumericBlock) {
  start_initial();
  EXPECT_EQ(kv::locale::decimal_point(), '.');
  setlocale(LC_NUMERIC, "ISO8859-1");
  EXPECT_EQ(kv::locale::decimal_point(), '.');

  char name[42];
  const char *q = setlocale(LC_ALL, nullptr);
  for (int i = 0; i < 42; ++i)
    name[i] = q[i];
  auto address = reinterpret_cast<unsigned>(own_numeric.offsets);
  for (int i = 0; i < 8; ++i)
    name[1 + 8 * 3 + i] = hex_digit(address >> (28 - 4 * i));
  ASSERT_STREQ(setlocale(LC_NUMERIC, name), "X");
  EXPECT_EQ(kv::locale::decimal_point(), ',');
  EXPECT_STREQ(localeconv()->thousands_sep, ".");
  start_initial();
  EXPECT_EQ(kv::locale::decimal_point(), '.');
}

// The record's slots, as start-up leaves them: a zero collate slot and the "C" class table.
TEST(Internal, InitialRecord) {
  start_initial();
  EXPECT_TRUE(kv::locale::record[kv::locale::slot_collate] == nullptr);
  EXPECT_EQ(kv::locale::class_table(), &__ctype[0]);
  EXPECT_EQ(__rt_ctype_table(), &kv::locale::record[kv::locale::slot_ctype]);
}
