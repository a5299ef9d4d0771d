// The sandbox: guest paths name files below one host directory, the root, which is drive c:.
// Lookups start at an O_PATH descriptor of the root and never leave it: `..` stops at the root,
// absolute symbolic links restart from it, and links pointing elsewhere resolve inside it.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace kvrun {

// A guest path as the components below the root, `.` and `..` already applied; or an error in
// the library's numbering.
struct GuestPath {
  std::vector<std::string> parts;
  int error = 0;
  bool directory = false; // ends in a separator, "." or "..": must name a directory
};

// Accepts "c:\a\b", "C:/a/b", "/a/b" and paths relative to `cwd` (itself a GuestPath's
// components). Other drives, empty paths and over-long paths are errors.
GuestPath parse_guest_path(std::string_view path, const std::vector<std::string> &cwd);
// "a/b", or "." for the root: what the host resolves below the root.
std::string host_relative(const std::vector<std::string> &parts);
// "c:\a\b", or "c:\" for the root: the form getcwd gives.
std::string drive_form(const std::vector<std::string> &parts);

constexpr size_t kMaxGuestPath = 4095;

class Sandbox {
public:
  Sandbox() = default;
  ~Sandbox();
  Sandbox(const Sandbox &) = delete;
  Sandbox &operator=(const Sandbox &) = delete;

  // Takes `dir` as the root; false (host errno set) if it cannot be opened.
  bool attach(const std::string &dir);
  bool attached() const { return root_fd_ >= 0; }
  // Whether the host descriptor `fd` is the root directory itself.
  bool is_root(int fd) const;
  // Tests take the path-walking fallback on kernels that have openat2 as well.
  void use_openat2(bool on) { openat2_ = on; }

  // open(2) of a path below the root (host flags; O_CLOEXEC is added). The host descriptor,
  // or -1 with host errno set.
  int open(const std::vector<std::string> &parts, int flags, mode_t mode = 0) const;
  // The directory that holds the last component, as an O_PATH descriptor, for the calls that
  // act on a name itself (mkdir, unlink, rename...). The root has no parent: EBUSY.
  int open_parent(const std::vector<std::string> &parts) const;

private:
  int walk(const std::vector<std::string> &parts, int flags, mode_t mode) const;

  int root_fd_ = -1;
  mutable bool openat2_ = true;
};

} // namespace kvrun
