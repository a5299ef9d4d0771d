// Exact comparison for the rare scaled values that lie too close to a rounding boundary for
// the rounded powers of ten to decide.
#pragma once

#include <stdint.h>

namespace kv::printf {

// The sign of m * 2^q * 10^-s - (k + 1/2).
int compare_with_half(uint64_t m, int q, int s, uint64_t k);

} // namespace kv::printf
