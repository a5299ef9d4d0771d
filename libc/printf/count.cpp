// %n: the count so far, stored at the width the length modifier names.
#include "printf/state.h"

using namespace kv::printf;

namespace kv::printf {

int print_count(_printf_state *state, int, _printf_args args) {
  void *target = reinterpret_cast<void *>(static_cast<uintptr_t>(args[0]));
  uint32_t flags = state->flags;
  if (flags & PF_CHAR)
    *static_cast<int8_t *>(target) = static_cast<int8_t>(state->count);
  else if (flags & PF_SHORT)
    *static_cast<int16_t *>(target) = static_cast<int16_t>(state->count);
  else if (flags & PF_LONGLONG)
    *static_cast<int64_t *>(target) = state->count;
  else
    *static_cast<int32_t *>(target) = state->count;
  return 1;
}

} // namespace kv::printf
