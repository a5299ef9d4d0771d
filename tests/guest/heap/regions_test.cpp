// White-box, with the system side scripted: mmap hands out granules of a static arena where the
// test says, munmap records what goes back. Regions, direct mappings, joins, new segments,
// trimming and release.
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "bridge/errno_cells.h"

using namespace kv::heap;

namespace {
constexpr size_t G = 16384;
alignas(G) char arena[160 * G];
size_t cursor = 64 * G; // the middle, so that regions can go below the first one

struct Call {
  char *addr;
  size_t length;
};
Call maps[64], unmaps[64];
int nmaps, nunmaps, bad_arguments;
char *place_at;
bool fail_map;

char *granule(size_t i) { return arena + i * G; }
} // namespace

extern "C" void *__syscall_mmap(void *addr, size_t length, int prot, int flags, int fd,
                                long offset) {
  if (addr || prot != 3 || flags != 10 || fd != -1 || offset)
    ++bad_arguments;
  if (fail_map) {
    fail_map = false;
    return reinterpret_cast<void *>(-1);
  }
  char *p = place_at ? place_at : arena + cursor;
  if (!place_at)
    cursor += length;
  place_at = nullptr;
  maps[nmaps++ & 63] = {p, length};
  return p;
}

extern "C" int __syscall_munmap(void *addr, size_t length) {
  unmaps[nunmaps++ & 63] = {static_cast<char *>(addr), length};
  for (size_t i = 0; i < length; ++i) // a later mapping here starts zero-filled
    static_cast<char *>(addr)[i] = 0;
  return 0;
}

namespace {
char *seg_end() { return state.seg.base + state.seg.size; }
bool listed(const char *base) {
  for (Segment *s = &state.seg; s; s = s->next)
    if (s->base == base)
      return true;
  return false;
}
// The top chunk of the newest segment keeps exactly the top foot behind it.
void expect_top_consistent() {
  EXPECT_EQ(reinterpret_cast<char *>(state.top) + state.topsize + kTopFoot, seg_end());
  EXPECT_EQ(at(state.top, state.topsize)->head, kTopFoot);
  EXPECT_EQ(state.top->head, state.topsize | 1);
}
} // namespace

TEST(Regions, FirstRegionIsOneGranule) {
  ASSERT_TRUE(nmaps >= 1); // start-up's environment copy asked for it
  EXPECT_EQ(maps[0].addr, granule(64));
  EXPECT_EQ(maps[0].length, G);
  EXPECT_EQ(bad_arguments, 0);
  EXPECT_EQ(state.seg.base, granule(64));
  EXPECT_EQ(state.seg.size, G);
  EXPECT_TRUE(state.seg.next == nullptr);
  EXPECT_EQ(state.seg.flags, 1u);
  EXPECT_EQ(state.least_addr, granule(64));
  EXPECT_EQ(state.footprint, G);
  EXPECT_EQ(state.max_footprint, G);
  EXPECT_EQ(state.magic, 0x58585858u);
  EXPECT_EQ(state.flags, 7u);
  struct {
    size_t got, want;
  } fields[] = {{params.magic, 0x58585858}, {params.granularity, G},
                {params.mmap_threshold, 262144}, {params.trim_threshold, 16384},
                {params.default_flags, 7}, {params.page_size & (params.page_size - 1), 0}};
  for (auto &f : fields)
    EXPECT_EQ(f.got, f.want);
  expect_top_consistent();
}

TEST(Regions, DirectMappingAtTheThreshold) {
  int maps0 = nmaps, unmaps0 = nunmaps;
  size_t footprint = state.footprint;
  place_at = granule(100);
  char *p = static_cast<char *>(kv::malloc(262133)); // chunk size 262144
  ASSERT_EQ(nmaps, maps0 + 1);
  EXPECT_EQ(maps[maps0].length, 278528u);
  EXPECT_EQ(p, granule(100) + 8);
  Chunk *c = chunk_of(p);
  EXPECT_EQ(c->prev_foot, 1u);
  EXPECT_EQ(c->head, (278528u - 16) | 2);
  EXPECT_EQ(at(c, 278528 - 16)->head, 7u);
  EXPECT_EQ(at(c, 278528 - 12)->head, 0u);
  EXPECT_EQ(state.footprint, footprint + 278528);
  EXPECT_EQ(state.seg.size, G); // not a segment
  EXPECT_EQ(__syscall_realloc(p, 262133 - 1000), p); // a mapping stays while not much too big
  __syscall_free(p);
  ASSERT_EQ(nunmaps, unmaps0 + 1);
  EXPECT_EQ(unmaps[unmaps0].addr, granule(100));
  EXPECT_EQ(unmaps[unmaps0].length, 278528u);
  EXPECT_EQ(state.footprint, footprint);
}

TEST(Regions, GrowthJoinsTheRegionAboveAndTrimsBack) {
  int maps0 = nmaps, unmaps0 = nunmaps;
  place_at = seg_end();
  char *p = static_cast<char *>(kv::malloc(262132)); // chunk size 262136: not mapped directly
  ASSERT_EQ(nmaps, maps0 + 1);
  EXPECT_EQ(maps[maps0].length, 278528u);
  EXPECT_EQ(state.seg.base, granule(64));
  EXPECT_EQ(state.seg.size, G + 278528);
  EXPECT_TRUE(state.seg.next == nullptr);
  EXPECT_EQ(state.footprint, G + 278528);
  EXPECT_EQ(state.max_footprint, G + 278528);
  expect_top_consistent();
  size_t top_before_free = state.topsize + size_of(chunk_of(p));
  __syscall_free(p);
  ASSERT_EQ(nunmaps, unmaps0 + 1);
  size_t extra = ((top_before_free - 40 + G - 1) / G - 1) * G;
  EXPECT_EQ(unmaps[unmaps0].length, extra);
  EXPECT_EQ(unmaps[unmaps0].addr + extra, granule(64) + G + 278528);
  EXPECT_TRUE(state.topsize >= 41 && state.topsize <= 16424);
  EXPECT_EQ(state.footprint, G + 278528 - extra);
  EXPECT_EQ(state.trim_check, 16384u);
  expect_top_consistent();
}

TEST(Regions, TrimWithNothingToGiveStopsAutomaticTrimming) {
  int unmaps0 = nunmaps;
  ASSERT_TRUE(state.topsize < G);
  EXPECT_EQ(malloc_trim(0), 0);
  EXPECT_EQ(state.trim_check, 0xFFFFFFFFu);
  EXPECT_EQ(nunmaps, unmaps0);
  // The top grows past the threshold through a join; the reset brings trimming back.
  place_at = seg_end();
  void *p = kv::malloc(3 * G);
  EXPECT_EQ(state.trim_check, 16384u);
  __syscall_free(p);
  EXPECT_EQ(nunmaps, unmaps0 + 1);
  EXPECT_EQ(malloc_trim(0xFFFFFFC0u), 0); // a pad at the limit changes nothing
}

TEST(Regions, GranularitySetsTheRegionStep) {
  int maps0 = nmaps;
  EXPECT_EQ(mallopt(-2, 1000), 0);
  EXPECT_EQ(mallopt(-2, 65536), 1);
  place_at = seg_end();
  void *p = kv::malloc(20000);
  ASSERT_EQ(nmaps, maps0 + 1);
  EXPECT_EQ(maps[maps0].length, 65536u);
  EXPECT_EQ(mallopt(-2, static_cast<int>(G)), 1);
  __syscall_free(p);
  EXPECT_TRUE(state.topsize >= 41 && state.topsize <= 16424);
}

TEST(Regions, PrependJoinsTheRegionBelow) {
  int maps0 = nmaps;
  Segment *s = &state.seg;
  char *old_base = s->base;
  size_t old_size = s->size;
  place_at = old_base - 2 * G;
  char *p = static_cast<char *>(kv::malloc(20000)); // chunk 20008, region 32768
  ASSERT_EQ(nmaps, maps0 + 1);
  EXPECT_EQ(maps[maps0].length, 2 * G);
  EXPECT_EQ(p, old_base - 2 * G + 8);
  EXPECT_EQ(chunk_of(p)->head, 20008u | 3);
  EXPECT_EQ(s->base, old_base - 2 * G);
  EXPECT_EQ(s->size, old_size + 2 * G);
  EXPECT_EQ(state.least_addr, old_base - 2 * G);
  Chunk *rest = at(chunk_of(p), 20008);
  EXPECT_EQ(rest->head, (2 * G - 20008) | 1);
  EXPECT_FALSE(prev_in_use(reinterpret_cast<Chunk *>(old_base)));
  __syscall_free(p);
  EXPECT_EQ(chunk_of(p)->head, 2 * G | 1); // one free chunk up to the old first chunk
}

TEST(Regions, NewSegmentsAndTheirRelease) {
  char *old_end = seg_end();
  Segment old = state.seg;
  char *far = granule(140);
  place_at = far;
  char *p = static_cast<char *>(kv::malloc(40000)); // chunk 40008, region 49152
  EXPECT_EQ(p, far + 8);
  EXPECT_EQ(state.seg.base, far);
  EXPECT_EQ(state.seg.size, 49152u);
  ASSERT_TRUE(state.seg.next != nullptr);
  Segment *copy = state.seg.next;
  EXPECT_EQ(copy->base, old.base);
  EXPECT_EQ(copy->size, old.size);
  EXPECT_EQ(copy->next, old.next);
  // The record chunk and the fenceposts close the old segment.
  Chunk *record = before(old_end, 40);
  EXPECT_EQ(record->head & ~size_t{1}, 26u);
  EXPECT_EQ(reinterpret_cast<char *>(copy), old_end - 32);
  for (int w = 4; w >= 1; --w)
    EXPECT_EQ(*reinterpret_cast<size_t *>(old_end - 4 * w), 7u);
  expect_top_consistent();

  char *third = granule(100);
  place_at = third;
  void *q = kv::malloc(60000); // chunk 60008, region 65536
  EXPECT_EQ(state.seg.base, third);
  EXPECT_EQ(state.seg.next->base, far);
  EXPECT_EQ(reinterpret_cast<char *>(state.seg.next), far + 49152 - 32);
  size_t footprint = state.footprint;
  int unmaps0 = nunmaps;
  __syscall_free(p); // the far segment is now one free chunk
  EXPECT_EQ(nunmaps, unmaps0);
  EXPECT_EQ(chunk_of(p)->head, (49152u - 40) | 1);
  EXPECT_EQ(malloc_trim(0), 1);
  ASSERT_EQ(nunmaps, unmaps0 + 1);
  EXPECT_EQ(unmaps[unmaps0].addr, far);
  EXPECT_EQ(unmaps[unmaps0].length, 49152u);
  EXPECT_EQ(state.footprint, footprint - 49152);
  EXPECT_FALSE(listed(far));
  EXPECT_TRUE(listed(old.base));
  EXPECT_TRUE(listed(third));
  __syscall_free(q);
}

TEST(Regions, MappingFailures) {
  // A failed direct mapping falls back to an ordinary region.
  int maps0 = nmaps;
  fail_map = true;
  place_at = seg_end();
  void *p = kv::malloc(300000); // chunk 300008
  ASSERT_TRUE(p != nullptr);
  EXPECT_EQ(nmaps, maps0 + 1);
  EXPECT_EQ(maps[maps0].length, 311296u);
  EXPECT_FALSE(is_mapped(chunk_of(p)));
  __syscall_free(p);
  // With no region either: ENOMEM.
  *___aeabi_errno_addr() = 0;
  fail_map = true;
  EXPECT_TRUE(kv::malloc(100000) == nullptr);
  EXPECT_EQ(*___aeabi_errno_addr(), 68);
  *___aeabi_errno_addr() = 0;
  EXPECT_TRUE(kv::malloc(0xFFFFFFC0u) == nullptr);
  EXPECT_EQ(*___aeabi_errno_addr(), 68);
  EXPECT_EQ(bad_arguments, 0);
}
