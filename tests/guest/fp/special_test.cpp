// The arithmetic entries on the target: vectors, the special values, and the exported data.
#include <kvtest.h>

#include <fp_names.h>
#include "vectors.h"

using namespace fp_test;

TEST(FpArith, DoubleVectors) {
  for (const DoubleVector &v : double_vectors) {
    double a = dbl(v.a), b = dbl(v.b);
    EXPECT_EQ(bits(_dadd(a, b)), v.add);
    EXPECT_EQ(bits(_dsub(a, b)), v.sub);
    EXPECT_EQ(bits(_drsb(b, a)), v.sub);
    EXPECT_EQ(bits(_dmul(a, b)), v.mul);
    EXPECT_EQ(bits(_ddiv(a, b)), v.div);
    EXPECT_EQ(bits(_drdiv(b, a)), v.div);
    EXPECT_EQ(bits(_drem(a, b)), v.rem);
    EXPECT_EQ(bits(_dsqrt(dbl(v.a & ~(1ull << 63)))), v.sqrt_a);
  }
}

TEST(FpArith, FloatVectors) {
  for (const FloatVector &v : float_vectors) {
    float a = flt(v.a), b = flt(v.b);
    EXPECT_EQ(bits(_fadd(a, b)), v.add);
    EXPECT_EQ(bits(_fsub(a, b)), v.sub);
    EXPECT_EQ(bits(_frsb(b, a)), v.sub);
    EXPECT_EQ(bits(_fmul(a, b)), v.mul);
    EXPECT_EQ(bits(_fdiv(a, b)), v.div);
    EXPECT_EQ(bits(_frdiv(b, a)), v.div);
    EXPECT_EQ(bits(_frem(a, b)), v.rem);
    EXPECT_EQ(bits(_fsqrt(flt(v.a & 0x7fffffffu))), v.sqrt_a);
  }
}

TEST(FpArith, EdgeCases) {
  const double smallest = dbl(1);
  EXPECT_EQ(bits(_dadd(1.0, dbl(0x3ca0000000000000ull))), bits(1.0));             // 1 + 2^-53
  EXPECT_EQ(bits(_dadd(dbl(0x3ff0000000000001ull), dbl(0x3ca0000000000000ull))),
            0x3ff0000000000002ull);                                               // 1 + 2^-51
  EXPECT_EQ(bits(_dadd(smallest, smallest)), 0ull);
  EXPECT_EQ(bits(_dadd(1.0, smallest)), bits(1.0));
  EXPECT_EQ(bits(_dmul(dbl(0x1a70000000000000ull), dbl(0x23d0000000000000ull))), 0ull);
  EXPECT_EQ(bits(_dmul(dbl(0x8000000000000000ull), 5.0)), 0x8000000000000000ull);
  EXPECT_EQ(bits(_dmul(dbl(kDInf), 0.0)), kDNaN);
  EXPECT_EQ(bits(_f2d(flt(1))), 0ull);
  EXPECT_EQ(bits(_dsqrt(-1.0)), kDNaN);
  EXPECT_EQ(bits(_d2f(dbl(0x7fefffffffffffffull))), kFInf);
  EXPECT_TRUE(is_nan(bits(_f2d(flt(0x7fc00001u)))));
  EXPECT_EQ(_deq(dbl(kDNaN), dbl(kDNaN)), 0);
  EXPECT_EQ(_dneq(dbl(kDNaN), dbl(kDNaN)), 1);
  EXPECT_EQ(_dun(1.0, dbl(kDNaN)), 1);
  EXPECT_EQ(_fun(1.0f, flt(kFNaN)), 1);
  EXPECT_EQ(_feq(flt(1), 0.0f), 1);
}

// Invalid operations give the default NaN; overflow a signed infinity; tiny results a zero of
// the result's sign.
TEST(FpArith, SpecialResults) {
  struct Case {
    uint64_t got, want;
  };
  const double inf = dbl(kDInf), big = dbl(0x7fe0000000000000ull), tiny = dbl(0x0010000000000000ull);
  const Case cases[] = {
      {bits(_dsub(inf, inf)), kDNaN},
      {bits(_ddiv(0.0, dbl(1))), kDNaN},
      {bits(_ddiv(inf, -inf)), kDNaN},
      {bits(_drem(1.0, 0.0)), kDNaN},
      {bits(_drem(inf, 1.0)), kDNaN},
      {bits(_drem(5.0, inf)), bits(5.0)},
      {bits(_dadd(big, big)), kDInf},
      {bits(_dmul(-big, 4.0)), 0xfff0000000000000ull},
      {bits(_ddiv(-1.0, 0.0)), 0xfff0000000000000ull},
      {bits(_ddiv(1.0, inf)), 0ull},
      {bits(_dmul(-tiny, 0.5)), 0x8000000000000000ull},
      {bits(_ddiv(tiny, -3.0)), 0x8000000000000000ull},
      {bits(_dsub(tiny, dbl(0x0010000000000001ull))), 0x8000000000000000ull},
      {bits(_dsub(3.0, 3.0)), 0ull},
      {bits(_dadd(-0.0, -0.0)), 0x8000000000000000ull},
      {bits(_dadd(-0.0, 0.0)), 0ull},
      {bits(_drnd(2.5)), bits(2.0)},
      {bits(_drnd(-3.5)), bits(-4.0)},
      {bits(_drnd(-0.25)), 0x8000000000000000ull},
      {bits(_drnd(0.5000000000000001)), bits(1.0)},
      {bits(_nextafter(1.0, 2.0)), 0x3ff0000000000001ull},
      {bits(_nextafter(0.0, -1.0)), 0x8000000000000001ull},
      {bits(__ARM_scalbn(1.0, 1023)), 0x7fe0000000000000ull},
      {bits(__ARM_scalbn(1.0, 1024)), kDInf},
      {bits(__ARM_scalbn(1.0, -1074)), 1ull},
      {bits(__ARM_scalbn(-3.0, -100000)), 0x8000000000000000ull},
  };
  for (const Case &c : cases)
    EXPECT_EQ(c.got, c.want);
  EXPECT_EQ(bits(_fsub(flt(kFInf), flt(kFInf))), kFNaN);
  EXPECT_EQ(bits(_fmul(flt(0x7f000000u), 2.0f)), kFInf);
  EXPECT_EQ(bits(_frnd(-1.5f)), bits(-2.0f));
  EXPECT_EQ(bits(_nextafterf(1.0f, 0.0f)), 0x3f7fffffu);
  EXPECT_EQ(bits(__fpl_nextafterf_nexttowardf_internal_entry(1.0f, 2.0f)), 0x3f800001u);
  EXPECT_EQ(bits(__ARM_scalbnf(1.0f, -149)), 1u);
  EXPECT_EQ(bits(__ARM_scalbnf(-1.0f, 128)), 0xff800000u);
}

TEST(FpArith, ExportedData) {
  const double *infinities[] = {&__dInf, &__huge_val, &__aeabi_HUGE_VAL, &__aeabi_HUGE_VALL,
                                &__aeabi_INFINITY};
  for (const double *p : infinities)
    EXPECT_EQ(bits(*p), kDInf);
  EXPECT_EQ(bits(__dNaN), kDNaN);
  EXPECT_EQ(bits(__aeabi_NAN), kDNaN);
  EXPECT_EQ(bits(__fInf), kFInf);
  EXPECT_EQ(bits(__aeabi_HUGE_VALF), kFInf);
  EXPECT_EQ(__fplib_config_pureend_doubles, 1);
  void *const handlers[] = {__fpl_invalid_handler, __fpl_divbyzero_handler,
                            __fpl_overflow_handler, __fpl_underflow_handler,
                            __fpl_inexact_handler};
  for (void *h : handlers)
    EXPECT_TRUE(h == nullptr);
  EXPECT_EQ(__fpl_lock, 0u);
}
