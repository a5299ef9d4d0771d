// The host's own cost of the operations of bench/services.cpp, made directly with system calls
// in the current directory. Prints operations per second, the best of three timed passes.
//   bench_services_native write1|read4k|openclose|tcp N
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace {

constexpr int kBlock = 4096;
constexpr int kBlocks = 256;
const char kWriteFile[] = "bench-write.tmp";
const char kReadFile[] = "bench-read.tmp";
char block[kBlock];

[[noreturn]] void fail(const char *what) {
  std::perror(what);
  std::exit(1);
}

void make_read_file() {
  int fd = ::open(kReadFile, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (fd < 0)
    fail("open");
  for (int i = 0; i < kBlocks; ++i)
    if (::write(fd, block, kBlock) != kBlock)
      fail("write");
  ::close(fd);
}

// Set-up outside the timing, then the n operations inside it.
double seconds(const std::function<void()> &setup, const std::function<void()> &run,
               const std::function<void()> &teardown) {
  setup();
  auto start = std::chrono::steady_clock::now();
  run();
  std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  teardown();
  return took.count();
}

} // namespace

int main(int argc, char **argv) {
  if (argc < 3)
    return 2;
  const char *op = argv[1];
  long n = std::atol(argv[2]);
  int fd = -1, server = -1, client = -1, conn = -1;
  std::function<void()> setup, run, teardown = [&] {
    for (int d : {fd, conn, client, server})
      if (d >= 0)
        ::close(d);
    fd = conn = client = server = -1;
  };

  if (!std::strcmp(op, "write1")) {
    setup = [&] {
      if ((fd = ::open(kWriteFile, O_WRONLY | O_CREAT | O_TRUNC, 0644)) < 0)
        fail("open");
    };
    run = [&] {
      for (long i = 0; i < n; ++i)
        if (::write(fd, block, 1) != 1)
          fail("write");
    };
  } else if (!std::strcmp(op, "read4k")) {
    setup = [&] {
      make_read_file();
      if ((fd = ::open(kReadFile, O_RDONLY)) < 0)
        fail("open");
    };
    run = [&] {
      for (long i = 0; i < n; ++i) {
        ssize_t got = ::read(fd, block, kBlock);
        if (got == 0) {
          ::lseek(fd, 0, SEEK_SET);
          got = ::read(fd, block, kBlock);
        }
        if (got != kBlock)
          fail("read");
      }
    };
  } else if (!std::strcmp(op, "openclose")) {
    setup = make_read_file;
    run = [&] {
      for (long i = 0; i < n; ++i) {
        int f = ::open(kReadFile, O_RDONLY);
        if (f < 0 || ::close(f) != 0)
          fail("open/close");
      }
    };
  } else if (!std::strcmp(op, "tcp")) {
    setup = [&] {
      sockaddr_in a{};
      a.sin_family = AF_INET;
      a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      socklen_t len = sizeof a;
      server = ::socket(AF_INET, SOCK_STREAM, 0);
      if (server < 0 || ::bind(server, reinterpret_cast<sockaddr *>(&a), sizeof a) != 0 ||
          ::listen(server, 1) != 0 || ::getsockname(server, reinterpret_cast<sockaddr *>(&a), &len) != 0)
        fail("listen");
      client = ::socket(AF_INET, SOCK_STREAM, 0);
      if (client < 0 || ::connect(client, reinterpret_cast<sockaddr *>(&a), sizeof a) != 0)
        fail("connect");
      if ((conn = ::accept(server, nullptr, nullptr)) < 0)
        fail("accept");
      int one = 1;
      ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
      ::setsockopt(conn, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    };
    run = [&] {
      char c = 'x';
      for (long i = 0; i < n; ++i)
        if (::send(client, &c, 1, 0) != 1 || ::recv(conn, &c, 1, 0) != 1 ||
            ::send(conn, &c, 1, 0) != 1 || ::recv(client, &c, 1, 0) != 1)
          fail("round trip");
    };
  } else {
    return 2;
  }

  double best = 1e300;
  for (int pass = 0; pass < 3; ++pass)
    best = std::min(best, seconds(setup, run, teardown));
  std::printf("%.0f\n", static_cast<double>(n) / best);
  return 0;
}
