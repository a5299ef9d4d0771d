#include "bridge/debug_log.h"

#include <kv/abi.h>
#include <kv/syscall.h>
#include <stdint.h>

namespace kv {
namespace {

constexpr size_t kLogBufferSize = 256;
char log_buffer[kLogBufferSize];

// Appends to a bounded buffer, keeping room for the terminator; what does not fit is cut.
struct Sink {
  char *buffer;
  size_t size;
  size_t length = 0;
  void put(char c) {
    if (length + 1 < size)
      buffer[length++] = c;
  }
  void pad(char fill, int count) {
    while (count-- > 0)
      put(fill);
  }
};

void put_number(Sink &sink, uint32_t value, unsigned base, bool upper, bool negative, char fill,
                int width) {
  char digits[12];
  int n = 0;
  const char *set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  do {
    digits[n++] = set[value % base];
    value /= base;
  } while (value);
  int used = n + (negative ? 1 : 0);
  if (fill == ' ')
    sink.pad(' ', width - used);
  if (negative)
    sink.put('-');
  if (fill == '0')
    sink.pad('0', width - used);
  while (n)
    sink.put(digits[--n]);
}

} // namespace

size_t format_log(char *buffer, size_t size, const char *format, va_list args) {
  if (size == 0)
    return 0;
  Sink sink{buffer, size};
  for (const char *p = format; *p; ++p) {
    if (*p != '%') {
      sink.put(*p);
      continue;
    }
    ++p;
    char fill = ' ';
    if (*p == '0') {
      fill = '0';
      ++p;
    }
    int width = 0;
    while (*p >= '0' && *p <= '9')
      width = width * 10 + (*p++ - '0');
    switch (*p) {
    case 's': {
      const char *s = va_arg(args, const char *);
      if (!s)
        s = "(null)";
      size_t n = 0;
      while (s[n])
        ++n;
      sink.pad(' ', width - static_cast<int>(n));
      for (size_t i = 0; i < n; ++i)
        sink.put(s[i]);
      break;
    }
    case 'c':
      sink.put(static_cast<char>(va_arg(args, int)));
      break;
    case 'd':
    case 'i': {
      int v = va_arg(args, int);
      uint32_t magnitude = v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
      put_number(sink, magnitude, 10, false, v < 0, fill, width);
      break;
    }
    case 'u':
      put_number(sink, va_arg(args, unsigned), 10, false, false, fill, width);
      break;
    case 'x':
    case 'X':
      put_number(sink, va_arg(args, unsigned), 16, *p == 'X', false, fill, width);
      break;
    case 'p': // eight hexadecimal digits, no prefix
      put_number(sink, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(va_arg(args, void *))),
                 16, false, false, '0', width > 8 ? width : 8);
      break;
    case '%':
      sink.put('%');
      break;
    case '\0':
      --p; // a lone '%' at the end
      break;
    default:
      sink.put('%');
      sink.put(*p);
      break;
    }
  }
  buffer[sink.length] = '\0';
  return sink.length;
}

void debug_log(const char *format, ...) {
  va_list args;
  va_start(args, format);
  format_log(log_buffer, kLogBufferSize, format, args);
  va_end(args);
  __syscall_syslog(KV_LOG_DEBUG_PRIORITY, log_buffer);
}

} // namespace kv
