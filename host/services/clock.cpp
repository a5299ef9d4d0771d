// Clocks and waiting: time, and select on no descriptors (a sleep).
#include <kv/abi.h>

#include <ctime>
#include <thread>

#include "services/handlers.h"

namespace kvrun::handlers {

Outcome time(Process &p, const Request &r) {
  uint32_t now = static_cast<uint32_t>(static_cast<int32_t>(::time(nullptr)));
  if (r.w[0] != 0 && p.memory.write_u32(r.w[0], now) != 0)
    return failure(KV_EFAULT);
  return success(now);
}

// select(nfds, read, write, except, timeout). With no descriptors it waits for the time-out,
// whose microseconds word is taken as unsigned: the library's sleep puts whole waits there.
Outcome select(Process &p, const Request &r) {
  int32_t nfds = static_cast<int32_t>(r.w[0]);
  if (nfds < 0)
    return failure(KV_EINVAL);
  if (nfds > 0)
    return failure(KV_ENOSYS);
  if (r.w[4] == 0)
    return failure(KV_EINVAL); // nothing to wait for, for ever
  uint32_t words[2];
  if (p.memory.read(r.w[4], words, sizeof words) != 0)
    return failure(KV_EFAULT);
  int32_t seconds = static_cast<int32_t>(words[0]);
  if (seconds < 0)
    return failure(KV_EINVAL);
  using namespace std::chrono;
  auto until = steady_clock::now() + std::chrono::seconds(seconds) + microseconds(words[1]);
  if (p.deadline && *p.deadline < until)
    until = *p.deadline;
  std::this_thread::sleep_until(until);
  return success(0);
}

} // namespace kvrun::handlers
