#include "posix/directories.h"

#include <kv/syscall.h>

#include "alloc/malloc.h"
#include "bridge/debug_log.h"

namespace kv::dirs {

DirRecord *registry;

void release_directories() {
  debug_log("KV: (154) free all DIR* structures\n");
  DirRecord *record = registry;
  while (record) {
    DirRecord *next = record->next;
    if (record->handle)
      __syscall_closedir(static_cast<int>(record->handle));
    kv::free(record);
    record = next;
  }
  registry = nullptr;
}

} // namespace kv::dirs
