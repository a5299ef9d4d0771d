// White-box: chunk headers, the small bins, the tries and the spare chunk as the allocation
// paths leave them.
#include <kvtest.h>
#include <stdint.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "bridge/errno_cells.h"

using namespace kv::heap;

namespace {
Chunk *chunk(void *mem) { return chunk_of(mem); }
uintptr_t addr(const void *p) { return reinterpret_cast<uintptr_t>(p); }
void *fresh(size_t n) { return kv::malloc(n); }
// Puts the spare chunk into its bin, so that a test starts without one.
void drop_spare() {
  if (state.dvsize)
    insert_chunk(state.dv, state.dvsize);
  state.dv = nullptr;
  state.dvsize = 0;
}
} // namespace

TEST(Chunks, RequestSizes) {
  struct {
    size_t request, chunk;
  } rows[] = {{0, 16},    {1, 16},    {10, 16},   {11, 16},    {12, 16},   {13, 24},
              {20, 24},   {21, 32},   {244, 248}, {245, 256},  {1000, 1008}};
  void *seen[sizeof rows / sizeof rows[0]];
  size_t i = 0;
  for (auto &row : rows) {
    void *p = fresh(row.request);
    ASSERT_TRUE(p != nullptr);
    EXPECT_EQ(addr(p) % 8, 0u);
    EXPECT_EQ(size_of(chunk(p)), row.chunk);
    EXPECT_EQ(chunk(p)->head & 3, 3u);
    for (size_t j = 0; j < i; ++j)
      EXPECT_NE(seen[j], p); // malloc(0) too gives a block of its own
    seen[i++] = p;
  }
  for (size_t j = 0; j < i; ++j)
    __syscall_free(seen[j]);
}

TEST(Chunks, TreeIndex) {
  struct {
    size_t size;
    uint32_t index, shift;
  } rows[] = {{256, 0, 25},     {383, 0, 25},      {384, 1, 25},     {511, 1, 25},
              {512, 2, 24},     {767, 2, 24},      {768, 3, 24},     {1024, 4, 23},
              {0xBFFFF8, 30, 10}, {0xC00000, 31, 0}, {0xFFFFF8, 31, 0}, {0x1000000, 31, 0},
              {0x7FFFFFF8, 31, 0}, {0xFFFFFFF8, 31, 0}};
  for (auto &row : rows) {
    EXPECT_EQ(tree_index(row.size), row.index);
    EXPECT_EQ(tree_shift(tree_index(row.size)), row.shift);
    EXPECT_EQ(tree_place(row.size).index, row.index);
    EXPECT_EQ(tree_place(row.size).shift, row.shift);
  }
}

TEST(Chunks, SmallBlocksComeBackLastInFirstOut) {
  void *a = fresh(40), *g1 = fresh(8), *b = fresh(40), *g2 = fresh(8);
  __syscall_free(a);
  __syscall_free(b);
  // Both neighbours in use: each lands at the front of the 48-byte bin.
  EXPECT_EQ(state.smallbins[2 * 6 + 2], chunk(b));
  EXPECT_TRUE(state.smallmap & (1u << 6));
  EXPECT_EQ(fresh(40), b);
  EXPECT_EQ(fresh(44), a); // the next bin up serves without a split
  EXPECT_EQ(size_of(chunk(a)), 48u);
  EXPECT_FALSE(state.smallmap & (1u << 6));
  void *all[] = {a, g1, b, g2};
  for (void *p : all)
    __syscall_free(p);
}

TEST(Chunks, SplitRemainderBecomesTheSpareChunk) {
  void *big = fresh(200), *guard = fresh(8);
  __syscall_free(big); // 208 bytes into bin 26
  ASSERT_TRUE(state.smallmap & (1u << 26));
  drop_spare();
  void *p = fresh(24);
  EXPECT_EQ(p, big);
  EXPECT_EQ(state.dv, at(chunk(p), 32));
  EXPECT_EQ(state.dvsize, 176u);
  EXPECT_EQ(state.dv->head, 176u | 1);
  void *q = fresh(24); // from the spare chunk
  EXPECT_EQ(chunk(q), at(chunk(p), 32));
  EXPECT_EQ(state.dvsize, 144u);
  __syscall_free(q); // merges with the spare chunk in front of it
  EXPECT_EQ(state.dv, chunk(q));
  EXPECT_EQ(state.dvsize, 176u);
  __syscall_free(p); // and behind it
  EXPECT_EQ(state.dv, chunk(p));
  EXPECT_EQ(state.dvsize, 208u);
  EXPECT_EQ(at(chunk(p), 208)->prev_foot, 208u);
  EXPECT_FALSE(prev_in_use(at(chunk(p), 208)));
  void *whole = fresh(200); // less than 16 left: the whole spare chunk
  EXPECT_EQ(whole, p);
  EXPECT_EQ(state.dvsize, 0u);
  __syscall_free(whole);
  __syscall_free(guard);
}

TEST(Chunks, BestFitInTheTries) {
  drop_spare();
  void *blocks[5];
  size_t sizes[5] = {1000, 600, 1000, 2000, 520};
  void *guards[5];
  for (int i = 0; i < 5; ++i) {
    blocks[i] = fresh(sizes[i]);
    guards[i] = fresh(8);
  }
  for (void *b : blocks)
    __syscall_free(b);
  // Two 1008-byte chunks: the second hangs in the ring of the first, without a parent.
  TreeChunk *node = reinterpret_cast<TreeChunk *>(chunk(blocks[0]));
  TreeChunk *member = reinterpret_cast<TreeChunk *>(chunk(blocks[2]));
  EXPECT_EQ(node->fd, member);
  EXPECT_EQ(member->bk, node);
  EXPECT_TRUE(member->parent == nullptr);
  EXPECT_TRUE(node->parent != nullptr);
  EXPECT_EQ(member->index, tree_index(1008));

  struct {
    size_t request;
    void *expect;
    size_t chunk;
  } rows[] = {
      {590, blocks[1], 608},  // exact fit
      {510, blocks[4], 528},  // 528 for 520: 8 left over, the whole chunk
      {701, blocks[0], 712},  // 1008 splits; the node leaves, its ring member takes over
      {990, blocks[2], 1008}, // the other 1008
      {1500, blocks[3], 1504},
  };
  for (auto &row : rows) {
    void *p = fresh(row.request);
    EXPECT_EQ(p, row.expect);
    EXPECT_EQ(size_of(chunk(p)), row.chunk);
  }
  // 1008 - 712 = 296 went back into tree bin 0 as an ordinary free chunk.
  Chunk *rest = at(chunk(blocks[0]), 712);
  EXPECT_EQ(rest->head, 296u | 1);
  EXPECT_TRUE(state.treemap & 1u);
  for (int i = 0; i < 5; ++i) {
    __syscall_free(blocks[i]);
    __syscall_free(guards[i]);
  }
}

TEST(Chunks, ReallocInPlace) {
  char *p = static_cast<char *>(fresh(200));
  void *guard = fresh(8);
  for (int i = 0; i < 200; ++i)
    p[i] = static_cast<char>(i);
  EXPECT_EQ(__syscall_realloc(p, 40), p); // shrink: same place, the tail is free at once
  EXPECT_EQ(size_of(chunk(p)), 48u);
  EXPECT_EQ(fresh(150), p + 48);
  __syscall_free(p + 48);
  EXPECT_EQ(__syscall_realloc(p, 0), p); // size 0 is a minimum chunk, not a free
  EXPECT_EQ(size_of(chunk(p)), 16u);
  for (int i = 0; i < 12; ++i)
    EXPECT_EQ(p[i], static_cast<char>(i));
  __syscall_free(p);
  __syscall_free(guard);

  char *last = static_cast<char *>(fresh(3000));
  ASSERT_EQ(at(chunk(last), size_of(chunk(last))), state.top);
  size_t room = state.topsize;
  ASSERT_TRUE(room > 3000);
  EXPECT_EQ(__syscall_realloc(last, 6000), last); // grows into the top chunk
  EXPECT_EQ(size_of(chunk(last)), 6008u);
  EXPECT_EQ(state.top, at(chunk(last), 6008));
  EXPECT_EQ(state.topsize, room + 3008 - 6008);
  __syscall_free(last);
}

TEST(Chunks, ReallocMovesAndKeepsContents) {
  char *p = static_cast<char *>(fresh(30));
  void *guard = fresh(8);
  for (int i = 0; i < 30; ++i)
    p[i] = static_cast<char>(i + 1);
  char *q = static_cast<char *>(__syscall_realloc(p, 500));
  ASSERT_TRUE(q != nullptr);
  EXPECT_NE(q, p);
  for (int i = 0; i < 30; ++i)
    EXPECT_EQ(q[i], static_cast<char>(i + 1));
  *___aeabi_errno_addr() = 0;
  EXPECT_TRUE(__syscall_realloc(q, 0xFFFFFFC0u) == nullptr);
  EXPECT_EQ(*___aeabi_errno_addr(), 68);
  EXPECT_TRUE(in_use(chunk(q)));
  void *r = __syscall_realloc(nullptr, 24); // behaves as malloc: the freed 40 serves a 32
  EXPECT_EQ(r, p);
  EXPECT_EQ(size_of(chunk(r)), 40u);
  void *all[] = {q, r, guard};
  for (void *b : all)
    __syscall_free(b);
}

TEST(Chunks, CallocClearsReusedMemory) {
  unsigned char *p = static_cast<unsigned char *>(fresh(100));
  void *guard = fresh(8);
  for (int i = 0; i < 100; ++i)
    p[i] = 0xAA;
  __syscall_free(p);
  unsigned char *z = static_cast<unsigned char *>(__syscall_calloc(25, 4));
  EXPECT_EQ(z, p);
  int dirty = 0;
  for (int i = 0; i < 100; ++i)
    dirty += z[i] != 0;
  EXPECT_EQ(dirty, 0);
  *___aeabi_errno_addr() = 0;
  EXPECT_TRUE(__syscall_calloc(65536, 65536) == nullptr);
  EXPECT_EQ(*___aeabi_errno_addr(), 68);
  __syscall_free(z);
  __syscall_free(guard);
}

TEST(Chunks, AlignedBlocks) {
  for (size_t a = 16; a <= 4096; a <<= 1) {
    size_t sizes[] = {1, 100, 3000};
    for (size_t n : sizes) {
      void *p = nullptr;
      ASSERT_EQ(__syscall_posix_memalign(&p, a, n), 0);
      EXPECT_EQ(addr(p) % a, 0u);
      Chunk *c = chunk(p);
      EXPECT_TRUE(in_use(c));
      EXPECT_TRUE(size_of(c) >= request_to_chunk(n));
      EXPECT_TRUE(size_of(c) <= request_to_chunk(n) + kMinChunk); // the tail went back
      EXPECT_TRUE(prev_in_use(at(c, size_of(c))));
      __syscall_free(p);
    }
  }
}
