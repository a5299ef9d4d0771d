// Random mixed malloc, free, realloc, calloc and aligned allocation against a shadow of every
// live block: no two blocks overlap, contents and alignment survive, chunk headers agree, and
// once everything is freed the heap gives back all it can.
//   kvrun -e HEAP_STRESS_OPS=1000000 heap_stress   (default 300000 operations)
#include <kvtest.h>
#include <xorshift.h>
#include <stdint.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"

using namespace kv::heap;

extern "C" char **environ;

namespace {
constexpr int kSlots = 256;
constexpr size_t kEdge = 256; // bytes filled and checked at each end of a block

struct Slot {
  uint8_t *p;
  size_t n;
  uint8_t seed;
};
Slot slots[kSlots];
uint32_t rng = 0x2545F491;
unsigned long operations = 300000;
int failures;

uint32_t next() { return kvtest::xorshift32(rng); }

size_t pick_size() {
  uint32_t r = next() % 1000;
  if (r < 900)
    return 1 + next() % 512;
  if (r < 998)
    return next() % 65536;
  return 262144 + next() % 100000; // a mapping of its own
}

template <typename F> void each_edge_byte(size_t n, F f) {
  size_t head = n < kEdge ? n : kEdge;
  for (size_t i = 0; i < head; ++i)
    f(i);
  size_t tail = n - head < kEdge ? n - head : kEdge;
  for (size_t i = n - tail; i < n; ++i)
    f(i);
}

void fill(Slot &s) {
  each_edge_byte(s.n, [&](size_t i) { s.p[i] = static_cast<uint8_t>(s.seed + i); });
}

// The filled bytes of a block of s.n bytes, as far as they lie below `keep`.
bool intact(const Slot &s, size_t keep) {
  bool ok = true;
  each_edge_byte(s.n, [&](size_t i) {
    ok &= i >= keep || s.p[i] == static_cast<uint8_t>(s.seed + i);
  });
  return ok;
}

// The new block of slot k: aligned, its chunk big enough and in use, clear of every other.
bool placed_well(int k, size_t alignment) {
  const Slot &s = slots[k];
  uintptr_t a = reinterpret_cast<uintptr_t>(s.p);
  Chunk *c = chunk_of(s.p);
  size_t overhead = is_mapped(c) ? kMappedOverhead : kOverhead;
  if (a % alignment || !in_use(c) || size_of(c) < s.n + overhead)
    return false;
  for (int j = 0; j < kSlots; ++j) {
    if (j == k || !slots[j].p)
      continue;
    uintptr_t b = reinterpret_cast<uintptr_t>(slots[j].p);
    size_t bn = slots[j].n ? slots[j].n : 1, an = s.n ? s.n : 1;
    if (a < b + bn && b < a + an)
      return false;
  }
  return true;
}

void check(bool ok, const char *what, unsigned long op) {
  if (ok || ++failures > 5)
    return;
  EXPECT_TRUE(ok);
  kvtest::out(what);
  kvtest::out(" at operation ");
  kvtest::out_udec(op);
  kvtest::out("\n");
}

void one_operation(unsigned long op) {
  int k = static_cast<int>(next() % kSlots);
  Slot &s = slots[k];
  uint32_t kind = next() % 100;
  if (!s.p) {
    size_t n = pick_size();
    size_t alignment = 8;
    bool zeroed = false;
    if (kind < 50) {
      s.p = static_cast<uint8_t *>(kv::malloc(n));
    } else if (kind < 65) {
      size_t count = 1 + next() % 8;
      n = (n / count) * count;
      s.p = static_cast<uint8_t *>(__syscall_calloc(count, n / count));
      zeroed = true;
    } else if (kind < 80) {
      alignment = size_t{8} << (next() % 10);
      void *out = nullptr;
      check(__syscall_posix_memalign(&out, alignment, n) == 0, "posix_memalign failed", op);
      s.p = static_cast<uint8_t *>(out);
    } else {
      s.p = static_cast<uint8_t *>(__syscall_realloc(nullptr, n));
    }
    s.n = n;
    s.seed = static_cast<uint8_t>(next());
    check(s.p != nullptr, "allocation failed", op);
    if (!s.p)
      return;
    if (zeroed) {
      bool clear = true;
      each_edge_byte(n, [&](size_t i) { clear &= s.p[i] == 0; });
      check(clear, "calloc block not zeroed", op);
    }
    check(placed_well(k, alignment), "block misplaced", op);
    fill(s);
  } else if (kind < 55) {
    check(intact(s, s.n), "contents changed before free", op);
    __syscall_free(s.p);
    s.p = nullptr;
  } else {
    size_t n = pick_size();
    check(intact(s, s.n), "contents changed before realloc", op);
    uint8_t *p = static_cast<uint8_t *>(__syscall_realloc(s.p, n));
    check(p != nullptr, "realloc failed", op);
    if (!p)
      return;
    s.p = p;
    check(intact(s, s.n < n ? s.n : n), "realloc lost contents", op);
    s.n = n;
    check(placed_well(k, 8), "reallocated block misplaced", op);
    fill(s);
  }
}
} // namespace

// In-use chunks in all segments, not counting the record chunks that close a segment.
size_t blocks_in_use() {
  size_t n = 0;
  for (Segment *sg = &state.seg; sg; sg = sg->next) {
    Chunk *p = at(sg->base, align_offset(sg->base));
    while (p != state.top && p->head != kFencepost) {
      size_t size = size_of(p);
      n += in_use(p) && at(p, size)->head != kFencepost;
      p = at(p, size);
    }
  }
  return n;
}

size_t segment_bytes() {
  size_t n = 0;
  for (Segment *sg = &state.seg; sg; sg = sg->next)
    n += sg->size;
  return n;
}

TEST(HeapStress, RandomOperationsAgainstAShadow) {
  size_t blocks_at_start = blocks_in_use();
  for (char **e = environ; e && *e; ++e) {
    const char *v = *e, *name = "HEAP_STRESS_OPS=";
    while (*name && *v == *name)
      ++v, ++name;
    if (*name)
      continue;
    operations = 0;
    for (; *v >= '0' && *v <= '9'; ++v)
      operations = operations * 10 + static_cast<unsigned long>(*v - '0');
  }
  for (unsigned long op = 0; op < operations && failures <= 5; ++op)
    one_operation(op);
  EXPECT_EQ(failures, 0);
  for (Slot &s : slots) {
    if (s.p) {
      check(intact(s, s.n), "contents changed before the final free", operations);
      __syscall_free(s.p);
      s.p = nullptr;
    }
  }
  malloc_trim(0);
  // Start-up's blocks stay and pin their region; everything else went back: only the top's
  // segment is trimmed, to one granule, and no other segment is wholly free.
  EXPECT_EQ(blocks_in_use(), blocks_at_start);
  EXPECT_EQ(state.footprint, segment_bytes());
  EXPECT_TRUE(state.topsize >= 41 && state.topsize <= 16424);
  for (Segment *sg = state.seg.next; sg; sg = sg->next)
    EXPECT_TRUE(in_use(sg->base) || size_of(sg->base) < sg->size - kTopFoot);
  if (blocks_at_start == 0)
    EXPECT_EQ(state.footprint, 16384u);
}

