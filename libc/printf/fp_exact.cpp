// Big integers just large enough for a double scaled by 10^340 or divided by 10^308.
#include "printf/fp_exact.h"

namespace kv::printf {
namespace {

struct Big {
  static constexpr int kWords = 40;
  uint32_t w[kWords];
  int n;

  explicit Big(uint64_t v) : w{}, n(0) {
    w[0] = static_cast<uint32_t>(v);
    w[1] = static_cast<uint32_t>(v >> 32);
    n = w[1] ? 2 : w[0] ? 1 : 0;
  }
  void mul(uint32_t f) {
    uint64_t carry = 0;
    for (int i = 0; i < n; ++i) {
      uint64_t t = static_cast<uint64_t>(w[i]) * f + carry;
      w[i] = static_cast<uint32_t>(t);
      carry = t >> 32;
    }
    if (carry)
      w[n++] = static_cast<uint32_t>(carry);
  }
  void mul_pow5(int k) {
    for (; k >= 13; k -= 13)
      mul(1220703125u); // 5^13
    uint32_t f = 1;
    while (k--)
      f *= 5;
    mul(f);
  }
  void shift_left(int bits) {
    if (!n)
      return;
    int words = bits / 32, b = bits % 32;
    w[n] = 0;
    for (int i = n; i >= 0; --i) {
      uint32_t hi = w[i] << b;
      if (b && i)
        hi |= w[i - 1] >> (32 - b);
      w[i + words] = hi;
    }
    for (int i = 0; i < words; ++i)
      w[i] = 0;
    n += words + 1;
    while (n && !w[n - 1])
      --n;
  }
};

int compare(const Big &a, const Big &b) {
  if (a.n != b.n)
    return a.n < b.n ? -1 : 1;
  for (int i = a.n; i-- > 0;)
    if (a.w[i] != b.w[i])
      return a.w[i] < b.w[i] ? -1 : 1;
  return 0;
}

} // namespace

// 2 m 2^q 10^-s against 2k + 1, both sides brought to integers.
int compare_with_half(uint64_t m, int q, int s, uint64_t k) {
  Big left(m), right(2 * k + 1);
  if (s < 0)
    left.mul_pow5(-s);
  else
    right.mul_pow5(s);
  int t = q + 1 - s;
  if (t >= 0)
    left.shift_left(t);
  else
    right.shift_left(-t);
  return compare(left, right);
}

} // namespace kv::printf
