// The 64-bit shifts, under their EABI and their _ll_ names.
#include "runtime/int64_ops.h"
#include "support/export.h"

KV_FUNCTION(protected, uint64_t, __aeabi_llsl, (uint64_t v, int n)) {
  return kv::rt::shl64(v, static_cast<uint32_t>(n));
}
KV_FUNCTION(protected, uint64_t, __aeabi_llsr, (uint64_t v, int n)) {
  return kv::rt::lshr64(v, static_cast<uint32_t>(n));
}
KV_FUNCTION(protected, int64_t, __aeabi_lasr, (int64_t v, int n)) {
  return kv::rt::ashr64(v, static_cast<uint32_t>(n));
}
KV_ALIAS(protected, uint64_t, _ll_shift_l, (uint64_t, int), __aeabi_llsl);
KV_ALIAS(protected, uint64_t, _ll_ushift_r, (uint64_t, int), __aeabi_llsr);
KV_ALIAS(protected, int64_t, _ll_sshift_r, (int64_t, int), __aeabi_lasr);
