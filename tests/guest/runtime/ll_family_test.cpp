// The core's own 64-bit names (_ll_*) and the division by ten, through libc.so, against exact
// references.
#include <kvtest.h>
#include <xorshift.h>

#include "helpers.h"

using rt_test::call64;
using rt_test::pair;

namespace {

struct CmpCase {
  uint64_t a, b;
  int unsigned_result, signed_result;
};
// The signed order differs from the unsigned one exactly when the high words' signs differ;
// equal high words fall back to an unsigned compare of the low words.
const CmpCase cmp_cases[] = {
    {0, 0, 0, 0},
    {1, 0, 1, 1},
    {0, 1, -1, -1},
    {0xffffffffffffffffull, 0, 1, -1},
    {0x8000000000000000ull, 0x7fffffffffffffffull, 1, -1},
    {0x0000000080000000ull, 0x000000007fffffffull, 1, 1},
    {0xffffffff80000000ull, 0xffffffff7fffffffull, 1, 1},
    {0x0000000100000000ull, 0x00000000ffffffffull, 1, 1},
    {0xfffffffe00000000ull, 0xffffffffffffffffull, -1, -1},
    {0x123456789abcdef0ull, 0x123456789abcdef0ull, 0, 0},
};

} // namespace

TEST(LongLong, Compare) {
  for (const CmpCase &c : cmp_cases) {
    EXPECT_EQ(_ll_ucmp(c.a, c.b), c.unsigned_result);
    EXPECT_EQ(_ll_scmp(static_cast<int64_t>(c.a), static_cast<int64_t>(c.b)), c.signed_result);
    EXPECT_EQ(_ll_ucmp(c.b, c.a), -c.unsigned_result);
    EXPECT_EQ(_ll_scmp(static_cast<int64_t>(c.b), static_cast<int64_t>(c.a)), -c.signed_result);
    EXPECT_EQ(__aeabi_ulcmp(c.a, c.b), c.unsigned_result);
    EXPECT_EQ(__aeabi_lcmp(static_cast<int64_t>(c.a), static_cast<int64_t>(c.b)), c.signed_result);
  }
}

TEST(LongLong, ShiftsAndMultiply) {
  EXPECT_EQ(_ll_shift_l(0x0000000089abcdefull, 32), 0x89abcdef00000000ull);
  EXPECT_EQ(_ll_shift_l(0x0123456789abcdefull, 4), 0x123456789abcdef0ull);
  EXPECT_EQ(_ll_ushift_r(0xf123456789abcdefull, 36), 0x000000000f123456ull);
  EXPECT_EQ(static_cast<uint64_t>(_ll_sshift_r(static_cast<int64_t>(0xf123456789abcdefull), 36)),
            0xffffffffff123456ull);
  EXPECT_EQ(_ll_mul(0xfedcba9876543210ull, 0x0123456789abcdefull), 0x2236d88fe5618cf0ull);
}

namespace {
struct DivCase {
  int64_t n, d, q, r;
};
const DivCase sdiv_cases[] = {
    {-7, 2, -3, -1},
    {7, -2, -3, 1},
    {-7, -2, 3, -1},
    {-9223372036854775807ll - 1, -1, -9223372036854775807ll - 1, 0},
    {-5000000000ll, 4294967296ll, -1, -705032704ll},
};
} // namespace

TEST(LongLong, DivisionEntries) {
  for (const DivCase &c : sdiv_cases) {
    auto regs = call64(_ll_sdiv, static_cast<uint64_t>(c.n), static_cast<uint64_t>(c.d));
    EXPECT_EQ(static_cast<int64_t>(pair(regs.r[0], regs.r[1])), c.q);
    EXPECT_EQ(static_cast<int64_t>(pair(regs.r[2], regs.r[3])), c.r);
    EXPECT_TRUE(regs.preserved);
  }
  void (*const entries[])(void) = {_ll_udiv, _ll_udiv_donemoving};
  for (auto fn : entries) {
    auto regs = call64(fn, 0xfedcba9876543210ull, 0x0000000123456789ull);
    EXPECT_EQ(pair(regs.r[0], regs.r[1]), 0xe0000000ull);
    EXPECT_EQ(pair(regs.r[2], regs.r[3]), 0x96543210ull);
  }
}

namespace {

// The edges of the reciprocal: the extremes, every power of ten and its neighbours, and the
// values just below a multiple of ten where one correction step must fire.
uint64_t div10_edges[96];
size_t div10_edge_count() {
  size_t k = 0;
  div10_edges[k++] = 0;
  div10_edges[k++] = 0xffffffffull;
  div10_edges[k++] = 0x100000000ull;
  div10_edges[k++] = 0xffffffffffffffffull;
  div10_edges[k++] = 0xfffffffffffffff9ull;
  for (uint64_t p = 1; p <= 1000000000000000000ull; p *= 10) {
    div10_edges[k++] = p - 1;
    div10_edges[k++] = p;
    div10_edges[k++] = p + 9;
    div10_edges[k++] = p * 9 + 9;
  }
  return k;
}

uint64_t rng = 0x2545f4914f6cdd1dull;
uint64_t next_random() { return kvtest::xorshift64(rng); }

} // namespace

TEST(LongLong, DivideByTen) {
  size_t n_edges = div10_edge_count();
  int wrong = 0;
  for (size_t i = 0; i < n_edges + 20000; ++i) {
    uint64_t n = i < n_edges ? div10_edges[i] : next_random() >> (next_random() & 63);
    // The reference is the general division helper, itself checked against long division.
    auto ref = call64(__aeabi_uldivmod, n, 10);
    auto got = call64(_ll_udiv10, n, 0);
    if (pair(got.r[0], got.r[1]) != pair(ref.r[0], ref.r[1]) || got.r[2] != ref.r[2] ||
        got.r[3] != 0 || !got.preserved)
      ++wrong;
    auto n32 = static_cast<uint32_t>(n);
    uint64_t r32 = __rt_udiv10(n32);
    if (static_cast<uint32_t>(r32) != n32 / 10u || static_cast<uint32_t>(r32 >> 32) != n32 % 10u)
      ++wrong;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(__rt_udiv10(0xffffffffu), 429496729u | 5ull << 32);
  auto top = call64(_ll_udiv10, 0xffffffffffffffffull, 0);
  EXPECT_EQ(pair(top.r[0], top.r[1]), 1844674407370955161ull);
  EXPECT_EQ(top.r[2], 5u);
}
