// Square root: an integer root of the significand, two radicand bits per step, with a non-zero
// final remainder as the sticky bit (an exact tie cannot occur).
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// Root of m * 4^(pairs - 1 - top_pair) with `pairs` bits, the radicand's bits taken two at a
// time from the top.
template <typename U> U isqrt_jam(U m, int top_pair, int pairs) {
  U q = 0, r = 0;
  for (int i = top_pair; i > top_pair - pairs; --i) {
    U next = i >= 0 ? (m >> (2 * i)) & 3 : 0;
    r = r << 2 | next;
    U t = q << 2 | 1;
    q <<= 1;
    if (r >= t) {
      r -= t;
      q |= 1;
    }
  }
  return q | (r != 0);
}

template <typename U> U sqrt(U a) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a);
  if (ea == 0)
    return T::sign(a);
  if (T::is_nan(a))
    return T::quiet(a);
  if (T::sign(a))
    return T::kDefaultNaN;
  if (ea == T::kExpMax)
    return a;
  // m * 2^e with e even, and m in [4^top, 4^(top + 1)) so that its root has a fixed width.
  constexpr int lift = T::kFracBits & 1;
  constexpr int top_pair = (T::kFracBits + lift) / 2;
  U m = T::sig(a) << lift;
  int32_t e = static_cast<int32_t>(ea) - T::kBias - T::kFracBits - lift;
  if (e & 1) {
    m <<= 1;
    --e;
  }
  // Three root bits below the last place keep the remainder within the word during the steps.
  constexpr int pairs = T::kFracBits + 4;
  U root = isqrt_jam<U>(m, top_pair, pairs) << (T::kExtra - 3);
  int32_t exp = e / 2 + top_pair + T::kBias;
  return round_pack<U>(0, exp, root);
}

} // namespace

uint64_t dsqrt(uint64_t a) { return sqrt<uint64_t>(a); }
uint32_t fsqrt(uint32_t a) { return sqrt<uint32_t>(a); }

} // namespace kv::fp

KV_FP_UNARY(_dsqrt, double, kv::fp::dsqrt)
KV_FP_UNARY(_fsqrt, float, kv::fp::fsqrt)
