// Everything the services know about the running program: its memory, descriptors, directory,
// environment, errno cells and the sinks kvrun writes to. Every handler receives it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "memory/address_space.h"
#include "memory/region_allocator.h"
#include "services/descriptor_table.h"
#include "services/fault_injection.h"
#include "services/file_state.h"
#include "services/service_table.h"

namespace kvrun {

struct Options;

class Process {
public:
  Process(AddressSpace &memory, RegionAllocator &mappings)
      : memory(memory), mappings(mappings), services(ServiceTable::standard()) {}

  AddressSpace &memory;
  RegionAllocator &mappings;
  ServiceTable services;
  FaultInjector faults;
  DescriptorTable descriptors;
  FileState files; // sandbox, directory streams

  std::string root = ".";               // drive c: on the host
  std::string cwd = "/";                // inside the root
  std::vector<std::string> environment; // "NAME=value", in order

  std::optional<uint32_t> errno_cell, h_errno_cell; // guest addresses from calls 35 and 49
  std::optional<int> exit_status;                   // set by call 24

  int log_fd = -1;   // debug log and syslog lines
  int trace_fd = -1; // one line per request
  // Waits (select's time-out) end by this time; the CPU loop then reports the time limit.
  std::optional<std::chrono::steady_clock::time_point> deadline;

  // posix_spawn runs children with this run's options; kill may signal only those children.
  const Options *options = nullptr;
  std::vector<int> children; // host pids
};

} // namespace kvrun
