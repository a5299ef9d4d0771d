// syslog and puts: message text to the log sink, one line each.
#include <kv/abi.h>

#include <string>

#include "services/handlers.h"
#include "services/host_output.h"

namespace kvrun::handlers {
namespace {

constexpr uint32_t kLongestMessage = 64 * 1024;

void log_line(Process &p, std::string text) {
  if (text.empty() || text.back() != '\n')
    text += '\n';
  write_all(p.log_fd, text);
}

} // namespace

// syslog(priority, text): the text as is; longer messages are cut at 64 KiB.
Outcome syslog(Process &p, const Request &r) {
  std::string text;
  if (p.memory.read_string(r.w[1], kLongestMessage, text) == StringStatus::fault)
    return failure(KV_EFAULT);
  log_line(p, std::move(text));
  return success(0);
}

// puts(text, length): `length` bytes of text, or up to its terminating zero when length is 0.
Outcome puts(Process &p, const Request &r) {
  std::string text;
  if (r.w[1] == 0) {
    if (p.memory.read_string(r.w[0], kLongestMessage, text) == StringStatus::fault)
      return failure(KV_EFAULT);
  } else {
    text.resize(std::min(r.w[1], kLongestMessage));
    if (p.memory.read(r.w[0], text.data(), static_cast<uint32_t>(text.size())) != 0)
      return failure(KV_EFAULT);
  }
  log_line(p, std::move(text));
  return success(0);
}

} // namespace kvrun::handlers
