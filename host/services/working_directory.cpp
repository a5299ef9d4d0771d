// The guest's working directory: chdir, fchdir, getcwd. It is kept as a guest path in
// Process::cwd ("/a/b"), checked against the root when set; getcwd answers in the drive form.
#include <fcntl.h>
#include <unistd.h>

#include "services/file_support.h"
#include "services/handlers.h"

namespace kvrun::handlers {
namespace {

std::string guest_form(const std::vector<std::string> &parts) {
  std::string s;
  for (auto &part : parts)
    s += "/" + part;
  return s.empty() ? "/" : s;
}

// Makes `path` the working directory if it names a directory inside the root.
Outcome change_to(Process &p, const GuestPath &path) {
  if (path.error)
    return failure(path.error);
  Sandbox *s = files::sandbox(p);
  int fd = s ? s->open(path.parts, O_PATH | O_DIRECTORY) : -1;
  if (fd < 0)
    return files::host_failure();
  ::close(fd);
  p.cwd = guest_form(path.parts);
  return success(0);
}

} // namespace

Outcome chdir(Process &p, const Request &r) { return change_to(p, files::guest_path(p, r.w[0])); }

Outcome fchdir(Process &p, const Request &r) {
  auto d = p.descriptors.find(static_cast<int32_t>(r.w[0]));
  if (!d)
    return failure(KV_EBADF);
  struct stat st;
  if (d->path.empty() || ::fstat(d->host_fd, &st) != 0 || !S_ISDIR(st.st_mode))
    return failure(KV_ENOTDIR);
  return change_to(p, parse_guest_path(d->path, {}));
}

// getcwd(buffer, size): 0 after storing "c:\a\b" with its NUL.
Outcome getcwd(Process &p, const Request &r) {
  GuestPath cwd = parse_guest_path(p.cwd, {});
  std::string text = drive_form(cwd.error ? std::vector<std::string>{} : cwd.parts);
  if (r.w[1] == 0)
    return failure(KV_EINVAL);
  if (r.w[1] < text.size() + 1)
    return failure(KV_ERANGE);
  if (p.memory.write(r.w[0], text.c_str(), static_cast<uint32_t>(text.size() + 1)))
    return failure(KV_EFAULT);
  return success(0);
}

} // namespace kvrun::handlers
