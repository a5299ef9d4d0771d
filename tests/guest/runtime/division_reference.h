// Known answers and an independent reference for the division tests: 32-bit edge tables and
// bit-at-a-time long division, shared by the tests of the EABI helpers and of the library's own
// division body.
#pragma once

#include <stdint.h>

namespace div_test {

struct U32Case {
  uint32_t n, d, q, r;
};
const U32Case u32_cases[] = {
    {0x00000000u, 0x00000001u, 0x00000000u, 0x00000000u},
    {0x00000001u, 0x00000001u, 0x00000001u, 0x00000000u},
    {0xffffffffu, 0x00000001u, 0xffffffffu, 0x00000000u},
    {0xffffffffu, 0xffffffffu, 0x00000001u, 0x00000000u},
    {0xffffffffu, 0x0000000au, 0x19999999u, 0x00000005u},
    {0xffffffffu, 0x80000000u, 0x00000001u, 0x7fffffffu},
    {0x80000000u, 0xffffffffu, 0x00000000u, 0x80000000u},
    {0x3b9aca07u, 0x00010000u, 0x00003b9au, 0x0000ca07u},
    {0x00000005u, 0x00000007u, 0x00000000u, 0x00000005u},
    {0xdeadbeefu, 0x00001234u, 0x000c3ba5u, 0x0000076bu},
    {0x80000000u, 0x00000003u, 0x2aaaaaaau, 0x00000002u},
    {0x00000064u, 0x0000000au, 0x0000000au, 0x00000000u},
    {0xfffffffeu, 0xffffffffu, 0x00000000u, 0xfffffffeu},
    {0x00000007u, 0x00000007u, 0x00000001u, 0x00000000u},
    {0x00000006u, 0x00000007u, 0x00000000u, 0x00000006u},
    {0xffffffffu, 0x00000010u, 0x0fffffffu, 0x0000000fu},
};

struct S32Case {
  int32_t n, d, q, r;
};
constexpr int32_t int_min = -2147483647 - 1;
const S32Case s32_cases[] = {
    {-7, 2, -3, -1},
    {7, -2, -3, 1},
    {-7, -2, 3, -1},
    {7, 2, 3, 1},
    {int_min, -1, int_min, 0}, // wraps, no trap
    {int_min, 1, int_min, 0},
    {int_min, 2147483647, -1, -1},
    {2147483647, int_min, 0, 2147483647},
    {int_min, int_min, 1, 0},
    {-1, int_min, 0, -1},
    {int_min, 2, -1073741824, 0},
    {int_min, 3, -715827882, -2},
    {-100, 7, -14, -2},
    {0, -5, 0, 0},
    {2147483647, -1, -2147483647, 0},
    {-5, 10, 0, -5},
    {2147483647, -10, -214748364, 7},
};

// Bit-at-a-time long division over all 64 bits: slow, and independent of the library's method.
void long_division(uint64_t n, uint64_t d, uint64_t &q, uint64_t &r) {
  q = 0;
  r = 0;
  for (int bit = 63; bit >= 0; --bit) {
    bool carry = (r >> 63) != 0;
    r = r << 1 | ((n >> bit) & 1);
    q <<= 1;
    if (carry || r >= d) {
      r -= d;
      q |= 1;
    }
  }
}

// The signed reference: magnitudes through long_division, then the signs.
void signed_long_division(int64_t n, int64_t d, int64_t &q, int64_t &r) {
  uint64_t un = n < 0 ? 0 - static_cast<uint64_t>(n) : static_cast<uint64_t>(n);
  uint64_t ud = d < 0 ? 0 - static_cast<uint64_t>(d) : static_cast<uint64_t>(d);
  uint64_t uq, ur;
  long_division(un, ud, uq, ur);
  q = static_cast<int64_t>((n < 0) != (d < 0) ? 0 - uq : uq);
  r = static_cast<int64_t>(n < 0 ? 0 - ur : ur);
}

} // namespace div_test
