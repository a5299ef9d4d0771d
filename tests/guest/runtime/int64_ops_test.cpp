// The 64-bit shift and multiply helpers through libc.so, against known answers.
#include <kvtest.h>

#include "helpers.h"

namespace {

struct ShiftCase {
  uint64_t value;
  int count;
  uint64_t left, logical_right, arithmetic_right;
};
const ShiftCase shift_cases[] = {
    {0x0123456789abcdefull, 0, 0x0123456789abcdefull, 0x0123456789abcdefull, 0x0123456789abcdefull},
    {0x0123456789abcdefull, 1, 0x02468acf13579bdeull, 0x0091a2b3c4d5e6f7ull, 0x0091a2b3c4d5e6f7ull},
    {0x0123456789abcdefull, 4, 0x123456789abcdef0ull, 0x00123456789abcdeull, 0x00123456789abcdeull},
    {0x0123456789abcdefull, 31, 0xc4d5e6f780000000ull, 0x0000000002468acfull, 0x0000000002468acfull},
    {0x0123456789abcdefull, 32, 0x89abcdef00000000ull, 0x0000000001234567ull, 0x0000000001234567ull},
    {0x0123456789abcdefull, 33, 0x13579bde00000000ull, 0x000000000091a2b3ull, 0x000000000091a2b3ull},
    {0x0123456789abcdefull, 63, 0x8000000000000000ull, 0x0000000000000000ull, 0x0000000000000000ull},
    {0xf123456789abcdefull, 0, 0xf123456789abcdefull, 0xf123456789abcdefull, 0xf123456789abcdefull},
    {0xf123456789abcdefull, 1, 0xe2468acf13579bdeull, 0x7891a2b3c4d5e6f7ull, 0xf891a2b3c4d5e6f7ull},
    {0xf123456789abcdefull, 4, 0x123456789abcdef0ull, 0x0f123456789abcdeull, 0xff123456789abcdeull},
    {0xf123456789abcdefull, 31, 0xc4d5e6f780000000ull, 0x00000001e2468acfull, 0xffffffffe2468acfull},
    {0xf123456789abcdefull, 32, 0x89abcdef00000000ull, 0x00000000f1234567ull, 0xfffffffff1234567ull},
    {0xf123456789abcdefull, 33, 0x13579bde00000000ull, 0x000000007891a2b3ull, 0xfffffffff891a2b3ull},
    {0xf123456789abcdefull, 63, 0x8000000000000000ull, 0x0000000000000001ull, 0xffffffffffffffffull},
};

struct MulCase {
  uint64_t a, b, product;
};
const MulCase mul_cases[] = {
    {0x00000000ffffffffull, 0x00000000ffffffffull, 0xfffffffe00000001ull},
    {0x0000000100000000ull, 0x0000000100000000ull, 0x0000000000000000ull},
    {0xffffffffffffffffull, 0xffffffffffffffffull, 0x0000000000000001ull},
    {0xfffffffffffffffdull, 0x0000000000000005ull, 0xfffffffffffffff1ull}, // -3 * 5
    {0x0000000123456789ull, 0x0000000987654321ull, 0xd77d742cce1833a9ull},
    {0x0000000100000001ull, 0x00000000ffffffffull, 0xffffffffffffffffull},
    {0xfedcba9876543210ull, 0x0123456789abcdefull, 0x2236d88fe5618cf0ull},
    {0x0000000000000000ull, 0xffffffffffffffffull, 0x0000000000000000ull},
    {0x0000000000000001ull, 0x8000000000000000ull, 0x8000000000000000ull},
};

} // namespace

TEST(Int64, Shifts) {
  for (const ShiftCase &c : shift_cases) {
    EXPECT_EQ(__aeabi_llsl(c.value, c.count), c.left);
    EXPECT_EQ(__aeabi_llsr(c.value, c.count), c.logical_right);
    EXPECT_EQ(static_cast<uint64_t>(__aeabi_lasr(static_cast<int64_t>(c.value), c.count)),
              c.arithmetic_right);
  }
}

TEST(Int64, Multiply) {
  for (const MulCase &c : mul_cases) {
    EXPECT_EQ(__aeabi_lmul(c.a, c.b), c.product);
    EXPECT_EQ(__aeabi_lmul(c.b, c.a), c.product);
  }
}
