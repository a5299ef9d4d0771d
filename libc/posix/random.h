// The library's one pseudo-random generator, shared by random() and the temporary names.
#pragma once

#include <stdint.h>

namespace kv {
void seed_random(uint32_t seed);
int32_t next_random();
} // namespace kv
