// posix_spawn, read from guest memory: the program, its arguments and environment, and what its
// standard descriptors become after the file actions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "services/process.h"

namespace kvrun {

struct SpawnPlan {
  std::string program; // host path of the program, inside the sandbox
  std::vector<std::string> args, environment;
  // Host descriptors for the child's 0, 1 and 2 (-1: closed); `opened` are ours to close.
  std::array<int, 3> console{-1, -1, -1};
  std::vector<int> opened;
  int program_fd = -1;

  SpawnPlan() = default;
  SpawnPlan(const SpawnPlan &) = delete;
  SpawnPlan &operator=(const SpawnPlan &) = delete;
  ~SpawnPlan();
};

// Reads posix_spawn's words w2..w6 (path, file actions, attributes, argv, envp) into `plan`:
// 0, or the library's error number.
int read_spawn_plan(Process &, uint32_t path, uint32_t actions, uint32_t attributes,
                    uint32_t argv, uint32_t envp, SpawnPlan &plan);

} // namespace kvrun
