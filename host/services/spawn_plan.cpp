#include "services/spawn_plan.h"

#include <fcntl.h>
#include <kv/abi.h>
#include <unistd.h>

#include <set>

#include "services/file_support.h"

namespace kvrun {
namespace {

constexpr uint32_t kMostActions = 1024;
constexpr uint32_t kMostStrings = 4096;
constexpr uint32_t kLongestString = 64 * 1024;

// A null-terminated guest array of strings.
int read_strings(const Process &p, uint32_t addr, std::vector<std::string> &out) {
  for (uint32_t i = 0;; ++i) {
    uint32_t s;
    if (p.memory.read_u32(addr + 4 * i, s) != 0)
      return KV_EFAULT;
    if (s == 0)
      return 0;
    if (i == kMostStrings)
      return KV_E2BIG;
    std::string text;
    switch (p.memory.read_string(s, kLongestString, text)) {
    case StringStatus::fault: return KV_EFAULT;
    case StringStatus::too_long: return KV_E2BIG;
    case StringStatus::ok: out.push_back(std::move(text));
    }
  }
}

int open_in_sandbox(Process &p, uint32_t path, int flags, int mode, int &fd) {
  GuestPath gp = files::guest_path(p, path);
  if (gp.error)
    return gp.error;
  Sandbox *sb = files::sandbox(p);
  if (!sb)
    return from_host_errno(errno);
  fd = sb->open(gp.parts, flags, static_cast<mode_t>(mode));
  return fd < 0 ? from_host_errno(errno) : 0;
}

// The actions apply in order to the child's view of the descriptors: its 0 to 2 are
// plan.console, the parent's others stay reachable for dup2 until an action closes them.
int apply_action(Process &p, const kv_spawn_action &a, SpawnPlan &plan,
                 std::set<int32_t> &closed) {
  if (a.fd < 0)
    return KV_EBADF;
  switch (a.kind) {
  case KV_SPAWN_CLOSE:
    if (a.fd < 3)
      plan.console[a.fd] = -1;
    else
      closed.insert(a.fd);
    return 0; // the child inherits nothing above 2
  case KV_SPAWN_DUP2: {
    int from = -1;
    if (a.fd < 3) {
      from = plan.console[a.fd];
    } else if (auto d = p.descriptors.find(a.fd); d && !closed.count(a.fd)) {
      from = d->host_fd;
    }
    if (from < 0)
      return KV_EBADF;
    if (a.arg > 2)
      return KV_EINVAL; // only the standard descriptors pass to the child
    plan.console[a.arg] = from;
    return 0;
  }
  case KV_SPAWN_OPEN: {
    if (a.fd > 2)
      return KV_EINVAL;
    int flags;
    if (!files::host_open_flags(static_cast<uint32_t>(a.oflag), flags))
      return KV_EINVAL;
    int fd;
    if (int e = open_in_sandbox(p, a.arg, flags, a.mode, fd))
      return e;
    plan.opened.push_back(fd);
    plan.console[a.fd] = fd;
    return 0;
  }
  default: return KV_EINVAL;
  }
}

} // namespace

SpawnPlan::~SpawnPlan() {
  for (int fd : opened)
    close(fd);
  if (program_fd >= 0)
    close(program_fd);
}

int read_spawn_plan(Process &p, uint32_t path, uint32_t actions, uint32_t attributes,
                    uint32_t argv, uint32_t envp, SpawnPlan &plan) {
  if (attributes != 0) {
    kv_spawnattr attr;
    if (p.memory.read(attributes, &attr, sizeof attr) != 0)
      return KV_EFAULT;
    if (attr.flags & ~7)
      return KV_EINVAL;
  }
  if (int e = open_in_sandbox(p, path, O_RDONLY, 0, plan.program_fd))
    return e;
  plan.program = "/proc/self/fd/" + std::to_string(plan.program_fd);

  for (int i = 0; i < 3; ++i)
    if (auto d = p.descriptors.find(i))
      plan.console[i] = d->host_fd;
  if (actions != 0) {
    kv_spawn_file_actions fa;
    if (p.memory.read(actions, &fa, sizeof fa) != 0)
      return KV_EFAULT;
    if (fa.count < 0 || static_cast<uint32_t>(fa.count) > kMostActions)
      return KV_EINVAL;
    std::set<int32_t> closed;
    for (int32_t i = 0; i < fa.count; ++i) {
      kv_spawn_action a;
      if (p.memory.read(fa.actions + i * sizeof a, &a, sizeof a) != 0)
        return KV_EFAULT;
      if (int e = apply_action(p, a, plan, closed))
        return e;
    }
  }
  if (argv != 0) {
    if (int e = read_strings(p, argv, plan.args))
      return e;
  }
  if (plan.args.empty()) {
    std::string name;
    p.memory.read_string(path, kLongestString, name);
    plan.args.push_back(name);
  }
  if (envp != 0) {
    if (int e = read_strings(p, envp, plan.environment))
      return e;
  } else {
    plan.environment = p.environment;
  }
  return 0;
}

} // namespace kvrun
