// %d, %i and %u, 32-bit and 64-bit. Digits come two at a time from a reciprocal division by 100.
#include "printf/state.h"
#include "runtime/udiv10.h"

using namespace kv::printf;

namespace {

// Entry k holds the two digits of k.
struct Pairs {
  char c[200];
};
constexpr Pairs make_pairs() {
  Pairs p{};
  for (int k = 0; k < 100; ++k) {
    p.c[2 * k] = static_cast<char>('0' + k / 10);
    p.c[2 * k + 1] = static_cast<char>('0' + k % 10);
  }
  return p;
}
constexpr Pairs kPairs = make_pairs();

// Exact for every 32-bit value: 0x51EB851F is 2^37 / 100 rounded up.
inline uint32_t div100(uint32_t v) { return static_cast<uint32_t>(uint64_t{v} * 0x51EB851Fu >> 37); }

// The decimal digits of v, written backwards so that they end at `end`; none for 0. Returns
// the first digit.
char *digits32(char *end, uint32_t v) {
  while (v >= 100) {
    uint32_t q = div100(v);
    const char *pair = kPairs.c + 2 * (v - q * 100);
    end[-1] = pair[1];
    end[-2] = pair[0];
    end -= 2;
    v = q;
  }
  if (v >= 10) {
    const char *pair = kPairs.c + 2 * v;
    end[-1] = pair[1];
    end[-2] = pair[0];
    return end - 2;
  }
  if (v)
    *--end = static_cast<char>('0' + v);
  return end;
}

// The prefix for a signed conversion of a non-negative value.
int sign_prefix(uint32_t flags, const char *&prefix) {
  if (flags & PF_PLUS) {
    prefix = "+";
    return 1;
  }
  if (flags & PF_SPACE) {
    prefix = " ";
    return 1;
  }
  return 0;
}

} // namespace

namespace kv::printf {

int print_dec32(_printf_state *state, int letter, _printf_args args) {
  uint32_t v = args[0];
  uint32_t flags = state->flags;
  const char *prefix = "";
  int prefixlen = 0;
  if (letter == 'u') {
    if (flags & PF_CHAR)
      v &= 0xFF;
    else if (flags & PF_SHORT)
      v &= 0xFFFF;
  } else {
    int32_t s = static_cast<int32_t>(v);
    if (flags & PF_CHAR)
      s = static_cast<int8_t>(s);
    else if (flags & PF_SHORT)
      s = static_cast<int16_t>(s);
    if (s < 0) {
      v = 0u - static_cast<uint32_t>(s);
      prefix = "-";
      prefixlen = 1;
    } else {
      v = static_cast<uint32_t>(s);
      if (flags & (PF_PLUS | PF_SPACE))
        prefixlen = sign_prefix(flags, prefix);
    }
  }
  char *end = state->digits + sizeof state->digits;
  char *first = digits32(end, v);
  return int_layout(state, first, static_cast<int>(end - first), prefix, prefixlen);
}

int print_dec64(_printf_state *state, int letter, _printf_args args) {
  uint64_t v = double_word(args);
  const char *prefix = "";
  int prefixlen = 0;
  if (letter != 'u') {
    if (static_cast<int64_t>(v) < 0) {
      v = 0 - v;
      prefix = "-";
      prefixlen = 1;
    } else {
      prefixlen = sign_prefix(state->flags, prefix);
    }
  }
  char *end = state->digits + sizeof state->digits, *first = end;
  // Whole 64-bit steps only while the value needs them.
  while (v >> 32) {
    kv::rt::div10_t<uint64_t> d = kv::rt::udiv10_64(v);
    *--first = static_cast<char>('0' + d.rem);
    v = d.quot;
  }
  first = digits32(first, static_cast<uint32_t>(v));
  return int_layout(state, first, static_cast<int>(end - first), prefix, prefixlen);
}

} // namespace kv::printf
