// kvrun's first services as a program sees them (run with -e A=1 -e BB=22).
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

extern "C" {
int32_t raw_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3);
int __read_errno(void);
void __set_errno(int);
}

namespace {
constexpr int kAnonymous = KV_MAP_PRIVATE | KV_MAP_ANONYMOUS;
void *const kFailed = reinterpret_cast<void *>(KV_MAP_FAILED);

void *map(size_t length) { return __syscall_mmap(nullptr, length, KV_PROT_READ | KV_PROT_WRITE, kAnonymous, -1, 0); }

bool all_zero(const void *p, size_t n) {
  auto *b = static_cast<const volatile unsigned char *>(p);
  for (size_t i = 0; i < n; ++i)
    if (b[i])
      return false;
  return true;
}

void fill(void *p, size_t n, unsigned char v) {
  auto *b = static_cast<volatile unsigned char *>(p);
  for (size_t i = 0; i < n; ++i)
    b[i] = v;
}
} // namespace

TEST(Mmap, PageAlignedZeroFilledAndReusedAfterPartialUnmap) {
  auto *p = static_cast<unsigned char *>(map(3 * 4096 - 100));
  ASSERT_TRUE(p != kFailed);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 4096, 0u);
  EXPECT_TRUE(all_zero(p, 3 * 4096));
  fill(p, 3 * 4096, 0xA5);
  // Unmap the middle page: the next one-page mapping fills exactly that hole, zeroed again.
  EXPECT_EQ(__syscall_munmap(p + 4096, 4096), 0);
  auto *q = static_cast<unsigned char *>(map(4096));
  EXPECT_EQ(q, p + 4096);
  EXPECT_TRUE(all_zero(q, 4096));
  EXPECT_EQ(p[0], 0xA5);
  EXPECT_EQ(p[2 * 4096], 0xA5);
  EXPECT_EQ(__syscall_munmap(p, 3 * 4096), 0);
}

TEST(Mmap, FailuresSetErrno) {
  struct {
    void *addr;
    size_t length;
    int prot, flags, fd;
    int error;
  } cases[] = {
      {nullptr, 0, 3, kAnonymous, -1, KV_EINVAL},
      {nullptr, 0x7FFFFFFF, 3, kAnonymous, -1, KV_ENOMEM},
      {nullptr, 4096, 3, kAnonymous, 4, KV_EINVAL},
      {nullptr, 4096, 8, kAnonymous, -1, KV_EINVAL},
      {nullptr, 4096, 3, KV_MAP_PRIVATE, 9, KV_EBADF},
      {reinterpret_cast<void *>(0x60000010), 4096, 3, kAnonymous | KV_MAP_FIXED, -1, KV_EINVAL},
  };
  for (auto &c : cases) {
    __set_errno(0);
    EXPECT_EQ(__syscall_mmap(c.addr, c.length, c.prot, c.flags, c.fd, 0), kFailed);
    EXPECT_EQ(__read_errno(), c.error);
  }
  __set_errno(0);
  EXPECT_EQ(__syscall_munmap(reinterpret_cast<void *>(0x60000001), 4096), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
}

TEST(Services, UnknownAndUnsupportedNumbersFailWithEnosys) {
  const int32_t numbers[] = {-1, 3, 42, 68, 105, 1000, -2};
  for (int32_t n : numbers) {
    __set_errno(0);
    EXPECT_EQ(raw_trap(n, 1, 2, 3), -1);
    EXPECT_EQ(__read_errno(), KV_ENOSYS);
  }
}

TEST(Services, BadPointersGiveEfault) {
  int32_t *unmapped = reinterpret_cast<int32_t *>(16);
  __set_errno(0);
  EXPECT_EQ(__syscall_write(1, unmapped, 4), -1);
  EXPECT_EQ(__read_errno(), KV_EFAULT);
  __set_errno(0);
  EXPECT_EQ(__syscall_time(unmapped), -1);
  EXPECT_EQ(__read_errno(), KV_EFAULT);
  __set_errno(0);
  EXPECT_EQ(__syscall_copy_environ(unmapped, 100), -1);
  EXPECT_EQ(__read_errno(), KV_EFAULT);
  // The code is not writable.
  __set_errno(0);
  EXPECT_EQ(__syscall_time(reinterpret_cast<int32_t *>(&raw_trap)), -1);
  EXPECT_EQ(__read_errno(), KV_EFAULT);
}

TEST(Services, WriteToOtherDescriptorsIsEbadf) {
  __set_errno(0);
  EXPECT_EQ(__syscall_write(0, "x", 1), -1);
  EXPECT_EQ(__read_errno(), KV_EBADF);
  EXPECT_EQ(__syscall_write(3, "x", 1), -1);
  EXPECT_EQ(__syscall_write(2, "", 0), 0);
}

TEST(Services, CopyEnviron) {
  // Two pointers and a null (12 bytes), "A=1" (4) and "BB=22" (6).
  unsigned char buffer[40];
  fill(buffer, sizeof buffer, 0xEE);
  EXPECT_EQ(__syscall_copy_environ(buffer, 21), 22);
  EXPECT_EQ(buffer[0], 0xEE);
  EXPECT_EQ(__syscall_copy_environ(buffer, 22), 0);
  char **slots = reinterpret_cast<char **>(buffer);
  EXPECT_TRUE(reinterpret_cast<unsigned char *>(slots[0]) == buffer + 12);
  EXPECT_TRUE(reinterpret_cast<unsigned char *>(slots[1]) == buffer + 16);
  EXPECT_TRUE(slots[2] == nullptr);
  EXPECT_STREQ(slots[0], "A=1");
  EXPECT_STREQ(slots[1], "BB=22");
  EXPECT_EQ(buffer[22], 0xEE);
}

TEST(Services, SysconfTimeGetpid) {
  EXPECT_EQ(__syscall_sysconf(KV_SC_PAGESIZE), 4096);
  EXPECT_EQ(__syscall_sysconf(KV_SC_PAGESIZE_ALLOC), 4096);
  __set_errno(0);
  EXPECT_EQ(__syscall_sysconf(1), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  int32_t stored = 0;
  int32_t now = __syscall_time(&stored);
  EXPECT_EQ(stored, now);
  EXPECT_TRUE(now > 1700000000);
  EXPECT_TRUE(__syscall_getpid() > 0);
}

TEST(Services, SelectWithoutDescriptors) {
  kv_timeval short_wait = {0, 1000};
  EXPECT_EQ(__syscall_select(0, nullptr, nullptr, nullptr, &short_wait), 0);
  __set_errno(0);
  EXPECT_EQ(__syscall_select(0, nullptr, nullptr, nullptr, nullptr), -1);
  EXPECT_EQ(__read_errno(), KV_EINVAL);
  // A set naming a descriptor that is not open.
  kv_fd_set readable = {{1u << 9, 0}};
  __set_errno(0);
  EXPECT_EQ(__syscall_select(10, &readable, nullptr, nullptr, &short_wait), -1);
  EXPECT_EQ(__read_errno(), KV_EBADF);
}
