// Small helpers shared by the file test programs: whole files through the entry points, text
// comparison, errno.
#pragma once

#include <kv/abi.h>
#include <kv/syscall.h>
#include <stddef.h>
#include <stdint.h>

#include "../../support/bytes.h"

extern "C" {
int __read_errno(void);
void __set_errno(int);
}

// Expects the call's -1 (or other failure mark) and the errno it stored.
#define EXPECT_FAILS(call, error)                                                                 \
  do {                                                                                            \
    __set_errno(0);                                                                               \
    EXPECT_EQ(static_cast<long>(call), -1L);                                                      \
    EXPECT_EQ(__read_errno(), error);                                                             \
  } while (0)

namespace filetest {

using kvtest::length_of;
using kvtest::same_bytes;

constexpr int kCreate = KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC;

// Creates or replaces the file with `text`; 0, or -1.
inline int make_file(const char *path, const char *text) {
  int fd = __syscall_open(path, kCreate, 0644);
  if (fd < 0)
    return -1;
  int n = __syscall_write(fd, text, length_of(text));
  __syscall_close(fd);
  return n == static_cast<int>(length_of(text)) ? 0 : -1;
}

// The file's contents as a string in `out` (at most size - 1 bytes); the byte count, or -1 with
// errno from the open.
inline int read_back(const char *path, char *out, size_t size) {
  int fd = __syscall_open(path, KV_O_RDONLY, 0);
  if (fd < 0)
    return -1;
  int n = __syscall_read(fd, out, size - 1);
  __syscall_close(fd);
  out[n < 0 ? 0 : n] = 0;
  return n;
}

// The record stat gives, zeroed if the call fails.
inline kv_stat stat_of(const char *path) {
  kv_stat st{};
  if (__syscall_stat(path, &st) != 0)
    st = kv_stat{};
  return st;
}

inline uint32_t type_of(const kv_stat &st) { return st.st_mode & KV_S_IFMT; }

} // namespace filetest
