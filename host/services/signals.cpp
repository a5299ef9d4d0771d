// kill: the program's own pid ends it as a signal would; its spawned children get the real
// signal; any other process is out of reach (guest words may name anything on the host).
#include <kv/abi.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "services/errno_names.h"
#include "services/handlers.h"

namespace kvrun::handlers {

// Status of a program ended by signal n, as a shell reports it.
constexpr int kSignalStatusBase = 128;

Outcome kill(Process &p, const Request &r) {
  int32_t pid = static_cast<int32_t>(r.w[0]);
  int32_t sig = static_cast<int32_t>(r.w[1]);
  if (sig < 0 || sig >= KV_NSIG)
    return failure(KV_EINVAL);
  if (pid > 0 && pid == ::getpid()) {
    if (sig != 0)
      p.exit_status = kSignalStatusBase + sig;
    return success(0);
  }
  auto child = std::find(p.children.begin(), p.children.end(), pid);
  if (pid <= 0 || child == p.children.end())
    return failure(KV_EPERM);
  // A child that has ended is reaped here, so that its pid is never reused under us.
  int status;
  if (waitpid(pid, &status, WNOHANG) == pid) {
    p.children.erase(child);
    return failure(KV_ESRCH);
  }
  // Guest and host numbers agree for 1 to 31.
  if (::kill(pid, sig) != 0)
    return failure(from_host_errno(errno));
  return success(0);
}

} // namespace kvrun::handlers
