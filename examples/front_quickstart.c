/* The first five minutes: normal numbers from a stream, their exponentials in each tier, and what
 * happens to elements that have no result.
 *
 *     cc front_quickstart.c $(pkg-config --cflags --libs pexquo-front) && ./a.out
 */
#include <pexquo/pexquo.h>
#include <stdio.h>
#include <stdlib.h>

enum { kCount = 5 };

/* Ends the program with a sentence when a call was refused. */
static void check(int32_t status) {
  if (status == QUO_OK) return;
  fprintf(stderr, "%s\n", quoStatusText(status));
  exit(1);
}

/* What the library calls for every special element. */
static int show(PexErrorContext* e) {
  printf("  %s, element %d: %s (%g gives %g)\n", e->func_name, (int)e->index,
         pexStatusText(e->code), e->arg1, e->res1);
  return 0;
}

int main(void) {
  double x[kCount], ha[kCount], la[kCount], ep[kCount];
  QuoStream* stream = NULL;
  int i;
  printf("pexquo %s\n\n", pexquoVersion());

  /* A stream is made from a generator and a seed, and drawn from by distributions. */
  check(quoNewStream(&stream, QUO_BRNG_MT19937, 2026));
  check(quodRngGaussian(QUO_METHOD_GAUSSIAN_ICDF, stream, kCount, x, 0.0, 1.0));
  check(quoDeleteStream(&stream));

  /* One function, three tiers: the thread's (HA unless it is set), or one for the call. */
  vdExp(kCount, x, ha);
  vdExpMode(kCount, x, la, PEX_ACCURACY_LA);
  vdExpMode(kCount, x, ep, PEX_ACCURACY_EP);
  printf("%20s %20s %20s %20s\n", "x", "exp(x), HA", "LA", "EP");
  for (i = 0; i < kCount; ++i)
    printf("%20.17f %20.17f %20.17f %20.17f\n", x[i], ha[i], la[i], ep[i]);

  /* The logarithms of the negative ones do not exist. A callback sees each. */
  printf("\nlogarithms:\n");
  pexSetErrorCallBack(show);
  vdLn(kCount, x, ha);
  pexClearErrorCallBack();
  printf("  the last report was: %s\n", pexStatusText(pexGetErrStatus()));

  /* What makes no sense is refused, and nothing is touched. */
  printf("\nrefused: %s\n", quoStatusText(quodRngGaussian(0, stream, kCount, x, 0.0, 1.0)));
  return 0;
}
