// mmap and munmap: anonymous mappings, and mappings of regular files.
//
// A private file mapping is a copy of the file taken at the call. A shared one that the guest
// may write is the file's own pages, mapped into kvrun and handed to Unicorn (file_pages.h), so
// its stores are in the file at once, for read() and for any other process mapping it, with
// nothing to write back at munmap or exit. A shared mapping the guest cannot write needs no such
// link and is mapped host-private: it shows the file's pages as they are.
#include <fcntl.h>
#include <kv/abi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "memory/file_pages.h"
#include "memory/layout.h"
#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {

struct MapRequest {
  uint32_t addr, length, prot, flags, offset;
  int32_t fd;
  bool fixed() const { return flags & KV_MAP_FIXED; }
};

RegionAllocator::Result place(Process &p, const MapRequest &m, void *host = nullptr) {
  return m.fixed() ? p.mappings.allocate_at(m.addr, m.length, m.prot, host)
                   : p.mappings.allocate(m.length, m.prot, host);
}

// The file's bytes from the offset, up to the mapping's length; false (host errno set) if the
// file cannot be read.
bool read_from(int fd, uint64_t offset, uint64_t length, std::vector<uint8_t> &out) {
  out.clear();
  std::vector<uint8_t> piece(64 * 1024);
  while (out.size() < length) {
    size_t want = static_cast<size_t>(std::min<uint64_t>(piece.size(), length - out.size()));
    ssize_t got = ::pread(fd, piece.data(), want, static_cast<off_t>(offset + out.size()));
    if (got < 0)
      return false;
    if (got == 0)
      break;
    out.insert(out.end(), piece.begin(), piece.begin() + got);
  }
  return true;
}

Outcome map_file(Process &p, const MapRequest &m) {
  auto d = p.descriptors.find(m.fd);
  struct stat st;
  if (d->console || ::fstat(d->host_fd, &st) != 0 || !S_ISREG(st.st_mode))
    return failure(KV_ENODEV);
  if (m.offset > INT32_MAX)
    return failure(KV_EINVAL);
  int access = ::fcntl(d->host_fd, F_GETFL) & O_ACCMODE;
  bool shared = m.flags & KV_MAP_SHARED;
  bool writes_file = shared && (m.prot & KV_PROT_WRITE);
  if (access == O_WRONLY || (writes_file && access != O_RDWR))
    return failure(KV_EACCES);
  uint64_t size = layout::page_up(m.length);

  if (shared) {
    void *host = file_pages::map(d->host_fd, m.offset, size, writes_file);
    if (!host)
      return files::host_failure();
    auto placed = place(p, m, host);
    if (placed.error) {
      file_pages::unmap(host, size);
      return failure(placed.error);
    }
    return success(placed.addr);
  }

  // Read first, so that a failing read of a fixed mapping leaves the old pages in place.
  std::vector<uint8_t> bytes;
  if (!read_from(d->host_fd, m.offset, size, bytes))
    return files::host_failure();
  auto placed = place(p, m);
  if (placed.error)
    return failure(placed.error);
  p.memory.poke(placed.addr, bytes.data(), static_cast<uint32_t>(bytes.size()));
  return success(placed.addr);
}

} // namespace

// mmap(addr, length, prot, flags, fd, offset)
Outcome mmap(Process &p, const Request &r) {
  MapRequest m{r.w[0], r.w[1], r.w[2], r.w[3], r.w[5], static_cast<int32_t>(r.w[4])};
  constexpr uint32_t kKnownFlags = KV_MAP_SHARED | KV_MAP_PRIVATE | KV_MAP_FIXED | KV_MAP_ANONYMOUS;
  bool anonymous = m.flags & KV_MAP_ANONYMOUS;
  if (!anonymous && !p.descriptors.find(m.fd))
    return failure(KV_EBADF);
  uint32_t sharing = m.flags & (KV_MAP_SHARED | KV_MAP_PRIVATE);
  if ((anonymous && m.fd != -1) || m.length == 0 || (m.prot & ~7u) || (m.flags & ~kKnownFlags) ||
      sharing == 0 || sharing == (KV_MAP_SHARED | KV_MAP_PRIVATE) || m.offset % layout::kPageSize)
    return failure(KV_EINVAL);
  if (!anonymous)
    return map_file(p, m);
  auto placed = place(p, m);
  if (placed.error)
    return failure(placed.error);
  return success(placed.addr);
}

// munmap(addr, length): any pages of earlier mappings, whole or in part.
Outcome munmap(Process &p, const Request &r) {
  if (int e = p.mappings.release(r.w[0], r.w[1]))
    return failure(e);
  return success(0);
}

} // namespace kvrun::handlers
