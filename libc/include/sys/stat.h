#ifndef _SYS_STAT_H
#define _SYS_STAT_H

#include <kv/abi.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The system side's record, field for field (kv/abi.h pins it). */
struct stat {
  uint32_t st_dev;
  uint32_t st_ino;
  mode_t st_mode;
  uint32_t st_nlink;
  uint32_t st_uid;
  uint32_t st_gid;
  uint32_t st_rdev;
  off_t st_size;
  time_t st_atime;
  time_t st_mtime;
  time_t st_ctime;
  int32_t st_blksize;
  int32_t st_blocks;
  uint32_t st_reserved[3];
};
KV_ABI_ASSERT(sizeof(struct stat) == sizeof(struct kv_stat), "stat matches the system side");

#define S_IFMT KV_S_IFMT
#define S_IFSOCK KV_S_IFSOCK
#define S_IFLNK KV_S_IFLNK
#define S_IFREG KV_S_IFREG
#define S_IFBLK KV_S_IFBLK
#define S_IFDIR KV_S_IFDIR
#define S_IFCHR KV_S_IFCHR
#define S_IFIFO KV_S_IFIFO
#define S_ISDIR(m) (((m) & S_IFMT) == S_IFDIR)
#define S_ISREG(m) (((m) & S_IFMT) == S_IFREG)
#define S_ISLNK(m) (((m) & S_IFMT) == S_IFLNK)

int stat(const char *path, struct stat *buf);
int fstat(int fd, struct stat *buf);
int mkdir(const char *path, mode_t mode);
int chmod(const char *path, mode_t mode);
int fchmod(int fd, mode_t mode);
mode_t umask(mode_t mask);

#ifdef __cplusplus
}
#endif

#endif
