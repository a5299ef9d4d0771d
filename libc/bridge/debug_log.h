// The porting layer's log: one 256-byte buffer, sent to the system side at priority 31. Every
// message carries its own "KV: (line) " prefix in its format text.
#pragma once

#include <stdarg.h>
#include <stddef.h>

namespace kv {

void debug_log(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Formats into `buffer` (at most size - 1 characters and a terminator); returns the length
// written. Knows %s %c %d %i %u %x %X %p and %%, with the '0' flag and a width.
size_t format_log(char *buffer, size_t size, const char *format, va_list args);

} // namespace kv
