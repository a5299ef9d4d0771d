// The comparisons that answer in the condition flags, called from assembly with all flags set
// beforehand: less N; equal Z C; greater C; unordered C V; r0-r11 kept.
#include <kvtest.h>

#include <fp_names.h>

extern "C" {
uint32_t call_flags(void (*fn)(void), uint32_t a0, uint32_t a1, uint32_t a2, uint32_t a3);
void __aeabi_cdcmpeq(void);
void __aeabi_cdcmple(void);
void __aeabi_cdrcmple(void);
void __aeabi_cdcmpge(void);
void _dcmpeq(void);
void _dcmple(void);
void _drcmple(void);
void _dcmpge(void);
void __dcmp4(void);
void _dcmp4(void);
void __ARM_dcmp4(void);
void __dcmp4e(void);
void _dcmp4e(void);
void __ARM_dcmp4e(void);
void __aeabi_cfcmpeq(void);
void __aeabi_cfcmple(void);
void __aeabi_cfrcmple(void);
void _fcmpeq(void);
void _fcmple(void);
void _frcmple(void);
void _fcmpge(void);
void __fcmp4(void);
void _fcmp4(void);
void __ARM_fcmp4(void);
void __fcmp4e(void);
void _fcmp4e(void);
void __ARM_fcmp4e(void);
}

using namespace fp_test;

namespace {

constexpr uint32_t N = 0x80000000u, Z = 0x40000000u, C = 0x20000000u, V = 0x10000000u;
constexpr uint32_t kLess = N, kEqual = Z | C, kGreater = C, kUnordered = C | V;

struct Case {
  uint64_t a, b;
  uint32_t flags; // of a compared with b
};
const Case double_cases[] = {
    {0x3ff0000000000000ull, 0x4000000000000000ull, kLess},        // 1 < 2
    {0x4000000000000000ull, 0x3ff0000000000000ull, kGreater},     // 2 > 1
    {0xbff0000000000000ull, 0x3ff0000000000000ull, kLess},        // -1 < 1
    {0xc000000000000000ull, 0xbff0000000000000ull, kLess},        // -2 < -1
    {0x3ff0000000000000ull, 0x3ff0000000000000ull, kEqual},
    {0x0000000000000000ull, 0x8000000000000000ull, kEqual},       // +0 == -0
    {0x0000000000000001ull, 0x0000000000000000ull, kEqual},       // subnormal counts as 0
    {0x800fffffffffffffull, 0x0000000000000005ull, kEqual},
    {0x0010000000000000ull, 0x000fffffffffffffull, kGreater},
    {kDInf, 0x7fefffffffffffffull, kGreater},
    {0xfff0000000000000ull, kDInf, kLess},
    {0x3ff0000000000000ull, kDNaN, kUnordered},
    {kDNaN, kDNaN, kUnordered},
    {0x7ff0000000000001ull, 0x3ff0000000000000ull, kUnordered},   // signalling NaN
    {0x3ff0000000000001ull, 0x3ff0000000000000ull, kGreater},
};

const Case float_cases[] = {
    {0x3f800000, 0x40000000, kLess},
    {0xc0000000, 0xbf800000, kLess},
    {0x40000000, 0xc0000000, kGreater},
    {0x80000000, 0x00000000, kEqual},
    {0x00000001, 0x80000000, kEqual},
    {0x00800000, 0x007fffff, kGreater},
    {0xff800000, 0xff7fffff, kLess},
    {0x3f800000, kFNaN, kUnordered},
    {0x7f800001, 0x7f800001, kUnordered},
};

uint32_t reversed(uint32_t flags) {
  if (flags == kLess)
    return kGreater;
  if (flags == kGreater)
    return kLess;
  return flags;
}

void check_double(void (*fn)(void), bool swap) {
  for (const Case &c : double_cases) {
    uint32_t got = call_flags(fn, static_cast<uint32_t>(c.a), static_cast<uint32_t>(c.a >> 32),
                              static_cast<uint32_t>(c.b), static_cast<uint32_t>(c.b >> 32));
    EXPECT_EQ(got & 0xf0000000u, swap ? reversed(c.flags) : c.flags);
    EXPECT_EQ(got & 1, 1u);
  }
}

void check_float(void (*fn)(void), bool swap) {
  for (const Case &c : float_cases) {
    uint32_t got = call_flags(fn, static_cast<uint32_t>(c.a), static_cast<uint32_t>(c.b),
                              0x22222222u, 0x33333333u);
    EXPECT_EQ(got & 0xf0000000u, swap ? reversed(c.flags) : c.flags);
    EXPECT_EQ(got & 1, 1u);
  }
}

} // namespace

TEST(FpFlags, DoubleEntries) {
  void (*const forward[])(void) = {__aeabi_cdcmpeq, __aeabi_cdcmple, __aeabi_cdcmpge, _dcmpeq,
                                   _dcmple,         _dcmpge,         __dcmp4,         _dcmp4,
                                   __ARM_dcmp4,     __dcmp4e,        _dcmp4e,         __ARM_dcmp4e};
  for (auto fn : forward)
    check_double(fn, false);
  check_double(__aeabi_cdrcmple, true);
  check_double(_drcmple, true);
}

TEST(FpFlags, FloatEntries) {
  void (*const forward[])(void) = {__aeabi_cfcmpeq, __aeabi_cfcmple, _fcmpeq,  _fcmple,
                                   _fcmpge,         __fcmp4,         _fcmp4,   __ARM_fcmp4,
                                   __fcmp4e,        _fcmp4e,         __ARM_fcmp4e};
  for (auto fn : forward)
    check_float(fn, false);
  check_float(__aeabi_cfrcmple, true);
  check_float(_frcmple, true);
}

// What the EABI promises the caller of the <= entry: C clear exactly when a < b, Z set exactly
// when a == b (both false when unordered).
TEST(FpFlags, LessOrEqualContract) {
  for (const Case &c : double_cases) {
    uint32_t got = call_flags(__aeabi_cdcmple, static_cast<uint32_t>(c.a),
                              static_cast<uint32_t>(c.a >> 32), static_cast<uint32_t>(c.b),
                              static_cast<uint32_t>(c.b >> 32));
    bool less = _dls(dbl(c.a), dbl(c.b)) != 0, equal = _deq(dbl(c.a), dbl(c.b)) != 0;
    EXPECT_EQ((got & C) == 0, less);
    EXPECT_EQ((got & Z) != 0, equal);
  }
}
