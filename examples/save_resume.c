/* A walk that is interrupted: 1000 steps in one go, then 1000 steps of which the first 337 end with
 * the stream in a file and the rest begins with it. Both end at the same place.
 *
 *   save_resume [FILE] */
#include <stdio.h>

#include "pexquo/quo.h"

/* Steps of -1 to 1 km. */
static int32_t Walk(StreamState* stream, int steps, double* place) {
  while (steps-- > 0) {
    double step;
    const int32_t status = _quodRngUniform(0, stream, 1, &step, -1, 1);
    if (status != QUO_OK) return status;
    *place += step;
  }
  return QUO_OK;
}

static int Fail(const char* what, int32_t status) {
  fprintf(stderr, "%s: status %d\n", what, status);
  return 1;
}

int main(int argc, char** argv) {
  const char* const file = argc > 1 ? argv[1] : "walk.stream";
  const uint32_t seed[] = {1879};
  StreamState* stream = NULL;
  double straight = 0, interrupted = 0;
  int32_t status = __quoNewStreamEx(&stream, QUO_BRNG_MCG59, 1, seed);
  if (status == QUO_OK) status = Walk(stream, 1000, &straight);
  __quoDeleteStream(&stream);
  if (status != QUO_OK) return Fail("the walk", status);
  printf("1000 steps lead to %.15f km\n", straight);

  status = __quoNewStreamEx(&stream, QUO_BRNG_MCG59, 1, seed);
  if (status == QUO_OK) status = Walk(stream, 337, &interrupted);
  if (status == QUO_OK) status = __quoSaveStreamF(stream, file, -1);
  __quoDeleteStream(&stream);
  if (status != QUO_OK) return Fail(file, status);
  printf(" 337 steps lead to %.15f km\n", interrupted);

  status = __quoLoadStreamF(&stream, file, -1);
  if (status != QUO_OK) return Fail(file, status);
  status = Walk(stream, 1000 - 337, &interrupted);
  __quoDeleteStream(&stream);
  remove(file);
  if (status != QUO_OK) return Fail("the walk", status);
  printf(" 663 more lead to  %.15f km\n", interrupted);
  printf("%s\n", interrupted == straight ? "the same place" : "another place");
  return interrupted != straight;
}
