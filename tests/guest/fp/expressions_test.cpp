// Ordinary double and float code compiled for the target: every operation becomes a call to
// an __aeabi_ name that libc.so provides. volatile keeps the compiler from folding.
#include <kvtest.h>

#include <fp_names.h>

using namespace fp_test;

namespace {

volatile double d_three = 3.0, d_seven = 7.0, d_half = 0.5, d_big = 1e308, d_nan;
volatile float f_three = 3.0f, f_seven = 7.0f, f_big = 3e38f;
volatile int i_minus = -5;
volatile unsigned u_big = 4000000000u;
volatile long long ll_big = 9007199254740993ll;
volatile unsigned long long ull_big = 18446744073709551615ull;

// A short Horner evaluation: mixed operations whose exact result is known.
double horner(double x) { return ((2.0 * x - 3.0) * x + 0.5) / 4.0; }

} // namespace

TEST(FpExpressions, DoubleOperators) {
  double a = d_three, b = d_seven;
  EXPECT_EQ(bits(a + b), bits(10.0));
  EXPECT_EQ(bits(a - b), bits(-4.0));
  EXPECT_EQ(bits(a * b), bits(21.0));
  EXPECT_EQ(bits(a / b), 0x3fdb6db6db6db6dbull);
  EXPECT_EQ(bits(b / a), 0x4002aaaaaaaaaaabull);
  EXPECT_EQ(bits(horner(d_seven)), bits(19.375));
  EXPECT_EQ(bits(d_big * 10.0), kDInf);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(a <= b);
  EXPECT_FALSE(a > b);
  EXPECT_FALSE(a >= b);
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a == b);
  d_nan = dbl(kDNaN);
  double n = d_nan;
  EXPECT_FALSE(n == n);
  EXPECT_TRUE(n != n);
  EXPECT_FALSE(n < a || n > a || n <= a || n >= a);
  EXPECT_TRUE(__builtin_isnan(n));
  EXPECT_FALSE(__builtin_isnan(a));
  // Branches on comparisons, as loops write them.
  int steps = 0;
  for (double x = d_half; x < b; x = x * 2.0)
    ++steps;
  EXPECT_EQ(steps, 4);
}

TEST(FpExpressions, FloatOperators) {
  float a = f_three, b = f_seven;
  EXPECT_EQ(bits(a + b), bits(10.0f));
  EXPECT_EQ(bits(a - b), bits(-4.0f));
  EXPECT_EQ(bits(a * b), bits(21.0f));
  EXPECT_EQ(bits(a / b), 0x3edb6db7u);
  EXPECT_EQ(bits(f_big * 10.0f), kFInf);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b >= a);
  EXPECT_FALSE(a == b);
  float sum = 0.0f;
  for (int i = 0; i < 10; ++i)
    sum += 0.1f;
  EXPECT_EQ(bits(sum), 0x3f800001u);
}

TEST(FpExpressions, Conversions) {
  EXPECT_EQ(bits(static_cast<double>(i_minus)), bits(-5.0));
  EXPECT_EQ(bits(static_cast<double>(u_big)), bits(4000000000.0));
  EXPECT_EQ(bits(static_cast<double>(ll_big)), 0x4340000000000000ull);
  EXPECT_EQ(bits(static_cast<double>(ull_big)), 0x43f0000000000000ull);
  EXPECT_EQ(bits(static_cast<float>(i_minus)), bits(-5.0f));
  EXPECT_EQ(bits(static_cast<float>(u_big)), 0x4f6e6b28u);
  EXPECT_EQ(bits(static_cast<float>(ll_big)), 0x5a000000u);
  EXPECT_EQ(bits(static_cast<float>(ull_big)), 0x5f800000u);
  double d = d_seven / d_three;
  EXPECT_EQ(static_cast<int>(d), 2);
  EXPECT_EQ(static_cast<int>(-d), -2);
  EXPECT_EQ(static_cast<unsigned>(d * 1e9), 2333333333u);
  EXPECT_EQ(static_cast<long long>(d * 1e15), 2333333333333333ll);
  EXPECT_EQ(static_cast<unsigned long long>(d * 7e18), 0xe2aba82103615800ull);
  float f = static_cast<float>(d);
  EXPECT_EQ(bits(f), 0x40155555u);
  EXPECT_EQ(bits(static_cast<double>(f)), 0x4002aaaaa0000000ull);
  EXPECT_EQ(static_cast<int>(f * 100.0f), 233);
  EXPECT_EQ(static_cast<long long>(f * 1e10f), 23333332992ll);
}
