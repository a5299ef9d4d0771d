// The replaceable lock hooks. The library's own bodies do nothing; an environment with threads
// supplies real ones, and every caller in the library reaches them through the GOT.
#pragma once

#include <stdint.h>

extern "C" {
int __mutex_initialize(uint32_t *mutex);
int __mutex_acquire(uint32_t *mutex);
void __mutex_release(uint32_t *mutex);
void __mutex_destroy(uint32_t *mutex);
}
