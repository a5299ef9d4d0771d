#include "services/fault_injection.h"

#include <charconv>

#include "services/errno_names.h"

namespace kvrun {
namespace {

template <typename T> bool parse_number(std::string_view s, T &out) {
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && end == s.data() + s.size() && !s.empty();
}

} // namespace

std::optional<FaultRule> parse_fault_rule(std::string_view text, std::string &why) {
  auto colon = text.find(':');
  if (colon == std::string_view::npos) {
    why = "expected N:E[:K]";
    return std::nullopt;
  }
  FaultRule rule{};
  if (!parse_number(text.substr(0, colon), rule.number)) {
    why = "call number '" + std::string(text.substr(0, colon)) + "' is not a number";
    return std::nullopt;
  }
  std::string_view rest = text.substr(colon + 1);
  auto second = rest.find(':');
  std::string_view error = rest.substr(0, second);
  if (auto named = errno_by_name(error)) {
    rule.error = *named;
  } else if (!parse_number(error, rule.error) || rule.error <= 0) {
    why = "unknown error '" + std::string(error) + "'";
    return std::nullopt;
  }
  if (second != std::string_view::npos &&
      (!parse_number(rest.substr(second + 1), rule.nth) || rule.nth == 0)) {
    why = "occurrence '" + std::string(rest.substr(second + 1)) + "' is not a positive number";
    return std::nullopt;
  }
  return rule;
}

std::optional<int> FaultInjector::on_call(int32_t number) {
  if (rules_.empty())
    return std::nullopt;
  uint32_t n = ++calls_[number];
  for (auto &r : rules_)
    if (r.number == number && (r.nth == 0 || r.nth == n))
      return r.error;
  return std::nullopt;
}

} // namespace kvrun
