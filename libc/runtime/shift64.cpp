// The EABI 64-bit shift helpers.
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
