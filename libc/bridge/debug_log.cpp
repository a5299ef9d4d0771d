#include "bridge/debug_log.h"

#include <kv/abi.h>
#include <kv/syscall.h>
#include <stdarg.h>

#include "printf/printf.h"

namespace kv {
namespace {

constexpr size_t kLogBufferSize = 256;
char log_buffer[kLogBufferSize];

} // namespace

void debug_log(const char *format, ...) {
  va_list args;
  va_start(args, format);
  vsnprintf(log_buffer, kLogBufferSize, format, args);
  va_end(args);
  __syscall_syslog(KV_LOG_DEBUG_PRIORITY, log_buffer);
}

} // namespace kv
