// White-box: the assembly entries of the hot operations against the portable bodies they fall
// back to (both linked here), over operands built to reach every branch: exponent differences
// from 0 to past the significand, same and opposite signs, carries, cancellations, exact ties
// (short significands), and the edges of the ranges each fast path accepts.
#include <kvtest.h>

#include "fp/softfloat.h"
#include <fp_names.h>

extern "C" {
double __aeabi_dadd(double, double);
double __aeabi_dsub(double, double);
double __aeabi_dmul(double, double);
double __aeabi_i2d(int32_t);
double __aeabi_f2d(float);
float __aeabi_d2f(double);
int __aeabi_dcmplt(double, double);
int __aeabi_dcmple(double, double);
int __aeabi_dcmpgt(double, double);
int __aeabi_dcmpge(double, double);
int __aeabi_dcmpeq(double, double);
float __aeabi_fadd(float, float);
float __aeabi_fsub(float, float);
float __aeabi_fmul(float, float);
float __aeabi_fdiv(float, float);
int __aeabi_fcmplt(float, float);
int __aeabi_fcmple(float, float);
int __aeabi_fcmpgt(float, float);
int __aeabi_fcmpge(float, float);
int __aeabi_fcmpeq(float, float);
void __aeabi_cdcmple(void);
void __aeabi_cdcmpeq(void);
void __aeabi_cdrcmple(void);
void __aeabi_cfcmple(void);
void __aeabi_cfcmpeq(void);
void __aeabi_cfrcmple(void);
void _dcmp4(void);
void _fcmp4(void);
uint32_t call_flags(void (*fn)(void), uint32_t a0, uint32_t a1, uint32_t a2, uint32_t a3);
}

namespace {

uint64_t bits(double v) { return __builtin_bit_cast(uint64_t, v); }
double dbl(uint64_t v) { return __builtin_bit_cast(double, v); }

uint64_t state = 0x853c49e6748fea9bull;
uint64_t rnd() {
  state ^= state >> 12;
  state ^= state << 25;
  state ^= state >> 27;
  return state * 0x2545F4914F6CDD1Dull;
}

constexpr uint64_t kFrac = (1ull << 52) - 1;

// A significand: random, or with only its top few bits random (exact ties and exact
// results), or all ones / all zeros (carries through every word).
uint64_t frac() {
  uint64_t r = rnd();
  switch (r & 7) {
  case 0:
    return kFrac;
  case 1:
    return 0;
  case 2:
  case 3:
    return (rnd() & kFrac) >> (r >> 8) % 52 << (r >> 8) % 52;
  default:
    return rnd() & kFrac;
  }
}

// An exponent field: anywhere, or at the ends of the range (zero, subnormal, 1, 2, the top
// finite ones, infinity/NaN).
uint64_t exponent(uint64_t near) {
  uint64_t r = rnd();
  switch (r & 15) {
  case 0:
    return 0;
  case 1:
    return 0x7ff;
  case 2:
    return 1 + (r >> 8) % 3;
  case 3:
    return 0x7fc + (r >> 8) % 3;
  case 4:
    return (r >> 8) % 0x800;
  default: {
    // Near the other operand: differences 0..63 either way.
    int64_t e = static_cast<int64_t>(near) + static_cast<int64_t>((r >> 8) % 127) - 63;
    return e < 0 ? 0 : e > 0x7ff ? 0x7ff : static_cast<uint64_t>(e);
  }
  }
}

uint64_t operand(uint64_t near) {
  return (rnd() & 1ull << 63) | exponent(near) << 52 | frac();
}

struct Binary {
  const char *name;
  double (*fast)(double, double);
  uint64_t (*body)(uint64_t, uint64_t);
};

int check(const Binary &op, uint64_t a, uint64_t b) {
  uint64_t got = bits(op.fast(dbl(a), dbl(b))), want = op.body(a, b);
  if (got == want)
    return 0;
  static int shown = 0;
  if (shown++ < 10) {
    kvtest::out(op.name);
    kvtest::out(" ");
    kvtest::out_hex(a);
    kvtest::out(" ");
    kvtest::out_hex(b);
    kvtest::out(" gives ");
    kvtest::out_hex(got);
    kvtest::out(", want ");
    kvtest::out_hex(want);
    kvtest::out("\n");
  }
  return 1;
}

const Binary doubles[] = {
    {"__aeabi_dadd", __aeabi_dadd, kv::fp::dadd}, {"__aeabi_dsub", __aeabi_dsub, kv::fp::dsub},
    {"_dadd", _dadd, kv::fp::dadd},               {"_dsub", _dsub, kv::fp::dsub},
    {"__aeabi_dmul", __aeabi_dmul, kv::fp::dmul}, {"_dmul", _dmul, kv::fp::dmul},
};

TEST(FpFastPaths, DoubleEdges) {
  const uint64_t edges[] = {
      0, 1ull << 63, 1, kFrac, 1ull << 52, 2ull << 52, 0x3ff0000000000000ull,
      0x3ff0000000000001ull, 0x3fefffffffffffffull, 0x3ca0000000000000ull /* 2^-53 */,
      0x3cb0000000000000ull, 0x7fefffffffffffffull, 0x7fd0000000000000ull, 0x7ff0000000000000ull,
      0x7ff8000000000000ull, 0x7ff0000000000001ull, 0x001fffffffffffffull, 0x0020000000000000ull,
      0x1ff0000000000000ull /* 2^-512 */, 0x5ff0000000000000ull /* 2^512 */};
  int wrong = 0;
  for (const Binary &op : doubles)
    for (uint64_t a : edges)
      for (uint64_t b : edges)
        for (uint64_t s = 0; s < 4; ++s)
          wrong += check(op, a ^ (s & 1) << 63, b ^ (s >> 1) << 63);
  EXPECT_EQ(wrong, 0);
}

TEST(FpFastPaths, DoubleRandom) {
  int wrong = 0;
  for (int i = 0; i < 40000; ++i) {
    uint64_t a = operand(1 + rnd() % 0x7fe);
    uint64_t b = operand(a >> 52 & 0x7ff);
    for (const Binary &op : doubles)
      wrong += check(op, a, b);
    // Products near the ends of the range: exponents summing to about the bias and twice it.
    uint64_t e = rnd() % 0x7ff;
    uint64_t c = (a & ~(0x7ffull << 52)) | e << 52;
    uint64_t d = (b & ~(0x7ffull << 52)) | ((0x3fe + (rnd() & 3) * 0x3ff - e + rnd() % 8) & 0x7ff)
                                             << 52;
    wrong += check(doubles[4], c, d);
  }
  EXPECT_EQ(wrong, 0);
}

// Cancellation: b within a few units of a, or of a half/double of it, opposite signs.
TEST(FpFastPaths, DoubleCancellation) {
  int wrong = 0;
  for (int i = 0; i < 20000; ++i) {
    uint64_t a = operand(1 + rnd() % 0x7fe);
    uint64_t b = a + (rnd() % 9) - 4;
    if (i & 1)
      b += (rnd() & 1 ? 1ull : 0ull - 1) << 52;
    if ((a ^ b) >> 63)
      continue; // carried through the sign
    wrong += check(doubles[1], a, b);
    wrong += check(doubles[0], a, b ^ 1ull << 63);
  }
  EXPECT_EQ(wrong, 0);
}

// Floats as the doubles above: significands random, all ones, zero or short (ties, exact
// results); exponents anywhere, at the ends, or close to the other operand's.
uint32_t float_operand(uint32_t near) {
  uint64_t r = rnd();
  uint32_t f;
  switch (r & 7) {
  case 0:
    f = 0x7fffff;
    break;
  case 1:
    f = 0;
    break;
  case 2:
  case 3:
    f = (static_cast<uint32_t>(rnd()) & 0x7fffff) >> (r >> 8) % 23 << (r >> 8) % 23;
    break;
  default:
    f = static_cast<uint32_t>(rnd()) & 0x7fffff;
  }
  uint32_t e;
  switch (r >> 4 & 15) {
  case 0:
    e = 0;
    break;
  case 1:
    e = 0xff;
    break;
  case 2:
    e = 1 + (r >> 16) % 3;
    break;
  case 3:
    e = 0xfc + (r >> 16) % 3;
    break;
  case 4:
    e = (r >> 16) % 0x100;
    break;
  default: {
    int32_t v = static_cast<int32_t>(near) + static_cast<int32_t>((r >> 16) % 63) - 31;
    e = v < 0 ? 0 : v > 0xff ? 0xff : static_cast<uint32_t>(v);
  }
  }
  return static_cast<uint32_t>(r >> 40 & 1) << 31 | e << 23 | f;
}

struct FloatBinary {
  const char *name;
  float (*fast)(float, float);
  uint32_t (*body)(uint32_t, uint32_t);
};

const FloatBinary floats[] = {
    {"__aeabi_fadd", __aeabi_fadd, kv::fp::fadd}, {"__aeabi_fsub", __aeabi_fsub, kv::fp::fsub},
    {"_fadd", _fadd, kv::fp::fadd},               {"_fsub", _fsub, kv::fp::fsub},
    {"__aeabi_fmul", __aeabi_fmul, kv::fp::fmul}, {"_fmul", _fmul, kv::fp::fmul},
    {"__aeabi_fdiv", __aeabi_fdiv, kv::fp::fdiv}, {"_fdiv", _fdiv, kv::fp::fdiv},
};

int check(const FloatBinary &op, uint32_t a, uint32_t b) {
  uint32_t got = __builtin_bit_cast(uint32_t, op.fast(__builtin_bit_cast(float, a),
                                                       __builtin_bit_cast(float, b)));
  uint32_t want = op.body(a, b);
  if (got == want)
    return 0;
  static int shown = 0;
  if (shown++ < 10) {
    kvtest::out(op.name);
    kvtest::out(" ");
    kvtest::out_hex(a);
    kvtest::out(" ");
    kvtest::out_hex(b);
    kvtest::out(" gives ");
    kvtest::out_hex(got);
    kvtest::out(", want ");
    kvtest::out_hex(want);
    kvtest::out("\n");
  }
  return 1;
}

TEST(FpFastPaths, FloatEdges) {
  const uint32_t edges[] = {0,          1,          0x7fffff,   0x800000,   0x1000000,
                            0x3f800000, 0x3f800001, 0x3f7fffff, 0x33800000 /* 2^-24 */,
                            0x34000000, 0x7f7fffff, 0x7f000000, 0x7e800000, 0x7f800000,
                            0x7fc00000, 0x7f800001, 0x00ffffff, 0x01000000, 0x1f800000,
                            0x5f800000, 0x3fffffff, 0x3fc00000, 0x3f000000, 0x00800001};
  int wrong = 0;
  for (const FloatBinary &op : floats)
    for (uint32_t a : edges)
      for (uint32_t b : edges)
        for (uint32_t s = 0; s < 4; ++s)
          wrong += check(op, a ^ (s & 1) << 31, b ^ (s >> 1) << 31);
  EXPECT_EQ(wrong, 0);
}

TEST(FpFastPaths, FloatRandom) {
  int wrong = 0;
  for (int i = 0; i < 60000; ++i) {
    uint32_t a = float_operand(1 + static_cast<uint32_t>(rnd() % 0xfe));
    uint32_t b = float_operand(a >> 23 & 0xff);
    for (const FloatBinary &op : floats)
      wrong += check(op, a, b);
    // Results near the ends of the range: exponent sums and differences about the bias.
    uint32_t e = static_cast<uint32_t>(rnd() % 0xff);
    uint32_t c = (a & ~(0xffu << 23)) | e << 23;
    uint32_t k = static_cast<uint32_t>(rnd());
    uint32_t dm = (b & ~(0xffu << 23)) | ((0x7e + (k & 3) * 0x7f - e + (k >> 2) % 8) & 0xff) << 23;
    uint32_t dd = (b & ~(0xffu << 23)) | ((e + 0x7f * (k >> 5 & 1) - 0x7f * (k >> 6 & 1) +
                                           (k >> 7) % 8 - 4) & 0xff) << 23;
    wrong += check(floats[4], c, dm);
    wrong += check(floats[6], c, dd);
    // Near-cancellation: b within a few units of a (or of its half or double).
    uint32_t n = a + static_cast<uint32_t>(rnd() % 9) - 4;
    if (i & 1)
      n += (rnd() & 1 ? 1u : 0u - 1) << 23;
    if (((a ^ n) >> 31) == 0) {
      wrong += check(floats[1], a, n);
      wrong += check(floats[0], a, n ^ 1u << 31);
    }
  }
  EXPECT_EQ(wrong, 0);
}

template <typename T> int report(const char *name, uint64_t in, T got, T want) {
  if (got == want)
    return 0;
  static int shown = 0;
  if (shown++ < 10) {
    kvtest::out(name);
    kvtest::out(" ");
    kvtest::out_hex(in);
    kvtest::out(" gives ");
    kvtest::out_hex(static_cast<uint64_t>(got));
    kvtest::out(", want ");
    kvtest::out_hex(static_cast<uint64_t>(want));
    kvtest::out("\n");
  }
  return 1;
}

// Conversions: doubles over every exponent (with the integer and float ranges' edges dense),
// integers of every length, floats of every exponent field.
TEST(FpFastPaths, Conversions) {
  int wrong = 0;
  for (int i = 0; i < 30000; ++i) {
    uint64_t r = rnd();
    uint64_t e = r & 1 ? (r >> 1) % 0x800 : (r & 2 ? 1023 + 25 + (r >> 2) % 10 : 896 + (r >> 2) % 260);
    if ((r >> 20 & 7) == 0)
      e = 1023 + 31 + (r >> 24) % 3 - 1;
    uint64_t d = (r & 1ull << 63) | e << 52 | frac();
    int32_t want_i = kv::fp::d_to_i32(d, false);
    wrong += report("__aeabi_d2iz", d, __aeabi_d2iz(dbl(d)), want_i);
    wrong += report("_dfix", d, _dfix(dbl(d)), want_i);
    uint32_t want_f = kv::fp::f_from_d(d);
    wrong += report("__aeabi_d2f", d, __builtin_bit_cast(uint32_t, __aeabi_d2f(dbl(d))), want_f);
    wrong += report("_d2f", d, __builtin_bit_cast(uint32_t, _d2f(dbl(d))), want_f);

    auto v = static_cast<int32_t>(static_cast<uint32_t>(rnd()) >> (r >> 40) % 33);
    if (r >> 46 & 1)
      v = static_cast<int32_t>(0u - static_cast<uint32_t>(v));
    if ((r >> 47 & 63) == 0)
      v = (r >> 53 & 1) ? -2147483647 - 1 : 2147483647;
    uint64_t want_d = kv::fp::d_from_i32(v);
    wrong += report("__aeabi_i2d", static_cast<uint32_t>(v), bits(__aeabi_i2d(v)), want_d);
    wrong += report("_dflt", static_cast<uint32_t>(v), bits(_dflt(v)), want_d);

    auto f = static_cast<uint32_t>(rnd() >> 32);
    if ((r >> 54 & 7) == 0)
      f &= 0x807fffffu; // exponent field 0
    else if ((r >> 54 & 7) == 1)
      f |= 0x7f800000u; // infinities and NaNs
    want_d = kv::fp::d_from_f(f);
    wrong += report("__aeabi_f2d", f, bits(__aeabi_f2d(__builtin_bit_cast(float, f))), want_d);
    wrong += report("_f2d", f, bits(_f2d(__builtin_bit_cast(float, f))), want_d);
  }
  EXPECT_EQ(wrong, 0);
}

// Relations against the four-way comparison: random pairs, equal pairs, pairs one unit apart
// (across a sign, zero and the exponent boundaries too), and the edge values.
TEST(FpFastPaths, Relations) {
  using kv::fp::kEqual, kv::fp::kGreater, kv::fp::kLess;
  struct Relation {
    const char *name;
    int (*fn)(double, double);
    bool (*want)(uint32_t);
  };
  const Relation relations[] = {
      {"__aeabi_dcmplt", __aeabi_dcmplt, [](uint32_t f) { return f == kLess; }},
      {"_dls", _dls, [](uint32_t f) { return f == kLess; }},
      {"__aeabi_dcmple", __aeabi_dcmple, [](uint32_t f) { return f == kLess || f == kEqual; }},
      {"_dleq", _dleq, [](uint32_t f) { return f == kLess || f == kEqual; }},
      {"__aeabi_dcmpgt", __aeabi_dcmpgt, [](uint32_t f) { return f == kGreater; }},
      {"_dgr", _dgr, [](uint32_t f) { return f == kGreater; }},
      {"__aeabi_dcmpge", __aeabi_dcmpge, [](uint32_t f) { return f == kGreater || f == kEqual; }},
      {"_dgeq", _dgeq, [](uint32_t f) { return f == kGreater || f == kEqual; }},
      {"__aeabi_dcmpeq", __aeabi_dcmpeq, [](uint32_t f) { return f == kEqual; }},
      {"_deq", _deq, [](uint32_t f) { return f == kEqual; }},
  };
  int wrong = 0;
  for (int i = 0; i < 20000; ++i) {
    uint64_t a = operand(1 + rnd() % 0x7fe), b;
    switch (i & 3) {
    case 0:
      b = a;
      break;
    case 1:
      b = a + (rnd() & 1 ? 1 : 0ull - 1);
      break;
    case 2:
      b = a ^ 1ull << 63;
      break;
    default:
      b = operand(a >> 52 & 0x7ff);
    }
    uint32_t flags = kv::fp::dcmp(a, b);
    for (const Relation &r : relations)
      wrong += report(r.name, a ^ b, r.fn(dbl(a), dbl(b)), static_cast<int>(r.want(flags)));
  }
  EXPECT_EQ(wrong, 0);
}

TEST(FpFastPaths, FloatRelations) {
  using kv::fp::kEqual, kv::fp::kGreater, kv::fp::kLess;
  struct Relation {
    const char *name;
    int (*fn)(float, float);
    bool (*want)(uint32_t);
  };
  const Relation relations[] = {
      {"__aeabi_fcmplt", __aeabi_fcmplt, [](uint32_t f) { return f == kLess; }},
      {"_fls", _fls, [](uint32_t f) { return f == kLess; }},
      {"__aeabi_fcmple", __aeabi_fcmple, [](uint32_t f) { return f == kLess || f == kEqual; }},
      {"_fleq", _fleq, [](uint32_t f) { return f == kLess || f == kEqual; }},
      {"__aeabi_fcmpgt", __aeabi_fcmpgt, [](uint32_t f) { return f == kGreater; }},
      {"_fgr", _fgr, [](uint32_t f) { return f == kGreater; }},
      {"__aeabi_fcmpge", __aeabi_fcmpge, [](uint32_t f) { return f == kGreater || f == kEqual; }},
      {"_fgeq", _fgeq, [](uint32_t f) { return f == kGreater || f == kEqual; }},
      {"__aeabi_fcmpeq", __aeabi_fcmpeq, [](uint32_t f) { return f == kEqual; }},
      {"_feq", _feq, [](uint32_t f) { return f == kEqual; }},
  };
  int wrong = 0;
  for (int i = 0; i < 20000; ++i) {
    uint32_t a = float_operand(1 + static_cast<uint32_t>(rnd() % 0xfe)), b;
    switch (i & 3) {
    case 0:
      b = a;
      break;
    case 1:
      b = a + (rnd() & 1 ? 1 : 0u - 1);
      break;
    case 2:
      b = a ^ 1u << 31;
      break;
    default:
      b = float_operand(a >> 23 & 0xff);
    }
    uint32_t flags = kv::fp::fcmp(a, b);
    for (const Relation &r : relations)
      wrong += report(r.name, static_cast<uint64_t>(a) << 32 | b,
                      r.fn(__builtin_bit_cast(float, a), __builtin_bit_cast(float, b)),
                      static_cast<int>(r.want(flags)));
  }
  EXPECT_EQ(wrong, 0);
}

// The flag-returning entries against the four-way comparison, r0-r3 kept (bit 0 of the probe's
// answer): doubles and floats, equal, adjacent, sign-flipped and random pairs.
TEST(FpFastPaths, FlagComparisons) {
  struct Entry {
    const char *name;
    void (*fn)(void);
    bool reversed;
  };
  const Entry doubles_flags[] = {{"__aeabi_cdcmple", __aeabi_cdcmple, false},
                                 {"__aeabi_cdcmpeq", __aeabi_cdcmpeq, false},
                                 {"_dcmp4", _dcmp4, false},
                                 {"__aeabi_cdrcmple", __aeabi_cdrcmple, true}};
  const Entry floats_flags[] = {{"__aeabi_cfcmple", __aeabi_cfcmple, false},
                                {"__aeabi_cfcmpeq", __aeabi_cfcmpeq, false},
                                {"_fcmp4", _fcmp4, false},
                                {"__aeabi_cfrcmple", __aeabi_cfrcmple, true}};
  int wrong = 0;
  for (int i = 0; i < 20000; ++i) {
    uint64_t a = operand(1 + rnd() % 0x7fe), b;
    uint32_t fa = float_operand(1 + static_cast<uint32_t>(rnd() % 0xfe)), fb;
    switch (i & 3) {
    case 0:
      b = a;
      fb = fa;
      break;
    case 1:
      b = a + (rnd() & 1 ? 1 : 0ull - 1);
      fb = fa + (rnd() & 1 ? 1 : 0u - 1);
      break;
    case 2:
      b = a ^ 1ull << 63;
      fb = fa ^ 1u << 31;
      break;
    default:
      b = operand(a >> 52 & 0x7ff);
      fb = float_operand(fa >> 23 & 0xff);
    }
    for (const Entry &e : doubles_flags) {
      uint32_t want = e.reversed ? kv::fp::dcmp(b, a) : kv::fp::dcmp(a, b);
      uint32_t got = call_flags(e.fn, static_cast<uint32_t>(a), static_cast<uint32_t>(a >> 32),
                                static_cast<uint32_t>(b), static_cast<uint32_t>(b >> 32));
      wrong += report(e.name, a ^ b, got, want | 1);
    }
    for (const Entry &e : floats_flags) {
      uint32_t want = e.reversed ? kv::fp::fcmp(fb, fa) : kv::fp::fcmp(fa, fb);
      uint32_t got = call_flags(e.fn, fa, fb, 0x12345678, 0x9abcdef0);
      wrong += report(e.name, static_cast<uint64_t>(fa) << 32 | fb, got, want | 1);
    }
  }
  EXPECT_EQ(wrong, 0);
}

} // namespace
