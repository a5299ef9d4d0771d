// Connects the CPU loop's traps to the services.
#pragma once

#include "cpu/trap_handler.h"
#include "services/dispatcher.h"
#include "services/process.h"

namespace kvrun {

class ServiceBridge : public TrapHandler {
public:
  explicit ServiceBridge(Process &process) : process_(process) {}
  std::optional<uint32_t> serve(const std::array<uint32_t, 8> &regs) override {
    Request request{static_cast<int32_t>(regs[0]),
                    {regs[1], regs[2], regs[3], regs[4], regs[5], regs[6], regs[7]}};
    Outcome outcome = dispatch(process_, request);
    if (process_.exit_status)
      return std::nullopt;
    return outcome.value;
  }

private:
  Process &process_;
};

} // namespace kvrun
