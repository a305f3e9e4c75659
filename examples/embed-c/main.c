/* Reads flowers from the standard input, four measurements and three outputs a line, and tells how
   many of them the network in iris.c recognises. */
#include <stdio.h>

void iris(const double *input, double *output);

static int largest(const double *values) {
  int best = 0, k;
  for (k = 1; k < 3; ++k) {
    if (values[k] > values[best]) best = k;
  }
  return best;
}

int main(void) {
  int c, rows = 0, right = 0;
  double input[4], expected[3], output[3];

  while ((c = getchar()) != EOF && c != '\n') continue; /* the names of the columns */
  while (scanf("%lf,%lf,%lf,%lf,%lf,%lf,%lf", &input[0], &input[1], &input[2], &input[3],
               &expected[0], &expected[1], &expected[2]) == 7) {
    iris(input, output);
    ++rows;
    if (largest(output) == largest(expected)) ++right;
  }
  printf("rows %d right %d\n", rows, right);
  return 0;
}
