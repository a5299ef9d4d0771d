/* Every public header, compiled as C: what a C program includes must be valid C. */
#include <ctype.h>
#include <dirent.h>
#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

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

/* The locale headers as C sees them: classes and mapping in ISO8859-1, then the conventions and
 * texts of the restored locale; one bit per expectation met. */
unsigned headers_c_locale(void) {
  char saved[42];
  const char *q = setlocale(LC_ALL, NULL);
  unsigned i, bits = 0;
  for (i = 0; i < 42; ++i)
    saved[i] = q[i];
  if (setlocale(LC_CTYPE, "ISO8859-1") != NULL)
    bits |= 1;
  bits |= isupper(0xc0) ? 2 : 0;
  bits |= tolower(0xc0) == 0xe0 ? 4 : 0;
  bits |= ispunct(0xd7) && !isalpha(0xf7) ? 8 : 0;
  setlocale(LC_ALL, saved);
  bits |= !isupper(0xc0) && isupper('C') ? 16 : 0;
  bits |= localeconv()->decimal_point[0] == '.' && localeconv()->p_cs_precedes == (char)255 ? 32 : 0;
  bits |= nl_langinfo(DAY_3)[0] == 'T' ? 64 : 0;
  bits |= sizeof(struct lconv) == 48 ? 128 : 0;
  return bits;
}
