// Test programs that link log_capture.cpp replace the library's syslog entry point and keep
// every message the library logs, from start-up on.
#pragma once

#include <stddef.h>

namespace logcap {
// Forgets what was captured so far, so that a test sees what one operation logged.
void clear();
size_t count();
const char *line(size_t i);
// How many captured messages start with `prefix`.
size_t count_prefix(const char *prefix);
// The first captured message that starts with `prefix`, or null.
const char *find(const char *prefix);
// Priority given with message i.
int priority(size_t i);
} // namespace logcap
