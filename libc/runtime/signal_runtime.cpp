// The core's own signal path: how the library reports a fatal condition it detected itself and
// ends the process. Separate from the POSIX signals, which go to the system side.
#include <stdint.h>

#include "runtime/exits.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"
#include "support/export.h"

// The platform (or a program) answers which handler a core signal has: -1 default, -3 ignore,
// anything else a handler's address.
extern "C" __attribute__((weak)) intptr_t __sigvec_lookup(int which, int sig);
extern "C" __attribute__((weak)) void _mutex_free(uint32_t *mutex);
extern "C" uint32_t __fpl_lock;

namespace {

constexpr intptr_t kDefault = -1;
constexpr intptr_t kIgnore = -3;
constexpr uint32_t kNothingToReport = 2;
constexpr uint32_t kHeapCorrupted = 1;
constexpr uint32_t kTrapMask = 0x7C200000;

using Report = int (*)(uint32_t);
using Handler = void (*)(int, uint32_t);

struct Detail {
  uint32_t bit;
  const char *text;
};
constexpr Detail kFpDetails[] = {
    {1u << 26, "Invalid Operation"}, {1u << 27, "Divide By Zero"}, {1u << 28, "Overflow"},
    {1u << 29, "Underflow"},         {1u << 30, "Inexact Result"},
};

} // namespace

// One report routine says nothing and hands the status back; most signals use it.
KV_FUNCTION(global, int, __rt_sigother_inner, (uint32_t status)) { return static_cast<int>(status); }
KV_ALIAS(global, int, __rt_SIGABRT_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGCPPL_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGILL_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGINT_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGPVFN_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGRTRED_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGSEGV_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGSTAK_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGTERM_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGUSR1_inner, (uint32_t), __rt_sigother_inner);
KV_ALIAS(global, int, __rt_SIGUSR2_inner, (uint32_t), __rt_sigother_inner);

// Character by character through the locked fputc, so a report is never held back by a full
// buffer of its own.
KV_FUNCTION(global, void, __default_signal_display, (const char *text, const char *detail)) {
  fputc('\n', stderr);
  for (; *text; ++text)
    fputc(*text, stderr);
  if (detail)
    for (; *detail; ++detail)
      fputc(*detail, stderr);
  fputc('\n', stderr);
}

KV_FUNCTION(global, int, __rt_SIGFPE_inner, (uint32_t type)) {
  if (type == kNothingToReport)
    return 0;
  const char *detail = nullptr;
  for (const Detail &d : kFpDetails)
    if (type & d.bit) {
      detail = d.text;
      break;
    }
  __default_signal_display("SIGFPE: Arithmetic exception: ", detail);
  return 1;
}

KV_FUNCTION(global, int, __rt_SIGRTMEM_inner, (uint32_t type)) {
  __default_signal_display("SIGRTMEM: Out of heap memory",
                           type == kHeapCorrupted ? ": Heap memory corrupted" : nullptr);
  return 1;
}

namespace {
// Indexed by core signal number - 1; 2 is SIGFPE, 9 SIGRTMEM, the last slot takes the rest.
constexpr int kSlots = 14;
constexpr Report kDefaultReports[kSlots] = {
    __rt_sigother_inner, __rt_SIGFPE_inner,   __rt_sigother_inner, __rt_sigother_inner,
    __rt_sigother_inner, __rt_sigother_inner, __rt_sigother_inner, __rt_sigother_inner,
    __rt_SIGRTMEM_inner, __rt_sigother_inner, __rt_sigother_inner, __rt_sigother_inner,
    __rt_sigother_inner, __rt_sigother_inner,
};
} // namespace

// Default handling reports with the argument 1, so every default report ends with status 1.
KV_FUNCTION(global, int, __default_signal_handler, (int sig, uint32_t)) {
  uint32_t slot = static_cast<uint32_t>(sig) - 1;
  if (slot >= kSlots - 1)
    slot = kSlots - 1;
  return kDefaultReports[slot](1);
}

KV_FUNCTION(global, int, __raise, (int sig, uint32_t type)) {
  intptr_t handler = __sigvec_lookup(-1, sig);
  if (handler == kDefault)
    return __default_signal_handler(sig, type);
  if (handler == kIgnore)
    return 0;
  reinterpret_cast<Handler>(handler)(sig, type);
  return 0;
}

KV_FUNCTION(global, void, __sig_exit, (int status)) {
  if (status != 0)
    _sys_exit(status);
}

KV_FUNCTION(global, void, __rt_raise, (int sig, uint32_t type)) {
  int status = __raise(sig, type);
  if (status != 0)
    _sys_exit(status);
}

KV_FUNCTION(global, void, __rt_SIGFPE, (uint32_t type)) { __sig_exit(__rt_SIGFPE_inner(type)); }

// The soft-float library's trap entry: the exception word is the fifth argument word. If the
// report lets the operation go on, its result is +0.
KV_FUNCTION(global, double, _fp_trap, (uint32_t, uint32_t, uint32_t, uint32_t, uint32_t exception)) {
  __rt_SIGFPE(exception & kTrapMask);
  return 0.0;
}

KV_FUNCTION(global, void, _fp_trap_shutdown, (void)) {
  if (_mutex_free)
    _mutex_free(&__fpl_lock);
}
