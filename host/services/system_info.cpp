// sysconf: the page size under both of its names.
#include <kv/abi.h>

#include "memory/layout.h"
#include "services/handlers.h"

namespace kvrun::handlers {

Outcome sysconf(Process &, const Request &r) {
  switch (static_cast<int32_t>(r.w[0])) {
  case KV_SC_PAGESIZE_ALLOC:
  case KV_SC_PAGESIZE: return success(layout::kPageSize);
  default: return failure(KV_EINVAL);
  }
}

} // namespace kvrun::handlers
