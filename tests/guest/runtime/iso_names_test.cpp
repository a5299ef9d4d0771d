// White-box: the library's own memcmp, memcpy, memmove and memset, which it keeps to itself
// (ISO argument orders and return values).
#include <kvtest.h>

#include "runtime/block_memory.h"

extern "C" {
int memcmp(const void *, const void *, size_t);
void *memcpy(void *, const void *, size_t);
void *memmove(void *, const void *, size_t);
void *memset(void *, int, size_t);
}

namespace {

int sign(int v) { return (v > 0) - (v < 0); }

struct CompareCase {
  const char *a, *b;
  size_t n;
  int sign;
};
// Strings are compared as unsigned bytes, over exactly n bytes.
const CompareCase compare_cases[] = {
    {"", "", 0, 0},
    {"abc", "abd", 0, 0},
    {"abc", "abd", 2, 0},
    {"abc", "abd", 3, -1},
    {"abd", "abc", 3, 1},
    {"\x80", "\x7f", 1, 1},
    {"\x01\xff", "\x01\x00", 2, 1},
    {"abcdefgh", "abcdefgh", 8, 0},
    {"abcdefgh", "abcdefgX", 8, 1},
    {"abcdXfgh", "abcdefgh", 8, -1},
    {"Xbcdefgh", "abcdefgh", 8, -1},
    {"abcdefghijklmnopq", "abcdefghijklmnopr", 17, -1},
    {"abcdefghijklmnopq", "abcdefghijklmnopr", 16, 0},
};

} // namespace

TEST(IsoNames, CompareTable) {
  for (const CompareCase &c : compare_cases)
    EXPECT_EQ(sign(memcmp(c.a, c.b, c.n)), c.sign);
}

// The word loop must not decide on a later byte of the same word: with both pointers aligned,
// the first difference sits in a low byte and a larger one in a high byte.
TEST(IsoNames, CompareFirstDifferenceDecides) {
  alignas(4) uint8_t a[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  alignas(4) uint8_t b[8] = {1, 2, 3, 4, 6, 0, 0, 0};
  for (size_t shift = 0; shift < 4; ++shift) {
    EXPECT_EQ(sign(memcmp(a + shift, b + shift, 8 - shift)), -1);
    EXPECT_EQ(sign(memcmp(b + shift, a + shift, 8 - shift)), 1);
  }
  EXPECT_EQ(sign(memcmp(a, b, 4)), 0);
}

TEST(IsoNames, CompareEveryAlignment) {
  alignas(8) uint8_t a[48], b[48];
  for (size_t i = 0; i < sizeof a; ++i)
    a[i] = b[i] = static_cast<uint8_t>(i * 37 + 1);
  for (size_t sa = 0; sa < 4; ++sa)
    for (size_t sb = 0; sb < 4; ++sb) {
      // Same contents at different alignments: copy a's bytes under b's offset.
      for (size_t i = 0; i < 40; ++i)
        b[sb + i] = a[sa + i];
      EXPECT_EQ(kv::mem_compare(a + sa, b + sb, 40), 0);
      b[sb + 29] ^= 0x80;
      EXPECT_EQ(sign(memcmp(a + sa, b + sb, 40)), a[sa + 29] < b[sb + 29] ? -1 : 1);
      EXPECT_EQ(memcmp(a + sa, b + sb, 29), 0);
    }
}

TEST(IsoNames, CopyMoveSetReturnDestination) {
  alignas(8) uint8_t buf[32] = {};
  EXPECT_EQ(memcpy(buf + 1, "abcdefghij", 10), buf + 1);
  EXPECT_EQ(memmove(buf + 3, buf + 1, 10), buf + 3);
  EXPECT_EQ(buf[3], 'a');
  EXPECT_EQ(buf[12], 'j');
  // ISO order: value before count.
  EXPECT_EQ(memset(buf, 'z', 2), &buf[0]);
  EXPECT_EQ(buf[0], 'z');
  EXPECT_EQ(buf[1], 'z');
  EXPECT_EQ(buf[2], 'b'); // left from the first copy
}
