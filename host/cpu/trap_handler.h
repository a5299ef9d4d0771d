// What the CPU loop hands each trap to.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace kvrun {

class TrapHandler {
public:
  virtual ~TrapHandler() = default;
  // regs = r0..r7 at the trap (call number, then the seven words). Returns the value for r0, or
  // nothing when the program is to stop (it asked to exit).
  virtual std::optional<uint32_t> serve(const std::array<uint32_t, 8> &regs) = 0;
};

} // namespace kvrun
