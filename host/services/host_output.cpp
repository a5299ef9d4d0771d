#include "services/host_output.h"

#include <unistd.h>

#include <cerrno>

namespace kvrun {

size_t write_all(int fd, const void *data, size_t size) {
  if (fd < 0)
    return 0;
  auto *p = static_cast<const char *>(data);
  size_t done = 0;
  while (done < size) {
    ssize_t n = ::write(fd, p + done, size - done);
    if (n < 0 && errno == EINTR)
      continue;
    if (n <= 0)
      break;
    done += static_cast<size_t>(n);
  }
  return done;
}

} // namespace kvrun
