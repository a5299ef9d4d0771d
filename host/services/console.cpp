// write: the console's descriptors 1 and 2 go to kvrun's standard output and error, other
// descriptors to their host files.
#include <kv/abi.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "services/errno_names.h"
#include "services/handlers.h"
#include "services/host_output.h"

namespace kvrun::handlers {

Outcome write(Process &p, const Request &r) {
  int32_t fd = static_cast<int32_t>(r.w[0]);
  uint32_t buffer = r.w[1];
  uint32_t count = std::min<uint32_t>(r.w[2], INT32_MAX);
  auto d = p.descriptors.find(fd);
  if (!d || (d->console && fd == 0))
    return failure(KV_EBADF);
  // In pieces, so that a huge count costs no huge host buffer; a bad piece after good ones
  // ends the write short, as a fault part-way through would on a real system.
  constexpr uint32_t kPiece = 64 * 1024;
  std::vector<uint8_t> piece(std::min(count, kPiece));
  uint32_t done = 0;
  while (done < count) {
    uint32_t n = std::min(count - done, kPiece);
    if (p.memory.read(buffer + done, piece.data(), n) != 0)
      return done ? success(done) : failure(KV_EFAULT);
    errno = 0;
    size_t written = write_all(d->host_fd, piece.data(), n);
    done += static_cast<uint32_t>(written);
    if (written < n)
      return done ? success(done) : failure(from_host_errno(errno ? errno : EIO));
  }
  return success(done);
}

} // namespace kvrun::handlers
