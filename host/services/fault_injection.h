// --fail N:E[:K]: make call N fail with error E, every time or only its K-th time.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvrun {

struct FaultRule {
  int32_t number;
  int error;
  uint32_t nth = 0; // 0: every time
};

// E may be a number or a name such as EIO. On failure returns nothing and says why in `why`.
std::optional<FaultRule> parse_fault_rule(std::string_view text, std::string &why);

class FaultInjector {
public:
  void add(const FaultRule &rule) { rules_.push_back(rule); }
  // Counts one more call of `number`; the error to fail it with, if a rule says so.
  std::optional<int> on_call(int32_t number);

private:
  std::vector<FaultRule> rules_;
  std::map<int32_t, uint32_t> calls_;
};

} // namespace kvrun
