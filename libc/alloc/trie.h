// The tree bins' two operations, inlined into the paths that run on every free and most
// allocations; bins.cpp has out-of-line copies for the rest.
#pragma once

#include "alloc/heap.h"

#pragma GCC visibility push(hidden)

namespace kv::heap {

// Where a size of the first four tries is indexed: the size's bits 8..9 pick the map word
// (256..511, 512..767, 768..1023) and its bits 3..7 the bit in it.
inline TreeChunk *&indexed_node(size_t s) { return tree_nodes.node[(s >> 3) - kMinLarge / 8]; }
inline uint32_t &index_word(size_t s) { return tree_nodes.map[(s >> 8) - 1]; }
inline uint32_t index_bit(size_t s) { return 1u << ((s >> 3) & 31); }

// x becomes the last child on its key's path; the caller knows its size is not in the trie.
__attribute__((always_inline)) inline void trie_add_node(TreeChunk *x, TreeChunk **root, uint32_t i,
                                                         size_t key, const char *least) {
  x->fd = x->bk = x;
  uint32_t map = state.treemap;
  if (!(map & (1u << i))) {
    state.treemap = map | (1u << i);
    *root = x;
    x->parent = reinterpret_cast<TreeChunk *>(root);
    return;
  }
  TreeChunk *t = *root;
  for (;;) {
    TreeChunk **c = &t->child[key >> 31];
    key <<= 1;
    if (!*c) {
      if (reinterpret_cast<const char *>(c) < least)
        corrupted();
      *c = x;
      x->parent = t;
      return;
    }
    t = *c;
  }
}

// x joins the ring of node t, right after the node.
__attribute__((always_inline)) inline void trie_join(TreeChunk *t, TreeChunk *x,
                                                     const char *least) {
  TreeChunk *f = t->fd;
  if (reinterpret_cast<const char *>(t) < least || reinterpret_cast<const char *>(f) < least)
    corrupted();
  t->fd = f->bk = x;
  x->fd = f;
  x->bk = t;
  x->parent = nullptr;
}

__attribute__((always_inline)) inline void trie_insert(TreeChunk *x, size_t s,
                                                       const char *least = state.least_addr) {
  x->child[0] = x->child[1] = nullptr;
  if (s < kIndexedLimit) {
    // Bins 0..3: the size's top bits give the bin (256, 384, 512 and 768 start them).
    uint32_t i = (0x33221000u >> ((s >> 7) << 2)) & 15;
    x->index = i;
    TreeChunk *&node = indexed_node(s);
    if (TreeChunk *t = node) {
      trie_join(t, x, least);
      return;
    }
    node = x;
    index_word(s) |= index_bit(s);
    trie_add_node(x, &state.treebins[i], i, s << (25 - (i >> 1)), least);
    return;
  }
  TreePlace place = tree_place(s);
  uint32_t i = place.index;
  TreeChunk **root = &state.treebins[i];
  x->index = i;
  if (!(state.treemap & (1u << i))) {
    trie_add_node(x, root, i, 0, least);
    return;
  }
  TreeChunk *t = *root;
  size_t key = s << place.shift;
  size_t head = s | kPinuse; // every chunk in a trie is free with its neighbour in front in use
  while (t->head != head) {
    TreeChunk **c = &t->child[key >> 31];
    key <<= 1;
    if (!*c) {
      if (reinterpret_cast<const char *>(c) < least)
        corrupted();
      *c = x;
      x->parent = t;
      x->fd = x->bk = x;
      return;
    }
    t = *c;
  }
  trie_join(t, x, least);
}

// `least` is read once: the stores below cannot move it, but the compiler cannot tell.
__attribute__((always_inline)) inline void trie_unlink(TreeChunk *x,
                                                       const char *least = state.least_addr) {
  auto ok = [least](const void *p) { return static_cast<const char *>(p) >= least; };
  TreeChunk *parent = x->parent;
  uint32_t index = x->index;
  TreeChunk *r;
  if (x->bk != x) {
    // A ring member, or a node with a ring: its neighbour takes its place.
    TreeChunk *f = x->fd;
    r = x->bk;
    if (!ok(f) || f->bk != x || r->fd != x)
      corrupted();
    f->bk = r;
    r->fd = f;
    if (!parent)
      return;
    if (index < kIndexedBins)
      indexed_node(size_of(x)) = r;
  } else {
    if (index < kIndexedBins) {
      size_t size = size_of(x);
      indexed_node(size) = nullptr;
      index_word(size) &= ~index_bit(size);
    }
    // The deepest rightmost descendant replaces the node.
    TreeChunk **rp = &x->child[1];
    r = *rp;
    if (!r) {
      rp = &x->child[0];
      r = *rp;
    }
    if (r) {
      for (;;) {
        if (TreeChunk *c = r->child[1]) {
          rp = &r->child[1];
          r = c;
        } else if (TreeChunk *c0 = r->child[0]) {
          rp = &r->child[0];
          r = c0;
        } else {
          break;
        }
      }
      if (!ok(rp))
        corrupted();
      *rp = nullptr;
    }
    if (!parent)
      return;
  }
  // Only a root has the bin's slot for a parent.
  TreeChunk **root = &state.treebins[index];
  if (parent == reinterpret_cast<TreeChunk *>(root)) {
    *root = r;
    if (!r)
      state.treemap &= ~(1u << index);
  } else {
    if (!ok(parent))
      corrupted();
    parent->child[parent->child[0] == x ? 0 : 1] = r;
  }
  if (!r)
    return;
  if (!ok(r))
    corrupted();
  r->parent = parent;
  for (int side = 0; side < 2; ++side) {
    if (TreeChunk *c = x->child[side]) {
      if (!ok(c))
        corrupted();
      r->child[side] = c;
      c->parent = r;
    }
  }
}

// Small bins or a trie, by size.
__attribute__((always_inline)) inline void bin_chunk(Chunk *p, size_t s,
                                                     const char *least = state.least_addr) {
  if (s < kMinLarge)
    insert_small(p, s, least);
  else
    trie_insert(reinterpret_cast<TreeChunk *>(p), s, least);
}
__attribute__((always_inline)) inline void unbin_chunk(Chunk *p, size_t s,
                                                       const char *least = state.least_addr) {
  if (s < kMinLarge)
    unlink_small(p, s, least);
  else
    trie_unlink(reinterpret_cast<TreeChunk *>(p), least);
}

} // namespace kv::heap

#pragma GCC visibility pop
