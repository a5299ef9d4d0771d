// Enforces a wall-clock limit: once the deadline passes it keeps asking the emulator to stop
// until the CPU loop has noticed (a single request could fall between two runs and be lost).
#pragma once

#include <unicorn/unicorn.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace kvrun {

class Watchdog {
public:
  using Clock = std::chrono::steady_clock;
  Watchdog(uc_engine *uc, Clock::time_point deadline);
  ~Watchdog();
  Watchdog(const Watchdog &) = delete;
  Watchdog &operator=(const Watchdog &) = delete;

  bool expired() const { return expired_; }
  // The CPU loop has seen the expiry and will not start the emulator again.
  void acknowledge();
  Clock::time_point deadline() const { return deadline_; }

private:
  void watch();

  uc_engine *uc_;
  Clock::time_point deadline_;
  std::atomic<bool> expired_{false};
  bool done_ = false;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::thread thread_;
};

} // namespace kvrun
