// The CPU loop: instruction counting and the time limit.
#include <gtest/gtest.h>

#include <regex>

#include "cli/options.h"
#include "cpu/instruction_counter.h"
#include "run/program_run.h"
#include "test_support.h"

using namespace kvtest_host;

namespace {

TEST(InstructionCount, DecodesThumbAndArmInstructionLengths) {
  const struct {
    std::vector<uint8_t> code;
    bool thumb;
    uint32_t count;
  } cases[] = {
      {{0x00, 0x20}, true, 1},                                   // movs r0, #0
      {{0x00, 0xf0, 0x04, 0xe8}, true, 1},                       // blx (32-bit: 0b11110)
      {{0x00, 0x20, 0x00, 0xf0, 0x04, 0xe8, 0x70, 0x47}, true, 3},
      {{0xdf, 0xf8, 0x04, 0x00, 0x00, 0xbf}, true, 2},           // ldr.w (0b11111), nop
      {{0x40, 0xe9, 0x00, 0x12, 0x18, 0xbf}, true, 2},           // strd (0b11101), it ne
      {{0x00, 0xe0, 0x00, 0xe0}, true, 2},                       // 0b11100 is a 16-bit branch
      {{0xf4, 0x06, 0xf0, 0xe7, 0x1e, 0xff, 0x2f, 0xe1}, false, 2},
      {{}, true, 0},
  };
  for (auto &c : cases)
    EXPECT_EQ(kvrun::count_instructions(c.code.data(), static_cast<uint32_t>(c.code.size()), c.thumb), c.count);
}

TEST(InstructionCount, ExactForAKnownProgram) {
  // 310 instructions: a loop, an IT block with a failing condition, a call into ARM state.
  Captured c = run_kvrun({"--count", loader_program("loader_count")});
  EXPECT_EQ(c.status, 9);
  EXPECT_EQ(c.err, "kvrun: 310 guest instructions\n");

  kvrun::Options o;
  o.program = loader_program("loader_count");
  o.args = {o.program};
  o.count = true;
  FILE *err = tmpfile();
  o.stderr_fd = fileno(err);
  kvrun::RunResult r = kvrun::run_program(o);
  fclose(err);
  EXPECT_EQ(r.status, 9);
  EXPECT_EQ(r.instructions, 310u);
}

// The same program by function: every instruction in the function where its block starts.
TEST(InstructionCount, ProfileSplitsTheCountByFunction) {
  Captured c = run_kvrun({"--profile", "-", loader_program("loader_count")});
  EXPECT_EQ(c.status, 9);
  EXPECT_EQ(c.err, "  instructions   share  function\n"
                   "           308  99.35%  main in loader_count\n"
                   "             2   0.65%  arm_part in loader_count\n");
  TempDir dir;
  std::string file = dir.path() + "/profile.txt";
  c = run_kvrun({"-p", file, "--count", loader_program("loader_count")});
  EXPECT_EQ(c.err, "kvrun: 310 guest instructions\n");
  std::vector<uint8_t> bytes = read_file(file);
  EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("308  99.35%  main in loader_count"),
            std::string::npos);
  EXPECT_EQ(run_kvrun({"-p", dir.path() + "/no/such/dir/p", loader_program("loader_count")}).status, 125);
}

TEST(InstructionCount, DeterministicAndOnlyWhenAsked) {
  auto args = [](bool count) {
    std::vector<std::string> a{"-L", KV_LOADER_PROGRAMS};
    if (count)
      a.push_back("-c");
    a.push_back(loader_program("loader_init_order"));
    return a;
  };
  Captured first = run_kvrun(args(true)), second = run_kvrun(args(true)), plain = run_kvrun(args(false));
  std::smatch m;
  ASSERT_TRUE(std::regex_match(first.err, m, std::regex("kvrun: ([0-9]+) guest instructions\n"))) << first.err;
  EXPECT_GT(std::stoull(m[1]), 1000u);
  EXPECT_EQ(first.err, second.err);
  EXPECT_EQ(plain.err, "");
  EXPECT_EQ(first.out, plain.out);
}

TEST(TimeLimit, StopsARunawayProgramWith124) {
  Captured c = run_kvrun({"-T", "0.3", loader_program("loader_spin")});
  EXPECT_EQ(c.status, 124);
  EXPECT_TRUE(std::regex_match(c.err, std::regex(R"(kvrun: time limit exceeded at pc 0x[0-9a-f]{8} \(spin_forever\+0x[0-9a-f]+ in loader_spin\)\n)")))
      << c.err;
}

TEST(TimeLimit, CutsAWaitShort) {
  Captured c = run_kvrun({"-T", "0.3", loader_program("loader_sleep")});
  EXPECT_EQ(c.status, 124) << c.err;
  EXPECT_NE(c.err.find("kvrun: time limit exceeded at pc "), std::string::npos);
}

TEST(TimeLimit, AProgramThatFinishesInTimeIsUnaffected) {
  Captured c = run_kvrun({"-T", "60", "-L", KV_LOADER_PROGRAMS, loader_program("loader_status"), "12"});
  EXPECT_EQ(c.status, 12);
  EXPECT_EQ(c.err, "");
}

} // namespace
