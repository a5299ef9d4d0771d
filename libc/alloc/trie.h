// The tree bins' two operations, inlined into the paths that run on every free and most
// allocations; bins.cpp has out-of-line copies for the rest.
#pragma once

#include "alloc/heap.h"

#pragma GCC visibility push(hidden)

namespace kv::heap {

// The index slot of a size of the first four tries.
inline uint32_t node_slot(size_t s) { return static_cast<uint32_t>(s - kMinLarge) >> 3; }

__attribute__((always_inline)) inline void trie_insert(TreeChunk *x, size_t s) {
  const char *least = state.least_addr;
  auto ok = [least](const void *p) { return static_cast<const char *>(p) >= least; };
  x->child[0] = x->child[1] = nullptr;
  TreeChunk *t;
  if (s < kIndexedLimit) {
    // Bins 0..3: the size's top bits give the bin (256, 384, 512 and 768 start them).
    x->index = (0x33221000u >> ((s >> 7) << 2)) & 15;
    uint32_t k = node_slot(s);
    t = tree_nodes.node[k];
    if (t)
      goto join;
    tree_nodes.node[k] = x;
    tree_nodes.map[k >> 5] |= 1u << (k & 31);
  }
  {
    TreePlace place = tree_place(s);
    uint32_t i = place.index;
    TreeChunk **root = &state.treebins[i];
    x->index = i;
    x->fd = x->bk = x;
    if (!(state.treemap & (1u << i))) {
      state.treemap |= 1u << i;
      *root = x;
      x->parent = reinterpret_cast<TreeChunk *>(root);
      return;
    }
    t = *root;
    size_t key = s << place.shift;
    size_t head = s | kPinuse; // every chunk in a trie is free with its neighbour in front in use
    while (t->head != head) {
      TreeChunk **c = &t->child[key >> 31];
      key <<= 1;
      if (!*c) {
        if (!ok(c))
          corrupted();
        *c = x;
        x->parent = t;
        return;
      }
      t = *c;
    }
  }
join:
  // A size already present: x joins the node's ring, right after the node.
  TreeChunk *f = t->fd;
  if (!ok(t) || !ok(f))
    corrupted();
  t->fd = f->bk = x;
  x->fd = f;
  x->bk = t;
  x->parent = nullptr;
}

__attribute__((always_inline)) inline void trie_unlink(TreeChunk *x) {
  // Read once: the stores below cannot move it, but the compiler cannot tell.
  const char *least = state.least_addr;
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
    if (index < 4)
      tree_nodes.node[node_slot(size_of(x))] = r;
  } else {
    if (index < 4) {
      uint32_t k = node_slot(size_of(x));
      tree_nodes.node[k] = nullptr;
      tree_nodes.map[k >> 5] &= ~(1u << (k & 31));
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
  TreeChunk **root = &state.treebins[index];
  if (x == *root) {
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
__attribute__((always_inline)) inline void bin_chunk(Chunk *p, size_t s) {
  if (s < kMinLarge)
    insert_small(p, s);
  else
    trie_insert(reinterpret_cast<TreeChunk *>(p), s);
}
__attribute__((always_inline)) inline void unbin_chunk(Chunk *p, size_t s) {
  if (s < kMinLarge)
    unlink_small(p, s);
  else
    trie_unlink(reinterpret_cast<TreeChunk *>(p));
}

} // namespace kv::heap

#pragma GCC visibility pop
