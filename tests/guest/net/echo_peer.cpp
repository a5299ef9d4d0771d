// The other end of the TCP echo test, started by it through posix_spawn:
// echo_peer 4|6 PORT connects to the loopback address, sends a greeting, expects it back and
// reports "ok" or "bad" on the same connection. The exit status says where it failed.
#include <kv/syscall.h>

#include "net_helpers.h"

using namespace nettest;

namespace {
const char kGreeting[] = "hello from the spawned peer";
}

extern "C" int main(int argc, char **argv) {
  if (argc < 3)
    return 2;
  bool v6 = argv[1][0] == '6';
  uint16_t port = static_cast<uint16_t>(parse_decimal(argv[2]));
  int s = __syscall_socket(v6 ? KV_AF_INET6 : KV_AF_INET, KV_SOCK_STREAM, 0);
  if (s < 0)
    return 3;
  kv_sockaddr_in a4 = loopback4(port);
  kv_sockaddr_in6 a6 = loopback6(port);
  int rc = v6 ? __syscall_connect(s, &a6, sizeof a6) : __syscall_connect(s, &a4, sizeof a4);
  if (rc != 0)
    return 4;
  size_t n = sizeof kGreeting - 1;
  if (__syscall_send(s, kGreeting, n, 0) != static_cast<int>(n))
    return 5;
  char back[64];
  size_t got = 0;
  while (got < n) {
    int k = __syscall_recv(s, back + got, sizeof back - got, 0);
    if (k <= 0)
      return 6;
    got += static_cast<size_t>(k);
  }
  const char *verdict = got == n && same_bytes(back, kGreeting, n) ? "ok" : "bad";
  __syscall_send(s, verdict, 2, 0);
  __syscall_close(s);
  return 0;
}
