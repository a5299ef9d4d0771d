#include "services/errno_names.h"

#include <kv/abi.h>

#include <cstring>

namespace kvrun {
namespace {

struct Entry {
  std::string_view name;
  int value;
};

#define KV_ERRNO_TABLE_ENTRY(name, value) {#name, value},
constexpr Entry kErrnos[] = {KV_ERRNO_LIST(KV_ERRNO_TABLE_ENTRY)};
#undef KV_ERRNO_TABLE_ENTRY

} // namespace

std::optional<int> errno_by_name(std::string_view name) {
  for (auto &e : kErrnos)
    if (e.name == name)
      return e.value;
  return std::nullopt;
}

std::string_view errno_name(int value) {
  for (auto &e : kErrnos)
    if (e.value == value)
      return e.name;
  return {};
}

int from_host_errno(int host_errno) {
  // Host names match the library's wherever both have the error; glibc spells out the name.
  const char *name = strerrorname_np(host_errno);
  if (!name)
    return KV_EFAIL;
  auto value = errno_by_name(name);
  return value ? *value : KV_EFAIL;
}

} // namespace kvrun
