// realloc in place (shrink, or grow into the top chunk) or by copy, and calloc.
#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "runtime/block_memory.h"
#include "support/export.h"

namespace kv::heap {
namespace {

// Every case but growth into the top chunk, entered with the lock held and the block checked;
// kept apart so that the growth path saves and restores little.
__attribute__((noinline)) void *resize_other(void *mem, size_t bytes) {
  Chunk *p = chunk_of(mem);
  size_t oldsize = size_of(p);
  size_t nb = request_to_chunk(bytes);
  bool mapped = is_mapped(p);
  bool in_place = false;
  void *cut_off = nullptr;
  if (mapped) {
    // No way to move a mapping: keep it while it is not much too big.
    in_place = nb >= kMinLarge && oldsize >= nb + kOverhead &&
               oldsize - nb <= 2 * params.granularity;
  } else if (oldsize >= nb) {
    in_place = true;
    size_t rsize = oldsize - nb;
    if (rsize >= kMinChunk) {
      set_in_use(p, nb);
      Chunk *r = at(p, nb);
      r->head = rsize | kPinuse | kCinuse;
      cut_off = user(r);
    }
  }
  unlock();
  if (in_place) {
    if (cut_off)
      release(cut_off);
    return mem;
  }
  void *fresh = allocate(bytes);
  if (fresh) {
    size_t usable = oldsize - (mapped ? kMappedOverhead : kOverhead);
    mem_copy(fresh, mem, usable < bytes ? usable : bytes);
    release(mem);
  }
  return fresh;
}

void *resize(void *mem, size_t bytes) {
  if (!mem)
    return allocate(bytes);
  if (bytes >= kMaxRequest) {
    set_enomem();
    return nullptr;
  }
  enter();
  Chunk *p = chunk_of(mem);
  size_t head = p->head;
  size_t oldsize = head & ~size_t{7};
  Chunk *next = at(p, oldsize);
  if (!ok_address(p) || !(head & kCinuse) || next <= p || !prev_in_use(next))
    bad_free(2231);
  // Growth into the top chunk first: a mapped chunk is never followed by it, and the chunk is
  // too small, so no other case applies.
  if (next == state.top) {
    size_t nb = request_to_chunk(bytes);
    size_t total = oldsize + state.topsize;
    if (oldsize < nb && total > nb) {
      size_t topsize = total - nb;
      p->head = (head & kPinuse) | nb | kCinuse;
      Chunk *t = at(p, nb);
      t->head = topsize | kPinuse;
      state.top = t;
      state.topsize = topsize;
      unlock();
      return mem;
    }
  }
  return resize_other(mem, bytes);
}

void *zeroed(size_t count, size_t size) {
  size_t bytes = 0;
  if (count) {
    bytes = count * size;
    if (((count | size) & ~size_t{0xFFFF}) && bytes / count != size)
      bytes = ~size_t{0};
  }
  void *mem = allocate(bytes);
  if (mem && !is_mapped(chunk_of(mem)))
    mem_fill(mem, bytes, 0);
  return mem;
}

} // namespace
} // namespace kv::heap

KV_FUNCTION(weak, void *, __syscall_realloc, (void *block, size_t size)) {
  return kv::heap::resize(block, size);
}

KV_FUNCTION(weak, void *, __syscall_calloc, (size_t count, size_t size)) {
  return kv::heap::zeroed(count, size);
}
