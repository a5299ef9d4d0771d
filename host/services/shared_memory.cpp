// shm_open and shm_unlink: objects are files in a directory private to this kvrun and the
// programs it spawns (they share it through fork), removed when the first kvrun ends.
#include <fcntl.h>
#include <kv/abi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <dirent.h>
#include <string>

#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {

constexpr uint32_t kLongestName = 255;

class ObjectDirectory {
public:
  ~ObjectDirectory() {
    if (fd_ < 0 || ::getpid() != owner_)
      return;
    if (DIR *d = ::fdopendir(::dup(fd_))) {
      while (dirent *e = ::readdir(d))
        if (e->d_name[0] != '.')
          ::unlinkat(fd_, e->d_name, 0);
      ::closedir(d);
    }
    ::close(fd_);
    ::rmdir(path_.c_str());
  }
  // The directory's descriptor, made on first use; -1 with errno set if it cannot be.
  int fd() {
    if (fd_ >= 0)
      return fd_;
    const char *tmp = std::getenv("TMPDIR");
    std::string templ = std::string(tmp && *tmp ? tmp : "/tmp") + "/kvrun-shm-XXXXXX";
    if (!::mkdtemp(templ.data()))
      return -1;
    path_ = templ;
    owner_ = ::getpid();
    fd_ = ::open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return fd_;
  }

private:
  int fd_ = -1;
  pid_t owner_ = 0;
  std::string path_;
};

ObjectDirectory &objects() {
  static ObjectDirectory d;
  return d;
}

// "/name": one leading slash, no other, not empty. The file name, or the library's error.
int object_name(const Process &p, uint32_t addr, std::string &out) {
  std::string s;
  switch (p.memory.read_string(addr, kLongestName, s)) {
  case StringStatus::fault: return KV_EFAULT;
  case StringStatus::too_long: return KV_ENAMETOOLONG;
  case StringStatus::ok: break;
  }
  if (s.size() < 2 || s[0] != '/' || s.find('/', 1) != std::string::npos || s == "/." ||
      s == "/..")
    return KV_EINVAL;
  out = s.substr(1);
  return 0;
}

} // namespace

// shm_open(name, open flags, mode)
Outcome shm_open(Process &p, const Request &r) {
  std::string name;
  if (int e = object_name(p, r.w[0], name))
    return failure(e);
  int flags;
  if (!files::host_open_flags(r.w[1], flags) || (flags & O_ACCMODE) == O_WRONLY ||
      (r.w[1] & KV_O_APPEND))
    return failure(KV_EINVAL);
  int dir = objects().fd();
  if (dir < 0)
    return files::host_failure();
  int host = ::openat(dir, name.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, r.w[2] & 0777);
  if (host < 0)
    return files::host_failure();
  int32_t fd = p.descriptors.add({host, false, true, {}});
  if (fd < 0) {
    ::close(host);
    return failure(KV_EMFILE);
  }
  return success(static_cast<uint32_t>(fd));
}

Outcome shm_unlink(Process &p, const Request &r) {
  std::string name;
  if (int e = object_name(p, r.w[0], name))
    return failure(e);
  int dir = objects().fd();
  if (dir < 0)
    return files::host_failure();
  return ::unlinkat(dir, name.c_str(), 0) == 0 ? success(0) : files::host_failure();
}

} // namespace kvrun::handlers
