// The class tables against the host C library: its "C" locale for the ASCII half, and its
// wide-character classes (whose first 256 codes are ISO8859-1) for the upper half.
#include <ctype.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <wctype.h>

#include "locale/blocks.h"

namespace {

using namespace kv::locale;

struct Bits {
  bool space, punct, lower, upper, digit, control, hex;
};

Bits bits_of(unsigned char k) {
  return {(k & class_space) != 0, (k & class_punct) != 0,   (k & class_lower) != 0,
          (k & class_upper) != 0, (k & class_digit) != 0,   (k & class_control) != 0,
          (k & class_hex) != 0};
}

void expect_same(const Bits &ours, const Bits &host, int c) {
  EXPECT_EQ(ours.space, host.space) << "character " << c;
  EXPECT_EQ(ours.punct, host.punct) << "character " << c;
  EXPECT_EQ(ours.lower, host.lower) << "character " << c;
  EXPECT_EQ(ours.upper, host.upper) << "character " << c;
  EXPECT_EQ(ours.digit, host.digit) << "character " << c;
  EXPECT_EQ(ours.control, host.control) << "character " << c;
  EXPECT_EQ(ours.hex, host.hex) << "character " << c;
}

} // namespace

TEST(NativeLocaleTables, AsciiHalfMatchesTheHostC) {
  ASSERT_NE(setlocale(LC_ALL, "C"), nullptr);
  for (const unsigned char *table : {ctype_c + 1, ctype_iso8859_1 + 1}) {
    for (int c = 0; c < 128; ++c) {
      Bits host = {isspace(c) != 0, ispunct(c) != 0, islower(c) != 0, isupper(c) != 0,
                   isdigit(c) != 0, iscntrl(c) != 0, isxdigit(c) && !isdigit(c)};
      expect_same(bits_of(table[c]), host, c);
      EXPECT_EQ((table[c] & class_blank) != 0, c == ' ') << c;
    }
    EXPECT_EQ(table[-1], 0);
  }
  for (int c = 128; c < 256; ++c)
    EXPECT_EQ(ctype_c[1 + c], 0) << c;
}

// Where this system's table deliberately differs from Unicode's view of ISO8859-1: the ordinal
// indicators and the micro sign are punctuation here, sharp s is upper case, and no-break space
// is white space.
TEST(NativeLocaleTables, UpperHalfMatchesHostWideClasses) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  const unsigned char *table = ctype_iso8859_1 + 1;
  for (int c = 128; c < 256; ++c) {
    Bits host = {iswspace(c) != 0, iswpunct(c) != 0, iswlower(c) != 0, iswupper(c) != 0,
                 false, iswcntrl(c) != 0, false};
    switch (c) {
    case 0xa0:
      host.space = true;
      host.punct = false;
      break;
    case 0xaa:
    case 0xba:
    case 0xb5:
      host.punct = true;
      host.lower = false;
      break;
    case 0xdf:
      host.upper = true;
      host.lower = false;
      break;
    default:
      break;
    }
    expect_same(bits_of(table[c]), host, c);
    if (host.upper && c != 0xdf) {
      EXPECT_EQ(static_cast<wint_t>(c + 32), towlower(c)) << c; // the case partner is 32 above
    }
  }
  setlocale(LC_ALL, "C");
}
