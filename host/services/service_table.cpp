#include "services/service_table.h"

#include <cstdio>

#include "services/handlers.h"
#include "services/process.h"

namespace kvrun {
namespace {

using HandlerFn = Outcome (*)(Process &, const Request &);

struct StandardService {
  int32_t number;
  HandlerFn handler;
  std::string_view args;
};

// The services kvrun provides; every other number of KV_CALL_LIST fails with ENOSYS.
constexpr StandardService kStandard[] = {
    {KV_SYS_mmap, handlers::mmap, "pxxxdx"},
    {KV_SYS_munmap, handlers::munmap, "px"},
    {KV_SYS_puts, handlers::puts, "su"},
    {KV_SYS_write, handlers::write, "dpu"},
    {KV_SYS_exit, handlers::exit, "d"},
    {KV_SYS_select, handlers::select, "dpppp"},
    {KV_SYS_time, handlers::time, "p"},
    {KV_SYS_set_errno_addr, handlers::set_errno_addr, "p"},
    {KV_SYS_getpid, handlers::getpid, ""},
    {KV_SYS_set_h_errno_addr, handlers::set_h_errno_addr, "p"},
    {KV_SYS_sysconf, handlers::sysconf, "d"},
    {KV_SYS_syslog, handlers::syslog, "ds"},
    {KV_SYS_copy_environ, handlers::copy_environ, "pu"},
};

#define KV_CALL_NAME_ENTRY(number, name) {number, #name},
constexpr struct {
  int32_t number;
  std::string_view name;
} kNames[] = {KV_CALL_LIST(KV_CALL_NAME_ENTRY)};
#undef KV_CALL_NAME_ENTRY

} // namespace

ServiceTable ServiceTable::standard() {
  ServiceTable t;
  for (auto &n : kNames)
    t.entries_[n.number].name = n.name;
  for (auto &s : kStandard) {
    t.entries_[s.number].handler = s.handler;
    t.entries_[s.number].args = s.args;
  }
  return t;
}

const Service *ServiceTable::find(int32_t number) const {
  if (number < 0 || number >= KV_SYS_COUNT || entries_[number].name.empty())
    return nullptr;
  return &entries_[number];
}

void ServiceTable::set(int32_t number, Service service) {
  if (number >= 0 && number < KV_SYS_COUNT)
    entries_[number] = std::move(service);
}

std::string_view ServiceTable::name_of(int32_t number) const {
  if (number == KV_CALL_UNSUPPORTED)
    return "unsupported";
  const Service *s = find(number);
  return s ? s->name : "unknown";
}

std::string describe_request(const Process &process, const Request &request) {
  std::string text(process.services.name_of(request.number));
  const Service *s = process.services.find(request.number);
  std::string_view kinds = s ? s->args : "xxxxxxx";
  text += '(';
  char b[32];
  for (size_t i = 0; i < kinds.size() && i < 7; ++i) {
    uint32_t w = request.w[i];
    std::string str;
    switch (kinds[i]) {
    case 'd': snprintf(b, sizeof b, "%d", static_cast<int32_t>(w)); break;
    case 'u': snprintf(b, sizeof b, "%u", w); break;
    case 's':
      if (process.memory.read_string(w, 64, str) == StringStatus::ok) {
        text += (i ? ", \"" : "\"") + str + "\"";
        continue;
      }
      [[fallthrough]];
    default: snprintf(b, sizeof b, "0x%08x", w); break;
    }
    text += (i ? ", " : "") + std::string(b);
  }
  return text + ')';
}

} // namespace kvrun
