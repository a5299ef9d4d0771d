// Guest instructions per snprintf into a 64-byte buffer:
//   printf OP N         N calls for one row (d x s g17 f e g)
//   printf empty:OP N   the same loop and arguments around an empty function (calibration)
// The per-call figure is (count(OP) - count(empty:OP)) / N + 1, as for the runtime rows. With
// -DKV_BENCH_PEER the same source measures a peer C library's snprintf.
#include <stddef.h>
#include <stdint.h>

#include "bench_args.h"

#ifdef KV_BENCH_PEER
// The peer's snprintf, and what its floating conversions and error paths link against: an
// sbrk over a static arena (they allocate) and stubs that do nothing.
extern "C" {
int snprintf(char *, size_t, const char *, ...);
alignas(16) char peer_arena[1u << 20];
char *peer_brk = peer_arena;
void *_sbrk(ptrdiff_t incr) {
  char *old = peer_brk;
  if (incr > peer_arena + sizeof peer_arena - old || incr < peer_arena - old)
    return reinterpret_cast<void *>(-1);
  peer_brk = old + incr;
  return old;
}
void _exit(int) {
  for (;;)
    ;
}
int _kill(int, int) { return -1; }
int _getpid() { return 1; }
int _write(int, const void *, size_t n) { return static_cast<int>(n); }
int _read(int, void *, size_t) { return 0; }
int _close(int) { return -1; }
int _lseek(int, int, int) { return -1; }
int _fstat(int, void *) { return -1; }
int _isatty(int) { return 0; }
}
#else
#include "printf/printf.h"
#endif

using Fn = int (*)(char *, size_t, const char *, ...);

extern "C" __attribute__((noinline)) int bench_empty(char *, size_t, const char *, ...) {
  asm volatile("");
  return 0;
}

namespace {

char buffer[64];
double doubles[256];
const char twenty[] = "abcdefghijklmnopqrst";

uint64_t state = 0x243F6A8885A308D3ull;
uint64_t rnd() {
  state ^= state >> 12;
  state ^= state << 25;
  state ^= state >> 27;
  return state * 0x2545F4914F6CDD1Dull;
}

// Finite doubles of every magnitude.
void fill_doubles() {
  for (double &d : doubles) {
    uint64_t b = rnd();
    if ((b >> 52 & 0x7FF) == 0x7FF)
      b ^= 1ull << 62;
    d = __builtin_bit_cast(double, b);
  }
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 3)
    return 2;
  const char *op = argv[1];
  bool calibrate = calibration(op);
  Fn volatile fn = calibrate ? bench_empty : snprintf;
  unsigned n = parse(argv[2]);
  if (same(op, "d")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%d", 123456789);
  } else if (same(op, "x")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%x", 0xdeadbeefu);
  } else if (same(op, "s")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%s", twenty);
  } else if (same(op, "g17")) {
    fill_doubles();
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%.17g", doubles[i & 255]);
  } else if (same(op, "f")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%f", 1234.5678);
  } else if (same(op, "e")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%e", 6.02214076e23);
  } else if (same(op, "g")) {
    for (unsigned i = 0; i < n; ++i)
      fn(buffer, sizeof buffer, "%g", 0.1);
  } else {
    return 2;
  }
  return 0;
}
