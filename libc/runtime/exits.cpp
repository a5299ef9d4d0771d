#include "runtime/exits.h"

#include <kv/syscall.h>
#include <stddef.h>
#include <stdint.h>

#include "alloc/malloc.h"
#include "bridge/shutdown.h"
#include "posix/mutex_hooks.h"
#include "posix/signal_calls.h"
#include "stdio/stream.h"
#include "support/export.h"

extern "C" void **__rt_ddtor_pointer_addr(void);
extern "C" __attribute__((weak)) void _mutex_free(uint32_t *mutex);

namespace kv {
namespace {

struct DestructorRecord {
  DestructorRecord *next;
  void *argument;
  void (*function)(void *);
  void *owner;
};

DestructorRecord **destructor_head() {
  return reinterpret_cast<DestructorRecord **>(__rt_ddtor_pointer_addr());
}

// Nothing in the library fills this table; programs that bring their own registration use it,
// and it is emptied newest first.
constexpr int kAtexitSlots = 32;
struct AtexitTable {
  uint32_t count;
  void (*functions[kAtexitSlots])(void);
  uint32_t lock;
};
AtexitTable atexit_table;

} // namespace

int register_destructor(void *argument, void (*function)(void *), void *owner) {
  auto *record = static_cast<DestructorRecord *>(kv::malloc(sizeof(DestructorRecord)));
  if (!record)
    return 1;
  DestructorRecord **head = destructor_head();
  *record = {*head, argument, function, owner};
  *head = record;
  return 0;
}

int register_destructor_function_first(void (*function)(void *), void *argument, void *owner) {
  return register_destructor(argument, function, owner);
}

// A function that registers records changes the head: the walk then starts again from it, so
// what it registered runs next.
void run_destructors(void *owner) {
  DestructorRecord **head = destructor_head();
  DestructorRecord **link = head;
  while (DestructorRecord *record = *link) {
    if (owner && record->owner != owner) {
      link = &record->next;
      continue;
    }
    *link = record->next;
    DestructorRecord *head_before = *head;
    record->function(record->argument);
    __syscall_free(record);
    if (*head != head_before)
      link = head;
  }
}

void initialise_atexit_table() {
  atexit_table.count = 0;
  __mutex_initialize(&atexit_table.lock);
}

} // namespace kv

// The count drops before each call, so a function registered meanwhile is the next one run.
KV_FUNCTION(global, void, _call_atexit_fns, (void)) {
  __mutex_acquire(&kv::atexit_table.lock);
  while (kv::atexit_table.count > 0) {
    uint32_t last = --kv::atexit_table.count;
    kv::atexit_table.functions[last]();
  }
  __mutex_release(&kv::atexit_table.lock);
  if (_mutex_free)
    _mutex_free(&kv::atexit_table.lock);
}

// atexit's functions are destructor records of no owner, called with the argument 0.
KV_FUNCTION(global, int, atexit, (void (*function)(void))) {
  return kv::register_destructor_function_first(reinterpret_cast<void (*)(void *)>(function),
                                                nullptr, nullptr);
}

namespace {
// abort reached again from its own shutdown (a heap check failing while streams are freed)
// skips straight to the end.
bool aborting;
} // namespace

KV_FUNCTION(global, void, abort, (void)) {
  if (!aborting) {
    aborting = true;
    fflush(nullptr);
    raise(SIGABRT);
    signal(SIGABRT, SIG_DFL);
    kv::shutdown_core();
  }
  raise(SIGABRT);
  __syscall_exit(-1);
  __builtin_trap(); // a replaced exit that returns must not let the caller go on
}

KV_FUNCTION(global, void, __aeabi_assert, (const char *expression, const char *file, int line)) {
  // Digits backwards from the end; a line of 0 or below shows none.
  char number[12];
  char *p = number + sizeof number;
  *--p = 0;
  *--p = '\n';
  for (; line > 0; line /= 10)
    *--p = static_cast<char>('0' + line % 10);
  fputs("*** assertion failed: ", stderr);
  fputs(expression, stderr);
  fputs(", file ", stderr);
  fputs(file, stderr);
  fputs(", line ", stderr);
  fputs(p, stderr);
  abort();
}
