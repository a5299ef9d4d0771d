// Square root: a reciprocal square root estimate gives the root to about 2^-28, a correction
// from the exact residual takes a double's to within one unit, and the remainder of the root's
// square then settles the last bit and the sticky bit (an exact tie cannot occur).
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/reciprocal.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// r within one of floor(sqrt(n)), where n - r^2 (exact, or its low 64 bits when |n - r^2|
// is below 2^63) is rem: the floor, shifted left by `shift`, and the sticky bit.
template <typename U> U settle(uint64_t r, uint64_t rem, int shift) {
  if (static_cast<int64_t>(rem) < 0) {
    --r;
    rem += 2 * r + 1;
  } else if (rem > 2 * r) {
    rem -= 2 * r + 1;
    ++r;
  }
  return static_cast<U>(r << shift | (rem != 0));
}

// m in [2^kFracBits, 2^(kFracBits + 2)): floor(sqrt(m 2^(kFracBits + 2))), which has
// kFracBits + 2 bits, at kLead with the sticky bit.
template <typename U> U root_sig(U m);

template <> uint64_t root_sig<uint64_t>(uint64_t m) {
  auto x = static_cast<uint32_t>(m >> 22);
  uint32_t y = rsqrt32(x);
  auto s = static_cast<uint32_t>(static_cast<uint64_t>(x) * y >> 29); // sqrt(m / 2^52) 2^31
  // The root is s 2^22 plus (m 2^54 - s^2 2^44) / (2 s 2^22), the division done by y.
  auto residual = static_cast<int64_t>((m << 10) - static_cast<uint64_t>(s) * s);
  auto d = static_cast<int32_t>(residual >> 7);
  uint64_t r = (static_cast<uint64_t>(s) << 22) +
               static_cast<uint64_t>(static_cast<int64_t>(d) * static_cast<int32_t>(y) >> 33);
  return settle<uint64_t>(r, (m << 54) - r * r, D::kExtra - 1);
}

template <> uint32_t root_sig<uint32_t>(uint32_t m) {
  uint32_t x = m << 7;
  uint32_t y = rsqrt32(x);
  auto r = static_cast<uint32_t>(static_cast<uint64_t>(x) * y >> 36);
  return settle<uint32_t>(r, (static_cast<uint64_t>(m) << 25) - static_cast<uint64_t>(r) * r,
                          Fl::kExtra - 1);
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
  // m * 2^e with e even and m / 2^kFracBits in [1, 4): the root is sqrt of that times 2^(e/2).
  U m = T::sig(a);
  int32_t e = static_cast<int32_t>(ea) - T::kBias;
  if (e & 1) {
    m <<= 1;
    --e;
  }
  return round_pack<U>(0, e / 2 + T::kBias, root_sig<U>(m));
}

} // namespace

uint64_t dsqrt(uint64_t a) { return sqrt<uint64_t>(a); }
uint32_t fsqrt(uint32_t a) { return sqrt<uint32_t>(a); }

} // namespace kv::fp

KV_FP_UNARY(_dsqrt, double, kv::fp::dsqrt)
KV_FP_UNARY(_fsqrt, float, kv::fp::fsqrt)
