// Directory streams: opendir, readdir, closedir. Handles are small numbers of kvrun's own,
// never 0, each backed by a host directory stream.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {

uint8_t guest_type(unsigned char host_type) {
  switch (host_type) {
  case DT_FIFO: return KV_DT_FIFO;
  case DT_CHR: return KV_DT_CHR;
  case DT_DIR: return KV_DT_DIR;
  case DT_BLK: return KV_DT_BLK;
  case DT_REG: return KV_DT_REG;
  case DT_LNK: return KV_DT_LNK;
  case DT_SOCK: return KV_DT_SOCK;
  default: return KV_DT_UNKNOWN;
  }
}

} // namespace

// opendir(path): a handle, or 0 with errno set.
Outcome opendir(Process &p, const Request &r) {
  GuestPath path = files::guest_path(p, r.w[0]);
  if (path.error)
    return {0, path.error};
  if (p.files.directories.size() >= static_cast<size_t>(p.descriptors.limit))
    return {0, KV_EMFILE};
  Sandbox *s = files::sandbox(p);
  int fd = s ? s->open(path.parts, O_RDONLY | O_DIRECTORY) : -1;
  if (fd < 0)
    return {0, from_host_errno(errno)};
  DIR *dir = fdopendir(fd);
  if (!dir) {
    int e = errno;
    ::close(fd);
    return {0, from_host_errno(e)};
  }
  uint32_t handle = p.files.next_directory;
  while (handle == 0 || p.files.directories.count(handle))
    ++handle;
  p.files.next_directory = handle + 1;
  p.files.directories[handle] = dir;
  return success(handle);
}

// readdir(handle, entry): 0 after filling the 256-byte entry; -1 at the end (errno untouched)
// or on failure.
Outcome readdir(Process &p, const Request &r) {
  auto it = p.files.directories.find(r.w[0]);
  if (it == p.files.directories.end())
    return failure(KV_EBADF);
  if (!p.memory.accessible(r.w[1], sizeof(kv_dirent), kProtWrite))
    return failure(KV_EFAULT);
  for (;;) {
    errno = 0;
    dirent *e = ::readdir(it->second);
    if (!e)
      return errno ? files::host_failure() : Outcome{0xFFFFFFFFu, 0, false};
    size_t length = strlen(e->d_name);
    if (length > KV_DIRENT_NAME_MAX)
      continue; // cannot be named in the guest's entry
    kv_dirent out{};
    out.d_ino = static_cast<uint32_t>(e->d_ino);
    // The root's parent is the root itself: nothing of the host above it shows.
    if (strcmp(e->d_name, "..") == 0 && p.files.sandbox.is_root(dirfd(it->second)))
      if (struct stat st; ::fstat(dirfd(it->second), &st) == 0)
        out.d_ino = static_cast<uint32_t>(st.st_ino);
    out.d_reclen = sizeof out;
    out.d_type = guest_type(e->d_type);
    out.d_namlen = static_cast<uint8_t>(length);
    memcpy(out.d_name, e->d_name, length);
    p.memory.write(r.w[1], &out, sizeof out);
    return success(0);
  }
}

Outcome closedir(Process &p, const Request &r) {
  auto it = p.files.directories.find(r.w[0]);
  if (it == p.files.directories.end())
    return failure(KV_EBADF);
  ::closedir(it->second);
  p.files.directories.erase(it);
  return success(0);
}

} // namespace kvrun::handlers
