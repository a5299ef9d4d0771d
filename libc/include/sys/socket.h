#ifndef _SYS_SOCKET_H
#define _SYS_SOCKET_H

#include <kv/abi.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t socklen_t;
typedef uint16_t sa_family_t;

/* The system side's records: a 16-bit family first, no length byte (kv/abi.h pins them). */
struct sockaddr {
  sa_family_t sa_family;
  char sa_data[14];
};
struct sockaddr_storage {
  sa_family_t ss_family;
  uint8_t __ss_pad[26];
};
KV_ABI_ASSERT(sizeof(struct sockaddr) == sizeof(struct kv_sockaddr_generic), "sockaddr");
KV_ABI_ASSERT(sizeof(struct sockaddr_storage) == sizeof(struct kv_sockaddr_storage), "storage");

struct iovec;
struct msghdr {
  void *msg_name;
  socklen_t msg_namelen;
  struct iovec *msg_iov;
  int msg_iovlen;
  void *msg_control;
  socklen_t msg_controllen;
  int msg_flags;
};

#define AF_UNSPEC KV_AF_UNSPEC
#define AF_INET KV_AF_INET
#define AF_INET6 KV_AF_INET6
#define PF_UNSPEC AF_UNSPEC
#define PF_INET AF_INET
#define PF_INET6 AF_INET6

#define SOCK_STREAM KV_SOCK_STREAM
#define SOCK_DGRAM KV_SOCK_DGRAM
#define SOCK_RAW KV_SOCK_RAW

#define SOL_SOCKET KV_SOL_SOCKET
#define SO_REUSEADDR KV_SO_REUSEADDR
#define SO_KEEPALIVE KV_SO_KEEPALIVE
#define SO_BROADCAST KV_SO_BROADCAST
#define SO_LINGER KV_SO_LINGER
#define SO_SNDBUF KV_SO_SNDBUF
#define SO_RCVBUF KV_SO_RCVBUF
#define SO_SNDTIMEO KV_SO_SNDTIMEO
#define SO_RCVTIMEO KV_SO_RCVTIMEO
#define SO_ERROR KV_SO_ERROR
#define SO_TYPE KV_SO_TYPE

#define MSG_OOB KV_MSG_OOB
#define MSG_PEEK KV_MSG_PEEK
#define MSG_DONTROUTE KV_MSG_DONTROUTE
#define MSG_WAITALL KV_MSG_WAITALL
#define MSG_DONTWAIT KV_MSG_DONTWAIT

#define SHUT_RD 0
#define SHUT_WR 1
#define SHUT_RDWR 2

struct linger {
  int l_onoff;
  int l_linger;
};

int socket(int domain, int type, int protocol);
int bind(int fd, const struct sockaddr *address, socklen_t length);
int connect(int fd, const struct sockaddr *address, socklen_t length);
int listen(int fd, int backlog);
int accept(int fd, struct sockaddr *address, socklen_t *length);
ssize_t send(int fd, const void *buffer, size_t length, int flags);
ssize_t recv(int fd, void *buffer, size_t length, int flags);
ssize_t sendto(int fd, const void *buffer, size_t length, int flags, const struct sockaddr *to,
               socklen_t to_length);
ssize_t recvfrom(int fd, void *buffer, size_t length, int flags, struct sockaddr *from,
                 socklen_t *from_length);
ssize_t sendmsg(int fd, const struct msghdr *message, int flags);
ssize_t recvmsg(int fd, struct msghdr *message, int flags);
int getsockname(int fd, struct sockaddr *address, socklen_t *length);
int getpeername(int fd, struct sockaddr *address, socklen_t *length);
int getsockopt(int fd, int level, int name, void *value, socklen_t *length);
int setsockopt(int fd, int level, int name, const void *value, socklen_t length);
int shutdown(int fd, int how);

#ifdef __cplusplus
}
#endif

#endif
