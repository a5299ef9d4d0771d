#include "memory/file_pages.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace kvrun::file_pages {
namespace {

constexpr uintptr_t kPage = 4096;

// The host ranges the SIGBUS handler may repair. A fixed table of atomics, so the handler reads
// it without locks; only the main thread changes it, and never while touching guest memory.
struct Range {
  std::atomic<uintptr_t> begin{0}, end{0};
};
constexpr int kSlots = 1024;
Range ranges[kSlots];

struct sigaction previous;
bool installed = false;

bool repairable(uintptr_t a) {
  for (auto &r : ranges) {
    uintptr_t b = r.begin.load(std::memory_order_relaxed);
    if (b != 0 && a >= b && a < r.end.load(std::memory_order_relaxed))
      return true;
  }
  return false;
}

void on_sigbus(int, siginfo_t *info, void *) {
  uintptr_t a = reinterpret_cast<uintptr_t>(info->si_addr);
  if (info->si_code == BUS_ADRERR && repairable(a)) {
    void *page = reinterpret_cast<void *>(a & ~(kPage - 1));
    if (::mmap(page, kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1,
               0) != MAP_FAILED)
      return;
  }
  // Not ours: whatever was there before takes the signal when the access repeats.
  ::sigaction(SIGBUS, &previous, nullptr);
}

bool install() {
  if (installed)
    return true;
  struct sigaction sa {};
  sa.sa_sigaction = on_sigbus;
  sa.sa_flags = SA_SIGINFO;
  sigemptyset(&sa.sa_mask);
  if (::sigaction(SIGBUS, &sa, &previous) != 0)
    return false;
  installed = true;
  return true;
}

bool add(uintptr_t begin, uintptr_t end) {
  for (auto &r : ranges)
    if (r.begin.load() == 0) {
      r.end.store(end);
      r.begin.store(begin);
      return true;
    }
  return false;
}

// Drops [begin, end) from the table, splitting a range if the hole is in its middle. With no
// slot left for the split the range stays whole: it then covers a little unmapped space, which
// only matters if another file mapping of kvrun's lands there and faults.
void remove(uintptr_t begin, uintptr_t end) {
  for (auto &r : ranges) {
    uintptr_t b = r.begin.load(), e = r.end.load();
    if (b == 0 || e <= begin || b >= end)
      continue;
    if (begin <= b && end >= e) {
      r.begin.store(0);
    } else if (begin <= b) {
      r.begin.store(end);
    } else if (end >= e) {
      r.end.store(begin);
    } else if (add(end, e)) {
      r.end.store(begin);
    }
  }
}

} // namespace

void *map(int fd, uint64_t offset, uint64_t size, bool shared) {
  if (static_cast<uintptr_t>(::sysconf(_SC_PAGESIZE)) != kPage) {
    errno = ENODEV; // guest pages could not be host pages
    return nullptr;
  }
  if (!install()) // errno from sigaction
    return nullptr;
  void *p = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, shared ? MAP_SHARED : MAP_PRIVATE, fd,
                   static_cast<off_t>(offset));
  if (p == MAP_FAILED)
    return nullptr;
  uintptr_t b = reinterpret_cast<uintptr_t>(p);
  if (!add(b, b + size)) {
    ::munmap(p, size);
    errno = ENOMEM;
    return nullptr;
  }
  return p;
}

void unmap(void *addr, uint64_t size) {
  uintptr_t b = reinterpret_cast<uintptr_t>(addr);
  remove(b, b + size);
  ::munmap(addr, size);
}

} // namespace kvrun::file_pages
