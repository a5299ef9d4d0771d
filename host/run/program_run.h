// Runs a program from start to exit: memory, loading, initialisation, main, finalisation.
#pragma once

#include <cstdint>

#include "cli/options.h"

namespace kvrun {

constexpr int kStatusUsage = 125;

struct RunResult {
  int status;            // kvrun's exit status
  uint64_t instructions; // guest instructions executed (counted only with Options::count)
};

// Diagnostics (load errors, fault reports, the instruction count) go to options.stderr_fd.
RunResult run_program(const Options &options);

} // namespace kvrun
