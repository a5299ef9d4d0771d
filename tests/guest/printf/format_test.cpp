// The engine's parsing, integer, character and string conversions, and the front doors.
#include <stdint.h>

#include "cases.h"

TEST(Printf, ParsingAndUnknownConversions) {
  const Case cases[] = {
      {format("%5%"), "%", 1},
      {format("%q"), "q", 1},
      {format("%Q"), "q", 1},
      {format("ab%"), "ab", 2},
      {format("ab%-5"), "ab", 2},
      {format("x%ly"), "xy", 2},
      {format("%%d"), "%d", 2},
      {format("plain text"), "plain text", 10},
      {format(""), "", 0},
      {format("%zu %td %jd %Ld", 7u, 8, 9ll, 10), "7 8 9 10", 8},
  };
  CHECK_CASES(cases);
}

TEST(Printf, FlagsWidthAndPrecision) {
  const Case cases[] = {
      {format("%-05d|", 42), "42   |", 6},
      {format("%+ d", 5), "+5", 2},
      {format("% d", 5), " 5", 2},
      {format("% d", -5), "-5", 2},
      {format("%*d|", -4, 7), "7   |", 5},
      {format("%*d|", 4, 7), "   7|", 5},
      {format("%.*d", -1, 0), "0", 1},
      {format("%.*d", 3, 5), "005", 3},
      {format("%05d", -42), "-0042", 5},
      {format("%08.3d", 42), "     042", 8},
      {format("%+.0d", 0), "+", 1},
      {format("%-+6d|", 3), "+3    |", 7},
      {format("%0-4d|", 3), "3   |", 5},
      {format("%3d", 123456), "123456", 6},
      {format("%12d", -2147483647 - 1), " -2147483648", 12},
  };
  CHECK_CASES(cases);
}

TEST(Printf, Integers) {
  const Case cases[] = {
      {format("%.0d", 0), "", 0},
      {format("%.0x", 0), "", 0},
      {format("%#x", 0), "0", 1},
      {format("%#o", 0), "0", 1},
      {format("%#.0o", 0), "0", 1},
      {format("%#o", 8), "010", 3},
      {format("%#.5o", 8), "00010", 5},
      {format("%#x %#X", 255, 255), "0xff 0XFF", 9},
      {format("%#08x", 255), "0x0000ff", 8},
      {format("%x %X", 0xdeadbeefu, 0xdeadbeefu), "deadbeef DEADBEEF", 17},
      {format("%o", 0xffffffffu), "37777777777", 11},
      {format("%u %i %D %U", 4294967295u, -1, 12, 13), "4294967295 -1 12 13", 19},
      {format("%hhd", 255), "-1", 2},
      {format("%hhu %hhx", 511, 0x1ff), "255 ff", 6},
      {format("%hu", 65537), "1", 1},
      {format("%hd %ho", 0x18000, 0x18000), "-32768 100000", 13},
      {format("%lld", -9223372036854775807ll - 1), "-9223372036854775808", 20},
      {format("%llu", 18446744073709551615ull), "18446744073709551615", 20},
      {format("%llx %llo", 0x123456789abcdefull, 01777777777777777777777ull),
       "123456789abcdef 1777777777777777777777", 38},
      {format("%jd|%lld", 4294967296ll, 10000000000ll), "4294967296|10000000000", 22},
      {format("%d %lld %d", 1, 2ll, 3), "1 2 3", 5},
      {format("%#llX", 0xabcull), "0XABC", 5},
      {format("%ld %lx", 123l, 0xabcul), "123 abc", 7},
  };
  CHECK_CASES(cases);
}

TEST(Printf, Pointers) {
  void *p = reinterpret_cast<void *>(0x1234);
  const Case cases[] = {
      {format("%p", p), "00001234", 8},
      {format("%#p", p), "@00001234", 9},
      {format("%P", reinterpret_cast<void *>(0xabcdef)), "00ABCDEF", 8},
      {format("%10p|", p), "  00001234|", 11},
      {format("%#p", static_cast<void *>(nullptr)), "00000000", 8},
  };
  CHECK_CASES(cases);
}

TEST(Printf, CharactersAndStrings) {
  const Case cases[] = {
      {format("a%cb", 0), "a\0b", 3},
      {format("%c%C", 'x', 'y'), "xy", 2},
      {format("%3c|%-3c|", 'a', 'b'), "  a|b  |", 8},
      {format("%.2s", "abc"), "ab", 2},
      {format("%5.1s|", "abc"), "    a|", 6},
      {format("%-5s|", "ab"), "ab   |", 6},
      {format("%05s", "ab"), "000ab", 5},
      {format("%S", "up"), "up", 2},
      {format("%.0s|", "abc"), "|", 1},
      {format("%s", static_cast<const char *>(nullptr)), "(null)", 6},
  };
  CHECK_CASES(cases);
}

TEST(Printf, WideCharactersThroughTheLocale) {
  const uint16_t wide[] = {'w', 'i', 0x4E2D, 'd', 'e', 0};
  const Case cases[] = {
      {format("%ls", wide), "wide", 4}, // the unconvertible character is skipped
      {format("%6ls|", wide), "  wide|", 7},
      {format("%-.3ls|", wide), "wid|", 4},
      {format("%lc%lc", 'a', 0), "a\0", 2},
      {format("%3lc|", 'z'), "  z|", 4},
  };
  CHECK_CASES(cases);
}

TEST(Printf, CountStoresAtTheModifiersWidth) {
  int32_t n32 = -1;
  int16_t n16[2] = {-1, 0x5555};
  int8_t n8[2] = {-1, 0x55};
  int64_t n64 = -1;
  Formatted f = format("abc%nde%hnf%hhng%lln", &n32, &n16[0], &n8[0], &n64);
  EXPECT_STREQ(f.text, "abcdefg");
  EXPECT_EQ(n32, 3);
  EXPECT_EQ(n16[0], 5);
  EXPECT_EQ(n16[1], 0x5555); // nothing beyond the 16 bits
  EXPECT_EQ(n8[0], 6);
  EXPECT_EQ(n8[1], 0x55);
  EXPECT_EQ(n64, 7);
}

TEST(Printf, SnprintfTruncates) {
  char b[8];
  for (char &c : b)
    c = '#';
  EXPECT_EQ(snprintf(b, 0, "%d", 12345), 5);
  EXPECT_EQ(b[0], '#');
  EXPECT_EQ(snprintf(b, 1, "%d", 12345), 5);
  EXPECT_EQ(b[0], 0);
  EXPECT_EQ(b[1], '#');
  EXPECT_EQ(snprintf(b, 4, "%s-%d", "ab", 12345), 8);
  EXPECT_STREQ(b, "ab-");
  EXPECT_EQ(b[4], '#');
  EXPECT_EQ(snprintf(b, 6, "%5s", "x"), 5);
  EXPECT_STREQ(b, "    x");
  EXPECT_EQ(snprintf(b, 5, "%5s", "x"), 5);
  EXPECT_STREQ(b, "    ");
}

TEST(Printf, SprintfTerminates) {
  char b[32];
  for (char &c : b)
    c = '#';
  EXPECT_EQ(sprintf(b, "%s=%04x", "key", 0xbeu), 8);
  EXPECT_STREQ(b, "key=00be");
  EXPECT_EQ(b[9], '#');
}
