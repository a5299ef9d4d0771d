// The heap's one state record, the process-wide tunables, the lock and the fatal reports.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "alloc/heap.h"
#include "alloc/malloc.h"
#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "posix/mutex_hooks.h"
#include "posix/signal_calls.h"
#include "support/export.h"

namespace kv::heap {

Records records;

namespace {
uint32_t params_lock; // never initialised: it only guards the one-time setting of magic
}

void ensure_params_slow() {
  params.mmap_threshold = 262144;
  params.trim_threshold = 16384;
  params.default_flags = kUseMmap | kUseLock | kNoncontiguous;
  __mutex_acquire(&params_lock);
  if (params.magic == 0) {
    params.magic = kMagic;
    __mutex_initialize(&state.lock);
    state.flags = params.default_flags;
  }
  __mutex_release(&params_lock);
  // The page-size query is passed to the system side unchanged.
  params.page_size = static_cast<size_t>(__syscall_sysconf(kPageSizeName));
  params.granularity = 16384;
  if (params.page_size & (params.page_size - 1))
    abort();
}

void enter_slow() {
  ensure_params();
  lock();
}

void corrupted() { abort(); }

// The lock stays held: nothing may touch the heap on the way out.
void bad_free(int line) {
  debug_log("KV: (%d) Bad free: double free or bad address. aborting...\n", line);
  abort();
}

void set_enomem() { *___aeabi_errno_addr() = KV_ENOMEM; }

void *(*const allocate_slot)(size_t) = allocate;

} // namespace kv::heap

using namespace kv::heap;

KV_FUNCTION(global, int, mallopt, (int param, int value)) {
  ensure_params();
  size_t v = static_cast<size_t>(value);
  switch (param) {
  case -1:
    params.trim_threshold = v;
    return 1;
  case -2:
    if (v >= params.page_size && (v & (v - 1)) == 0) {
      params.granularity = v;
      return 1;
    }
    return 0;
  case -3:
    params.mmap_threshold = v;
    return 1;
  default:
    return 0;
  }
}
