#include "run/initial_stack.h"

#include <optional>

namespace kvrun {

std::optional<InitialStack> build_initial_stack(AddressSpace &memory, uint32_t top, uint32_t limit,
                                                const std::vector<std::string> &args) {
  uint64_t need = 4 * (uint64_t{args.size()} + 1) + 16;
  for (auto &a : args)
    need += a.size() + 1;
  if (need > limit)
    return std::nullopt;
  uint32_t sp = top;
  std::vector<uint32_t> pointers;
  for (auto &a : args) {
    sp -= static_cast<uint32_t>(a.size()) + 1;
    memory.write(sp, a.c_str(), static_cast<uint32_t>(a.size()) + 1);
    pointers.push_back(sp);
  }
  pointers.push_back(0);
  sp = (sp - 4 * static_cast<uint32_t>(pointers.size())) & ~7u;
  for (size_t i = 0; i < pointers.size(); ++i)
    memory.write_u32(sp + 4 * static_cast<uint32_t>(i), pointers[i]);
  return InitialStack{sp, sp};
}

} // namespace kvrun
