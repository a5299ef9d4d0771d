// The library's allocator, as the rest of the library calls it.
#pragma once

#include <stddef.h>

namespace kv {
void *malloc(size_t size);
void free(void *block);
} // namespace kv
