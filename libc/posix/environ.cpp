#include "posix/environ.h"

#include "alloc/malloc.h"
#include "bridge/debug_log.h"
#include "support/export.h"

// The environment: start-up points it at the block the system side copied in.
KV_VARIABLE(global, char **, environ) = nullptr;

namespace kv::env {

// The pointer array and its strings are one heap block, so one free returns all of it.
void release_environment() {
  debug_log("KV: (290) free all reallocated environ variables\n");
  kv::free(environ);
  environ = nullptr;
}

} // namespace kv::env
