// The file services through the dispatcher, in a fresh root: results, errno, descriptors, the
// working directory, directory streams, bad pointers and the trace's decoded arguments.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>

#include "memory/layout.h"
#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "services/dispatcher.h"
#include "services/errno_names.h"
#include "services/file_support.h"
#include "services/process.h"
#include "test_support.h"

using namespace kvrun;

namespace {

constexpr uint32_t kData = 0x10000;     // read-write, two pages
constexpr uint32_t kReadOnly = 0x12000; // read-only page after them
constexpr uint32_t kUnmapped = 0x20000;
constexpr uint32_t kCell = 0x10ff0;
constexpr uint32_t kPath = 0x10800, kPath2 = 0x10a00; // path texts
constexpr uint32_t kBuf = 0x11000;                    // a page of buffer
constexpr uint32_t kFailed = 0xFFFFFFFF;

class FilesTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(m.memory.map(kData, 0x2000, kProtRead | kProtWrite));
    ASSERT_TRUE(m.memory.map(kReadOnly, 0x1000, kProtRead));
    process.root = dir.path();
    process.trace_fd = fileno(trace);
    ASSERT_EQ(call(KV_SYS_set_errno_addr, kCell).value, 0u);
  }
  void TearDown() override { fclose(trace); }

  Outcome call(int32_t number, uint32_t w1 = 0, uint32_t w2 = 0, uint32_t w3 = 0) {
    m.memory.write_u32(kCell, 0);
    return dispatch(process, Request{number, {w1, w2, w3, 0, 0, 0, 0}});
  }
  int err() {
    uint32_t v = 0;
    m.memory.read_u32(kCell, v);
    return static_cast<int>(v);
  }
  void put(uint32_t addr, const std::string &s) {
    ASSERT_TRUE(m.memory.poke(addr, s.c_str(), static_cast<uint32_t>(s.size() + 1)));
  }
  std::string text_at(uint32_t addr, uint32_t n) {
    std::string s(n, '\0');
    m.memory.read(addr, s.data(), n);
    return s;
  }
  // open(path, flags, mode): the result word.
  uint32_t open(const std::string &path, uint32_t flags, uint32_t mode = 0644) {
    put(kPath, path);
    return call(KV_SYS_open, kPath, flags, mode).value;
  }
  uint32_t on_path(int32_t number, const std::string &path, uint32_t w2 = 0) {
    put(kPath, path);
    return call(number, kPath, w2).value;
  }
  kv_stat stat_of(const std::string &path) {
    kv_stat st{};
    EXPECT_EQ(on_path(KV_SYS_stat, path, kBuf), 0u) << path;
    m.memory.read(kBuf, &st, sizeof st);
    return st;
  }
  std::string host(const std::string &rel) { return dir.path() + "/" + rel; }

  kvtest_host::TempDir dir;
  kvtest_host::GuestMemory m;
  RegionAllocator mappings{m.memory, layout::kMmapBase, layout::kMmapEnd, 64 * 1024};
  Process process{m.memory, mappings};
  FILE *trace = tmpfile();
};

TEST_F(FilesTest, WriteReadSeekTruncateStatRenameRemove) {
  uint32_t fd = open("c:\\data.txt", KV_O_RDWR | KV_O_CREAT, 0640);
  ASSERT_EQ(fd, 3u);
  put(kBuf, "hello, files");
  EXPECT_EQ(call(KV_SYS_write, fd, kBuf, 12).value, 12u);
  EXPECT_EQ(call(KV_SYS_lseek, fd, 7, KV_SEEK_SET).value, 7u);
  EXPECT_EQ(call(KV_SYS_read, fd, kBuf + 100, 100).value, 5u);
  EXPECT_EQ(text_at(kBuf + 100, 5), "files");
  EXPECT_EQ(call(KV_SYS_read, fd, kBuf + 100, 100).value, 0u) << "end of file";
  EXPECT_EQ(call(KV_SYS_lseek, fd, static_cast<uint32_t>(-5), KV_SEEK_END).value, 7u);
  EXPECT_EQ(call(KV_SYS_lseek, fd, 2, KV_SEEK_CUR).value, 9u);
  EXPECT_EQ(call(KV_SYS_lseek, fd, static_cast<uint32_t>(-100), KV_SEEK_CUR).value, kFailed);
  EXPECT_EQ(err(), KV_EINVAL);
  EXPECT_EQ(call(KV_SYS_lseek, fd, 0, 3).value, kFailed);
  EXPECT_EQ(err(), KV_EINVAL);

  EXPECT_EQ(call(KV_SYS_ftruncate, fd, 5).value, 0u);
  EXPECT_EQ(call(KV_SYS_fstat, fd, kBuf).value, 0u);
  kv_stat st;
  m.memory.read(kBuf, &st, sizeof st);
  EXPECT_EQ(st.st_size, 5);
  EXPECT_EQ(st.st_mode & KV_S_IFMT, static_cast<uint32_t>(KV_S_IFREG));
  EXPECT_EQ(st.st_mode & 0700, 0600u);
  EXPECT_EQ(st.st_nlink, 1u);
  EXPECT_NEAR(st.st_mtime_sec, ::time(nullptr), 5);
  EXPECT_EQ(call(KV_SYS_fsync, fd).value, 0u);
  EXPECT_EQ(call(KV_SYS_close, fd).value, 0u);
  EXPECT_EQ(call(KV_SYS_close, fd).value, kFailed);
  EXPECT_EQ(err(), KV_EBADF);

  put(kPath2, "/renamed.txt");
  put(kPath, "data.txt");
  EXPECT_EQ(call(KV_SYS_rename, kPath, kPath2).value, 0u);
  EXPECT_EQ(stat_of("C:/renamed.txt").st_size, 5);
  EXPECT_EQ(on_path(KV_SYS_truncate, "renamed.txt", 2), 0u);
  EXPECT_EQ(kvtest_host::read_file(host("renamed.txt")), (std::vector<uint8_t>{'h', 'e'}));
  EXPECT_EQ(on_path(KV_SYS_truncate, "renamed.txt", static_cast<uint32_t>(-1)), kFailed);
  EXPECT_EQ(err(), KV_EINVAL);
  EXPECT_EQ(on_path(KV_SYS_access, "renamed.txt", KV_R_OK | KV_W_OK), 0u);
  EXPECT_EQ(on_path(KV_SYS_remove, "renamed.txt"), 0u);
  EXPECT_EQ(on_path(KV_SYS_access, "renamed.txt", KV_F_OK), kFailed);
  EXPECT_EQ(err(), KV_ENOENT);
  EXPECT_FALSE(std::filesystem::exists(host("renamed.txt")));
}

TEST_F(FilesTest, OpenFlagsAreTranslatedAndCheckedFirst) {
  kvtest_host::write_file(host("there"), {'x'});
  std::filesystem::create_directory(host("dir"));
  const struct {
    const char *path;
    uint32_t flags;
    int error; // 0: opens
  } cases[] = {
      {"there", 0, KV_EINVAL},
      {"there", KV_O_CREAT, KV_EINVAL},
      {"there", KV_O_RDONLY | 0x10, KV_EINVAL},
      {"there", KV_O_RDONLY | 0x80000000u, KV_EINVAL},
      {"there", KV_O_RDONLY, 0},
      {"there", KV_O_WRONLY | KV_O_APPEND, 0},
      {"there", KV_O_RDONLY | KV_O_WRONLY, 0},
      {"missing", KV_O_RDONLY, KV_ENOENT},
      {"missing/x", KV_O_WRONLY | KV_O_CREAT, KV_ENOENT},
      {"there", KV_O_WRONLY | KV_O_CREAT | KV_O_EXCL, KV_EEXIST},
      {"dir", KV_O_RDONLY, 0},
      {"dir", KV_O_WRONLY, KV_EISDIR},
      {"there/x", KV_O_RDONLY, KV_ENOTDIR},
      {"e:\\there", KV_O_RDONLY, KV_ENOENT},
      {"", KV_O_RDONLY, KV_ENOENT},
  };
  for (auto &c : cases) {
    uint32_t fd = open(c.path, c.flags);
    if (c.error) {
      EXPECT_EQ(fd, kFailed) << c.path << " " << c.flags;
      EXPECT_EQ(err(), c.error) << c.path << " " << c.flags;
    } else {
      EXPECT_NE(fd, kFailed) << c.path << " " << c.flags;
      call(KV_SYS_close, fd);
    }
  }
  EXPECT_FALSE(std::filesystem::exists(host("missing")));
  // Append, truncate and exclusive creation as the host does them.
  uint32_t fd = open("there", KV_O_WRONLY | KV_O_APPEND);
  put(kBuf, "yz");
  call(KV_SYS_lseek, fd, 0, KV_SEEK_SET);
  call(KV_SYS_write, fd, kBuf, 2);
  call(KV_SYS_close, fd);
  EXPECT_EQ(kvtest_host::read_file(host("there")), (std::vector<uint8_t>{'x', 'y', 'z'}));
  call(KV_SYS_close, open("there", KV_O_WRONLY | KV_O_TRUNC));
  EXPECT_TRUE(kvtest_host::read_file(host("there")).empty());
  fd = open("new", KV_O_WRONLY | KV_O_CREAT | KV_O_EXCL, 0);
  ASSERT_NE(fd, kFailed);
  struct stat st;
  ASSERT_EQ(::stat(host("new").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0600, 0600u) << "mode 0 (as streams send it) still gives a usable file";
}

TEST_F(FilesTest, HostErrnoIsTranslatedByName) {
  const struct {
    int host, library;
  } cases[] = {{ENOENT, KV_ENOENT}, {EACCES, KV_EACCES}, {EEXIST, KV_EEXIST},
               {ENOTEMPTY, KV_ENOTEMPTY}, {ENOTDIR, KV_ENOTDIR}, {EISDIR, KV_EISDIR},
               {ELOOP, KV_ELOOP}, {EMFILE, KV_EMFILE}, {ENOSPC, KV_ENOSPC},
               {EXDEV, KV_EXDEV}, {EBUSY, KV_EBUSY}, {ENAMETOOLONG, KV_ENAMETOOLONG},
               {EROFS, KV_EROFS}, {EFBIG, KV_EFBIG}};
  for (auto &c : cases)
    EXPECT_EQ(from_host_errno(c.host), c.library) << c.host;
  // And through a service: a directory that is not empty.
  std::filesystem::create_directories(host("full/inner"));
  EXPECT_EQ(on_path(KV_SYS_rmdir, "full"), kFailed);
  EXPECT_EQ(err(), KV_ENOTEMPTY);
}

TEST_F(FilesTest, DirectoriesCreatedListedAndRemoved) {
  EXPECT_EQ(on_path(KV_SYS_mkdir, "c:\\d", 0755), 0u);
  EXPECT_EQ(on_path(KV_SYS_mkdir, "c:\\d", 0755), kFailed);
  EXPECT_EQ(err(), KV_EEXIST);
  EXPECT_EQ(stat_of("d").st_mode & KV_S_IFMT, static_cast<uint32_t>(KV_S_IFDIR));
  for (const char *name : {"/d/a", "/d/bb", "/d/ccc"})
    call(KV_SYS_close, open(name, KV_O_WRONLY | KV_O_CREAT));
  EXPECT_EQ(on_path(KV_SYS_mkdir, "/d/sub", 0700), 0u);

  uint32_t handle = on_path(KV_SYS_opendir, "d");
  ASSERT_NE(handle, 0u);
  std::set<std::string> names;
  kv_dirent e;
  m.memory.write(kBuf + sizeof e, "GUARD", 6);
  while (call(KV_SYS_readdir, handle, kBuf).value == 0) {
    m.memory.read(kBuf, &e, sizeof e);
    EXPECT_EQ(e.d_reclen, 256);
    EXPECT_EQ(e.d_namlen, strlen(e.d_name));
    EXPECT_EQ(e.d_type, std::string(e.d_name) == "sub" || e.d_name[0] == '.' ? KV_DT_DIR : KV_DT_REG)
        << e.d_name;
    names.insert(e.d_name);
  }
  EXPECT_EQ(err(), 0) << "the end is not an error";
  EXPECT_EQ(text_at(kBuf + sizeof e, 5), "GUARD") << "nothing past the 256 bytes";
  EXPECT_EQ(names, (std::set<std::string>{".", "..", "a", "bb", "ccc", "sub"}));
  EXPECT_EQ(call(KV_SYS_closedir, handle).value, 0u);
  EXPECT_EQ(call(KV_SYS_readdir, handle, kBuf).value, kFailed);
  EXPECT_EQ(err(), KV_EBADF);
  EXPECT_EQ(call(KV_SYS_closedir, handle).value, kFailed);
  EXPECT_EQ(err(), KV_EBADF);

  EXPECT_EQ(on_path(KV_SYS_opendir, "nothing"), 0u) << "0, not -1, on failure";
  EXPECT_EQ(err(), KV_ENOENT);
  EXPECT_EQ(on_path(KV_SYS_opendir, "d/a"), 0u);
  EXPECT_EQ(err(), KV_ENOTDIR);

  EXPECT_EQ(on_path(KV_SYS_rmdir, "d"), kFailed);
  EXPECT_EQ(err(), KV_ENOTEMPTY);
  EXPECT_EQ(on_path(KV_SYS_rmdir, "d/a"), kFailed);
  EXPECT_EQ(err(), KV_ENOTDIR);
  EXPECT_EQ(on_path(KV_SYS_unlink, "d/sub"), kFailed);
  EXPECT_EQ(err(), KV_EISDIR);
  for (const char *name : {"d/a", "d/bb", "d/ccc"})
    EXPECT_EQ(on_path(KV_SYS_unlink, name), 0u) << name;
  EXPECT_EQ(on_path(KV_SYS_remove, "d/sub"), 0u) << "remove takes empty directories too";
  EXPECT_EQ(on_path(KV_SYS_rmdir, "d"), 0u);
  EXPECT_EQ(on_path(KV_SYS_rmdir, "c:\\"), kFailed) << "the root stays";
  EXPECT_EQ(err(), KV_EBUSY);
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST_F(FilesTest, WorkingDirectory) {
  std::filesystem::create_directories(host("a/b"));
  kvtest_host::write_file(host("a/b/f"), {'1'});
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 64).value, 0u);
  EXPECT_STREQ(text_at(kBuf, 64).c_str(), "c:\\");
  EXPECT_EQ(on_path(KV_SYS_chdir, "C:/a"), 0u);
  EXPECT_EQ(on_path(KV_SYS_chdir, "b"), 0u);
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 64).value, 0u);
  EXPECT_STREQ(text_at(kBuf, 64).c_str(), "c:\\a\\b");
  EXPECT_EQ(stat_of("f").st_size, 1) << "relative to the working directory";
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 6).value, kFailed);
  EXPECT_EQ(err(), KV_ERANGE);
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 0).value, kFailed);
  EXPECT_EQ(err(), KV_EINVAL);
  EXPECT_EQ(call(KV_SYS_getcwd, kReadOnly, 64).value, kFailed);
  EXPECT_EQ(err(), KV_EFAULT);
  EXPECT_EQ(on_path(KV_SYS_chdir, "f"), kFailed);
  EXPECT_EQ(err(), KV_ENOTDIR);
  EXPECT_EQ(on_path(KV_SYS_chdir, "missing"), kFailed);
  EXPECT_EQ(err(), KV_ENOENT);
  EXPECT_EQ(on_path(KV_SYS_chdir, "../../../.."), 0u) << "`..` stops at the root";
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 64).value, 0u);
  EXPECT_STREQ(text_at(kBuf, 64).c_str(), "c:\\");

  uint32_t fd = open("/a", KV_O_RDONLY);
  uint32_t file = open("/a/b/f", KV_O_RDONLY);
  EXPECT_EQ(call(KV_SYS_fchdir, fd).value, 0u);
  EXPECT_EQ(call(KV_SYS_getcwd, kBuf, 64).value, 0u);
  EXPECT_STREQ(text_at(kBuf, 64).c_str(), "c:\\a");
  EXPECT_EQ(call(KV_SYS_fchdir, file).value, kFailed);
  EXPECT_EQ(err(), KV_ENOTDIR);
  EXPECT_EQ(call(KV_SYS_fchdir, 1).value, kFailed);
  EXPECT_EQ(err(), KV_ENOTDIR);
}

TEST_F(FilesTest, DuplicationSharesThePositionAndDup2Replaces) {
  uint32_t fd = open("f", KV_O_RDWR | KV_O_CREAT);
  uint32_t copy = call(KV_SYS_fcntl, fd, KV_F_DUPFD, 0).value;
  EXPECT_EQ(copy, fd + 1);
  put(kBuf, "abcdef");
  call(KV_SYS_write, fd, kBuf, 3);
  call(KV_SYS_write, copy, kBuf + 3, 3);
  EXPECT_EQ(call(KV_SYS_lseek, copy, 0, KV_SEEK_CUR).value, 6u);
  EXPECT_EQ(call(KV_SYS_close, fd).value, 0u);
  EXPECT_EQ(call(KV_SYS_lseek, copy, 0, KV_SEEK_SET).value, 0u) << "the copy outlives the original";

  // dup2 onto the console's output: writes to 1 now reach the file.
  EXPECT_EQ(call(KV_SYS_fcntl, copy, KV_F_DUP2FD, 1).value, 1u);
  EXPECT_EQ(call(KV_SYS_write, 1, kBuf + 4, 2).value, 2u);
  EXPECT_EQ(call(KV_SYS_fcntl, copy, KV_F_DUP2FD, copy).value, copy);
  EXPECT_EQ(call(KV_SYS_fcntl, copy, KV_F_DUP2FD, 256).value, kFailed);
  EXPECT_EQ(err(), KV_EBADF);
  EXPECT_EQ(call(KV_SYS_fcntl, copy, 3, 0).value, kFailed);
  EXPECT_EQ(err(), KV_EINVAL);
  call(KV_SYS_close, 1);
  call(KV_SYS_close, copy);
  EXPECT_EQ(kvtest_host::read_file(host("f")), (std::vector<uint8_t>{'e', 'f', 'c', 'd', 'e', 'f'}));
}

TEST_F(FilesTest, DescriptorLimitGivesEmfile) {
  process.descriptors.limit = 6;
  kvtest_host::write_file(host("f"), {});
  std::vector<uint32_t> fds;
  for (int i = 0; i < 3; ++i)
    fds.push_back(open("f", KV_O_RDONLY));
  EXPECT_EQ(fds, (std::vector<uint32_t>{3, 4, 5}));
  EXPECT_EQ(open("f", KV_O_RDONLY), kFailed);
  EXPECT_EQ(err(), KV_EMFILE);
  EXPECT_EQ(call(KV_SYS_fcntl, 3, KV_F_DUPFD, 0).value, kFailed);
  EXPECT_EQ(err(), KV_EMFILE);
  call(KV_SYS_close, 4);
  EXPECT_EQ(open("f", KV_O_RDONLY), 4u) << "the lowest free descriptor again";
}

TEST_F(FilesTest, ConsoleDescriptors) {
  EXPECT_EQ(call(KV_SYS_read, 0, kBuf, 10).value, 0u) << "input reads as end of file";
  EXPECT_EQ(call(KV_SYS_read, 2, kBuf, 10).value, 0u);
  EXPECT_EQ(call(KV_SYS_read, 1, kBuf, 10).value, kFailed);
  EXPECT_EQ(err(), KV_EBADF);
  EXPECT_EQ(call(KV_SYS_close, 2).value, 0u);
  EXPECT_TRUE(process.descriptors.find(2)) << "closing the console changes nothing";
  EXPECT_EQ(call(KV_SYS_lseek, 1, 0, KV_SEEK_SET).value, kFailed);
  EXPECT_EQ(err(), KV_ESPIPE);
}

TEST_F(FilesTest, BadDescriptorsGiveEbadf) {
  const int32_t numbers[] = {KV_SYS_read, KV_SYS_write, KV_SYS_close, KV_SYS_lseek, KV_SYS_fstat,
                             KV_SYS_fsync, KV_SYS_ftruncate, KV_SYS_fcntl, KV_SYS_fchdir};
  for (int32_t n : numbers)
    for (int32_t fd : {-1, 3, 255, 256, 1 << 20, INT32_MIN}) {
      EXPECT_EQ(call(n, static_cast<uint32_t>(fd), kBuf, 1).value, kFailed) << n << " " << fd;
      EXPECT_EQ(err(), KV_EBADF) << n << " " << fd;
    }
  for (uint32_t handle : {0u, 1u, 77u, 0xFFFFFFFFu}) {
    EXPECT_EQ(call(KV_SYS_readdir, handle, kBuf).value, kFailed);
    EXPECT_EQ(err(), KV_EBADF);
    EXPECT_EQ(call(KV_SYS_closedir, handle).value, kFailed);
    EXPECT_EQ(err(), KV_EBADF);
  }
}

TEST_F(FilesTest, BadPointersAndHugeCountsGiveEfault) {
  kvtest_host::write_file(host("f"), std::vector<uint8_t>(100, 'x'));
  uint32_t fd = open("f", KV_O_RDWR);
  std::filesystem::create_directory(host("d"));
  put(kPath2, "d");
  uint32_t handle = call(KV_SYS_opendir, kPath2).value;
  // A path that runs into the read-only page without its NUL, then off the end of mapped memory.
  std::string unterminated(0x100, 'p');
  m.memory.poke(kReadOnly + 0xf00, unterminated.data(), 0x100);
  const struct {
    const char *what;
    int32_t number;
    uint32_t w1, w2, w3;
  } cases[] = {
      {"open null path", KV_SYS_open, 0, KV_O_RDONLY, 0},
      {"open unmapped path", KV_SYS_open, kUnmapped, KV_O_RDONLY, 0},
      {"open path off the end", KV_SYS_open, kReadOnly + 0xf00, KV_O_RDONLY, 0},
      {"stat null path", KV_SYS_stat, 0, kBuf, 0},
      {"stat into read-only", KV_SYS_stat, kPath2, kReadOnly, 0},
      {"stat into null", KV_SYS_stat, kPath2, 0, 0},
      {"fstat into unmapped", KV_SYS_fstat, fd, kUnmapped, 0},
      {"mkdir wild", KV_SYS_mkdir, 0xFFFFFFF0, 0755, 0},
      {"rename wild target", KV_SYS_rename, kPath2, kUnmapped, 0},
      {"chdir null", KV_SYS_chdir, 0, 0, 0},
      {"read into read-only", KV_SYS_read, fd, kReadOnly, 10},
      {"read into null", KV_SYS_read, fd, 0, 10},
      {"read past the end of memory", KV_SYS_read, fd, 0xFFFFFFF0, 0x20},
      {"read huge count", KV_SYS_read, fd, kBuf, 0xFFFFFFFF},
      {"read wrapping", KV_SYS_read, fd, kBuf, 0x80000000},
      {"write huge count", KV_SYS_write, fd, kBuf, 0x7FFFFFFF},
      {"readdir into read-only", KV_SYS_readdir, handle, kReadOnly + 0xf80, 0},
      {"getcwd into unmapped", KV_SYS_getcwd, kUnmapped, 100, 0},
  };
  for (auto &c : cases) {
    EXPECT_EQ(call(c.number, c.w1, c.w2, c.w3).value, kFailed) << c.what;
    EXPECT_EQ(err(), KV_EFAULT) << c.what;
  }
  EXPECT_EQ(call(KV_SYS_lseek, fd, 0, KV_SEEK_CUR).value, 0u) << "nothing was consumed";
  EXPECT_EQ(std::filesystem::file_size(host("f")), 100u) << "nothing was written";
}

TEST_F(FilesTest, TraceDecodesPathsAndBuffers) {
  put(kBuf, "line\n\"q\"\x01 and more than sixteen");
  uint32_t fd = open("c:\\t.txt", KV_O_WRONLY | KV_O_CREAT, 0600);
  call(KV_SYS_write, fd, kBuf, 6);
  call(KV_SYS_write, fd, kBuf, 30);
  fflush(trace);
  rewind(trace);
  std::string text;
  char b[512];
  while (fgets(b, sizeof b, trace))
    text += b;
  EXPECT_NE(text.find("= 00000003 errno 0 open(\"c:\\t.txt\", 0x00000104, 0600)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("errno 0 write(3, \"line\\n\\\"\", 6)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("write(3, \"line\\n\\\"q\\\"\\x01 and mo\"..., 30)"), std::string::npos) << text;
}

} // namespace
