#include "services/sandbox.h"

#include <kv/abi.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <deque>

namespace kvrun {
namespace {

constexpr int kMaxLinks = 40; // as the host kernel allows

bool is_separator(char c) { return c == '/' || c == '\\'; }

// Closes every descriptor it holds; the walk's stack of open directories.
struct FdStack {
  std::vector<int> fds;
  ~FdStack() {
    for (int fd : fds)
      ::close(fd);
  }
  int top() const { return fds.back(); }
  void pop_to(size_t n) {
    while (fds.size() > n) {
      ::close(fds.back());
      fds.pop_back();
    }
  }
};

// Splits a link target or a path into components, in front of `todo`.
void push_front_components(std::string_view text, std::deque<std::string> &todo) {
  std::vector<std::string> parts;
  size_t i = 0;
  while (i < text.size()) {
    size_t j = i;
    while (j < text.size() && !is_separator(text[j]))
      ++j;
    if (j > i)
      parts.emplace_back(text.substr(i, j - i));
    i = j + 1;
  }
  todo.insert(todo.begin(), parts.begin(), parts.end());
}

int fail(int host_errno) {
  errno = host_errno;
  return -1;
}

} // namespace

GuestPath parse_guest_path(std::string_view path, const std::vector<std::string> &cwd) {
  GuestPath out;
  if (path.empty())
    return {{}, KV_ENOENT};
  if (path.size() > kMaxGuestPath)
    return {{}, KV_ENAMETOOLONG};
  bool absolute = false;
  if (path.size() >= 2 && path[1] == ':') {
    if (path[0] != 'c' && path[0] != 'C')
      return {{}, KV_ENOENT}; // the only drive there is
    path.remove_prefix(2);
    absolute = true; // "c:" alone and "c:x" both start at the root: one drive, no per-drive cwd
  } else if (is_separator(path[0])) {
    absolute = true;
  }
  if (!absolute)
    out.parts = cwd;
  size_t i = 0;
  while (i < path.size()) {
    size_t j = i;
    while (j < path.size() && !is_separator(path[j]))
      ++j;
    std::string_view part = path.substr(i, j - i);
    out.directory = part == "." || part == "..";
    if (part.empty() || part == ".") {
    } else if (part == "..") {
      if (!out.parts.empty())
        out.parts.pop_back();
    } else if (part.size() > 255) {
      return {{}, KV_ENAMETOOLONG};
    } else if (part.find('\0') != std::string_view::npos) {
      return {{}, KV_EINVAL};
    } else {
      out.parts.emplace_back(part);
    }
    i = j + 1;
  }
  if (!path.empty() && is_separator(path.back()))
    out.directory = true;
  return out;
}

std::string host_relative(const std::vector<std::string> &parts) {
  if (parts.empty())
    return ".";
  std::string s;
  for (auto &p : parts)
    s += (s.empty() ? "" : "/") + p;
  return s;
}

std::string drive_form(const std::vector<std::string> &parts) {
  std::string s = "c:";
  for (auto &p : parts)
    s += "\\" + p;
  return parts.empty() ? "c:\\" : s;
}

Sandbox::~Sandbox() {
  if (root_fd_ >= 0)
    ::close(root_fd_);
}

bool Sandbox::attach(const std::string &dir) {
  int fd = ::open(dir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0)
    return false;
  if (root_fd_ >= 0)
    ::close(root_fd_);
  root_fd_ = fd;
  return true;
}

bool Sandbox::is_root(int fd) const {
  struct stat a, b;
  return root_fd_ >= 0 && ::fstat(fd, &a) == 0 && ::fstat(root_fd_, &b) == 0 &&
         a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

int Sandbox::open(const std::vector<std::string> &parts, int flags, mode_t mode) const {
  if (root_fd_ < 0)
    return fail(EBADF);
  flags |= O_CLOEXEC;
  if (openat2_) {
    open_how how{};
    how.flags = static_cast<uint64_t>(flags);
    how.mode = (flags & (O_CREAT | O_TMPFILE)) ? mode : 0;
    how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
    std::string rel = host_relative(parts);
    long fd = syscall(SYS_openat2, root_fd_, rel.c_str(), &how, sizeof how);
    if (fd >= 0 || errno != ENOSYS)
      return static_cast<int>(fd);
    openat2_ = false; // an older kernel: walk from now on
  }
  return walk(parts, flags, mode);
}

int Sandbox::open_parent(const std::vector<std::string> &parts) const {
  if (parts.empty())
    return fail(EBUSY);
  std::vector<std::string> parent(parts.begin(), parts.end() - 1);
  return open(parent, O_PATH | O_DIRECTORY);
}

// One component at a time from the root, each opened without following links; a link's target
// is spliced into the remaining components, from the root if it is absolute, and `..` never
// pops the root. The last component is opened with O_NOFOLLOW once it is known not to be a link.
int Sandbox::walk(const std::vector<std::string> &parts, int flags, mode_t mode) const {
  FdStack dirs;
  int root = ::fcntl(root_fd_, F_DUPFD_CLOEXEC, 0);
  if (root < 0)
    return -1;
  dirs.fds.push_back(root);
  std::deque<std::string> todo(parts.begin(), parts.end());
  int links = 0;
  while (!todo.empty()) {
    std::string part = std::move(todo.front());
    todo.pop_front();
    if (part.empty() || part == ".")
      continue;
    if (part == "..") {
      dirs.pop_to(std::max<size_t>(1, dirs.fds.size() - 1));
      continue;
    }
    struct stat st;
    bool exists = fstatat(dirs.top(), part.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
    if (!exists && (errno != ENOENT || !todo.empty()))
      return -1;
    if (exists && S_ISLNK(st.st_mode) && (!todo.empty() || !(flags & O_NOFOLLOW))) {
      if (++links > kMaxLinks)
        return fail(ELOOP);
      std::string target(4096, '\0');
      ssize_t n = readlinkat(dirs.top(), part.c_str(), target.data(), target.size());
      if (n < 0)
        return -1;
      target.resize(static_cast<size_t>(n));
      if (!target.empty() && target[0] == '/')
        dirs.pop_to(1);
      push_front_components(target, todo);
      continue;
    }
    if (todo.empty())
      return openat(dirs.top(), part.c_str(), flags | O_NOFOLLOW, mode);
    int next = openat(dirs.top(), part.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (next < 0)
      return -1;
    dirs.fds.push_back(next);
  }
  // The path names a directory already open (the root, or one reached through `..`).
  return openat(dirs.top(), ".", flags & ~(O_CREAT | O_EXCL), mode);
}

} // namespace kvrun
