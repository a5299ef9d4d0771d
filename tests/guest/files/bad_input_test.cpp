// Bad input to the file services: null and wild pointers, ranges that run off mapped memory,
// bad descriptors and huge counts. Each call fails with its failure mark and errno, nothing is
// lost, and the program (and kvrun) carries on.
#include <kvtest.h>

#include "file_helpers.h"

using namespace filetest;

namespace {

constexpr uint32_t kPage = 4096;
const auto kWild = reinterpret_cast<char *>(0xDEAD0000u); // never mapped
const auto kLow = reinterpret_cast<char *>(0x10u);        // just above null


// Two mapped pages: the first read-only, the second read-write, then a hole where a third was.
struct Pages {
  char *ro = nullptr, *rw = nullptr, *hole = nullptr;
  Pages() {
    void *p = __syscall_mmap(nullptr, 3 * kPage, KV_PROT_READ | KV_PROT_WRITE,
                             KV_MAP_PRIVATE | KV_MAP_ANONYMOUS, -1, 0);
    if (p == reinterpret_cast<void *>(KV_MAP_FAILED))
      return;
    char *base = static_cast<char *>(p);
    __syscall_munmap(base + 2 * kPage, kPage);
    __syscall_mmap(base, kPage, KV_PROT_READ, KV_MAP_PRIVATE | KV_MAP_ANONYMOUS | KV_MAP_FIXED,
                   -1, 0);
    ro = base;
    rw = base + kPage;
    hole = base + 2 * kPage;
  }
  ~Pages() {
    if (ro)
      __syscall_munmap(ro, 2 * kPage);
  }
  // `text` (with its NUL) placed so that its NUL is the last byte of the writable page.
  char *at_page_end(const char *text) {
    size_t n = length_of(text) + 1;
    char *at = rw + kPage - n;
    for (size_t i = 0; i < n; ++i)
      at[i] = text[i];
    return at;
  }
};

} // namespace

TEST(BadInput, PathPointersGiveEfault) {
  Pages pages;
  ASSERT_TRUE(pages.rw != nullptr);
  // Characters up to the end of the page and no NUL before the hole.
  char *unterminated = pages.hole - 50;
  for (int i = 0; i < 50; ++i)
    unterminated[i] = 'a';
  const char *bad_paths[] = {nullptr, kLow, kWild, unterminated, pages.hole};
  kv_stat st;
  for (const char *path : bad_paths) {
    EXPECT_FAILS(__syscall_open(path, KV_O_RDWR | KV_O_CREAT, 0644), KV_EFAULT);
    EXPECT_FAILS(__syscall_stat(path, &st), KV_EFAULT);
    EXPECT_FAILS(__syscall_access(path, KV_F_OK), KV_EFAULT);
    EXPECT_FAILS(__syscall_mkdir(path, 0755), KV_EFAULT);
    EXPECT_FAILS(__syscall_rmdir(path), KV_EFAULT);
    EXPECT_FAILS(__syscall_unlink(path), KV_EFAULT);
    EXPECT_FAILS(__syscall_remove(path), KV_EFAULT);
    EXPECT_FAILS(__syscall_truncate(path, 0), KV_EFAULT);
    EXPECT_FAILS(__syscall_chdir(path), KV_EFAULT);
    EXPECT_FAILS(__syscall_opendir(path) == 0 ? -1 : 0, KV_EFAULT);
    EXPECT_FAILS(__syscall_rename(path, "/x"), KV_EFAULT);
  }
  // A path whose NUL is the last mapped byte is fine: it names a file that is not there.
  EXPECT_FAILS(__syscall_stat(pages.at_page_end("/edge"), &st), KV_ENOENT);

  // A bad new name keeps the old file where it was.
  ASSERT_EQ(make_file("/keep", "k"), 0);
  EXPECT_FAILS(__syscall_rename("/keep", kWild), KV_EFAULT);
  EXPECT_EQ(stat_of("/keep").st_size, 1);
  EXPECT_EQ(__syscall_unlink("/keep"), 0);
}

TEST(BadInput, OverlongPathsAndNames) {
  static char path[4200];
  path[0] = '/';
  for (int i = 1; i < 4097; ++i)
    path[i] = (i % 100 == 0) ? '/' : 'p';
  path[4097] = 0;
  kv_stat st;
  EXPECT_FAILS(__syscall_stat(path, &st), KV_ENAMETOOLONG);
  EXPECT_FAILS(__syscall_open(path, KV_O_RDONLY, 0), KV_ENAMETOOLONG);
  // One component of 256 characters.
  for (int i = 1; i < 257; ++i)
    path[i] = 'n';
  path[257] = 0;
  EXPECT_FAILS(__syscall_open(path, KV_O_WRONLY | KV_O_CREAT, 0644), KV_ENAMETOOLONG);
  path[256] = 0;
  EXPECT_FAILS(__syscall_stat(path, &st), KV_ENOENT);
}

TEST(BadInput, BuffersAndRecordsOutsideMemory) {
  Pages pages;
  ASSERT_TRUE(pages.rw != nullptr);
  int fd = __syscall_open("/buffers", KV_O_RDWR | KV_O_CREAT | KV_O_TRUNC, 0644);
  ASSERT_TRUE(fd >= 3);
  ASSERT_EQ(__syscall_write(fd, "0123456789", 10), 10);
  ASSERT_EQ(__syscall_lseek(fd, 0, KV_SEEK_SET), 0L);

  // Reads that cannot be delivered consume nothing.
  const struct {
    char *buffer;
    size_t count;
  } bad_reads[] = {
      {nullptr, 4},
      {kWild, 4},
      {pages.ro, 4},                       // not writable
      {pages.rw - 2, 4},                   // starts in the read-only page
      {pages.rw, 3 * kPage},               // runs on past the writable page
      {pages.rw + kPage - 1, 0x7FFFFFFF},  // past the end of memory
      {pages.rw, 0xFFFFFFFFu},             // a huge count
  };
  for (auto &c : bad_reads) {
    EXPECT_FAILS(__syscall_read(fd, c.buffer, c.count), KV_EFAULT);
    EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 0L);
  }
  const struct {
    const char *buffer;
    size_t count;
  } bad_writes[] = {
      {nullptr, 1}, {kLow, 8}, {kWild, 4}, {pages.hole - 1, 2}, {pages.rw, 0xFFFFFFFFu},
  };
  for (auto &c : bad_writes) {
    EXPECT_FAILS(__syscall_write(fd, c.buffer, c.count), KV_EFAULT);
    EXPECT_EQ(stat_of("/buffers").st_size, 10);
  }
  // The read-only page is fine to write from; a zero count touches nothing.
  EXPECT_EQ(__syscall_write(fd, pages.ro, 2), 2);
  EXPECT_EQ(__syscall_read(fd, nullptr, 0), 0);
  EXPECT_EQ(__syscall_write(fd, kWild, 0), 0);

  // Records: stat and fstat into nothing, read-only memory or across its edge; readdir's entry.
  char *bad_records[] = {nullptr, kWild, pages.ro, pages.rw - 8, pages.hole - 32};
  for (char *record : bad_records) {
    EXPECT_FAILS(__syscall_stat("/buffers", record), KV_EFAULT);
    EXPECT_FAILS(__syscall_fstat(fd, record), KV_EFAULT);
    int h = __syscall_opendir("/");
    ASSERT_NE(h, 0);
    __set_errno(0);
    EXPECT_TRUE(__syscall_readdir(h, record) < 0);
    EXPECT_EQ(__read_errno(), KV_EFAULT);
    EXPECT_EQ(__syscall_closedir(h), 0);
  }
  // The read-only page was not written.
  EXPECT_EQ(pages.ro[0], 0);
  EXPECT_EQ(pages.ro[100], 0);

  // getcwd: its text ("c:\\" and the NUL) must land in writable memory, and fit the size.
  char *bad_cwd[] = {nullptr, kLow, kWild, pages.ro, pages.hole - 2};
  for (char *buffer : bad_cwd)
    EXPECT_FAILS(__syscall_getcwd(buffer, 64) == 0 ? 0 : -1, KV_EFAULT);
  char cwd[8];
  EXPECT_FAILS(__syscall_getcwd(cwd, 0) == 0 ? 0 : -1, KV_EINVAL);
  EXPECT_FAILS(__syscall_getcwd(cwd, 3) == 0 ? 0 : -1, KV_ERANGE);
  EXPECT_EQ(__syscall_getcwd(cwd, 4), 0);
  EXPECT_STREQ(cwd, "c:\\");

  __syscall_close(fd);
  EXPECT_EQ(__syscall_unlink("/buffers"), 0);
}

TEST(BadInput, BadDescriptorsGiveEbadf) {
  int closed = __syscall_open("/", KV_O_RDONLY, 0);
  ASSERT_TRUE(closed >= 3);
  ASSERT_EQ(__syscall_close(closed), 0);
  const int descriptors[] = {-1, -2147483647 - 1, 9999, 16, closed};
  char b[16];
  kv_stat st;
  for (int fd : descriptors) {
    EXPECT_FAILS(__syscall_read(fd, b, 1), KV_EBADF);
    EXPECT_FAILS(__syscall_write(fd, "x", 1), KV_EBADF);
    EXPECT_FAILS(__syscall_close(fd), KV_EBADF);
    EXPECT_FAILS(__syscall_lseek(fd, 0, KV_SEEK_SET), KV_EBADF);
    EXPECT_FAILS(__syscall_fstat(fd, &st), KV_EBADF);
    EXPECT_FAILS(__syscall_fsync(fd), KV_EBADF);
    EXPECT_FAILS(__syscall_ftruncate(fd, 0), KV_EBADF);
    EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUPFD, 0), KV_EBADF);
    EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUP2FD, 5), KV_EBADF);
    EXPECT_FAILS(__syscall_fchdir(fd), KV_EBADF);
    EXPECT_EQ(__syscall_mmap(nullptr, kPage, KV_PROT_READ, KV_MAP_PRIVATE, fd, 0),
              reinterpret_cast<void *>(KV_MAP_FAILED));
    EXPECT_EQ(__read_errno(), KV_EBADF);
  }
  const int handles[] = {0, -1, 9999};
  for (int h : handles) {
    EXPECT_FAILS(__syscall_readdir(h, b) < 0 ? -1 : 0, KV_EBADF);
    EXPECT_FAILS(__syscall_closedir(h), KV_EBADF);
  }
  // Duplicating onto a descriptor out of range, or with an unknown command.
  int fd = __syscall_open("/", KV_O_RDONLY, 0);
  ASSERT_TRUE(fd >= 3);
  EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUP2FD, -1), KV_EBADF);
  EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUP2FD, 16), KV_EBADF);
  EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUPFD, -1), KV_EINVAL);
  EXPECT_FAILS(__syscall_fcntl(fd, KV_F_DUPFD, 16), KV_EINVAL);
  EXPECT_FAILS(__syscall_fcntl(fd, 1234, 0), KV_EINVAL);
  EXPECT_EQ(__syscall_close(fd), 0);
}

TEST(BadInput, TheConsoleIsNoFile) {
  char b[4];
  kv_stat st;
  EXPECT_FAILS(__syscall_lseek(1, 0, KV_SEEK_SET), KV_ESPIPE);
  EXPECT_FAILS(__syscall_ftruncate(1, 0), KV_EINVAL);
  EXPECT_FAILS(__syscall_fsync(2), KV_EINVAL);
  EXPECT_FAILS(__syscall_write(0, "x", 1), KV_EBADF);
  EXPECT_FAILS(__syscall_read(1, b, 1), KV_EBADF);
  EXPECT_EQ(__syscall_fstat(1, &st), 0);
  EXPECT_EQ(__syscall_close(1), 0);
  EXPECT_EQ(__syscall_write(1, "", 0), 0);
}

TEST(BadInput, HugeAndNegativeSizesAndOffsets) {
  int fd = __syscall_open("/huge", KV_O_RDWR | KV_O_CREAT | KV_O_TRUNC, 0644);
  ASSERT_TRUE(fd >= 3);
  ASSERT_EQ(__syscall_write(fd, "abc", 3), 3);
  EXPECT_FAILS(__syscall_ftruncate(fd, -1), KV_EINVAL);
  EXPECT_FAILS(__syscall_truncate("/huge", -5), KV_EINVAL);
  EXPECT_FAILS(__syscall_lseek(fd, -4, KV_SEEK_END), KV_EINVAL);
  EXPECT_FAILS(__syscall_lseek(fd, 0, 3), KV_EINVAL);
  EXPECT_FAILS(__syscall_lseek(fd, 0, -1), KV_EINVAL);
  // The largest offset the guest can hold, and one step past it, which leaves the offset alone.
  EXPECT_EQ(__syscall_lseek(fd, 2147483647, KV_SEEK_SET), 2147483647L);
  EXPECT_FAILS(__syscall_lseek(fd, 1, KV_SEEK_CUR), KV_EOVERFLOW);
  EXPECT_EQ(__syscall_lseek(fd, 0, KV_SEEK_CUR), 2147483647L);
  EXPECT_EQ(stat_of("/huge").st_size, 3);
  EXPECT_EQ(__syscall_close(fd), 0);
  EXPECT_EQ(__syscall_unlink("/huge"), 0);
}
