// The block memory helpers through libc.so: every count 0..64 and two large ones, every source
// and destination alignment 0..7 (within what each variant requires), overlap both ways, and
// the bytes around the destination checked untouched.
#include <kvtest.h>

#include "helpers.h"

namespace {

constexpr size_t guard = 16;
// 255..257 and 511 around the 256-byte turn of the unaligned copy.
constexpr size_t large_counts[] = {127, 128, 129, 255, 256, 257, 511, 1000, 4096, 4099};
constexpr size_t max_count = 4099;

// Source contents by absolute position; not periodic at any small distance, so a byte taken
// from the wrong place or an offset copy shows.
uint8_t pattern(size_t i) { return static_cast<uint8_t>(i * 131 + (i >> 8) * 17 + 7); }

template <typename F> void for_each_count(F f) {
  for (size_t n = 0; n <= 64; ++n)
    f(n);
  for (size_t n : large_counts)
    f(n);
}

int failures;
// Prints the first few failing cases: the entry, the count and the two parameters that vary.
void report(const char *what, size_t n, const char *a_name, long a, const char *b_name, long b,
            size_t index) {
  if (++failures > 3)
    return;
  kvtest::out(what);
  kvtest::out(": wrong byte at ");
  kvtest::out_udec(index);
  kvtest::out(" for count ");
  kvtest::out_udec(n);
  kvtest::out(", ");
  kvtest::out(a_name);
  kvtest::out(" ");
  kvtest::out_dec(a);
  kvtest::out(", ");
  kvtest::out(b_name);
  kvtest::out(" ");
  kvtest::out_dec(b);
  kvtest::out("\n");
}

using CopyFn = void (*)(void *, const void *, size_t);
struct CopyEntry {
  const char *name;
  CopyFn fn;
  size_t alignment; // both pointers must be multiples of this
};
const CopyEntry copy_entries[] = {
    {"__aeabi_memcpy", __aeabi_memcpy, 1},   {"__aeabi_memcpy4", __aeabi_memcpy4, 4},
    {"__aeabi_memcpy8", __aeabi_memcpy8, 8}, {"__aeabi_memmove", __aeabi_memmove, 1},
    {"__aeabi_memmove4", __aeabi_memmove4, 4}, {"__aeabi_memmove8", __aeabi_memmove8, 8},
    {"__rt_memcpy", __rt_memcpy, 1},         {"__rt_memcpy_w", __rt_memcpy_w, 4},
    {"__rt_memmove", __rt_memmove, 1},       {"__rt_memmove_w", __rt_memmove_w, 4},
    {"__memmove_aligned", __memmove_aligned, 4},
};
bool is_move(CopyFn fn) {
  return fn == __aeabi_memmove || fn == __aeabi_memmove4 || fn == __aeabi_memmove8 ||
         fn == __rt_memmove || fn == __rt_memmove_w || fn == __memmove_aligned;
}

alignas(8) uint8_t src_area[guard + 8 + max_count + guard];
alignas(8) uint8_t dst_area[guard + 8 + max_count + guard];

// Copies between separate buffers. Around and inside the destination the old contents are the
// complement of what the copy should put there, so both a missed and a stray byte show.
void copy_sweep(const CopyEntry &e) {
  for (size_t i = 0; i < sizeof src_area; ++i)
    src_area[i] = pattern(i);
  for_each_count([&](size_t n) {
    for (size_t sa = 0; sa < 8; sa += e.alignment)
      for (size_t da = 0; da < 8; da += e.alignment) {
        size_t window = guard + da + n + guard;
        auto want = [&](size_t p) { return pattern(p - da + sa); };
        for (size_t p = 0; p < window; ++p)
          dst_area[p] = static_cast<uint8_t>(~want(p));
        e.fn(dst_area + guard + da, src_area + guard + sa, n);
        for (size_t p = 0; p < window; ++p) {
          bool inside = p >= guard + da && p < guard + da + n;
          if (dst_area[p] != (inside ? want(p) : static_cast<uint8_t>(~want(p)))) {
            report(e.name, n, "source offset", static_cast<long>(sa), "destination offset",
                   static_cast<long>(da), p);
            break;
          }
        }
        for (size_t p = guard + sa; p < guard + sa + n; ++p)
          if (src_area[p] != pattern(p)) {
            report(e.name, n, "source offset", static_cast<long>(sa), "destination offset",
                   static_cast<long>(da), p);
            break;
          }
      }
  });
}

} // namespace

TEST(Memory, CopyEveryCountAndAlignment) {
  failures = 0;
  for (const CopyEntry &e : copy_entries)
    copy_sweep(e);
  EXPECT_EQ(failures, 0);
}

namespace {

constexpr size_t max_distance = 4104; // at least max_count, and a multiple of 8
alignas(8) uint8_t move_area[guard + max_distance + 8 + max_count + max_distance + guard];

// Moves within one buffer: destination = source + distance, distance of either sign.
void move_one(const CopyEntry &e, size_t n, size_t sa, long distance) {
  size_t src = guard + max_distance + sa;
  size_t dst = src + distance;
  size_t lo = (src < dst ? src : dst) - guard, hi = (src > dst ? src : dst) + n + guard;
  for (size_t p = lo; p < hi; ++p)
    move_area[p] = pattern(p);
  e.fn(move_area + dst, move_area + src, n);
  for (size_t p = lo; p < hi; ++p) {
    bool inside = p >= dst && p < dst + n;
    if (move_area[p] != pattern(inside ? p - distance : p)) {
      report(e.name, n, "source offset", static_cast<long>(sa), "distance", distance, p);
      return;
    }
  }
}

const long small_distances[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 16, 17, 31, 32, 33, 63, 64};

void move_sweep(const CopyEntry &e) {
  for_each_count([&](size_t n) {
    for (size_t sa = 0; sa < 8; sa += e.alignment) {
      for (long k : small_distances) {
        if (k % static_cast<long>(e.alignment))
          continue;
        move_one(e, n, sa, k);
        move_one(e, n, sa, -k);
      }
      if (n > 64 && e.alignment == 1) {
        long half = static_cast<long>(n / 2), most = static_cast<long>(n - 1);
        move_one(e, n, sa, half);
        move_one(e, n, sa, -half);
        move_one(e, n, sa, most);
        move_one(e, n, sa, -most);
      }
    }
  });
}

} // namespace

TEST(Memory, MoveOverlappingBothWays) {
  failures = 0;
  for (const CopyEntry &e : copy_entries)
    if (is_move(e.fn))
      move_sweep(e);
  EXPECT_EQ(failures, 0);
}

namespace {

void pattern_fill(void *d, size_t n, int v) { _memset(d, n, static_cast<uint8_t>(v) * 0x01010101u); }
void pattern_fill_w(void *d, size_t n, int v) {
  _memset_w(d, n, static_cast<uint8_t>(v) * 0x01010101u);
}

struct FillEntry {
  const char *name;
  void (*set)(void *, size_t, int); // count before value
  void (*clear)(void *, size_t);
  size_t alignment;
};
const FillEntry fill_entries[] = {
    {"_memset", pattern_fill, nullptr, 1},
    {"_memset_w", pattern_fill_w, nullptr, 4},
    {"__rt_memclr", nullptr, __rt_memclr, 1},
    {"__rt_memclr_w", nullptr, __rt_memclr_w, 4},
    {"__aeabi_memset", __aeabi_memset, nullptr, 1},
    {"__aeabi_memset4", __aeabi_memset4, nullptr, 4},
    {"__aeabi_memset8", __aeabi_memset8, nullptr, 8},
    {"__aeabi_memclr", nullptr, __aeabi_memclr, 1},
    {"__aeabi_memclr4", nullptr, __aeabi_memclr4, 4},
    {"__aeabi_memclr8", nullptr, __aeabi_memclr8, 8},
};
// Only the low byte of the value counts.
const int fill_values[] = {0x00, 0x5a, 0xff, 0x1a5, -2};

void fill_sweep(const FillEntry &e) {
  for (int value : fill_values) {
    if (e.clear && value != 0)
      continue;
    auto byte = static_cast<uint8_t>(value);
    auto background = static_cast<uint8_t>(~byte);
    for_each_count([&](size_t n) {
      for (size_t da = 0; da < 8; da += e.alignment) {
        size_t window = guard + da + n + guard;
        for (size_t p = 0; p < window; ++p)
          dst_area[p] = background;
        if (e.clear)
          e.clear(dst_area + guard + da, n);
        else
          e.set(dst_area + guard + da, n, value);
        for (size_t p = 0; p < window; ++p) {
          bool inside = p >= guard + da && p < guard + da + n;
          if (dst_area[p] != (inside ? byte : background)) {
            report(e.name, n, "destination offset", static_cast<long>(da), "value", value, p);
            break;
          }
        }
      }
    });
  }
}

} // namespace

TEST(Memory, FillEveryCountAndAlignment) {
  failures = 0;
  for (const FillEntry &e : fill_entries)
    fill_sweep(e);
  EXPECT_EQ(failures, 0);
}

// Count 0 writes nothing, even at the very end of a buffer.
TEST(Memory, ZeroCountWritesNothing) {
  alignas(8) uint8_t buf[16];
  for (auto &b : buf)
    b = 0xee;
  __aeabi_memclr(buf + 16, 0);
  __aeabi_memclr4(buf + 8, 0);
  __aeabi_memclr8(buf, 0);
  __aeabi_memset(buf + 3, 0, 0);
  __aeabi_memcpy(buf + 5, buf + 1, 0);
  __aeabi_memmove(buf + 1, buf + 5, 0);
  int changed = 0;
  for (auto b : buf)
    changed += b != 0xee;
  EXPECT_EQ(changed, 0);
}

// __aeabi_memset takes the count second: a swapped order would write 0x5a bytes of value 3.
TEST(Memory, FillArgumentOrder) {
  alignas(8) uint8_t buf[128];
  for (auto &b : buf)
    b = 0;
  __aeabi_memset(buf, 3, 0x5a);
  EXPECT_EQ(buf[0], 0x5a);
  EXPECT_EQ(buf[2], 0x5a);
  EXPECT_EQ(buf[3], 0);
  EXPECT_EQ(buf[90], 0);
}

// The overlap cases that catch a forward copy in the wrong place and a move that touches data
// it should leave alone.
TEST(Memory, MoveByOneAndOntoItself) {
  alignas(8) uint8_t buf[112];
  for (size_t i = 0; i < sizeof buf; ++i)
    buf[i] = static_cast<uint8_t>(i + 1);
  __rt_memmove(buf + 1, buf, 100);
  EXPECT_EQ(buf[0], 1);
  int wrong = 0;
  for (size_t i = 1; i <= 100; ++i)
    wrong += buf[i] != static_cast<uint8_t>(i);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(buf[101], 102);
  __rt_memmove(buf, buf, 100);
  __memmove_aligned(buf, buf, 100);
  EXPECT_EQ(buf[1], 1);
  EXPECT_EQ(buf[100], 100);
}

namespace {
// count & 3 bytes are copied, whatever the higher bits of the count say.
struct TailCase {
  size_t count, copied;
};
const TailCase tail_cases[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {7, 3}, {0x402, 2}};
} // namespace

TEST(Memory, CopyTails) {
  for (const TailCase &c : tail_cases)
    for (int aligned = 0; aligned < 2; ++aligned) {
      alignas(4) uint8_t src[8] = {11, 12, 13, 14, 15, 16, 17, 18};
      alignas(4) uint8_t dst[8] = {};
      (aligned ? _memcpy_lastbytes_aligned : _memcpy_lastbytes)(dst, src, c.count);
      for (size_t i = 0; i < 8; ++i)
        EXPECT_EQ(dst[i], i < c.copied ? src[i] : 0);
      // The backward tails copy the bytes just below the end pointers.
      alignas(4) uint8_t back[8] = {};
      (aligned ? __memmove_lastfew_aligned : __memmove_lastfew)(back + 4, src + 4, c.count);
      for (size_t i = 0; i < 8; ++i)
        EXPECT_EQ(back[i], i < 4 && i >= 4 - c.copied ? src[i] : 0);
    }
}

// The pattern entries store the word as it is, so a non-uniform pattern shows its byte order.
TEST(Memory, PatternWordLandsAsStored) {
  alignas(8) uint8_t buf[16] = {};
  _memset_w(buf, 8, 0x44332211u);
  EXPECT_EQ(buf[0], 0x11);
  EXPECT_EQ(buf[3], 0x44);
  EXPECT_EQ(buf[4], 0x11);
  EXPECT_EQ(buf[8], 0);
}
