#include "cpu/instruction_counter.h"

#include <stdexcept>
#include <vector>

namespace kvrun {

uint32_t count_instructions(const uint8_t *code, uint32_t size, bool thumb) {
  if (!thumb)
    return size / 4;
  uint32_t n = 0;
  for (uint32_t i = 0; i + 1 < size; ++n) {
    unsigned top5 = code[i + 1] >> 3;
    i += top5 >= 0x1D ? 4 : 2;
  }
  return n;
}

InstructionCounter::InstructionCounter(uc_engine *uc) : uc_(uc) {
  if (uc_hook_add(uc_, &hook_, UC_HOOK_BLOCK, reinterpret_cast<void *>(&on_block), this, 1, 0) !=
      UC_ERR_OK)
    throw std::runtime_error("cannot install the instruction counter");
}

InstructionCounter::~InstructionCounter() { uc_hook_del(uc_, hook_); }

void InstructionCounter::on_block(uc_engine *uc, uint64_t addr, uint32_t size, void *self) {
  auto *c = static_cast<InstructionCounter *>(self);
  if (c->paused_)
    return;
  Block &b = c->blocks_[static_cast<uint32_t>(addr)];
  if (b.size != size || size == 0) {
    uint32_t cpsr = 0;
    uc_reg_read(uc, UC_ARM_REG_CPSR, &cpsr);
    std::vector<uint8_t> code(size);
    uint32_t n = 0;
    if (size && uc_mem_read(uc, addr, code.data(), size) == UC_ERR_OK)
      n = count_instructions(code.data(), size, cpsr & (1u << 5));
    b = Block{size, n, 0};
  }
  ++b.runs;
  c->count_ += b.instructions;
}

} // namespace kvrun
