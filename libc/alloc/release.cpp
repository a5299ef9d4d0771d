// Free: a mapped chunk goes back to the system side; any other merges with free neighbours and
// lands in the top chunk, the spare chunk or a bin.
#include <kv/syscall.h>

#include "alloc/trie.h"
#include "alloc/malloc.h"
#include "support/export.h"

namespace kv::heap {

void release(void *mem) {
  if (!mem)
    return;
  enter();
  Chunk *p = chunk_of(mem);
  if (!ok_address(p) || !in_use(p))
    bad_free(2672);
  size_t psize = size_of(p);
  Chunk *next = at(p, psize);
  if (!prev_in_use(p)) {
    size_t prevsize = p->prev_foot;
    if (prevsize & kMappedBit) {
      prevsize &= ~kMappedBit;
      psize += prevsize + kMappedFoot;
      if (__syscall_munmap(before<char>(p, prevsize), psize) == 0)
        state.footprint -= psize;
      unlock();
      return;
    }
    Chunk *prev = before(p, prevsize);
    psize += prevsize;
    p = prev;
    if (!ok_address(p))
      bad_free(2672);
    if (p != state.dv) {
      unbin_chunk(p, prevsize);
    } else if ((next->head & (kPinuse | kCinuse)) == (kPinuse | kCinuse)) {
      state.dvsize = psize;
      next->head &= ~kPinuse;
      set_free(p, psize);
      unlock();
      return;
    }
  }
  if (next <= p || !prev_in_use(next))
    bad_free(2672);
  if (!in_use(next)) {
    if (next == state.top) {
      size_t tsize = state.topsize += psize;
      state.top = p;
      p->head = tsize | kPinuse;
      if (p == state.dv) {
        state.dv = nullptr;
        state.dvsize = 0;
      }
      if (tsize > state.trim_check)
        trim(0);
      unlock();
      return;
    }
    if (next == state.dv) {
      size_t dsize = state.dvsize += psize;
      state.dv = p;
      set_free(p, dsize);
      unlock();
      return;
    }
    size_t nsize = size_of(next);
    psize += nsize;
    unbin_chunk(next, nsize);
    set_free(p, psize);
    if (p == state.dv) {
      state.dvsize = psize;
      unlock();
      return;
    }
  } else {
    next->head &= ~kPinuse;
    set_free(p, psize);
  }
  bin_chunk(p, psize);
  unlock();
}

} // namespace kv::heap

KV_FUNCTION(weak, void, __syscall_free, (void *block)) { kv::heap::release(block); }
