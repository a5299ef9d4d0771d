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
    {KV_SYS_write, handlers::write, "dbu"},
    {KV_SYS_exit, handlers::exit, "d"},
    {KV_SYS_select, handlers::select, "dpppp"},
    {KV_SYS_time, handlers::time, "p"},
    {KV_SYS_set_errno_addr, handlers::set_errno_addr, "p"},
    {KV_SYS_getpid, handlers::getpid, ""},
    {KV_SYS_set_h_errno_addr, handlers::set_h_errno_addr, "p"},
    {KV_SYS_sysconf, handlers::sysconf, "d"},
    {KV_SYS_syslog, handlers::syslog, "ds"},
    {KV_SYS_copy_environ, handlers::copy_environ, "pu"},
    {KV_SYS_socket, handlers::socket, "ddd"},
    {KV_SYS_bind, handlers::bind, "dpu"},
    {KV_SYS_connect, handlers::connect, "dpu"},
    {KV_SYS_listen, handlers::listen, "dd"},
    {KV_SYS_accept, handlers::accept, "dpp"},
    {KV_SYS_sendto, handlers::sendto, "dpuxpu"},
    {KV_SYS_recvfrom, handlers::recvfrom, "dpuxpp"},
    {KV_SYS_send, handlers::send, "dpux"},
    {KV_SYS_recv, handlers::recv, "dpux"},
    {KV_SYS_getsockname, handlers::getsockname, "dpp"},
    {KV_SYS_getpeername, handlers::getpeername, "dpp"},
    {KV_SYS_getsockopt, handlers::getsockopt, "dxxpp"},
    {KV_SYS_setsockopt, handlers::setsockopt, "dxxpu"},
    {KV_SYS_gethostbyname, handlers::gethostbyname, "supu"},
    {KV_SYS_gethostbyaddr, handlers::gethostbyaddr, "pudpu"},
    {KV_SYS_sha, handlers::sha, "pup"},
    {KV_SYS_kill, handlers::kill, "dd"},
    {KV_SYS_os_current_time_in_ms, handlers::os_current_time_in_ms, "p"},
    {KV_SYS_shm_open, handlers::shm_open, "sxx"},
    {KV_SYS_shm_unlink, handlers::shm_unlink, "s"},
    {KV_SYS_posix_spawn, handlers::posix_spawn, "pspppp"},
    {KV_SYS_open, handlers::open, "sxo"},
    {KV_SYS_read, handlers::read, "dbu"},
    {KV_SYS_close, handlers::close, "d"},
    {KV_SYS_lseek, handlers::lseek, "ddd"},
    {KV_SYS_mkdir, handlers::mkdir, "so"},
    {KV_SYS_rmdir, handlers::rmdir, "s"},
    {KV_SYS_opendir, handlers::opendir, "s"},
    {KV_SYS_readdir, handlers::readdir, "up"},
    {KV_SYS_closedir, handlers::closedir, "u"},
    {KV_SYS_remove, handlers::remove, "s"},
    {KV_SYS_rename, handlers::rename, "ss"},
    {KV_SYS_stat, handlers::stat, "sp"},
    {KV_SYS_unlink, handlers::unlink, "s"},
    {KV_SYS_access, handlers::access, "sx"},
    {KV_SYS_fstat, handlers::fstat, "dp"},
    {KV_SYS_fsync, handlers::fsync, "d"},
    {KV_SYS_ftruncate, handlers::ftruncate, "dd"},
    {KV_SYS_getcwd, handlers::getcwd, "pu"},
    {KV_SYS_fcntl, handlers::fcntl, "ddd"},
    {KV_SYS_chdir, handlers::chdir, "s"},
    {KV_SYS_fchdir, handlers::fchdir, "d"},
    {KV_SYS_truncate, handlers::truncate, "sd"},
};

#define KV_CALL_NAME_ENTRY(number, name) {number, #name},
constexpr struct {
  int32_t number;
  std::string_view name;
} kNames[] = {KV_CALL_LIST(KV_CALL_NAME_ENTRY)};
#undef KV_CALL_NAME_ENTRY

// "\"ab\\n\"..." for the first bytes of a guest buffer; the address if it cannot be read.
std::string describe_buffer(const AddressSpace &memory, uint32_t addr, uint32_t length) {
  constexpr uint32_t kShown = 16;
  uint8_t bytes[kShown];
  uint32_t n = length < kShown ? length : kShown;
  char b[16];
  if (memory.read(addr, bytes, n) != 0) {
    snprintf(b, sizeof b, "0x%08x", addr);
    return b;
  }
  std::string s = "\"";
  for (uint32_t i = 0; i < n; ++i) {
    uint8_t c = bytes[i];
    if (c == '\n') s += "\\n";
    else if (c == '"' || c == '\\') s += std::string("\\") + static_cast<char>(c);
    else if (c >= 0x20 && c < 0x7f) s += static_cast<char>(c);
    else {
      snprintf(b, sizeof b, "\\x%02x", c);
      s += b;
    }
  }
  return s + (n < length ? "\"..." : "\"");
}

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
    case 'o': snprintf(b, sizeof b, "0%o", w); break;
    case 'b': // a buffer whose length is the next word: its first bytes, escaped
      if (i + 1 < 7) {
        text += (i ? ", " : "") + describe_buffer(process.memory, w, request.w[i + 1]);
        continue;
      }
      [[fallthrough]];
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
