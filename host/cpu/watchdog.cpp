#include "cpu/watchdog.h"

namespace kvrun {

Watchdog::Watchdog(uc_engine *uc, Clock::time_point deadline)
    : uc_(uc), deadline_(deadline), thread_([this] { watch(); }) {}

Watchdog::~Watchdog() {
  acknowledge();
  thread_.join();
}

void Watchdog::acknowledge() {
  std::lock_guard lock(mutex_);
  done_ = true;
  wake_.notify_all();
}

void Watchdog::watch() {
  std::unique_lock lock(mutex_);
  if (wake_.wait_until(lock, deadline_, [this] { return done_; }))
    return;
  expired_ = true;
  while (!done_) {
    uc_emu_stop(uc_);
    wake_.wait_for(lock, std::chrono::milliseconds(2), [this] { return done_; });
  }
}

} // namespace kvrun
