// sprintf, snprintf and vsnprintf: the engine into memory. The bounded forms return the length
// the whole output would have had.
#include "printf/printf.h"
#include "printf/state.h"

namespace {

// The EABI va_list is one pointer to the argument words.
_printf_args words(va_list args) { return __builtin_bit_cast(_printf_args, args); }

int format_bounded(char *buffer, size_t size, const char *format, _printf_args args) {
  _snputc_sink sink = {buffer, size ? buffer + size - 1 : buffer};
  _printf_state state;
  state.put_char = _snputc;
  state.sink = &sink;
  state.wide_hook = nullptr;
  int count = kv::printf::format_bytes(&state, format, args);
  if (size)
    *sink.next = 0;
  return count;
}

} // namespace

extern "C" int sprintf(char *buffer, const char *format, ...) {
  va_list args;
  va_start(args, format);
  _sputc_sink sink = {buffer};
  int count = _printf_char_common(format, &sink, words(args), _sputc);
  *sink.next = 0;
  va_end(args);
  return count;
}

extern "C" int snprintf(char *buffer, size_t size, const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = format_bounded(buffer, size, format, words(args));
  va_end(args);
  return count;
}

extern "C" int vsnprintf(char *buffer, size_t size, const char *format, va_list args) {
  return format_bounded(buffer, size, format, words(args));
}
