// Conversions on the target: truncation and rounding, saturation by sign, NaN to 0, and the
// integer-to-floating direction at its rounding points.
#include <kvtest.h>

#include <fp_names.h>

using namespace fp_test;

namespace {

struct ToInt {
  uint64_t v; // a double
  int32_t fix, fix_r;
  uint32_t fixu, fixu_r;
  int64_t sfrom, sfrom_r;
  uint64_t ufrom, ufrom_r;
};

constexpr int32_t kMin32 = -2147483647 - 1;
constexpr int64_t kMin64 = -9223372036854775807ll - 1;
const ToInt to_int[] = {
    // 3.9, -3.9, 2.5, -2.5, 0.5
    {0x400f333333333333ull, 3, 4, 3, 4, 3, 4, 3, 4},
    {0xc00f333333333333ull, -3, -4, 3, 4, -3, -4, 3, 4},
    {0x4004000000000000ull, 2, 2, 2, 2, 2, 2, 2, 2},
    {0xc004000000000000ull, -2, -2, 2, 2, -2, -2, 2, 2},
    {0x3fe0000000000000ull, 0, 0, 0, 0, 0, 0, 0, 0},
    // 1e10, -1e10
    {0x4202a05f20000000ull, 0x7fffffff, 0x7fffffff, 0xffffffffu, 0xffffffffu, 10000000000ll,
     10000000000ll, 10000000000ull, 10000000000ull},
    {0xc202a05f20000000ull, kMin32, kMin32, 0, 0, -10000000000ll, -10000000000ll, 10000000000ull,
     10000000000ull},
    // 2^31 - 0.5, -2^31, 2^32 - 0.5 (both ties round up to even)
    {0x41dfffffffe00000ull, 0x7fffffff, 0x7fffffff, 0x7fffffffu, 0x80000000u, 2147483647,
     2147483648ll, 2147483647, 2147483648ull},
    {0xc1e0000000000000ull, kMin32, kMin32, 0x80000000u, 0x80000000u, kMin32, kMin32,
     0x80000000ull, 0x80000000ull},
    {0x41effffffff00000ull, 0x7fffffff, 0x7fffffff, 0xffffffffu, 0xffffffffu, 4294967295ll,
     4294967296ll, 4294967295ull, 4294967296ull},
    // 2^63, -2^63, 2^64, 1e300
    {0x43e0000000000000ull, 0x7fffffff, 0x7fffffff, 0xffffffffu, 0xffffffffu,
     9223372036854775807ll, 9223372036854775807ll, 0x8000000000000000ull, 0x8000000000000000ull},
    {0xc3e0000000000000ull, kMin32, kMin32, 0, 0, kMin64, kMin64, 0x8000000000000000ull,
     0x8000000000000000ull},
    {0x43f0000000000000ull, 0x7fffffff, 0x7fffffff, 0xffffffffu, 0xffffffffu,
     9223372036854775807ll, 9223372036854775807ll, ~0ull, ~0ull},
    {0x7e37e43c8800759cull, 0x7fffffff, 0x7fffffff, 0xffffffffu, 0xffffffffu,
     9223372036854775807ll, 9223372036854775807ll, ~0ull, ~0ull},
    // NaN, -inf, a subnormal
    {kDNaN, 0, 0, 0, 0, 0, 0, 0, 0},
    {0xfff0000000000000ull, kMin32, kMin32, 0, 0, kMin64, kMin64, 0, 0},
    {0x0000000000000001ull, 0, 0, 0, 0, 0, 0, 0, 0},
};

} // namespace

TEST(FpConvert, DoubleToIntegers) {
  for (const ToInt &c : to_int) {
    double v = dbl(c.v);
    EXPECT_EQ(_dfix(v), c.fix);
    EXPECT_EQ(_dfix_r(v), c.fix_r);
    EXPECT_EQ(_dfixu(v), c.fixu);
    EXPECT_EQ(_dfixu_r(v), c.fixu_r);
    EXPECT_EQ(_ll_sfrom_d(v), c.sfrom);
    EXPECT_EQ(_ll_sfrom_d_r(v), c.sfrom_r);
    EXPECT_EQ(_ll_ufrom_d(v), c.ufrom);
    EXPECT_EQ(_ll_ufrom_d_r(v), c.ufrom_r);
    EXPECT_EQ(__aeabi_d2iz(v), c.fix);
    EXPECT_EQ(__aeabi_d2uiz(v), c.fixu);
    EXPECT_EQ(__aeabi_d2lz(v), c.sfrom);
    EXPECT_EQ(__aeabi_d2ulz(v), c.ufrom);
  }
}

// The same table through float where the value is a float exactly.
TEST(FpConvert, FloatToIntegers) {
  for (const ToInt &c : to_int) {
    float f = _d2f(dbl(c.v));
    if (bits(_f2d(f)) != c.v)
      continue;
    EXPECT_EQ(_ffix(f), c.fix);
    EXPECT_EQ(_ffix_r(f), c.fix_r);
    EXPECT_EQ(_ffixu(f), c.fixu);
    EXPECT_EQ(_ffixu_r(f), c.fixu_r);
    EXPECT_EQ(_ll_sfrom_f(f), c.sfrom);
    EXPECT_EQ(_ll_sfrom_f_r(f), c.sfrom_r);
    EXPECT_EQ(_ll_ufrom_f(f), c.ufrom);
    EXPECT_EQ(_ll_ufrom_f_r(f), c.ufrom_r);
    EXPECT_EQ(__aeabi_f2iz(f), c.fix);
    EXPECT_EQ(__aeabi_f2lz(f), c.sfrom);
  }
  EXPECT_EQ(_ffix(flt(0x7fc00000u)), 0);
  EXPECT_EQ(_ffix(flt(0xcf000001u)), kMin32);
}

TEST(FpConvert, FromIntegers) {
  struct Case {
    uint64_t v;
    uint64_t as_signed_d, as_unsigned_d;
    uint32_t as_signed_f, as_unsigned_f;
  };
  // 64-bit sources: 2^53 + 1 (tie to even), 2^53 + 3 (tie up), -1, 2^63 - 1, 2^24 + 1.
  const Case cases[] = {
      {0x0020000000000001ull, 0x4340000000000000ull, 0x4340000000000000ull, 0x5a000000u,
       0x5a000000u},
      {0x0020000000000003ull, 0x4340000000000002ull, 0x4340000000000002ull, 0x5a000000u,
       0x5a000000u},
      {~0ull, 0xbff0000000000000ull, 0x43f0000000000000ull, 0xbf800000u, 0x5f800000u},
      {0x7fffffffffffffffull, 0x43e0000000000000ull, 0x43e0000000000000ull, 0x5f000000u,
       0x5f000000u},
      {0x0000000001000001ull, 0x4170000010000000ull, 0x4170000010000000ull, 0x4b800000u,
       0x4b800000u},
      {0, 0, 0, 0, 0},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(bits(_ll_sto_d(static_cast<int64_t>(c.v))), c.as_signed_d);
    EXPECT_EQ(bits(_ll_uto_d(c.v)), c.as_unsigned_d);
    EXPECT_EQ(bits(_ll_sto_f(static_cast<int64_t>(c.v))), c.as_signed_f);
    EXPECT_EQ(bits(_ll_uto_f(c.v)), c.as_unsigned_f);
  }
  EXPECT_EQ(bits(_dflt(-2147483647 - 1)), 0xc1e0000000000000ull);
  EXPECT_EQ(bits(_dfltu(0xffffffffu)), 0x41efffffffe00000ull);
  EXPECT_EQ(bits(_fflt(16777217)), 0x4b800000u);
  EXPECT_EQ(bits(_fflt(16777219)), 0x4b800002u);
  EXPECT_EQ(bits(_ffltu(0xffffffffu)), 0x4f800000u);
}

TEST(FpConvert, BetweenFormats) {
  struct Case {
    uint64_t d;
    uint32_t f;
  };
  // Narrowing: exact, tie to even, tie up, overflow, just under the float range's bottom.
  const Case narrow[] = {
      {0x3ff0000000000000ull, 0x3f800000u}, {0x3ff0000010000000ull, 0x3f800000u},
      {0x3ff0000030000000ull, 0x3f800002u}, {0x47efffffefffffffull, 0x7f7fffffu},
      {0x47effffff0000000ull, 0x7f800000u}, {0xc7f0000000000000ull, 0xff800000u},
      {0x3810000000000000ull, 0x00800000u}, {0xb80fffffffffffffull, 0x80000000u},
      {0x0000000000000001ull, 0x00000000u}, {kDNaN, kFNaN},
  };
  for (const Case &c : narrow)
    EXPECT_EQ(bits(_d2f(dbl(c.d))), c.f);
  const Case widen[] = {
      {0x3ff0000000000000ull, 0x3f800000u}, {0xc7efffffe0000000ull, 0xff7fffffu},
      {0x3810000000000000ull, 0x00800000u}, {0x8000000000000000ull, 0x807fffffu},
      {0xfff0000000000000ull, 0xff800000u},
  };
  for (const Case &c : widen)
    EXPECT_EQ(bits(_f2d(flt(c.f))), c.d);
}
