// Free: a mapped chunk goes back to the system side; any other merges with free neighbours and
// lands in the top chunk, the spare chunk or a bin.
#include <kv/syscall.h>

#include "alloc/malloc.h"
#include "alloc/trie.h"
#include "support/export.h"

namespace kv::heap {

void release(void *mem) {
  if (!mem)
    return;
  enter();
  const char *least = state.least_addr;
  Chunk *p = chunk_of(mem);
  size_t head = p->head;
  if (reinterpret_cast<const char *>(p) < least || !(head & kCinuse))
    bad_free(2672);
  size_t psize = head & ~size_t{7};
  Chunk *next = at(p, psize);
  if (!(head & kPinuse)) {
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
    if (reinterpret_cast<const char *>(p) < least)
      bad_free(2672);
    if (p != state.dv) {
      unbin_chunk(p, prevsize, least);
    } else if ((next->head & (kPinuse | kCinuse)) == (kPinuse | kCinuse)) {
      state.dvsize = psize;
      next->head &= ~kPinuse;
      set_free(p, psize);
      unlock();
      return;
    }
  }
  size_t nhead = next->head;
  if (next <= p || !(nhead & kPinuse))
    bad_free(2672);
  if (!(nhead & kCinuse)) {
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
    Chunk *dv = state.dv;
    if (next == dv) {
      size_t dsize = state.dvsize += psize;
      state.dv = p;
      set_free(p, dsize);
      unlock();
      return;
    }
    size_t nsize = nhead & ~size_t{7};
    psize += nsize;
    unbin_chunk(next, nsize, least);
    set_free(p, psize);
    if (p == dv) {
      state.dvsize = psize;
      unlock();
      return;
    }
  } else {
    next->head = nhead & ~kPinuse;
    set_free(p, psize);
  }
  bin_chunk(p, psize, least);
  unlock();
}

} // namespace kv::heap

// The export is the heap's own free under a second name, so that a call costs no extra jump.
KV_ALIAS(weak, void, __syscall_free, (void *block), _ZN2kv4heap7releaseEPv);
