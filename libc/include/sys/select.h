#ifndef _SYS_SELECT_H
#define _SYS_SELECT_H

#include <kv/abi.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Descriptor n is bit n % 32 of word n / 32, as the system side reads the sets. */
#define FD_SETSIZE KV_FD_SETSIZE
typedef struct {
  uint32_t fds_bits[FD_SETSIZE / 32];
} fd_set;
KV_ABI_ASSERT(sizeof(fd_set) == sizeof(struct kv_fd_set), "fd_set");

#define FD_SET(n, set) ((set)->fds_bits[(unsigned)(n) / 32] |= 1u << ((unsigned)(n) % 32))
#define FD_CLR(n, set) ((set)->fds_bits[(unsigned)(n) / 32] &= ~(1u << ((unsigned)(n) % 32)))
#define FD_ISSET(n, set) (((set)->fds_bits[(unsigned)(n) / 32] >> ((unsigned)(n) % 32)) & 1u)
#define FD_ZERO(set) ((void)((set)->fds_bits[0] = 0, (set)->fds_bits[1] = 0))

#ifndef _KV_TIMEVAL_DEFINED
#define _KV_TIMEVAL_DEFINED
struct timeval {
  time_t tv_sec;
  int32_t tv_usec;
};
KV_ABI_ASSERT(sizeof(struct timeval) == sizeof(struct kv_timeval), "timeval");
#endif

int select(int count, fd_set *readable, fd_set *writable, fd_set *exceptional,
           struct timeval *timeout);

#ifdef __cplusplus
}
#endif

#endif
