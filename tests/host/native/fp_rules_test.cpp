// The library's own rules where the host FPU decides differently, and the exported entries on
// the host build: each class as a table.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <vector>

#include "fp/softfloat.h"
#include "fp_reference.h"
#include "fp_names.h"

extern "C" {
double __fpl_dnaninf(double, double, uint32_t);
double __fpl_dretinf(uint32_t);
double __dflt_normalise(uint32_t, uint64_t);
}

namespace {

using namespace fptest;

constexpr uint64_t kDNaN = 0x7ff8000000000000, kDInf = 0x7ff0000000000000;
constexpr uint32_t kFNaN = 0x7fc00000, kFInf = 0x7f800000;

// Tininess is judged before rounding: an exact result just below the smallest normal that
// rounds up to it is still flushed. The host (judging after rounding) keeps the smallest normal.
TEST(NativeFpRules, TininessBeforeRounding) {
  struct Case {
    uint64_t a, b;
  };
  // (1 + 2^-52) * (2 - 2^-51) = 2 - 2^-103, scaled to just below 2^-1022.
  const Case dmul_cases[] = {
      {make<uint64_t>(0, 1023 - 500, 1), make<uint64_t>(0, 1023 - 523, ~0ull - 1)},
      {make<uint64_t>(1, 1023 - 500, 1), make<uint64_t>(0, 1023 - 523, ~0ull - 1)},
      {make<uint64_t>(0, 1023 - 1, 1), make<uint64_t>(1, 1023 - 1022, ~0ull - 1)},
  };
  FlushToZero ftz;
  for (const Case &c : dmul_cases) {
    uint64_t ours = kv::fp::dmul(c.a, c.b), host = bits(dbl(c.a) * dbl(c.b));
    EXPECT_EQ(ours, (c.a ^ c.b) & sign_bit<uint64_t>) << std::hex << c.a << " " << c.b;
    EXPECT_EQ(host & ~sign_bit<uint64_t>, 0x0010000000000000u) << std::hex << c.a;
  }
  // (1 + 2^-23) * (2 - 2^-22) in float.
  uint32_t fa = make<uint32_t>(0, 127 - 60, 1), fb = make<uint32_t>(1, 127 - 67, ~0u - 1);
  EXPECT_EQ(kv::fp::fmul(fa, fb), 0x80000000u);
  EXPECT_EQ(bits(flt(fa) * flt(fb)), 0x80800000u);
  // Narrowing just below the smallest normal float.
  const uint64_t narrow[] = {0x380fffffffffffff, 0xb80ffffff0000000, 0x380ffffff0000001};
  for (uint64_t a : narrow) {
    EXPECT_EQ(kv::fp::f_from_d(a), static_cast<uint32_t>(a >> 32) & 0x80000000u) << std::hex << a;
    EXPECT_EQ(bits(static_cast<float>(dbl(a))) & 0x7fffffffu, 0x00800000u) << std::hex << a;
  }
}

// Invalid operations give the positive default NaN (the host's is negative); an operation with
// a NaN operand gives that operand made quiet, the first one when both are NaN.
TEST(NativeFpRules, NaNResults) {
  constexpr uint64_t snan = 0x7ff0000000000001, qnan = 0xfff8000000000123;
  constexpr uint64_t one = 0x3ff0000000000000, zero = 0, neg_inf = 0xfff0000000000000;
  struct Case {
    const char *what;
    uint64_t got, want;
  };
  const Case cases[] = {
      {"inf-inf", kv::fp::dsub(kDInf, kDInf), kDNaN},
      {"inf+-inf", kv::fp::dadd(neg_inf, kDInf), kDNaN},
      {"0*inf", kv::fp::dmul(zero, neg_inf), kDNaN},
      {"subnormal*inf", kv::fp::dmul(1, kDInf), kDNaN},
      {"0/0", kv::fp::ddiv(zero, 0x8000000000000000), kDNaN},
      {"inf/inf", kv::fp::ddiv(neg_inf, kDInf), kDNaN},
      {"sqrt(-1)", kv::fp::dsqrt(0xbff0000000000000), kDNaN},
      {"sqrt(-inf)", kv::fp::dsqrt(neg_inf), kDNaN},
      {"rem(1,0)", kv::fp::drem(one, zero), kDNaN},
      {"rem(1,subnormal)", kv::fp::drem(one, 5), kDNaN},
      {"rem(inf,1)", kv::fp::drem(kDInf, one), kDNaN},
      {"snan+1", kv::fp::dadd(snan, one), snan | 0x0008000000000000},
      {"1*snan", kv::fp::dmul(one, snan), snan | 0x0008000000000000},
      {"qnan/snan", kv::fp::ddiv(qnan, snan), qnan},
      {"snan-qnan", kv::fp::dsub(snan, qnan), snan | 0x0008000000000000},
      {"sqrt(qnan)", kv::fp::dsqrt(qnan), qnan},
      {"rnd(snan)", kv::fp::drnd(snan), snan | 0x0008000000000000},
      {"f2d(snan)", kv::fp::d_from_f(0x7f800001), 0x7ff8000020000000},
  };
  for (const Case &c : cases)
    EXPECT_EQ(c.got, c.want) << c.what;
  const struct {
    const char *what;
    uint32_t got, want;
  } fcases[] = {
      {"inf-inf", kv::fp::fsub(kFInf, kFInf), kFNaN},
      {"0*inf", kv::fp::fmul(0x80000000, kFInf), kFNaN},
      {"0/0", kv::fp::fdiv(0, 0), kFNaN},
      {"sqrt(-2)", kv::fp::fsqrt(0xc0000000), kFNaN},
      {"rem(inf,2)", kv::fp::frem(kFInf, 0x40000000), kFNaN},
      {"d2f(qnan)", kv::fp::f_from_d(0xfff8000000000123 | 0x0004000000000000), 0xffe00000},
  };
  for (const auto &c : fcases)
    EXPECT_EQ(c.got, c.want) << c.what;
}

// Unsigned conversions of negative values: below 2^width in magnitude the truncated (or
// rounded) magnitude, from there on 0. The host's conversions leave these undefined.
TEST(NativeFpRules, UnsignedFromNegative) {
  struct Case {
    double v;
    uint32_t u32;
    uint64_t u64;
  };
  const Case cases[] = {
      {-3.9, 3, 3},
      {-0.9, 0, 0},
      {-4294967295.0, 0xffffffff, 0xffffffff},
      {-4294967296.0, 0, 4294967296},
      {-1e19, 0, 10000000000000000000u},
      {-18446744073709551616.0, 0, 0},
      {-1e300, 0, 0},
      {-__builtin_inf(), 0, 0},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(_dfixu(c.v), c.u32) << c.v;
    EXPECT_EQ(_ll_ufrom_d(c.v), c.u64) << c.v;
  }
  EXPECT_EQ(_ffixu_r(-2.5f), 2u);
  EXPECT_EQ(_ffixu_r(-4294967040.0f), 4294967040u);
  EXPECT_EQ(_ll_ufrom_f(-7.75f), 7u);
}

// The edge cases every implementation of these routines must get right, through the exported
// entries.
TEST(NativeFpRules, ExportedEdgeCases) {
  const double tiny = dbl(1), one = 1.0, nan = dbl(kDNaN);
  EXPECT_EQ(bits(_dadd(one, 0x1p-53)), bits(one));
  EXPECT_EQ(bits(_dadd(1.0 + 0x1p-52, 0x1p-53)), bits(1.0 + 0x1p-51));
  EXPECT_EQ(bits(_dadd(tiny, tiny)), 0u);
  EXPECT_EQ(bits(_dadd(one, tiny)), bits(one));
  EXPECT_EQ(bits(_drsb(one, 3.0)), bits(2.0));
  EXPECT_EQ(bits(_dmul(0x1p-600, 0x1p-450)), 0u);
  EXPECT_EQ(bits(_dmul(-0.0, 5.0)), 0x8000000000000000u);
  EXPECT_EQ(bits(_dmul(__builtin_inf(), 0.0)), kDNaN);
  EXPECT_EQ(bits(_drdiv(4.0, 1.0)), bits(0.25));
  EXPECT_EQ(bits(_f2d(flt(1))), 0u);
  EXPECT_EQ(bits(_dsqrt(-1.0)), kDNaN);
  EXPECT_EQ(_dfix(3.9), 3);
  EXPECT_EQ(_dfix(-3.9), -3);
  EXPECT_EQ(_dfix(1e10), 0x7fffffff);
  EXPECT_EQ(_dfix(-1e10), static_cast<int32_t>(0x80000000));
  EXPECT_EQ(_dfix(nan), 0);
  EXPECT_EQ(_dfix_r(2.5), 2);
  EXPECT_EQ(_dfix_r(-3.5), -4);
  EXPECT_EQ(_ll_sfrom_d(-1e30), INT64_MIN);
  EXPECT_EQ(_ll_sfrom_d(9.3e18), INT64_MAX);
  EXPECT_EQ(bits(_d2f(1.7976931348623157e308)), kFInf);
  EXPECT_TRUE(is_nan(bits(_f2d(flt(0x7fc00001)))));
  EXPECT_EQ(kv::fp::dcmp(bits(one), kDNaN), kv::fp::kUnordered);
  EXPECT_EQ(_deq(nan, nan), 0);
  EXPECT_EQ(_dneq(nan, nan), 1);
  EXPECT_EQ(_dun(one, nan), 1);
  EXPECT_EQ(_dun(one, one), 0);
  EXPECT_EQ(_fls(1.0f, 2.0f), 1);
  EXPECT_EQ(bits(__fpl_dretinf(0x80000000)), 0xfff0000000000000u);
  EXPECT_EQ(bits(__fpl_dnaninf(__builtin_inf(), -__builtin_inf(), 0)), kDNaN);
  EXPECT_EQ(bits(__dflt_normalise(1, 0x8000000000000000)), bits(-0x1p63));
}

// Every relation over one ordered set of values (subnormals sit with the zeros), both orders.
TEST(NativeFpRules, Relations) {
  const double ladder[] = {-__builtin_inf(), -1e300, -1.0, -0x1p-1022, 0.0, 1.0, 0x1p1023,
                           __builtin_inf()};
  const double zeros[] = {0.0, -0.0, dbl(1), dbl(0x800fffffffffffff)};
  auto rank = [&](double v) {
    for (int i = 0; i < 8; ++i)
      if (bits(ladder[i]) == bits(v))
        return i;
    return 4; // a zero or subnormal
  };
  std::vector<double> values(std::begin(ladder), std::end(ladder));
  values.insert(values.end(), std::begin(zeros), std::end(zeros));
  for (double a : values)
    for (double b : values) {
      int ra = rank(a), rb = rank(b);
      EXPECT_EQ(_deq(a, b), ra == rb) << a << " " << b;
      EXPECT_EQ(_dneq(a, b), ra != rb);
      EXPECT_EQ(_dls(a, b), ra < rb);
      EXPECT_EQ(_dleq(a, b), ra <= rb);
      EXPECT_EQ(_dgr(a, b), ra > rb);
      EXPECT_EQ(_dgeq(a, b), ra >= rb);
      EXPECT_EQ(_dun(a, b), 0);
    }
}

// Stepping to a neighbour is a bit-level operation: it reaches subnormals that the arithmetic
// would read as zero.
TEST(NativeFpRules, NextAfterSubnormals) {
  struct Case {
    uint64_t x, y, want;
  };
  const Case cases[] = {
      {0, kDInf, 1},
      {0x8000000000000000, kDInf, 1},
      {0, 0xbff0000000000000, 0x8000000000000001},
      {0x0010000000000000, 0, 0x000fffffffffffff},
      {1, 0, 0},
      {0x7fefffffffffffff, kDInf, kDInf},
      {kDInf, 0, 0x7fefffffffffffff},
      {0x8000000000000000, 0, 0},
  };
  for (const Case &c : cases)
    EXPECT_EQ(kv::fp::dnextafter(c.x, c.y), c.want) << std::hex << c.x;
  EXPECT_EQ(kv::fp::fnextafter(0, 0x3f800000), 1u);
}

// Scaling underflows gradually (rounded to nearest even), unlike the arithmetic.
TEST(NativeFpRules, ScalbnSubnormalResults) {
  struct Case {
    uint64_t x;
    int n;
    uint64_t want;
  };
  const Case cases[] = {
      {0x3ff0000000000000, -1074, 1},
      {0x3ff0000000000000, -1075, 0},
      {0x3ff8000000000000, -1075, 1},
      {0xbff8000000000000, -1074, 0x8000000000000002},
      {0x3fffffffffffffff, -1023, 0x0010000000000000},
      {0x3ff0000000000001, -1022, 0x0010000000000001},
      {0x0000000000000001, 1000, 0},
  };
  for (const Case &c : cases)
    EXPECT_EQ(kv::fp::dscalbn(c.x, c.n), c.want) << std::hex << c.x << " " << std::dec << c.n;
}

} // namespace
