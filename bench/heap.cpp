// Guest instructions of the allocator on a fixed pseudo-random trace, and per realloc step:
//   heap trace P          the first P phases of the trace (0: all of it)
//   heap empty:trace P    the same loop around an empty function in place of malloc and free
//   heap stats            the whole trace, then its figures on standard output
//   heap realloc          one block grown from 16 B to 64 KiB in 16-byte steps, fresh heap
//   heap empty:realloc    the same loop around a function that returns its first argument
//   heap cycle N R        R times: free a block of N bytes that lies between two blocks in use,
//                         then allocate N bytes again (it comes back from its bin or trie)
//   heap empty:cycle N R  the same loop around an empty function
// The trace runs in rounds over 2048 slots: a phase that frees each live block with
// probability 1/2, then a phase that fills each empty slot with probability 1/2 (95% of the
// sizes 1..512, the rest up to 64 KiB), slots visited in a fresh random order each phase, until
// 10 000 operations. Phases hold one kind of call, so two runs that stop at consecutive phase
// ends give that phase's cost exactly; the empty runs cancel the loop.
//
// Built twice: against this library (its allocation function, __syscall_free and
// __syscall_realloc, with mmap and munmap interposed to count them) and with -DKV_BENCH_PEER
// against a peer C library's malloc, free and realloc over an sbrk on a static arena.
#include <stddef.h>
#include <stdint.h>

#include "bench_args.h"

// Any request to the host: number in r0, the seven words in r1..r7, the trap word in ARM state.
asm(R"(
	.pushsection .text.bench_trap,"ax",%progbits
	.arm
	.p2align 2
	.global bench_trap
	.type bench_trap, %function
bench_trap:
	push	{r4-r7}
	mov	r12, r1
	ldm	r12, {r1-r7}
	.inst	0xe7f006f4
	pop	{r4-r7}
	bx	lr
	.size bench_trap, . - bench_trap
	.thumb
	.popsection
)");

extern "C" {
int32_t bench_trap(int32_t number, const uint32_t *words);
#ifdef KV_BENCH_PEER
void *malloc(size_t);
void free(void *);
void *realloc(void *, size_t);
#else
void __syscall_free(void *);
void *__syscall_realloc(void *, size_t);
#endif
}
#ifndef KV_BENCH_PEER
namespace kv::heap {
void *allocate(size_t);
}
#endif

namespace {

constexpr int32_t kWrite = 14, kMmap = 1, kMunmap = 2;
uint32_t word(const void *p) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(p)); }

// What the system side gave the heap: requests, bytes held now and at most.
struct Footprint {
  unsigned maps, unmaps, steady_maps, steady_unmaps;
  size_t now, peak;
  bool steady;
  void grow(size_t n) {
    ++maps;
    steady_maps += steady;
    now += n;
    if (now > peak)
      peak = now;
  }
  void shrink(size_t n) {
    ++unmaps;
    steady_unmaps += steady;
    now -= n;
  }
} system_side;

} // namespace

#ifdef KV_BENCH_PEER
// The peer's heap grows through sbrk; a static arena stands behind it, and the stubs its
// start-up and error paths want do nothing.
namespace {
alignas(16) char arena[32u << 20];
char *brk_end = arena;
} // namespace
extern "C" {
void *_sbrk(ptrdiff_t incr) {
  char *old = brk_end;
  if (incr > arena + sizeof arena - old || incr < arena - old)
    return reinterpret_cast<void *>(-1);
  brk_end = old + incr;
  if (incr > 0)
    system_side.grow(static_cast<size_t>(incr));
  else if (incr < 0)
    system_side.shrink(static_cast<size_t>(-incr));
  return old;
}
void _exit(int) {
  for (;;)
    ;
}
int _kill(int, int) { return -1; }
int _getpid() { return 1; }
}
using Alloc = void *(*)(size_t);
using Free = void (*)(void *);
using Realloc = void *(*)(void *, size_t);
Alloc const real_malloc = malloc;
Free const real_free = free;
Realloc const real_realloc = realloc;
#else
extern "C" void *__syscall_mmap(void *addr, size_t length, int prot, int flags, int fd,
                                long offset) {
  uint32_t w[7] = {word(addr), static_cast<uint32_t>(length), static_cast<uint32_t>(prot),
                   static_cast<uint32_t>(flags), static_cast<uint32_t>(fd),
                   static_cast<uint32_t>(offset), 0};
  int32_t r = bench_trap(kMmap, w);
  if (r != -1)
    system_side.grow(length);
  return reinterpret_cast<void *>(static_cast<uintptr_t>(static_cast<uint32_t>(r)));
}
extern "C" int __syscall_munmap(void *addr, size_t length) {
  uint32_t w[7] = {word(addr), static_cast<uint32_t>(length), 0, 0, 0, 0, 0};
  int32_t r = bench_trap(kMunmap, w);
  if (r == 0)
    system_side.shrink(length);
  return r;
}
using Alloc = void *(*)(size_t);
using Free = void (*)(void *);
using Realloc = void *(*)(void *, size_t);
Alloc const real_malloc = kv::heap::allocate;
Free const real_free = __syscall_free;
Realloc const real_realloc = __syscall_realloc;
#endif

extern "C" __attribute__((noinline)) void *bench_empty(void *p, size_t) {
  asm volatile("");
  return p;
}

namespace {

uint64_t state = 0x243F6A8885A308D3ull;
uint32_t rnd_below(uint32_t n) {
  state ^= state >> 12;
  state ^= state << 25;
  state ^= state >> 27;
  return static_cast<uint32_t>((state * 0x2545F4914F6CDD1Dull) >> 32) % n;
}

constexpr unsigned kSlots = 2048, kOps = 10000;
void *slot[kSlots];
uint32_t slot_size[kSlots];

struct Trace {
  unsigned ops, phases, mallocs, frees;
  size_t live, live_peak;
  unsigned phase_ops[64];
};

// Runs the trace through the given functions, stopping after `phases` phases (0: all).
void run_trace(Alloc alloc_fn, Free free_fn, unsigned phases, Trace &t) {
  Alloc volatile alloc = alloc_fn; // called through memory, as in the other benchmarks
  Free volatile release = free_fn;
  while (t.ops < kOps && (phases == 0 || t.phases < phases)) {
    bool freeing = (t.phases & 1) == 0;
    uint32_t step = rnd_below(kSlots / 2) * 2 + 1, start = rnd_below(kSlots);
    unsigned before = t.ops;
    if (t.phases >= 2)
      system_side.steady = true;
    for (uint32_t i = 0; i < kSlots && t.ops < kOps; ++i) {
      uint32_t k = (start + i * step) & (kSlots - 1);
      bool live = slot_size[k] != 0;
      if (live != freeing || rnd_below(2))
        continue;
      if (freeing) {
        release(slot[k]);
        t.live -= slot_size[k];
        slot_size[k] = 0;
        ++t.frees;
      } else {
        uint32_t n = rnd_below(100) < 95 ? 1 + rnd_below(512) : 513 + rnd_below(65536 - 512);
        slot[k] = alloc(n);
        slot_size[k] = n;
        t.live += n;
        if (t.live > t.live_peak)
          t.live_peak = t.live;
        ++t.mallocs;
      }
      ++t.ops;
    }
    if (t.phases < 64)
      t.phase_ops[t.phases] = t.ops - before;
    ++t.phases;
  }
}

void grow(Realloc resize_fn) {
  Realloc volatile resize = resize_fn;
  void *p = real_malloc(16);
  for (size_t s = 32; s <= 65536; s += 16)
    p = resize(p, s);
}

void out(const char *s) {
  size_t n = 0;
  while (s[n])
    ++n;
  uint32_t w[7] = {1, word(s), static_cast<uint32_t>(n), 0, 0, 0, 0};
  bench_trap(kWrite, w);
}
void out(const char *key, size_t v) {
  char buf[16];
  char *e = buf + sizeof buf, *d = e;
  *--d = 0;
  do
    *--d = static_cast<char>('0' + v % 10);
  while (v /= 10);
  out(key);
  out(" ");
  out(d);
  out("\n");
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 2)
    return 2;
  const char *op = argv[1];
  bool empty = calibration(op);
  Trace t{};
  if (same(op, "trace")) {
    unsigned phases = argc > 2 ? parse(argv[2]) : 0;
    Alloc a = empty ? reinterpret_cast<Alloc>(bench_empty) : real_malloc;
    Free f = empty ? reinterpret_cast<Free>(bench_empty) : real_free;
    run_trace(a, f, phases, t);
    return 0;
  }
  if (same(op, "stats") && !empty) {
    run_trace(real_malloc, real_free, 0, t);
    out("phases", t.phases);
    for (unsigned i = 0; i < t.phases && i < 64; ++i)
      out(i & 1 ? "malloc_phase" : "free_phase", t.phase_ops[i]);
    out("mallocs", t.mallocs);
    out("frees", t.frees);
    out("live_peak", t.live_peak);
    out("footprint_peak", system_side.peak);
    out("maps", system_side.maps);
    out("unmaps", system_side.unmaps);
    out("steady_maps", system_side.steady_maps);
    out("steady_unmaps", system_side.steady_unmaps);
    return 0;
  }
  if (same(op, "cycle") && argc > 3) {
    size_t n = parse(argv[2]);
    unsigned rounds = parse(argv[3]);
    void *before = real_malloc(n), *block = real_malloc(n), *after = real_malloc(n);
    Alloc volatile alloc = empty ? reinterpret_cast<Alloc>(bench_empty) : real_malloc;
    Free volatile release = empty ? reinterpret_cast<Free>(bench_empty) : real_free;
    for (unsigned i = 0; i < rounds; ++i) {
      release(block);
      block = empty ? block : alloc(n);
    }
    return before && after ? 0 : 1;
  }
  if (same(op, "realloc")) {
    grow(empty ? bench_empty : real_realloc);
    return 0;
  }
  return 2;
}
