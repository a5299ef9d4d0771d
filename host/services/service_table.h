// The services by call number: name, handler, and how to show the arguments. One static table
// holds the standard services; each process gets its own copy, which tests may change (to
// record requests or script answers).
#pragma once

#include <kv/abi.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "services/request.h"

namespace kvrun {

class Process;

using Handler = std::function<Outcome(Process &, const Request &)>;

struct Service {
  std::string_view name;
  Handler handler;       // empty: the call fails with ENOSYS
  std::string_view args; // one letter per word: d signed, u unsigned, x hex, p pointer, s string
};

class ServiceTable {
public:
  static ServiceTable standard();
  // The entry for a number, or null for numbers outside the table (-1 included).
  const Service *find(int32_t number) const;
  // Replaces (or adds) the entry for a number of the table.
  void set(int32_t number, Service service);
  // The trace name: the call's name, "unsupported" for -1, "unknown" for anything else.
  std::string_view name_of(int32_t number) const;

private:
  std::array<Service, KV_SYS_COUNT> entries_;
};

// "write(1, 0x0001a2b4, 12)"; strings are shown when they can be read.
std::string describe_request(const Process &process, const Request &request);

} // namespace kvrun
