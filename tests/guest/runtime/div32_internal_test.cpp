// White-box: the library's own 32-bit division (signed entry and unsigned second entry into
// one body), on edge tables and against long division.
#include <kvtest.h>
#include <xorshift.h>

#include "division_reference.h"
#include "runtime/divide.h"

using namespace div_test;

namespace {

uint32_t state = 0x9e3779b9u;
uint32_t next_random() { return kvtest::xorshift32(state); }

} // namespace

TEST(Div32, Tables) {
  for (const U32Case &c : u32_cases) {
    kv::rt::udivmod32_t got = kv::rt::udivmod32(c.n, c.d);
    EXPECT_EQ(got.quot, c.q);
    EXPECT_EQ(got.rem, c.r);
  }
  for (const S32Case &c : s32_cases) {
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
    uint64_t q, r;
    long_division(n, d, q, r);
    kv::rt::udivmod32_t got = kv::rt::udivmod32(n, d);
    wrong += got.quot != q || got.rem != r;
    auto sn = static_cast<int32_t>(i & 1 ? 0 - n : n), sd = static_cast<int32_t>(i & 2 ? 0 - d : d);
    int64_t sq, sr;
    signed_long_division(sn, sd, sq, sr);
    kv::rt::sdivmod32_t s = kv::rt::sdivmod32(sn, sd);
    // The quotient of the most negative value by -1 wraps, as the 32-bit result does.
    wrong += s.quot != static_cast<int32_t>(sq) || s.rem != static_cast<int32_t>(sr);
  }
  EXPECT_EQ(wrong, 0);
}
