// The POSIX signal calls against a scripted system side: the program's own entry points replace
// the library's, record what reached them and answer as each case needs.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

extern "C" {
unsigned alarm(unsigned seconds);
int pause(void);
void __default_signal_display(const char *text, const char *detail);
int __read_errno(void);
void __set_errno(int value);
}

namespace {
constexpr int kPid = 4321;
int requests, last_a, last_b;
const void *last_set;
struct sigaction seen_action;
int answer;           // what the scripted call returns
int answer_errno;     // and the errno it leaves
sighandler_t old_handler;

void reset(int result = 0, int err = 0) {
  requests = last_a = last_b = 0;
  last_set = nullptr;
  answer = result;
  answer_errno = err;
}
int reply() {
  ++requests;
  if (answer_errno)
    __set_errno(answer_errno);
  return answer;
}
void old_handler_fn(int) {}
void new_handler_fn(int) {}
} // namespace

extern "C" int __syscall_getpid(void) { return kPid; }
extern "C" int __syscall_kill(int pid, int sig) {
  last_a = pid, last_b = sig;
  return reply();
}
extern "C" int __syscall_sigaction(int sig, const void *act, void *oact) {
  last_a = sig;
  seen_action = *static_cast<const struct sigaction *>(act);
  if (answer == 0)
    static_cast<struct sigaction *>(oact)->sa_handler = old_handler;
  return reply();
}
extern "C" int __syscall_sigprocmask(int how, const void *set, void *) {
  last_a = how, last_set = set;
  return reply();
}
extern "C" int __syscall_pthread_sigmask(int how, const void *set, void *) {
  last_a = how, last_set = set;
  return reply();
}
extern "C" unsigned __syscall_alarm(unsigned seconds) {
  last_a = static_cast<int>(seconds);
  return static_cast<unsigned>(reply());
}

TEST(SignalSets, BitsAndRefusals) {
  sigset_t s = 0x5a5a;
  EXPECT_EQ(sigemptyset(&s), 0);
  EXPECT_EQ(s, 0u);
  EXPECT_EQ(sigaddset(&s, 5), 0);
  EXPECT_EQ(s, 0x10u);
  EXPECT_EQ(sigismember(&s, 5), 1);
  EXPECT_EQ(sigismember(&s, 4), 0);
  EXPECT_EQ(sigaddset(&s, 1), 0);
  EXPECT_EQ(sigaddset(&s, 31), 0);
  EXPECT_EQ(s, 0x40000011u);
  EXPECT_EQ(sigdelset(&s, 5), 0);
  EXPECT_EQ(s, 0x40000001u);
  EXPECT_EQ(sigfillset(&s), 0);
  EXPECT_EQ(s, 0xffffffffu);
  EXPECT_EQ(sigdelset(&s, 31), 0);
  EXPECT_EQ(s, 0xbfffffffu); // bit 31 belongs to no signal and stays

  struct Bad {
    int sig;
  } bad[] = {{0}, {32}, {-1}, {1000}};
  for (const Bad &b : bad) {
    sigset_t t = 0x1234;
    __set_errno(0);
    EXPECT_EQ(sigaddset(&t, b.sig), -1);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    __set_errno(0);
    EXPECT_EQ(sigdelset(&t, b.sig), -1);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    __set_errno(0);
    EXPECT_EQ(sigismember(&t, b.sig), -1);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    EXPECT_EQ(t, 0x1234u);
  }
  __set_errno(0);
  EXPECT_EQ(sigemptyset(nullptr), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  __set_errno(0);
  EXPECT_EQ(sigfillset(nullptr), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  __set_errno(0);
  EXPECT_EQ(sigaddset(nullptr, 3), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  EXPECT_EQ(sigismember(nullptr, 3), -1);
}

TEST(Signal, RefusedNumbersNeverReachTheSystemSide) {
  const int refused[] = {0, 32, -5};
  for (int sig : refused) {
    reset();
    __set_errno(0);
    EXPECT_EQ(signal(sig, new_handler_fn), SIG_ERR);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    EXPECT_EQ(requests, 0);
  }
}

TEST(Signal, BuildsTheActionAndPassesTheAnswerOn) {
  // The system side's refusal (it has no sigaction) comes back as SIG_ERR with its errno.
  reset(-1, KV_ENOSYS);
  seen_action = {old_handler_fn, 0xffff, 7};
  EXPECT_EQ(signal(2, new_handler_fn), SIG_ERR);
  EXPECT_EQ(__read_errno(), KV_ENOSYS);
  EXPECT_EQ(requests, 1);
  EXPECT_EQ(last_a, 2);
  EXPECT_EQ(seen_action.sa_handler, &new_handler_fn);
  EXPECT_EQ(seen_action.sa_mask, 0u);
  EXPECT_EQ(seen_action.sa_flags, 0);
  // A system side that accepts: the old handler is the result.
  reset(0);
  old_handler = old_handler_fn;
  EXPECT_EQ(signal(31, new_handler_fn), &old_handler_fn);
  EXPECT_EQ(last_a, 31);
}

TEST(Signal, SigactionPassesThrough) {
  reset(-1, KV_ENOSYS);
  struct sigaction act = {new_handler_fn, 0x4, 0}, old = {};
  EXPECT_EQ(sigaction(40, &act, &old), -1); // numbers are the system side's to judge
  EXPECT_EQ(last_a, 40);
  EXPECT_EQ(__read_errno(), KV_ENOSYS);
}

TEST(Kill, RefusesAbove31AndPassesTheRest) {
  reset(0);
  __set_errno(0);
  EXPECT_EQ(kill(77, 32), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  EXPECT_EQ(requests, 0);
  struct Case {
    int sig;
    int result;
    int err;
  } cases[] = {{0, 0, 0}, {-3, -1, KV_EINVAL}, {31, 0, 0}, {9, -1, KV_EPERM}};
  for (const Case &c : cases) {
    reset(c.result, c.err);
    __set_errno(0);
    EXPECT_EQ(kill(77, c.sig), c.result);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(last_a, 77);
    EXPECT_EQ(last_b, c.sig);
    EXPECT_EQ(__read_errno(), c.err);
  }
}

TEST(Raise, IsKillOfTheOwnProcess) {
  reset(0);
  EXPECT_EQ(raise(15), 0);
  EXPECT_EQ(last_a, kPid);
  EXPECT_EQ(last_b, 15);
  reset(0);
  EXPECT_EQ(raise(32), -1);
  EXPECT_EQ(requests, 0);
}

TEST(Masks, HowCodesAndTheThreadsConvention) {
  sigset_t set = 0x10, old = 0;
  const int bad_how[] = {0, 4, -1};
  for (int how : bad_how) {
    reset(0);
    __set_errno(0);
    EXPECT_EQ(sigprocmask(how, &set, &old), -1);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    __set_errno(0);
    EXPECT_EQ(pthread_sigmask(how, &set, &old), KV_EINVAL);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
    EXPECT_EQ(requests, 0);
  }
  EXPECT_EQ(pthread_sigmask(7, &set, &old), 45);
  const int good_how[] = {SIG_BLOCK, SIG_UNBLOCK, SIG_SETMASK};
  for (int how : good_how) {
    reset(-1, KV_ENOSYS);
    EXPECT_EQ(sigprocmask(how, &set, &old), -1);
    EXPECT_EQ(last_a, how);
    EXPECT_EQ(last_set, &set);
    reset(-1, KV_ENOSYS);
    EXPECT_EQ(pthread_sigmask(how, &set, &old), KV_ENOSYS);
    reset(0);
    EXPECT_EQ(pthread_sigmask(how, &set, &old), 0);
    EXPECT_EQ(requests, 1);
  }
  // Any result but -1 counts as success.
  reset(3);
  EXPECT_EQ(pthread_sigmask(SIG_BLOCK, &set, &old), 0);
}

TEST(AlarmAndPause, AlarmPassesThroughPauseNeverWaits) {
  reset(17);
  EXPECT_EQ(alarm(30), 17u);
  EXPECT_EQ(last_a, 30);
  __set_errno(KV_EIO);
  EXPECT_EQ(pause(), -1);
  EXPECT_EQ(__read_errno(), KV_EIO);
}

// The report display takes the error stream's lock once per character.
namespace {
int stderr_locks;
}
extern "C" int __mutex_acquire(uint32_t *mutex) {
  if (stderr && mutex == &stderr->lock)
    ++stderr_locks;
  return 0;
}

TEST(Display, OneLockPerCharacter) {
  stderr_locks = 0;
  __default_signal_display("ab", "cd");
  EXPECT_EQ(stderr_locks, 6); // newline, a, b, c, d, newline
  stderr_locks = 0;
  __default_signal_display("xyz", nullptr);
  EXPECT_EQ(stderr_locks, 5);
}

// Lock words handed back at the end go to the platform's _mutex_free.
namespace {
uint32_t *freed[4];
int freed_count;
}
extern "C" void _mutex_free(uint32_t *mutex) {
  if (freed_count < 4)
    freed[freed_count] = mutex;
  ++freed_count;
}
extern "C" {
extern uint32_t __fpl_lock;
void _fp_trap_shutdown(void);
void _call_atexit_fns(void);
}

TEST(LockWords, FpLockAndAtexitLockAreGivenBack) {
  freed_count = 0;
  _fp_trap_shutdown();
  ASSERT_EQ(freed_count, 1);
  EXPECT_EQ(freed[0], &__fpl_lock);
  // The atexit table is empty (atexit itself records destructors): its lock is still handed back.
  freed_count = 0;
  _call_atexit_fns();
  ASSERT_EQ(freed_count, 1);
  EXPECT_NE(freed[0], &__fpl_lock);
}
