// The library's allocator, as the rest of the library calls it: allocation through a slot fixed
// at load time to the heap's own function, everything else through the exported entry points.
#pragma once

#include <stddef.h>

extern "C" {
void __syscall_free(void *block);
void *__syscall_realloc(void *block, size_t size);
void *__syscall_calloc(size_t count, size_t size);
int __syscall_posix_memalign(void **out, size_t alignment, size_t size);
int mallopt(int param, int value);
int malloc_trim(size_t pad);
}

namespace kv {
namespace heap {
extern void *(*const allocate_slot)(size_t);
}
inline void *malloc(size_t size) { return heap::allocate_slot(size); }
inline void free(void *block) { __syscall_free(block); }
} // namespace kv
