/* A generator of one's own in the registry: Philox4x32-10, after J. K. Salmon, M. A. Moraes,
 * R. O. Dror and D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3", SC11 (2011). It has no
 * state but a key and a counter: output i is word i mod 4 of the encrypted block i / 4, so leapfrog
 * and skip-ahead are a sum and a product. Its known answers are checked first. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "pexquo/quo.h"

/* Ten rounds over a block; the key grows by the golden ratio and the square root of 3 less 1. */
static void Encrypt(const uint32_t counter[4], const uint32_t key[2], uint32_t block[4]) {
  uint32_t k0 = key[0], k1 = key[1];
  memcpy(block, counter, 16);
  for (int round = 0; round < 10; ++round) {
    const uint64_t p0 = UINT64_C(0xD2511F53) * block[0];
    const uint64_t p1 = UINT64_C(0xCD9E8D57) * block[2];
    const uint32_t next[] = {(uint32_t)(p1 >> 32) ^ block[1] ^ k0, (uint32_t)p1,
                             (uint32_t)(p0 >> 32) ^ block[3] ^ k1, (uint32_t)p0};
    memcpy(block, next, 16);
    k0 += 0x9E3779B9;
    k1 += 0xBB67AE85;
  }
}

typedef struct Philox {
  StreamState head;
  uint32_t key[2];
  uint64_t next;   /* the output to come */
  uint64_t stride; /* and how many further the one behind it stands */
} Philox;

static int32_t Init(int32_t method, StreamState* stream, int32_t n, const uint32_t* params) {
  Philox* const s = (Philox*)stream;
  uint64_t count;
  switch (method) {
    case QUO_INIT_STANDARD:
      s->key[0] = n > 0 ? params[0] : 1;
      s->key[1] = n > 1 ? params[1] : 0;
      s->next = 0;
      s->stride = 1;
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      s->next += s->stride * params[0];
      s->stride *= (uint32_t)n;
      return QUO_OK;
    case QUO_INIT_SKIPAHEAD:
      memcpy(&count, params, sizeof(count));
      s->next += s->stride * count;
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

static uint32_t Next(Philox* s) {
  const uint64_t b = s->next / 4;
  const uint32_t counter[4] = {(uint32_t)b, (uint32_t)(b >> 32), 0, 0};
  uint32_t block[4];
  Encrypt(counter, s->key, block);
  const uint32_t word = block[s->next % 4];
  s->next += s->stride;
  return word;
}

static int32_t Words(StreamState* stream, int32_t n, uint32_t* r) {
  for (int32_t i = 0; i < n; ++i) r[i] = Next((Philox*)stream);
  return QUO_OK;
}
static int32_t Doubles(StreamState* stream, int32_t n, double* r, double a, double b) {
  for (int32_t i = 0; i < n; ++i) r[i] = Next((Philox*)stream) * 0x1p-32 * (b - a) + a;
  return QUO_OK;
}
/* 24 bits, as more would be rounded, some of them to 1. */
static int32_t Singles(StreamState* stream, int32_t n, float* r, float a, float b) {
  for (int32_t i = 0; i < n; ++i) r[i] = (Next((Philox*)stream) >> 8) * 0x1p-24f * (b - a) + a;
  return QUO_OK;
}

/* Counter, key, block: from the authors' file of known answers. */
static int Check(void) {
  static const uint32_t answers[3][10] = {
      {0, 0, 0, 0, 0, 0, 0x6627E8D5, 0xE169C58D, 0xBC57AC4C, 0x9B00DBD8},
      {~0u, ~0u, ~0u, ~0u, ~0u, ~0u, 0x408F276D, 0x41C83B0E, 0xA20BC7C6, 0x6D5451FD},
      {0x243F6A88, 0x85A308D3, 0x13198A2E, 0x03707344, 0xA4093822, 0x299F31D0, /* pi */
       0xD16CFE09, 0x94FDCCEB, 0x5001E420, 0x24126EA1},
  };
  int good = 1;
  for (int i = 0; i < 3; ++i) {
    uint32_t block[4];
    Encrypt(answers[i], answers[i] + 4, block);
    const int same = memcmp(block, answers[i] + 6, 16) == 0;
    printf("known answer %d: %08" PRIx32 " %08" PRIx32 " %08" PRIx32 " %08" PRIx32 " %s\n", i + 1,
           block[0], block[1], block[2], block[3], same ? "ok" : "WRONG");
    good &= same;
  }
  return good;
}

static int32_t Throw(const char* what, int32_t id, int32_t k, int32_t streams, int32_t n) {
  const uint32_t seed[] = {2011};
  StreamState* stream = NULL;
  int32_t dice[12];
  int32_t status = __quoNewStreamEx(&stream, id, 1, seed);
  if (status == QUO_OK) status = __quoLeapfrogStream(stream, k, streams);
  if (status == QUO_OK) status = _quoiRngUniform(0, stream, n, dice, 1, 7);
  if (status == QUO_OK) {
    printf("%s", what);
    for (int32_t i = 0; i < n; ++i) printf(" %d", dice[i]);
    printf("\n");
  }
  __quoDeleteStream(&stream);
  return status;
}

int main(void) {
  static const BrngProperties record = {
      .StateSize = sizeof(Philox),
      .SeedCount = (sizeof(Philox) - sizeof(StreamState)) / 4,
      .ZeroPossible = 1,
      .WordBytes = 4,
      .BitCount = 32,
      .InitStream = Init,
      .sBRng = Singles,
      .dBRng = Doubles,
      .iBRng = Words,
  };
  if (!Check()) return 1;
  const int32_t id = __quoRegisterBrng(&record);
  int32_t status = id;
  if (id > 0) {
    printf("registered as 0x%X\n", (unsigned)id);
    status = Throw("die: ", id, 0, 1, 12);
    if (status == QUO_OK) status = Throw("even:", id, 0, 2, 6);
    if (status == QUO_OK) status = Throw("odd: ", id, 1, 2, 6);
  }
  if (status != QUO_OK) fprintf(stderr, "status %d\n", status);
  return status != QUO_OK;
}
