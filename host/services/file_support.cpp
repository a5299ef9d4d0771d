#include "services/file_support.h"

#include <fcntl.h>

#include <limits>

namespace kvrun::files {

bool host_open_flags(uint32_t g, int &host) {
  constexpr uint32_t kKnown = KV_O_RDONLY | KV_O_RDWR | KV_O_WRONLY | KV_O_APPEND | KV_O_CREAT |
                              KV_O_EXCL | KV_O_TRUNC;
  if (g & ~kKnown)
    return false;
  // Read-write wins; read and write together mean the same.
  if ((g & KV_O_RDWR) || ((g & KV_O_RDONLY) && (g & KV_O_WRONLY)))
    host = O_RDWR;
  else if (g & KV_O_WRONLY)
    host = O_WRONLY;
  else if (g & KV_O_RDONLY)
    host = O_RDONLY;
  else
    return false;
  if (g & KV_O_APPEND)
    host |= O_APPEND;
  if (g & KV_O_CREAT)
    host |= O_CREAT;
  if (g & KV_O_EXCL)
    host |= O_EXCL;
  if (g & KV_O_TRUNC)
    host |= O_TRUNC;
  return true;
}

GuestPath guest_path(const Process &p, uint32_t addr) {
  std::string text;
  switch (p.memory.read_string(addr, kMaxGuestPath, text)) {
  case StringStatus::fault: return {{}, KV_EFAULT};
  case StringStatus::too_long: return {{}, KV_ENAMETOOLONG};
  case StringStatus::ok: break;
  }
  GuestPath cwd = parse_guest_path(p.cwd, {});
  return parse_guest_path(text, cwd.error ? std::vector<std::string>{} : cwd.parts);
}

Sandbox *sandbox(Process &p) {
  Sandbox &s = p.files.sandbox;
  if (!s.attached() && !s.attach(p.root))
    return nullptr;
  return &s;
}

Outcome store_stat(Process &p, int host, uint32_t addr) {
  struct stat st;
  if (host < 0 || ::fstat(host, &st) != 0)
    return host_failure();
  kv_stat out;
  if (!to_guest_stat(st, out))
    return failure(KV_EOVERFLOW);
  if (p.memory.write(addr, &out, sizeof out))
    return failure(KV_EFAULT);
  return success(0);
}

bool to_guest_stat(const struct stat &st, kv_stat &out) {
  constexpr auto kMax = std::numeric_limits<int32_t>::max();
  if (st.st_size > kMax || st.st_ino > UINT32_MAX || st.st_mtime > kMax || st.st_atime > kMax ||
      st.st_ctime > kMax)
    return false;
  out = {};
  out.st_dev = static_cast<uint32_t>(st.st_dev);
  out.st_ino = static_cast<uint32_t>(st.st_ino);
  // The host's type bits and permission bits have the same values as ours.
  out.st_mode = st.st_mode & (KV_S_IFMT | KV_S_PERM_MASK);
  out.st_nlink = static_cast<uint32_t>(st.st_nlink);
  out.st_uid = st.st_uid;
  out.st_gid = st.st_gid;
  out.st_rdev = static_cast<uint32_t>(st.st_rdev);
  out.st_size = static_cast<int32_t>(st.st_size);
  out.st_atime_sec = static_cast<int32_t>(st.st_atime);
  out.st_mtime_sec = static_cast<int32_t>(st.st_mtime);
  out.st_ctime_sec = static_cast<int32_t>(st.st_ctime);
  out.st_blksize = static_cast<int32_t>(st.st_blksize);
  out.st_blocks = static_cast<int32_t>(std::min<blkcnt_t>(st.st_blocks, kMax));
  return true;
}

int file_fd(const Process &p, int32_t fd) {
  auto d = p.descriptors.find(fd);
  return d && !d->console ? d->host_fd : -1;
}

static_assert(S_IFDIR == KV_S_IFDIR && S_IFREG == KV_S_IFREG && S_IFLNK == KV_S_IFLNK &&
                  S_IFSOCK == KV_S_IFSOCK && S_IFIFO == KV_S_IFIFO && S_IFCHR == KV_S_IFCHR,
              "host file types are copied as they are");

} // namespace kvrun::files
