// %o, %x and %p: digits by shifting, from the lower- or upper-case table.
#include "printf/state.h"

using namespace kv::printf;

namespace {

// 16 is the '@' of "%#p", 17-18 the "0x" prefix.
constexpr char kLower[] = "0123456789abcdef@0x";
constexpr char kUpper[] = "0123456789ABCDEF@0X";

// Entry b holds the two digits of byte b in print order, as one halfword: four digits are two
// loads and one word store.
struct HexPairs {
  uint16_t lower[256], upper[256];
};
constexpr HexPairs make_hex_pairs() {
  HexPairs p{};
  for (int b = 0; b < 256; ++b) {
    p.lower[b] = static_cast<uint16_t>(kLower[b >> 4] | kLower[b & 15] << 8);
    p.upper[b] = static_cast<uint16_t>(kUpper[b >> 4] | kUpper[b & 15] << 8);
  }
  return p;
}
constexpr HexPairs kHexPairs = make_hex_pairs();

// All eight digits of v, leading zeros included, in the aligned eight bytes before `end`.
inline void hex_word(char *end, uint32_t v, const uint16_t *pairs) {
  uint32_t low = pairs[v >> 8 & 0xFF] | static_cast<uint32_t>(pairs[v & 0xFF]) << 16;
  uint32_t high = pairs[v >> 24] | static_cast<uint32_t>(pairs[v >> 16 & 0xFF]) << 16;
  __builtin_memcpy(__builtin_assume_aligned(end - 4, 4), &low, 4);
  __builtin_memcpy(__builtin_assume_aligned(end - 8, 4), &high, 4);
}

// Significant hexadecimal digits of v; none for 0.
inline int hex_length(uint32_t v) { return v ? (35 - __builtin_clz(v)) >> 2 : 0; }

uint32_t narrow_unsigned(uint32_t v, uint32_t flags) {
  if (flags & PF_CHAR)
    return v & 0xFF;
  if (flags & PF_SHORT)
    return v & 0xFFFF;
  return v;
}

int octal(_printf_state *state, uint64_t v) {
  const char *prefix = "";
  int prefixlen = 0;
  if ((state->flags & PF_ALT) && ((state->flags & PF_PRECISION) || v)) {
    prefix = "0";
    prefixlen = 1;
    --state->precision;
  }
  char *end = state->digits + sizeof state->digits, *first = end;
  for (; v; v >>= 3)
    *--first = static_cast<char>('0' + (v & 7));
  return int_layout(state, first, static_cast<int>(end - first), prefix, prefixlen);
}

int hex(_printf_state *state, int letter, uint64_t v) {
  const char *table = (state->flags & PF_UPPER) ? kUpper : kLower;
  const char *prefix = "";
  int prefixlen = 0;
  if ((state->flags & PF_ALT) && v) {
    if (letter == 'p') {
      prefix = table + 16;
      prefixlen = 1;
    } else {
      prefix = table + 17;
      prefixlen = 2;
    }
  }
  const uint16_t *pairs = (state->flags & PF_UPPER) ? kHexPairs.upper : kHexPairs.lower;
  char *end = state->digits + sizeof state->digits;
  uint32_t hi = static_cast<uint32_t>(v >> 32), lo = static_cast<uint32_t>(v);
  hex_word(end, lo, pairs);
  int ndigits = hex_length(lo);
  if (hi) {
    hex_word(end - 8, hi, pairs);
    ndigits = 8 + hex_length(hi);
  }
  return int_layout(state, end - ndigits, ndigits, prefix, prefixlen);
}

} // namespace

KV_PRINTF_HANDLER(_printf_int_oct) { return octal(state, narrow_unsigned(args[0], state->flags)); }
KV_PRINTF_HANDLER(_printf_ll_oct) { return octal(state, double_word(args)); }
KV_PRINTF_HANDLER(_printf_int_hex) { return hex(state, letter, narrow_unsigned(args[0], state->flags)); }
KV_PRINTF_HANDLER(_printf_ll_hex) { return hex(state, letter, double_word(args)); }

// Always eight digits and no "0x".
KV_PRINTF_HANDLER(_printf_hex_ptr) {
  state->flags |= PF_PRECISION;
  state->precision = 8;
  return hex(state, letter, args[0]);
}
