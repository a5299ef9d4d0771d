/* The system-call entry points: each loads its call number and seven argument words and traps
 * to the system side. All are weak (a program or host may supply its own) except
 * __syscall_kill and __syscall_sigaction. */
#ifndef KV_SYSCALL_H
#define KV_SYSCALL_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct kv_timeval;

int __syscall_open(const char *path, int flags, int mode);
void *__syscall_mmap(void *addr, size_t length, int prot, int flags, int fd, long offset);
int __syscall_munmap(void *addr, size_t length);
int __syscall_puts(uint32_t word1, uint32_t word2);
int __syscall_socket(int domain, int type, int protocol);
int __syscall_bind(int fd, const void *addr, uint32_t addrlen);
int __syscall_connect(int fd, const void *addr, uint32_t addrlen);
int __syscall_listen(int fd, int backlog);
int __syscall_accept(int fd, void *addr, uint32_t *addrlen);
int __syscall_sendto(int fd, const void *buf, size_t len, int flags, const void *dest,
                     uint32_t addrlen);
int __syscall_recvfrom(int fd, void *buf, size_t len, int flags, void *src, uint32_t *addrlen);
int __syscall_write(int fd, const void *buf, size_t count);
int __syscall_read(int fd, void *buf, size_t count);
int __syscall_close(int fd);
void __syscall_exit(int status);
long __syscall_lseek(int fd, long offset, int whence);
int __syscall_mkdir(const char *path, int mode);
int __syscall_rmdir(const char *path);
int __syscall_opendir(const char *path);
int __syscall_readdir(int handle, void *entry);
int __syscall_closedir(int handle);
int __syscall_remove(const char *path);
int __syscall_select(int nfds, void *readfds, void *writefds, void *exceptfds,
                     struct kv_timeval *timeout);
int __syscall_sleep(unsigned seconds);
int32_t __syscall_time(int32_t *t);
int __syscall_getsockname(int fd, void *addr, uint32_t *addrlen);
int __syscall_set_errno_addr(int *cell);
int __syscall_send(int fd, const void *buf, size_t len, int flags);
int __syscall_recv(int fd, void *buf, size_t len, int flags);
int __syscall_gethostbyname(const char *name, size_t namelen, void *buf, size_t buflen);
int __syscall_rename(const char *from, const char *to);
int __syscall_stat(const char *path, void *st);
int __syscall_getpid(void);
int __syscall_unlink(const char *path);
int __syscall_access(const char *path, int mode);
int __syscall_fstat(int fd, void *st);
int __syscall_fsync(int fd);
int __syscall_ftruncate(int fd, long length);
int __syscall_getcwd(char *buf, size_t size);
int __syscall_set_h_errno_addr(int *cell);
int __syscall_fcntl(int fd, int cmd, long arg);
int __syscall_chdir(const char *path);
int __syscall_fchdir(int fd);
int __syscall_getpeername(int fd, void *addr, uint32_t *addrlen);
int __syscall_getsockopt(int fd, int level, int name, void *value, uint32_t *len);
int __syscall_setsockopt(int fd, int level, int name, const void *value, uint32_t len);
int __syscall_gethostbyaddr(const void *addr, uint32_t len, int type, void *buf, size_t buflen);
int __syscall_sha(const void *data, size_t len, unsigned char *digest);
long __syscall_sysconf(int name);
int __syscall_kill(int pid, int sig);
int __syscall_syslog(int priority, const char *message);
int __syscall_copy_environ(void *buf, size_t size);
int __syscall_os_current_time_in_ms(uint32_t *ms);
int __syscall_shm_open(const char *name, int flags, int mode);
int __syscall_shm_unlink(const char *name);
int __syscall_posix_spawn(int *pid, const char *path, const void *file_actions,
                          const void *attr, char *const argv[], char *const envp[]);
int __syscall_truncate(const char *path, long length);

/* Entry points whose service the system side does not provide: they pass call number -1. */
int __syscall_times(void *buf);
int __syscall_adjtime(const void *delta, void *olddelta);
int __syscall_clock_settime(int clock_id, const void *tp);
int __syscall_sendmsg(int fd, const void *msg, int flags);
int __syscall_recvmsg(int fd, void *msg, int flags);
int __syscall_getnameinfo(const void *sa, uint32_t salen, char *host, uint32_t hostlen,
                          char *serv, uint32_t servlen, int flags);
int __syscall_getaddrinfo(const char *node, size_t nodelen, const char *service,
                          size_t servicelen, const void *hints, void *res, size_t blocksize);
int __syscall_ioctl(int fd, unsigned long request, void *arg);
int __syscall_sigaction(int sig, const void *act, void *oldact);
unsigned __syscall_alarm(unsigned seconds);
int __syscall_pselect(int nfds, void *readfds, void *writefds, void *exceptfds,
                      const void *timeout, const void *sigmask);
int __syscall_sigprocmask(int how, const void *set, void *oldset);
int __syscall_pthread_sigmask(int how, const void *set, void *oldset);
int __syscall_pipe(int fds[2]);
int __syscall_shutdown(int fd, int how);
int __syscall_fchmod(int fd, int mode);
int __syscall_getuid(void);
int __syscall_statvfs(const char *path, void *buf);
int __syscall_fstatvfs(int fd, void *buf);
int __syscall_chmod(const char *path, int mode);
long __syscall_clock(void);

/* Library functions that share the prefix: the errno and h_errno handshakes. */
int *__syscall_get_errno_addr(void);
int *__syscall_get_h_errno_addr(void);

#ifdef __cplusplus
}
#endif

#endif
