// syslog and puts: message text to the log sink, one line each.
#include <kv/abi.h>

#include <string>
#include <string_view>

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

// Each line of a syslog message carries its priority as "<P>", as syslog sinks expect, so that
// a message with line breaks stays attributable line by line.
std::string with_priority(int32_t priority, std::string_view text) {
  std::string tag = "<" + std::to_string(priority) + ">", out;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    end = end == std::string_view::npos ? text.size() : end + 1;
    out += tag;
    out += text.substr(start, end - start);
    start = end;
  }
  return out.empty() ? tag : out;
}

} // namespace

// syslog(priority, text): the text as is after its priority; longer messages are cut at 64 KiB.
Outcome syslog(Process &p, const Request &r) {
  std::string text;
  if (p.memory.read_string(r.w[1], kLongestMessage, text) == StringStatus::fault)
    return failure(KV_EFAULT);
  log_line(p, with_priority(static_cast<int32_t>(r.w[0]), text));
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
