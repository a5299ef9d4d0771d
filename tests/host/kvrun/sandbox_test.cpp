// The sandbox: guest path parsing, and lookups that must stay below the root whatever links and
// `..` say, through openat2 and through the walking fallback alike.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "services/sandbox.h"
#include "test_support.h"

using namespace kvrun;
using Parts = std::vector<std::string>;

namespace {

TEST(GuestPathTest, FormsAndNormalisation) {
  const std::string long_part(256, 'n');
  const struct {
    const char *path;
    Parts cwd;
    Parts parts;
    int error;
  } cases[] = {
      {"c:\\a\\b", {"x"}, {"a", "b"}, 0},
      {"C:/a/b", {"x"}, {"a", "b"}, 0},
      {"c:/a\\b/", {}, {"a", "b"}, 0},
      {"/a/b", {"x"}, {"a", "b"}, 0},
      {"\\a", {"x"}, {"a"}, 0},
      {"a/b", {"x", "y"}, {"x", "y", "a", "b"}, 0},
      {".", {"x"}, {"x"}, 0},
      {"..", {"x", "y"}, {"x"}, 0},
      {"../../../..", {"x"}, {}, 0},
      {"c:\\..\\..\\etc\\passwd", {}, {"etc", "passwd"}, 0},
      {"/a/./b/../../../c", {"x"}, {"c"}, 0},
      {"c:", {"x"}, {}, 0},
      {"c:a", {"x"}, {"a"}, 0},
      {"//a//b", {}, {"a", "b"}, 0},
      {"d:\\a", {}, {}, KV_ENOENT},
      {"Z:/", {}, {}, KV_ENOENT},
      {"", {"x"}, {}, KV_ENOENT},
  };
  for (auto &c : cases) {
    GuestPath g = parse_guest_path(c.path, c.cwd);
    EXPECT_EQ(g.error, c.error) << c.path;
    if (!c.error) {
      EXPECT_EQ(g.parts, c.parts) << c.path;
    }
  }
  EXPECT_EQ(parse_guest_path("/" + long_part, {}).error, KV_ENAMETOOLONG);
  EXPECT_EQ(parse_guest_path("/" + long_part.substr(1), {}).error, 0);
  EXPECT_EQ(parse_guest_path(std::string(kMaxGuestPath + 1, 'a'), {}).error, KV_ENAMETOOLONG);
}

TEST(GuestPathTest, DriveAndHostForms) {
  EXPECT_EQ(drive_form({}), "c:\\");
  EXPECT_EQ(drive_form({"a", "b c"}), "c:\\a\\b c");
  EXPECT_EQ(host_relative({}), ".");
  EXPECT_EQ(host_relative({"a", "b"}), "a/b");
}

// A root with a decoy file, next to a secret outside it, and links that try to get out.
class SandboxTest : public ::testing::TestWithParam<bool> {
protected:
  void SetUp() override {
    namespace fs = std::filesystem;
    root = dir.path() + "/root";
    fs::create_directories(root + "/sub/deeper");
    fs::create_directories(dir.path() + "/outside");
    write(dir.path() + "/secret", "secret");
    write(dir.path() + "/outside/secret", "secret");
    write(root + "/secret", "decoy");
    write(root + "/sub/file", "inner");
    link("../secret", "up");
    link("../../../../../../../../secret", "way_up");
    link(dir.path() + "/secret", "absolute");
    link(dir.path() + "/outside", "outside_dir");
    link("/", "slash");
    link("/secret", "rooted");
    link("sub/../../secret", "sub_up");
    link("loop_b", "loop_a");
    link("loop_a", "loop_b");
    link("sub", "sub_link");
    link("nowhere", "dangling");
    ASSERT_TRUE(sandbox.attach(root));
    sandbox.use_openat2(GetParam());
  }
  void write(const std::string &path, const std::string &text) {
    kvtest_host::write_file(path, std::vector<uint8_t>(text.begin(), text.end()));
  }
  void link(const std::string &target, const std::string &name) {
    ASSERT_EQ(symlink(target.c_str(), (root + "/" + name).c_str()), 0) << name;
  }
  // The file's text, or the host errno of the failed open.
  std::string read_through(const Parts &parts) {
    int fd = sandbox.open(parts, O_RDONLY);
    if (fd < 0)
      return "errno " + std::to_string(errno);
    char b[64];
    ssize_t n = ::read(fd, b, sizeof b);
    ::close(fd);
    return std::string(b, n > 0 ? static_cast<size_t>(n) : 0);
  }

  kvtest_host::TempDir dir;
  std::string root;
  Sandbox sandbox;
};

TEST_P(SandboxTest, LinksAndDotDotStayInsideTheRoot) {
  const std::string enoent = "errno " + std::to_string(ENOENT);
  const struct {
    Parts parts;
    std::string expect;
  } cases[] = {
      {{"secret"}, "decoy"},
      {{"sub", "file"}, "inner"},
      {{"up"}, "decoy"},
      {{"way_up"}, "decoy"},
      {{"slash", "secret"}, "decoy"},
      {{"rooted"}, "decoy"},
      {{"sub_up"}, "decoy"},
      {{"sub_link", "file"}, "inner"},
      {{"sub", "..", "..", "secret"}, "decoy"},
      {{"absolute"}, enoent}, // a host path means a path below the root
      {{"outside_dir", "secret"}, enoent},
      {{"dangling"}, enoent},
      {{"loop_a"}, "errno " + std::to_string(ELOOP)},
      {{"sub", "file", "x"}, "errno " + std::to_string(ENOTDIR)},
  };
  for (auto &c : cases)
    EXPECT_EQ(read_through(c.parts), c.expect) << host_relative(c.parts);
}

TEST_P(SandboxTest, CreationThroughLinksLandsInsideTheRoot) {
  // O_CREAT through a dangling link and through a link to an outside directory.
  int fd = sandbox.open({"dangling"}, O_WRONLY | O_CREAT, 0600);
  ASSERT_GE(fd, 0);
  ::close(fd);
  EXPECT_TRUE(std::filesystem::exists(root + "/nowhere"));
  EXPECT_LT(sandbox.open({"outside_dir", "planted"}, O_WRONLY | O_CREAT, 0600), 0);
  EXPECT_FALSE(std::filesystem::exists(dir.path() + "/outside/planted"));

  int parent = sandbox.open_parent({"slash", "sub", "made"});
  ASSERT_GE(parent, 0);
  ASSERT_EQ(mkdirat(parent, "made", 0700), 0);
  ::close(parent);
  EXPECT_TRUE(std::filesystem::is_directory(root + "/sub/made"));
  errno = 0;
  EXPECT_EQ(sandbox.open_parent({}), -1);
  EXPECT_EQ(errno, EBUSY) << "the root has no parent";
}

TEST_P(SandboxTest, TheRootItselfAndExclusiveCreation) {
  int fd = sandbox.open({}, O_RDONLY | O_DIRECTORY);
  ASSERT_GE(fd, 0);
  struct stat a, b;
  ASSERT_EQ(fstat(fd, &a), 0);
  ::close(fd);
  ASSERT_EQ(stat(root.c_str(), &b), 0);
  EXPECT_EQ(a.st_ino, b.st_ino);
  EXPECT_LT(sandbox.open({"secret"}, O_WRONLY | O_CREAT | O_EXCL, 0600), 0);
  EXPECT_EQ(errno, EEXIST);
}

INSTANTIATE_TEST_SUITE_P(Lookup, SandboxTest, ::testing::Values(true, false),
                         [](const auto &info) { return info.param ? "openat2" : "walk"; });

} // namespace
