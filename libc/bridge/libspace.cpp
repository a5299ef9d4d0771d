// The core's state block and its slots: single static objects in this library. An environment
// that wants per-thread state replaces the weak __user_perthread_libspace.
#include <stdint.h>

#include "support/export.h"

KV_VARIABLE(global, uint32_t, __libspace_start)[24] = {};

namespace {
uint32_t fp_status;
void *ddtor_pointer;
void *eh_globals;
} // namespace

KV_FUNCTION(weak, void *, __user_libspace, (void)) { return __libspace_start; }
KV_ALIAS(weak, void *, __user_perproc_libspace, (void), __user_libspace);
KV_ALIAS(weak, void *, __user_perthread_libspace, (void), __user_libspace);

KV_FUNCTION(global, uint32_t *, __rt_fp_status_addr, (void)) { return &fp_status; }
KV_FUNCTION(global, void **, __rt_ddtor_pointer_addr, (void)) { return &ddtor_pointer; }
KV_FUNCTION(global, void **, __rt_eh_globals_addr, (void)) { return &eh_globals; }
