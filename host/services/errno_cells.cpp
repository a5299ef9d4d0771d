// Where the program keeps errno and h_errno: the cells failed requests store into.
#include <kv/abi.h>

#include "memory/protection.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {
// A cell that cannot be written is refused and the previous one kept.
Outcome remember(Process &p, std::optional<uint32_t> &cell, uint32_t addr) {
  if (addr == 0 || !p.memory.accessible(addr, 4, kProtWrite))
    return failure(KV_EFAULT);
  cell = addr;
  return success(0);
}
} // namespace

Outcome set_errno_addr(Process &p, const Request &r) { return remember(p, p.errno_cell, r.w[0]); }

Outcome set_h_errno_addr(Process &p, const Request &r) {
  return remember(p, p.h_errno_cell, r.w[0]);
}

} // namespace kvrun::handlers
