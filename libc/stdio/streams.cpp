// The stream list: the three standard records, their set-up at start-up and the closing of
// every stream at shutdown.
#include "alloc/malloc.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace kv::stdio {
FILE standard_streams[3];
}

KV_VARIABLE(global, FILE *, stdin) = &kv::stdio::standard_streams[0];
KV_VARIABLE(global, FILE *, stdout) = &kv::stdio::standard_streams[1];
KV_VARIABLE(global, FILE *, stderr) = &kv::stdio::standard_streams[2];
KV_VARIABLE(global, void *, __aeabi_stdin) = nullptr;
KV_VARIABLE(global, void *, __aeabi_stdout) = nullptr;
KV_VARIABLE(global, void *, __aeabi_stderr) = nullptr;
KV_VARIABLE(global, uint32_t, _stream_list_lock) = 0;

extern "C" __attribute__((weak)) void _mutex_free(uint32_t *mutex);
extern "C" void __rt_SIGRTRED(const char *stream_name);

namespace kv::stdio {
namespace {

struct Standard {
  const char *name;
  const char *mode;
  size_t buffer_size;
};
constexpr Standard kStandard[3] = {
    {"__stdin__", "r", 64},
    {"__stdout__", "w", 64},
    {"__stderr__", "w", 16},
};

void give_back(uint32_t *mutex) {
  if (_mutex_free)
    _mutex_free(mutex);
}

void close_locked(FILE *s) {
  lock(s);
  _fclose_internal(s);
  unlock(s);
  give_back(&s->lock);
}

} // namespace

void initialise_streams() {
  for (int i = 0; i < 3; ++i) {
    FILE *s = &standard_streams[i];
    clear_record(s);
    s->lock = 0;
    s->link = kLinkOpen | (i < 2 ? static_cast<uint32_t>(
                                       reinterpret_cast<uintptr_t>(&standard_streams[i + 1]))
                                 : 0);
  }
  __aeabi_stdin = &standard_streams[0];
  __aeabi_stdout = &standard_streams[1];
  __aeabi_stderr = &standard_streams[2];
  for (FILE &s : standard_streams)
    __mutex_initialize(&s.lock);
  __mutex_initialize(&_stream_list_lock);
  for (int i = 0; i < 3; ++i)
    if (!freopen(kStandard[i].name, kStandard[i].mode, &standard_streams[i]))
      __rt_SIGRTRED(kStandard[i].name);
  for (int i = 0; i < 3; ++i)
    if (setvbuf(&standard_streams[i], nullptr, kLineBuffered, kStandard[i].buffer_size) != 0)
      __rt_SIGRTRED(kStandard[i].name);
}

void terminate_streams() {
  __mutex_acquire(&_stream_list_lock);
  for (FILE &s : standard_streams)
    close_locked(&s);
  FILE *each = next_record(&standard_streams[2]);
  while (each) {
    FILE *next = next_record(each);
    close_locked(each);
    kv::free(each);
    each = next;
  }
  standard_streams[2].link &= kLinkOpen;
  __mutex_release(&_stream_list_lock);
  give_back(&_stream_list_lock);
}

} // namespace kv::stdio
