// One Unicorn ARM CPU (Cortex-A9: ARMv7-A, Thumb-2, no hardware divide), owned.
#pragma once

#include <unicorn/unicorn.h>

namespace kvrun {

class Engine {
public:
  Engine(); // throws std::runtime_error if Unicorn refuses
  ~Engine();
  Engine(const Engine &) = delete;
  Engine &operator=(const Engine &) = delete;
  uc_engine *get() const { return uc_; }

private:
  uc_engine *uc_ = nullptr;
};

} // namespace kvrun
