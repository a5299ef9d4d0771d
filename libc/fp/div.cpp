// Division: the quotient significand by integer division, with a non-zero remainder as the
// sticky bit.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// ma/mb in [1, 2) as a significand with its leading one at kLead.
template <typename U> U quotient_sig(U ma, U mb);

// 56 quotient bits in 11-bit steps, so that the partial remainder (below mb < 2^53) stays
// within 64 bits when shifted.
template <> uint64_t quotient_sig<uint64_t>(uint64_t ma, uint64_t mb) {
  uint64_t q = 1, r = ma - mb;
  for (int step = 0; step < 5; ++step) {
    r <<= 11;
    q = q << 11 | r / mb;
    r %= mb;
  }
  return q << 7 | (r != 0);
}

template <> uint32_t quotient_sig<uint32_t>(uint32_t ma, uint32_t mb) {
  uint64_t n = static_cast<uint64_t>(ma) << 30;
  uint32_t q = static_cast<uint32_t>(n / mb);
  return q | (q * static_cast<uint64_t>(mb) != n);
}

template <typename U> U div(U a, U b) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a), eb = T::exp(b);
  if (ea == T::kExpMax || eb == T::kExpMax)
    return naninf<U>(a, b, Op::div);
  U sign = T::sign(a ^ b);
  if (eb == 0)
    return ea == 0 ? T::kDefaultNaN : sign | T::kInf;
  if (ea == 0)
    return sign;
  U ma = T::sig(a), mb = T::sig(b);
  int32_t exp = static_cast<int32_t>(ea) - static_cast<int32_t>(eb) + T::kBias;
  if (ma < mb) {
    ma <<= 1;
    --exp;
  }
  return round_pack<U>(sign, exp, quotient_sig<U>(ma, mb));
}

} // namespace

uint64_t ddiv(uint64_t a, uint64_t b) { return div<uint64_t>(a, b); }
uint32_t fdiv(uint32_t a, uint32_t b) { return div<uint32_t>(a, b); }

} // namespace kv::fp

KV_FP_BINARY(_ddiv, double, kv::fp::ddiv)
KV_FUNCTION(protected, double, _drdiv, (double a, double b)) {
  return kv::fp::as_double(kv::fp::ddiv(kv::fp::bits(b), kv::fp::bits(a)));
}
KV_ALIAS(protected, double, __aeabi_ddiv, (double, double), _ddiv);
KV_ALIAS(protected, double, __aeabi_drdiv, (double, double), _drdiv);

KV_FP_BINARY(_fdiv, float, kv::fp::fdiv)
KV_FUNCTION(protected, float, _frdiv, (float a, float b)) {
  return kv::fp::as_float(kv::fp::fdiv(kv::fp::bits(b), kv::fp::bits(a)));
}
KV_ALIAS(protected, float, __aeabi_fdiv, (float, float), _fdiv);
KV_ALIAS(protected, float, __aeabi_frdiv, (float, float), _frdiv);
