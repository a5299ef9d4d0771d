#include "services/select_sets.h"

#include <kv/abi.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "memory/protection.h"
#include "services/errno_names.h"

namespace kvrun {
namespace {

constexpr short kPollFor[3] = {POLLIN, POLLOUT, POLLPRI};
constexpr short kReadyWhen[3] = {POLLIN | POLLHUP | POLLERR, POLLOUT | POLLERR, POLLPRI};

struct Watch {
  int set;     // 0 read, 1 write, 2 exception
  int32_t fd;  // guest descriptor
  size_t slot; // in the poll list
};

} // namespace

Outcome select_descriptors(Process &p, const Request &r,
                           std::optional<std::chrono::steady_clock::time_point> until) {
  int32_t nfds = static_cast<int32_t>(r.w[0]);
  if (nfds > KV_FD_SETSIZE)
    return failure(KV_EINVAL);
  uint32_t words = (static_cast<uint32_t>(nfds) + 31) / 32;
  kv_fd_set sets[3] = {};
  std::vector<pollfd> polls;
  std::vector<Watch> watches;
  for (int s = 0; s < 3; ++s) {
    uint32_t addr = r.w[1 + s];
    if (addr == 0)
      continue;
    // A set that cannot take the answer fails before the wait, with no set changed.
    if (p.memory.read(addr, sets[s].fds_bits, words * 4) != 0 ||
        !p.memory.accessible(addr, words * 4, kProtWrite))
      return failure(KV_EFAULT);
    for (int32_t fd = 0; fd < nfds; ++fd) {
      if (!(sets[s].fds_bits[fd / 32] >> (fd % 32) & 1))
        continue;
      auto d = p.descriptors.find(fd);
      if (!d || d->host_fd < 0)
        return failure(KV_EBADF);
      polls.push_back({d->host_fd, kPollFor[s], 0});
      watches.push_back({s, fd, polls.size() - 1});
    }
  }
  if (p.deadline && (!until || *p.deadline < *until))
    until = p.deadline;

  using namespace std::chrono;
  int ready;
  for (;;) {
    int wait_ms = -1;
    if (until) {
      auto left = duration_cast<milliseconds>(*until - steady_clock::now() + microseconds(999));
      wait_ms = static_cast<int>(std::clamp<long long>(left.count(), 0, 1000));
    }
    ready = poll(polls.data(), polls.size(), wait_ms);
    if (ready < 0 && errno != EINTR)
      return failure(from_host_errno(errno));
    if (ready > 0 || (until && steady_clock::now() >= *until))
      break;
  }

  kv_fd_set out[3] = {};
  uint32_t count = 0;
  for (auto &w : watches)
    if (ready > 0 && (polls[w.slot].revents & kReadyWhen[w.set])) {
      out[w.set].fds_bits[w.fd / 32] |= 1u << (w.fd % 32);
      ++count;
    }
  for (int s = 0; s < 3; ++s)
    if (r.w[1 + s] != 0 && p.memory.write(r.w[1 + s], out[s].fds_bits, words * 4) != 0)
      return failure(KV_EFAULT);
  return success(count);
}

} // namespace kvrun
