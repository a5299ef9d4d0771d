// Cost of the host services as a guest sees them: N operations of one kind, in the sandbox
// root. bench/host/services_native.cpp does the same on the host for comparison.
//   services write1 N     write one byte to a file
//   services read4k N     read 4 KiB from a 1 MiB file, rewinding at its end
//   services openclose N  open a file and close it
//   services tcp N        one byte each way between two loopback TCP sockets
// The set-up is the same for every N, so two runs with N and 2N give the cost of N operations.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bench_args.h"

namespace {

constexpr int kBlock = 4096;
constexpr int kBlocks = 256; // the file read is 1 MiB
const char kWriteFile[] = "bench-write.tmp";
const char kReadFile[] = "bench-read.tmp";

alignas(4) char block[kBlock];


int make_read_file() {
  int fd = __syscall_open(kReadFile, KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC, 0644);
  if (fd < 0)
    return -1;
  for (int i = 0; i < kBlocks; ++i)
    if (__syscall_write(fd, block, kBlock) != kBlock)
      return -1;
  return __syscall_close(fd);
}

int write1(unsigned n) {
  int fd = __syscall_open(kWriteFile, KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC, 0644);
  if (fd < 0)
    return 1;
  for (unsigned i = 0; i < n; ++i)
    if (__syscall_write(fd, block, 1) != 1)
      return 1;
  __syscall_close(fd);
  return 0;
}

int read4k(unsigned n) {
  if (make_read_file() != 0)
    return 1;
  int fd = __syscall_open(kReadFile, KV_O_RDONLY, 0);
  if (fd < 0)
    return 1;
  for (unsigned i = 0; i < n; ++i) {
    int got = __syscall_read(fd, block, kBlock);
    if (got == 0) {
      __syscall_lseek(fd, 0, 0);
      got = __syscall_read(fd, block, kBlock);
    }
    if (got != kBlock)
      return 1;
  }
  __syscall_close(fd);
  return 0;
}

int openclose(unsigned n) {
  if (make_read_file() != 0)
    return 1;
  for (unsigned i = 0; i < n; ++i) {
    int fd = __syscall_open(kReadFile, KV_O_RDONLY, 0);
    if (fd < 0 || __syscall_close(fd) != 0)
      return 1;
  }
  return 0;
}

int tcp(unsigned n) {
  kv_sockaddr_in a{};
  a.sin_family = KV_AF_INET;
  a.sin_addr.s_addr = 0x0100007Fu; // 127.0.0.1, network order in memory
  int server = __syscall_socket(KV_AF_INET, KV_SOCK_STREAM, 0);
  if (server < 0 || __syscall_bind(server, &a, sizeof a) != 0 || __syscall_listen(server, 1) != 0)
    return 1;
  uint32_t len = sizeof a;
  if (__syscall_getsockname(server, &a, &len) != 0)
    return 1;
  int client = __syscall_socket(KV_AF_INET, KV_SOCK_STREAM, 0);
  // Loopback completes the handshake at once, so connect returns before accept is called.
  if (client < 0 || __syscall_connect(client, &a, sizeof a) != 0)
    return 1;
  int conn = __syscall_accept(server, nullptr, nullptr);
  if (conn < 0)
    return 1;
  int one = 1;
  __syscall_setsockopt(client, KV_IPPROTO_TCP, KV_TCP_NODELAY, &one, sizeof one);
  __syscall_setsockopt(conn, KV_IPPROTO_TCP, KV_TCP_NODELAY, &one, sizeof one);
  char c = 'x';
  for (unsigned i = 0; i < n; ++i) {
    if (__syscall_send(client, &c, 1, 0) != 1 || __syscall_recv(conn, &c, 1, 0) != 1 ||
        __syscall_send(conn, &c, 1, 0) != 1 || __syscall_recv(client, &c, 1, 0) != 1)
      return 1;
  }
  __syscall_close(conn);
  __syscall_close(client);
  __syscall_close(server);
  return 0;
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 3)
    return 2;
  unsigned n = parse(argv[2]);
  if (same(argv[1], "write1"))
    return write1(n);
  if (same(argv[1], "read4k"))
    return read4k(n);
  if (same(argv[1], "openclose"))
    return openclose(n);
  if (same(argv[1], "tcp"))
    return tcp(n);
  return 2;
}
