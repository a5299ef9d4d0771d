// The class tables as a program sees them through libc.so: the exported table pointer and
// "C" table, and the inline tests of <ctype.h>, in the initial table and in ISO8859-1.
#include <ctype.h>
#include <kvtest.h>
#include <locale.h>
#include <stdint.h>

#include "expected_classes.h"

extern "C" {
int _mbrtowc(uint16_t *out, int byte, void *state);
int _wcrtomb(char *out, int wide, void *state);
}

namespace {

const expect::Functions header_functions = {
    isalnum, isalpha, iscntrl, isdigit, isgraph, islower, isprint,
    ispunct, isspace, isupper, isxdigit, isblank, tolower, toupper,
};

// Every test starts from the initial locale, whatever the one before it left.
void start_initial() {
  static char initial[42];
  static bool saved;
  if (!saved) {
    char *q = setlocale(LC_ALL, nullptr);
    for (int i = 0; i < 42; ++i)
      initial[i] = q[i];
    saved = true;
  }
  setlocale(LC_ALL, initial);
}

void use_latin1() {
  start_initial();
  setlocale(LC_CTYPE, "ISO8859-1");
}

void check_table(const unsigned char *table, bool latin1) {
  EXPECT_EQ(table[-1], 0); // end of file has no class
  for (int c = 0; c < 256; ++c) {
    if (table[c] != expect::class_byte(c, latin1)) {
      EXPECT_EQ(c, -1); // names the character in the report
      EXPECT_EQ(table[c], expect::class_byte(c, latin1));
    }
  }
}

} // namespace

TEST(Classes, InitialTableIsTheExportedC) {
  start_initial();
  EXPECT_EQ(*__rt_ctype_table(), &__ctype[0]);
  check_table(__ctype, false);
}

TEST(Classes, Latin1Table) {
  use_latin1();
  const unsigned char *table = *__rt_ctype_table();
  EXPECT_NE(table, &__ctype[0]);
  check_table(table, true);
  // The "C" table itself is untouched by the switch.
  check_table(__ctype, false);
}

TEST(Classes, InlineTestsInC) {
  start_initial();
  expect::check_functions(header_functions, false);
  expect::check_mappings(header_functions, expect::c_mappings);
}

TEST(Classes, InlineTestsInLatin1) {
  use_latin1();
  expect::check_functions(header_functions, true);
  expect::check_mappings(header_functions, expect::latin1_mappings);
}

// Digit is an exact class; xdigit wants exactly one of the digit and hex-letter bits.
TEST(Classes, DigitsAndHexDigits) {
  start_initial();
  const char *hex = "0123456789abcdefABCDEF";
  for (const char *p = hex; *p; ++p)
    EXPECT_TRUE(isxdigit(*p));
  for (const char *p = "gGzZ+- x."; *p; ++p)
    EXPECT_FALSE(isxdigit(*p));
  for (int c = -1; c < 256; ++c)
    EXPECT_EQ(isdigit(c) != 0, c >= '0' && c <= '9');
}

namespace {
struct MbCase {
  int value, c_result, latin1_result;
};
// A byte is a character when its class byte is not zero; 0 is a control character.
const MbCase mb_cases[] = {
    {0, 1, 1},     {'A', 1, 1},    {0x7f, 1, 1},   {0x80, -1, 1},  {0x9f, -1, 1},
    {0xa0, -1, 1}, {0xdf, -1, 1},  {0xff, -1, 1},  {0x100, -1, -1}, {0x141, -1, -1},
};
} // namespace

TEST(Classes, SingleByteConversionFollowsTheTable) {
  for (int pass = 0; pass < 2; ++pass) {
    if (pass)
      use_latin1();
    else
      start_initial();
    for (const MbCase &m : mb_cases) {
      int want = pass ? m.latin1_result : m.c_result;
      char byte = '#';
      EXPECT_EQ(_wcrtomb(&byte, m.value, nullptr), want);
      EXPECT_EQ(byte, want == 1 ? static_cast<char>(m.value) : '#');
      if (m.value < 256) {
        uint16_t wide = 0xbeef;
        EXPECT_EQ(_mbrtowc(&wide, m.value, nullptr), want);
        EXPECT_EQ(wide, want == 1 ? m.value : 0xbeef);
      }
    }
  }
}
