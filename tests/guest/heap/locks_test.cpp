// Through libc.so: the heap's entry points take the heap lock through the program's own hooks,
// once per call and balanced, and posix_memalign's answers.
#include <kvtest.h>
#include <stdint.h>

extern "C" {
void *__syscall_realloc(void *block, size_t size);
void __syscall_free(void *block);
void *__syscall_calloc(size_t count, size_t size);
int __syscall_posix_memalign(void **out, size_t alignment, size_t size);
int malloc_trim(size_t pad);
int mallopt(int param, int value);
int *___aeabi_errno_addr(void);
}

namespace {
int acquired, released;
uint32_t *held;
// Every lock word the library initialised (the streams have theirs too).
uint32_t *initialised[16];
int initialised_count;

int times_initialised(const uint32_t *lock) {
  int n = 0;
  for (int i = 0; i < initialised_count && i < 16; ++i)
    n += initialised[i] == lock;
  return n;
}
} // namespace

extern "C" int __mutex_initialize(uint32_t *m) {
  if (initialised_count < 16)
    initialised[initialised_count] = m;
  ++initialised_count;
  return 0;
}
extern "C" int __mutex_acquire(uint32_t *m) {
  ++acquired;
  held = m;
  return 0;
}
extern "C" void __mutex_release(uint32_t *m) {
  if (m == held)
    ++released;
}

namespace {
void *block, *blocker, *spare;
} // namespace

TEST(HeapLocks, EachCallTakesAndReleasesTheLock) {
  // realloc that must move takes the lock for itself, its allocation and its free; calloc has
  // none of its own.
  struct {
    const char *what;
    void (*setup)();
    void (*call)();
    int locks;
  } rows[] = {
      {"malloc", [] {}, [] { block = __syscall_realloc(nullptr, 24); }, 1},
      {"realloc into top", [] {}, [] { block = __syscall_realloc(block, 48); }, 1},
      {"realloc moving", [] { blocker = __syscall_realloc(nullptr, 8); },
       [] { block = __syscall_realloc(block, 400); }, 3},
      {"free", [] {}, [] { __syscall_free(block); }, 1},
      {"calloc", [] {}, [] { spare = __syscall_calloc(3, 8); }, 1},
      {"malloc_trim", [] {}, [] { malloc_trim(0); }, 1},
  };
  for (auto &row : rows) {
    row.setup();
    int a0 = acquired, r0 = released;
    row.call();
    EXPECT_EQ(acquired - a0, row.locks);
    EXPECT_EQ(released - r0, acquired - a0);
  }
  EXPECT_EQ(times_initialised(held), 1); // the heap lock, once
}

TEST(HeapLocks, PosixMemalignAnswers) {
  struct {
    size_t alignment, size;
    int result;
  } rows[] = {{0, 8, 45},   {2, 8, 45},   {12, 8, 45},         {24, 8, 45},   {4, 8, 0},
              {8, 8, 0},    {16, 8, 0},   {4096, 100, 0},      {64, 0, 0},    {3, 8, 45},
              {16, 0xFFFFFFF0u, 68}, {4096, 0xFFFFF000u, 68}};
  for (auto &row : rows) {
    void *out = reinterpret_cast<void *>(1);
    *___aeabi_errno_addr() = 0;
    int r = __syscall_posix_memalign(&out, row.alignment, row.size);
    EXPECT_EQ(r, row.result);
    if (r == 0) {
      size_t a = row.alignment < 8 ? 8 : row.alignment;
      EXPECT_EQ(reinterpret_cast<uintptr_t>(out) % a, 0u);
      __syscall_free(out);
    } else {
      EXPECT_EQ(reinterpret_cast<uintptr_t>(out), 1u); // untouched
    }
  }
}

TEST(HeapLocks, CallocOverflowFails) {
  *___aeabi_errno_addr() = 0;
  EXPECT_TRUE(__syscall_calloc(65536, 65536) == nullptr);
  EXPECT_EQ(*___aeabi_errno_addr(), 68);
  EXPECT_TRUE(__syscall_calloc(0x10001, 0x10000) == nullptr);
  void *z = __syscall_calloc(0, 1000); // zero bytes: a minimum block
  EXPECT_TRUE(z != nullptr);
  __syscall_free(z);
}

TEST(HeapLocks, MalloptAnswers) {
  struct {
    int param, value, result;
  } rows[] = {{-2, 1000, 0}, {-2, 65536, 1}, {-2, 16384, 1}, {-2, 16, 0},
              {-1, 16384, 1}, {-3, 262144, 1}, {0, 1, 0},     {5, 5, 0}};
  for (auto &row : rows)
    EXPECT_EQ(mallopt(row.param, row.value), row.result);
}
