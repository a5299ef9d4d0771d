/* exit runs the atexit functions last registered first, then the streams are written out. */
#include <stdio.h>
#include <stdlib.h>

static void first(void) { printf("first\n"); }
static void second(void) { printf("second, "); }

int main(void) {
  atexit(first);
  atexit(second);
  printf("main, ");
  exit(7);
}
