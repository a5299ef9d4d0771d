#include "cpu/fault.h"

#include <cstdio>

namespace kvrun {

int Fault::exit_status() const {
  switch (kind) {
  case time_limit: return kStatusTimeLimit;
  case undefined_instruction:
  case exception: return kStatusUndefined;
  case internal: return kStatusInternal;
  default: return kStatusMemoryFault;
  }
}

std::string Fault::what() const {
  char b[96];
  const char *access[] = {"read from", "write to", "instruction fetch from"};
  switch (kind) {
  case read_unmapped:
  case write_unmapped:
  case fetch_unmapped:
    snprintf(b, sizeof b, "%s unmapped address 0x%08x", access[kind - read_unmapped], address);
    break;
  case read_protected:
  case write_protected:
  case fetch_protected:
    snprintf(b, sizeof b, "%s protected address 0x%08x", access[kind - read_protected], address);
    break;
  case read_unaligned:
  case write_unaligned:
  case fetch_unaligned:
    // Unicorn does not say which address was misaligned.
    snprintf(b, sizeof b, "unaligned %s memory", access[kind - read_unaligned]);
    break;
  case undefined_instruction:
    snprintf(b, sizeof b, "undefined instruction 0x%08x", address);
    break;
  case exception: return "unexpected CPU exception (" + detail + ")";
  case time_limit: return "time limit exceeded";
  case internal: return "emulator error (" + detail + ")";
  }
  return b;
}

} // namespace kvrun
