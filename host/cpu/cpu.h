// Runs guest functions on the emulator: each call returns to kvrun's sentinel address; traps
// are served on the way and execution resumes after them; anything else that stops the CPU is
// a fault.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>

#include "cpu/engine.h"
#include "cpu/fault.h"
#include "cpu/instruction_counter.h"
#include "cpu/trap_handler.h"
#include "cpu/watchdog.h"

namespace kvrun {

struct CallResult {
  enum Kind { returned, stopped, faulted };
  Kind kind;
  uint32_t value = 0; // r0 when the function returned
  Fault fault;
};

class Cpu {
public:
  Cpu(Engine &engine, uint32_t sentinel);
  ~Cpu();
  Cpu(const Cpu &) = delete;
  Cpu &operator=(const Cpu &) = delete;

  void count_instructions();
  // Instructions executed so far (0 unless counting).
  uint64_t instructions() const { return counter_ ? counter_->count() : 0; }
  const InstructionCounter *counter() const { return counter_.get(); }
  void set_deadline(Watchdog::Clock::time_point deadline);

  // Calls fn (Thumb bit 0 honoured) with up to four arguments in r0..r3, the stack pointer sp
  // and LR = the sentinel.
  CallResult call(uint32_t fn, std::span<const uint32_t> args, uint32_t sp, TrapHandler &handler);

private:
  static bool on_invalid_memory(uc_engine *uc, uc_mem_type type, uint64_t addr, int size,
                                int64_t value, void *self);
  uint32_t reg(int id) const;
  void set_reg(int id, uint32_t v);
  Fault fault_after(uc_err err, uint32_t pc, bool thumb);
  uint32_t locate(uint32_t block_start, bool thumb);

  uc_engine *uc_;
  uint32_t sentinel_;
  uc_hook memory_hook_ = 0;
  std::unique_ptr<InstructionCounter> counter_;
  std::unique_ptr<Watchdog> watchdog_;
  // Filled by the invalid-memory hook during a run.
  bool memory_fault_ = false;
  uc_mem_type fault_type_ = UC_MEM_READ;
  uint32_t fault_address_ = 0;
};

} // namespace kvrun
