#include "log_capture.h"

#include <kv/syscall.h>

namespace logcap {
namespace {
constexpr size_t kLines = 64, kWidth = 300;
char lines[kLines][kWidth];
int priorities[kLines];
size_t used;

bool starts_with(const char *s, const char *prefix) {
  while (*prefix)
    if (*s++ != *prefix++)
      return false;
  return true;
}
} // namespace

void clear() { used = 0; }
size_t count() { return used; }
const char *line(size_t i) { return i < used ? lines[i] : nullptr; }
int priority(size_t i) { return i < used ? priorities[i] : -1; }

size_t count_prefix(const char *prefix) {
  size_t n = 0;
  for (size_t i = 0; i < used; ++i)
    n += starts_with(lines[i], prefix);
  return n;
}

const char *find(const char *prefix) {
  for (size_t i = 0; i < used; ++i)
    if (starts_with(lines[i], prefix))
      return lines[i];
  return nullptr;
}
} // namespace logcap

extern "C" int __syscall_syslog(int priority, const char *message) {
  using namespace logcap;
  if (used == kLines)
    return 0;
  size_t n = 0;
  for (; message[n] && n < kWidth - 1; ++n)
    lines[used][n] = message[n];
  lines[used][n] = 0;
  priorities[used++] = priority;
  return 0;
}
