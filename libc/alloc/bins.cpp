// The tree bins: one bitwise trie per size range, equal sizes in a ring on one node.
#include "alloc/heap.h"

namespace kv::heap {

void init_bins() {
  for (uint32_t i = 0; i < kSmallBins; ++i) {
    Chunk *b = small_bin(i);
    b->fd = b->bk = b;
  }
}

namespace {
inline void index_node(size_t s, TreeChunk *x) {
  uint32_t k = static_cast<uint32_t>(s - kMinLarge) >> 3;
  tree_nodes.node[k] = x;
  tree_nodes.map[k >> 5] |= 1u << (k & 31);
}
inline void unindex_node(size_t s) {
  uint32_t k = static_cast<uint32_t>(s - kMinLarge) >> 3;
  tree_nodes.node[k] = nullptr;
  tree_nodes.map[k >> 5] &= ~(1u << (k & 31));
}
// x joins the ring of node t, right after it.
inline void join_ring(TreeChunk *t, TreeChunk *x) {
  TreeChunk *f = t->fd;
  if (!ok_address(t) || !ok_address(f))
    corrupted();
  t->fd = f->bk = x;
  x->fd = f;
  x->bk = t;
  x->parent = nullptr;
}
} // namespace

void insert_tree(TreeChunk *x, size_t s) {
  x->child[0] = x->child[1] = nullptr;
  if (s < kIndexedLimit) {
    // Bins 0..3: the size's top bits give the bin (256, 384, 512 and 768 start them).
    x->index = (0x33221000u >> ((s >> 7) << 2)) & 15;
    if (TreeChunk *t = tree_nodes.node[(s - kMinLarge) >> 3]) {
      join_ring(t, x);
      return;
    }
    index_node(s, x);
  }
  TreePlace place = tree_place(s);
  uint32_t i = place.index;
  TreeChunk **root = &state.treebins[i];
  x->index = i;
  if (!(state.treemap & (1u << i))) {
    state.treemap |= 1u << i;
    *root = x;
    x->parent = reinterpret_cast<TreeChunk *>(root);
    x->fd = x->bk = x;
    return;
  }
  TreeChunk *t = *root;
  size_t key = s << place.shift;
  size_t head = s | kPinuse; // every chunk in a trie is free with its neighbour in front in use
  for (;;) {
    if (t->head != head) {
      TreeChunk **c = &t->child[(key >> 31) & 1];
      key <<= 1;
      if (*c) {
        t = *c;
        continue;
      }
      if (!ok_address(c))
        corrupted();
      *c = x;
      x->parent = t;
      x->fd = x->bk = x;
      return;
    }
    join_ring(t, x);
    return;
  }
}

void unlink_tree(TreeChunk *x) {
  // Read once: the stores below cannot move it, but the compiler cannot tell.
  const char *least = state.least_addr;
  auto ok = [least](const void *p) { return static_cast<const char *>(p) >= least; };
  TreeChunk *parent = x->parent;
  TreeChunk *r;
  if (x->bk != x) {
    // A ring member (or a node with a ring): its neighbour takes its place.
    TreeChunk *f = x->fd;
    r = x->bk;
    if (!ok(f) || f->bk != x || r->fd != x)
      corrupted();
    f->bk = r;
    r->fd = f;
    if (parent && size_of(x) < kIndexedLimit)
      tree_nodes.node[(size_of(x) - kMinLarge) >> 3] = r;
  } else {
    if (size_of(x) < kIndexedLimit)
      unindex_node(size_of(x));
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
  }
  if (!parent)
    return;
  TreeChunk **root = &state.treebins[x->index];
  if (x == *root) {
    *root = r;
    if (!r)
      state.treemap &= ~(1u << x->index);
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

} // namespace kv::heap
