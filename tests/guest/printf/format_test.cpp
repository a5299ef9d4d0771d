// The engine's parsing, integer, character and string conversions, and the front doors.
#include <stdint.h>

#include "cases.h"
#include "printf/state.h"

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
      // Hex digits come a byte at a time: odd and even counts, zeros inside and at the ends.
      {format("%x %x %x %x %x", 1u, 0x10u, 0x100u, 0xf00fu, 0x10000u), "1 10 100 f00f 10000", 19},
      {format("%llx %llX", 0x100000001ull, 0xF00000000ull), "100000001 F00000000", 19},
      {format("%llx", 0x8000000000000000ull), "8000000000000000", 16},
      // A whole format of one conversion goes straight to its handler.
      {format("%x", 0xdeadbeefu), "deadbeef", 8},
      {format("%x", 0u), "0", 1},
      {format("%x", 0x7u), "7", 1},
      {format("%x", 0x80000000u), "80000000", 8},
      {format("%X", 0xabcdef12u), "ABCDEF12", 8},
      {format("%d", -2147483647 - 1), "-2147483648", 11},
      {format("%u", 0u), "0", 1},
      {format("%q"), "q", 1},
      {format("%h"), "", 0},
      {format("%llX", 0x123456789ABCDEF0ull), "123456789ABCDEF0", 16},
      {format("%llx", 0xf0000000ull), "f0000000", 8},
      {format("%llx", 0x1f0000000ull), "1f0000000", 9},
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

// Plain text is scanned a word at a time once aligned: every start offset and length, ended
// by a conversion, a percent sign, a lone '%' or the terminator, with more '%' after the end.
TEST(Printf, PlainTextAtEveryAlignment) {
  static const char letters[] = "abcdefghijklmnopq";
  const struct {
    const char *tail, *out;
  } tails[] = {{"", ""}, {"%d", "7"}, {"%%", "%"}, {"%", ""}, {"%d!", "7!"}};
  int wrong = 0;
  for (const auto &tail : tails)
    for (int offset = 0; offset < 8; ++offset)
      for (int length = 0; length < 14; ++length) {
        alignas(8) char format[48];
        for (char &c : format)
          c = '%';
        char want[48];
        int n = 0;
        for (; n < length; ++n)
          format[offset + n] = want[n] = letters[n];
        int t = 0;
        for (; tail.tail[t]; ++t)
          format[offset + n + t] = tail.tail[t];
        format[offset + n + t] = 0;
        for (int i = 0; tail.out[i]; ++i)
          want[n++] = tail.out[i];
        want[n] = 0;
        char out[48];
        wrong += sprintf(out, format + offset, 7) != n;
        for (int i = 0; i <= n; ++i)
          wrong += out[i] != want[i];
      }
  EXPECT_EQ(wrong, 0);
}

TEST(Printf, SprintfTerminates) {
  char b[32];
  for (char &c : b)
    c = '#';
  EXPECT_EQ(sprintf(b, "%s=%04x", "key", 0xbeu), 8);
  EXPECT_STREQ(b, "key=00be");
  EXPECT_EQ(b[9], '#');
}

namespace {

struct Rendered {
  char text[96];
  int length, count;
};
void collect_one(int ch, void *sink) {
  auto *r = static_cast<Rendered *>(sink);
  if (r->length < static_cast<int>(sizeof r->text))
    r->text[r->length++] = static_cast<char>(ch);
}
// The same format one character per put_char call: a sink the engine cannot write into
// directly.
Rendered one_at_a_time(const char *format, ...) {
  Rendered r{};
  va_list args;
  va_start(args, format);
  r.count = _printf_char_common(format, &r, __builtin_bit_cast(const uint32_t *, args), collect_one);
  va_end(args);
  return r;
}

struct Sized {
  char text[96];
  int count;
};
Sized bounded(int size, const char *format, ...) {
  Sized s;
  for (char &c : s.text)
    c = '#';
  va_list args;
  va_start(args, format);
  s.count = vsnprintf(s.text, static_cast<size_t>(size), format, args);
  va_end(args);
  return s;
}

} // namespace

// Runs written straight into memory must match the character-at-a-time output, and a bounded
// buffer of every size must hold its prefix and never a byte more.
TEST(Printf, MemorySinksMatchCharacterOutput) {
  auto check = [](const Rendered &want, auto render) {
    Sized full = render(static_cast<int>(sizeof full.text));
    EXPECT_EQ(full.count, want.count);
    bool same = full.count == want.length && full.text[want.length] == 0;
    for (int i = 0; same && i < want.length; ++i)
      same = full.text[i] == want.text[i];
    EXPECT_TRUE(same);
    for (int size = 0; size <= want.length + 1; ++size) {
      Sized part = render(size);
      EXPECT_EQ(part.count, want.count);
      int kept = size ? (size - 1 < want.length ? size - 1 : want.length) : 0;
      bool ok = true;
      for (int i = 0; ok && i < kept; ++i)
        ok = part.text[i] == want.text[i];
      if (size)
        ok = ok && part.text[kept] == 0;
      for (int i = size ? kept + 1 : 0; ok && i < static_cast<int>(sizeof part.text); ++i)
        ok = part.text[i] == '#';
      EXPECT_TRUE(ok);
    }
  };
  check(one_at_a_time("plain text, no conversions at all"),
        [](int n) { return bounded(n, "plain text, no conversions at all"); });
  check(one_at_a_time("%d|%5d|%-5d|%05d|%+.3d|%u", -42, 42, 42, 42, 7, 123456789u),
        [](int n) { return bounded(n, "%d|%5d|%-5d|%05d|%+.3d|%u", -42, 42, 42, 42, 7, 123456789u); });
  check(one_at_a_time("%x %#X %#o %p %lld", 0xBEEFu, 0xBEEFu, 8u, (void *)0x1234, -9000000000ll),
        [](int n) { return bounded(n, "%x %#X %#o %p %lld", 0xBEEFu, 0xBEEFu, 8u, (void *)0x1234, -9000000000ll); });
  check(one_at_a_time("[%s] [%.3s] [%20s] [%-20s]", "abcdefghijklmnopqrstu", "abcdef", "xy", "xy"),
        [](int n) { return bounded(n, "[%s] [%.3s] [%20s] [%-20s]", "abcdefghijklmnopqrstu", "abcdef", "xy", "xy"); });
  // A format that is one bare conversion, and strings copied while their end is looked for:
  // every alignment of the text, and cuts before, inside and after it.
  check(one_at_a_time("%d", -123456789), [](int n) { return bounded(n, "%d", -123456789); });
  check(one_at_a_time("%x", 0xdeadbeefu), [](int n) { return bounded(n, "%x", 0xdeadbeefu); });
  check(one_at_a_time("%q"), [](int n) { return bounded(n, "%q"); });
  check(one_at_a_time("%c", 'z'), [](int n) { return bounded(n, "%c", 'z'); });
  static const char text[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (int offset = 0; offset < 8; ++offset) {
    check(one_at_a_time("%s", text + offset), [offset](int n) { return bounded(n, "%s", text + offset); });
    check(one_at_a_time("<%s>", text + offset), [offset](int n) { return bounded(n, "<%s>", text + offset); });
  }
  check(one_at_a_time("%s", ""), [](int n) { return bounded(n, "%s", ""); });
  check(one_at_a_time("%s|%0s|%-0s", "abc", "de", "f"), [](int n) { return bounded(n, "%s|%0s|%-0s", "abc", "de", "f"); });
  check(one_at_a_time("%c%c%%%q|%5%|%", 'a', 0),
        [](int n) { return bounded(n, "%c%c%%%q|%5%|%", 'a', 0); });
  check(one_at_a_time("%e %f %g|%-+12.4e|%012.2f|%#g", 6.02214076e23, 1234.5678, 0.1, -1.5, 3.25, 1.0),
        [](int n) { return bounded(n, "%e %f %g|%-+12.4e|%012.2f|%#g", 6.02214076e23, 1234.5678, 0.1, -1.5, 3.25, 1.0); });
}
