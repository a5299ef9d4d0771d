// Single-threaded defaults: no exclusion at all. The four hooks share one body, exported once
// more as __mutex_default, so that a caller can tell from a hook's bound address that calling
// it would do nothing.
#include "posix/mutex_hooks.h"

#include "support/export.h"

KV_FUNCTION(protected, int, __mutex_default, (uint32_t *)) { return 0; }
KV_ALIAS(weak, int, __mutex_initialize, (uint32_t *), __mutex_default);
KV_ALIAS(weak, int, __mutex_acquire, (uint32_t *), __mutex_default);
KV_ALIAS(weak, void, __mutex_release, (uint32_t *), __mutex_default);
KV_ALIAS(weak, void, __mutex_destroy, (uint32_t *), __mutex_default);
