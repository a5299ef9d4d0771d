// Zero fill: the __aeabi_memclr entries, which compiled code calls for zero-initialisation.
#include "runtime/block_memory.h"
#include "support/export.h"

KV_FUNCTION(protected, void, __aeabi_memclr, (void *dst, size_t n)) { kv::mem_fill(dst, n, 0); }
KV_ALIAS(protected, void, __aeabi_memclr4, (void *, size_t), __aeabi_memclr);
KV_ALIAS(protected, void, __aeabi_memclr8, (void *, size_t), __aeabi_memclr);
