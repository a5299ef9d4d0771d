// The 64-bit multiply (low 64 bits; the same for signed and unsigned operands).
#include "runtime/int64_ops.h"
#include "support/export.h"

KV_FUNCTION(protected, uint64_t, __aeabi_lmul, (uint64_t a, uint64_t b)) {
  return kv::rt::mul64(a, b);
}
KV_ALIAS(protected, uint64_t, _ll_mul, (uint64_t, uint64_t), __aeabi_lmul);
