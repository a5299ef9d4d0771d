#ifndef _SIGNAL_H
#define _SIGNAL_H

#include <kv/abi.h>
#include <stdint.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Signal n is bit n - 1 of the set. */
typedef uint32_t sigset_t;
typedef void (*sighandler_t)(int);

/* The first three words are what signal() fills. */
struct sigaction {
  sighandler_t sa_handler;
  sigset_t sa_mask;
  int sa_flags;
};

#define SIG_DFL ((sighandler_t)0)
#define SIG_IGN ((sighandler_t)1)
#define SIG_ERR ((sighandler_t)-1)

/* Mask operations; the system side gives them their meaning. */
#define SIG_BLOCK 1
#define SIG_UNBLOCK 2
#define SIG_SETMASK 3

#define SIGHUP KV_SIGHUP
#define SIGINT KV_SIGINT
#define SIGQUIT KV_SIGQUIT
#define SIGILL KV_SIGILL
#define SIGTRAP KV_SIGTRAP
#define SIGABRT KV_SIGABRT
#define SIGBUS KV_SIGBUS
#define SIGFPE KV_SIGFPE
#define SIGKILL KV_SIGKILL
#define SIGUSR1 KV_SIGUSR1
#define SIGSEGV KV_SIGSEGV
#define SIGUSR2 KV_SIGUSR2
#define SIGPIPE KV_SIGPIPE
#define SIGALRM KV_SIGALRM
#define SIGTERM KV_SIGTERM
#define SIGCHLD KV_SIGCHLD
#define SIGCONT KV_SIGCONT
#define SIGSTOP KV_SIGSTOP
#define NSIG KV_NSIG

int sigemptyset(sigset_t *set);
int sigfillset(sigset_t *set);
int sigaddset(sigset_t *set, int sig);
int sigdelset(sigset_t *set, int sig);
int sigismember(const sigset_t *set, int sig);
int sigaction(int sig, const struct sigaction *act, struct sigaction *oact);
sighandler_t signal(int sig, sighandler_t handler);
int kill(pid_t pid, int sig);
int raise(int sig);
int sigprocmask(int how, const sigset_t *set, sigset_t *oset);
int pthread_sigmask(int how, const sigset_t *set, sigset_t *oset);

#ifdef __cplusplus
}
#endif

#endif
