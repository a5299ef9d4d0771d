// The POSIX signal calls. Sets are handled here; everything else is the system side's, which
// has kill but no handlers or masks, so signal() and sigaction() fail there.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <signal.h>

#include "bridge/errno_cells.h"
#include "posix/signal_calls.h"
#include "support/export.h"

namespace {

constexpr int kLastSignal = 31;

bool valid_signal(int sig) { return sig >= 1 && sig <= kLastSignal; }
bool valid_how(int how) { return how >= SIG_BLOCK && how <= SIG_SETMASK; }
sigset_t bit(int sig) { return sigset_t{1} << (sig - 1); }

int invalid() {
  __set_errno(KV_EINVAL);
  return -1;
}

} // namespace

KV_FUNCTION(global, int, sigemptyset, (sigset_t * set)) {
  if (!set)
    return invalid();
  *set = 0;
  return 0;
}

KV_FUNCTION(global, int, sigfillset, (sigset_t * set)) {
  if (!set)
    return invalid();
  *set = ~sigset_t{0};
  return 0;
}

KV_FUNCTION(global, int, sigaddset, (sigset_t * set, int sig)) {
  if (!set || !valid_signal(sig))
    return invalid();
  *set |= bit(sig);
  return 0;
}

KV_FUNCTION(global, int, sigdelset, (sigset_t * set, int sig)) {
  if (!set || !valid_signal(sig))
    return invalid();
  *set &= ~bit(sig);
  return 0;
}

KV_FUNCTION(global, int, sigismember, (const sigset_t *set, int sig)) {
  if (!set || !valid_signal(sig))
    return invalid();
  return (*set & bit(sig)) != 0;
}

KV_FUNCTION(global, int, sigaction, (int sig, const struct sigaction *act, struct sigaction *oact)) {
  return __syscall_sigaction(sig, act, oact);
}

KV_FUNCTION(global, sighandler_t, signal, (int sig, sighandler_t handler)) {
  if (!valid_signal(sig)) {
    __set_errno(KV_EINVAL);
    return SIG_ERR;
  }
  struct sigaction action = {handler, 0, 0};
  sigemptyset(&action.sa_mask);
  struct sigaction old = {};
  if (sigaction(sig, &action, &old) != 0)
    return SIG_ERR;
  return old.sa_handler;
}

// Signal 0 and negative numbers are the system side's to judge.
KV_FUNCTION(global, int, kill, (pid_t pid, int sig)) {
  if (sig > kLastSignal)
    return invalid();
  return __syscall_kill(pid, sig);
}

KV_FUNCTION(global, int, raise, (int sig)) { return kill(getpid(), sig); }

KV_FUNCTION(global, int, sigprocmask, (int how, const sigset_t *set, sigset_t *oset)) {
  if (!valid_how(how))
    return invalid();
  return __syscall_sigprocmask(how, set, oset);
}

// The threads convention: the error number is the result, and errno holds it too.
KV_FUNCTION(global, int, pthread_sigmask, (int how, const sigset_t *set, sigset_t *oset)) {
  if (!valid_how(how)) {
    __set_errno(KV_EINVAL);
    return KV_EINVAL;
  }
  if (__syscall_pthread_sigmask(how, set, oset) == -1)
    return __read_errno();
  return 0;
}

KV_FUNCTION(global, unsigned, alarm, (unsigned seconds)) { return __syscall_alarm(seconds); }

// Nothing can arrive to end the wait, so there is none.
KV_FUNCTION(global, int, pause, (void)) { return -1; }
