// Infinities and NaNs: three letters and an optional sign, never zero-padded.
#include "printf/state.h"

using namespace kv::printf;

KV_FUNCTION(protected, void, _printf_fp_infnan, (_printf_state * state, int, int fp_class, int sign)) {
  state->flags &= ~PF_ZERO;
  bool upper = state->flags & PF_UPPER;
  const char *text = fp_class >= fp_nan ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf");
  int length = 3 + (sign != 0);
  state->width -= length;
  pre_padding(state);
  if (sign)
    put(state, sign);
  for (int i = 0; i < 3; ++i)
    put(state, text[i]);
  state->count += length;
  post_padding(state);
}
