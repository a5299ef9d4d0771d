// Exception-handling state made at start-up. The library itself throws nothing; the record is
// there for C++ code that the environment runs on top of it.
#include "bridge/exceptions.h"

#include "alloc/malloc.h"
#include "bridge/debug_log.h"

extern "C" void abort(void);
extern "C" void **__rt_eh_globals_addr(void);
extern "C" __attribute__((weak)) void __ARM_exceptions_buffer_required(void);
namespace __ARM {
__attribute__((weak)) void default_unexpected_handler();
}

namespace kv {
namespace {

constexpr uint32_t kSlotOffset = 8;
constexpr uint32_t kSlotSize = 128;
constexpr uint32_t kEmergencySize = kSlotOffset + kSlotSize;

struct ExceptionGlobals {
  uint32_t first;
  void (*unexpected)();
  void (*terminate)();
  uint32_t flag_word;
  uint32_t reserved[3];
  void *emergency;
};

ExceptionGlobals *made_record;

void terminate_by_abort() { abort(); }

} // namespace

void set_up_exceptions() {
  debug_log("KV: (157) ARM exception init\n");
  void **slot = __rt_eh_globals_addr();
  if (*slot)
    return;
  auto *record = static_cast<ExceptionGlobals *>(kv::malloc(sizeof(ExceptionGlobals)));
  if (!record)
    abort();
  *record = {};
  record->unexpected = __ARM::default_unexpected_handler;
  record->terminate = terminate_by_abort;
  record->emergency = __ARM_exceptions_buffer_required ? __ARM_exceptions_buffer_init() : nullptr;
  *slot = record;
  made_record = record;
}

void release_exceptions() {
  if (made_record)
    kv::free(made_record);
  made_record = nullptr;
}

} // namespace kv

KV_FUNCTION(global, void *, __ARM_exceptions_buffer_init, (void)) {
  auto *buffer = static_cast<unsigned char *>(kv::malloc(kv::kEmergencySize));
  if (buffer)
    buffer[0] = 0;
  return buffer;
}

KV_FUNCTION(global, void *, __ARM_exceptions_buffer_allocate, (void *buffer, uint32_t size)) {
  auto *bytes = static_cast<unsigned char *>(buffer);
  if (size > kv::kSlotSize || !bytes || bytes[0])
    return nullptr;
  bytes[0] = 1;
  return bytes + kv::kSlotOffset;
}

KV_FUNCTION(global, int, __ARM_exceptions_buffer_free, (void *buffer, void *pointer)) {
  auto *bytes = static_cast<unsigned char *>(buffer);
  if (!bytes || pointer != bytes + kv::kSlotOffset)
    return 0;
  bytes[0] = 0;
  return 1;
}
