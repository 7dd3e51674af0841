/* The front library from C: a stream, a function in two tiers, a refused call. */
#include <pexquo/pexquo.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  QuoStream* stream;
  double x[1000], exp_ha[1000], exp_ep[1000];
  int i;
  if (quoNewStream(&stream, QUO_BRNG_MT19937, 42) != QUO_OK ||
      quodRngUniform(0, stream, 1000, x, 1.0, 2.0) != QUO_OK) {
    return 1;
  }
  quoDeleteStream(&stream);
  vdExp(1000, x, exp_ha);
  vdExpMode(1000, x, exp_ep, PEX_ACCURACY_EP);
  for (i = 0; i < 1000; ++i) {
    const double relative = (exp_ep[i] - exp_ha[i]) / exp_ha[i];
    if (!(exp_ha[i] >= 2.718281828459045 && exp_ha[i] < 7.38905609893065) || relative > 1e-7 ||
        relative < -1e-7) {
      printf("exp(%.17g) = %.17g or %.17g\n", x[i], exp_ha[i], exp_ep[i]);
      return 1;
    }
  }
  if (memcmp(exp_ha, exp_ep, sizeof exp_ha) == 0) return 1; /* one tier for both */
  if (vdExp(-1, x, x) != PEX_STATUS_BAD_SIZE) return 1;
  printf("%s\n", pexquoVersion());
  return strcmp(pexquoVersion(), EXPECTED_VERSION) != 0;
}
