// Single-threaded defaults: no exclusion at all.
#include "posix/mutex_hooks.h"

#include "support/export.h"

KV_FUNCTION(weak, int, __mutex_initialize, (uint32_t *)) { return 0; }
KV_FUNCTION(weak, int, __mutex_acquire, (uint32_t *)) { return 0; }
KV_FUNCTION(weak, void, __mutex_release, (uint32_t *)) {}
KV_FUNCTION(weak, void, __mutex_destroy, (uint32_t *)) {}
