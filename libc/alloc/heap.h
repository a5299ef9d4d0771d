// The heap's records and the small operations every allocator file shares: boundary-tagged
// chunks, 32 exact-size small bins, 32 size-keyed tries, the spare chunk and the top chunk.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "posix/mutex_hooks.h"

// Hidden, so that the heap's code reaches its records without going through the GOT.
#pragma GCC visibility push(hidden)

namespace kv::heap {

struct Chunk {
  size_t prev_foot; // size of the free chunk in front; distance to the mapping | 1 when mapped
  size_t head;      // size | in-use | prev-in-use
  Chunk *fd;        // links exist only while the chunk is free
  Chunk *bk;
};

struct TreeChunk {
  size_t prev_foot;
  size_t head;
  TreeChunk *fd;
  TreeChunk *bk;
  TreeChunk *child[2];
  TreeChunk *parent; // 0 for ring members; the bin slot for a root
  uint32_t index;
};

struct Segment {
  char *base;
  size_t size;
  Segment *next;
  uint32_t flags;
};

constexpr uint32_t kSmallBins = 32, kTreeBins = 32;

struct State {
  uint32_t smallmap;
  uint32_t treemap;
  size_t dvsize;
  size_t topsize;
  char *least_addr;
  Chunk *dv;
  Chunk *top;
  size_t trim_check;
  size_t magic;
  Chunk *smallbins[(kSmallBins + 1) * 2];
  TreeChunk *treebins[kTreeBins];
  size_t footprint;
  size_t max_footprint;
  uint32_t flags;
  uint32_t lock;
  Segment seg;
};

struct Params {
  size_t magic;
  size_t page_size;
  size_t granularity;
  size_t mmap_threshold;
  size_t trim_threshold;
  uint32_t default_flags;
};

// The trie node of every size of the first four tries (256..1023 bytes, where most tree
// chunks are), so that a best fit is a search of a bit map and a chunk that joins a ring needs
// no descent. The tries themselves stay as they are; this only points into them.
constexpr size_t kIndexedLimit = 1024;
constexpr uint32_t kIndexedBins = 4, kIndexedSizes = (kIndexedLimit - 256) / 8;
struct TreeNodes {
  uint32_t map[kIndexedSizes / 32]; // bit k: a node of size 256 + 8k exists
  TreeChunk *node[kIndexedSizes];
};

// The records in one object, so that a path that needs several reaches them from one base.
struct Records {
  State state;
  Params params;
  TreeNodes nodes;
};
extern Records records;
static constexpr State &state = records.state;
static constexpr Params &params = records.params;
static constexpr TreeNodes &tree_nodes = records.nodes;

constexpr size_t kMinChunk = 16;
constexpr size_t kOverhead = 4;
constexpr size_t kMappedOverhead = 8;
constexpr size_t kMaxRequest = 0xFFFFFFC0;
constexpr size_t kMinRequest = kMinChunk - kOverhead - 1;
constexpr size_t kMaxSmallRequest = 244;
constexpr size_t kMinLarge = 256;
constexpr size_t kTopFoot = 40;       // room for a record chunk and fenceposts
constexpr size_t kRecordChunk = 24;   // a chunk that holds one Segment
constexpr size_t kMappedFoot = 16;    // fencepost and zero word after a mapped chunk
constexpr size_t kPinuse = 1, kCinuse = 2, kMappedBit = 1;
constexpr size_t kFencepost = kPinuse | kCinuse | 4;
constexpr uint32_t kUseMmap = 1, kUseLock = 2, kNoncontiguous = 4;
constexpr uint32_t kMappedSegment = 1;
constexpr size_t kMagic = 0x58585858;

// Protection and flags of the system side's mmap: read and write, private and anonymous.
constexpr int kMapProt = 3, kMapFlags = 10;
constexpr int kPageSizeName = 53;

inline size_t request_to_chunk(size_t n) {
  return n < kMinRequest ? kMinChunk : (n + kOverhead + 7) & ~size_t{7};
}
inline size_t size_of(const void *p) { return static_cast<const Chunk *>(p)->head & ~size_t{7}; }
inline bool in_use(const void *p) { return static_cast<const Chunk *>(p)->head & kCinuse; }
inline bool prev_in_use(const void *p) { return static_cast<const Chunk *>(p)->head & kPinuse; }
inline bool is_mapped(const Chunk *p) {
  return !(p->head & kPinuse) && (p->prev_foot & kMappedBit);
}
template <typename T = Chunk> inline T *at(const void *p, size_t offset) {
  return reinterpret_cast<T *>(reinterpret_cast<uintptr_t>(p) + offset);
}
template <typename T = Chunk> inline T *before(const void *p, size_t offset) {
  return reinterpret_cast<T *>(reinterpret_cast<uintptr_t>(p) - offset);
}
inline void *user(const void *p) { return at<void>(p, 8); }
inline Chunk *chunk_of(const void *mem) { return before(mem, 8); }
inline bool ok_address(const void *p) { return reinterpret_cast<const char *>(p) >= state.least_addr; }
// Offset that makes the user address of a chunk at `p` 8-aligned.
inline size_t align_offset(const void *p) {
  return (8 - ((reinterpret_cast<uintptr_t>(p) + 8) & 7)) & 7;
}

inline Chunk *small_bin(uint32_t i) { return reinterpret_cast<Chunk *>(&state.smallbins[i * 2]); }

inline uint32_t tree_index(size_t s) {
  size_t x = s >> 8;
  if (x == 0)
    return 0;
  if (x > 0xFFFF)
    return kTreeBins - 1;
  uint32_t k = 31 - static_cast<uint32_t>(__builtin_clz(x));
  return (k << 1) + ((s >> (k + 7)) & 1);
}
// How far a size is shifted so that its first bit below the bin's range is at the top.
inline uint32_t tree_shift(uint32_t i) { return i == kTreeBins - 1 ? 0 : 25 - (i >> 1); }
// Bin and key shift of a large size (256 or more) from one count of leading zeros.
struct TreePlace {
  uint32_t index, shift;
};
inline TreePlace tree_place(size_t s) {
  if (s >= 0xC00000) // everything from the upper half of the last range up
    return {kTreeBins - 1, 0};
  uint32_t z = static_cast<uint32_t>(__builtin_clz(s));
  return {46 - 2 * z + static_cast<uint32_t>((s >> (30 - z)) & 1), z + 2};
}
inline uint32_t bits_above(uint32_t bit) { return (bit << 1) | (0u - (bit << 1)); }

// The in-use chunk p of size s with prev-in-use set, and the next chunk told so.
inline void mark_in_use(Chunk *p, size_t s) {
  p->head = s | kPinuse | kCinuse;
  at(p, s)->head |= kPinuse;
}
// Keeps p's own prev-in-use bit.
inline void set_in_use(Chunk *p, size_t s) {
  p->head = (p->head & kPinuse) | s | kCinuse;
  at(p, s)->head |= kPinuse;
}
inline void set_free(Chunk *p, size_t s) {
  p->head = s | kPinuse;
  at(p, s)->prev_foot = s;
}
// An nb-byte chunk cut from the start of the top chunk, which must be larger than nb.
inline void *take_from_top(size_t nb) {
  Chunk *p = state.top;
  size_t rsize = state.topsize -= nb;
  Chunk *r = state.top = at(p, nb);
  r->head = rsize | kPinuse;
  p->head = nb | kPinuse | kCinuse;
  return user(p);
}

[[noreturn]] void corrupted();
[[noreturn]] void bad_free(int line);

void ensure_params_slow();
inline void ensure_params() {
  if (__builtin_expect(params.page_size == 0, 0))
    ensure_params_slow();
}
inline void lock() {
  if (state.flags & kUseLock)
    __mutex_acquire(&state.lock);
}
// Sets up the parameters on first use, then takes the lock. The heap's flags stay zero until the
// parameters are set up, so the common case is one test of them.
void enter_slow();
inline void enter() {
  if (__builtin_expect(!(state.flags & kUseLock), 0))
    enter_slow();
  else
    __mutex_acquire(&state.lock);
}
inline void unlock() {
  if (state.flags & kUseLock)
    __mutex_release(&state.lock);
}

// Bins (bins.cpp). `least` is state.least_addr, passed by the hot paths that hold it already.
inline void insert_small(Chunk *p, size_t s, const char *least = state.least_addr) {
  uint32_t i = static_cast<uint32_t>(s >> 3);
  Chunk *b = small_bin(i);
  Chunk *f = b;
  if (s < kMinChunk)
    corrupted();
  uint32_t map = state.smallmap;
  if (!(map & (1u << i)))
    state.smallmap = map | (1u << i);
  else if (reinterpret_cast<const char *>(b->fd) >= least)
    f = b->fd;
  else
    corrupted();
  b->fd = p;
  f->bk = p;
  p->fd = f;
  p->bk = b;
}
inline void unlink_small(Chunk *p, size_t s, const char *least = state.least_addr) {
  uint32_t i = static_cast<uint32_t>(s >> 3);
  Chunk *b = small_bin(i);
  Chunk *f = p->fd, *k = p->bk;
  auto ok = [least](const void *q) { return static_cast<const char *>(q) >= least; };
  if ((f != b && !ok(f)) || (k != b && !ok(k)) || f->bk != p || k->fd != p)
    corrupted();
  f->bk = k;
  k->fd = f;
  if (f == k)
    state.smallmap &= ~(1u << i);
}
void insert_tree(TreeChunk *x, size_t s);
void unlink_tree(TreeChunk *x);
inline void insert_chunk(Chunk *p, size_t s) {
  if (s < kMinLarge)
    insert_small(p, s);
  else
    insert_tree(reinterpret_cast<TreeChunk *>(p), s);
}
inline void unlink_chunk(Chunk *p, size_t s) {
  if (s < kMinLarge)
    unlink_small(p, s);
  else
    unlink_tree(reinterpret_cast<TreeChunk *>(p));
}
void init_bins();

void *allocate(size_t bytes);
void release(void *mem);
void set_top(Chunk *p, size_t size);

// Regions (regions.cpp, trim.cpp).
void *system_allocate(size_t nb);
Segment *segment_holding(const void *addr);
bool trim(size_t pad);
void set_enomem();

} // namespace kv::heap

#pragma GCC visibility pop
