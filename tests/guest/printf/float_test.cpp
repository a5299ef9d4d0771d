// %e, %f, %g and %a on the target, with the soft-float arguments as programs pass them.
#include "cases.h"

namespace {
double inf() { return __builtin_inf(); }
double negative_nan() { return -__builtin_nan(""); }
} // namespace

TEST(PrintfFloat, Decimal) {
  const Case cases[] = {
      {format("%e", 0.0), "0.000000e+00", 12},
      {format("%g", 0.0), "0", 1},
      {format("%#g", 1.0), "1.00000", 7},
      {format("%g", 1e5), "100000", 6},
      {format("%g", 1e6), "1e+06", 5},
      {format("%g", 0.0001), "0.0001", 6},
      {format("%g", 0.00001), "1e-05", 5},
      {format("%.20e", 1.0 / 3), "3.33333333333333310000e-01", 26},
      {format("%f", 1e20), "100000000000000000000.000000", 28},
      {format("%f", -0.0), "-0.000000", 9},
      {format("%f", 1234.5678), "1234.567800", 11},
      {format("%e", 6.02214076e23), "6.022141e+23", 12},
      {format("%g", 0.1), "0.1", 3},
      {format("%.17g", 0.1), "0.10000000000000001", 19},
      {format("%E", 1e-300), "1.000000E-300", 13},
      {format("%.0f|%.0f|%.0f", 0.5, 1.5, 2.5), "0|2|2", 5},
      {format("%#.0f", 3.0), "3.", 2},
      {format("%.0e", 9.5), "1e+01", 5},
      {format("%.3f", 0.0005), "0.001", 5},
      {format("%.2f", 0.004), "0.00", 4},
      {format("%+010.2f", 3.14159), "+000003.14", 10},
      {format("%-10.1e|", -2.5), "-2.5e+00  |", 11},
      {format("% g", 99999.96), " 100000", 7},
      {format("%G", 1.5e-10), "1.5E-10", 7},
      {format("%g", 123456789.0), "1.23457e+08", 11},
      {format("%.3g", 0.000123456), "0.000123", 8},
      {format("%#.3g", 100.0), "100.", 4},
      {format("%.1f", 0.95), "0.9", 3},
      {format("%e", 4.9406564584124654e-324), "4.940656e-324", 13},
      {format("%.17g", 1.7976931348623157e308), "1.7976931348623157e+308", 23},
      {format("%.25f", 0.1), "0.1000000000000000100000000", 27},
  };
  CHECK_CASES(cases);
}

TEST(PrintfFloat, NonFinite) {
  const Case cases[] = {
      {format("%f", negative_nan()), "-nan", 4},
      {format("%05f|", inf()), "  inf|", 6},
      {format("%-6E|", -inf()), "-INF  |", 7},
      {format("%+g", inf()), "+inf", 4},
      {format("%A", __builtin_nan("")), "NAN", 3},
      {format("%a", -inf()), "-inf", 4},
  };
  CHECK_CASES(cases);
}

TEST(PrintfFloat, Hexadecimal) {
  const Case cases[] = {
      {format("%a", 1.0), "0x1p+0", 6},
      {format("%.1a", 1.96875), "0x1.0p+1", 8},
      {format("%a", 0.0), "0x0p+0", 6},
      {format("%.15a", 1.0), "0x1.000000000000000p+0", 22},
      {format("%A", -0.75), "-0X1.8P-1", 9},
      {format("%a", 4.9406564584124654e-324), "0x0.0000000000001p-1022", 23},
      {format("%a", 1.7976931348623157e308), "0x1.fffffffffffffp+1023", 23},
      {format("%.0a", 1.5), "0x1p+1", 6},
      {format("%.2a", 1.0 + 0x1p-9), "0x1.00p+0", 9},
      {format("%.2a", 1.0 + 0x1.8p-8), "0x1.02p+0", 9},
      {format("%.3a", 1.0 + 0x1.8p-12 + 0x1p-40), "0x1.002p+0", 10},
      {format("%012a|", 1.0), "0x0000001p+0|", 13},
      {format("%+a", 2.0), "+0x1p+1", 7},
  };
  CHECK_CASES(cases);
}

TEST(PrintfFloat, ArgumentAlignmentAroundDoubles) {
  EXPECT_STREQ(format("%d %f %d %g %c", 1, 2.5, 3, 4.0, 'x').text, "1 2.500000 3 4 x");
  EXPECT_STREQ(format("%*.*f|", 8, 2, 1.0).text, "    1.00|");
}
