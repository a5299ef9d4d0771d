/* Every public header, compiled as C: what a C program includes must be valid C. */
#include <dirent.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>

/* The descriptor-set macros as C sees them: the bits set, in word order. */
unsigned headers_c_fd_bits(int a, int b, int cleared) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(a, &set);
  FD_SET(b, &set);
  FD_SET(cleared, &set);
  FD_CLR(cleared, &set);
  return (unsigned)FD_ISSET(a, &set) + 2u * (unsigned)FD_ISSET(b, &set) +
         4u * (unsigned)FD_ISSET(cleared, &set) + 8u * (set.fds_bits[0] != 0) +
         16u * (set.fds_bits[1] != 0);
}
