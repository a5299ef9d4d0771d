#ifndef _DIRENT_H
#define _DIRENT_H

#include <kv/abi.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The system side's 256-byte entry, field for field (kv/abi.h pins it). */
struct dirent {
  uint32_t d_ino;
  uint16_t d_reclen;
  uint8_t d_type;
  uint8_t d_namlen;
  char d_name[KV_DIRENT_NAME_MAX + 1];
};
KV_ABI_ASSERT(sizeof(struct dirent) == sizeof(struct kv_dirent), "dirent matches the system side");

#define DT_UNKNOWN KV_DT_UNKNOWN
#define DT_FIFO KV_DT_FIFO
#define DT_CHR KV_DT_CHR
#define DT_DIR KV_DT_DIR
#define DT_BLK KV_DT_BLK
#define DT_REG KV_DT_REG
#define DT_LNK KV_DT_LNK
#define DT_SOCK KV_DT_SOCK

typedef struct kv_dir DIR;

DIR *opendir(const char *path);
struct dirent *readdir(DIR *dir);
int closedir(DIR *dir);

#ifdef __cplusplus
}
#endif

#endif
