// Allocation: exact small bins, the next small bins or the tries for a split, the spare chunk,
// the top chunk, and only then the system side.
#include "alloc/trie.h"

namespace kv::heap {
namespace {

// The old spare chunk, always small here, goes back to its bin.
void replace_spare(Chunk *p, size_t s) {
  if (size_t old = state.dvsize) {
    if (old >= kMinLarge)
      corrupted();
    insert_small(state.dv, old);
  }
  state.dv = p;
  state.dvsize = s;
}

Chunk *take_first_small(uint32_t i) {
  Chunk *b = small_bin(i);
  Chunk *p = b->fd;
  Chunk *f = p->fd;
  if (p == b || f == p || size_of(p) != i << 3 || (f != b && !ok_address(f)))
    corrupted();
  b->fd = f;
  f->bk = b;
  if (f == b)
    state.smallmap &= ~(1u << i);
  return p;
}

// Hands out nb bytes of v, whose remainder is rsize; the remainder goes where `keep` puts it.
template <typename Keep> void *split_tree_fit(TreeChunk *v, size_t nb, size_t rsize, Keep keep) {
  if (!ok_address(v) || size_of(v) != nb + rsize)
    corrupted();
  trie_unlink(v);
  Chunk *p = reinterpret_cast<Chunk *>(v);
  if (rsize < kMinChunk) {
    mark_in_use(p, rsize + nb);
  } else {
    p->head = nb | kPinuse | kCinuse;
    Chunk *r = at(p, nb);
    set_free(r, rsize);
    keep(r, rsize);
  }
  return user(p);
}

inline TreeChunk *leftmost_child(TreeChunk *t) { return t->child[0] ? t->child[0] : t->child[1]; }

// The node of the smallest indexed size of at least s, or null.
inline TreeChunk *indexed_fit(size_t s) {
  uint32_t w = static_cast<uint32_t>(s >> 8) - 1;
  uint32_t bits = tree_nodes.map[w] & (~0u << ((s >> 3) & 31));
  while (!bits) {
    if (++w == kIndexedSizes / 32)
      return nullptr;
    bits = tree_nodes.map[w];
  }
  return tree_nodes.node[(w << 5) + static_cast<uint32_t>(__builtin_ctz(bits))];
}

// The smallest chunk of trie i: the root or the smallest on the path that keeps to child[0].
inline TreeChunk *smallest_in(uint32_t i) {
  TreeChunk *v = state.treebins[i];
  size_t vsize = size_of(v);
  for (TreeChunk *t = leftmost_child(v); t; t = leftmost_child(t)) {
    if (size_of(t) < vsize) {
      vsize = size_of(t);
      v = t;
    }
  }
  return v;
}

// A small request from the smallest chunk of the lowest non-empty trie.
void *tree_small(size_t nb) {
  uint32_t map = state.treemap;
  TreeChunk *v = map & ((1u << kIndexedBins) - 1)
                     ? indexed_fit(kMinLarge)
                     : smallest_in(static_cast<uint32_t>(__builtin_ctz(map)));
  return split_tree_fit(v, nb, size_of(v) - nb, [](Chunk *r, size_t n) { replace_spare(r, n); });
}

// The best fit of a size beyond the indexed ones, or null.
__attribute__((noinline)) TreeChunk *unindexed_fit(size_t nb) {
  TreeChunk *v = nullptr;
  size_t rsize = 0 - nb;
  TreePlace place = tree_place(nb);
  uint32_t idx = place.index;
  TreeChunk *t = state.treebins[idx];
  if (state.treemap & (1u << idx)) {
    size_t key = nb << place.shift;
    TreeChunk *untaken = nullptr; // deepest right subtree the descent passed by
    for (;;) {
      size_t rem = size_of(t) - nb;
      if (rem < rsize) {
        v = t;
        rsize = rem;
        if (rem == 0)
          break;
      }
      TreeChunk *right = t->child[1];
      if (static_cast<int32_t>(key) < 0) {
        t = right;
      } else {
        t = t->child[0];
        if (right)
          untaken = right;
      }
      key <<= 1;
      if (!t) {
        t = untaken;
        break;
      }
    }
  } else {
    t = nullptr;
  }
  if (!t && !v) {
    uint32_t above = bits_above(1u << idx) & state.treemap;
    if (above)
      t = state.treebins[__builtin_ctz(above)];
  }
  if (t) {
    for (;;) {
      size_t rem = size_of(t) - nb;
      if (rem < rsize) {
        rsize = rem;
        v = t;
      }
      TreeChunk *c = t->child[0];
      if (!c && !(c = t->child[1]))
        break;
      t = c;
    }
  }
  return v;
}

// Best fit for a large request, or null when the spare chunk fits at least as well.
void *tree_large(size_t nb) {
  TreeChunk *v;
  if (nb < kIndexedLimit) {
    // Every size of the first four tries is indexed, so the best fit is either the next
    // indexed size or the smallest chunk of the lowest trie above them.
    v = indexed_fit(nb);
    if (!v) {
      uint32_t above = state.treemap & (~0u << kIndexedBins);
      if (!above)
        return nullptr;
      v = smallest_in(static_cast<uint32_t>(__builtin_ctz(above)));
    }
  } else {
    v = unindexed_fit(nb);
    if (!v)
      return nullptr;
  }
  size_t rsize = size_of(v) - nb;
  if (rsize >= state.dvsize - nb)
    return nullptr;
  return split_tree_fit(v, nb, rsize, [](Chunk *r, size_t n) { bin_chunk(r, n); });
}

} // namespace

void set_top(Chunk *p, size_t size) {
  state.top = p;
  state.topsize = size;
  p->head = size | kPinuse;
  at(p, size)->head = kTopFoot;
  state.trim_check = params.trim_threshold;
}

namespace {

// With the lock held.
__attribute__((always_inline)) inline void *allocate_locked(size_t bytes) {
  size_t nb;
  if (bytes <= kMaxSmallRequest) {
    nb = request_to_chunk(bytes);
    uint32_t idx = static_cast<uint32_t>(nb >> 3);
    uint32_t bits = state.smallmap >> idx;
    if (bits & 3) {
      idx += ~bits & 1;
      Chunk *p = take_first_small(idx);
      mark_in_use(p, idx << 3);
      return user(p);
    }
    if (nb > state.dvsize) {
      if (bits) {
        uint32_t i = static_cast<uint32_t>(__builtin_ctz(bits << idx));
        Chunk *p = take_first_small(i);
        size_t rsize = (i << 3) - nb;
        p->head = nb | kPinuse | kCinuse;
        Chunk *r = at(p, nb);
        set_free(r, rsize);
        replace_spare(r, rsize);
        return user(p);
      }
      if (state.treemap)
        return tree_small(nb);
    }
  } else if (bytes >= kMaxRequest) {
    nb = ~size_t{0};
  } else {
    nb = request_to_chunk(bytes);
    if (state.treemap)
      if (void *mem = tree_large(nb))
        return mem;
  }

  if (nb <= state.dvsize) {
    Chunk *p = state.dv;
    size_t rsize = state.dvsize - nb;
    if (rsize >= kMinChunk) {
      Chunk *r = at(p, nb);
      state.dv = r;
      state.dvsize = rsize;
      set_free(r, rsize);
      p->head = nb | kPinuse | kCinuse;
    } else {
      size_t whole = state.dvsize;
      state.dv = nullptr;
      state.dvsize = 0;
      mark_in_use(p, whole);
    }
    return user(p);
  }
  if (nb < state.topsize)
    return take_from_top(nb);
  return system_allocate(nb);
}

} // namespace

void *allocate(size_t bytes) {
  enter();
  void *mem = allocate_locked(bytes);
  unlock();
  return mem;
}

} // namespace kv::heap
