// Memory from the system side: chunks with a mapping of their own, and regions that extend the
// top chunk's segment, join an existing segment from below, or start a new segment.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "alloc/heap.h"
#include "posix/signal_calls.h"

namespace kv::heap {
namespace {

char *map(size_t size) {
  void *m = __syscall_mmap(nullptr, size, kMapProt, kMapFlags, -1, 0);
  return m == reinterpret_cast<void *>(KV_MAP_FAILED) ? nullptr : static_cast<char *>(m);
}

void count_mapped(char *base, size_t size) {
  if (!state.least_addr || base < state.least_addr)
    state.least_addr = base;
  state.footprint += size;
  if (state.footprint > state.max_footprint)
    state.max_footprint = state.footprint;
}

void *map_direct(size_t nb) {
  size_t g = params.granularity;
  size_t size = (nb + 31 + g) & ~(g - 1);
  if (size <= nb)
    return nullptr;
  char *base = map(size);
  if (!base)
    return nullptr;
  size_t offset = align_offset(base);
  size_t psize = size - offset - kMappedFoot;
  Chunk *p = at(base, offset);
  p->prev_foot = offset | kMappedBit;
  p->head = psize | kCinuse;
  at(p, psize)->head = kFencepost;
  at(p, psize + 4)->head = 0;
  count_mapped(base, size);
  if (reinterpret_cast<uintptr_t>(user(p)) & 7)
    corrupted();
  return user(p);
}

// New space right below a segment whose first chunk is old_first: nb bytes for the request,
// the rest merged forward like a freed chunk.
void *prepend(char *base, char *old_base, size_t nb) {
  Chunk *p = at(base, align_offset(base));
  Chunk *old_first = at(old_base, align_offset(old_base));
  size_t psize = static_cast<size_t>(reinterpret_cast<char *>(old_first) - reinterpret_cast<char *>(p));
  Chunk *q = at(p, nb);
  size_t qsize = psize - nb;
  p->head = nb | kPinuse | kCinuse;
  if (psize < nb + kMinChunk || old_first <= q || !prev_in_use(old_first))
    corrupted();
  if (old_first == state.top) {
    size_t tsize = state.topsize += qsize;
    state.top = q;
    q->head = tsize | kPinuse;
  } else if (old_first == state.dv) {
    size_t dsize = state.dvsize += qsize;
    state.dv = q;
    set_free(q, dsize);
  } else {
    if (!in_use(old_first)) {
      size_t nsize = size_of(old_first);
      unlink_chunk(old_first, nsize);
      old_first = at(old_first, nsize);
      qsize += nsize;
    }
    old_first->head &= ~kPinuse;
    set_free(q, qsize);
    insert_chunk(q, qsize);
  }
  return user(p);
}

// A region not adjacent to the top chunk's segment becomes the top; the old segment is closed
// with a record chunk and fenceposts, and what is left of the old top goes into the bins.
void add_segment(char *base, size_t size) {
  char *old_top = reinterpret_cast<char *>(state.top);
  Segment *old = segment_holding(old_top);
  if (!old)
    corrupted();
  char *old_end = old->base + old->size;
  char *raw = old_end - (kRecordChunk + 4 * sizeof(size_t) + 7);
  char *record = raw + align_offset(raw);
  if (record < old_top + kMinChunk)
    record = old_top;
  Chunk *rc = reinterpret_cast<Chunk *>(record);
  Segment *copy = at<Segment>(rc, 8);
  set_top(at(base, align_offset(base)), size - align_offset(base) - kTopFoot);
  rc->head = kRecordChunk | kPinuse | kCinuse;
  *copy = state.seg;
  state.seg = {base, size, copy, kMappedSegment};
  size_t fences = 0;
  for (size_t *w = at<size_t>(rc, kRecordChunk); reinterpret_cast<char *>(w) < old_end; ++w) {
    *w = kFencepost;
    ++fences;
  }
  if (fences < 2)
    corrupted();
  if (record != old_top) {
    Chunk *q = reinterpret_cast<Chunk *>(old_top);
    size_t psize = static_cast<size_t>(record - old_top);
    rc->head &= ~kPinuse;
    set_free(q, psize);
    insert_chunk(q, psize);
  }
}

} // namespace

Segment *segment_holding(const void *addr) {
  const char *a = static_cast<const char *>(addr);
  for (Segment *s = &state.seg; s; s = s->next)
    if (a >= s->base && a < s->base + s->size)
      return s;
  return nullptr;
}

void *system_allocate(size_t nb) {
  if ((state.flags & kUseMmap) && nb >= params.mmap_threshold)
    if (void *mem = map_direct(nb))
      return mem;
  size_t g = params.granularity;
  size_t asize = (nb + kTopFoot + 1 + g) & ~(g - 1);
  char *base = asize > nb ? map(asize) : nullptr;
  if (!base) {
    set_enomem();
    return nullptr;
  }
  count_mapped(base, asize);
  if (!state.top) {
    state.seg = {base, asize, nullptr, kMappedSegment};
    state.magic = params.magic;
    init_bins();
    set_top(at(base, align_offset(base)), asize - align_offset(base) - kTopFoot);
  } else {
    Segment *s = &state.seg;
    while (s && base != s->base + s->size)
      s = s->next;
    if (s && (s->flags & kMappedSegment) && segment_holding(state.top) == s) {
      s->size += asize;
      set_top(state.top, state.topsize + asize);
    } else {
      s = &state.seg;
      while (s && s->base != base + asize)
        s = s->next;
      if (s && (s->flags & kMappedSegment)) {
        char *old_base = s->base;
        s->base = base;
        s->size += asize;
        return prepend(base, old_base, nb);
      }
      add_segment(base, asize);
    }
  }
  if (nb < state.topsize)
    return take_from_top(nb);
  set_enomem();
  return nullptr;
}

} // namespace kv::heap
