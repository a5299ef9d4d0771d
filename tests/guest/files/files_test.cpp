// The file services end to end through the entry points, in a root of their own (run with
// --max-files 16): files, descriptors, directories, the working directory, path forms, the
// sandbox's edges and file mappings. Every test removes what it made, except the file the
// escape test leaves for the check that runs after this program.
#include <kvtest.h>

#include "file_helpers.h"

using namespace filetest;

namespace {


struct Names {
  const char *name;
  uint8_t type;
  int seen;
};

// Reads every entry of the directory and counts each expected name; false if an entry is not
// among them or has the wrong type or lengths.
bool list_directory(const char *path, Names *names, int count) {
  int h = __syscall_opendir(path);
  if (h == 0)
    return false;
  kv_dirent e;
  bool ok = true;
  while (__syscall_readdir(h, &e) >= 0) {
    bool known = false;
    for (int i = 0; i < count; ++i)
      if (length_of(e.d_name) == length_of(names[i].name) &&
          same_bytes(e.d_name, names[i].name, length_of(e.d_name))) {
        known = true;
        ++names[i].seen;
        if (names[i].type != KV_DT_UNKNOWN && e.d_type != names[i].type)
          ok = false;
      }
    if (!known || e.d_reclen != sizeof(kv_dirent) || e.d_namlen != length_of(e.d_name))
      ok = false;
  }
  return __syscall_closedir(h) == 0 && ok;
}

char cwd_buffer[300];
const char *cwd() {
  return __syscall_getcwd(cwd_buffer, sizeof cwd_buffer) == 0 ? cwd_buffer : "(failed)";
}

} // namespace

TEST(Files, WriteReadSeekAndTruncate) {
  int fd = __syscall_open("/rw.txt", KV_O_RDWR | KV_O_CREAT, 0644);
  ASSERT_TRUE(fd >= 3);
  EXPECT_EQ(__syscall_write(fd, "0123456789", 10), 10);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 10L);

  char b[32] = {};
  EXPECT_EQ(__syscall_lseek(fd, 2, KV_SEEK_SET), 2L);
  EXPECT_EQ(__syscall_read(fd, b, 3), 3);
  EXPECT_TRUE(same_bytes(b, "234", 3));
  EXPECT_EQ(__syscall_lseek(fd, 1, KV_SEEK_CUR), 6L);
  EXPECT_EQ(__syscall_read(fd, b, sizeof b), 4);
  EXPECT_TRUE(same_bytes(b, "6789", 4));
  EXPECT_EQ(__syscall_read(fd, b, sizeof b), 0);
  EXPECT_EQ(__syscall_lseek(fd, -3, KV_SEEK_END), 7L);
  EXPECT_EQ(__syscall_read(fd, b, 3), 3);
  EXPECT_TRUE(same_bytes(b, "789", 3));
  EXPECT_FAILS(__syscall_lseek(fd, -20, KV_SEEK_CUR), KV_EINVAL);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 10L);

  // A write past the end leaves a hole that reads as zeros.
  EXPECT_EQ(__syscall_lseek(fd, 20, KV_SEEK_SET), 20L);
  EXPECT_EQ(__syscall_write(fd, "X", 1), 1);
  kv_stat st{};
  EXPECT_EQ(__syscall_fstat(fd, &st), 0);
  EXPECT_EQ(st.st_size, 21);
  EXPECT_EQ(__syscall_lseek(fd, 10, KV_SEEK_SET), 10L);
  EXPECT_EQ(__syscall_read(fd, b, 10), 10);
  EXPECT_TRUE(same_bytes(b, "\0\0\0\0\0\0\0\0\0\0", 10));

  // ftruncate shortens and lengthens without moving the offset; truncate works by name.
  EXPECT_EQ(__syscall_ftruncate(fd, 4), 0);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 20L);
  EXPECT_EQ(__syscall_fstat(fd, &st), 0);
  EXPECT_EQ(st.st_size, 4);
  EXPECT_EQ(__syscall_ftruncate(fd, 6), 0);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_SET), 0L);
  EXPECT_EQ(__syscall_read(fd, b, sizeof b), 6);
  EXPECT_TRUE(same_bytes(b, "0123\0\0", 6));
  EXPECT_EQ(__syscall_truncate("/rw.txt", 2), 0);
  EXPECT_EQ(stat_of("/rw.txt").st_size, 2);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_END), 2L);
  EXPECT_EQ(__syscall_fsync(fd), 0);

  EXPECT_EQ(__syscall_close(fd), 0);
  EXPECT_FAILS(__syscall_close(fd), KV_EBADF);
  EXPECT_EQ(__syscall_unlink("/rw.txt"), 0);
  EXPECT_FAILS(__syscall_stat("/rw.txt", &st), KV_ENOENT);
}

TEST(Files, StatAndFstatGiveTypesSizesAndIdentity) {
  ASSERT_EQ(__syscall_mkdir("/st", 0755), 0);
  ASSERT_EQ(make_file("/st/f", "abc"), 0);
  kv_stat dir = stat_of("/st"), file = stat_of("/st/f");
  EXPECT_EQ(type_of(dir), static_cast<uint32_t>(KV_S_IFDIR));
  EXPECT_EQ(dir.st_mode & 0700, 0700u);
  EXPECT_EQ(type_of(file), static_cast<uint32_t>(KV_S_IFREG));
  EXPECT_EQ(file.st_size, 3);
  EXPECT_EQ(file.st_nlink, 1u);
  EXPECT_TRUE(file.st_mtime_sec > 1500000000);
  EXPECT_NE(file.st_ino, dir.st_ino);

  int fd = __syscall_open("/st/f", KV_O_RDONLY, 0);
  int dfd = __syscall_open("/st", KV_O_RDONLY, 0);
  ASSERT_TRUE(fd >= 3 && dfd >= 3);
  kv_stat st{};
  EXPECT_EQ(__syscall_fstat(fd, &st), 0);
  EXPECT_EQ(st.st_ino, file.st_ino);
  EXPECT_EQ(st.st_size, 3);
  EXPECT_EQ(__syscall_fstat(dfd, &st), 0);
  EXPECT_EQ(type_of(st), static_cast<uint32_t>(KV_S_IFDIR));
  EXPECT_EQ(st.st_ino, dir.st_ino);
  __syscall_close(fd);
  __syscall_close(dfd);

  EXPECT_FAILS(__syscall_stat("/st/missing", &st), KV_ENOENT);
  EXPECT_FAILS(__syscall_stat("/st/f/below", &st), KV_ENOTDIR);
  EXPECT_EQ(__syscall_unlink("/st/f"), 0);
  EXPECT_EQ(__syscall_rmdir("/st"), 0);
}

TEST(Files, RenameRemoveAndUnlink) {
  ASSERT_EQ(make_file("/old", "one"), 0);
  ASSERT_EQ(make_file("/other", "two"), 0);
  EXPECT_EQ(__syscall_rename("/old", "/new"), 0);
  kv_stat st{};
  EXPECT_FAILS(__syscall_stat("/old", &st), KV_ENOENT);
  char b[16];
  EXPECT_EQ(read_back("/new", b, sizeof b), 3);
  EXPECT_STREQ(b, "one");
  // Onto an existing name: replaced.
  EXPECT_EQ(__syscall_rename("/other", "/new"), 0);
  EXPECT_EQ(read_back("/new", b, sizeof b), 3);
  EXPECT_STREQ(b, "two");
  EXPECT_FAILS(__syscall_rename("/old", "/newer"), KV_ENOENT);

  ASSERT_EQ(__syscall_mkdir("/gone", 0755), 0);
  EXPECT_FAILS(__syscall_unlink("/gone"), KV_EISDIR);
  EXPECT_FAILS(__syscall_rmdir("/new"), KV_ENOTDIR);
  EXPECT_EQ(__syscall_remove("/gone"), 0);
  EXPECT_EQ(__syscall_remove("/new"), 0);
  EXPECT_FAILS(__syscall_remove("/new"), KV_ENOENT);
  EXPECT_FAILS(__syscall_unlink("/new"), KV_ENOENT);
  EXPECT_FAILS(__syscall_rmdir("/gone"), KV_ENOENT);
}

TEST(Files, AccessChecksExistenceAndModes) {
  ASSERT_EQ(make_file("/acc", "x"), 0);
  EXPECT_EQ(__syscall_access("/acc", KV_F_OK), 0);
  EXPECT_EQ(__syscall_access("/acc", KV_R_OK | KV_W_OK), 0);
  EXPECT_FAILS(__syscall_access("/acc", KV_X_OK), KV_EACCES);
  EXPECT_EQ(__syscall_access("/", KV_X_OK), 0);
  EXPECT_FAILS(__syscall_access("/missing", KV_F_OK), KV_ENOENT);
  EXPECT_FAILS(__syscall_access("/acc", 8), KV_EINVAL);
  EXPECT_EQ(__syscall_unlink("/acc"), 0);
}

TEST(Descriptors, DupAndDup2ShareTheOffset) {
  int fd = __syscall_open("/dup", KV_O_RDWR | KV_O_CREAT | KV_O_TRUNC, 0644);
  ASSERT_TRUE(fd >= 3);
  ASSERT_EQ(__syscall_write(fd, "abcdef", 6), 6);
  int copy = __syscall_fcntl(fd, KV_F_DUPFD, 0);
  ASSERT_TRUE(copy >= 3);
  EXPECT_NE(copy, fd);
  EXPECT_EQ(__syscall_lseek(fd, 1, KV_SEEK_SET), 1L);
  char b[8] = {};
  EXPECT_EQ(__syscall_read(copy, b, 3), 3);
  EXPECT_TRUE(same_bytes(b, "bcd", 3));
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 4L);

  EXPECT_EQ(__syscall_fcntl(fd, KV_F_DUP2FD, 12), 12);
  EXPECT_EQ(__syscall_read(12, b, 8), 2);
  EXPECT_TRUE(same_bytes(b, "ef", 2));
  EXPECT_EQ(__syscall_lseek(copy, 0, KV_SEEK_CUR), 6L);
  EXPECT_EQ(__syscall_fcntl(fd, KV_F_DUP2FD, fd), fd);

  // Duplicating onto an open descriptor closes what was there first.
  ASSERT_EQ(make_file("/dup2", "zz"), 0);
  int other = __syscall_open("/dup2", KV_O_RDONLY, 0);
  ASSERT_TRUE(other >= 3);
  EXPECT_EQ(__syscall_fcntl(fd, KV_F_DUP2FD, other), other);
  EXPECT_EQ(__syscall_lseek(other, 0, KV_SEEK_SET), 0L);
  EXPECT_EQ(__syscall_read(other, b, 8), 6);
  EXPECT_TRUE(same_bytes(b, "abcdef", 6));

  // Command 0 takes the lowest free descriptor at or above its argument.
  int high = __syscall_fcntl(fd, KV_F_DUPFD, 10);
  EXPECT_TRUE(high >= 10 && high != 12);
  EXPECT_FAILS(__syscall_fcntl(fd, 3, 0), KV_EINVAL);

  // The original may go; the copies stay usable.
  EXPECT_EQ(__syscall_close(fd), 0);
  EXPECT_EQ(__syscall_lseek(copy, 0, KV_SEEK_SET), 0L);
  EXPECT_EQ(__syscall_read(copy, b, 2), 2);
  EXPECT_TRUE(same_bytes(b, "ab", 2));
  const int copies[] = {copy, 12, other, high};
  for (int d : copies)
    EXPECT_EQ(__syscall_close(d), 0);
  EXPECT_EQ(__syscall_unlink("/dup"), 0);
  EXPECT_EQ(__syscall_unlink("/dup2"), 0);
}

TEST(Files, OpenFlagsAppendExclusiveTruncate) {
  ASSERT_EQ(make_file("/flags", "ab"), 0);
  int fd = __syscall_open("/flags", KV_O_WRONLY | KV_O_APPEND, 0);
  ASSERT_TRUE(fd >= 3);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_SET), 0L);
  EXPECT_EQ(__syscall_write(fd, "cd", 2), 2);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 4L);
  __syscall_close(fd);
  char b[16];
  EXPECT_EQ(read_back("/flags", b, sizeof b), 4);
  EXPECT_STREQ(b, "abcd");

  fd = __syscall_open("/flags", KV_O_RDWR | KV_O_TRUNC, 0);
  ASSERT_TRUE(fd >= 3);
  EXPECT_EQ(stat_of("/flags").st_size, 0);
  __syscall_close(fd);

  fd = __syscall_open("/flags.new", KV_O_RDWR | KV_O_CREAT | KV_O_EXCL, 0600);
  EXPECT_TRUE(fd >= 3);
  __syscall_close(fd);
  EXPECT_EQ(stat_of("/flags.new").st_mode & 0777, 0600u);

  ASSERT_EQ(__syscall_mkdir("/flags.d", 0755), 0);
  ASSERT_EQ(make_file("/flags", "kept"), 0);
  const struct {
    const char *path;
    int flags;
    int error;
  } refused[] = {
      {"/flags", KV_O_WRONLY | KV_O_CREAT | KV_O_EXCL, KV_EEXIST},
      {"/flags.d", KV_O_RDWR | KV_O_CREAT | KV_O_EXCL, KV_EEXIST},
      {"/flags", 0, KV_EINVAL},
      {"/flags", KV_O_CREAT | KV_O_TRUNC, KV_EINVAL},
      {"/fresh", KV_O_CREAT, KV_EINVAL},
      {"/flags", KV_O_RDONLY | 0x10000, KV_EINVAL},
      {"/absent", KV_O_RDONLY, KV_ENOENT},
      {"/absent/f", KV_O_WRONLY | KV_O_CREAT, KV_ENOENT},
      {"/flags/f", KV_O_WRONLY | KV_O_CREAT, KV_ENOTDIR},
      {"/flags.d", KV_O_WRONLY, KV_EISDIR},
  };
  for (auto &c : refused)
    EXPECT_FAILS(__syscall_open(c.path, c.flags, 0644), c.error);
  // Refused opens create and truncate nothing.
  kv_stat st;
  EXPECT_FAILS(__syscall_stat("/absent", &st), KV_ENOENT);
  EXPECT_FAILS(__syscall_stat("/fresh", &st), KV_ENOENT);
  EXPECT_EQ(stat_of("/flags").st_size, 4);

  // A read-only descriptor cannot write, a write-only one cannot read.
  int ro = __syscall_open("/flags.new", KV_O_RDONLY, 0);
  int wo = __syscall_open("/flags.new", KV_O_WRONLY, 0);
  ASSERT_TRUE(ro >= 3 && wo >= 3);
  EXPECT_FAILS(__syscall_write(ro, "x", 1), KV_EBADF);
  EXPECT_FAILS(__syscall_read(wo, b, 1), KV_EBADF);
  EXPECT_FAILS(__syscall_ftruncate(ro, 0), KV_EINVAL);
  __syscall_close(ro);
  __syscall_close(wo);
  EXPECT_EQ(__syscall_unlink("/flags"), 0);
  EXPECT_EQ(__syscall_unlink("/flags.new"), 0);
  EXPECT_EQ(__syscall_rmdir("/flags.d"), 0);
}

TEST(Directories, MakeListAndRemove) {
  ASSERT_EQ(__syscall_mkdir("/list", 0755), 0);
  EXPECT_FAILS(__syscall_mkdir("/list", 0755), KV_EEXIST);
  // The root exists and cannot go.
  EXPECT_FAILS(__syscall_mkdir("/", 0755), KV_EEXIST);
  EXPECT_FAILS(__syscall_mkdir("c:\\..", 0755), KV_EEXIST);
  EXPECT_FAILS(__syscall_rmdir("/"), KV_EBUSY);
  EXPECT_FAILS(__syscall_mkdir("/none/list", 0755), KV_ENOENT);
  ASSERT_EQ(make_file("/list/a", "1"), 0);
  ASSERT_EQ(make_file("/list/bb", "22"), 0);
  ASSERT_EQ(__syscall_mkdir("/list/sub", 0755), 0);

  // "." and ".." are listed as the host lists them.
  Names names[] = {{".", KV_DT_DIR, 0}, {"..", KV_DT_DIR, 0}, {"a", KV_DT_REG, 0},
                   {"bb", KV_DT_REG, 0}, {"sub", KV_DT_DIR, 0}};
  EXPECT_TRUE(list_directory("/list", names, 5));
  for (auto &n : names)
    EXPECT_EQ(n.seen, 1);

  // The end is not an error: errno stays as it was, and stays the end.
  int h = __syscall_opendir("c:\\list\\sub");
  ASSERT_NE(h, 0);
  kv_dirent e;
  int entries = 0;
  while (__syscall_readdir(h, &e) >= 0)
    ++entries;
  EXPECT_EQ(entries, 2);
  __set_errno(0);
  EXPECT_TRUE(__syscall_readdir(h, &e) < 0);
  EXPECT_EQ(__read_errno(), 0);
  EXPECT_EQ(__syscall_closedir(h), 0);
  EXPECT_FAILS(__syscall_closedir(h), KV_EBADF);
  __set_errno(0);
  EXPECT_TRUE(__syscall_readdir(h, &e) < 0);
  EXPECT_EQ(__read_errno(), KV_EBADF);

  EXPECT_FAILS(__syscall_rmdir("/list"), KV_ENOTEMPTY);
  EXPECT_FAILS(__syscall_opendir("/list/a") == 0 ? -1 : 0, KV_ENOTDIR);
  EXPECT_FAILS(__syscall_opendir("/list/none") == 0 ? -1 : 0, KV_ENOENT);
  EXPECT_EQ(__syscall_rmdir("/list/sub"), 0);
  EXPECT_EQ(__syscall_unlink("/list/a"), 0);
  EXPECT_EQ(__syscall_remove("/list/bb"), 0);
  EXPECT_EQ(__syscall_rmdir("/list"), 0);
  EXPECT_FAILS(__syscall_opendir("/list") == 0 ? -1 : 0, KV_ENOENT);
}

TEST(WorkingDirectory, ChdirGetcwdAndFchdirWithRelativePaths) {
  ASSERT_EQ(__syscall_mkdir("/wd", 0755), 0);
  ASSERT_EQ(__syscall_mkdir("/wd/in", 0755), 0);
  EXPECT_STREQ(cwd(), "c:\\");
  EXPECT_EQ(__syscall_chdir("wd"), 0);
  EXPECT_STREQ(cwd(), "c:\\wd");
  ASSERT_EQ(make_file("note", "n"), 0);
  EXPECT_EQ(stat_of("/wd/note").st_size, 1);
  EXPECT_EQ(__syscall_chdir("in"), 0);
  EXPECT_STREQ(cwd(), "c:\\wd\\in");
  EXPECT_EQ(stat_of("../note").st_size, 1);
  EXPECT_EQ(__syscall_chdir(".."), 0);
  EXPECT_STREQ(cwd(), "c:\\wd");

  // Failures leave the directory where it was.
  EXPECT_FAILS(__syscall_chdir("none"), KV_ENOENT);
  EXPECT_FAILS(__syscall_chdir("note"), KV_ENOTDIR);
  EXPECT_STREQ(cwd(), "c:\\wd");

  int dir = __syscall_open("in", KV_O_RDONLY, 0);
  int file = __syscall_open("note", KV_O_RDONLY, 0);
  ASSERT_TRUE(dir >= 3 && file >= 3);
  EXPECT_EQ(__syscall_chdir("/"), 0);
  EXPECT_EQ(__syscall_fchdir(dir), 0);
  EXPECT_STREQ(cwd(), "c:\\wd\\in");
  EXPECT_FAILS(__syscall_fchdir(file), KV_ENOTDIR);
  EXPECT_FAILS(__syscall_fchdir(1), KV_ENOTDIR);
  EXPECT_STREQ(cwd(), "c:\\wd\\in");
  __syscall_close(dir);
  __syscall_close(file);

  // Past the root is the root.
  EXPECT_EQ(__syscall_chdir("../../../.."), 0);
  EXPECT_STREQ(cwd(), "c:\\");
  EXPECT_EQ(__syscall_unlink("wd/note"), 0);
  EXPECT_EQ(__syscall_rmdir("wd/in"), 0);
  EXPECT_EQ(__syscall_rmdir("wd"), 0);
}

TEST(Paths, DriveSlashAndRelativeFormsReachTheSameFile) {
  ASSERT_EQ(__syscall_mkdir("c:\\pf", 0755), 0);
  ASSERT_EQ(__syscall_mkdir("C:/pf/a", 0755), 0);
  ASSERT_EQ(make_file("/pf/a/b", "same"), 0);
  uint32_t ino = stat_of("/pf/a/b").st_ino;
  ASSERT_NE(ino, 0u);
  const char *forms[] = {"c:\\pf\\a\\b", "C:/pf/a/b", "C:\\pf/a\\b", "/pf/a/b",   "\\pf\\a\\b",
                         "pf/a/b",       "pf\\a\\b",  "c:pf\\a\\b",  "//pf//a/./b", "/pf/x/../a/b"};
  for (const char *path : forms) {
    char b[16] = {};
    EXPECT_EQ(read_back(path, b, sizeof b), 4);
    EXPECT_STREQ(b, "same");
    EXPECT_EQ(stat_of(path).st_ino, ino);
  }
  EXPECT_EQ(__syscall_chdir("C:\\pf"), 0);
  EXPECT_EQ(stat_of("a/b").st_ino, ino);
  EXPECT_EQ(stat_of("a\\..\\a\\b").st_ino, ino);
  EXPECT_EQ(__syscall_chdir("c:\\"), 0);
  kv_stat st;
  EXPECT_FAILS(__syscall_stat("d:\\pf\\a\\b", &st), KV_ENOENT);
  EXPECT_FAILS(__syscall_stat("", &st), KV_ENOENT);
  EXPECT_EQ(__syscall_unlink("C:/pf/a/b"), 0);
  EXPECT_EQ(__syscall_rmdir("pf\\a"), 0);
  EXPECT_EQ(__syscall_rmdir("/pf"), 0);
}

// The fixture made links in the root: secret_rel -> ../outside/secret.txt, secret_abs -> the
// same file by its absolute host path, up -> .., hostetc -> /etc.
TEST(Sandbox, EscapesStayInsideTheRoot) {
  uint32_t root = stat_of("/").st_ino;
  ASSERT_NE(root, 0u);
  EXPECT_EQ(stat_of("..").st_ino, root);
  EXPECT_EQ(stat_of("c:\\..\\..").st_ino, root);
  EXPECT_EQ(stat_of("up").st_ino, root);
  EXPECT_EQ(stat_of("up/up/up").st_ino, root);

  kv_stat st;
  const char *outside[] = {"/../../etc/passwd", "../../../etc/passwd", "c:\\..\\etc\\passwd",
                           "/etc/passwd",       "hostetc/passwd",      "secret_rel",
                           "secret_abs",        "up/outside/secret.txt"};
  for (const char *path : outside) {
    EXPECT_FAILS(__syscall_open(path, KV_O_RDONLY, 0), KV_ENOENT);
    EXPECT_FAILS(__syscall_stat(path, &st), KV_ENOENT);
  }
  EXPECT_FAILS(__syscall_opendir("hostetc") == 0 ? -1 : 0, KV_ENOENT);

  // Through "up" the program sees its own root.
  Names names[] = {{"secret_rel", KV_DT_LNK, 0}, {"up", KV_DT_LNK, 0}, {".", 0, 0}, {"..", 0, 0},
                   {"secret_abs", KV_DT_LNK, 0}, {"hostetc", KV_DT_LNK, 0}};
  list_directory("up", names, 6);
  EXPECT_EQ(names[0].seen, 1);
  EXPECT_EQ(names[1].seen, 1);

  // Creating through the escaping link makes the file inside the root; the check after this
  // program confirms that the host file next to the root is unchanged.
  ASSERT_EQ(__syscall_mkdir("/outside", 0755), 0);
  int fd = __syscall_open("secret_rel", kCreate, 0644);
  ASSERT_TRUE(fd >= 3);
  EXPECT_EQ(__syscall_write(fd, "inside\n", 7), 7);
  __syscall_close(fd);
  char b[16];
  EXPECT_EQ(read_back("/outside/secret.txt", b, sizeof b), 7);
  EXPECT_STREQ(b, "inside\n");
  EXPECT_EQ(read_back("secret_rel", b, sizeof b), 7);
  EXPECT_FAILS(__syscall_open("secret_abs", KV_O_RDONLY, 0), KV_ENOENT);
  // A new name above the root is a name in the root.
  EXPECT_EQ(__syscall_rename("/outside/secret.txt", "/../../moved"), 0);
  EXPECT_EQ(stat_of("/moved").st_size, 7);
  EXPECT_EQ(__syscall_rename("c:\\moved", "/outside/secret.txt"), 0);
}

// A name ending in a separator, "." or ".." must be a directory.
TEST(Paths, TrailingSeparatorNamesADirectory) {
  ASSERT_EQ(make_file("/tf", "t"), 0);
  kv_stat st;
  const char *file_as_dir[] = {"/tf/", "c:\\tf\\", "tf/.", "tf//"};
  for (const char *path : file_as_dir) {
    EXPECT_FAILS(__syscall_stat(path, &st), KV_ENOTDIR);
    EXPECT_FAILS(__syscall_open(path, KV_O_RDONLY, 0), KV_ENOTDIR);
    EXPECT_FAILS(__syscall_unlink(path), KV_ENOTDIR);
  }
  EXPECT_FAILS(__syscall_open("/tnew/", kCreate, 0644), KV_EISDIR);
  EXPECT_FAILS(__syscall_stat("/tnew", &st), KV_ENOENT);
  EXPECT_EQ(__syscall_mkdir("/td/", 0755), 0);
  EXPECT_EQ(stat_of("td\\").st_mode & KV_S_IFMT, static_cast<uint32_t>(KV_S_IFDIR));
  EXPECT_EQ(__syscall_rmdir("c:/td/"), 0);
  EXPECT_EQ(__syscall_unlink("/tf"), 0);
}

// The root's ".." is the root: the listing shows nothing of the host above it.
TEST(Sandbox, RootListingsParentIsTheRoot) {
  uint32_t root = stat_of("/").st_ino;
  int h = __syscall_opendir("c:\\");
  ASSERT_NE(h, 0);
  kv_dirent e;
  int seen = 0;
  while (__syscall_readdir(h, &e) >= 0)
    if (length_of(e.d_name) == 2 && same_bytes(e.d_name, "..", 2)) {
      ++seen;
      EXPECT_EQ(e.d_ino, root);
    }
  EXPECT_EQ(__syscall_closedir(h), 0);
  EXPECT_EQ(seen, 1);
}

TEST(Descriptors, LimitGivesEmfileAndClosingFrees) {
  ASSERT_EQ(make_file("/many", "m"), 0);
  int fds[20];
  int opened = 0;
  __set_errno(0);
  while (opened < 20 && (fds[opened] = __syscall_open("/many", KV_O_RDONLY, 0)) >= 0)
    ++opened;
  // 0 to 2 are the console; 3 to 15 are what a limit of 16 leaves.
  EXPECT_EQ(opened, 13);
  EXPECT_EQ(__read_errno(), KV_EMFILE);
  for (int i = 0; i < opened; ++i)
    EXPECT_EQ(fds[i], 3 + i);
  EXPECT_FAILS(__syscall_fcntl(3, KV_F_DUPFD, 0), KV_EMFILE);
  EXPECT_FAILS(__syscall_fcntl(3, KV_F_DUP2FD, 16), KV_EBADF);

  EXPECT_EQ(__syscall_close(fds[5]), 0);
  EXPECT_EQ(__syscall_open("/many", KV_O_RDONLY, 0), fds[5]);
  EXPECT_FAILS(__syscall_open("/many", KV_O_RDONLY, 0), KV_EMFILE);
  for (int i = 0; i < opened; ++i)
    EXPECT_EQ(__syscall_close(fds[i]), 0);
  int again = __syscall_open("/many", KV_O_RDONLY, 0);
  EXPECT_EQ(again, 3);
  __syscall_close(again);
  EXPECT_EQ(__syscall_unlink("/many"), 0);

  // Directory streams have the same limit.
  int handles[16];
  for (int i = 0; i < 16; ++i) {
    handles[i] = __syscall_opendir("/");
    EXPECT_NE(handles[i], 0);
  }
  __set_errno(0);
  EXPECT_EQ(__syscall_opendir("/"), 0);
  EXPECT_EQ(__read_errno(), KV_EMFILE);
  EXPECT_EQ(__syscall_closedir(handles[7]), 0);
  handles[7] = __syscall_opendir("/");
  EXPECT_NE(handles[7], 0);
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(__syscall_closedir(handles[i]), 0);
}

TEST(Mmap, FileMappingsPrivateAndShared) {
  int fd = __syscall_open("/map.bin", KV_O_RDWR | KV_O_CREAT | KV_O_TRUNC, 0644);
  ASSERT_TRUE(fd >= 3);
  static char page[4096];
  for (auto &c : page)
    c = 'a';
  ASSERT_EQ(__syscall_write(fd, page, sizeof page), 4096);
  ASSERT_EQ(__syscall_write(fd, "hello", 5), 5);
  void *const failed = reinterpret_cast<void *>(KV_MAP_FAILED);
  constexpr int kRW = KV_PROT_READ | KV_PROT_WRITE;

  // Private: a copy from the offset, zeros after the end of the file, stores kept private.
  auto *p = static_cast<volatile char *>(__syscall_mmap(nullptr, 8192, kRW, KV_MAP_PRIVATE, fd, 0));
  ASSERT_TRUE(p != failed);
  EXPECT_EQ(p[0], 'a');
  EXPECT_EQ(p[4095], 'a');
  EXPECT_EQ(p[4096], 'h');
  EXPECT_EQ(p[4100], 'o');
  EXPECT_EQ(p[4101], 0);
  EXPECT_EQ(p[8191], 0);
  p[0] = 'Z';
  char b[8] = {};
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_SET), 0L);
  EXPECT_EQ(__syscall_read(fd, b, 1), 1);
  EXPECT_EQ(b[0], 'a');
  EXPECT_EQ(__syscall_munmap(const_cast<char *>(p), 8192), 0);

  // Shared from the second page: stores are in the file, file writes in the mapping.
  auto *s = static_cast<volatile char *>(__syscall_mmap(nullptr, 8192, kRW, KV_MAP_SHARED, fd, 4096));
  ASSERT_TRUE(s != failed);
  EXPECT_EQ(s[0], 'h');
  EXPECT_EQ(s[5], 0);
  s[1] = 'E';
  EXPECT_EQ(__syscall_lseek(fd, 4097, KV_SEEK_SET), 4097L);
  EXPECT_EQ(__syscall_read(fd, b, 1), 1);
  EXPECT_EQ(b[0], 'E');
  EXPECT_EQ(__syscall_write(fd, "L", 1), 1);
  EXPECT_EQ(s[2], 'L');
  // A page wholly past the end of the file reads as zeros; the file does not grow.
  EXPECT_EQ(s[4096], 0);
  s[4096] = 'x';
  EXPECT_EQ(stat_of("/map.bin").st_size, 4101);
  EXPECT_EQ(__syscall_munmap(const_cast<char *>(s), 8192), 0);
  EXPECT_EQ(__syscall_lseek(fd, 4096, KV_SEEK_SET), 4096L);
  EXPECT_EQ(__syscall_read(fd, b, 5), 5);
  EXPECT_TRUE(same_bytes(b, "hELlo", 5));

  // What cannot be mapped.
  int ro = __syscall_open("/map.bin", KV_O_RDONLY, 0);
  int dir = __syscall_open("/", KV_O_RDONLY, 0);
  ASSERT_TRUE(ro >= 3 && dir >= 3);
  const struct {
    int prot, flags, fd;
    long offset;
    int error;
  } refused[] = {
      {KV_PROT_READ, KV_MAP_PRIVATE, fd, 100, KV_EINVAL},
      {KV_PROT_READ, KV_MAP_SHARED, 1, 0, KV_ENODEV},
      {KV_PROT_READ, KV_MAP_PRIVATE, dir, 0, KV_ENODEV},
      {kRW, KV_MAP_SHARED, ro, 0, KV_EACCES},
  };
  for (auto &c : refused) {
    __set_errno(0);
    EXPECT_EQ(__syscall_mmap(nullptr, 4096, c.prot, c.flags, c.fd, c.offset), failed);
    EXPECT_EQ(__read_errno(), c.error);
  }
  __syscall_close(ro);
  __syscall_close(dir);
  __syscall_close(fd);
  EXPECT_EQ(__syscall_unlink("/map.bin"), 0);
}

TEST(Mmap, SharedMemoryObjectsSharePages) {
  int a = __syscall_shm_open("/files_test", KV_O_RDWR | KV_O_CREAT | KV_O_EXCL, 0600);
  ASSERT_TRUE(a >= 3);
  int b = __syscall_shm_open("/files_test", KV_O_RDWR, 0);
  ASSERT_TRUE(b >= 3);
  EXPECT_EQ(__syscall_ftruncate(a, 4096), 0);
  constexpr int kRW = KV_PROT_READ | KV_PROT_WRITE;
  auto *x = static_cast<volatile char *>(__syscall_mmap(nullptr, 4096, kRW, KV_MAP_SHARED, a, 0));
  auto *y = static_cast<volatile char *>(__syscall_mmap(nullptr, 4096, kRW, KV_MAP_SHARED, b, 0));
  ASSERT_TRUE(x != reinterpret_cast<void *>(KV_MAP_FAILED));
  ASSERT_TRUE(y != reinterpret_cast<void *>(KV_MAP_FAILED));
  EXPECT_NE(x, y);
  x[10] = 42;
  EXPECT_EQ(y[10], 42);
  __syscall_munmap(const_cast<char *>(x), 4096);
  __syscall_munmap(const_cast<char *>(y), 4096);
  __syscall_close(a);
  __syscall_close(b);
  EXPECT_EQ(__syscall_shm_unlink("/files_test"), 0);
}
