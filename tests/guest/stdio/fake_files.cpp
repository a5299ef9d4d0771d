#include "fake_files.h"

#include <kv/abi.h>
#include <kv/syscall.h>

extern "C" void __set_errno(int);
// The real request, for console text: the test framework reports through it too.
extern "C" int32_t __kv_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3, uint32_t w4,
                             uint32_t w5, uint32_t w6, uint32_t w7);

namespace fake {
namespace {

constexpr int kFiles = 6, kFirstHandle = 3;
constexpr size_t kRequests = 512;
File files[kFiles];
Request requests[kRequests];
size_t used;
int failing = -1, failing_errno;
long short_write = -1;
char console[4096];
size_t console_used;

bool same(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

void record(Call call, int handle, long a, long b) {
  if (used < kRequests)
    requests[used] = {call, handle, a, b};
  ++used;
}

bool fails(Call call) {
  if (failing != call)
    return false;
  failing = -1;
  __set_errno(failing_errno);
  return true;
}

} // namespace

void reset() {
  for (File &f : files)
    f = {};
  used = 0;
  console_used = 0;
  console[0] = 0;
}

File *make(const char *name, const char *contents) {
  for (File &f : files)
    if (!f.name) {
      f.name = name;
      f.length = 0;
      for (; contents[f.length]; ++f.length)
        f.data[f.length] = static_cast<unsigned char>(contents[f.length]);
      return &f;
    }
  return nullptr;
}

File *find(const char *name) {
  for (File &f : files)
    if (f.name && same(f.name, name))
      return &f;
  return nullptr;
}

File *file_of(int handle) {
  int i = handle - kFirstHandle;
  return i >= 0 && i < kFiles && files[i].open ? &files[i] : nullptr;
}

size_t request_count() { return used; }
const Request &request(size_t i) { return requests[i]; }
size_t count(Call call) {
  size_t n = 0;
  for (size_t i = 0; i < used && i < kRequests; ++i)
    n += requests[i].call == call;
  return n;
}
void forget_requests() { used = 0; }
void fail_next(Call call, int error) {
  failing = call;
  failing_errno = error;
}
void short_write_next(long written) { short_write = written; }
const char *console_text() { return console; }

} // namespace fake

using namespace fake;

extern "C" int __syscall_open(const char *path, int flags, int mode) {
  record(kOpen, -1, flags, mode);
  if (fails(kOpen))
    return -1;
  File *f = find(path);
  if (!f) {
    if (!(flags & KV_O_CREAT)) {
      __set_errno(KV_ENOENT);
      return -1;
    }
    f = make(path, "");
  }
  if (flags & KV_O_TRUNC)
    f->length = 0;
  f->position = 0;
  f->open = true;
  f->flags = flags;
  return static_cast<int>(f - files) + kFirstHandle;
}

extern "C" int __syscall_close(int fd) {
  record(kClose, fd, 0, 0);
  File *f = file_of(fd);
  if (fails(kClose) || !f) {
    __set_errno(KV_EBADF);
    return -1;
  }
  f->open = false;
  return 0;
}

extern "C" int __syscall_read(int fd, void *buffer, size_t count) {
  record(kRead, fd, static_cast<long>(count), 0);
  File *f = file_of(fd);
  if (fails(kRead) || !f)
    return -1;
  long n = 0;
  auto *out = static_cast<unsigned char *>(buffer);
  for (; n < static_cast<long>(count) && f->position < f->length; ++n)
    out[n] = f->data[f->position++];
  return static_cast<int>(n);
}

extern "C" int __syscall_write(int fd, const void *buffer, size_t count) {
  record(kWrite, fd, static_cast<long>(count), 0);
  if (fails(kWrite))
    return -1;
  auto *in = static_cast<const unsigned char *>(buffer);
  long n = static_cast<long>(count);
  if (short_write >= 0 && short_write < n)
    n = short_write;
  short_write = -1;
  if (fd == 1 || fd == 2) {
    for (long i = 0; i < n && console_used + 1 < sizeof console; ++i)
      console[console_used++] = static_cast<char>(in[i]);
    console[console_used] = 0;
    __kv_trap(KV_SYS_write, static_cast<uint32_t>(fd),
              static_cast<uint32_t>(reinterpret_cast<uintptr_t>(buffer)), static_cast<uint32_t>(n),
              0, 0, 0, 0);
    return static_cast<int>(n);
  }
  File *f = file_of(fd);
  if (!f)
    return -1;
  if (f->flags & KV_O_APPEND)
    f->position = f->length;
  for (long i = 0; i < n && f->position < static_cast<long>(kFileCapacity); ++i) {
    f->data[f->position++] = in[i];
    if (f->position > f->length)
      f->length = f->position;
  }
  return static_cast<int>(n);
}

extern "C" long __syscall_lseek(int fd, long offset, int whence) {
  record(kSeek, fd, offset, whence);
  File *f = file_of(fd);
  if (fails(kSeek) || !f)
    return -1;
  long base = whence == 0 ? 0 : whence == 1 ? f->position : f->length;
  if (base + offset < 0)
    return -1;
  f->position = base + offset;
  return f->position;
}

extern "C" int __syscall_fcntl(int fd, int command, long argument) {
  record(kFcntl, fd, command, argument);
  return file_of(fd) ? 9 : -1;
}
