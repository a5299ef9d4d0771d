// Captures the library's debug log (the syslog entry point is replaced); tests clear it and
// then look at what one operation logged.
#pragma once

#include <stddef.h>

namespace logs {
void clear();
size_t count();
const char *line(size_t i);
// How many lines since the last clear start with `prefix`.
size_t count_prefix(const char *prefix);
} // namespace logs
