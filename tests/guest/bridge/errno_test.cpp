// The errno and h_errno handshakes as a program sees them under kvrun.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

#include "log_capture.h"

extern "C" {
int *___aeabi_errno_addr(void);
int *___h_errno_addr(void);
int __read_errno(void);
void __set_errno(int);
void *__user_libspace(void);
void *__user_perproc_libspace(void);
void *__user_perthread_libspace(void);
extern uint32_t __libspace_start[];
uint32_t *__rt_fp_status_addr(void);
void **__rt_ddtor_pointer_addr(void);
void **__rt_eh_globals_addr(void);
}

namespace {
// The address a "... '%p' ..." log line names.
uintptr_t logged_address(const char *line) {
  const char *p = line;
  while (*p && *p != '\'')
    ++p;
  if (!*p)
    return 0;
  uintptr_t v = 0;
  for (++p; *p && *p != '\''; ++p)
    v = v * 16 + static_cast<uintptr_t>(*p <= '9' ? *p - '0' : *p - 'a' + 10);
  return v;
}
} // namespace

TEST(Errno, HandshakeHappenedAtStartUpInOrder) {
  const char *sent = logcap::find("KV: (248) sending internal errno address '");
  ASSERT_TRUE(sent != nullptr);
  EXPECT_EQ(logged_address(sent), reinterpret_cast<uintptr_t>(___aeabi_errno_addr()));
  const char *sent_h = logcap::find("KV: (187) sending internal h_errno address '");
  ASSERT_TRUE(sent_h != nullptr);
  EXPECT_EQ(logged_address(sent_h), reinterpret_cast<uintptr_t>(___h_errno_addr()));
  EXPECT_EQ(logcap::count_prefix("KV: (273) using errno from address "), 1u);
  EXPECT_EQ(logcap::count_prefix("KV: (346) Using h_errno from address "), 1u);
  EXPECT_EQ(logcap::count_prefix("KV: (252)"), 0u);
  EXPECT_EQ(logcap::count_prefix("KV: (192)"), 0u);
  // Banner first; the errno handshake, then the h_errno one, right before the environment.
  EXPECT_EQ(logcap::count_prefix("KV: (248) ***** <libc.so based on "), 1u);
  EXPECT_EQ(logcap::find("KV: (248) *****"), logcap::line(0));
  size_t at = 0;
  while (at < logcap::count() && logcap::line(at) != logcap::find("KV: (248) sending"))
    ++at;
  ASSERT_TRUE(at + 5 < logcap::count());
  EXPECT_EQ(logcap::find("KV: (273)"), logcap::line(at + 1));
  EXPECT_EQ(logcap::find("KV: (187)"), logcap::line(at + 2));
  EXPECT_EQ(logcap::find("KV: (346)"), logcap::line(at + 3));
  EXPECT_EQ(logcap::find("KV: (264) environ addr"), logcap::line(at + 4));
  for (size_t i = 0; i < logcap::count(); ++i)
    EXPECT_EQ(logcap::priority(i), 31);
}

TEST(Errno, CellsAreClearAfterStartUp) {
  // The test runs before anything else could fail.
  EXPECT_EQ(*___h_errno_addr(), 0);
}

TEST(Errno, SetThenReadGivesTheValue) {
  __set_errno(45);
  EXPECT_EQ(__read_errno(), 45);
  EXPECT_EQ(*___aeabi_errno_addr(), 45);
  __set_errno(0);
  EXPECT_EQ(__read_errno(), 0);
}

TEST(Errno, LaterCallsLogNothing) {
  size_t before = logcap::count();
  ___aeabi_errno_addr();
  ___h_errno_addr();
  __read_errno();
  EXPECT_EQ(logcap::count(), before);
}

TEST(Errno, SystemSideStoresIntoTheSameCell) {
  __set_errno(45);
  // Call 42 is not used by the library: the system side fails it with ENOSYS.
  EXPECT_EQ(__syscall_close(-77), -1);
  int stored = __read_errno();
  EXPECT_NE(stored, 45);
  EXPECT_TRUE(stored == KV_EBADF || stored == KV_ENOSYS);
  EXPECT_EQ(__syscall_mmap(nullptr, 0x7FFFFFFF, KV_PROT_READ, KV_MAP_PRIVATE | KV_MAP_ANONYMOUS, -1, 0),
            reinterpret_cast<void *>(KV_MAP_FAILED));
  EXPECT_EQ(__read_errno(), KV_ENOMEM);
}

TEST(Libspace, ThreeNamesOneBlock) {
  void *block = __libspace_start;
  EXPECT_EQ(__user_libspace(), block);
  EXPECT_EQ(__user_perproc_libspace(), block);
  EXPECT_EQ(__user_perthread_libspace(), block);
}

TEST(Libspace, SlotsAreDistinctWritableWords) {
  uintptr_t a = reinterpret_cast<uintptr_t>(__rt_fp_status_addr());
  uintptr_t b = reinterpret_cast<uintptr_t>(__rt_ddtor_pointer_addr());
  uintptr_t c = reinterpret_cast<uintptr_t>(__rt_eh_globals_addr());
  EXPECT_NE(a, b);
  EXPECT_NE(b, c);
  EXPECT_NE(a, c);
  EXPECT_EQ(__rt_fp_status_addr(), __rt_fp_status_addr());
  *__rt_fp_status_addr() = 0x1234;
  EXPECT_EQ(*__rt_fp_status_addr(), 0x1234u);
  *__rt_fp_status_addr() = 0;
}
