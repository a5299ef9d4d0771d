// Field padding and the common layout of integer conversions.
#include "printf/state.h"

using namespace kv::printf;

namespace kv::printf {

void pre_padding(_printf_state *state) {
  if (state->width > 0 && !(state->flags & PF_LEFT)) {
    fill(state, (state->flags & PF_ZERO) ? '0' : ' ', state->width);
    state->count += state->width;
  }
}

void post_padding(_printf_state *state) {
  if (state->width > 0 && (state->flags & PF_LEFT)) {
    fill(state, ' ', state->width);
    state->count += state->width;
  }
}

// Zeros from the precision go between the prefix and the digits, and so does the '0' padding.
int int_layout(_printf_state *state, const char *digits, int ndigits, const char *prefix,
               int prefixlen) {
  uint32_t flags = state->flags;
  // No precision and no room to pad: the prefix and the digits as they are.
  if (!(flags & PF_PRECISION) && ndigits && state->width <= ndigits + prefixlen) {
    state->count += ndigits + prefixlen;
    state->width -= ndigits + prefixlen;
    if (prefixlen)
      emit(state, prefix, prefixlen);
    emit(state, digits, ndigits);
    return (flags & PF_LONGLONG) ? 2 : 1;
  }
  int32_t zeros = 0;
  if (flags & PF_PRECISION) {
    zeros = state->precision - ndigits;
    if (zeros < 0)
      zeros = 0;
    flags &= ~PF_ZERO;
    state->flags = flags;
  } else if (ndigits == 0) {
    zeros = 1;
  }
  int32_t length = zeros + ndigits + prefixlen;
  state->count += length;
  state->width -= length;
  if (state->width > 0 && !(flags & PF_ZERO))
    pre_padding(state);
  if (prefixlen)
    emit(state, prefix, prefixlen);
  if (state->width > 0 && (flags & PF_ZERO))
    pre_padding(state);
  if (zeros)
    fill(state, '0', zeros);
  emit(state, digits, ndigits);
  if (state->width > 0)
    post_padding(state);
  return (flags & PF_LONGLONG) ? 2 : 1;
}

} // namespace kv::printf

// The digits stand reversed in state->digits.
KV_FUNCTION(protected, int, _printf_int_common,
            (_printf_state * state, int ndigits, const char *prefix, int prefixlen)) {
  char *d = state->digits;
  for (int i = 0, j = ndigits - 1; i < j; ++i, --j) {
    char t = d[i];
    d[i] = d[j];
    d[j] = t;
  }
  return int_layout(state, d, ndigits, prefix, prefixlen);
}
