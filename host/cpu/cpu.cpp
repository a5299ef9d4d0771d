#include "cpu/cpu.h"

#include <kv/abi.h>

#include <stdexcept>

namespace kvrun {
namespace {
constexpr uint32_t kThumbBit = 1u << 5; // in CPSR
} // namespace

Cpu::Cpu(Engine &engine, uint32_t sentinel) : uc_(engine.get()), sentinel_(sentinel) {
  if (uc_hook_add(uc_, &memory_hook_, UC_HOOK_MEM_INVALID,
                  reinterpret_cast<void *>(&on_invalid_memory), this, 1, 0) != UC_ERR_OK)
    throw std::runtime_error("cannot install the memory fault hook");
}

Cpu::~Cpu() {
  watchdog_.reset();
  counter_.reset();
  uc_hook_del(uc_, memory_hook_);
}

void Cpu::count_instructions() {
  if (!counter_)
    counter_ = std::make_unique<InstructionCounter>(uc_);
}

void Cpu::set_deadline(Watchdog::Clock::time_point deadline) {
  watchdog_.reset();
  watchdog_ = std::make_unique<Watchdog>(uc_, deadline);
}

bool Cpu::on_invalid_memory(uc_engine *, uc_mem_type type, uint64_t addr, int, int64_t,
                            void *self) {
  auto *cpu = static_cast<Cpu *>(self);
  cpu->memory_fault_ = true;
  cpu->fault_type_ = type;
  cpu->fault_address_ = static_cast<uint32_t>(addr);
  return false;
}

uint32_t Cpu::reg(int id) const {
  uint32_t v = 0;
  uc_reg_read(uc_, id, &v);
  return v;
}

void Cpu::set_reg(int id, uint32_t v) { uc_reg_write(uc_, id, &v); }

CallResult Cpu::call(uint32_t fn, std::span<const uint32_t> args, uint32_t sp,
                     TrapHandler &handler) {
  static const int arg_regs[] = {UC_ARM_REG_R0, UC_ARM_REG_R1, UC_ARM_REG_R2, UC_ARM_REG_R3};
  for (size_t i = 0; i < args.size() && i < 4; ++i)
    set_reg(arg_regs[i], args[i]);
  set_reg(UC_ARM_REG_SP, sp);
  set_reg(UC_ARM_REG_LR, sentinel_);

  uint64_t start = fn;
  while (true) {
    // The clock as well as the watchdog's flag: a service that waited up to the deadline returns
    // before the watchdog thread has woken to say so.
    if (watchdog_ && (watchdog_->expired() || Watchdog::Clock::now() >= watchdog_->deadline())) {
      watchdog_->acknowledge();
      return {CallResult::faulted, 0, Fault{Fault::time_limit, 0, static_cast<uint32_t>(start & ~1u), 0, {}}};
    }
    memory_fault_ = false;
    uc_err err = uc_emu_start(uc_, start, sentinel_, 0, 0);
    uint32_t pc = reg(UC_ARM_REG_PC);
    bool thumb = reg(UC_ARM_REG_CPSR) & kThumbBit;

    if (err == UC_ERR_OK && pc == sentinel_)
      return {CallResult::returned, reg(UC_ARM_REG_R0), {}};
    if (err == UC_ERR_INSN_INVALID && !thumb) {
      uint32_t word = 0;
      if (uc_mem_read(uc_, pc, &word, 4) == UC_ERR_OK && word == KV_TRAP_WORD) {
        static const int ids[8] = {UC_ARM_REG_R0, UC_ARM_REG_R1, UC_ARM_REG_R2, UC_ARM_REG_R3,
                                   UC_ARM_REG_R4, UC_ARM_REG_R5, UC_ARM_REG_R6, UC_ARM_REG_R7};
        std::array<uint32_t, 8> regs{};
        void *ptrs[8];
        for (int i = 0; i < 8; ++i)
          ptrs[i] = &regs[i];
        uc_reg_read_batch(uc_, const_cast<int *>(ids), ptrs, 8);
        auto result = handler.serve(regs);
        if (!result)
          return {CallResult::stopped, 0, {}};
        set_reg(UC_ARM_REG_R0, *result);
        start = pc + 4; // ARM state: the restart address has bit 0 clear
        continue;
      }
    }
    if (err == UC_ERR_OK && watchdog_ && watchdog_->expired()) {
      watchdog_->acknowledge();
      return {CallResult::faulted, 0, Fault{Fault::time_limit, 0, pc, 0, {}}};
    }
    return {CallResult::faulted, 0, fault_after(err, pc, thumb)};
  }
}

Fault Cpu::fault_after(uc_err err, uint32_t pc, bool thumb) {
  Fault f;
  f.pc = pc;
  if (memory_fault_) {
    switch (fault_type_) {
    case UC_MEM_READ_UNMAPPED: f.kind = Fault::read_unmapped; break;
    case UC_MEM_WRITE_UNMAPPED: f.kind = Fault::write_unmapped; break;
    case UC_MEM_FETCH_UNMAPPED: f.kind = Fault::fetch_unmapped; break;
    case UC_MEM_READ_PROT: f.kind = Fault::read_protected; break;
    case UC_MEM_WRITE_PROT: f.kind = Fault::write_protected; break;
    default: f.kind = Fault::fetch_protected; break;
    }
    f.address = fault_address_;
    // A failed fetch happens at the branch target; a failed data access is reported at the
    // start of its translated block, so find the instruction itself.
    if (f.kind == Fault::fetch_unmapped || f.kind == Fault::fetch_protected) {
      f.pc = fault_address_;
      f.lr = reg(UC_ARM_REG_LR);
    }
    else
      f.pc = locate(pc, thumb);
    return f;
  }
  switch (err) {
  case UC_ERR_INSN_INVALID: {
    f.kind = Fault::undefined_instruction;
    if (thumb) {
      uint16_t hw[2] = {0, 0};
      uc_mem_read(uc_, pc, hw, 4);
      f.address = (hw[0] >> 11) >= 0x1D ? static_cast<uint32_t>(hw[0]) << 16 | hw[1] : hw[0];
    } else {
      uc_mem_read(uc_, pc, &f.address, 4);
    }
    break;
  }
  case UC_ERR_READ_UNALIGNED: f.kind = Fault::read_unaligned; f.pc = locate(pc, thumb); break;
  case UC_ERR_WRITE_UNALIGNED: f.kind = Fault::write_unaligned; f.pc = locate(pc, thumb); break;
  case UC_ERR_FETCH_UNALIGNED: f.kind = Fault::fetch_unaligned; break;
  case UC_ERR_EXCEPTION:
    f.kind = Fault::exception;
    f.detail = "supervisor call, breakpoint or abort";
    break;
  default:
    f.kind = Fault::internal;
    f.detail = uc_strerror(err);
    break;
  }
  return f;
}

// Re-executes the faulting block one instruction at a time until the access fails again; the
// program is stopping anyway, so repeating the block's side effects does no harm. Falls back to
// the block's start.
uint32_t Cpu::locate(uint32_t block_start, bool thumb) {
  const uint32_t wanted_address = fault_address_;
  const uc_mem_type wanted_type = fault_type_;
  const bool had_memory_fault = memory_fault_;
  if (counter_)
    counter_->pause(true);
  uint32_t found = block_start;
  // Blocks translated before were made without the single-step instrumentation.
  uc_ctl_remove_cache(uc_, block_start, uint64_t{block_start} + 4096);
  uint64_t at = block_start | (thumb ? 1u : 0u);
  for (int step = 0; step < 1024; ++step) {
    memory_fault_ = false;
    uc_err err = uc_emu_start(uc_, at, sentinel_, 0, 1);
    if (err != UC_ERR_OK) {
      bool same = had_memory_fault ? memory_fault_ && fault_type_ == wanted_type &&
                                         fault_address_ == wanted_address
                                   : (err == UC_ERR_READ_UNALIGNED || err == UC_ERR_WRITE_UNALIGNED);
      if (same)
        found = static_cast<uint32_t>(at & ~1u);
      break;
    }
    uint32_t pc = reg(UC_ARM_REG_PC);
    if (pc == sentinel_ || pc < block_start || pc - block_start >= 4096)
      break;
    at = pc | ((reg(UC_ARM_REG_CPSR) & kThumbBit) ? 1u : 0u);
  }
  if (counter_)
    counter_->pause(false);
  memory_fault_ = had_memory_fault;
  fault_type_ = wanted_type;
  fault_address_ = wanted_address;
  return found;
}

} // namespace kvrun
