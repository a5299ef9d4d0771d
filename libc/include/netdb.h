#ifndef _NETDB_H
#define _NETDB_H

#include <kv/abi.h>
#include <sys/socket.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Written by the system side into the library's buffer, with pointers into that buffer. */
struct hostent {
  char *h_name;
  char **h_aliases;
  int h_addrtype;
  int h_length;
  char **h_addr_list;
};
#define h_addr h_addr_list[0]
KV_ABI_ASSERT(sizeof(struct hostent) == sizeof(struct kv_hostent), "hostent");

struct addrinfo {
  int ai_flags;
  int ai_family;
  int ai_socktype;
  int ai_protocol;
  socklen_t ai_addrlen;
  struct sockaddr *ai_addr;
  char *ai_canonname;
  struct addrinfo *ai_next;
};
KV_ABI_ASSERT(sizeof(struct addrinfo) == sizeof(struct kv_addrinfo), "addrinfo");
KV_ABI_ASSERT(__builtin_offsetof(struct addrinfo, ai_next) ==
                  __builtin_offsetof(struct kv_addrinfo, ai_next),
              "ai_next");

#define HOST_NOT_FOUND KV_HOST_NOT_FOUND
#define TRY_AGAIN KV_TRY_AGAIN
#define NO_RECOVERY KV_NO_RECOVERY
#define NO_DATA KV_NO_DATA
#define NO_ADDRESS NO_DATA

/* h_errno is the library's one cell, reached through its address function. */
int *___h_errno_addr(void);
#define h_errno (*___h_errno_addr())

struct hostent *gethostbyname(const char *name);
struct hostent *gethostbyaddr(const void *address, socklen_t length, int type);
int getaddrinfo(const char *node, const char *service, const struct addrinfo *hints,
                struct addrinfo **result);
void freeaddrinfo(struct addrinfo *list);
int getnameinfo(const struct sockaddr *address, socklen_t length, char *host,
                socklen_t host_length, char *service, socklen_t service_length, int flags);
int gethostname(char *name, size_t length);

#ifdef __cplusplus
}
#endif

#endif
