#include <getopt.h>

#include <charconv>
#include <cstdlib>

#include "cli/options.h"

namespace kvrun {
namespace {

const option kLongOptions[] = {
    {"library-path", required_argument, nullptr, 'L'},
    {"root", required_argument, nullptr, 'r'},
    {"env", required_argument, nullptr, 'e'},
    {"log", required_argument, nullptr, 'l'},
    {"trace", required_argument, nullptr, 't'},
    {"count", no_argument, nullptr, 'c'},
    {"profile", required_argument, nullptr, 'p'},
    {"time-limit", required_argument, nullptr, 'T'},
    {"memory-limit", required_argument, nullptr, 'm'},
    {"fail", required_argument, nullptr, 'f'},
    {"max-files", required_argument, nullptr, 'F'},
    {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

std::optional<uint64_t> parse_size(const std::string &text) {
  uint64_t value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end == text.data())
    return std::nullopt;
  std::string suffix(end, text.data() + text.size());
  unsigned shift = suffix.empty() ? 0 : suffix == "K" || suffix == "k" ? 10
                                      : suffix == "M" || suffix == "m" ? 20
                                      : suffix == "G" || suffix == "g" ? 30 : 99;
  if (shift == 99 || (shift && value > (UINT64_MAX >> shift)))
    return std::nullopt;
  return value << shift;
}

std::optional<double> parse_seconds(const std::string &text) {
  char *end = nullptr;
  double v = std::strtod(text.c_str(), &end);
  if (text.empty() || *end || !(v > 0) || v > 1e9)
    return std::nullopt;
  return v;
}

ParsedCommandLine fail(std::string message) {
  return {ParsedCommandLine::error, {}, std::move(message)};
}

} // namespace

ParsedCommandLine parse_command_line(int argc, char *const argv[]) {
  ParsedCommandLine parsed{ParsedCommandLine::run, {}, {}};
  Options &o = parsed.options;
  optind = 0; // start afresh: kvrun may be run more than once in a process
  opterr = 0;
  int c;
  // '+': options end at PROGRAM; what follows belongs to the program.
  while ((c = getopt_long(argc, argv, "+:L:r:e:l:t:cp:T:m:f:F:h", kLongOptions, nullptr)) != -1) {
    std::string arg = optarg ? optarg : "";
    switch (c) {
    case 'L': o.library_path.push_back(arg); break;
    case 'r': o.root = arg; break;
    case 'e':
      if (arg.find('=') == std::string::npos || arg[0] == '=')
        return fail("--env wants NAME=VALUE, not '" + arg + "'");
      o.environment.push_back(arg);
      break;
    case 'l': o.log_path = arg; break;
    case 't': o.trace_path = arg; break;
    case 'c': o.count = true; break;
    case 'p': o.profile_path = arg; break;
    case 'T':
      if (!(o.time_limit = parse_seconds(arg)))
        return fail("--time-limit wants a positive number of seconds, not '" + arg + "'");
      break;
    case 'F': {
      auto n = parse_size(arg);
      if (!n || *n < 3 || *n > 65536)
        return fail("--max-files wants a number from 3 to 65536, not '" + arg + "'");
      o.max_files = static_cast<uint32_t>(*n);
      break;
    }
    case 'm':
      if (!(o.memory_limit = parse_size(arg)))
        return fail("--memory-limit wants a byte count (suffix K, M or G), not '" + arg + "'");
      break;
    case 'f': {
      std::string why;
      auto rule = parse_fault_rule(arg, why);
      if (!rule)
        return fail("--fail " + arg + ": " + why);
      o.faults.push_back(*rule);
      break;
    }
    case 'h': parsed.action = ParsedCommandLine::help; return parsed;
    case ':': return fail(std::string("option ") + argv[optind - 1] + " needs an argument");
    default:
      return fail(optopt ? std::string("unknown option -") + static_cast<char>(optopt)
                         : std::string("unknown option ") + argv[optind - 1]);
    }
  }
  if (optind >= argc)
    return fail("no program given");
  o.program = argv[optind];
  for (int i = optind; i < argc; ++i)
    o.args.push_back(argv[i]);
  o.library_path.push_back(KV_DEFAULT_LIBDIR);
  return parsed;
}

} // namespace kvrun
