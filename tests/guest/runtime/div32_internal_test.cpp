// White-box: the library's own 32-bit division (signed entry and unsigned second entry into
// one body), on edge tables and against long division.
#include <kvtest.h>
#include <xorshift.h>

#include "runtime/divide.h"

namespace {

struct UCase {
  uint32_t n, d, q, r;
};
const UCase ucases[] = {
    {0, 1, 0, 0},
    {1, 1, 1, 0},
    {7, 7, 1, 0},
    {6, 7, 0, 6},
    {0xffffffffu, 1, 0xffffffffu, 0},
    {0xffffffffu, 0xffffffffu, 1, 0},
    {0xffffffffu, 0x80000000u, 1, 0x7fffffffu},
    {0xffffffffu, 16, 0x0fffffffu, 15},
    {0xffffffffu, 10, 429496729u, 5},
    {0x80000000u, 3, 0x2aaaaaaau, 2},
    {0xdeadbeefu, 0x1234u, 0x000c3ba5u, 0x0000076bu},
    {1000000007u, 65536u, 15258u, 51719u},
};

struct SCase {
  int32_t n, d, q, r;
};
constexpr int32_t int_min = -2147483647 - 1;
const SCase scases[] = {
    {-7, 2, -3, -1}, {7, -2, -3, 1},         {-7, -2, 3, -1},       {int_min, -1, int_min, 0},
    {int_min, 1, int_min, 0}, {int_min, int_min, 1, 0}, {-1, int_min, 0, -1},
    {int_min, 3, -715827882, -2}, {2147483647, -10, -214748364, 7},
};

uint32_t state = 0x9e3779b9u;
uint32_t next_random() { return kvtest::xorshift32(state); }

void long_division(uint32_t n, uint32_t d, uint32_t &q, uint32_t &r) {
  uint64_t rem = 0;
  q = 0;
  for (int bit = 31; bit >= 0; --bit) {
    rem = rem << 1 | ((n >> bit) & 1);
    q <<= 1;
    if (rem >= d) {
      rem -= d;
      q |= 1;
    }
  }
  r = static_cast<uint32_t>(rem);
}

} // namespace

TEST(Div32, Tables) {
  for (const UCase &c : ucases) {
    kv::rt::udivmod32_t got = kv::rt::udivmod32(c.n, c.d);
    EXPECT_EQ(got.quot, c.q);
    EXPECT_EQ(got.rem, c.r);
  }
  for (const SCase &c : scases) {
    kv::rt::sdivmod32_t got = kv::rt::sdivmod32(c.n, c.d);
    EXPECT_EQ(got.quot, c.q);
    EXPECT_EQ(got.rem, c.r);
  }
}

TEST(Div32, EveryQuotientLength) {
  int wrong = 0;
  for (int i = 0; i < 20000; ++i) {
    uint32_t n = next_random() >> (next_random() & 31);
    uint32_t d = next_random() >> (next_random() & 31);
    if (d == 0)
      d = 1;
    uint32_t q, r;
    long_division(n, d, q, r);
    kv::rt::udivmod32_t got = kv::rt::udivmod32(n, d);
    wrong += got.quot != q || got.rem != r;
    // Signed: magnitudes through the same reference.
    auto sn = static_cast<int32_t>(i & 1 ? 0 - n : n), sd = static_cast<int32_t>(i & 2 ? 0 - d : d);
    uint32_t un = sn < 0 ? 0 - static_cast<uint32_t>(sn) : static_cast<uint32_t>(sn);
    uint32_t ud = sd < 0 ? 0 - static_cast<uint32_t>(sd) : static_cast<uint32_t>(sd);
    long_division(un, ud, q, r);
    kv::rt::sdivmod32_t s = kv::rt::sdivmod32(sn, sd);
    uint32_t want_q = (sn < 0) != (sd < 0) ? 0 - q : q, want_r = sn < 0 ? 0 - r : r;
    wrong += static_cast<uint32_t>(s.quot) != want_q || static_cast<uint32_t>(s.rem) != want_r;
  }
  EXPECT_EQ(wrong, 0);
}
