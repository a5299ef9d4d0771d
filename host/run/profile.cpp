#include "run/profile.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "loader/symbolizer.h"

namespace kvrun {

std::string profile_report(const InstructionCounter &counter,
                           const std::vector<LoadedObject> &objects) {
  std::map<std::string, uint64_t> by_function;
  // Blocks are few next to their runs: name each once.
  counter.each_block([&](uint32_t addr, uint64_t instructions) {
    by_function[function_at(objects, addr)] += instructions;
  });
  std::vector<std::pair<uint64_t, std::string>> rows;
  uint64_t total = 0;
  for (auto &[name, n] : by_function) {
    rows.emplace_back(n, name);
    total += n;
  }
  std::sort(rows.begin(), rows.end(),
            [](auto &a, auto &b) { return a.first != b.first ? a.first > b.first : a.second < b.second; });
  char line[64];
  snprintf(line, sizeof line, "%14s %7s  %s\n", "instructions", "share", "function");
  std::string out = line;
  for (auto &[n, name] : rows) {
    snprintf(line, sizeof line, "%14llu %6.2f%%  ", static_cast<unsigned long long>(n),
             total ? 100.0 * static_cast<double>(n) / static_cast<double>(total) : 0.0);
    out += line + name + "\n";
  }
  return out;
}

} // namespace kvrun
