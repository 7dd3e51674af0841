/* Logarithms of an array in one call, with a report of each element that has none. */
#include <stdio.h>

#include "pexquo/pex.h"

static int report(PexErrorContext* record) {
  printf("element %d: ln(%g) = %g, status %d\n", record->index, record->arg1, record->res1,
         record->code);
  return 1; /* dealt with: the result stays */
}

int main(void) {
  const double x[] = {1, 2.718281828459045, 0, -4, 10};
  double r[5];
  _pexSetErrorCallBack(report);
  _pexdLn_HA(5, x, r);
  for (int i = 0; i < 5; ++i) printf("ln(%g) = %.17g\n", x[i], r[i]);
  return 0;
}
