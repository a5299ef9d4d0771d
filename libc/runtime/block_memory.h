// The bodies of the block memory routines. Each has a plain assembler name so that the
// exported EABI entries and the library's own ISO names can be aliases of one body.
#pragma once

#include <stddef.h>

namespace kv {

void *mem_copy(void *dst, const void *src, size_t n) asm("__kv_mem_copy");
// Overlap allowed in either direction.
void *mem_move(void *dst, const void *src, size_t n) asm("__kv_mem_move");
// Count before value, as in the EABI fill entries.
void *mem_fill(void *dst, size_t n, int value) asm("__kv_mem_fill");
int mem_compare(const void *a, const void *b, size_t n) asm("__kv_mem_compare");

} // namespace kv
