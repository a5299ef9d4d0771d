// posix_spawn's records read from guest memory: the file actions in order (close, dup2, open),
// the attributes, the argument and environment lists, and every way they can be wrong.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <kv/abi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "service_fixture.h"
#include "services/spawn_plan.h"

using namespace kvrun;

namespace {

struct Action {
  int32_t kind, fd;
  uint32_t arg;
  int32_t oflag = 0, mode = 0;
};

class SpawnPlanTest : public kvtest_host::ServiceFixture {
protected:
  static constexpr uint32_t kProgram = kData + 0x100, kOutName = kData + 0x140,
                            kOther = kData + 0x180, kEmpty = kData + 0x1c0;
  static constexpr uint32_t kFileActions = kData + 0x1000, kActions = kData + 0x1100;
  static constexpr uint32_t kAttr = kData + 0x1e00, kArgv = kData + 0x2000,
                            kEnvp = kData + 0x2100;
  static constexpr uint32_t kBig = 0x40000, kBigSize = 0x20000; // for the long lists

  void SetUp() override {
    ServiceFixture::SetUp();
    kvtest_host::write_file(dir.path() + "/prog", {'E', 'L', 'F'});
    put_string(kProgram, "prog");
    put_string(kOutName, "out.txt");
    put_string(kOther, "a b");
    put_string(kEmpty, "");
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    pipe_in = fds[0];
    pipe_out = fds[1];
    process.descriptors.set(5, {pipe_out, false, true});
    close(pipe_in);
    process.environment = {"HOME=/", "A=1"};
  }

  // Writes the actions and their record; returns the record's address.
  uint32_t actions(std::vector<Action> list) {
    for (size_t i = 0; i < list.size(); ++i) {
      kv_spawn_action a{list[i].kind, list[i].fd, list[i].arg, list[i].oflag, list[i].mode};
      put(kActions + static_cast<uint32_t>(i * sizeof a), &a, sizeof a);
    }
    kv_spawn_file_actions fa{static_cast<int32_t>(list.size()), kActions};
    put(kFileActions, &fa, sizeof fa);
    return kFileActions;
  }
  uint32_t list(uint32_t at, std::vector<uint32_t> strings) {
    strings.push_back(0);
    put(at, strings.data(), static_cast<uint32_t>(strings.size() * 4));
    return at;
  }
  int read_plan(SpawnPlan &plan, uint32_t fa, uint32_t attr = 0, uint32_t argv = 0,
                uint32_t envp = 0, uint32_t path = kProgram) {
    return read_spawn_plan(process, path, fa, attr, argv, envp, plan);
  }

  int pipe_in = -1, pipe_out = -1;
};

TEST_F(SpawnPlanTest, ListsAndDefaults) {
  {
    SpawnPlan plan;
    ASSERT_EQ(read_plan(plan, 0, 0, list(kArgv, {kProgram, kOther, kEmpty}), list(kEnvp, {kOther})), 0);
    EXPECT_EQ(plan.args, (std::vector<std::string>{"prog", "a b", ""}));
    EXPECT_EQ(plan.environment, (std::vector<std::string>{"a b"}));
    EXPECT_EQ(plan.console, (std::array<int, 3>{0, 1, 2})) << "the parent's console";
    EXPECT_GE(plan.program_fd, 0);
    EXPECT_EQ(plan.program, "/proc/self/fd/" + std::to_string(plan.program_fd));
  }
  {
    // No lists: the path as the only argument, the parent's environment; empty lists stay empty
    // for the environment but still give the program a name.
    SpawnPlan plan;
    ASSERT_EQ(read_plan(plan, 0), 0);
    EXPECT_EQ(plan.args, (std::vector<std::string>{"prog"}));
    EXPECT_EQ(plan.environment, process.environment);
    SpawnPlan empty;
    ASSERT_EQ(read_plan(empty, 0, 0, list(kArgv, {}), list(kEnvp, {})), 0);
    EXPECT_EQ(empty.args, (std::vector<std::string>{"prog"}));
    EXPECT_TRUE(empty.environment.empty());
  }
}

TEST_F(SpawnPlanTest, ActionsApplyInOrderToTheChildsDescriptors) {
  const uint32_t kCreate = KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC;
  constexpr int kOpened = -2; // stands for the descriptor the open action made
  const struct {
    const char *what;
    std::vector<Action> list;
    std::array<int, 3> console;
  } cases[] = {
      {"nothing", {}, {0, 1, 2}},
      {"close 1", {{KV_SPAWN_CLOSE, 1, 0}}, {0, -1, 2}},
      {"close above 2 changes nothing", {{KV_SPAWN_CLOSE, 7, 0}}, {0, 1, 2}},
      {"dup2 of a parent's descriptor", {{KV_SPAWN_DUP2, 5, 2}}, {0, 1, 5}},
      {"dup2 among the console", {{KV_SPAWN_DUP2, 2, 0}}, {2, 1, 2}},
      {"open for output", {{KV_SPAWN_OPEN, 1, kOutName, static_cast<int32_t>(kCreate), 0600}},
       {0, kOpened, 2}},
      {"open, then dup2 of it",
       {{KV_SPAWN_OPEN, 1, kOutName, static_cast<int32_t>(kCreate), 0600}, {KV_SPAWN_DUP2, 1, 2}},
       {0, kOpened, kOpened}},
      {"dup2 to 1, then 1 to 2", {{KV_SPAWN_DUP2, 5, 1}, {KV_SPAWN_DUP2, 1, 2}}, {0, 5, 5}},
      {"close 0, then open it", {{KV_SPAWN_CLOSE, 0, 0}, {KV_SPAWN_OPEN, 0, kProgram, KV_O_RDONLY, 0}},
       {kOpened, 1, 2}},
  };
  for (auto &c : cases) {
    SpawnPlan plan;
    ASSERT_EQ(read_plan(plan, actions(c.list)), 0) << c.what << " " << err();
    for (int i = 0; i < 3; ++i) {
      int want = c.console[i] == 5 ? pipe_out : c.console[i];
      if (want == kOpened) {
        ASSERT_EQ(plan.opened.size(), 1u) << c.what;
        want = plan.opened[0];
      }
      EXPECT_EQ(plan.console[i], want) << c.what << ", descriptor " << i;
    }
  }
  struct stat st;
  ASSERT_EQ(stat((dir.path() + "/out.txt").c_str(), &st), 0) << "created inside the root";
  EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST_F(SpawnPlanTest, BadActionsAreRefused) {
  const struct {
    const char *what;
    std::vector<Action> list;
    int error;
  } cases[] = {
      {"negative descriptor", {{KV_SPAWN_CLOSE, -1, 0}}, KV_EBADF},
      {"dup2 of a descriptor not open", {{KV_SPAWN_DUP2, 9, 1}}, KV_EBADF},
      {"dup2 of a negative descriptor", {{KV_SPAWN_DUP2, -3, 1}}, KV_EBADF},
      {"dup2 of a console descriptor closed before", {{KV_SPAWN_CLOSE, 1, 0}, {KV_SPAWN_DUP2, 1, 2}},
       KV_EBADF},
      {"dup2 of a parent's descriptor closed before",
       {{KV_SPAWN_CLOSE, 5, 0}, {KV_SPAWN_DUP2, 5, 2}}, KV_EBADF},
      {"dup2 to a descriptor above 2", {{KV_SPAWN_DUP2, 5, 3}}, KV_EINVAL},
      {"open onto a descriptor above 2", {{KV_SPAWN_OPEN, 3, kOutName, KV_O_RDONLY, 0}}, KV_EINVAL},
      {"open with unknown flags", {{KV_SPAWN_OPEN, 1, kOutName, 0x10000, 0}}, KV_EINVAL},
      {"open with no access mode", {{KV_SPAWN_OPEN, 1, kOutName, KV_O_CREAT, 0}}, KV_EINVAL},
      {"open of a missing file", {{KV_SPAWN_OPEN, 0, kOutName, KV_O_RDONLY, 0}}, KV_ENOENT},
      {"open with an unmapped path", {{KV_SPAWN_OPEN, 0, kUnmapped, KV_O_RDONLY, 0}}, KV_EFAULT},
      {"open with a null path", {{KV_SPAWN_OPEN, 0, 0, KV_O_RDONLY, 0}}, KV_EFAULT},
      {"unknown kind", {{3, 1, 0}}, KV_EINVAL},
      {"negative kind", {{-1, 1, 0}}, KV_EINVAL},
      {"a bad action after good ones", {{KV_SPAWN_CLOSE, 1, 0}, {KV_SPAWN_CLOSE, 2, 0}, {7, 0, 0}},
       KV_EINVAL},
  };
  for (auto &c : cases) {
    SpawnPlan plan;
    EXPECT_EQ(read_plan(plan, actions(c.list)), c.error) << c.what;
  }
  EXPECT_FALSE(std::filesystem::exists(dir.path() + "/out.txt"));
}

TEST_F(SpawnPlanTest, BadRecordsAndPaths) {
  kv_spawn_file_actions fa{0, kActions};
  const struct {
    const char *what;
    int32_t count;
    uint32_t actions_at, record, path;
    int error;
  } cases[] = {
      {"negative count", -1, kActions, kFileActions, kProgram, KV_EINVAL},
      {"too many actions", 1025, kActions, kFileActions, kProgram, KV_EINVAL},
      {"actions unmapped", 1, kUnmapped, kFileActions, kProgram, KV_EFAULT},
      {"actions null", 1, 0, kFileActions, kProgram, KV_EFAULT},
      {"actions run off the map", 2, kReadOnly + 0xff0, kFileActions, kProgram, KV_EFAULT},
      {"record unmapped", 0, kActions, kUnmapped, kProgram, KV_EFAULT},
      {"record straddles the map", 0, kActions, kReadOnly + 0xffc, kProgram, KV_EFAULT},
      {"path unmapped", 0, kActions, 0, kUnmapped, KV_EFAULT},
      {"path null", 0, kActions, 0, 0, KV_EFAULT},
      {"program missing", 0, kActions, 0, kOutName, KV_ENOENT},
  };
  for (auto &c : cases) {
    fa.count = c.count;
    fa.actions = c.actions_at;
    put(kFileActions, &fa, sizeof fa);
    SpawnPlan plan;
    EXPECT_EQ(read_plan(plan, c.record, 0, 0, 0, c.path), c.error) << c.what;
  }
}

TEST_F(SpawnPlanTest, AttributeFlags) {
  const struct {
    uint32_t at;
    int16_t flags;
    int error;
  } cases[] = {{kAttr, 0, 0},          {kAttr, 7, 0},          {kAttr, 8, KV_EINVAL},
               {kAttr, -1, KV_EINVAL}, {kAttr, 0x100, KV_EINVAL}, {kUnmapped, 0, KV_EFAULT},
               {kReadOnly + 0xfff, 0, KV_EFAULT}};
  for (auto &c : cases) {
    if (c.at == kAttr)
      put(kAttr, &c.flags, 2);
    SpawnPlan plan;
    EXPECT_EQ(read_plan(plan, 0, c.at), c.error) << c.flags << " at " << std::hex << c.at;
  }
}

TEST_F(SpawnPlanTest, BadListsAreRefused) {
  ASSERT_TRUE(m.memory.map(kBig, kBigSize, kProtRead | kProtWrite));
  // A string of 64 KiB and more, and a list that fills its memory without a terminator.
  std::string long_text(64 * 1024 + 1, 'x');
  put_string(kBig, long_text);
  const uint32_t kLongList = kBig + 0x11000, kLongString = kBig;
  put_word(kLongList, kLongString);
  put_word(kLongList + 4, 0);
  const uint32_t kMany = kBig + 0x12000; // 4097 pointers to one short string
  std::vector<uint32_t> many(4097, kOther);
  put(kMany, many.data(), static_cast<uint32_t>(many.size() * 4));
  put_word(kMany + 4097 * 4, 0);
  const uint32_t kUnterminated = kReadOnly - 8; // two good pointers, then read-only zeros...
  put_word(kUnterminated, kOther);
  put_word(kUnterminated + 4, kOther);
  const uint32_t kRunsOff = kBig + kBigSize - 8; // ...and here two pointers, then nothing
  put_word(kRunsOff, kOther);
  put_word(kRunsOff + 4, kOther);

  const struct {
    const char *what;
    uint32_t list;
    int error;
  } cases[] = {
      {"unmapped list", kUnmapped, KV_EFAULT},
      {"list runs off the map", kRunsOff, KV_EFAULT},
      {"bad string pointer", list(kArgv, {kOther, kUnmapped}), KV_EFAULT},
      {"string too long", kLongList, KV_E2BIG},
      {"too many strings", kMany, KV_E2BIG},
  };
  for (auto &c : cases) {
    SpawnPlan as_argv, as_envp;
    EXPECT_EQ(read_plan(as_argv, 0, 0, c.list, 0), c.error) << "argv: " << c.what;
    EXPECT_EQ(read_plan(as_envp, 0, 0, 0, c.list), c.error) << "envp: " << c.what;
  }
  // A list whose terminator lies in read-only memory is fine: it is only read.
  SpawnPlan plan;
  EXPECT_EQ(read_plan(plan, 0, 0, kUnterminated, 0), 0);
  EXPECT_EQ(plan.args.size(), 2u);
  // 4096 strings are the most.
  put_word(kMany + 4096 * 4, 0);
  SpawnPlan most;
  EXPECT_EQ(read_plan(most, 0, 0, kMany, 0), 0);
  EXPECT_EQ(most.args.size(), 4096u);
}

} // namespace
