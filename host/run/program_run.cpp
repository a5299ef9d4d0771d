#include "run/program_run.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>

#include "cpu/cpu.h"
#include "cpu/engine.h"
#include "loader/load_error.h"
#include "loader/loader.h"
#include "memory/address_space.h"
#include "memory/layout.h"
#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "run/fault_report.h"
#include "run/initial_stack.h"
#include "run/profile.h"
#include "run/service_bridge.h"
#include "services/host_output.h"
#include "services/process.h"

namespace kvrun {
namespace {

// A sink given on the command line: "-" is kvrun's standard error, a path a file of our own.
class Sink {
public:
  Sink() = default;
  Sink(const Sink &) = delete;
  Sink &operator=(const Sink &) = delete;
  ~Sink() {
    if (owned_)
      ::close(fd_);
  }
  bool open(const std::string &path, int stderr_fd) {
    if (path.empty())
      return true;
    if (path == "-") {
      fd_ = stderr_fd;
      return true;
    }
    fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    owned_ = fd_ >= 0;
    return owned_;
  }
  int fd() const { return fd_; }

private:
  int fd_ = -1;
  bool owned_ = false;
};

// Memory every program starts with: the sentinel page and the stack.
void map_fixed_regions(AddressSpace &memory) {
  memory.map(layout::kSentinelPage, layout::kPageSize, kProtRead | kProtExec);
  // Filled with an undefined instruction (not the trap), so running into it is a clean fault.
  std::vector<uint32_t> fill(layout::kPageSize / 4, 0xE7F000F0u);
  memory.poke(layout::kSentinelPage, fill.data(), layout::kPageSize);
  memory.map(layout::kStackTop - layout::kDefaultStackSize, layout::kDefaultStackSize,
             kProtRead | kProtWrite);
}

struct Stop {
  bool stopped = false;
  int status = 0;
};

// What a finished call means for the program: go on, or stop with a status.
Stop after_call(const CallResult &r, const Process &process, const std::vector<LoadedObject> &objects,
                int err_fd) {
  switch (r.kind) {
  case CallResult::returned: return {};
  case CallResult::stopped: return {true, *process.exit_status & 0xFF};
  case CallResult::faulted:
    write_all(err_fd, fault_report(r.fault, objects));
    return {true, r.fault.exit_status()};
  }
  return {};
}

int usage_error(const Options &o, const std::string &message) {
  write_all(o.stderr_fd, "kvrun: " + message + "\n");
  return kStatusUsage;
}

} // namespace

RunResult run_program(const Options &o) {
  struct stat st;
  if (stat(o.root.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
    return {usage_error(o, "root " + o.root + " is not a directory"), 0};
  Sink log, trace;
  if (!log.open(o.log_path, o.stderr_fd))
    return {usage_error(o, "cannot open log " + o.log_path + ": " + std::strerror(errno)), 0};
  if (!trace.open(o.trace_path, o.stderr_fd))
    return {usage_error(o, "cannot open trace " + o.trace_path + ": " + std::strerror(errno)), 0};
  Sink profile;
  if (!profile.open(o.profile_path, o.stderr_fd))
    return {usage_error(o, "cannot open profile " + o.profile_path + ": " + std::strerror(errno)), 0};

  try {
    Engine engine;
    AddressSpace memory(engine.get());
    map_fixed_regions(memory);
    RegionAllocator mappings(memory, layout::kMmapBase, layout::kMmapEnd,
                             o.memory_limit.value_or(UINT64_MAX));
    Process process(memory, mappings);
    process.root = o.root;
    process.descriptors.limit = static_cast<int32_t>(o.max_files);
    process.environment = o.environment;
    process.log_fd = log.fd();
    process.trace_fd = trace.fd();
    process.options = &o;
    process.descriptors.set(0, {o.stdin_fd, true});
    process.descriptors.set(1, {o.stdout_fd, true});
    process.descriptors.set(2, {o.stderr_fd, true});
    for (auto &rule : o.faults)
      process.faults.add(rule);

    LoadedProgram program;
    try {
      program = load_program(o.program, o.library_path, memory);
    } catch (const LoadError &e) {
      write_all(o.stderr_fd, std::string("kvrun: ") + e.what() + "\n");
      return {e.status, 0};
    }
    auto stack = build_initial_stack(memory, layout::kStackTop, layout::kDefaultStackSize / 2, o.args);
    if (!stack)
      return {usage_error(o, "the program's arguments do not fit on its stack"), 0};

    Cpu cpu(engine, layout::kSentinelPage);
    if (o.count || !o.profile_path.empty())
      cpu.count_instructions();
    if (o.time_limit) {
      auto limit = std::chrono::duration_cast<Watchdog::Clock::duration>(
          std::chrono::duration<double>(*o.time_limit));
      process.deadline = Watchdog::Clock::now() + limit;
      cpu.set_deadline(*process.deadline);
    }
    ServiceBridge bridge(process);
    auto finish = [&](int status) {
      uint64_t n = cpu.instructions();
      if (o.count)
        write_all(o.stderr_fd, "kvrun: " + std::to_string(n) + " guest instructions\n");
      if (profile.fd() >= 0 && cpu.counter())
        write_all(profile.fd(), profile_report(*cpu.counter(), program.objects));
      return RunResult{status, n};
    };

    for (uint32_t fn : program.init_calls)
      if (Stop s = after_call(cpu.call(fn, {}, stack->sp, bridge), process, program.objects, o.stderr_fd); s.stopped)
        return finish(s.status);
    const uint32_t main_args[] = {static_cast<uint32_t>(o.args.size()), stack->argv};
    CallResult main_result = cpu.call(program.entry, main_args, stack->sp, bridge);
    if (Stop s = after_call(main_result, process, program.objects, o.stderr_fd); s.stopped)
      return finish(s.status);
    int status = static_cast<int>(main_result.value & 0xFF);
    for (uint32_t fn : program.fini_calls)
      if (Stop s = after_call(cpu.call(fn, {}, stack->sp, bridge), process, program.objects, o.stderr_fd); s.stopped)
        return finish(s.status);
    return finish(status);
  } catch (const std::exception &e) {
    write_all(o.stderr_fd, std::string("kvrun: internal error: ") + e.what() + "\n");
    return {kStatusUsage, 0};
  }
}

} // namespace kvrun
