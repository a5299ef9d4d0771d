#include "cpu/engine.h"

#include <stdexcept>
#include <string>

namespace kvrun {

Engine::Engine() {
  if (uc_err e = uc_open(UC_ARCH_ARM, UC_MODE_ARM, &uc_); e != UC_ERR_OK)
    throw std::runtime_error(std::string("cannot start the CPU emulator: ") + uc_strerror(e));
  if (uc_err e = uc_ctl_set_cpu_model(uc_, UC_CPU_ARM_CORTEX_A9); e != UC_ERR_OK) {
    uc_close(uc_);
    throw std::runtime_error(std::string("cannot select the Cortex-A9: ") + uc_strerror(e));
  }
}

Engine::~Engine() { uc_close(uc_); }

} // namespace kvrun
