// Calls that name a file by path: open, stat, access, truncate, mkdir, rmdir, unlink, remove,
// rename. Every path goes through the sandbox.
#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {

using files::host_failure;

// Closes a host descriptor at the end of a call.
struct HostFd {
  int fd;
  ~HostFd() {
    if (fd >= 0)
      ::close(fd);
  }
};

// The path of word `addr`, the sandbox, or the failure that stops the call.
struct Target {
  GuestPath path;
  Sandbox *sandbox = nullptr;
  int error = 0;
};

Target target(Process &p, uint32_t addr) {
  Target t{files::guest_path(p, addr)};
  t.error = t.path.error;
  if (!t.error && !(t.sandbox = files::sandbox(p)))
    t.error = from_host_errno(errno);
  // "f/" names a directory: a file there is not one.
  if (!t.error && t.path.directory && !t.path.parts.empty()) {
    HostFd f{t.sandbox->open(t.path.parts, O_PATH)};
    struct stat st;
    if (f.fd >= 0 && ::fstat(f.fd, &st) == 0 && !S_ISDIR(st.st_mode))
      t.error = KV_ENOTDIR;
  }
  return t;
}

// Runs `op(parent_fd, name)` on the directory holding the path's last component.
template <class Op> Outcome on_name(Process &p, uint32_t addr, Op op) {
  Target t = target(p, addr);
  if (t.error)
    return failure(t.error);
  HostFd parent{t.sandbox->open_parent(t.path.parts)};
  if (parent.fd < 0)
    return host_failure();
  if (op(parent.fd, t.path.parts.back().c_str()) != 0)
    return host_failure();
  return success(0);
}

} // namespace

// open(path, flags, mode). Mode 0 with O_CREAT (what streams send) gives rw-rw-rw- before the
// host's umask.
Outcome open(Process &p, const Request &r) {
  int flags;
  if (!files::host_open_flags(r.w[1], flags))
    return failure(KV_EINVAL);
  Target t = target(p, r.w[0]);
  if (t.error)
    return failure(t.error);
  if (t.path.directory && (flags & O_CREAT))
    return failure(KV_EISDIR); // a file cannot be created under a directory's name
  mode_t mode = r.w[2] & KV_S_PERM_MASK;
  if (mode == 0)
    mode = 0666;
  int host = t.sandbox->open(t.path.parts, flags, mode);
  if (host < 0)
    return host_failure();
  int32_t fd = p.descriptors.add({host, false, true, "/" + host_relative(t.path.parts)}, 3);
  if (fd < 0) {
    ::close(host);
    return failure(KV_EMFILE);
  }
  return success(static_cast<uint32_t>(fd));
}

// stat(path, record), following links inside the root.
Outcome stat(Process &p, const Request &r) {
  Target t = target(p, r.w[0]);
  if (t.error)
    return failure(t.error);
  HostFd f{t.sandbox->open(t.path.parts, O_PATH)};
  return files::store_stat(p, f.fd, r.w[1]);
}

// access(path, mode): the file as found inside the root, checked by the host for kvrun's user.
Outcome access(Process &p, const Request &r) {
  if (r.w[1] & ~static_cast<uint32_t>(KV_R_OK | KV_W_OK | KV_X_OK))
    return failure(KV_EINVAL);
  Target t = target(p, r.w[0]);
  if (t.error)
    return failure(t.error);
  HostFd f{t.sandbox->open(t.path.parts, O_PATH)};
  if (f.fd < 0)
    return host_failure();
  if (r.w[1] == KV_F_OK)
    return success(0);
  int mode = (r.w[1] & KV_R_OK ? R_OK : 0) | (r.w[1] & KV_W_OK ? W_OK : 0) |
             (r.w[1] & KV_X_OK ? X_OK : 0);
  // The descriptor's own name in /proc checks exactly the file the sandbox found.
  std::string self = "/proc/self/fd/" + std::to_string(f.fd);
  if (::access(self.c_str(), mode) != 0)
    return host_failure();
  return success(0);
}

Outcome truncate(Process &p, const Request &r) {
  int32_t length = static_cast<int32_t>(r.w[1]);
  if (length < 0)
    return failure(KV_EINVAL);
  Target t = target(p, r.w[0]);
  if (t.error)
    return failure(t.error);
  HostFd f{t.sandbox->open(t.path.parts, O_WRONLY)};
  if (f.fd < 0 || ::ftruncate(f.fd, length) != 0)
    return host_failure();
  return success(0);
}

// mkdir(path, mode). The root has no parent to make it in, but it does exist.
Outcome mkdir(Process &p, const Request &r) {
  mode_t mode = r.w[1] & KV_S_PERM_MASK;
  Target t = target(p, r.w[0]);
  if (!t.error && t.path.parts.empty())
    return failure(KV_EEXIST);
  return on_name(p, r.w[0], [&](int dir, const char *name) { return ::mkdirat(dir, name, mode); });
}

Outcome rmdir(Process &p, const Request &r) {
  return on_name(p, r.w[0], [](int dir, const char *name) { return ::unlinkat(dir, name, AT_REMOVEDIR); });
}

Outcome unlink(Process &p, const Request &r) {
  return on_name(p, r.w[0], [](int dir, const char *name) { return ::unlinkat(dir, name, 0); });
}

// remove(path): a file or an empty directory.
Outcome remove(Process &p, const Request &r) {
  return on_name(p, r.w[0], [](int dir, const char *name) {
    int rc = ::unlinkat(dir, name, 0);
    return rc != 0 && errno == EISDIR ? ::unlinkat(dir, name, AT_REMOVEDIR) : rc;
  });
}

Outcome rename(Process &p, const Request &r) {
  Target from = target(p, r.w[0]), to = target(p, r.w[1]);
  if (from.error || to.error)
    return failure(from.error ? from.error : to.error);
  HostFd from_dir{from.sandbox->open_parent(from.path.parts)};
  if (from_dir.fd < 0)
    return host_failure();
  HostFd to_dir{to.sandbox->open_parent(to.path.parts)};
  if (to_dir.fd < 0)
    return host_failure();
  if (::renameat(from_dir.fd, from.path.parts.back().c_str(), to_dir.fd,
                 to.path.parts.back().c_str()) != 0)
    return host_failure();
  return success(0);
}

} // namespace kvrun::handlers
