#include "loader/library_search.h"

#include <sys/stat.h>

namespace kvrun {
namespace {
bool regular_file(const std::string &path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}
} // namespace

std::optional<std::string> find_library(const std::string &name,
                                        const std::vector<std::string> &dirs) {
  if (name.find('/') != std::string::npos)
    return regular_file(name) ? std::optional(name) : std::nullopt;
  for (auto &dir : dirs) {
    std::string path = dir.empty() || dir.back() == '/' ? dir + name : dir + "/" + name;
    if (regular_file(path))
      return path;
  }
  return std::nullopt;
}

} // namespace kvrun
