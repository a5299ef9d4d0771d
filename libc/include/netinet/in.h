#ifndef _NETINET_IN_H
#define _NETINET_IN_H

#include <kv/abi.h>
#include <sys/socket.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16_t in_port_t;
typedef uint32_t in_addr_t;

struct in_addr {
  in_addr_t s_addr; /* network order */
};

struct sockaddr_in {
  sa_family_t sin_family;
  in_port_t sin_port; /* network order */
  struct in_addr sin_addr;
  uint8_t sin_zero[8];
};

struct in6_addr {
  uint8_t s6_addr[16];
};

struct sockaddr_in6 {
  sa_family_t sin6_family;
  in_port_t sin6_port; /* network order */
  uint32_t sin6_flowinfo;
  struct in6_addr sin6_addr;
  uint32_t sin6_scope_id;
};

KV_ABI_ASSERT(sizeof(struct sockaddr_in) == sizeof(struct kv_sockaddr_in), "sockaddr_in");
KV_ABI_ASSERT(__builtin_offsetof(struct sockaddr_in, sin_addr) ==
                  __builtin_offsetof(struct kv_sockaddr_in, sin_addr),
              "sin_addr");
KV_ABI_ASSERT(sizeof(struct sockaddr_in6) == sizeof(struct kv_sockaddr_in6), "sockaddr_in6");
KV_ABI_ASSERT(__builtin_offsetof(struct sockaddr_in6, sin6_addr) ==
                  __builtin_offsetof(struct kv_sockaddr_in6, sin6_addr),
              "sin6_addr");
KV_ABI_ASSERT(__builtin_offsetof(struct sockaddr_in6, sin6_scope_id) ==
                  __builtin_offsetof(struct kv_sockaddr_in6, sin6_scope_id),
              "sin6_scope_id");

#define IPPROTO_IP KV_IPPROTO_IP
#define IPPROTO_TCP KV_IPPROTO_TCP
#define IPPROTO_UDP KV_IPPROTO_UDP
#define IPPROTO_IPV6 KV_IPPROTO_IPV6
#define IPV6_V6ONLY KV_IPV6_V6ONLY

/* Host-order values, as everywhere. */
#define INADDR_ANY ((in_addr_t)0x00000000)
#define INADDR_BROADCAST ((in_addr_t)0xffffffff)
#define INADDR_NONE ((in_addr_t)0xffffffff)
#define INADDR_LOOPBACK ((in_addr_t)0x7f000001)

#define INET_ADDRSTRLEN 16
#define INET6_ADDRSTRLEN 46

extern const struct in6_addr in6addr_any;
extern const struct in6_addr in6addr_loopback;

#ifdef __cplusplus
}
#endif

#endif
