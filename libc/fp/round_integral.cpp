// Rounding to an integral value, nearest with ties to even, on the encoding itself: clearing
// the fraction bits below the units place and adding one unit carries into the exponent.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

template <typename U> U round_integral(U a) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a);
  if (ea == T::kExpMax)
    return T::is_nan(a) ? T::quiet(a) : a;
  int32_t e = static_cast<int32_t>(ea) - T::kBias;
  if (e >= T::kFracBits)
    return a;
  U one = static_cast<U>(T::kBias) << T::kFracBits;
  if (e < -1 || ea == 0)
    return T::sign(a);
  if (e == -1)
    return T::abs(a) > (one - T::kImplicit) ? T::sign(a) | one : T::sign(a);
  uint32_t shift = T::kFracBits - static_cast<uint32_t>(e);
  U unit = U(1) << shift;
  U rest = a & (unit - 1);
  U half = unit >> 1;
  a &= ~(unit - 1);
  if (rest > half || (rest == half && (a & unit)))
    a += unit;
  return a;
}

} // namespace

uint64_t drnd(uint64_t a) { return round_integral<uint64_t>(a); }
uint32_t frnd(uint32_t a) { return round_integral<uint32_t>(a); }

} // namespace kv::fp

KV_FP_UNARY(_drnd, double, kv::fp::drnd)
KV_FP_UNARY(_frnd, float, kv::fp::frnd)
