// Guest instructions per call of the memory, string and division routines:
//   runtime OP N      N calls of OP, cycling through 256 prepared argument sets
//   runtime empty:OP N   the same loop and arguments around an empty function (calibration)
// The per-call figure is (count(OP) - count(empty:OP)) / N + 1, the empty function being one
// instruction (bx lr): everything from the callee's first instruction through its return.
//
// Built twice: against this library (the EABI entries compiled code calls, and the library's
// own strlen and strcmp), and with -DKV_BENCH_PEER against a peer C library's ISO functions and
// its compiler run-time's division helpers, with the same inputs.
#include <stddef.h>
#include <stdint.h>

#include "word_calls.h"

extern "C" {
#ifdef KV_BENCH_PEER
void *memcpy(void *, const void *, size_t);
void *memmove(void *, const void *, size_t);
void *memset(void *, int, size_t);
#else
void __aeabi_memcpy(void *, const void *, size_t);
void __aeabi_memmove(void *, const void *, size_t);
void __aeabi_memset(void *, size_t, int);
#endif
size_t strlen(const char *);
int strcmp(const char *, const char *);
void __aeabi_uidiv(void);
void __aeabi_uldivmod(void);
}

namespace {

constexpr size_t buf_size = 8192, pad = 256;
alignas(64) uint8_t buf_a[buf_size + 2 * pad];
alignas(64) uint8_t buf_b[buf_size + 2 * pad];
// One string per start offset 0..7 for the strlen rows.
alignas(64) char strings[8][1024 + 64];

uint64_t state = 0x243F6A8885A308D3ull;
uint64_t rnd() {
  state ^= state >> 12;
  state ^= state << 25;
  state ^= state >> 27;
  return state * 0x2545F4914F6CDD1Dull;
}
// A value of random bit length, top bit set, as the peers' division rows use.
uint64_t rnd_bits(int bits) {
  int b = 1 + static_cast<int>((rnd() >> 32) % static_cast<uint32_t>(bits));
  return (rnd() >> (64 - b)) | 1ull << (b - 1);
}

uint32_t word(const void *p) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(p)); }


void all(uint32_t a0, uint32_t a1, uint32_t a2, uint32_t a3) {
  for (Args &t : table)
    t = {{a0, a1, a2, a3}};
}

#ifdef KV_BENCH_PEER
const void *const copy_fn = reinterpret_cast<const void *>(memcpy);
const void *const move_fn = reinterpret_cast<const void *>(memmove);
const void *const fill_fn = reinterpret_cast<const void *>(memset);
void copy_args(void *d, const void *s, size_t n) { all(word(d), word(s), n, 0); }
void fill_args(void *d, size_t n, int v) { all(word(d), static_cast<uint32_t>(v), n, 0); }
#else
const void *const copy_fn = reinterpret_cast<const void *>(__aeabi_memcpy);
const void *const move_fn = reinterpret_cast<const void *>(__aeabi_memmove);
const void *const fill_fn = reinterpret_cast<const void *>(__aeabi_memset);
void copy_args(void *d, const void *s, size_t n) { all(word(d), word(s), n, 0); }
void fill_args(void *d, size_t n, int v) { all(word(d), n, static_cast<uint32_t>(v), 0); }
#endif

// Mixed-case text with spaces and digits: bytes of different words often have no bit in
// common, unlike the lowercase letters of the other rows.
char text_at(size_t i) {
  const char *words = "The Quick Brown Fox Jumps Over 13 Lazy Dogs, And Then 42 More. ";
  return words[i % 63];
}

void strlen_text_args(size_t len) {
  for (int r = 0; r < 8; ++r) {
    char *s = strings[r] + r;
    for (size_t i = 0; i < len; ++i)
      s[i] = text_at(i * 7 + r);
    s[len] = 0;
  }
  for (size_t i = 0; i < 256; ++i)
    table[i] = {{word(strings[i & 7] + (i & 7)), 0, 0, 0}};
}

void strlen_args(size_t len) {
  for (int r = 0; r < 8; ++r) {
    char *s = strings[r] + r;
    for (size_t i = 0; i < len; ++i)
      s[i] = static_cast<char>('a' + (rnd() >> 40) % 26);
    s[len] = 0;
  }
  for (size_t i = 0; i < 256; ++i)
    table[i] = {{word(strings[i & 7] + (i & 7)), 0, 0, 0}};
}

// Sets up the arguments of one operation; returns its entry, or null for an unknown name.
const void *prepare(const char *op) {
  uint8_t *a = buf_a + pad, *b = buf_b + pad;
  if (same(op, "memcpy16"))
    return copy_args(a, b, 16), copy_fn;
  if (same(op, "memcpy256"))
    return copy_args(a, b, 256), copy_fn;
  if (same(op, "memcpy4k"))
    return copy_args(a, b, 4096), copy_fn;
  if (same(op, "memcpy4k_s1d3"))
    return copy_args(a + 3, b + 1, 4096), copy_fn;
  if (same(op, "memcpy4k_s1d1"))
    return copy_args(a + 1, b + 1, 4096), copy_fn;
  if (same(op, "memmove_up"))
    return copy_args(a + 128, a, 4096), move_fn;
  if (same(op, "memmove_down"))
    return copy_args(a, a + 128, 4096), move_fn;
  if (same(op, "memset4k"))
    return fill_args(a, 4096, 0xa5), fill_fn;
  if (same(op, "strlen8"))
    return strlen_args(8), reinterpret_cast<const void *>(strlen);
  if (same(op, "strlen100"))
    return strlen_args(100), reinterpret_cast<const void *>(strlen);
  if (same(op, "strlen1000"))
    return strlen_args(1000), reinterpret_cast<const void *>(strlen);
  if (same(op, "strlen1000_text"))
    return strlen_text_args(1000), reinterpret_cast<const void *>(strlen);
  if (same(op, "strcmp100")) {
    for (int i = 0; i < 100; ++i)
      a[i] = b[i] = static_cast<uint8_t>('a' + (rnd() >> 40) % 26);
    a[100] = b[100] = 0;
    all(word(a), word(b), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "strcmp10")) {
    for (int i = 0; i < 10; ++i)
      a[i] = b[i] = static_cast<uint8_t>('a' + (rnd() >> 40) % 26);
    a[10] = b[10] = 0;
    all(word(a), word(b), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "strcmp100_text")) {
    for (int i = 0; i < 100; ++i)
      a[i] = b[i] = static_cast<uint8_t>(text_at(i * 7));
    a[100] = b[100] = 0;
    all(word(a), word(b), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "strcmp100_tail")) {
    for (int i = 0; i < 100; ++i)
      a[i] = b[i] = static_cast<uint8_t>('a' + (rnd() >> 40) % 26);
    a[100] = b[100] = 0;
    for (int i = 101; i < 200; ++i) {
      a[i] = 'x';
      b[i] = 'y';
    }
    all(word(a), word(b), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "strcmp100_d4")) {
    for (int i = 0; i < 100; ++i)
      a[i] = b[i] = static_cast<uint8_t>('a' + (rnd() >> 40) % 26);
    a[100] = b[100] = 0;
    b[4] = static_cast<uint8_t>(a[4] ^ 0x20);
    all(word(a), word(b), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "strcmp100_s1s2")) {
    for (int i = 0; i < 100; ++i)
      a[1 + i] = b[2 + i] = static_cast<uint8_t>('a' + (rnd() >> 40) % 26);
    a[101] = b[102] = 0;
    all(word(a + 1), word(b + 2), 0, 0);
    return reinterpret_cast<const void *>(strcmp);
  }
  if (same(op, "uidiv")) {
    for (Args &t : table)
      t = {{static_cast<uint32_t>(rnd_bits(32)), static_cast<uint32_t>(rnd_bits(32)), 0, 0}};
    return reinterpret_cast<const void *>(__aeabi_uidiv);
  }
  if (same(op, "uldivmod")) {
    for (Args &t : table) {
      uint64_t n = rnd_bits(64), d = rnd_bits(64);
      t = {{static_cast<uint32_t>(n), static_cast<uint32_t>(n >> 32), static_cast<uint32_t>(d),
            static_cast<uint32_t>(d >> 32)}};
    }
    return reinterpret_cast<const void *>(__aeabi_uldivmod);
  }
  return nullptr;
}

} // namespace

int main(int argc, char **argv) { return run_word_calls(argc, argv, prepare); }
