#ifndef _FCNTL_H
#define _FCNTL_H

#include <kv/abi.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The system side's encoding: read-only is 1. */
#define O_RDONLY KV_O_RDONLY
#define O_RDWR KV_O_RDWR
#define O_WRONLY KV_O_WRONLY
#define O_APPEND KV_O_APPEND
#define O_CREAT KV_O_CREAT
#define O_EXCL KV_O_EXCL
#define O_TRUNC KV_O_TRUNC

#define F_DUPFD KV_F_DUPFD
#define F_DUP2FD KV_F_DUP2FD

int open(const char *path, int flags, ...);
int creat(const char *path, mode_t mode);
int fcntl(int fd, int command, ...);

#ifdef __cplusplus
}
#endif

#endif
