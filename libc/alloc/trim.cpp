// Giving memory back: whole granules from the end of the top chunk's segment, and segments
// that have become one free chunk.
#include <kv/syscall.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "support/export.h"

namespace kv::heap {
namespace {

bool holds_record(const Segment *sp) {
  for (const Segment *s = &state.seg; s; s = s->next) {
    const char *r = reinterpret_cast<const char *>(s);
    if (r >= sp->base && r < sp->base + sp->size)
      return true;
  }
  return false;
}

size_t release_unused_segments() {
  size_t released = 0;
  Segment *pred = &state.seg;
  for (Segment *sp = pred->next; sp; sp = pred->next) {
    char *base = sp->base;
    size_t size = sp->size;
    Segment *next = sp->next;
    Chunk *p = at(base, align_offset(base));
    size_t psize = size_of(p);
    if ((sp->flags & kMappedSegment) && !in_use(p) &&
        reinterpret_cast<char *>(p) + psize >= base + size - kTopFoot) {
      char *record = reinterpret_cast<char *>(sp);
      if (record < base || record >= base + size)
        corrupted();
      if (p == state.dv) {
        state.dv = nullptr;
        state.dvsize = 0;
      } else {
        unlink_tree(reinterpret_cast<TreeChunk *>(p));
      }
      if (__syscall_munmap(base, size) == 0) {
        released += size;
        state.footprint -= size;
        pred->next = next;
        continue;
      }
      insert_tree(reinterpret_cast<TreeChunk *>(p), psize);
    }
    pred = sp;
  }
  return released;
}

} // namespace

bool trim(size_t pad) {
  if (pad >= kMaxRequest || !state.top)
    return false;
  size_t released = 0;
  pad += kTopFoot;
  if (state.topsize > pad) {
    size_t unit = params.granularity;
    size_t extra = ((state.topsize - pad + unit - 1) / unit - 1) * unit;
    Segment *sp = segment_holding(state.top);
    if (extra && sp && (sp->flags & kMappedSegment) && sp->size >= extra && !holds_record(sp)) {
      if (__syscall_munmap(sp->base + sp->size - extra, extra) == 0) {
        released = extra;
        sp->size -= extra;
        state.footprint -= extra;
        set_top(state.top, state.topsize - extra);
      }
    }
  }
  released += release_unused_segments();
  if (!released)
    state.trim_check = ~size_t{0};
  return released != 0;
}

} // namespace kv::heap

KV_FUNCTION(global, int, malloc_trim, (size_t pad)) {
  using namespace kv::heap;
  ensure_params();
  lock();
  bool released = trim(pad);
  unlock();
  return released;
}
