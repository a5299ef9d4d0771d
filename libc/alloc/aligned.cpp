// Aligned allocation: over-allocate, then give back the pieces in front of and behind the
// aligned chunk.
#include <kv/abi.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "support/export.h"

namespace kv::heap {
namespace {

void *aligned(size_t alignment, size_t bytes) {
  if (alignment <= 8)
    return allocate(bytes);
  if (alignment < kMinChunk)
    alignment = kMinChunk;
  if (alignment & (alignment - 1)) {
    size_t a = kMinChunk;
    while (a < alignment)
      a <<= 1;
    alignment = a;
  }
  if (bytes >= kMaxRequest - alignment) {
    set_enomem();
    return nullptr;
  }
  size_t nb = request_to_chunk(bytes);
  char *mem = static_cast<char *>(allocate(nb + alignment + kMinChunk - kOverhead));
  if (!mem)
    return nullptr;
  ensure_params();
  lock();
  Chunk *p = chunk_of(mem);
  void *leader = nullptr, *trailer = nullptr;
  if (reinterpret_cast<uintptr_t>(mem) & (alignment - 1)) {
    uintptr_t want = (reinterpret_cast<uintptr_t>(mem) + alignment - 1) & ~(alignment - 1);
    Chunk *q = chunk_of(reinterpret_cast<void *>(want));
    if (reinterpret_cast<char *>(q) - reinterpret_cast<char *>(p) < static_cast<ptrdiff_t>(kMinChunk))
      q = at(q, alignment);
    size_t lead = static_cast<size_t>(reinterpret_cast<char *>(q) - reinterpret_cast<char *>(p));
    size_t rest = size_of(p) - lead;
    if (is_mapped(p)) {
      q->prev_foot = p->prev_foot + lead;
      q->head = rest | kCinuse;
    } else {
      q->head = rest | kPinuse | kCinuse;
      at(q, rest)->head |= kPinuse;
      p->head = (p->head & kPinuse) | lead | kCinuse;
      leader = mem;
    }
    p = q;
  }
  if (!is_mapped(p)) {
    size_t size = size_of(p);
    if (size > nb + kMinChunk) {
      set_in_use(p, nb);
      Chunk *r = at(p, nb);
      r->head = (size - nb) | kPinuse | kCinuse;
      trailer = user(r);
    }
  }
  if (size_of(p) < nb || (reinterpret_cast<uintptr_t>(user(p)) & (alignment - 1)))
    corrupted();
  unlock();
  release(leader);
  release(trailer);
  return user(p);
}

} // namespace
} // namespace kv::heap

KV_FUNCTION(weak, int, __syscall_posix_memalign, (void **out, size_t alignment, size_t size)) {
  size_t words = alignment / 4;
  if (alignment % 4 || words == 0 || (words & (words - 1)))
    return KV_EINVAL;
  void *mem = kv::heap::aligned(alignment, size);
  if (!mem)
    return KV_ENOMEM;
  *out = mem;
  return 0;
}
