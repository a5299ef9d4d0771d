// Three-way 64-bit comparisons: -1, 0 or 1. The signed one decides on the high words as signed
// numbers and, when they are equal, on the low words as unsigned ones.
#include <stdint.h>

#include "support/export.h"

KV_FUNCTION(protected, int, _ll_ucmp, (uint64_t a, uint64_t b)) { return (a > b) - (a < b); }

KV_FUNCTION(protected, int, _ll_scmp, (int64_t a, int64_t b)) { return (a > b) - (a < b); }

// The EABI's comparisons want only the sign of the result.
KV_ALIAS(protected, int, __aeabi_lcmp, (int64_t, int64_t), _ll_scmp);
KV_ALIAS(protected, int, __aeabi_ulcmp, (uint64_t, uint64_t), _ll_ucmp);
