/* pexquo: random streams and distributions.
 *
 * A stream names a basic generator (BRNG) and carries its state. Every operation returns a signed
 * 32-bit status, 0 for success and a negative code for an error, unless it says otherwise. A stream
 * belongs to one thread at a time; different streams may be used from different threads freely. */
#ifndef PEXQUO_QUO_H_
#define PEXQUO_QUO_H_

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define QUO_API __attribute__((visibility("default")))
#else
#define QUO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Status codes. ---- */

#define QUO_OK 0
#define QUO_BAD_METHOD (-2)      /* InitStream: unknown method */
#define QUO_BAD_ARGUMENT (-3)    /* abstract streams: bad argument */
#define QUO_NO_MEMORY (-4)       /* an allocation failed */
#define QUO_NULL_FUNCTION (-5)   /* registration: a function slot is null */
#define QUO_INVALID_BRNG (-1000) /* no such generator or member */
#define QUO_LEAPFROG_UNSUPPORTED (-1002)
#define QUO_SKIPAHEAD_UNSUPPORTED (-1003)
#define QUO_DIFFERENT_BRNGS (-1005)  /* state copy between different generators */
#define QUO_BAD_STATE_SIZE (-1008)   /* registration: negative state size */
#define QUO_BAD_WORD_SIZE (-1009)    /* registration: word size not 4, 8 or 16 */
#define QUO_BAD_SEED_COUNT (-1010)   /* registration: seed count not positive */
#define QUO_BAD_BIT_COUNT (-1011)    /* registration: bit count not positive */
#define QUO_BAD_STREAM_COUNT (-1013) /* leapfrog: negative number of streams */
#define QUO_CLOSE_FAILED (-1100)     /* stream file: could not be closed */
#define QUO_OPEN_FAILED (-1101)      /* stream file: could not be opened */
#define QUO_WRITE_FAILED (-1102)     /* stream file: a write failed */
#define QUO_READ_FAILED (-1103)      /* stream file: ends too early */
#define QUO_BAD_FILE (-1110)         /* stream file: not one, or of another generator */
#define QUO_BAD_FILE_FORMAT (-1111)  /* stream file: unknown format byte */
#define QUO_BAD_REFILL (-1120)       /* abstract stream: refill returned a count out of range */
#define QUO_EMPTY_REFILL (-1121)     /* abstract stream: refill returned 0 */
#define QUO_WRONG_OUTPUT (-1122)     /* abstract stream: holds numbers of another type */

/* ---- Identifiers of the basic generators. Members of a family: add the member's number. ---- */

#define QUO_BRNG_MCG31M1 0x100000
#define QUO_BRNG_R250 0x200000
#define QUO_BRNG_MRG32K3A 0x300000
#define QUO_BRNG_MCG59 0x400000
#define QUO_BRNG_WH 0x500000 /* + 0 .. 272 */
#define QUO_BRNG_SOBOL 0x600000
#define QUO_BRNG_NIEDERR 0x700000
#define QUO_BRNG_MT19937 0x800000
#define QUO_BRNG_MT2203 0x900000 /* + 0 .. 1023 */
#define QUO_BRNG_IABSTRACT 0xA00000
#define QUO_BRNG_DABSTRACT 0xB00000
#define QUO_BRNG_SABSTRACT 0xC00000

/* Methods of a generator's InitStream. */
#define QUO_INIT_STANDARD 0  /* n seed words in params */
#define QUO_INIT_LEAPFROG 1  /* n streams, params[0] = index of this one */
#define QUO_INIT_SKIPAHEAD 2 /* params: one unsigned 64-bit count, n = 2 */

/* A block of keyed data that a stream owns. */
typedef struct StreamChunk {
  uint32_t key;
  uint32_t size; /* bytes at data */
  void* data;
  struct StreamChunk* next;
} StreamChunk;

/* The head of every stream; the generator's state follows it. */
typedef struct StreamState {
  int32_t id;          /* BRNG identifier as the creator gave it */
  int32_t header;      /* 1 */
  StreamChunk* chunks; /* null when there are none */
  /* byte 16: the generator's own state, StateSize - 16 bytes */
} StreamState;

/* A registered generator. All members of a family share one record. */
typedef struct BrngProperties {
  int32_t StateSize;    /* bytes of a stream, its 16-byte head included */
  int32_t SeedCount;    /* words of WordBytes bytes that a state copy moves */
  int32_t ZeroPossible; /* 1 if the integer output can be 0 */
  int32_t WordBytes;    /* bytes of an integer output: 4, 8 or 16 */
  int32_t BitCount;     /* significant bits of an integer output */
  /* Initialise or reposition: one of QUO_INIT_*. */
  int32_t (*InitStream)(int32_t method, StreamState* stream, int32_t n, const uint32_t* params);
  /* n uniforms on [a, b), single and double. */
  int32_t (*sBRng)(StreamState* stream, int32_t n, float* r, float a, float b);
  int32_t (*dBRng)(StreamState* stream, int32_t n, double* r, double a, double b);
  /* n raw integer outputs of WordBytes bytes each. */
  int32_t (*iBRng)(StreamState* stream, int32_t n, uint32_t* r);
} BrngProperties;

#define QUO_REGISTRY_ROWS 512

/* The registry: rows by new-scheme identifier (row = (id >> 20) - 1, member = id & 0xFFFFF) with
 * the number of rows in use and of members of each row, and rows by legacy identifier (0 to 278).
 */
QUO_API extern BrngProperties __RegBrngsNew[QUO_REGISTRY_ROWS];
QUO_API extern BrngProperties __RegBrngs[QUO_REGISTRY_ROWS];
QUO_API extern int32_t NRegBrngsNew;
QUO_API extern int32_t NumOffsets[QUO_REGISTRY_ROWS];

/* ---- Registry. ---- */

/* The table, row and member of an identifier of either scheme. Never fails: an identifier of no
 * generator (a negative one too) gives a row or member that __quoIsBrngValid refuses. */
QUO_API BrngProperties* __quoGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member);
/* 0, or -1000 when the table has no such row or the row no such member. */
QUO_API int32_t __quoIsBrngValid(const BrngProperties* table, int32_t row, int32_t member);
/* Copies the record of an identifier's row; -1000 when there is none. */
QUO_API int32_t __quoGetBrngProperties(int32_t id, BrngProperties* record);
/* The number of rows in use. */
QUO_API int32_t __quoGetNumRegBrngs(void);
/* Appends a generator; returns its new identifier, or the first of -1008, -1009, -1010, -1011, -5
 * that applies, or -1000 when the table is full. Not to be raced with other registry calls. */
QUO_API int32_t __quoRegisterBrng(const BrngProperties* record);

/* ---- Streams. ---- */

/* Allocates a stream with an empty chunk list and an uninitialised state: -1000, -4, and then the
 * pointer is null. */
QUO_API int32_t __quoAllocateStream(StreamState** stream, const BrngProperties* table, int32_t id,
                                    int32_t row, int32_t member);
/* Creates and seeds a stream with n seed words. -1000 (also for the abstract identifiers), -4, or
 * the generator's own status (-1000 from a row whose generator is not there yet). After an error
 * the pointer is null or, if the generator refused, the stream: __quoDeleteStream serves both. */
QUO_API int32_t __quoNewStreamEx(StreamState** stream, int32_t id, int32_t n,
                                 const uint32_t* params);
/* Frees a stream with its chunks and sets the pointer to null; nothing if it is null already; 0. */
QUO_API int32_t __quoDeleteStream(StreamState** stream);
/* A new stream with the state and the chunks (in reverse order) of another: -1000, -4, and then
 * nothing stays allocated and the pointer is null. */
QUO_API int32_t __quoCopyStream(StreamState** copy, const StreamState* source);
/* Copies the seedable state and the chunks into an existing stream: SeedCount words of the source,
 * as far as both streams have room, so not the multiplier that a leapfrog leaves behind. -1005
 * between different registry rows, after copying, unless the source has chunks; -4, and then the
 * destination has no chunks; -1000 if either names no generator. A copy onto itself does nothing.
 */
QUO_API int32_t __quoCopyStreamState(StreamState* destination, const StreamState* source);
/* The identifier that the stream was created with. */
QUO_API int32_t __quoGetStreamStateBrng(const StreamState* stream);

/* ---- Chunks. ---- */

/* Pushes a chunk at the head of the list; its data then belongs to the stream. -4. */
QUO_API int32_t __quoAddChunk(StreamState* stream, uint32_t key, void* data, uint32_t size);
/* The data of the first chunk with that key, or null. */
QUO_API void* __quoSearchChunk(const StreamState* stream, uint32_t key);
QUO_API int32_t __quoGetNumChunks(const StreamState* stream);
/* Frees all chunks with their data; 0. */
QUO_API int32_t __quoDeleteChunks(StreamState* stream);

/* ---- Basic generators: congruential. ---- */

#define QUO_BRNG_FUNCTIONS(G)                                                                   \
  QUO_API int32_t __quoBRng##G##InitStream(int32_t method, StreamState* stream, int32_t n,      \
                                           const uint32_t* params);                             \
  QUO_API int32_t __quosBRng##G(StreamState* stream, int32_t n, float* r, float a, float b);    \
  QUO_API int32_t __quodBRng##G(StreamState* stream, int32_t n, double* r, double a, double b); \
  QUO_API int32_t __quoiBRng##G(StreamState* stream, int32_t n, uint32_t* r);

/* x' = 1132489760 x mod 2^31 - 1. One seed word. The integer output is x, from 1 to 2^31 - 2. */
QUO_BRNG_FUNCTIONS(MCG31M1)
/* x' = 13^13 x mod 2^59. One or two seed words. The integer output is x, two words each, low first.
 */
QUO_BRNG_FUNCTIONS(MCG59)
/* 273 members, each the sum modulo 1 of four multiplicative generators with primes near 2^24 as
 * moduli. Up to four seed words. The integer output is x1, x2, x3, x4, four words each. */
QUO_BRNG_FUNCTIONS(WH)

/* base^e modulo 2^31 - 1, modulo 2^59, and modulo any m below 2^32; e = 0 gives 1. */
QUO_API uint32_t __quoiPowMod2P31M1(uint32_t base, uint64_t e);
QUO_API uint64_t __quoiPowMod2P59(uint64_t base, uint64_t e);
QUO_API uint32_t __quoiPowMod(uint32_t base, uint64_t e, uint32_t m);

/* ---- Basic generators: R250 and MRG32K3A. ---- */

/* ---- Basic generators: Mersenne twisters. ---- */

/* Two twisted generalised feedback shift registers of 32-bit words: M. Matsumoto and T. Nishimura,
 * "Mersenne Twister", ACM TOMACS 8 (1998) 3-30, and "Dynamic Creation of Pseudorandom Number
 * Generators" (2000) for families. The integer output is one word from 0 to 2^32 - 1; w gives the
 * uniform (w - 2^31) ((b - a) 2^-32) + (a + b)/2, product and sum each rounded in double, the float
 * once more at the end. Seeding is that of the reference code's init_by_array, of January 2002, for
 * any number of seed words, also for one; all of them count, and none is the same as the one word 1.
 * A count of 0 or less draws nothing. Generation returns 0; leapfrog is refused with -1002 and
 * skip-ahead with -1003, other methods with -2, and the stream stays as it was.
 *
 * The state: the block of words, the index of the next one to deliver (signed 32-bit; the block's
 * length when it is used up, and a copied state's index out of range counts as that), for MT2203
 * the member's three words, and a reserved word, 0. */

/* Period 2^19937 - 1, a block of 624 words. */
QUO_BRNG_FUNCTIONS(MT19937)
/* 1024 members of period 2^2203 - 1, a block of 69 words, each with its own recurrence: streams of
 * different members are independent even when seeded alike. */
QUO_BRNG_FUNCTIONS(MT2203)

/* ---- Abstract streams. ---- */

/* ---- Partition and persistence. ---- */

/* ---- Distributions: uniform. ---- */

/* Bit of the method word: clamp the results into [a, b]. */
#define QUO_METHOD_ACCURATE 0x40000000u

/* Every distribution call returns the generator's status, a negative one unchanged, or -1000 for a
 * stream that names no generator. It computes in round-to-nearest without flushing, whatever the
 * caller has set, and leaves errno and the exception flags as they were, inexact aside. */

/* n uniforms on [a, b), one generator output each; rounding may give b itself. The accurate method
 * gives min(b, max(a, r)), in this order: a bound that is NaN bounds nothing, a NaN from the
 * generator stays. After a negative status nothing is clamped. */
QUO_API int32_t _quodRngUniform(uint32_t method, StreamState* stream, int32_t n, double* r,
                                double a, double b);
QUO_API int32_t _quosRngUniform(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                                float b);
/* n integers from a to b - 1: the floor of the double uniform on [a, b), generated in blocks of
 * 1024. Nothing, and 0, for n < 1. A negative status ends the call; finished blocks stay in r. What
 * a user's generator returns outside the 32-bit range becomes the nearest end, NaN 2^31 - 1. */
QUO_API int32_t _quoiRngUniform(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                int32_t a, int32_t b);
/* The generator's raw output: n times its word size. */
QUO_API int32_t _quoiRngUniformBits(uint32_t method, StreamState* stream, int32_t n, uint32_t* r);

/* ---- Distributions: Gaussian. ---- */

/* ---- Distributions: exponential, Laplace, Weibull, Cauchy, Rayleigh, lognormal, Gumbel. ---- */

/* ---- Distributions: Bernoulli and geometric. ---- */

#ifdef __cplusplus
}
#endif
#endif /* PEXQUO_QUO_H_ */
