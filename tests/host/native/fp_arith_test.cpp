// The arithmetic cores against the host FPU in flush-to-zero mode.
#include <gtest/gtest.h>

#include <cmath>

#include "fp/softfloat.h"
#include "fp_reference.h"

namespace {

using namespace fptest;

template <typename U, typename Core, typename Host>
void binary_sweep(const char *what, uint64_t seed, Core core, Host host) {
  Operands<U> gen(seed);
  uint64_t cases = case_count(200000), tiny = 0;
  FlushToZero ftz;
  for (uint64_t i = 0; i < cases; ++i) {
    U a = gen.any();
    U b = (i & 1) ? gen.near(a) : gen.any();
    U ours = core(a, b), want = host(a, b);
    if (tiny_class(ours, want)) {
      ++tiny;
      continue;
    }
    ASSERT_TRUE(same(ours, want)) << what << std::hex << " a=" << a << " b=" << b
                                  << " ours=" << ours << " host=" << want;
  }
  // The class is rare; a flood of it would mean normal results are being lost.
  EXPECT_LT(tiny, cases / 1000 + 10) << what;
}

template <typename T> auto enc(T v) { return bits(v); }

TEST(NativeFp, DoubleAddSub) {
  binary_sweep<uint64_t>("dadd", 1, kv::fp::dadd,
                         [](uint64_t a, uint64_t b) { return enc(dbl(a) + dbl(b)); });
  binary_sweep<uint64_t>("dsub", 2, kv::fp::dsub,
                         [](uint64_t a, uint64_t b) { return enc(dbl(a) - dbl(b)); });
}

TEST(NativeFp, DoubleMulDiv) {
  binary_sweep<uint64_t>("dmul", 3, kv::fp::dmul,
                         [](uint64_t a, uint64_t b) { return enc(dbl(a) * dbl(b)); });
  binary_sweep<uint64_t>("ddiv", 4, kv::fp::ddiv,
                         [](uint64_t a, uint64_t b) { return enc(dbl(a) / dbl(b)); });
}

TEST(NativeFp, FloatArithmetic) {
  binary_sweep<uint32_t>("fadd", 5, kv::fp::fadd,
                         [](uint32_t a, uint32_t b) { return enc(flt(a) + flt(b)); });
  binary_sweep<uint32_t>("fsub", 6, kv::fp::fsub,
                         [](uint32_t a, uint32_t b) { return enc(flt(a) - flt(b)); });
  binary_sweep<uint32_t>("fmul", 7, kv::fp::fmul,
                         [](uint32_t a, uint32_t b) { return enc(flt(a) * flt(b)); });
  binary_sweep<uint32_t>("fdiv", 8, kv::fp::fdiv,
                         [](uint32_t a, uint32_t b) { return enc(flt(a) / flt(b)); });
}

// The remainder is exact; the host computes it on the flushed operands without flushing, and
// its subnormal results are then flushed. An exact zero takes the dividend's sign (the host
// library does not always give it).
template <typename U, typename T> U host_remainder(U a, U b) {
  FlushToZero exact(false);
  T x = std::bit_cast<T>(flush(a)), y = std::bit_cast<T>(flush(b));
  T r = std::remainder(x, y);
  if (r == 0)
    return flush(a) & sign_bit<U>;
  return flush(std::bit_cast<U>(r));
}

TEST(NativeFp, Remainder) {
  binary_sweep<uint64_t>("drem", 9, kv::fp::drem, host_remainder<uint64_t, double>);
  binary_sweep<uint32_t>("frem", 10, kv::fp::frem, host_remainder<uint32_t, float>);
}

TEST(NativeFp, Compare) {
  auto host_flags = [](auto a, auto b) {
    if (a < b)
      return kv::fp::kLess;
    if (a == b)
      return kv::fp::kEqual;
    if (a > b)
      return kv::fp::kGreater;
    return kv::fp::kUnordered;
  };
  binary_sweep<uint64_t>("dcmp", 11, kv::fp::dcmp,
                         [&](uint64_t a, uint64_t b) { return host_flags(dbl(a), dbl(b)); });
  binary_sweep<uint32_t>("fcmp", 12, kv::fp::fcmp,
                         [&](uint32_t a, uint32_t b) { return host_flags(flt(a), flt(b)); });
}

TEST(NativeFp, NextAfter) {
  binary_sweep<uint64_t>("nextafter", 13, kv::fp::dnextafter, [](uint64_t a, uint64_t b) {
    FlushToZero exact(false);
    return enc(std::nextafter(dbl(a), dbl(b)));
  });
  binary_sweep<uint32_t>("nextafterf", 14, kv::fp::fnextafter, [](uint32_t a, uint32_t b) {
    FlushToZero exact(false);
    return enc(std::nextafter(flt(a), flt(b)));
  });
}

TEST(NativeFp, Scalbn) {
  Operands<uint64_t> gen(15);
  uint64_t cases = case_count(200000);
  for (uint64_t i = 0; i < cases; ++i) {
    uint64_t a = gen.any();
    int n = static_cast<int>(gen.raw() % 4400) - 2200;
    if (i % 4 == 0)
      n = static_cast<int>(gen.raw() % 200) - 100;
    uint64_t want = enc(std::scalbn(dbl(flush(a)), n));
    ASSERT_TRUE(same(kv::fp::dscalbn(a, n), want)) << std::hex << a << " " << std::dec << n;
    uint32_t f = static_cast<uint32_t>(a >> 32);
    uint32_t wantf = enc(std::scalbn(flt(flush(f)), n));
    ASSERT_TRUE(same(kv::fp::fscalbn(f, n), wantf)) << std::hex << f << " " << std::dec << n;
  }
  for (int n : {1 << 30, -(1 << 30), 0x7fffffff, -0x7fffffff - 1}) {
    EXPECT_EQ(kv::fp::dscalbn(0x3ff0000000000000, n), n > 0 ? 0x7ff0000000000000u : 0u);
    EXPECT_EQ(kv::fp::fscalbn(0xbf800000, n), n > 0 ? 0xff800000u : 0x80000000u);
  }
}

} // namespace
