#include "run/fault_report.h"

#include <cstdio>

#include "loader/symbolizer.h"

namespace kvrun {

std::string fault_report(const Fault &fault, const std::vector<LoadedObject> &objects) {
  char pc[16];
  snprintf(pc, sizeof pc, "0x%08x", fault.pc);
  std::string where = std::string(" at pc ") + pc + " (" + describe_address(objects, fault.pc) + ")";
  if (fault.lr) {
    char lr[16];
    snprintf(lr, sizeof lr, "0x%08x", fault.lr);
    where += std::string(", lr ") + lr + " (" + describe_address(objects, fault.lr & ~1u) + ")";
  }
  switch (fault.kind) {
  case Fault::time_limit: return "kvrun: time limit exceeded" + where + "\n";
  case Fault::internal: return "kvrun: internal error: " + fault.what() + where + "\n";
  default: return "kvrun: fault: " + fault.what() + where + "\n";
  }
}

} // namespace kvrun
