// Anonymous mappings: mmap and munmap.
#include <kv/abi.h>

#include "memory/layout.h"
#include "services/handlers.h"

namespace kvrun::handlers {

// mmap(addr, length, prot, flags, fd, offset). Only anonymous mappings (fd -1) so far.
Outcome mmap(Process &p, const Request &r) {
  uint32_t addr = r.w[0], length = r.w[1], prot = r.w[2], flags = r.w[3], offset = r.w[5];
  int32_t fd = static_cast<int32_t>(r.w[4]);
  constexpr uint32_t kKnownFlags = KV_MAP_SHARED | KV_MAP_PRIVATE | KV_MAP_FIXED | KV_MAP_ANONYMOUS;
  if (!(flags & KV_MAP_ANONYMOUS))
    return failure(p.descriptors.find(fd) ? KV_ENODEV : KV_EBADF);
  if (fd != -1 || length == 0 || (prot & ~7u) || (flags & ~kKnownFlags) ||
      !(flags & (KV_MAP_SHARED | KV_MAP_PRIVATE)) || offset % layout::kPageSize)
    return failure(KV_EINVAL);
  auto result = flags & KV_MAP_FIXED ? p.mappings.allocate_at(addr, length, prot)
                                     : p.mappings.allocate(length, prot);
  if (result.error)
    return failure(result.error);
  return success(result.addr);
}

// munmap(addr, length): any pages of earlier mappings, whole or in part.
Outcome munmap(Process &p, const Request &r) {
  if (int e = p.mappings.release(r.w[0], r.w[1]))
    return failure(e);
  return success(0);
}

} // namespace kvrun::handlers
