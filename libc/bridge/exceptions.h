// The exception-handling globals record and the emergency exception buffer.
#pragma once

#include <stdint.h>

#include "support/export.h"

KV_FUNCTION(global, void *, __ARM_exceptions_buffer_init, (void));
KV_FUNCTION(global, void *, __ARM_exceptions_buffer_allocate, (void *buffer, uint32_t size));
KV_FUNCTION(global, int, __ARM_exceptions_buffer_free, (void *buffer, void *pointer));

namespace kv {
void set_up_exceptions();
void release_exceptions();
} // namespace kv
