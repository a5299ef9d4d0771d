// Calls on open descriptors: read, close, lseek, fstat, fsync, ftruncate, fcntl.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {

using files::host_failure;

// read(fd, buffer, count). The console's input and error read as end of file at once; its
// output is not readable.
Outcome read(Process &p, const Request &r) {
  int32_t fd = static_cast<int32_t>(r.w[0]);
  uint32_t buffer = r.w[1];
  uint32_t count = std::min<uint32_t>(r.w[2], INT32_MAX);
  auto d = p.descriptors.find(fd);
  if (!d)
    return failure(KV_EBADF);
  if (d->console)
    return fd == 1 ? failure(KV_EBADF) : success(0);
  // In pieces, each checked writable before the host reads it, so no byte is consumed that
  // cannot be delivered; a short host read ends the call (a pipe or socket may have no more).
  constexpr uint32_t kPiece = 64 * 1024;
  std::vector<uint8_t> piece(std::min(count, kPiece));
  uint32_t done = 0;
  while (done < count) {
    uint32_t n = std::min(count - done, kPiece);
    if (!p.memory.accessible(buffer + done, n, kProtWrite) || buffer + done < buffer)
      return done ? success(done) : failure(KV_EFAULT);
    ssize_t got = ::read(d->host_fd, piece.data(), n);
    if (got < 0)
      return done ? success(done) : host_failure();
    p.memory.write(buffer + done, piece.data(), static_cast<uint32_t>(got));
    done += static_cast<uint32_t>(got);
    if (static_cast<uint32_t>(got) < n)
      break;
  }
  return success(done);
}

// close(fd). Closing a console descriptor succeeds and changes nothing.
Outcome close(Process &p, const Request &r) {
  int32_t fd = static_cast<int32_t>(r.w[0]);
  auto d = p.descriptors.find(fd);
  if (!d)
    return failure(KV_EBADF);
  if (d->console && !d->owned)
    return success(0);
  p.descriptors.close(fd);
  return success(0);
}

// lseek(fd, offset, whence): the new offset, which must fit the guest's 32-bit off_t.
Outcome lseek(Process &p, const Request &r) {
  int host = files::file_fd(p, static_cast<int32_t>(r.w[0]));
  if (host < 0)
    return failure(p.descriptors.find(static_cast<int32_t>(r.w[0])) ? KV_ESPIPE : KV_EBADF);
  int32_t offset = static_cast<int32_t>(r.w[1]);
  int whence = r.w[2] == KV_SEEK_SET ? SEEK_SET : r.w[2] == KV_SEEK_CUR ? SEEK_CUR
             : r.w[2] == KV_SEEK_END ? SEEK_END : -1;
  if (whence < 0)
    return failure(KV_EINVAL);
  off_t before = ::lseek(host, 0, SEEK_CUR);
  off_t at = ::lseek(host, offset, whence);
  if (at < 0)
    return host_failure();
  if (at > INT32_MAX) {
    ::lseek(host, before, SEEK_SET);
    return failure(KV_EOVERFLOW);
  }
  return success(static_cast<uint32_t>(at));
}

Outcome fstat(Process &p, const Request &r) {
  auto d = p.descriptors.find(static_cast<int32_t>(r.w[0]));
  if (!d)
    return failure(KV_EBADF);
  return files::store_stat(p, d->host_fd, r.w[1]);
}

Outcome fsync(Process &p, const Request &r) {
  int host = files::file_fd(p, static_cast<int32_t>(r.w[0]));
  if (host < 0)
    return failure(p.descriptors.find(static_cast<int32_t>(r.w[0])) ? KV_EINVAL : KV_EBADF);
  if (::fsync(host) != 0)
    return host_failure();
  return success(0);
}

Outcome ftruncate(Process &p, const Request &r) {
  int host = files::file_fd(p, static_cast<int32_t>(r.w[0]));
  if (host < 0)
    return failure(p.descriptors.find(static_cast<int32_t>(r.w[0])) ? KV_EINVAL : KV_EBADF);
  int32_t length = static_cast<int32_t>(r.w[1]);
  if (length < 0)
    return failure(KV_EINVAL);
  if (::ftruncate(host, length) != 0)
    return host_failure();
  return success(0);
}

// fcntl(fd, command, argument): 0 duplicates onto the lowest free descriptor at or above the
// argument, 8 onto the one given (closing what was there). The copy shares the file position,
// as dup does.
Outcome fcntl(Process &p, const Request &r) {
  int32_t fd = static_cast<int32_t>(r.w[0]);
  int32_t target = static_cast<int32_t>(r.w[2]);
  auto d = p.descriptors.find(fd);
  if (!d)
    return failure(KV_EBADF);
  if (r.w[1] != KV_F_DUPFD && r.w[1] != KV_F_DUP2FD)
    return failure(KV_EINVAL);
  if (r.w[1] == KV_F_DUP2FD) {
    if (target < 0 || target >= p.descriptors.limit)
      return failure(KV_EBADF);
    if (target == fd)
      return success(static_cast<uint32_t>(fd));
  } else if (target < 0 || target >= p.descriptors.limit) {
    return failure(KV_EINVAL);
  }
  Descriptor copy = *d;
  copy.host_fd = ::fcntl(d->host_fd, F_DUPFD_CLOEXEC, 3);
  if (copy.host_fd < 0)
    return host_failure();
  copy.owned = true;
  if (r.w[1] == KV_F_DUP2FD) {
    p.descriptors.close(target);
    p.descriptors.set(target, std::move(copy));
    return success(static_cast<uint32_t>(target));
  }
  int host = copy.host_fd;
  int32_t added = p.descriptors.add(std::move(copy), target);
  if (added < 0) {
    ::close(host);
    return failure(KV_EMFILE);
  }
  return success(static_cast<uint32_t>(added));
}

} // namespace kvrun::handlers
