// The descriptor calls: thin passes to the system side, except that the console descriptors are
// never closed and 0 and 2 have nothing to read.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <stdarg.h>

#include "bridge/errno_cells.h"
#include "stdio/retarget.h"

KV_FUNCTION(global, int, open, (const char *path, int flags, ...)) {
  int mode = 0;
  if (flags & KV_O_CREAT) {
    va_list args;
    va_start(args, flags);
    mode = va_arg(args, int);
    va_end(args);
  }
  return __syscall_open(path, flags, mode);
}

KV_FUNCTION(global, int, creat, (const char *path, int mode)) {
  return __syscall_open(path, KV_O_WRONLY | KV_O_TRUNC | KV_O_CREAT, mode);
}

KV_FUNCTION(global, int, close, (int fd)) {
  if (kv::stdio::is_console(fd))
    return 0;
  return __syscall_close(fd);
}

KV_FUNCTION(global, int, read, (int fd, void *buffer, size_t count)) {
  if (fd == kv::stdio::kStdinHandle || fd == kv::stdio::kStderrHandle)
    return 0;
  return __syscall_read(fd, buffer, count);
}

KV_FUNCTION(global, int, write, (int fd, const void *buffer, size_t count)) {
  return __syscall_write(fd, buffer, count);
}

KV_FUNCTION(global, long, lseek, (int fd, long offset, int whence)) {
  return __syscall_lseek(fd, offset, whence);
}

KV_FUNCTION(global, int, fcntl, (int fd, int command, ...)) {
  va_list args;
  va_start(args, command);
  long argument = va_arg(args, long);
  va_end(args);
  return __syscall_fcntl(fd, command, argument);
}

// The system side duplicates through fcntl; it has no call of its own for it.
KV_FUNCTION(global, int, dup, (int fd)) {
  if (fd < 0) {
    __set_errno(KV_EBADF);
    return -1;
  }
  return __syscall_fcntl(fd, KV_F_DUPFD, 0);
}

KV_FUNCTION(global, int, dup2, (int fd, int fd2)) {
  if (fd < 0 || fd2 < 0) {
    __set_errno(KV_EBADF);
    return -1;
  }
  return __syscall_fcntl(fd, KV_F_DUP2FD, fd2);
}

KV_FUNCTION(global, int, ftruncate, (int fd, long length)) {
  return __syscall_ftruncate(fd, length);
}
KV_FUNCTION(global, int, remove, (const char *path)) { return __syscall_remove(path); }
KV_FUNCTION(global, int, rename, (const char *from, const char *to)) {
  return __syscall_rename(from, to);
}
KV_FUNCTION(global, int, pipe, (int fds[2])) { return __syscall_pipe(fds); }
