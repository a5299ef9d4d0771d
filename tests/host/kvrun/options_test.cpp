// The command line: what each option sets, and usage errors with status 125.
#include <gtest/gtest.h>

#include "cli/options.h"
#include "test_support.h"

using namespace kvrun;
using kvtest_host::run_kvrun;

namespace {

ParsedCommandLine parse(std::vector<std::string> args) {
  args.insert(args.begin(), "kvrun");
  std::vector<char *> argv;
  for (auto &a : args)
    argv.push_back(a.data());
  argv.push_back(nullptr);
  return parse_command_line(static_cast<int>(args.size()), argv.data());
}

TEST(Options, EachOptionSetsItsField) {
  auto p = parse({"-L", "a", "--library-path", "b", "-r", "/tmp", "-e", "X=1", "--env", "Y=",
                  "-l", "-", "--trace=t.txt", "-c", "-T", "2.5", "-m", "64M", "-f", "14:EIO:2",
                  "--fail", "-1:74", "prog", "-c", "--x", "last"});
  ASSERT_EQ(p.action, ParsedCommandLine::run) << p.message;
  const Options &o = p.options;
  EXPECT_EQ(o.library_path, (std::vector<std::string>{"a", "b", KV_DEFAULT_LIBDIR}));
  EXPECT_EQ(o.root, "/tmp");
  EXPECT_EQ(o.environment, (std::vector<std::string>{"X=1", "Y="}));
  EXPECT_EQ(o.log_path, "-");
  EXPECT_EQ(o.trace_path, "t.txt");
  EXPECT_TRUE(o.count);
  EXPECT_EQ(o.time_limit, 2.5);
  EXPECT_EQ(o.memory_limit, 64u << 20);
  ASSERT_EQ(o.faults.size(), 2u);
  EXPECT_EQ(o.faults[0].nth, 2u);
  EXPECT_EQ(o.faults[1].number, -1);
  EXPECT_EQ(o.program, "prog");
  // Everything after PROGRAM is the program's, options or not.
  EXPECT_EQ(o.args, (std::vector<std::string>{"prog", "-c", "--x", "last"}));
}

TEST(Options, DefaultsAndSizeSuffixes) {
  auto p = parse({"prog"});
  ASSERT_EQ(p.action, ParsedCommandLine::run);
  EXPECT_EQ(p.options.root, ".");
  EXPECT_FALSE(p.options.count);
  EXPECT_FALSE(p.options.time_limit);
  EXPECT_FALSE(p.options.memory_limit);
  EXPECT_EQ(p.options.library_path, (std::vector<std::string>{KV_DEFAULT_LIBDIR}));
  EXPECT_TRUE(p.options.environment.empty()) << "no host environment leaks in";
  const struct {
    const char *text;
    uint64_t bytes;
  } sizes[] = {{"4096", 4096}, {"4K", 4096}, {"3m", 3u << 20}, {"1G", 1u << 30}, {"0", 0}};
  for (auto &s : sizes)
    EXPECT_EQ(parse({"-m", s.text, "p"}).options.memory_limit, s.bytes) << s.text;
}

TEST(Options, BadCommandLinesGiveUsageAndStatus125) {
  const struct {
    std::vector<std::string> args;
    const char *message;
  } cases[] = {
      {{}, "kvrun: no program given\n"},
      {{"--bogus", "p"}, "kvrun: unknown option --bogus\n"},
      {{"-x", "p"}, "kvrun: unknown option -x\n"},
      {{"-e", "NOVALUE", "p"}, "kvrun: --env wants NAME=VALUE, not 'NOVALUE'\n"},
      {{"-e", "=v", "p"}, "kvrun: --env wants NAME=VALUE, not '=v'\n"},
      {{"-T", "abc", "p"}, "kvrun: --time-limit wants a positive number of seconds, not 'abc'\n"},
      {{"-T", "0", "p"}, "kvrun: --time-limit wants a positive number of seconds, not '0'\n"},
      {{"-m", "12Q", "p"}, "kvrun: --memory-limit wants a byte count (suffix K, M or G), not '12Q'\n"},
      {{"-m", "99999999999G", "p"}, "kvrun: --memory-limit wants a byte count (suffix K, M or G), not '99999999999G'\n"},
      {{"-f", "14", "p"}, "kvrun: --fail 14: expected N:E[:K]\n"},
      {{"-f", "14:EWHAT", "p"}, "kvrun: --fail 14:EWHAT: unknown error 'EWHAT'\n"},
      {{"--log"}, "kvrun: option --log needs an argument\n"},
      {{"-L"}, "kvrun: option -L needs an argument\n"},
  };
  for (auto &c : cases) {
    auto r = run_kvrun(c.args);
    EXPECT_EQ(r.status, 125) << c.message;
    EXPECT_EQ(r.err.substr(0, r.err.find('\n') + 1), c.message);
    EXPECT_NE(r.err.find("Usage: kvrun [options] PROGRAM [ARGS...]"), std::string::npos);
    EXPECT_EQ(r.out, "");
  }
}

TEST(Options, HelpTellsEveryOptionAndStatus) {
  auto r = run_kvrun({"--help"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  for (const char *text : {"--library-path DIR", "--root DIR", "--env NAME=VALUE", "--log FILE|-",
                           "--trace FILE|-", "--count", "--time-limit SEC", "--memory-limit BYTES",
                           "--fail N:E[:K]", "--max-files N", "--profile FILE|-", "--help", KV_DEFAULT_LIBDIR, "124", "125", "126",
                           "127", "132", "139"})
    EXPECT_NE(r.out.find(text), std::string::npos) << text;
  EXPECT_EQ(run_kvrun({"-h", "ignored"}).status, 0);
}

TEST(Options, UnusableRootOrSinksGive125) {
  kvtest_host::TempDir dir;
  const std::string program = kvtest_host::loader_program("loader_count");
  const struct {
    std::vector<std::string> args;
    const char *start;
  } cases[] = {
      {{"-r", dir.path() + "/absent", program}, "kvrun: root "},
      {{"-l", dir.path() + "/no/such/dir/log", program}, "kvrun: cannot open log "},
      {{"-t", dir.path(), program}, "kvrun: cannot open trace "},
  };
  for (auto &c : cases) {
    auto r = run_kvrun(c.args);
    EXPECT_EQ(r.status, 125);
    EXPECT_EQ(r.err.rfind(c.start, 0), 0u) << r.err;
  }
  // Given a usable root and sinks, the same program runs.
  auto ok = run_kvrun({"-r", dir.path(), "-l", dir.path() + "/log", "-t", dir.path() + "/trace", program});
  EXPECT_EQ(ok.status, 9) << ok.err;
}

} // namespace
