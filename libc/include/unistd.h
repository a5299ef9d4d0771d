#ifndef _UNISTD_H
#define _UNISTD_H

#include <kv/abi.h>
#include <stddef.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#define STDIN_FILENO 0
#define STDOUT_FILENO 1
#define STDERR_FILENO 2
#ifndef SEEK_SET
#define SEEK_SET KV_SEEK_SET
#define SEEK_CUR KV_SEEK_CUR
#define SEEK_END KV_SEEK_END
#endif

int close(int fd);
ssize_t read(int fd, void *buffer, size_t count);
ssize_t write(int fd, const void *buffer, size_t count);
long lseek(int fd, long offset, int whence);
int dup(int fd);
int dup2(int fd, int fd2);
int isatty(int fd);
int ftruncate(int fd, long length);
int pipe(int fds[2]);
void _exit(int status) __attribute__((noreturn));

#ifdef __cplusplus
}
#endif

#endif
