// Field padding and the common layout of integer conversions.
#include "printf/state.h"

using namespace kv::printf;

namespace kv::printf {

void pre_padding(_printf_state *state) {
  if (state->flags & PF_LEFT)
    return;
  int fill = (state->flags & PF_ZERO) ? '0' : ' ';
  for (int32_t n = state->width; n > 0; --n) {
    put(state, fill);
    ++state->count;
  }
}

void post_padding(_printf_state *state) {
  if (!(state->flags & PF_LEFT))
    return;
  for (int32_t n = state->width; n > 0; --n) {
    put(state, ' ');
    ++state->count;
  }
}

} // namespace kv::printf

// The digits stand reversed in state->digits; zeros from the precision go between the prefix
// and the digits, and so does the '0' padding.
KV_FUNCTION(protected, int, _printf_int_common,
            (_printf_state * state, int ndigits, const char *prefix, int prefixlen)) {
  uint32_t flags = state->flags;
  int32_t minimum = 1;
  if (flags & PF_PRECISION) {
    minimum = state->precision;
    flags &= ~PF_ZERO;
    state->flags = flags;
  }
  int32_t zeros = minimum - ndigits;
  if (zeros < 0)
    zeros = 0;
  state->width -= zeros + ndigits + prefixlen;
  if (!(flags & PF_ZERO))
    pre_padding(state);
  for (int i = 0; i < prefixlen; ++i)
    put(state, prefix[i]);
  if (flags & PF_ZERO)
    pre_padding(state);
  for (int32_t i = 0; i < zeros; ++i)
    put(state, '0');
  for (int i = ndigits; i > 0;)
    put(state, state->digits[--i]);
  state->count += zeros + ndigits + prefixlen;
  post_padding(state);
  return (flags & PF_LONGLONG) ? 2 : 1;
}
