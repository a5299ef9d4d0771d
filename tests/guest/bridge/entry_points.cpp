// Calls every numbered entry point once, in the order of the table that the host-side checker
// keeps, with argument i of call k set to 0xE0000000 | k << 8 | i; then sleeps for 0 seconds and prints
// what each call returned. The checker compares kvrun's request trace with both.
#include <kv/syscall.h>
#include <stdint.h>

namespace {
template <typename T> T as(uint32_t w) {
  if constexpr (__is_pointer(T))
    return reinterpret_cast<T>(static_cast<uintptr_t>(w));
  else
    return static_cast<T>(w);
}
constexpr uint32_t word(int k, int i) { return 0xE0000000u | static_cast<uint32_t>(k) << 8 | i; }

uint32_t results[96];
int calls;

template <typename R> void record(R r) {
  if constexpr (__is_pointer(R))
    results[calls++] = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(r));
  else
    results[calls++] = static_cast<uint32_t>(r);
}

void put(const char *s, size_t n) { __syscall_write(1, s, n); }
void put_hex(uint32_t v) {
  char b[9];
  for (int i = 7; i >= 0; --i, v >>= 4)
    b[i] = "0123456789abcdef"[v & 15];
  b[8] = '\n';
  put(b, 9);
}
} // namespace

#define CALL(fn, ...) record(fn(__VA_ARGS__))
#define A(T, i) as<T>(word(calls, i))

int main() {
  CALL(__syscall_open, A(const char *, 1), A(int, 2), A(int, 3));
  CALL(__syscall_mmap, A(void *, 1), A(size_t, 2), A(int, 3), A(int, 4), A(int, 5), A(long, 6));
  CALL(__syscall_munmap, A(void *, 1), A(size_t, 2));
  CALL(__syscall_puts, A(uint32_t, 1), A(uint32_t, 2));
  CALL(__syscall_socket, A(int, 1), A(int, 2), A(int, 3));
  CALL(__syscall_bind, A(int, 1), A(const void *, 2), A(uint32_t, 3));
  CALL(__syscall_connect, A(int, 1), A(const void *, 2), A(uint32_t, 3));
  CALL(__syscall_listen, A(int, 1), A(int, 2));
  CALL(__syscall_accept, A(int, 1), A(void *, 2), A(uint32_t *, 3));
  CALL(__syscall_sendto, A(int, 1), A(const void *, 2), A(size_t, 3), A(int, 4),
       A(const void *, 5), A(uint32_t, 6));
  CALL(__syscall_recvfrom, A(int, 1), A(void *, 2), A(size_t, 3), A(int, 4), A(void *, 5),
       A(uint32_t *, 6));
  CALL(__syscall_write, A(int, 1), A(const void *, 2), A(size_t, 3));
  CALL(__syscall_read, A(int, 1), A(void *, 2), A(size_t, 3));
  CALL(__syscall_close, A(int, 1));
  CALL(__syscall_lseek, A(int, 1), A(long, 2), A(int, 3));
  CALL(__syscall_mkdir, A(const char *, 1), A(int, 2));
  CALL(__syscall_rmdir, A(const char *, 1));
  CALL(__syscall_opendir, A(const char *, 1));
  CALL(__syscall_readdir, A(int, 1), A(void *, 2));
  CALL(__syscall_closedir, A(int, 1));
  CALL(__syscall_remove, A(const char *, 1));
  CALL(__syscall_select, A(int, 1), A(void *, 2), A(void *, 3), A(void *, 4),
       A(struct kv_timeval *, 5));
  CALL(__syscall_time, A(int32_t *, 1));
  CALL(__syscall_getsockname, A(int, 1), A(void *, 2), A(uint32_t *, 3));
  CALL(__syscall_set_errno_addr, A(int *, 1));
  CALL(__syscall_send, A(int, 1), A(const void *, 2), A(size_t, 3), A(int, 4));
  CALL(__syscall_recv, A(int, 1), A(void *, 2), A(size_t, 3), A(int, 4));
  CALL(__syscall_gethostbyname, A(const char *, 1), A(size_t, 2), A(void *, 3), A(size_t, 4));
  CALL(__syscall_rename, A(const char *, 1), A(const char *, 2));
  CALL(__syscall_stat, A(const char *, 1), A(void *, 2));
  CALL(__syscall_getpid);
  CALL(__syscall_unlink, A(const char *, 1));
  CALL(__syscall_access, A(const char *, 1), A(int, 2));
  CALL(__syscall_fstat, A(int, 1), A(void *, 2));
  CALL(__syscall_fsync, A(int, 1));
  CALL(__syscall_ftruncate, A(int, 1), A(long, 2));
  CALL(__syscall_getcwd, A(char *, 1), A(size_t, 2));
  CALL(__syscall_set_h_errno_addr, A(int *, 1));
  CALL(__syscall_fcntl, A(int, 1), A(int, 2), A(long, 3));
  CALL(__syscall_chdir, A(const char *, 1));
  CALL(__syscall_fchdir, A(int, 1));
  CALL(__syscall_getpeername, A(int, 1), A(void *, 2), A(uint32_t *, 3));
  CALL(__syscall_getsockopt, A(int, 1), A(int, 2), A(int, 3), A(void *, 4), A(uint32_t *, 5));
  CALL(__syscall_setsockopt, A(int, 1), A(int, 2), A(int, 3), A(const void *, 4), A(uint32_t, 5));
  CALL(__syscall_gethostbyaddr, A(const void *, 1), A(uint32_t, 2), A(int, 3), A(void *, 4),
       A(size_t, 5));
  CALL(__syscall_sha, A(const void *, 1), A(size_t, 2), A(unsigned char *, 3));
  CALL(__syscall_sysconf, A(int, 1));
  CALL(__syscall_kill, A(int, 1), A(int, 2));
  CALL(__syscall_syslog, A(int, 1), A(const char *, 2));
  CALL(__syscall_copy_environ, A(void *, 1), A(size_t, 2));
  CALL(__syscall_os_current_time_in_ms, A(uint32_t *, 1));
  CALL(__syscall_shm_open, A(const char *, 1), A(int, 2), A(int, 3));
  CALL(__syscall_shm_unlink, A(const char *, 1));
  CALL(__syscall_posix_spawn, A(int *, 1), A(const char *, 2), A(const void *, 3),
       A(const void *, 4), A(char *const *, 5), A(char *const *, 6));
  CALL(__syscall_truncate, A(const char *, 1), A(long, 2));
  // Unsupported entry points: number -1, words loaded all the same.
  CALL(__syscall_times, A(void *, 1));
  CALL(__syscall_adjtime, A(const void *, 1), A(void *, 2));
  CALL(__syscall_clock_settime, A(int, 1), A(const void *, 2));
  CALL(__syscall_sendmsg, A(int, 1), A(const void *, 2), A(int, 3));
  CALL(__syscall_recvmsg, A(int, 1), A(void *, 2), A(int, 3));
  CALL(__syscall_getnameinfo, A(const void *, 1), A(uint32_t, 2), A(char *, 3), A(uint32_t, 4),
       A(char *, 5), A(uint32_t, 6), A(int, 7));
  CALL(__syscall_getaddrinfo, A(const char *, 1), A(size_t, 2), A(const char *, 3), A(size_t, 4),
       A(const void *, 5), A(void *, 6), A(size_t, 7));
  CALL(__syscall_ioctl, A(int, 1), A(unsigned long, 2), A(void *, 3));
  CALL(__syscall_sigaction, A(int, 1), A(const void *, 2), A(void *, 3));
  CALL(__syscall_alarm, A(unsigned, 1));
  CALL(__syscall_pselect, A(int, 1), A(void *, 2), A(void *, 3), A(void *, 4), A(const void *, 5),
       A(const void *, 6));
  CALL(__syscall_sigprocmask, A(int, 1), A(const void *, 2), A(void *, 3));
  CALL(__syscall_pthread_sigmask, A(int, 1), A(const void *, 2), A(void *, 3));
  CALL(__syscall_pipe, A(int *, 1));
  CALL(__syscall_shutdown, A(int, 1), A(int, 2));
  CALL(__syscall_fchmod, A(int, 1), A(int, 2));
  CALL(__syscall_getuid);
  CALL(__syscall_statvfs, A(const char *, 1), A(void *, 2));
  CALL(__syscall_fstatvfs, A(int, 1), A(void *, 2));
  CALL(__syscall_chmod, A(const char *, 1), A(int, 2));
  CALL(__syscall_clock);
  // Last, the one entry point with logic: time, then a select on no descriptors.
  CALL(__syscall_sleep, 0u);
  for (int k = 0; k < calls; ++k)
    put_hex(results[k]);
  return 0;
}
