/* Writes a small table to a file, reads it back and sums it in memory: printf, files and the
 * heap as an ordinary C program uses them. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void) {
  const int rows = 8;
  FILE *out = fopen("squares.txt", "w");
  if (!out) {
    printf("cannot create squares.txt\n");
    return 1;
  }
  for (int i = 1; i <= rows; ++i)
    fprintf(out, "%d %d %.4f\n", i, i * i, 1.0 / i);
  fclose(out);

  FILE *in = fopen("squares.txt", "r");
  if (!in) {
    printf("cannot reopen squares.txt\n");
    return 1;
  }
  double *inverses = malloc(rows * sizeof *inverses);
  char line[64];
  int count = 0;
  long squares = 0;
  while (count < rows && fgets(line, sizeof line, in)) {
    char *space = strchr(line, ' ');
    squares += atol(space + 1);
    inverses[count++] = 1.0 / atoi(line);
  }
  long size = ftell(in);
  fclose(in);

  double harmonic = 0;
  for (int i = 0; i < count; ++i)
    harmonic += inverses[i];
  free(inverses);
  printf("read %d lines, %ld bytes\n", count, size);
  printf("sum of squares: %ld\n", squares);
  printf("harmonic number H(%d) = %.6f (%e)\n", count, harmonic, harmonic);
  return count == rows ? 0 : 1;
}
