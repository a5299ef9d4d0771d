// The library's initialisation function, run by the loader.
#include <kv/syscall.h>
#include <stddef.h>
#include <stdint.h>

#include "alloc/malloc.h"
#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "bridge/exceptions.h"
#include "bridge/version.h"
#include "locale/record.h"
#include "posix/random.h"
#include "runtime/exits.h"
#include "stdio/stream.h"

extern "C" char **environ;
extern "C" uint32_t *__rt_fp_status_addr(void);

namespace kv {
namespace {

constexpr size_t kFirstEnvironSize = 50;
constexpr size_t kConsoleBufferSize = 256;

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

void initialise_core() {
  *__rt_fp_status_addr() = 0;
  seed_random(1);
  locale::init_record();
  initialise_atexit_table();
  stdio::initialise_streams();
  set_up_exceptions();
}

__attribute__((constructor)) void library_init() {
  debug_log("KV: (248) ***** <libc.so based on %s> *****\n", version_text());
  initialise_core();
  freopen("__stderr__", "w+", stderr);
  setvbuf(stdout, nullptr, stdio::kLineBuffered, kConsoleBufferSize);
  setvbuf(stderr, nullptr, stdio::kLineBuffered, kConsoleBufferSize);
  // Clearing the cells performs both address handshakes before the environment is read.
  *___aeabi_errno_addr() = 0;
  *___h_errno_addr() = 0;
  debug_log("KV: (264) environ addr %08x\n", reinterpret_cast<unsigned>(&environ));
  debug_log("KV: (265) environ %08x\n", reinterpret_cast<unsigned>(environ));
  copy_environment();
  debug_log("KV: (287) environ %08x\n", reinterpret_cast<unsigned>(environ));
}

} // namespace
} // namespace kv
