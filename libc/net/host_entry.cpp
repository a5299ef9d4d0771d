#include "net/host_entry.h"

#include "alloc/malloc.h"
#include "bridge/debug_log.h"

namespace kv::net {

void *host_entry_buffer;

void release_host_entry() {
  debug_log("KV: (168) free struct hostent* variable\n");
  if (host_entry_buffer) {
    kv::free(host_entry_buffer);
    host_entry_buffer = nullptr;
  }
}

} // namespace kv::net
