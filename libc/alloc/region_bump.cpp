// A first allocator: blocks carved from anonymous mappings, never reused. It serves start-up
// until the heap proper takes its place behind the same two functions.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <stdint.h>

#include "alloc/malloc.h"

namespace kv {
namespace {
constexpr size_t kRegionSize = 64 * 1024;
uintptr_t next;
uintptr_t end;
} // namespace

void *malloc(size_t size) {
  size = (size + 7) & ~static_cast<size_t>(7);
  if (size == 0 || size > kRegionSize)
    return nullptr;
  if (end - next < size) {
    void *region = __syscall_mmap(nullptr, kRegionSize, KV_PROT_READ | KV_PROT_WRITE,
                                  KV_MAP_PRIVATE | KV_MAP_ANONYMOUS, -1, 0);
    if (reinterpret_cast<uintptr_t>(region) == KV_MAP_FAILED || !region)
      return nullptr;
    next = reinterpret_cast<uintptr_t>(region);
    end = next + kRegionSize;
  }
  void *block = reinterpret_cast<void *>(next);
  next += size;
  return block;
}

void free(void *) {}

} // namespace kv
