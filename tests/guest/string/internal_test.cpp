// White-box: strlen, strcmp, strncmp, strchr, strrchr, strcat, strncpy and strtok against
// byte-at-a-time references, over every start offset within a block and lengths across the
// word and block boundaries.
#include <kvtest.h>

#include "string/string_internal.h"
#include "string/strtok.h"

namespace {
char *const none = nullptr;

size_t ref_strlen(const char *s) {
  size_t n = 0;
  while (s[n])
    ++n;
  return n;
}
int ref_strncmp(const char *a, const char *b, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    auto x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x != y || x == 0)
      return x - y;
  }
  return 0;
}
int sign(int v) { return (v > 0) - (v < 0); }

alignas(64) char buf_a[256];
alignas(64) char buf_b[256];

// Fills with bytes that are never zero and include the upper half, so that signed byte
// handling and a false zero detection both show.
void fill(char *p, size_t n, unsigned seed) {
  for (size_t i = 0; i < n; ++i)
    p[i] = static_cast<char>(((i + seed) * 97 + 0x41) % 255 + 1);
}

int failures;
void report(const char *what, size_t offset, size_t length) {
  if (++failures > 3)
    return;
  kvtest::out(what);
  kvtest::out(" wrong at offset ");
  kvtest::out_udec(offset);
  kvtest::out(", length ");
  kvtest::out_udec(length);
  kvtest::out("\n");
}

} // namespace

TEST(String, StrlenEveryOffsetAndLength) {
  failures = 0;
  for (size_t off = 0; off < 40; ++off)
    for (size_t len = 0; len <= 120; ++len) {
      fill(buf_a, sizeof buf_a, static_cast<unsigned>(off));
      buf_a[off + len] = 0;
      // A zero just before the start must not count.
      if (off)
        buf_a[off - 1] = 0;
      if (strlen(buf_a + off) != len)
        report("strlen", off, len);
    }
  EXPECT_EQ(failures, 0);
}

// Long strings whose words AND to zero bytes (0x01 next to 0x02, 'A' next to ' ') and ones whose
// words never do, with the terminator in every position of a 32-byte block.
TEST(String, StrlenLongStringsOfEveryBytePattern) {
  alignas(64) static char text[1200];
  const struct {
    const char *what;
    char even, odd;
  } patterns[] = {{"letters", 'a', 'q'}, {"0x01 0x02", 1, 2}, {"caps and spaces", 'A', ' '},
                  {"high bytes", static_cast<char>(0x80), static_cast<char>(0x7f)}};
  failures = 0;
  for (auto &p : patterns)
    for (size_t off = 0; off < 8; ++off)
      for (size_t len = 960; len < 1000; ++len) {
        for (size_t i = 0; i < len; ++i)
          text[off + i] = (i / 4) & 1 ? p.odd : p.even;
        text[off + len] = 0;
        if (strlen(text + off) != len)
          report(p.what, off, len);
      }
  EXPECT_EQ(failures, 0);
}

TEST(String, CompareEveryOffsetPair) {
  failures = 0;
  for (size_t oa = 0; oa < 8; ++oa)
    for (size_t ob = 0; ob < 20; ++ob)
      for (size_t len = 0; len <= 40; ++len)
        for (int variant = 0; variant < 4; ++variant) {
          fill(buf_a + oa, len, 3);
          fill(buf_b + ob, len, 3);
          buf_a[oa + len] = 0;
          buf_b[ob + len] = 0;
          size_t at = len ? (len * 7 + variant) % len : 0;
          if (variant == 1 && len)
            buf_b[ob + at] = static_cast<char>(buf_b[ob + at] ^ 0x80); // upper half vs lower
          if (variant == 2 && len)
            buf_a[oa + at] = 0; // a ends early
          if (variant == 3) {
            buf_b[ob + len] = 'x'; // b goes on
            buf_b[ob + len + 1] = 0;
          }
          const char *a = buf_a + oa, *b = buf_b + ob;
          if (sign(strcmp(a, b)) != sign(ref_strncmp(a, b, ~size_t{0})) ||
              sign(strcmp(b, a)) != sign(ref_strncmp(b, a, ~size_t{0})))
            report("strcmp", oa * 100 + ob, len);
          const size_t bounds[] = {0, at, len, len + 1, len + 5};
          for (size_t n : bounds)
            if (sign(strncmp(a, b, n)) != sign(ref_strncmp(a, b, n)))
              report("strncmp", oa * 100 + ob, n);
          if (variant == 0 && sign(memcmp(a, b, len)) != 0)
            report("memcmp", oa * 100 + ob, len);
        }
  EXPECT_EQ(failures, 0);
}

// Strings that run across a page boundary at every offset of b, with a and b at different word
// offsets: the unaligned reads of b stop at its page end and the straddling word goes bytewise.
alignas(4096) char pages_a[8192];
alignas(4096) char pages_b[8192];

TEST(String, CompareAcrossAPageBoundary) {
  failures = 0;
  for (size_t ob = 4096 - 12; ob < 4096 + 2; ++ob)
    for (size_t oa = 4000; oa < 4004; ++oa)
      for (size_t len = 0; len < 20; ++len)
        for (int variant = 0; variant < 2; ++variant) {
          fill(pages_a + oa, len, 5);
          fill(pages_b + ob, len, 5);
          pages_a[oa + len] = 0;
          pages_b[ob + len] = 0;
          if (variant && len)
            pages_b[ob + len - 1] = static_cast<char>(pages_b[ob + len - 1] + 1);
          const char *a = pages_a + oa, *b = pages_b + ob;
          if (sign(strcmp(a, b)) != sign(ref_strncmp(a, b, ~size_t{0})) ||
              sign(strcmp(b, a)) != sign(ref_strncmp(b, a, ~size_t{0})))
            report("strcmp across pages", oa * 10000 + ob, len);
        }
  EXPECT_EQ(failures, 0);
}

namespace {
struct CompareCase {
  const char *a, *b;
  size_t n;
  int strcmp_sign, strncmp_sign;
};
const CompareCase compare_cases[] = {
    {"", "", 5, 0, 0},
    {"a", "", 5, 1, 1},
    {"", "a", 5, -1, -1},
    {"abc", "abd", 2, -1, 0},
    {"\xff", "\x01", 1, 1, 1}, // unsigned bytes
    {"abcdefgh", "abcdefgh", 8, 0, 0},
    {"abcdefgh", "abcdefgi", 8, -1, -1},
    {"abcdefgh", "abcdefghi", 8, -1, 0},
};
} // namespace

TEST(String, CompareTable) {
  for (const CompareCase &c : compare_cases) {
    EXPECT_EQ(sign(strcmp(c.a, c.b)), c.strcmp_sign);
    EXPECT_EQ(sign(strncmp(c.a, c.b, c.n)), c.strncmp_sign);
  }
}

TEST(String, FindCharacters) {
  failures = 0;
  for (size_t off = 0; off < 8; ++off)
    for (size_t len = 1; len < 40; ++len)
      for (size_t at = 0; at < len; at += 3) {
        for (size_t i = 0; i < len; ++i)
          buf_a[off + i] = static_cast<char>('a' + i % 20);
        buf_a[off + len] = 0;
        buf_a[off + at] = '\xe9';
        if (at + 5 < len)
          buf_a[off + at + 5] = '\xe9';
        char *s = buf_a + off;
        char *last = at + 5 < len ? s + at + 5 : s + at;
        if (strchr(s, 0xe9) != s + at || strchr(s, '\xe9') != s + at || strrchr(s, 0xe9) != last)
          report("strchr/strrchr", off, len);
        if (strchr(s, 'z') != nullptr || strrchr(s, 'z') != nullptr)
          report("strchr/strrchr miss", off, len);
        // The terminator is part of the string.
        if (strchr(s, 0) != s + len || strrchr(s, 0) != s + len)
          report("strchr/strrchr terminator", off, len);
      }
  EXPECT_EQ(failures, 0);
}

TEST(String, ConcatenateAndBoundedCopy) {
  char dst[16] = "abc";
  EXPECT_EQ(strcat(dst, "defgh"), &dst[0]);
  EXPECT_STREQ(dst, "abcdefgh");
  EXPECT_EQ(strcat(dst, ""), &dst[0]);
  EXPECT_EQ(ref_strlen(dst), 8u);

  char out[12];
  for (auto &c : out)
    c = '#';
  EXPECT_EQ(strncpy(out, "hi", 6), &out[0]);
  const char want[] = {'h', 'i', 0, 0, 0, 0, '#'};
  for (size_t i = 0; i < sizeof want; ++i)
    EXPECT_EQ(out[i], want[i]);
  // No terminator when the source is as long as n.
  for (auto &c : out)
    c = '#';
  strncpy(out, "abcdef", 4);
  EXPECT_EQ(out[3], 'd');
  EXPECT_EQ(out[4], '#');
  strncpy(out, "x", 0);
  EXPECT_EQ(out[0], 'a');
}

TEST(String, InternalStrtokKeepsItsOwnPlace) {
  char text[] = " one two  three";
  EXPECT_STREQ(strtok(text, " "), "one");
  EXPECT_STREQ(strtok(nullptr, " "), "two");
  // A second tokeniser with its own cell does not disturb the first.
  char other[] = "x;y";
  char *save = nullptr;
  EXPECT_STREQ(kv::strtok_internal(other, ";", &save), "x");
  EXPECT_STREQ(strtok(nullptr, " "), "three");
  EXPECT_EQ(strtok(nullptr, " "), none);
  EXPECT_STREQ(kv::strtok_internal(nullptr, ";", &save), "y");
}
