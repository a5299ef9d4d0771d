// Ordering of two encodings after flushing, as a flags word: sign-magnitude encodings order
// like integers once the sign decides the direction.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

template <typename U> uint32_t compare(U a, U b) {
  using T = Traits<U>;
  if (T::is_nan(a) || T::is_nan(b))
    return kUnordered;
  a = T::flush(a);
  b = T::flush(b);
  if (a == b || T::abs(a | b) == 0)
    return kEqual;
  bool less;
  if (T::sign(a ^ b))
    less = T::sign(a) != 0;
  else
    less = (a < b) != (T::sign(a) != 0);
  return less ? kLess : kGreater;
}

} // namespace

uint32_t dcmp(uint64_t a, uint64_t b) { return compare<uint64_t>(a, b); }
uint32_t fcmp(uint32_t a, uint32_t b) { return compare<uint32_t>(a, b); }

} // namespace kv::fp

// The cores of the flag-returning entries (written in assembly, which must keep r0-r3).
extern "C" uint32_t __kv_fp_dcmp_flags(uint64_t a, uint64_t b) { return kv::fp::dcmp(a, b); }
extern "C" uint32_t __kv_fp_fcmp_flags(uint32_t a, uint32_t b) { return kv::fp::fcmp(a, b); }

#define KV_FP_RELATION(name, type, core, test)                                                    \
  KV_FUNCTION(protected, int, name, (type a, type b)) {                                           \
    uint32_t flags = kv::fp::core(kv::fp::bits(a), kv::fp::bits(b));                              \
    return test;                                                                                  \
  }

// _deq, _dgr, _dgeq, _dleq, _dls, their float twins and the EABI names are in compare_fast.S;
// these are their paths for zeros, subnormals, infinities and NaNs (and the exports where it is
// not built).
#ifdef __arm__
#define KV_FP_FAST_RELATION(name, type, core, test)                                               \
  extern "C" __attribute__((visibility("hidden"))) int __kv_fp##name(type a, type b) {            \
    uint32_t flags = kv::fp::core(kv::fp::bits(a), kv::fp::bits(b));                              \
    return test;                                                                                  \
  }
#else
#define KV_FP_FAST_RELATION KV_FP_RELATION
#endif
KV_FP_FAST_RELATION(_deq, double, dcmp, flags == kv::fp::kEqual)
KV_FP_RELATION(_dneq, double, dcmp, flags != kv::fp::kEqual)
KV_FP_FAST_RELATION(_dgr, double, dcmp, flags == kv::fp::kGreater)
KV_FP_FAST_RELATION(_dgeq, double, dcmp, flags == kv::fp::kGreater || flags == kv::fp::kEqual)
KV_FP_FAST_RELATION(_dleq, double, dcmp, flags == kv::fp::kLess || flags == kv::fp::kEqual)
KV_FP_FAST_RELATION(_dls, double, dcmp, flags == kv::fp::kLess)
KV_FP_RELATION(_dun, double, dcmp, flags == kv::fp::kUnordered)
KV_ALIAS(protected, int, __aeabi_dcmpun, (double, double), _dun);

KV_FP_FAST_RELATION(_feq, float, fcmp, flags == kv::fp::kEqual)
KV_FP_RELATION(_fneq, float, fcmp, flags != kv::fp::kEqual)
KV_FP_FAST_RELATION(_fgr, float, fcmp, flags == kv::fp::kGreater)
KV_FP_FAST_RELATION(_fgeq, float, fcmp, flags == kv::fp::kGreater || flags == kv::fp::kEqual)
KV_FP_FAST_RELATION(_fleq, float, fcmp, flags == kv::fp::kLess || flags == kv::fp::kEqual)
KV_FP_FAST_RELATION(_fls, float, fcmp, flags == kv::fp::kLess)
KV_FP_RELATION(_fun, float, fcmp, flags == kv::fp::kUnordered)
#ifndef __arm__
KV_ALIAS(protected, int, __aeabi_fcmpeq, (float, float), _feq);
KV_ALIAS(protected, int, __aeabi_fcmplt, (float, float), _fls);
KV_ALIAS(protected, int, __aeabi_fcmple, (float, float), _fleq);
KV_ALIAS(protected, int, __aeabi_fcmpge, (float, float), _fgeq);
KV_ALIAS(protected, int, __aeabi_fcmpgt, (float, float), _fgr);
#endif
KV_ALIAS(protected, int, __aeabi_fcmpun, (float, float), _fun);
