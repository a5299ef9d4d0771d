// Misuse of the heap ends the process through abort: the bad-free line (or none, for a broken
// link) first in the log, signal 6 to this process twice (abort's shutdown runs between), then
// exit -1. The run's status is 0 only when exactly that happened.
//   heap_misuse double_free | below_heap | realloc_freed | broken_link
#include <kv/syscall.h>
#include <stdint.h>

#include "../bridge/log_capture.h"

extern "C" {
int32_t raw_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3);
void *__syscall_realloc(void *block, size_t size);
void __syscall_free(void *block);
}

namespace {
const char *expected_line;
size_t lines_before;
int signal_sent;
int signals;

bool same_prefix(const char *text, const char *prefix) {
  while (*prefix && *prefix == *text)
    ++prefix, ++text;
  return !*prefix;
}

bool same(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

bool bad_free_logged() {
  for (size_t i = lines_before; i < logcap::count(); ++i)
    for (const char *p = logcap::line(i); *p; ++p)
      if (same_prefix(p, "Bad free"))
        return true;
  return false;
}

void say(const char *text) {
  size_t n = 0;
  while (text[n])
    ++n;
  __syscall_write(1, text, n);
}

void *allocate(size_t n) { return __syscall_realloc(nullptr, n); }
} // namespace

extern "C" int __syscall_kill(int, int sig) {
  signal_sent = sig;
  ++signals;
  return 0;
}

extern "C" void __syscall_exit(int status) {
  bool logged = expected_line ? logcap::count() > lines_before &&
                                    same(logcap::line(lines_before), expected_line)
                              : !bad_free_logged();
  bool ok = logged && signal_sent == 6 && signals == 2 && status == -1;
  say(ok ? "aborted as expected\n" : "FAIL: wrong log line, signal or status\n");
  raw_trap(24, ok ? 0 : 1, 0, 0);
}

int main(int argc, char **argv) {
  if (argc < 2)
    return 2;
  const char *kind = argv[1];
  // Neighbours in use on both sides, so that the first free leaves a plain free chunk.
  char *a = static_cast<char *>(allocate(40));
  char *b = static_cast<char *>(allocate(40));
  char *c = static_cast<char *>(allocate(40));
  static char outside[32];
  lines_before = logcap::count();
  if (same(kind, "double_free")) {
    expected_line = "KV: (2672) Bad free: double free or bad address. aborting...\n";
    __syscall_free(b);
    __syscall_free(b);
  } else if (same(kind, "below_heap")) {
    expected_line = "KV: (2672) Bad free: double free or bad address. aborting...\n";
    __syscall_free(outside + 8);
  } else if (same(kind, "realloc_freed")) {
    expected_line = "KV: (2231) Bad free: double free or bad address. aborting...\n";
    __syscall_free(b);
    __syscall_realloc(b, 100);
  } else if (same(kind, "broken_link")) {
    __syscall_free(b);
    reinterpret_cast<uintptr_t *>(b)[0] = 0x100; // forward link below the heap
    allocate(40);
  } else {
    return 2;
  }
  say("FAIL: the heap went on\n");
  (void)a;
  (void)c;
  return 1;
}
