// The program's own lifetime: exit and its identity.
#include <unistd.h>

#include "services/handlers.h"

namespace kvrun::handlers {

// The CPU loop sees the status and stops at once: no finalisation runs.
Outcome exit(Process &p, const Request &r) {
  p.exit_status = static_cast<int32_t>(r.w[0]);
  return success(0);
}

Outcome getpid(Process &, const Request &) { return success(static_cast<uint32_t>(::getpid())); }

} // namespace kvrun::handlers
