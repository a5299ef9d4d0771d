// posix_spawn: the child is a fork of this kvrun that runs the named guest program with the
// same options, its standard descriptors set by the file actions.
#include <kv/abi.h>
#include <unistd.h>

#include "cli/options.h"
#include "run/program_run.h"
#include "services/handlers.h"
#include "services/spawn_plan.h"

namespace kvrun::handlers {
namespace {

// posix_spawn reports errors as its result as well as in errno.
Outcome spawn_failure(int error) { return {static_cast<uint32_t>(error), error, false}; }

[[noreturn]] void run_child(const Process &p, const SpawnPlan &plan) {
  Options o = *p.options;
  o.program = plan.program;
  o.args = plan.args;
  o.environment = plan.environment;
  o.stdin_fd = plan.console[0];
  o.stdout_fd = plan.console[1];
  o.stderr_fd = plan.console[2];
  // The parent's other descriptors are not the child's.
  for (int32_t fd = 3; fd < p.descriptors.limit; ++fd)
    if (auto d = p.descriptors.find(fd); d && d->owned)
      ::close(d->host_fd);
  _exit(run_program(o).status);
}

} // namespace

// posix_spawn(pid pointer, path, file actions, attributes, argv, envp)
Outcome posix_spawn(Process &p, const Request &r) {
  if (!p.options)
    return spawn_failure(KV_ENOSYS);
  if (r.w[0] != 0 && !p.memory.accessible(r.w[0], 4, 2))
    return spawn_failure(KV_EFAULT);
  SpawnPlan plan;
  if (int e = read_spawn_plan(p, r.w[1], r.w[2], r.w[3], r.w[4], r.w[5], plan))
    return spawn_failure(e);
  pid_t pid = ::fork();
  if (pid < 0)
    return spawn_failure(KV_EAGAIN);
  if (pid == 0)
    run_child(p, plan);
  p.children.push_back(pid);
  if (r.w[0] != 0)
    p.memory.write_u32(r.w[0], static_cast<uint32_t>(pid));
  return success(0);
}

} // namespace kvrun::handlers
