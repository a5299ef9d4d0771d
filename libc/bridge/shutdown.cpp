#include "bridge/shutdown.h"

#include <stdint.h>

#include "alloc/malloc.h"
#include "bridge/exceptions.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"

extern "C" void **__rt_ddtor_pointer_addr(void);

namespace kv {
namespace {

struct DestructorRecord {
  DestructorRecord *next;
  void *argument;
  void (*function)(void *);
  uint32_t owner;
};

// Records taken from the head one by one, so a function that registers or runs records is
// followed from wherever the head then is.
void run_destructor_records() {
  auto **head = reinterpret_cast<DestructorRecord **>(__rt_ddtor_pointer_addr());
  while (DestructorRecord *record = *head) {
    *head = record->next;
    record->function(record->argument);
    kv::free(record);
  }
}

} // namespace

void shutdown_core() {
  run_destructor_records();
  stdio::terminate_streams();
  release_exceptions();
}

} // namespace kv

KV_FUNCTION(global, void, _exit, (int status)) {
  kv::shutdown_core();
  _sys_exit(status);
}
