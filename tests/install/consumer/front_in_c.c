/* Numbers from a stream and their logarithms, from C. */
#include <pexquo/pexquo.h>
#include <stdio.h>

int main(void) {
  double x[4], y[4];
  int i, same = 0;
  QuoStream* stream = NULL;
  if (quoNewStream(&stream, QUO_BRNG_MRG32K3A, 1) != QUO_OK) return 1;
  if (quodRngExponential(0, stream, 4, x, 1.0, 2.0) != QUO_OK) return 1;
  if (quodRngExponential(0, stream, 4, y, 1.0, -2.0) != QUO_BAD_SCALE) return 1;
  if (quoDeleteStream(&stream) != QUO_OK) return 1;
  if (vdLnMode(4, x, y, PEX_ACCURACY_LA) != PEX_STATUS_OK || vdExp(4, y, y) != PEX_STATUS_OK)
    return 1;
  for (i = 0; i < 4; ++i) same += x[i] >= 1 && y[i] / x[i] - 1 < 1e-14 && 1 - y[i] / x[i] < 1e-14;
  printf("pexquo %s: %g %g, %d of 4 are the same\n", pexquoVersion(), x[0], y[0], same);
  return same == 4 && vdExp(-1, x, y) == PEX_STATUS_BAD_SIZE ? 0 : 1;
}
