// Conversions between the formats and integers against host conversions, with the saturation
// rules applied to the host's exact integral values.
#include <gtest/gtest.h>

#include <cmath>

#include "fp/softfloat.h"
#include "fp_reference.h"

namespace {

using namespace fptest;

// What a conversion of the (flushed) value v must give, computed from the host's integral part.
template <typename R> R expected(double v, bool round) {
  constexpr bool is_signed = static_cast<R>(-1) < 0;
  constexpr double span = 18446744073709551616.0 / (sizeof(R) == 8 ? 1.0 : 4294967296.0);
  if (std::isnan(v))
    return 0;
  double whole = round ? std::nearbyint(v) : std::trunc(v);
  if (is_signed) {
    if (whole >= span / 2)
      return static_cast<R>(~R(0) ^ (R(1) << (sizeof(R) * 8 - 1)));
    if (whole < -span / 2)
      return static_cast<R>(R(1) << (sizeof(R) * 8 - 1));
    return static_cast<R>(whole);
  }
  double mag = std::fabs(whole);
  if (mag >= span)
    return whole < 0 ? 0 : static_cast<R>(~R(0));
  return static_cast<R>(mag);
}

// Values around integers and halves of every size, and random encodings.
double interesting(Operands<uint64_t> &gen) {
  uint64_t r = gen.raw();
  switch (r % 4) {
  case 0:
    return dbl(gen.any());
  case 1: {
    double base = std::ldexp(1.0, static_cast<int>(gen.raw() % 66));
    double k = base + static_cast<double>(static_cast<int>(gen.raw() % 5) - 2);
    return (gen.raw() & 1) ? -k : k;
  }
  case 2: {
    double k = std::ldexp(static_cast<double>(gen.raw() >> 11), -static_cast<int>(gen.raw() % 64));
    return (gen.raw() & 1) ? -k : k;
  }
  default: {
    double k = static_cast<double>(gen.raw() % 64) + 0.5;
    k = std::nextafter(k, (gen.raw() & 1) ? 1e300 : -1e300);
    if (gen.raw() % 3 == 0)
      k = std::floor(k) + 0.5;
    return (gen.raw() & 1) ? -k : k;
  }
  }
}

TEST(NativeFp, ToIntegers) {
  Operands<uint64_t> gen(31);
  uint64_t cases = case_count(200000);
  for (uint64_t i = 0; i < cases; ++i) {
    double d = interesting(gen);
    uint64_t a = flush(bits(d));
    d = dbl(a);
    for (bool round : {false, true}) {
      ASSERT_EQ(kv::fp::d_to_i32(a, round), expected<int32_t>(d, round)) << d << round;
      ASSERT_EQ(kv::fp::d_to_u32(a, round), expected<uint32_t>(d, round)) << d << round;
      ASSERT_EQ(kv::fp::d_to_i64(a, round), expected<int64_t>(d, round)) << d << round;
      ASSERT_EQ(kv::fp::d_to_u64(a, round), expected<uint64_t>(d, round)) << d << round;
      float f = static_cast<float>(d);
      uint32_t fa = flush(bits(f));
      double fd = static_cast<double>(flt(fa));
      ASSERT_EQ(kv::fp::f_to_i32(fa, round), expected<int32_t>(fd, round)) << fd << round;
      ASSERT_EQ(kv::fp::f_to_u32(fa, round), expected<uint32_t>(fd, round)) << fd << round;
      ASSERT_EQ(kv::fp::f_to_i64(fa, round), expected<int64_t>(fd, round)) << fd << round;
      ASSERT_EQ(kv::fp::f_to_u64(fa, round), expected<uint64_t>(fd, round)) << fd << round;
    }
  }
}

TEST(NativeFp, FromIntegers) {
  Operands<uint64_t> gen(32);
  uint64_t cases = case_count(200000);
  for (uint64_t i = 0; i < cases; ++i) {
    // Random widths, so that every leading-zero count and rounding position occurs.
    uint64_t v = gen.raw() >> (gen.raw() % 64);
    if (i % 8 == 0)
      v |= 0xffffffffff;
    int64_t s = static_cast<int64_t>(v);
    uint32_t w = static_cast<uint32_t>(v);
    ASSERT_EQ(kv::fp::d_from_u64(v), bits(static_cast<double>(v))) << v;
    ASSERT_EQ(kv::fp::d_from_i64(s), bits(static_cast<double>(s))) << s;
    ASSERT_EQ(kv::fp::f_from_u64(v), bits(static_cast<float>(v))) << v;
    ASSERT_EQ(kv::fp::f_from_i64(s), bits(static_cast<float>(s))) << s;
    ASSERT_EQ(kv::fp::d_from_u32(w), bits(static_cast<double>(w))) << w;
    ASSERT_EQ(kv::fp::d_from_i32(static_cast<int32_t>(w)),
              bits(static_cast<double>(static_cast<int32_t>(w))));
    ASSERT_EQ(kv::fp::f_from_u32(w), bits(static_cast<float>(w))) << w;
    ASSERT_EQ(kv::fp::f_from_i32(static_cast<int32_t>(w)),
              bits(static_cast<float>(static_cast<int32_t>(w))));
  }
}

// Narrowing around the float range's edges, where the exponent is rebiased.
TEST(NativeFp, NarrowingEdges) {
  Operands<uint64_t> gen(33);
  FlushToZero ftz;
  uint64_t cases = case_count(200000);
  for (uint64_t i = 0; i < cases; ++i) {
    static const int edges[] = {-126, -127, -125, -150, 127, 128, 126, 0};
    int e = edges[gen.raw() % 8] + static_cast<int>(gen.raw() % 3) - 1;
    uint64_t a = make<uint64_t>(gen.raw() & 1, static_cast<uint32_t>(1023 + e), gen.fraction());
    uint32_t ours = kv::fp::f_from_d(a), want = bits(static_cast<float>(dbl(a)));
    ASSERT_TRUE(ours == want || tiny_class(ours, want)) << std::hex << a;
  }
}

} // namespace
