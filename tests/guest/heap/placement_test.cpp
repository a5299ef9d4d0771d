// White-box: where the heap puts things is part of its behaviour, so a fixed mixed workload over
// a scripted system side must place every block exactly where it always has. Each stretch of
// the workload folds its results (addresses, heap state) into one digest, compared with the
// recorded ones; a faster path that picks a different chunk shows up at the first stretch it
// touches. A second test walks every trie and checks the links and sizes the paths rely on,
// and that the size index points at exactly the tries' nodes.
#include <kvtest.h>
#include <xorshift.h>
#include <stdint.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"

using namespace kv::heap;

namespace {
// The system side: first fit over the pages of a static arena, so that regions
// land next to, below and above one another as the workload frees and grows.
constexpr size_t kPage = 4096, kPages = 4096;
alignas(16384) char arena[kPages * kPage];
bool page_used[kPages];

uint32_t offset(const void *p) {
  return p ? static_cast<uint32_t>(static_cast<const char *>(p) - arena) : 0xFFFFFFFFu;
}
} // namespace

extern "C" void *__syscall_mmap(void *, size_t length, int, int, int, long) {
  size_t n = (length + kPage - 1) / kPage;
  for (size_t i = 0; i + n <= kPages; ++i) {
    size_t j = 0;
    while (j < n && !page_used[i + j])
      ++j;
    if (j == n) {
      for (j = 0; j < n; ++j)
        page_used[i + j] = true;
      return arena + i * kPage;
    }
    i += j;
  }
  return reinterpret_cast<void *>(-1);
}

extern "C" int __syscall_munmap(void *addr, size_t length) {
  char *p = static_cast<char *>(addr);
  for (size_t i = 0; i < length; ++i) // a later mapping here starts zero-filled
    p[i] = 0;
  for (size_t i = offset(p) / kPage; i < (offset(p) + length) / kPage; ++i)
    page_used[i] = false;
  return 0;
}

namespace {
constexpr int kSlots = 512;
void *slot[kSlots];
uint32_t rng = 0x9E3779B9;
uint32_t digest;

uint32_t next() { return kvtest::xorshift32(rng); }
void mix(uint32_t v) { digest = (digest ^ v) * 16777619u; }

size_t pick_size() {
  uint32_t r = next() % 1000;
  if (r < 450)
    return next() % 245;
  if (r < 850)
    return 245 + next() % 780; // the first tries
  if (r < 960)
    return 1025 + next() % 16000;
  if (r < 995)
    return 16384 + next() % 100000;
  return 262144 + next() % 150000; // a mapping of its own
}

void one_operation() {
  int k = static_cast<int>(next() % kSlots);
  uint32_t kind = next() % 100;
  void *&p = slot[k];
  if (!p) {
    size_t n = pick_size();
    if (kind < 60) {
      p = kv::malloc(n);
    } else if (kind < 70) {
      p = __syscall_calloc(1 + n % 3, n / 3);
    } else if (kind < 80) {
      void *out = nullptr;
      mix(static_cast<uint32_t>(__syscall_posix_memalign(&out, size_t{16} << (next() % 8), n)));
      p = out;
    } else {
      p = __syscall_realloc(nullptr, n);
    }
    mix(offset(p));
  } else if (kind < 60) {
    __syscall_free(p);
    p = nullptr;
  } else if (kind < 99) {
    // Growth by small steps, as a buffer grows, or a new size altogether.
    size_t n = kind < 80 ? size_of(chunk_of(p)) + next() % 64 : pick_size();
    void *q = __syscall_realloc(p, n);
    if (q)
      p = q;
    mix(offset(q));
  } else {
    mix(static_cast<uint32_t>(malloc_trim(next() % 40000)));
  }
  mix(state.smallmap);
  mix(state.treemap);
  mix(state.dvsize);
  mix(state.topsize);
  mix(offset(state.dv));
}

unsigned indexed_nodes; // trie nodes of the sizes that the size index covers, as walked

// Sizes, bins and links of the trie below node t, reached from the root along `prefix`, and
// the size index's entry for each node it covers.
bool trie_sound(TreeChunk *t, TreeChunk *parent, uint32_t index, size_t prefix, uint32_t depth) {
  size_t size = size_of(t);
  uint32_t shift = tree_shift(index);
  bool ok = t->parent == parent && t->index == index && tree_index(size) == index && !in_use(t) &&
            (depth == 0 || ((size << shift) >> (32 - depth)) == prefix);
  if (size < kIndexedLimit) {
    uint32_t k = static_cast<uint32_t>(size - kMinLarge) / 8;
    ok &= tree_nodes.node[k] == t && ((tree_nodes.map[k / 32] >> (k % 32)) & 1);
    ++indexed_nodes;
  }
  for (TreeChunk *m = t->fd; m != t; m = m->fd)
    ok &= m->parent == nullptr && size_of(m) == size && m->fd->bk == m && m->index == index;
  for (int side = 0; side < 2; ++side)
    if (TreeChunk *c = t->child[side])
      ok &= depth < 32 && trie_sound(c, t, index, (prefix << 1) | side, depth + 1);
  return ok;
}

// The index holds nothing but the nodes the walk found: a bit for each entry, and no more.
bool index_sound() {
  unsigned entries = 0;
  bool ok = true;
  for (uint32_t k = 0; k < kIndexedSizes; ++k) {
    bool bit = (tree_nodes.map[k / 32] >> (k % 32)) & 1;
    ok &= bit == (tree_nodes.node[k] != nullptr);
    entries += bit;
  }
  return ok && entries == indexed_nodes;
}
} // namespace

TEST(HeapPlacement, MixedWorkloadPlacesBlocksAsRecorded) {
  // One digest per 2000 operations.
  const uint32_t recorded[] = {0xb1dd38a8, 0xe0e9b73a, 0xc0423a6b, 0xd6ee64b,  0x2878c1cb,
                               0x45a8efda, 0xdc8fceb5, 0x6e767d1b, 0xf2315e61, 0x58509aa2};
  for (uint32_t stretch = 0; stretch < sizeof recorded / sizeof recorded[0]; ++stretch) {
    digest = 2166136261u;
    for (int i = 0; i < 2000; ++i)
      one_operation();
    EXPECT_EQ(digest, recorded[stretch]);
  }
}

TEST(HeapPlacement, TriesAndTheirIndexStayWellFormed) {
  for (int round = 0; round < 8; ++round) {
    for (int i = 0; i < 1000; ++i)
      one_operation();
    indexed_nodes = 0;
    for (uint32_t i = 0; i < kTreeBins; ++i) {
      TreeChunk *root = state.treebins[i];
      EXPECT_EQ(root != nullptr, (state.treemap >> i) & 1);
      if (root)
        EXPECT_TRUE(trie_sound(root, reinterpret_cast<TreeChunk *>(&state.treebins[i]), i, 0, 0));
    }
    EXPECT_TRUE(index_sound());
  }
}
