// Word loops shared by the forward and backward copies. The destination is word-aligned; a
// source at another alignment is read as aligned words and each output word is merged from two
// neighbours (little-endian), so no access is unaligned and none touches a word that holds no
// byte being copied. The shift amounts are template constants so that each merge is two
// instructions.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kv::mem {

using word = uint32_t __attribute__((may_alias));

inline bool aligned(const void *p) { return (reinterpret_cast<uintptr_t>(p) & 3) == 0; }

// Forward loops load each group before storing it, so they are safe for overlap with the
// destination below the source; backward loops likewise with the destination above.

inline void aligned_forward(word *d, const word *s, size_t words) {
  for (; words >= 4; words -= 4, d += 4, s += 4) {
    word w0 = s[0], w1 = s[1], w2 = s[2], w3 = s[3];
    d[0] = w0, d[1] = w1, d[2] = w2, d[3] = w3;
  }
  while (words--)
    *d++ = *s++;
}

// s points at the aligned word holding the first source byte, which sits Right / 8 bytes in.
template <unsigned Right> void merge_forward(word *d, const word *s, size_t words) {
  constexpr unsigned left = 32 - Right;
  word cur = *s++;
  for (; words >= 4; words -= 4, d += 4, s += 4) {
    word w0 = s[0], w1 = s[1], w2 = s[2], w3 = s[3];
    d[0] = cur >> Right | w0 << left;
    d[1] = w0 >> Right | w1 << left;
    d[2] = w1 >> Right | w2 << left;
    d[3] = w2 >> Right | w3 << left;
    cur = w3;
  }
  while (words--) {
    word next = *s++;
    *d++ = cur >> Right | next << left;
    cur = next;
  }
}

inline void aligned_backward(word *d_end, const word *s_end, size_t words) {
  for (; words >= 4; words -= 4) {
    d_end -= 4;
    s_end -= 4;
    word w0 = s_end[0], w1 = s_end[1], w2 = s_end[2], w3 = s_end[3];
    d_end[0] = w0, d_end[1] = w1, d_end[2] = w2, d_end[3] = w3;
  }
  while (words--)
    *--d_end = *--s_end;
}

// s points at the aligned word holding the byte just below the source end, which sits
// Right / 8 - 1 bytes in.
template <unsigned Right> void merge_backward(word *d_end, const word *s, size_t words) {
  constexpr unsigned left = 32 - Right;
  word upper = *s;
  for (; words >= 4; words -= 4) {
    d_end -= 4;
    s -= 4;
    word w0 = s[0], w1 = s[1], w2 = s[2], w3 = s[3];
    d_end[3] = w3 >> Right | upper << left;
    d_end[2] = w2 >> Right | w3 << left;
    d_end[1] = w1 >> Right | w2 << left;
    d_end[0] = w0 >> Right | w1 << left;
    upper = w0;
  }
  while (words--) {
    word lower = *--s;
    *--d_end = lower >> Right | upper << left;
    upper = lower;
  }
}

// Copies `words` words upward from s to the aligned d.
__attribute__((always_inline)) inline void words_forward(word *d, const unsigned char *s, size_t words) {
  auto *ws = reinterpret_cast<const word *>(reinterpret_cast<uintptr_t>(s) & ~uintptr_t{3});
  switch (reinterpret_cast<uintptr_t>(s) & 3) {
  case 0:
    return aligned_forward(d, ws, words);
  case 1:
    return merge_forward<8>(d, ws, words);
  case 2:
    return merge_forward<16>(d, ws, words);
  default:
    return merge_forward<24>(d, ws, words);
  }
}

// Copies `words` words downward, ending just below the aligned d_end and s_end.
__attribute__((always_inline)) inline void words_backward(word *d_end, const unsigned char *s_end, size_t words) {
  auto *ws = reinterpret_cast<const word *>(reinterpret_cast<uintptr_t>(s_end) & ~uintptr_t{3});
  switch (reinterpret_cast<uintptr_t>(s_end) & 3) {
  case 0:
    return aligned_backward(d_end, ws, words);
  case 1:
    return merge_backward<8>(d_end, ws, words);
  case 2:
    return merge_backward<16>(d_end, ws, words);
  default:
    return merge_backward<24>(d_end, ws, words);
  }
}

} // namespace kv::mem
