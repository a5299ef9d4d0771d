// IEEE remainder: x - n*y with n the integer nearest x/y (ties to even); always exact. The
// scaled significand is reduced modulo my a few bits at a time, the last step giving the
// quotient's parity.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

template <typename U> U rem(U a, U b) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a), eb = T::exp(b);
  if (ea == T::kExpMax || eb == T::kExpMax)
    return naninf<U>(a, b, Op::rem);
  if (eb == 0)
    return T::kDefaultNaN;
  if (ea == 0)
    return T::sign(a);
  // The divisor's significand is at most kFracBits + 2 bits wide, so a remainder below it can
  // move up by `step` bits within 64.
  constexpr uint32_t step = 64 - (T::kFracBits + 2);
  uint64_t mx = T::sig(a), my = T::sig(b);
  int32_t d = static_cast<int32_t>(ea) - static_cast<int32_t>(eb);
  int32_t exp = static_cast<int32_t>(eb);
  if (d < -1)
    return a;
  if (d == -1) {
    my <<= 1;
    exp = static_cast<int32_t>(ea);
    d = 0;
  }
  uint64_t q = mx / my, r = mx % my;
  while (d > 0) {
    uint32_t k = static_cast<uint32_t>(d) < step ? static_cast<uint32_t>(d) : step;
    r <<= k;
    q = r / my;
    r %= my;
    d -= static_cast<int32_t>(k);
  }
  U sign = T::sign(a);
  if (2 * r > my || (2 * r == my && (q & 1))) {
    r = my - r;
    sign ^= T::kSign;
  }
  // r counts units of the divisor's last place, whose biased exponent is exp - kFracBits.
  if (r == 0)
    return sign;
  if constexpr (sizeof(U) == 8)
    return normalise_round<U>(sign, exp - T::kFracBits, r);
  else
    return normalise_round<U>(sign, exp - T::kFracBits, static_cast<U>(r));
}

} // namespace

uint64_t drem(uint64_t a, uint64_t b) { return rem<uint64_t>(a, b); }
uint32_t frem(uint32_t a, uint32_t b) { return rem<uint32_t>(a, b); }

} // namespace kv::fp

KV_FP_BINARY(_drem, double, kv::fp::drem)
KV_FP_BINARY(_frem, float, kv::fp::frem)
