/* Exponentials with a callback, from C. */
#include <pexquo/kro.h>
#include <pexquo/pex.h>
#include <pexquo/quo.h>
#include <stdio.h>

static int replace(PexErrorContext* record) {
  record->res1 = -1;
  return 0;
}

int main(void) {
  const double x[3] = {0, 1000, 1};
  double y[3];
  void* block = kro_serv_kro_malloc(100, 64);
  if (block == NULL) return 1;
  kro_serv_kro_free(block);
  _pexSetErrorCallBack(replace);
  _pexdExp_50(3, x, y);
  printf("%.17g %.17g %.17g status %d\n", y[0], y[1], y[2], _pexGetErrStatus());
  return y[0] == 1 && y[1] == -1 && y[2] > 2.71828 && y[2] < 2.71829 &&
                 _pexGetErrStatus() == PEX_STATUS_OVERFLOW
             ? 0
             : 1;
}
