#include "services/socket_descriptors.h"

#include <fcntl.h>
#include <poll.h>

#include <chrono>
#include <kv/abi.h>

namespace kvrun {

int host_socket(const Process &p, int32_t fd) {
  auto d = p.descriptors.find(fd);
  if (!d || d->host_fd < 0)
    return -KV_EBADF;
  return d->socket ? d->host_fd : -KV_ENOTSOCK;
}

int wait_until_ready(const Process &p, int host_fd, short events, bool dont_wait) {
  if (dont_wait || !p.deadline || (fcntl(host_fd, F_GETFL) & O_NONBLOCK))
    return 0;
  using namespace std::chrono;
  for (;;) {
    auto left = duration_cast<milliseconds>(*p.deadline - steady_clock::now()).count();
    if (left <= 0)
      return KV_ETIMEDOUT;
    pollfd pfd{host_fd, events, 0};
    int n = poll(&pfd, 1, static_cast<int>(std::min<long long>(left, 1000)));
    if (n > 0)
      return 0;
  }
}

} // namespace kvrun
