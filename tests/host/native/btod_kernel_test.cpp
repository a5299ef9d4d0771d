// The extended-precision kernel against exact integer arithmetic: powers of ten, products and
// quotients in every rounding direction.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "convert/btod.h"

namespace {

using u128 = unsigned __int128;

// Just enough of an unsigned big integer for 10^852.
struct Big {
  std::vector<uint32_t> w; // little-endian words
  explicit Big(uint64_t v = 0) {
    while (v) {
      w.push_back(static_cast<uint32_t>(v));
      v >>= 32;
    }
  }
  void mul(uint32_t f) {
    uint64_t carry = 0;
    for (uint32_t &x : w) {
      uint64_t t = uint64_t{x} * f + carry;
      x = static_cast<uint32_t>(t);
      carry = t >> 32;
    }
    if (carry)
      w.push_back(static_cast<uint32_t>(carry));
  }
  void shl(int bits) {
    Big r;
    r.w.assign(bits / 32, 0);
    uint32_t carry = 0;
    int b = bits % 32;
    for (uint32_t x : w) {
      r.w.push_back(x << b | carry);
      carry = b ? x >> (32 - b) : 0;
    }
    if (carry)
      r.w.push_back(carry);
    *this = r;
  }
  int bit_length() const {
    return w.empty() ? 0 : 32 * static_cast<int>(w.size() - 1) + 32 - __builtin_clz(w.back());
  }
};

int compare(const Big &a, const Big &b) {
  if (a.w.size() != b.w.size())
    return a.w.size() < b.w.size() ? -1 : 1;
  for (size_t i = a.w.size(); i-- > 0;)
    if (a.w[i] != b.w[i])
      return a.w[i] < b.w[i] ? -1 : 1;
  return 0;
}

Big power_of_ten(int n) {
  Big b(1);
  for (int i = 0; i < n; ++i)
    b.mul(10);
  return b;
}

_btod_ext ext(uint64_t m, int exp) { return kv::convert::make_ext(0, exp, m); }
uint64_t mant(const _btod_ext &e) { return kv::convert::mantissa(e); }
int binary_exponent(const _btod_ext &e) { return kv::convert::exponent(e) - 16383 - 63; }

// mant * 2^exp against 10^n: the sign of the difference.
int compare_with_power(const _btod_ext &e, int n) {
  Big m(mant(e)), p = power_of_ten(n);
  int x = binary_exponent(e);
  if (x >= 0)
    m.shl(x);
  else
    p.shl(-x);
  return compare(m, p);
}

TEST(BtodKernel, SmallPowersAreExact) {
  for (int dir : {0, 1, -1}) {
    for (int n = 0; n <= 27; ++n) {
      _btod_ext e;
      _btod_etento(&e, n, dir);
      EXPECT_EQ(compare_with_power(e, n), 0) << n;
      EXPECT_TRUE(mant(e) >> 63) << n;
    }
  }
  _btod_ext one;
  _btod_etento(&one, 0, 0);
  EXPECT_EQ(one.ext_sign_exp, 0x3FFFu);
  EXPECT_EQ(one.ext_mant_hi, 0x80000000u);
  EXPECT_EQ(one.ext_mant_lo, 0u);
}

TEST(BtodKernel, LargePowersErrTheRequestedWay) {
  for (int n = 28; n <= 852; ++n) {
    _btod_ext up, down, near;
    _btod_etento(&up, n, 1);
    _btod_etento(&down, n, -1);
    _btod_etento(&near, n, 0);
    EXPECT_GE(compare_with_power(up, n), 0) << n;
    EXPECT_LE(compare_with_power(down, n), 0) << n;
    EXPECT_EQ(up.ext_sign_exp, down.ext_sign_exp) << n;
    // The bounds are a few units apart, the nearest lies between them and within four units
    // of the exact power, which is what the digit generator allows for.
    EXPECT_LE(mant(up) - mant(down), 16u) << n;
    _btod_ext low = ext(mant(near) - 4, kv::convert::exponent(near));
    _btod_ext high = ext(mant(near) + 4, kv::convert::exponent(near));
    EXPECT_LE(compare_with_power(low, n), 0) << n;
    EXPECT_GE(compare_with_power(high, n), 0) << n;
    EXPECT_GE(mant(near), mant(down)) << n;
    EXPECT_LE(mant(near), mant(up)) << n;
  }
}

// The rounding rule of the kernel on an exact 128-bit significand, applied independently.
uint64_t round_reference(u128 exact, int drop, int dir, bool &carry) {
  u128 kept = exact >> drop;
  u128 below = exact - (kept << drop);
  u128 half = u128{1} << (drop - 1);
  bool up;
  if (below == 0)
    up = false;
  else if (below == half)
    up = kept & 1;
  else
    up = dir == 0 ? below > half : dir > 0;
  kept += up;
  carry = kept >> 64;
  return static_cast<uint64_t>(carry ? kept >> 1 : kept);
}

TEST(BtodKernel, MultiplicationRoundsTheExactProduct) {
  std::mt19937_64 rng(1);
  for (int i = 0; i < 200000; ++i) {
    uint64_t a = rng() | 1ull << 63, b = rng() | 1ull << 63;
    if (i % 4 == 0)
      b = (b & ~0xFFFFFFFFull) | 1ull << 63; // short operands give exact halves and exact products
    if (i % 8 == 0)
      a &= ~0xFFFFFFFFFFull;
    int dir = static_cast<int>(i % 3) - 1;
    u128 p = u128{a} * b;
    int top = p >> 127 ? 64 : 63;
    bool carry;
    uint64_t want = round_reference(p, top, dir, carry);
    _btod_ext r = _btod_emul(ext(a, 16383), ext(b, 16383 + 5), dir);
    ASSERT_EQ(mant(r), want) << std::hex << a << " " << b << " " << dir;
    EXPECT_EQ(kv::convert::exponent(r), 16383 + 5 + (top == 64) + carry);
  }
}

TEST(BtodKernel, DivisionRoundsTheExactQuotient) {
  std::mt19937_64 rng(2);
  for (int i = 0; i < 200000; ++i) {
    uint64_t a = rng() | 1ull << 63, b = rng() | 1ull << 63;
    if (i % 4 == 0)
      b = 1ull << 63 | (rng() & 0xFull) << 59; // quotients that end exactly
    int dir = static_cast<int>(i % 3) - 1;
    u128 q = (u128{a} << 64) / b, r = (u128{a} << 64) % b;
    bool below_one = a < b;
    // A guard bit and a sticky bit beyond the 64 significand bits.
    u128 exact;
    if (!below_one) {
      exact = q << 1 | (r != 0);
    } else {
      bool guard = 2 * r >= b;
      exact = q << 2 | u128{guard} << 1 | ((2 * r - (guard ? u128{b} : 0)) != 0);
    }
    bool carry;
    uint64_t want = round_reference(exact, 2, dir, carry);
    _btod_ext got = _btod_ediv(ext(a, 16383 + 3), ext(b, 16383), dir);
    ASSERT_EQ(mant(got), want) << std::hex << a << " " << b << " " << dir;
    EXPECT_EQ(kv::convert::exponent(got), 16383 + 3 - below_one + carry);
  }
}

// The unrounded quotient: 72 bits of it and the sticky bit, for divisors at the edges of the
// reciprocal's range (top word all ones, a power of two, just above one) and at random.
TEST(BtodKernel, DivisionDeliversSeventyTwoBitsAndSticky) {
  std::mt19937_64 rng(5);
  const uint64_t edges[] = {~0ull, 1ull << 63, (1ull << 63) | 1, 0xFFFFFFFF00000000ull,
                            0x8000000100000000ull, 0xFFFFFFFEFFFFFFFFull};
  for (int i = 0; i < 300000; ++i) {
    uint64_t a = rng() | 1ull << 63, b = rng() | 1ull << 63;
    if (i % 5 == 1)
      b = edges[rng() % 6];
    if (i % 5 == 2)
      a = edges[rng() % 6];
    if (i % 7 == 3)
      a = b - (rng() & 0xFF) * (i % 2);
    bool twice = a < b;
    // floor(a 2^71 / b), or of 2a when a < b, and whether it was exact.
    u128 num_hi = twice ? u128{a} << 1 : u128{a};
    u128 q = 0, r = 0;
    for (int bit = 64 + 71; bit >= 0; --bit) {
      r = r << 1 | (bit >= 71 ? (num_hi >> (bit - 71)) & 1 : 0);
      q <<= 1;
      if (r >= b) {
        r -= b;
        q |= 1;
      }
    }
    _btod_wide w = __btod_div_common(ext(a, 16383 + 5), ext(b, 16383));
    ASSERT_EQ(w.mant, static_cast<uint64_t>(q >> 8)) << std::hex << a << " / " << b;
    ASSERT_EQ(w.rest, (static_cast<uint64_t>(q & 0xFF) << 56) | (r != 0)) << std::hex << a << " / " << b;
    ASSERT_EQ(w.exp, 16383 + 5 - twice);
  }
}

// Rounded once to a double, the kernel agrees with the host's correctly rounded arithmetic,
// subnormal results included.
TEST(BtodKernel, DoubleResultsMatchTheHost) {
  std::mt19937_64 rng(3);
  auto random_double = [&] {
    uint64_t bits = rng() & ~(1ull << 63);
    uint64_t field = 1 + (bits >> 52) % 0x7FE;
    double d;
    bits = (bits & ((1ull << 52) - 1)) | field << 52;
    std::memcpy(&d, &bits, 8);
    return d;
  };
  int checked = 0;
  for (int i = 0; i < 200000; ++i) {
    double x = random_double(), y = random_double();
    if (i % 2)
      y = std::ldexp(y, -static_cast<int>(std::ilogb(y)) - (static_cast<int>(rng() % 1100)));
    auto to_ext = [](double d) {
      uint64_t b;
      std::memcpy(&b, &d, 8);
      return _btod_d2e(static_cast<uint32_t>(b >> 32), static_cast<uint32_t>(b));
    };
    double p = x * y, q = x / y;
    if (std::isfinite(p)) {
      EXPECT_EQ(_btod_emuld(to_ext(x), to_ext(y), 0), p) << x << " * " << y;
      ++checked;
    }
    if (std::isfinite(q) && q != 0) {
      EXPECT_EQ(_btod_edivd(to_ext(x), to_ext(y), 0), q) << x << " / " << y;
      ++checked;
    }
  }
  EXPECT_GT(checked, 200000);
}

TEST(BtodKernel, SpecialOperandsPassThrough) {
  _btod_ext inf = _btod_d2e(0xFFF00000u, 0), one = _btod_d2e(0x3FF00000u, 0);
  EXPECT_EQ(inf.ext_sign_exp & 0xC0000000u, 0xC0000000u);
  _btod_ext r = _btod_emul(one, inf, 0);
  EXPECT_EQ(std::memcmp(&r, &one, sizeof r), 0);
  r = _btod_ediv(inf, one, 0);
  EXPECT_EQ(std::memcmp(&r, &inf, sizeof r), 0);
  EXPECT_TRUE(std::isinf(_btod_emuld(inf, one, 0)));
  // A subnormal input is normalised exactly.
  _btod_ext tiny = _btod_d2e(0, 1);
  EXPECT_EQ(mant(tiny), 1ull << 63);
  EXPECT_EQ(kv::convert::exponent(tiny), 16383 - 1074);
}

} // namespace
