// Why guest execution stopped when it should not have, and kvrun's exit status for it.
#pragma once

#include <cstdint>
#include <string>

namespace kvrun {

constexpr int kStatusTimeLimit = 124;
constexpr int kStatusInternal = 125;
constexpr int kStatusUndefined = 132;
constexpr int kStatusMemoryFault = 139;

struct Fault {
  enum Kind {
    read_unmapped,
    write_unmapped,
    fetch_unmapped,
    read_protected,
    write_protected,
    fetch_protected,
    read_unaligned,
    write_unaligned,
    fetch_unaligned,
    undefined_instruction,
    exception, // another CPU exception (svc, bkpt...)
    time_limit,
    internal, // the emulator itself failed
  };
  Kind kind = internal;
  uint32_t address = 0; // the memory address, or the instruction word
  uint32_t pc = 0;
  uint32_t lr = 0;      // for failed fetches: where the jump came from, if known
  std::string detail; // for internal faults

  int exit_status() const;
  // "read from unmapped address 0x00000000", without the location.
  std::string what() const;
};

} // namespace kvrun
