// The tree bins: one bitwise trie per size range, equal sizes in a ring on one node.
#include "alloc/trie.h"

namespace kv::heap {

void init_bins() {
  for (uint32_t i = 0; i < kSmallBins; ++i) {
    Chunk *b = small_bin(i);
    b->fd = b->bk = b;
  }
}

void insert_tree(TreeChunk *x, size_t s) { trie_insert(x, s); }
void unlink_tree(TreeChunk *x) { trie_unlink(x); }

} // namespace kv::heap
