// Counts guest instructions per translated block: a block's instructions are decoded from its
// bytes once and cached. (Unicorn's per-instruction hook misses Thumb instructions whose IT
// condition fails, and costs far more.)
#pragma once

#include <unicorn/unicorn.h>

#include <cstdint>
#include <unordered_map>

namespace kvrun {

// Instructions in `size` bytes of code: ARM state 4 bytes each; Thumb 2 or 4, a halfword whose
// top five bits are 0b11101, 0b11110 or 0b11111 starting a 32-bit one.
uint32_t count_instructions(const uint8_t *code, uint32_t size, bool thumb);

class InstructionCounter {
public:
  explicit InstructionCounter(uc_engine *uc);
  ~InstructionCounter();
  InstructionCounter(const InstructionCounter &) = delete;
  InstructionCounter &operator=(const InstructionCounter &) = delete;

  uint64_t count() const { return count_; }
  // Calls fn(block address, instructions executed there) for every block run so far.
  template <typename Fn> void each_block(Fn fn) const {
    for (auto &[addr, b] : blocks_)
      if (b.runs)
        fn(addr, b.runs * b.instructions);
  }
  // While paused (kvrun re-running code to locate a fault) nothing is counted.
  void pause(bool paused) { paused_ = paused; }

private:
  static void on_block(uc_engine *uc, uint64_t addr, uint32_t size, void *self);

  struct Block {
    uint32_t size, instructions;
    uint64_t runs;
  };
  uc_engine *uc_;
  uc_hook hook_ = 0;
  uint64_t count_ = 0;
  bool paused_ = false;
  std::unordered_map<uint32_t, Block> blocks_;
};

} // namespace kvrun
