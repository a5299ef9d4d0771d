// The guest's descriptors and the host objects behind them. For now only the console: 0, 1 and
// 2 stand for kvrun's own standard input, output and error.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

namespace kvrun {

struct Descriptor {
  int host_fd;
  bool console;
};

class DescriptorTable {
public:
  DescriptorTable() : entries_{{0, {0, true}}, {1, {1, true}}, {2, {2, true}}} {}
  std::optional<Descriptor> find(int32_t fd) const {
    auto it = entries_.find(fd);
    return it == entries_.end() ? std::nullopt : std::optional(it->second);
  }
  void set(int32_t fd, Descriptor d) { entries_[fd] = d; }
  void remove(int32_t fd) { entries_.erase(fd); }

private:
  std::map<int32_t, Descriptor> entries_;
};

} // namespace kvrun
