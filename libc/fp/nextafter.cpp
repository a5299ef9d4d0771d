// The neighbouring encoding of x in the direction of y. It steps through every encoding,
// subnormals included: it is a bit-level operation, not arithmetic.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

template <typename U> U nextafter(U x, U y) {
  using T = Traits<U>;
  if (T::is_nan(x))
    return T::quiet(x);
  if (T::is_nan(y))
    return T::quiet(y);
  if (x == y || T::abs(x | y) == 0)
    return y;
  if (T::abs(x) == 0)
    return T::sign(y) | 1;
  // Away from zero when y lies beyond x on x's side.
  bool x_neg = T::sign(x) != 0, y_neg = T::sign(y) != 0;
  bool away = x_neg == y_neg && (T::abs(y) > T::abs(x));
  return away ? x + 1 : x - 1;
}

template <typename U> U scalbn(U x, int32_t n) {
  using T = Traits<U>;
  uint32_t e = T::exp(x);
  if (e == T::kExpMax)
    return T::is_nan(x) ? T::quiet(x) : x;
  if (e == 0)
    return T::sign(x);
  // Beyond this, any finite x over- or underflows completely.
  constexpr int32_t reach = 2 * (T::kExpMax + T::kFracBits);
  if (n > reach)
    n = reach;
  if (n < -reach)
    n = -reach;
  int32_t ne = static_cast<int32_t>(e) + n;
  if (ne >= static_cast<int32_t>(T::kExpMax))
    return T::sign(x) | T::kInf;
  if (ne >= 1)
    return (x & ~(static_cast<U>(T::kExpMax) << T::kFracBits)) | static_cast<U>(ne) << T::kFracBits;
  // Gradual underflow: the significand shifted into the subnormal range, rounded to nearest;
  // a carry out lands in the exponent field as the smallest normal.
  uint32_t shift = static_cast<uint32_t>(1 - ne);
  if (shift > T::kFracBits + 1)
    return T::sign(x);
  U m = T::sig(x);
  U whole = m >> shift, rest = m & ((U(1) << shift) - 1), half = U(1) << (shift - 1);
  if (rest > half || (rest == half && (whole & 1)))
    ++whole;
  return T::sign(x) | whole;
}

} // namespace

uint64_t dnextafter(uint64_t x, uint64_t y) { return nextafter<uint64_t>(x, y); }
uint32_t fnextafter(uint32_t x, uint32_t y) { return nextafter<uint32_t>(x, y); }
uint64_t dscalbn(uint64_t x, int32_t n) { return scalbn<uint64_t>(x, n); }
uint32_t fscalbn(uint32_t x, int32_t n) { return scalbn<uint32_t>(x, n); }

} // namespace kv::fp

KV_FP_BINARY(_nextafter, double, kv::fp::dnextafter)
KV_FP_BINARY(_nextafterf, float, kv::fp::fnextafter)
KV_ALIAS(protected, float, __fpl_nextafterf_nexttowardf_internal_entry, (float, float), _nextafterf);
KV_FUNCTION(protected, double, __ARM_scalbn, (double x, int n)) {
  return kv::fp::as_double(kv::fp::dscalbn(kv::fp::bits(x), n));
}
KV_FUNCTION(protected, float, __ARM_scalbnf, (float x, int n)) {
  return kv::fp::as_float(kv::fp::fscalbn(kv::fp::bits(x), n));
}
