// The guest's descriptors and the host objects behind them. For now only the console: 0, 1 and
// 2 stand for kvrun's own standard input, output and error.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include <unistd.h>

namespace kvrun {

struct Descriptor {
  Descriptor() = default;
  Descriptor(int host_fd, bool console, bool owned = false, std::string path = {})
      : host_fd(host_fd), console(console), owned(owned), path(std::move(path)) {}
  int host_fd = -1;
  bool console = false;
  bool owned = false; // the table closes host_fd when the descriptor goes
  std::string path;   // the guest path a file or directory was opened by, for fchdir
  bool socket = false; // made by socket or accept; saves asking the host on every request
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

  // Guest descriptors are numbered below this limit (kvrun --max-files).
  int32_t limit = 256;
  ~DescriptorTable() {
    for (auto &[fd, d] : entries_)
      if (d.owned)
        ::close(d.host_fd);
  }
  DescriptorTable(const DescriptorTable &) = delete;
  DescriptorTable &operator=(const DescriptorTable &) = delete;
  // The lowest free descriptor at or above `from` gets `d`; -1 (EMFILE) if none is below the
  // limit, and then `d` is not taken.
  int32_t add(Descriptor d, int32_t from = 0) {
    for (int32_t fd = from < 0 ? 0 : from; fd < limit; ++fd)
      if (!entries_.count(fd)) {
        entries_[fd] = std::move(d);
        return fd;
      }
    return -1;
  }
  // Removes the descriptor and closes what it owns; false if it was not open.
  bool close(int32_t fd) {
    auto it = entries_.find(fd);
    if (it == entries_.end())
      return false;
    if (it->second.owned)
      ::close(it->second.host_fd);
    entries_.erase(it);
    return true;
  }

private:
  std::map<int32_t, Descriptor> entries_;
};

} // namespace kvrun
