// Entry points whose service the system side does not provide: they pass the unsupported call
// number, with their words loaded all the same, and the system side fails them.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/trap.h"
#include "support/export.h"

#define KV_UNSUPPORTED(binding, ret, name, params, ...)                                           \
  KV_SYSCALL(binding, ret, name, KV_CALL_UNSUPPORTED, params __VA_OPT__(, ) __VA_ARGS__)

KV_UNSUPPORTED(weak, int, __syscall_times, (void *buf), buf)
KV_UNSUPPORTED(weak, int, __syscall_adjtime, (const void *delta, void *olddelta), delta, olddelta)
KV_UNSUPPORTED(weak, int, __syscall_clock_settime, (int clock_id, const void *tp), clock_id, tp)
KV_UNSUPPORTED(weak, int, __syscall_sendmsg, (int fd, const void *msg, int flags), fd, msg, flags)
KV_UNSUPPORTED(weak, int, __syscall_recvmsg, (int fd, void *msg, int flags), fd, msg, flags)
KV_UNSUPPORTED(weak, int, __syscall_getnameinfo,
               (const void *sa, uint32_t salen, char *host, uint32_t hostlen, char *serv,
                uint32_t servlen, int flags),
               sa, salen, host, hostlen, serv, servlen, flags)
KV_UNSUPPORTED(weak, int, __syscall_getaddrinfo,
               (const char *node, size_t nodelen, const char *service, size_t servicelen,
                const void *hints, void *res, size_t blocksize),
               node, nodelen, service, servicelen, hints, res, blocksize)
KV_UNSUPPORTED(weak, int, __syscall_ioctl, (int fd, unsigned long request, void *arg), fd, request,
               arg)
KV_UNSUPPORTED(global, int, __syscall_sigaction, (int sig, const void *act, void *oldact), sig, act,
               oldact)
KV_UNSUPPORTED(weak, unsigned, __syscall_alarm, (unsigned seconds), seconds)
KV_UNSUPPORTED(weak, int, __syscall_pselect,
               (int nfds, void *readfds, void *writefds, void *exceptfds, const void *timeout,
                const void *sigmask),
               nfds, readfds, writefds, exceptfds, timeout, sigmask)
KV_UNSUPPORTED(weak, int, __syscall_sigprocmask, (int how, const void *set, void *oldset), how, set,
               oldset)
KV_UNSUPPORTED(weak, int, __syscall_pthread_sigmask, (int how, const void *set, void *oldset), how,
               set, oldset)
KV_UNSUPPORTED(weak, int, __syscall_pipe, (int fds[2]), fds)
KV_UNSUPPORTED(weak, int, __syscall_shutdown, (int fd, int how), fd, how)
KV_UNSUPPORTED(weak, int, __syscall_fchmod, (int fd, int mode), fd, mode)
KV_UNSUPPORTED(weak, int, __syscall_getuid, (void))
KV_UNSUPPORTED(weak, int, __syscall_statvfs, (const char *path, void *buf), path, buf)
KV_UNSUPPORTED(weak, int, __syscall_fstatvfs, (int fd, void *buf), fd, buf)
KV_UNSUPPORTED(weak, int, __syscall_chmod, (const char *path, int mode), path, mode)
KV_UNSUPPORTED(weak, long, __syscall_clock, (void))
