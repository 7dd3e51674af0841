/* Two streams that share one sequence without overlap, each throwing a die. */
#include <stdio.h>

#include "pexquo/quo.h"

int main(void) {
  const uint32_t seed[] = {1879};
  for (int32_t index = 0; index < 2; ++index) {
    StreamState* stream = NULL;
    int32_t throws[10];
    int32_t status = __quoNewStreamEx(&stream, QUO_BRNG_MCG59, 1, seed);
    /* Every second number of the sequence, from number `index` on. */
    if (status == QUO_OK) status = __quoLeapfrogStream(stream, index, 2);
    if (status == QUO_OK) status = _quoiRngUniform(0, stream, 10, throws, 1, 7);
    if (status != QUO_OK) {
      fprintf(stderr, "status %d\n", status);
      return 1;
    }
    printf("die %d:", index + 1);
    for (int i = 0; i < 10; ++i) printf(" %d", throws[i]);
    printf("\n");
    __quoDeleteStream(&stream);
  }
  return 0;
}
