/* Text into line-buffered stdout in runs (fputs, puts, printf) and by the character, with a
 * line longer than the 256-byte buffer: the output must be the same bytes in the same order. */
#include <stdio.h>

int main(void) {
  static char longer[301];
  for (int i = 0; i < 300; ++i)
    longer[i] = "ab"[i & 1];
  fputs("alpha ", stdout);
  fputs("beta\ngamma", stdout);
  puts(" delta");
  printf("%s|%d\n", "x", 5);
  fputs(longer, stdout);
  putchar('\n');
  fputs("", stdout);
  puts("");
  putc('!', stdout);
  return fputs("end\n", stdout);
}
