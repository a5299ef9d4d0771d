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

/* ---- Networking, host lookup, processes ---------------------------------------------------
 * Socket addresses carry no length byte: a 16-bit family first, then the port in network
 * order. Families are this system's own (IPv6 is 3); kvrun translates them both ways. */
#define KV_AF_UNSPEC 0
#define KV_AF_INET 2
#define KV_AF_INET6 3

#define KV_SOCK_STREAM 1
#define KV_SOCK_DGRAM 2
#define KV_SOCK_RAW 3

#define KV_IPPROTO_IP 0
#define KV_IPPROTO_TCP 6
#define KV_IPPROTO_UDP 17
#define KV_IPPROTO_IPV6 41

/* Option levels and names that map onto the host's. */
#define KV_SOL_SOCKET 0xFFFF
#define KV_SO_REUSEADDR 0x0004
#define KV_SO_KEEPALIVE 0x0008
#define KV_SO_BROADCAST 0x0020
#define KV_SO_LINGER 0x0080
#define KV_SO_SNDBUF 0x1001
#define KV_SO_RCVBUF 0x1002
#define KV_SO_SNDTIMEO 0x1005
#define KV_SO_RCVTIMEO 0x1006
#define KV_SO_ERROR 0x1007
#define KV_SO_TYPE 0x1008
#define KV_TCP_NODELAY 0x01
#define KV_IPV6_V6ONLY 27

/* send/recv flags */
#define KV_MSG_OOB 0x1
#define KV_MSG_PEEK 0x2
#define KV_MSG_DONTROUTE 0x4
#define KV_MSG_WAITALL 0x40
#define KV_MSG_DONTWAIT 0x80

struct kv_sockaddr_generic {
  uint16_t sa_family;
  char sa_data[14];
};

struct kv_in_addr {
  uint32_t s_addr; /* network order */
};

struct kv_sockaddr_in {
  uint16_t sin_family;
  uint16_t sin_port; /* network order */
  struct kv_in_addr sin_addr;
  uint8_t sin_zero[8];
};

struct kv_in6_addr {
  uint8_t bytes[16];
};

struct kv_sockaddr_in6 {
  uint16_t sin6_family;
  uint16_t sin6_port; /* network order */
  uint32_t sin6_flowinfo;
  struct kv_in6_addr sin6_addr;
  uint32_t sin6_scope_id;
};

/* Large enough for every address kvrun writes. */
struct kv_sockaddr_storage {
  uint16_t ss_family;
  uint8_t ss_pad[26];
};

/* fd_set: descriptor n is bit n % 32 of word n / 32; select reads ceil(nfds / 32) words. */
#define KV_FD_SETSIZE 64
struct kv_fd_set {
  uint32_t fds_bits[KV_FD_SETSIZE / 32];
};

/* The host entry written at the start of the lookup buffer; the names, alias and address lists
 * and the addresses follow it inside the same buffer. Pointers are guest addresses. */
struct kv_hostent {
  uint32_t h_name;      /* char * */
  uint32_t h_aliases;   /* char **, null-terminated */
  int32_t h_addrtype;   /* KV_AF_INET or KV_AF_INET6 */
  int32_t h_length;     /* 4 or 16 */
  uint32_t h_addr_list; /* char **, null-terminated */
};

/* h_errno values */
#define KV_HOST_NOT_FOUND 1
#define KV_TRY_AGAIN 2
#define KV_NO_RECOVERY 3
#define KV_NO_DATA 4

/* One address-information record; later records, addresses and names follow in its block. */
struct kv_addrinfo {
  int32_t ai_flags;
  int32_t ai_family;
  int32_t ai_socktype;
  int32_t ai_protocol;
  uint32_t ai_addrlen;
  uint32_t ai_addr;      /* struct kv_sockaddr_generic * */
  uint32_t ai_canonname; /* char * */
  uint32_t ai_next;      /* struct kv_addrinfo * */
};

/* posix_spawn: the file-actions record, its 20-byte actions and the attributes' flags. */
#define KV_SPAWN_CLOSE 0
#define KV_SPAWN_DUP2 1
#define KV_SPAWN_OPEN 2
struct kv_spawn_action {
  int32_t kind;
  int32_t fd;
  uint32_t arg; /* dup2: new descriptor; open: path pointer */
  int32_t oflag;
  int32_t mode;
};
struct kv_spawn_file_actions {
  int32_t count;
  uint32_t actions; /* struct kv_spawn_action * */
};
struct kv_spawnattr {
  int16_t flags; /* bits 0 to 2 */
};

/* Signal numbers (1 to 31). */
#define KV_SIGHUP 1
#define KV_SIGINT 2
#define KV_SIGQUIT 3
#define KV_SIGILL 4
#define KV_SIGTRAP 5
#define KV_SIGABRT 6
#define KV_SIGBUS 7
#define KV_SIGFPE 8
#define KV_SIGKILL 9
#define KV_SIGUSR1 10
#define KV_SIGSEGV 11
#define KV_SIGUSR2 12
#define KV_SIGPIPE 13
#define KV_SIGALRM 14
#define KV_SIGTERM 15
#define KV_SIGCHLD 17
#define KV_SIGCONT 18
#define KV_SIGSTOP 19
#define KV_NSIG 32

/* Length of a SHA-1 digest */
#define KV_SHA1_DIGEST_LENGTH 20

KV_ABI_ASSERT(sizeof(struct kv_sockaddr_generic) == 16, "sockaddr");
KV_ABI_ASSERT(sizeof(struct kv_sockaddr_in) == 16, "sockaddr_in");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in, sin_port) == 2, "sin_port");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in, sin_addr) == 4, "sin_addr");
KV_ABI_ASSERT(sizeof(struct kv_sockaddr_in6) == 28, "sockaddr_in6");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in6, sin6_port) == 2, "sin6_port");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in6, sin6_flowinfo) == 4, "flowinfo");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in6, sin6_addr) == 8, "sin6_addr");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_sockaddr_in6, sin6_scope_id) == 24, "scope_id");
KV_ABI_ASSERT(sizeof(struct kv_sockaddr_storage) == 28, "sockaddr_storage");
KV_ABI_ASSERT(sizeof(struct kv_fd_set) == 8, "fd_set");
KV_ABI_ASSERT(sizeof(struct kv_hostent) == 20, "hostent");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_hostent, h_aliases) == 4, "h_aliases");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_hostent, h_addrtype) == 8, "h_addrtype");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_hostent, h_length) == 12, "h_length");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_hostent, h_addr_list) == 16, "h_addr_list");
KV_ABI_ASSERT(sizeof(struct kv_addrinfo) == 32, "addrinfo");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_addrinfo, ai_addrlen) == 16, "ai_addrlen");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_addrinfo, ai_addr) == 20, "ai_addr");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_addrinfo, ai_canonname) == 24, "ai_canonname");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_addrinfo, ai_next) == 28, "ai_next");
KV_ABI_ASSERT(sizeof(struct kv_spawn_action) == 20, "spawn action");
KV_ABI_ASSERT(sizeof(struct kv_spawn_file_actions) == 8, "file actions");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_spawn_file_actions, actions) == 4, "actions");
KV_ABI_ASSERT(sizeof(struct kv_spawnattr) == 2, "spawn attributes");

/* ---- Files, directories and the sandbox ----------------------------------------------------
 * Paths are drive-letter paths: the sandbox root is drive c: ("c:\dir\f", "C:/dir/f"); "/dir/f"
 * and relative paths name the same files. getcwd answers in the drive form, "c:\dir". */

/* File types and permissions in st_mode (octal, as everywhere). */
#define KV_S_IFMT 0170000
#define KV_S_IFSOCK 0140000
#define KV_S_IFLNK 0120000
#define KV_S_IFREG 0100000
#define KV_S_IFBLK 0060000
#define KV_S_IFDIR 0040000
#define KV_S_IFCHR 0020000
#define KV_S_IFIFO 0010000
#define KV_S_PERM_MASK 07777

/* access() modes */
#define KV_F_OK 0
#define KV_X_OK 1
#define KV_W_OK 2
#define KV_R_OK 4

/* fcntl commands of the system side: 0 duplicates onto the lowest free descriptor, 8 onto the
 * one given as the argument. */
#define KV_F_DUPFD 0
#define KV_F_DUP2FD 8

/* The record stat and fstat fill. Times are whole seconds since the epoch; sizes that do not fit
 * in 32 bits make the call fail with EOVERFLOW rather than lie. */
struct kv_stat {
  uint32_t st_dev;
  uint32_t st_ino;
  uint32_t st_mode;
  uint32_t st_nlink;
  uint32_t st_uid;
  uint32_t st_gid;
  uint32_t st_rdev;
  int32_t st_size;
  int32_t st_atime_sec; /* the host spells st_atime as a macro */
  int32_t st_mtime_sec;
  int32_t st_ctime_sec;
  int32_t st_blksize;
  int32_t st_blocks; /* 512-byte units */
  uint32_t st_reserved[3];
};
KV_ABI_ASSERT(sizeof(struct kv_stat) == 64, "stat is 64 bytes");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_mode) == 8, "stat.st_mode");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_nlink) == 12, "stat.st_nlink");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_rdev) == 24, "stat.st_rdev");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_size) == 28, "stat.st_size");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_atime_sec) == 32, "stat.st_atime_sec");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_mtime_sec) == 36, "stat.st_mtime_sec");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_ctime_sec) == 40, "stat.st_ctime_sec");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_blksize) == 44, "stat.st_blksize");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_stat, st_blocks) == 48, "stat.st_blocks");

/* Directory entry types */
#define KV_DT_UNKNOWN 0
#define KV_DT_FIFO 1
#define KV_DT_CHR 2
#define KV_DT_DIR 4
#define KV_DT_BLK 6
#define KV_DT_REG 8
#define KV_DT_LNK 10
#define KV_DT_SOCK 12

/* The 256-byte directory entry readdir fills. d_name is NUL-terminated; entries whose names do
 * not fit (more than 247 bytes) are skipped. */
#define KV_DIRENT_NAME_MAX 247
struct kv_dirent {
  uint32_t d_ino;
  uint16_t d_reclen; /* always 256 */
  uint8_t d_type;
  uint8_t d_namlen; /* strlen(d_name) */
  char d_name[KV_DIRENT_NAME_MAX + 1];
};
KV_ABI_ASSERT(sizeof(struct kv_dirent) == 256, "directory entry is 256 bytes");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_dirent, d_reclen) == 4, "dirent.d_reclen");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_dirent, d_type) == 6, "dirent.d_type");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_dirent, d_namlen) == 7, "dirent.d_namlen");
KV_ABI_ASSERT(__builtin_offsetof(struct kv_dirent, d_name) == 8, "dirent.d_name");

#endif
