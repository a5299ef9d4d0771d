// The division helpers through libc.so: edge tables with known answers, the register
// convention of the two-result helpers, and a pseudo-random sweep against long division.
#include <kvtest.h>
#include <xorshift.h>

#include "division_reference.h"
#include "helpers.h"

using rt_test::call32;
using rt_test::call64;
using rt_test::pair;
using namespace div_test;

namespace {

struct U64Case {
  uint64_t n, d, q, r;
};
const U64Case u64_cases[] = {
    {0x0000000000000000ull, 0x0000000000000001ull, 0x0000000000000000ull, 0x0000000000000000ull},
    {0x0000000000000001ull, 0x0000000000000001ull, 0x0000000000000001ull, 0x0000000000000000ull},
    {0xffffffffffffffffull, 0x0000000000000001ull, 0xffffffffffffffffull, 0x0000000000000000ull},
    {0xffffffffffffffffull, 0xffffffffffffffffull, 0x0000000000000001ull, 0x0000000000000000ull},
    {0xffffffffffffffffull, 0x0000000000000002ull, 0x7fffffffffffffffull, 0x0000000000000001ull},
    {0xffffffffffffffffull, 0x000000000000000aull, 0x1999999999999999ull, 0x0000000000000005ull},
    {0xffffffffffffffffull, 0x00000000ffffffffull, 0x0000000100000001ull, 0x0000000000000000ull},
    {0xffffffffffffffffull, 0x0000000100000000ull, 0x00000000ffffffffull, 0x00000000ffffffffull},
    {0xffffffffffffffffull, 0x0000000100000001ull, 0x00000000ffffffffull, 0x0000000000000000ull},
    {0x0000000100000000ull, 0x00000000ffffffffull, 0x0000000000000001ull, 0x0000000000000001ull},
    {0x00000000ffffffffull, 0x0000000100000000ull, 0x0000000000000000ull, 0x00000000ffffffffull},
    {0x8000000000000000ull, 0x8000000000000001ull, 0x0000000000000000ull, 0x8000000000000000ull},
    {0x8000000000000000ull, 0x0000000000000003ull, 0x2aaaaaaaaaaaaaaaull, 0x0000000000000002ull},
    {0xab54a98ceb1f0ad2ull, 0x000000003ade68b1ull, 0x00000002e90edc8full, 0x00000000143c73f3ull},
    {0xfffffffffffffffeull, 0xffffffffffffffffull, 0x0000000000000000ull, 0xfffffffffffffffeull},
    {0x8000000000000000ull, 0x0000000080000000ull, 0x0000000100000000ull, 0x0000000000000000ull},
    {0x123456789abcdef0ull, 0x000000000fedcba9ull, 0x000000012492492eull, 0x00000000048d1592ull},
    {0x0000000000000007ull, 0x0000000100000007ull, 0x0000000000000000ull, 0x0000000000000007ull},
    {0xfedcba9876543210ull, 0x0000000123456789ull, 0x00000000e0000000ull, 0x0000000096543210ull},
    {0xfedcba9876543210ull, 0x8000000000000000ull, 0x0000000000000001ull, 0x7edcba9876543210ull},
    {0x00000001ffffffffull, 0x00000000ffffffffull, 0x0000000000000002ull, 0x0000000000000001ull},
    {0x7fffffffffffffffull, 0x0000000080000000ull, 0x00000000ffffffffull, 0x000000007fffffffull},
    {0x00000000000f4240ull, 0x0000000000000007ull, 0x0000000000022e09ull, 0x0000000000000001ull},
};

struct S64Case {
  int64_t n, d, q, r;
};
constexpr int64_t ll_min = -9223372036854775807ll - 1;
constexpr int64_t ll_max = 9223372036854775807ll;
const S64Case s64_cases[] = {
    {-7, 2, -3, -1},
    {7, -2, -3, 1},
    {-7, -2, 3, -1},
    {7, 2, 3, 1},
    {ll_min, -1, ll_min, 0}, // wraps, no trap
    {ll_min, 1, ll_min, 0},
    {ll_min, ll_max, -1, -1},
    {ll_max, ll_min, 0, ll_max},
    {ll_min, ll_min, 1, 0},
    {-1, ll_min, 0, -1},
    {ll_min, 2, -4611686018427387904ll, 0},
    {ll_min, 3, -3074457345618258602ll, -2},
    {-1000000000000000000ll, 7, -142857142857142857ll, -1},
    {-1099511627776ll, 4294967297ll, -255, -4294967041ll},
    {ll_max, -1, -ll_max, 0},
    {0, -5, 0, 0},
    {-5, 10, 0, -5},
    {123456789012345ll, -1000, -123456789012ll, 345},
};

} // namespace

TEST(Divide, Unsigned32) {
  for (const U32Case &c : u32_cases) {
    EXPECT_EQ(__aeabi_uidiv(c.n, c.d), c.q);
    auto regs = call32(__aeabi_uidivmod, c.n, c.d);
    EXPECT_EQ(regs.r[0], c.q);
    EXPECT_EQ(regs.r[1], c.r);
    EXPECT_TRUE(regs.preserved);
  }
}

TEST(Divide, Signed32) {
  for (const S32Case &c : s32_cases) {
    EXPECT_EQ(__aeabi_idiv(c.n, c.d), c.q);
    auto regs = call32(__aeabi_idivmod, static_cast<uint32_t>(c.n), static_cast<uint32_t>(c.d));
    EXPECT_EQ(static_cast<int32_t>(regs.r[0]), c.q);
    EXPECT_EQ(static_cast<int32_t>(regs.r[1]), c.r);
    EXPECT_TRUE(regs.preserved);
  }
}

// Quotient in r0:r1 and remainder in r2:r3, low words first.
TEST(Divide, Unsigned64Registers) {
  for (const U64Case &c : u64_cases) {
    auto regs = call64(__aeabi_uldivmod, c.n, c.d);
    EXPECT_EQ(pair(regs.r[0], regs.r[1]), c.q);
    EXPECT_EQ(pair(regs.r[2], regs.r[3]), c.r);
    EXPECT_TRUE(regs.preserved);
  }
}

TEST(Divide, Signed64Registers) {
  for (const S64Case &c : s64_cases) {
    auto regs =
        call64(__aeabi_ldivmod, static_cast<uint64_t>(c.n), static_cast<uint64_t>(c.d));
    EXPECT_EQ(static_cast<int64_t>(pair(regs.r[0], regs.r[1])), c.q);
    EXPECT_EQ(static_cast<int64_t>(pair(regs.r[2], regs.r[3])), c.r);
    EXPECT_TRUE(regs.preserved);
  }
}

// What compiled code gets from the / and % operators, which it turns into these helpers.
TEST(Divide, OperatorsUseTheHelpers) {
  volatile uint64_t n = 0xfedcba9876543210ull, d = 0x123456789ull;
  EXPECT_EQ(n / d, 0xe0000000ull);
  EXPECT_EQ(n % d, 0x96543210ull);
  volatile int64_t sn = -7, sd = 2;
  EXPECT_EQ(sn / sd, -3);
  EXPECT_EQ(sn % sd, -1);
  volatile uint32_t un = 0xdeadbeefu, ud = 0x1234u;
  EXPECT_EQ(un / ud, 0xc3ba5u);
  EXPECT_EQ(un % ud, 0x76bu);
}

namespace {

uint64_t state = 0x9e3779b97f4a7c15ull;
uint64_t next_random() { return kvtest::xorshift64(state); }
// Operands of every bit length, so that all normalisation distances occur.
uint64_t random_operand() {
  uint64_t v = next_random();
  return v >> (next_random() & 63);
}
uint32_t random_operand32() {
  return static_cast<uint32_t>(next_random()) >> (next_random() & 31);
}
uint64_t nonzero(uint64_t v) { return v ? v : 1; }

// Reports the first few mismatches of a sweep with their operands.
int mismatches;
void report(const char *helper, uint64_t n, uint64_t d) {
  if (++mismatches > 3)
    return;
  kvtest::out(helper);
  kvtest::out(" wrong for n = 0x");
  kvtest::out_hex(n);
  kvtest::out(", d = 0x");
  kvtest::out_hex(d);
  kvtest::out("\n");
}

constexpr int random_pairs = 3000;

} // namespace

TEST(Divide, RandomUnsigned64) {
  mismatches = 0;
  for (int i = 0; i < random_pairs; ++i) {
    uint64_t n = random_operand(), d = nonzero(random_operand());
    uint64_t q, r;
    long_division(n, d, q, r);
    auto regs = call64(__aeabi_uldivmod, n, d);
    if (pair(regs.r[0], regs.r[1]) != q || pair(regs.r[2], regs.r[3]) != r)
      report("__aeabi_uldivmod", n, d);
  }
  EXPECT_EQ(mismatches, 0);
}

TEST(Divide, RandomSigned64) {
  mismatches = 0;
  for (int i = 0; i < random_pairs; ++i) {
    auto n = static_cast<int64_t>(random_operand());
    auto d = static_cast<int64_t>(nonzero(random_operand()));
    if (i & 1)
      n = static_cast<int64_t>(0 - static_cast<uint64_t>(n));
    if (i & 2)
      d = static_cast<int64_t>(0 - static_cast<uint64_t>(d));
    int64_t q, r;
    signed_long_division(n, d, q, r);
    auto regs = call64(__aeabi_ldivmod, static_cast<uint64_t>(n), static_cast<uint64_t>(d));
    if (static_cast<int64_t>(pair(regs.r[0], regs.r[1])) != q ||
        static_cast<int64_t>(pair(regs.r[2], regs.r[3])) != r)
      report("__aeabi_ldivmod", static_cast<uint64_t>(n), static_cast<uint64_t>(d));
  }
  EXPECT_EQ(mismatches, 0);
}

TEST(Divide, Random32) {
  mismatches = 0;
  for (int i = 0; i < random_pairs; ++i) {
    uint32_t n = random_operand32();
    auto d = static_cast<uint32_t>(nonzero(random_operand32()));
    uint64_t q, r;
    long_division(n, d, q, r);
    auto u = call32(__aeabi_uidivmod, n, d);
    if (u.r[0] != q || u.r[1] != r || __aeabi_uidiv(n, d) != q)
      report("__aeabi_uidivmod", n, d);

    auto sn = static_cast<int32_t>(n), sd = static_cast<int32_t>(d);
    if (i & 1)
      sn = static_cast<int32_t>(0 - n);
    if (i & 2)
      sd = static_cast<int32_t>(0 - d);
    int64_t sq, sr;
    signed_long_division(sn, sd, sq, sr);
    // INT_MIN / -1 wraps to INT_MIN, which truncating the 64-bit quotient also gives.
    auto s = call32(__aeabi_idivmod, static_cast<uint32_t>(sn), static_cast<uint32_t>(sd));
    if (s.r[0] != static_cast<uint32_t>(sq) || s.r[1] != static_cast<uint32_t>(sr) ||
        __aeabi_idiv(sn, sd) != static_cast<int32_t>(sq))
      report("__aeabi_idivmod", static_cast<uint32_t>(sn), static_cast<uint32_t>(sd));
  }
  EXPECT_EQ(mismatches, 0);
}
