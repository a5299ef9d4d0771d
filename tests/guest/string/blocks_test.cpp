// White-box: the block paths of strlen and strcmp. Every start offset within a
// 64-byte block, terminators and differences at every position of the first
// blocks, words whose AND shows a zero byte that none of them has (each such
// false hit must be passed over), and strings that end on the last byte before
// an unmapped page.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>

#include "string/string_internal.h"

namespace {

constexpr size_t kPage = 4096;

int sign(int v) { return (v > 0) - (v < 0); }
int ref_strcmp(const char *a, const char *b) {
  for (size_t i = 0;; ++i) {
    auto x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x != y || x == 0)
      return x - y;
  }
}

int failures;
void report(const char *what, size_t a, size_t b, size_t c) {
  if (++failures > 3)
    return;
  kvtest::out(what);
  kvtest::out(" wrong at ");
  kvtest::out_udec(a);
  kvtest::out(" / ");
  kvtest::out_udec(b);
  kvtest::out(" / ");
  kvtest::out_udec(c);
  kvtest::out("\n");
}

// Text of non-zero bytes. "mixed" bytes vary, so that some AND to zero and some
// do not; "disjoint" alternates words of 0x0f and 0xf0 bytes, so that every
// pair of neighbouring words ANDs to zero in every byte.
struct Pattern {
  const char *name;
  char (*at)(size_t);
};
const Pattern patterns[] = {
    {"mixed", [](size_t i) { return static_cast<char>((i * 97 + 0x41) % 255 + 1); }},
    {"disjoint", [](size_t i) { return static_cast<char>((i / 4) & 1 ? 0xf0 : 0x0f); }},
    {"letters", [](size_t i) { return static_cast<char>('a' + i % 26); }},
};

alignas(64) char text_a[64 + 320 + 64];
alignas(64) char text_b[64 + 320 + 64];

} // namespace

TEST(StringBlocks, StrlenEveryBlockOffset) {
  failures = 0;
  for (const Pattern &p : patterns)
    for (size_t off = 0; off < 64; ++off) {
      for (size_t i = 0; i < sizeof text_a; ++i)
        text_a[i] = p.at(i);
      // Zero bytes before the start share its block and must not count.
      for (size_t i = 0; i < off; i += 3)
        text_a[i] = 0;
      for (size_t len = 0; len <= 300; ++len) {
        char saved = text_a[off + len];
        text_a[off + len] = 0;
        if (strlen(text_a + off) != len)
          report(p.name, off, len, 0);
        text_a[off + len] = saved;
      }
    }
  EXPECT_EQ(failures, 0);
}

// a and b at the same offset within 64 bytes (the 64-byte blocks), within 16
// (16-byte blocks) and within a word only; equal strings, a difference at every
// position, and either string ending first.
TEST(StringBlocks, CompareEveryPositionInTheBlocks) {
  const struct {
    size_t a, b;
  } offsets[] = {{0, 0}, {4, 4}, {20, 20}, {52, 52}, {0, 16}, {36, 4}, {8, 12}, {3, 3}, {1, 2}};
  failures = 0;
  for (const Pattern &p : patterns)
    for (auto o : offsets)
      for (size_t len = 0; len <= 200; len += len < 140 ? 1 : 7) {
        char *a = text_a + o.a, *b = text_b + o.b;
        for (size_t i = 0; i < len; ++i)
          a[i] = b[i] = p.at(i);
        a[len] = b[len] = 0;
        a[len + 1] = 'x'; // reads past a terminator must not matter
        b[len + 1] = 'y';
        if (strcmp(a, b) != 0 || strcmp(b, a) != 0)
          report(p.name, o.a * 100 + o.b, len, 0);
        for (size_t at = 0; at < len; at += at < 70 ? 1 : 5)
          for (int variant = 0; variant < 3; ++variant) {
            char *changed = variant == 1 ? a + at : b + at;
            char saved = *changed;
            *changed = variant == 0 ? static_cast<char>(saved ^ 0x80) : 0;
            int want = sign(ref_strcmp(a, b));
            if (sign(strcmp(a, b)) != want || sign(strcmp(b, a)) != -want)
              report(p.name, o.a * 100 + o.b, len, at * 10 + variant + 1);
            *changed = saved;
          }
      }
  EXPECT_EQ(failures, 0);
}

namespace {

// Mapped pages with an unmapped one after each: page 0, hole, page 2, hole.
struct Guarded {
  char *base = nullptr;
  Guarded() {
    void *p = __syscall_mmap(nullptr, 4 * kPage, KV_PROT_READ | KV_PROT_WRITE,
                             KV_MAP_PRIVATE | KV_MAP_ANONYMOUS, -1, 0);
    if (p == reinterpret_cast<void *>(KV_MAP_FAILED))
      return;
    base = static_cast<char *>(p);
    __syscall_munmap(base + kPage, kPage);
    __syscall_munmap(base + 3 * kPage, kPage);
  }
  ~Guarded() {
    if (base) {
      __syscall_munmap(base, kPage);
      __syscall_munmap(base + 2 * kPage, kPage);
    }
  }
  // A string of len bytes whose terminator is the last byte of mapped page
  // `page` (0 or 2).
  char *ending_at(int page, size_t len, const Pattern &p) {
    char *s = base + (page + 1) * kPage - len - 1;
    for (size_t i = 0; i < len; ++i)
      s[i] = p.at(i);
    s[len] = 0;
    return s;
  }
};

} // namespace

TEST(StringBlocks, StringsEndingBeforeAnUnmappedPage) {
  Guarded g;
  ASSERT_TRUE(g.base != nullptr);
  failures = 0;
  for (const Pattern &p : patterns)
    for (size_t len = 0; len <= 300; ++len) {
      char *a = g.ending_at(0, len, p);
      if (strlen(a) != len)
        report("strlen", len, 0, 0);
      // Equal strings, both at their page ends (the same offset in every block
      // size).
      char *b = g.ending_at(2, len, p);
      if (strcmp(a, b) != 0)
        report("strcmp equal", len, 0, 0);
      // b one shorter or one longer: different offsets, each string ends at its
      // page end.
      const size_t others[] = {len - 1, len + 1};
      for (size_t other : others) {
        if (other > 300)
          continue;
        b = g.ending_at(2, other, p);
        int want = sign(ref_strcmp(a, b));
        if (sign(strcmp(a, b)) != want || sign(strcmp(b, a)) != -want)
          report("strcmp lengths", len, other, 0);
      }
      // a ends at its page end while b goes on, at the same offset within 64 bytes
      // (one block lower) or only within 16 (16 or 48 bytes lower).
      const size_t lower[] = {64, 48, 16};
      for (size_t d : lower) {
        b = g.base + 2 * kPage + (a - g.base) - d;
        for (size_t i = 0; i < len; ++i)
          b[i] = a[i];
        b[len] = 'z';
        b[len + 1] = 0;
        if (sign(strcmp(a, b)) != -1 || sign(strcmp(b, a)) != 1)
          report("strcmp a ends first", len, d, 0);
      }
    }
  EXPECT_EQ(failures, 0);
}
