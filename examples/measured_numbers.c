/* Dice that fall by numbers measured elsewhere: an abstract stream reads them from a file, a few at
 * a time, and every distribution draws from it as from any generator, until the file is used up.
 *
 *   measured_numbers FILE      whole numbers from 0 to 999, lines with # are comments */
#include <stdio.h>

#include "pexquo/quo.h"

static FILE* file;

/* The next number of the file; 0 at its end. */
static int Next(double* number) {
  int c;
  while (fscanf(file, "%lf", number) != 1) {
    if (fgetc(file) != '#') return 0;
    while ((c = fgetc(file)) != '\n' && c != EOF) continue;
  }
  return 1;
}

/* Fills what is free, as far as the file goes. To return 0 is to say that nothing is left. */
static int32_t Refill(StreamState* stream, int32_t* n, double* buffer, int32_t* nmin, int32_t* nmax,
                      int32_t* pos) {
  int32_t k = 0;
  (void)stream;
  (void)nmin;
  while (k < *nmax && Next(&buffer[(*pos + k) % *n])) ++k;
  return k;
}

int main(int argc, char** argv) {
  enum { kSlots = 32 };
  double buffer[kSlots];
  int faces[7] = {0}, throws = 0;
  StreamState* stream = NULL;
  int32_t status, face;
  if (argc != 2 || (file = fopen(argv[1], "r")) == NULL) {
    fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
  status = __quodNewAbstractStream(&stream, kSlots, buffer, 0, 1000, Refill);
  while (status == QUO_OK) {
    status = _quoiRngUniform(0, stream, 1, &face, 1, 7);
    if (status != QUO_OK) break;
    if (throws < 20) printf("%s%d", throws == 0 ? "the first throws: " : " ", face);
    ++faces[face];
    ++throws;
  }
  __quoDeleteStream(&stream);
  fclose(file);
  if (status != QUO_EMPTY_REFILL) {
    fprintf(stderr, "status %d\n", status);
    return 1;
  }
  printf("\n%d throws until the file was used up\n", throws);
  for (face = 1; face <= 6; ++face) printf("%d: %3d times\n", face, faces[face]);
  return 0;
}
