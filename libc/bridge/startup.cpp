// The library's initialisation and finalisation functions, run by the loader.
#include <kv/syscall.h>
#include <stddef.h>

#include "alloc/malloc.h"
#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "bridge/version.h"
#include "locale/record.h"

extern "C" char **environ;

namespace kv {
namespace {

constexpr size_t kFirstEnvironSize = 50;

// The system side writes the environ block into the buffer and answers 0, or answers the size
// it needs; one retry with that size.
void copy_environment() {
  environ = static_cast<char **>(kv::malloc(kFirstEnvironSize));
  int needed = __syscall_copy_environ(environ, kFirstEnvironSize);
  if (needed != 0) {
    kv::free(environ);
    environ = static_cast<char **>(kv::malloc(static_cast<size_t>(needed)));
    __syscall_copy_environ(environ, static_cast<size_t>(needed));
  }
}

__attribute__((constructor)) void library_init() {
  debug_log("KV: (248) ***** <libc.so based on %s> *****\n", version_text());
  locale::init_record();
  // Clearing the cells performs both address handshakes before anything can fail.
  *___aeabi_errno_addr() = 0;
  *___h_errno_addr() = 0;
  debug_log("KV: (264) environ addr %08x\n", reinterpret_cast<unsigned>(&environ));
  debug_log("KV: (265) environ %08x\n", reinterpret_cast<unsigned>(environ));
  copy_environment();
  debug_log("KV: (287) environ %08x\n", reinterpret_cast<unsigned>(environ));
}

__attribute__((destructor)) void library_end() {
  debug_log("KV: (306) ***** </libc.so> *****\n");
}

} // namespace
} // namespace kv
