// Where things live in the guest's 32-bit address space.
#pragma once

#include <cstdint>

namespace kvrun::layout {

constexpr uint32_t kPageSize = 0x1000;
// Nothing is ever mapped below this, so null pointers and small offsets from them fault.
constexpr uint32_t kLowestMapped = 0x10000;
// Position-independent programs and libraries are placed here, one after the other.
constexpr uint32_t kImageBase = 0x40000000;
constexpr uint32_t kImageEnd = 0x60000000;
// Anonymous mappings.
constexpr uint32_t kMmapBase = 0x60000000;
constexpr uint32_t kMmapEnd = 0xB0000000;
// The stack grows down from here; the page above it stays unmapped.
constexpr uint32_t kStackTop = 0xBFFF0000;
constexpr uint32_t kDefaultStackSize = 8u << 20;
// kvrun's own page: calls into the guest return here.
constexpr uint32_t kSentinelPage = 0xFFFF0000;

constexpr uint64_t page_up(uint64_t v) { return (v + kPageSize - 1) & ~uint64_t{kPageSize - 1}; }
constexpr uint32_t page_down(uint32_t v) { return v & ~(kPageSize - 1); }

} // namespace kvrun::layout
