/* The contract between the library and the system side: call numbers, errno numbering, flag
 * encodings and record layouts. kvrun includes this header too, so both sides agree by
 * construction; static assertions pin every size and offset. Plain C, no dependencies. */
#ifndef KV_ABI_H
#define KV_ABI_H

#include <stdint.h>

/* The trap: ARM-state `udf #100`. */
#define KV_TRAP_WORD 0xE7F006F4u
#define KV_CALL_UNSUPPORTED (-1)

/* Call numbers: X(number, name). Number 32 serves both select and sleep. */
#define KV_CALL_LIST(X)                                                                          \
  X(0, open) X(1, mmap) X(2, munmap) X(6, puts) X(7, socket) X(8, bind) X(9, connect)            \
  X(10, listen) X(11, accept) X(12, sendto) X(13, recvfrom) X(14, write) X(15, read)             \
  X(16, close) X(24, exit) X(25, lseek) X(26, mkdir) X(27, rmdir) X(28, opendir)                 \
  X(29, readdir) X(30, closedir) X(31, remove) X(32, select) X(33, time) X(34, getsockname)       \
  X(35, set_errno_addr) X(36, send) X(37, recv) X(38, gethostbyname) X(39, rename) X(40, stat)   \
  X(41, getpid) X(43, unlink) X(44, access) X(45, fstat) X(46, fsync) X(47, ftruncate)           \
  X(48, getcwd) X(49, set_h_errno_addr) X(69, fcntl) X(70, chdir) X(71, fchdir)                  \
  X(72, getpeername) X(73, getsockopt) X(74, setsockopt) X(75, gethostbyaddr) X(76, sha)         \
  X(77, sysconf) X(78, kill) X(79, syslog) X(80, copy_environ) X(81, os_current_time_in_ms)      \
  X(82, shm_open) X(83, shm_unlink) X(84, posix_spawn) X(104, truncate)

#define KV_CALL_ENUM_ENTRY(number, name) KV_SYS_##name = number,
enum { KV_CALL_LIST(KV_CALL_ENUM_ENTRY) KV_SYS_sleep = 32, KV_SYS_COUNT = 105 };
#undef KV_CALL_ENUM_ENTRY

/* errno numbering: X(name, value). Every number not listed is unassigned. */
#define KV_ERRNO_LIST(X)                                                                         \
  X(EDOM, 1) X(ERANGE, 2) X(EILSEQ, 4) X(EAFNOSUPPORT, 5) X(EAGAIN, 6) X(EALREADY, 7)            \
  X(EBADF, 8) X(EBADMSG, 9) X(EBUSY, 10) X(ECANCELED, 11) X(ECHILD, 12) X(ECONNABORTED, 13)      \
  X(ECONNREFUSED, 14) X(ECONNRESET, 15) X(EDEADLK, 33) X(EDESTADDRREQ, 34) X(E2BIG, 35)          \
  X(EDQUOT, 36) X(EEXIST, 37) X(EFAULT, 38) X(EFBIG, 39) X(EHOSTUNREACH, 40) X(EIDRM, 41)        \
  X(EADDRNOTAVAIL, 42) X(EINPROGRESS, 43) X(EINTR, 44) X(EINVAL, 45) X(EIO, 46) X(EISCONN, 47)   \
  X(EISDIR, 49) X(ELOOP, 50) X(EMFILE, 51) X(EMLINK, 52) X(EMSGSIZE, 53) X(EMULTIHOP, 54)        \
  X(ENAMETOOLONG, 55) X(ENETDOWN, 56) X(ENETRESET, 57) X(ENETUNREACH, 58) X(ENFILE, 59)          \
  X(ENOBUFS, 60) X(ENODATA, 61) X(ENODEV, 62) X(ENOENT, 63) X(ENOEXEC, 65) X(ENOLCK, 66)         \
  X(ENOLINK, 67) X(ENOMEM, 68) X(ENOMSG, 69) X(ENOPROTOOPT, 70) X(ENOSPC, 71) X(ENOSR, 72)       \
  X(ENOSTR, 73) X(ENOSYS, 74) X(ENOTCONN, 75) X(ENOTDIR, 76) X(ENOTEMPTY, 77) X(ENOTSOCK, 78)    \
  X(ENOTSUP, 79) X(ENOTTY, 81) X(ENXIO, 82) X(EOPNOTSUPP, 83) X(EOVERFLOW, 84) X(EPERM, 85)      \
  X(EPIPE, 86) X(EPROTO, 87) X(EPROTONOSUPPORT, 88) X(EPROTOTYPE, 89) X(EACCES, 90)              \
  X(EROFS, 91) X(ESPIPE, 92) X(ESRCH, 93) X(ESTALE, 94) X(ETIME, 95) X(ETIMEDOUT, 97)            \
  X(ETXTBSY, 98) X(EWOULDBLOCK, 99) X(EXDEV, 100) X(EADDRINUSE, 101) X(ERELOC, 257)              \
  X(EFAIL, 258)

#define KV_ERRNO_ENUM_ENTRY(name, value) KV_##name = value,
enum { KV_ERRNO_LIST(KV_ERRNO_ENUM_ENTRY) KV_ERRNO_MAX = 258 };
#undef KV_ERRNO_ENUM_ENTRY

/* Open flags in the system side's encoding (read-only is 1, not 0). */
#define KV_O_RDONLY 0x1
#define KV_O_RDWR 0x2
#define KV_O_WRONLY 0x4
#define KV_O_APPEND 0x8
#define KV_O_CREAT 0x100
#define KV_O_EXCL 0x200
#define KV_O_TRUNC 0x800

/* mmap: protections and flags (the allocator asks for protection 3 and flags 10). */
#define KV_PROT_NONE 0x0
#define KV_PROT_READ 0x1
#define KV_PROT_WRITE 0x2
#define KV_PROT_EXEC 0x4
#define KV_MAP_SHARED 0x1
#define KV_MAP_PRIVATE 0x2
#define KV_MAP_FIXED 0x4
#define KV_MAP_ANONYMOUS 0x8
#define KV_MAP_FAILED 0xFFFFFFFFu

/* lseek */
#define KV_SEEK_SET 0
#define KV_SEEK_CUR 1
#define KV_SEEK_END 2

/* sysconf names whose answer is the page size */
#define KV_SC_PAGESIZE_ALLOC 53
#define KV_SC_PAGESIZE 54

/* Priority of the library's debug log lines. */
#define KV_LOG_DEBUG_PRIORITY 31

/* Time-out record of select and of the sleep call. */
struct kv_timeval {
  int32_t tv_sec;
  int32_t tv_usec;
};

#if defined(__cplusplus)
#define KV_ABI_ASSERT(cond, text) static_assert(cond, text)
#else
#define KV_ABI_ASSERT(cond, text) _Static_assert(cond, text)
#endif
KV_ABI_ASSERT(sizeof(struct kv_timeval) == 8, "timeval is two words");

#endif
