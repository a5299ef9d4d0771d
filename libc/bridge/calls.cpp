// The numbered entry points: each passes its arguments as w1, w2, ... of its request.
// All weak, so that a program or host may supply its own; kill is global (see kill.cpp).
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/trap.h"
#include "support/export.h"

using kv_sockaddr = void;

KV_SYSCALL(weak, int, __syscall_open, KV_SYS_open, (const char *path, int flags, int mode), path,
           flags, mode)
KV_SYSCALL(weak, void *, __syscall_mmap, KV_SYS_mmap,
           (void *addr, size_t length, int prot, int flags, int fd, long offset), addr, length,
           prot, flags, fd, offset)
KV_SYSCALL(weak, int, __syscall_munmap, KV_SYS_munmap, (void *addr, size_t length), addr, length)
KV_SYSCALL(weak, int, __syscall_puts, KV_SYS_puts, (uint32_t word1, uint32_t word2), word1, word2)
KV_SYSCALL(weak, int, __syscall_socket, KV_SYS_socket, (int domain, int type, int protocol),
           domain, type, protocol)
KV_SYSCALL(weak, int, __syscall_bind, KV_SYS_bind,
           (int fd, const kv_sockaddr *addr, uint32_t addrlen), fd, addr, addrlen)
KV_SYSCALL(weak, int, __syscall_connect, KV_SYS_connect,
           (int fd, const kv_sockaddr *addr, uint32_t addrlen), fd, addr, addrlen)
KV_SYSCALL(weak, int, __syscall_listen, KV_SYS_listen, (int fd, int backlog), fd, backlog)
KV_SYSCALL(weak, int, __syscall_accept, KV_SYS_accept,
           (int fd, kv_sockaddr *addr, uint32_t *addrlen), fd, addr, addrlen)
KV_SYSCALL(weak, int, __syscall_sendto, KV_SYS_sendto,
           (int fd, const void *buf, size_t len, int flags, const kv_sockaddr *dest,
            uint32_t addrlen),
           fd, buf, len, flags, dest, addrlen)
KV_SYSCALL(weak, int, __syscall_recvfrom, KV_SYS_recvfrom,
           (int fd, void *buf, size_t len, int flags, kv_sockaddr *src, uint32_t *addrlen), fd,
           buf, len, flags, src, addrlen)
KV_SYSCALL(weak, int, __syscall_write, KV_SYS_write, (int fd, const void *buf, size_t count), fd,
           buf, count)
KV_SYSCALL(weak, int, __syscall_read, KV_SYS_read, (int fd, void *buf, size_t count), fd, buf,
           count)
KV_SYSCALL(weak, int, __syscall_close, KV_SYS_close, (int fd), fd)
KV_FUNCTION(weak, void, __syscall_exit, (int status)) { kv::bridge::trap(KV_SYS_exit, status); }
KV_SYSCALL(weak, long, __syscall_lseek, KV_SYS_lseek, (int fd, long offset, int whence), fd,
           offset, whence)
KV_SYSCALL(weak, int, __syscall_mkdir, KV_SYS_mkdir, (const char *path, int mode), path, mode)
KV_SYSCALL(weak, int, __syscall_rmdir, KV_SYS_rmdir, (const char *path), path)
KV_SYSCALL(weak, int, __syscall_opendir, KV_SYS_opendir, (const char *path), path)
KV_SYSCALL(weak, int, __syscall_readdir, KV_SYS_readdir, (int handle, void *entry), handle, entry)
KV_SYSCALL(weak, int, __syscall_closedir, KV_SYS_closedir, (int handle), handle)
KV_SYSCALL(weak, int, __syscall_remove, KV_SYS_remove, (const char *path), path)
KV_SYSCALL(weak, int, __syscall_select, KV_SYS_select,
           (int nfds, void *readfds, void *writefds, void *exceptfds, struct kv_timeval *timeout),
           nfds, readfds, writefds, exceptfds, timeout)
KV_SYSCALL(weak, int32_t, __syscall_time, KV_SYS_time, (int32_t * t), t)
KV_SYSCALL(weak, int, __syscall_getsockname, KV_SYS_getsockname,
           (int fd, kv_sockaddr *addr, uint32_t *addrlen), fd, addr, addrlen)
KV_SYSCALL(weak, int, __syscall_set_errno_addr, KV_SYS_set_errno_addr, (int *cell), cell)
KV_SYSCALL(weak, int, __syscall_send, KV_SYS_send, (int fd, const void *buf, size_t len, int flags),
           fd, buf, len, flags)
KV_SYSCALL(weak, int, __syscall_recv, KV_SYS_recv, (int fd, void *buf, size_t len, int flags), fd,
           buf, len, flags)
KV_SYSCALL(weak, int, __syscall_gethostbyname, KV_SYS_gethostbyname,
           (const char *name, size_t namelen, void *buf, size_t buflen), name, namelen, buf,
           buflen)
KV_SYSCALL(weak, int, __syscall_rename, KV_SYS_rename, (const char *from, const char *to), from,
           to)
KV_SYSCALL(weak, int, __syscall_stat, KV_SYS_stat, (const char *path, void *st), path, st)
KV_SYSCALL(weak, int, __syscall_getpid, KV_SYS_getpid, (void))
KV_SYSCALL(weak, int, __syscall_unlink, KV_SYS_unlink, (const char *path), path)
KV_SYSCALL(weak, int, __syscall_access, KV_SYS_access, (const char *path, int mode), path, mode)
KV_SYSCALL(weak, int, __syscall_fstat, KV_SYS_fstat, (int fd, void *st), fd, st)
KV_SYSCALL(weak, int, __syscall_fsync, KV_SYS_fsync, (int fd), fd)
KV_SYSCALL(weak, int, __syscall_ftruncate, KV_SYS_ftruncate, (int fd, long length), fd, length)
KV_SYSCALL(weak, int, __syscall_getcwd, KV_SYS_getcwd, (char *buf, size_t size), buf, size)
KV_SYSCALL(weak, int, __syscall_set_h_errno_addr, KV_SYS_set_h_errno_addr, (int *cell), cell)
KV_SYSCALL(weak, int, __syscall_fcntl, KV_SYS_fcntl, (int fd, int cmd, long arg), fd, cmd, arg)
KV_SYSCALL(weak, int, __syscall_chdir, KV_SYS_chdir, (const char *path), path)
KV_SYSCALL(weak, int, __syscall_fchdir, KV_SYS_fchdir, (int fd), fd)
KV_SYSCALL(weak, int, __syscall_getpeername, KV_SYS_getpeername,
           (int fd, kv_sockaddr *addr, uint32_t *addrlen), fd, addr, addrlen)
KV_SYSCALL(weak, int, __syscall_getsockopt, KV_SYS_getsockopt,
           (int fd, int level, int name, void *value, uint32_t *len), fd, level, name, value, len)
KV_SYSCALL(weak, int, __syscall_setsockopt, KV_SYS_setsockopt,
           (int fd, int level, int name, const void *value, uint32_t len), fd, level, name, value,
           len)
KV_SYSCALL(weak, int, __syscall_gethostbyaddr, KV_SYS_gethostbyaddr,
           (const void *addr, uint32_t len, int type, void *buf, size_t buflen), addr, len, type,
           buf, buflen)
KV_SYSCALL(weak, int, __syscall_sha, KV_SYS_sha,
           (const void *data, size_t len, unsigned char *digest), data, len, digest)
KV_SYSCALL(weak, long, __syscall_sysconf, KV_SYS_sysconf, (int name), name)
KV_SYSCALL(weak, int, __syscall_syslog, KV_SYS_syslog, (int priority, const char *message),
           priority, message)
KV_SYSCALL(weak, int, __syscall_copy_environ, KV_SYS_copy_environ, (void *buf, size_t size), buf,
           size)
KV_SYSCALL(weak, int, __syscall_os_current_time_in_ms, KV_SYS_os_current_time_in_ms,
           (uint32_t * ms), ms)
KV_SYSCALL(weak, int, __syscall_shm_open, KV_SYS_shm_open, (const char *name, int flags, int mode),
           name, flags, mode)
KV_SYSCALL(weak, int, __syscall_shm_unlink, KV_SYS_shm_unlink, (const char *name), name)
KV_SYSCALL(weak, int, __syscall_posix_spawn, KV_SYS_posix_spawn,
           (int *pid, const char *path, const void *file_actions, const void *attr,
            char *const argv[], char *const envp[]),
           pid, path, file_actions, attr, argv, envp)
KV_SYSCALL(weak, int, __syscall_truncate, KV_SYS_truncate, (const char *path, long length), path,
           length)
