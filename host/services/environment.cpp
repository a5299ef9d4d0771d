// The program's environment, as the block that start-up copies.
#include <kv/abi.h>

#include <vector>

#include "services/handlers.h"

namespace kvrun::handlers {

// copy_environ(buffer, size): a null-terminated array of pointers to "NAME=value" strings,
// followed by the strings, all inside the buffer; 0. When the buffer is too small nothing is
// written and the answer is the size needed.
Outcome copy_environ(Process &p, const Request &r) {
  uint32_t buffer = r.w[0], size = r.w[1];
  uint64_t needed = 4 * (uint64_t{p.environment.size()} + 1);
  for (auto &v : p.environment)
    needed += v.size() + 1;
  if (needed > UINT32_MAX)
    return failure(KV_E2BIG);
  if (size < needed)
    return success(static_cast<uint32_t>(needed));

  std::vector<uint8_t> block(needed);
  uint32_t text = 4 * static_cast<uint32_t>(p.environment.size() + 1);
  for (size_t i = 0; i < p.environment.size(); ++i) {
    uint32_t ptr = buffer + text;
    for (int b = 0; b < 4; ++b)
      block[4 * i + b] = static_cast<uint8_t>(ptr >> (8 * b));
    std::copy(p.environment[i].begin(), p.environment[i].end(), block.begin() + text);
    text += static_cast<uint32_t>(p.environment[i].size()) + 1; // the zero is already there
  }
  if (p.memory.write(buffer, block.data(), static_cast<uint32_t>(block.size())) != 0)
    return failure(KV_EFAULT);
  return success(0);
}

} // namespace kvrun::handlers
