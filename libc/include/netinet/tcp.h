#ifndef _NETINET_TCP_H
#define _NETINET_TCP_H

#include <kv/abi.h>

#define TCP_NODELAY KV_TCP_NODELAY

#endif
