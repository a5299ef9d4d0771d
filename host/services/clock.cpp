// Clocks and waiting: time, the millisecond counter, and select (a sleep without descriptors).
#include <kv/abi.h>

#include <ctime>
#include <thread>

#include "services/handlers.h"
#include "services/select_sets.h"

namespace kvrun::handlers {

Outcome time(Process &p, const Request &r) {
  uint32_t now = static_cast<uint32_t>(static_cast<int32_t>(::time(nullptr)));
  if (r.w[0] != 0 && p.memory.write_u32(r.w[0], now) != 0)
    return failure(KV_EFAULT);
  return success(now);
}

// os_current_time_in_ms(pointer): a monotonic millisecond count, wrapping at 32 bits.
Outcome os_current_time_in_ms(Process &p, const Request &r) {
  using namespace std::chrono;
  auto ms = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  if (p.memory.write_u32(r.w[0], static_cast<uint32_t>(ms)) != 0)
    return failure(KV_EFAULT);
  return success(0);
}

// select(nfds, read, write, except, timeout). The time-out's microseconds word is taken as
// unsigned: the library's sleep puts whole waits there. With no descriptors it is a sleep.
Outcome select(Process &p, const Request &r) {
  int32_t nfds = static_cast<int32_t>(r.w[0]);
  if (nfds < 0)
    return failure(KV_EINVAL);
  if (r.w[4] == 0) {
    if (nfds == 0)
      return failure(KV_EINVAL); // nothing to wait for, for ever
    return select_descriptors(p, r, std::nullopt);
  }
  uint32_t words[2];
  if (p.memory.read(r.w[4], words, sizeof words) != 0)
    return failure(KV_EFAULT);
  int32_t seconds = static_cast<int32_t>(words[0]);
  if (seconds < 0)
    return failure(KV_EINVAL);
  using namespace std::chrono;
  auto until = steady_clock::now() + std::chrono::seconds(seconds) + microseconds(words[1]);
  if (nfds > 0)
    return select_descriptors(p, r, until);
  if (p.deadline && *p.deadline < until)
    until = *p.deadline;
  std::this_thread::sleep_until(until);
  return success(0);
}

} // namespace kvrun::handlers
