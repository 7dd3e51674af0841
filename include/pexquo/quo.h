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
#define QUO_BAD_ARGUMENT (-3)    /* abstract streams: bad argument; seeding: malformed set */
#define QUO_NO_MEMORY (-4)       /* an allocation failed */
#define QUO_NULL_FUNCTION (-5)   /* registration: a null slot; abstract stream: a null buffer */
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
 * generator gives a row or member that __quoIsBrngValid refuses, a negative one a negative row. */
QUO_API BrngProperties* __quoGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member);
/* 0, or -1000 when the table has no such row or the row no such member. Of a legacy row, whose
 * member does not count, and of a member only the upper bound is looked at; no operation below
 * takes a negative row. */
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
 * the generator's own status. After an error the pointer is null or, if the generator refused, the
 * stream: __quoDeleteStream serves both. */
QUO_API int32_t __quoNewStreamEx(StreamState** stream, int32_t id, int32_t n,
                                 const uint32_t* params);
/* Frees a stream with its chunks and sets the pointer to null; nothing if it is null already; 0. */
QUO_API int32_t __quoDeleteStream(StreamState** stream);
/* A new stream with the state and the chunks (in reverse order) of another: -1000, -4, and then
 * nothing stays allocated and the pointer is null. */
QUO_API int32_t __quoCopyStream(StreamState** copy, const StreamState* source);
/* Copies the seedable state and the chunks into an existing stream: SeedCount words of the source,
 * as far as both streams have room: of MCG31M1 and MCG59 not the multiplier that a leapfrog leaves
 * behind, of abstract streams nothing. -1005 between different registry rows, after copying, unless
 * the source has chunks; -4, and then the destination has no chunks; -1000 if either names no
 * generator. A copy onto itself does nothing. */
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
 * From odd seeds the period is 2^57. Of a seed that 2^k divides it is 2^(57-k), and the last k bits
 * of all x are 0: let the first word be odd. */
QUO_BRNG_FUNCTIONS(MCG59)
/* 273 members, each the sum modulo 1 of four multiplicative generators with primes near 2^24 as
 * moduli. Up to four seed words. The integer output is x1, x2, x3, x4, four words each. */
QUO_BRNG_FUNCTIONS(WH)

/* base^e modulo 2^31 - 1, modulo 2^59, and modulo any m below 2^32; e = 0 gives 1. */
QUO_API uint32_t __quoiPowMod2P31M1(uint32_t base, uint64_t e);
QUO_API uint64_t __quoiPowMod2P59(uint64_t base, uint64_t e);
QUO_API uint32_t __quoiPowMod(uint32_t base, uint64_t e, uint32_t m);

/* ---- Basic generators: R250 and MRG32K3A. ---- */

/* The integer output of both is one 32-bit word, their uniforms take one output each; a count of 0
 * or less writes nothing and leaves the stream where it is. Neither leapfrogs: -1002. */

/* w(n) = w(n-250) xor w(n-147), all 32-bit words. 250 seed words or more are the first 250 of the
 * sequence before the first output; of fewer the first counts, 0 and none as 1: it fills the state
 * by the multiplier 69069, with 32 words made linearly independent. No skip-ahead: -1003. A state
 * whose two indices are not ones that seeding and drawing leave behind, from a file or a copy,
 * counts them modulo 250 and goes on by the definition x[i] ^= x[j], a word at a time.
 * S. Kirkpatrick, E. P. Stoll, J. Comput. Phys. 40 (1981), 517-526. */
QUO_BRNG_FUNCTIONS(R250)
/* z = x - y mod m1 with x(n) = 1403580 x(n-2) - 810728 x(n-3) mod m1 = 2^32 - 209 and
 * y(n) = 527612 y(n-1) - 1370589 y(n-3) mod m2 = 2^32 - 22853. Up to six seed words, x then y,
 * oldest first: those not given are 1, each is reduced by its modulus, and a component of three
 * zeros starts from 1, 0, 0. The integer output is z, from 0 to m1 - 1, the uniform z/m1. Skips
 * ahead by any 64-bit count. A word of the state at or above its modulus, as a file or a copy may
 * bring, counts as its residue.
 * P. L'Ecuyer, Operations Research 47 (1999), 159-164. */
QUO_BRNG_FUNCTIONS(MRG32K3A)

/* ---- Basic generators: Mersenne twisters. ---- */

/* Two twisted generalised feedback shift registers of 32-bit words: M. Matsumoto and T. Nishimura,
 * "Mersenne Twister", ACM TOMACS 8 (1998) 3-30, and "Dynamic Creation of Pseudorandom Number
 * Generators" (2000) for families. The integer output is one word from 0 to 2^32 - 1; w gives the
 * uniform (w - 2^31) ((b - a) 2^-32) + (a + b)/2, product and sum each rounded in double, the float
 * once more at the end. Seeding is that of the reference code's init_by_array, of January 2002, for
 * any number of seed words, also for one; all of them count, and none is the same as the one
 * word 1. A count of 0 or less draws nothing. Generation returns 0; leapfrog is refused with -1002
 * and skip-ahead with -1003, other methods with -2, and the stream stays as it was. Integer outputs
 * to a null pointer are passed over, in about half the time that drawing them takes.
 *
 * The state: the block of words, the index of the next one to deliver (signed 32-bit; the block's
 * length when it is used up, and a copied state's index out of range counts as that), for MT2203
 * the member's three words, and a reserved word, 0. */

/* Period 2^19937 - 1, a block of 624 words. */
QUO_BRNG_FUNCTIONS(MT19937)
/* 1024 members of period 2^2203 - 1, a block of 69 words, each with its own recurrence: no two
 * share a run of 4406 words, whatever their seeds. Members seeded alike draw some 200 words that
 * are alike first: let the seed hold the member's number, too. */
QUO_BRNG_FUNCTIONS(MT2203)

/* ---- Basic generators: quasi-random. ---- */

/* Points of the unit cube as evenly spread as can be, which random points are not: of the first n
 * points, or of 2^m from a multiple of 2^m on, every box has its share but for some (log n)^s / n.
 * Integration by them converges faster than by random ones; statistics that need independence do
 * not take them. Both are digital sequences in base 2 of 32 bits in Gray-code order
 * (I. A. Antonov, V. M. Saleev, USSR Comput. Math. Math. Phys. 19 (1979) 252-256).
 *
 * Outputs are the coordinates of a point, one after the other, and then those of the next point,
 * however requests are split. The integer output is a word w from 1 to 2^32 - 1, the uniform is
 * w ((b - a) 2^-32) + a, product and sum each rounded in double, the float once more at the end
 * (where it may become b). Point 0, the origin, is passed over: the first point is that of index 1,
 * (1/2, 1/2 ...) of the Sobol sequence. After the 2^32 - 1 points of index 1 to 2^32 - 1, in which
 * each coordinate takes every value from 1 to 2^32 - 1 once, point 1 comes again. A run of 2^m
 * points that is a net begins at an index that is a multiple of 2^m: skip 2^m - 1 points first, as
 * many outputs times the dimension.
 *
 * Seed words: the first is the dimension s, the number of coordinates; none, 0 or one above the
 * most counts as 1. Further words are a user's set in place of the built-in one (below); the stream
 * keeps all seed words as a chunk. -3: a malformed set, -4: no memory for the chunk, and a stream
 * in use stays as it was; a new one is good for deletion only. Seeding anew without a set deletes
 * the chunk.
 *
 * Skip-ahead moves on by any 64-bit count of outputs, coordinates, exactly. Leapfrog of stream k of
 * s streams, s the dimension and k below it, makes a stream of one dimension, coordinate k alone,
 * from its first value not yet delivered (the chunk stays); any other k and s: -1002. Other
 * methods: -2, and then the stream stays as it was. Generation returns 0; a count of 0 or less
 * draws nothing. A state of other content, as a file may bring, draws something without leaving its
 * bounds.
 *
 * The state: dimension s, q, index of the point to deliver from, number of the coordinate that is
 * next (unsigned 32-bit); then what places points, in blocks of 2^q. */

/* Up to 40 coordinates. Coordinate 0 has the identity as its generating matrix; the others come by
 * Sobol's recurrence from the primitive polynomials in order of degree and value, with the initial
 * numbers of S. Joe, F. Y. Kuo, SIAM J. Sci. Comput. 30 (2008) 2635-2654 (new-joe-kuo-6). s
 * coordinates are a (t, s)-sequence in base 2 with t the sum of the degrees less 1 behind
 * coordinate 0; each coordinate is a (0, 1)-sequence.
 *
 * A user's set (chunk key 9) is one group of words for each of the s coordinates, one behind the
 * other, none left over. A group is
 *   p, m_1 .. m_e   p a primitive polynomial over GF(2), bit k the coefficient of x^k, of degree e
 *                   from 1 to 31; m_k odd and below 2^k;
 *   1               the identity;
 *   0, v_1 .. v_32  the direction numbers themselves, v_k an odd multiple of 2^(32-k).
 * No polynomial, nor the identity by 1, may stand twice. */
QUO_BRNG_FUNCTIONS(Sobol)
/* Up to 318 coordinates. Coordinate i has the irreducible polynomial p of number i in order of
 * degree and value, x the first; row Q e + u of its matrix holds the digits of x^u y / p^(Q+1), e
 * the degree and u below it: H. Niederreiter, J. Number Theory 30 (1988) 51-70. s coordinates are a
 * (t, s)-sequence in base 2 with t the sum of their e - 1. The numerator y, free in the method, is
 * one with which the continued fraction of y/p has partial quotients of degree 1 (J. P. Mesirov,
 * M. M. Sweet, J. Number Theory 27 (1987) 144-148), of two the greater y/p, read as a binary
 * fraction: it makes each coordinate a (0, 1)-sequence. The other usual choice, all first digits 1,
 * does not; it has other points from the third coordinate on.
 *
 * A user's set (chunk key 10) is s words, irreducible polynomials of degree 1 to 31, all different,
 * bit k the coefficient of x^k. */
QUO_BRNG_FUNCTIONS(Niederr)

/* ---- Abstract streams. ---- */

/* A stream of numbers that the caller brings: it delivers from a circular buffer of the caller's,
 * of n slots, and calls the caller's function whenever the buffer has run empty. Each kind serves
 * the output of its own type alone; the two others give -1122 and call nothing. Leapfrog gives
 * -1002, skip-ahead -1003. The stream owns neither buffer nor function, and both have to outlive
 * its last generation call. A copy of the stream draws from the same buffer, from its own place.
 *
 * The function writes k new numbers into the buffer from slot *pos on, slot 0 following slot
 * *n - 1, and returns k, from 1 to *nmax (the free slots: all n, as it is only called when none is
 * left). *nmin, at most *nmax, is what the current call can still use. The four counts are copies
 * for it to read or to spoil. It runs with the caller's rounding and flush modes in a call to the
 * generator, with the distribution's in a distribution call. It must not draw from its stream nor
 * delete it. */
typedef int32_t (*RefillI)(StreamState* stream, int32_t* n, uint32_t* buffer, int32_t* nmin,
                           int32_t* nmax, int32_t* pos);
typedef int32_t (*RefillD)(StreamState* stream, int32_t* n, double* buffer, int32_t* nmin,
                           int32_t* nmax, int32_t* pos);
typedef int32_t (*RefillS)(StreamState* stream, int32_t* n, float* buffer, int32_t* nmin,
                           int32_t* nmax, int32_t* pos);

/* New streams on buffer[n]. Doubles and singles lie on [c, d). -3 when n < 1, buffer or function is
 * null, or c is not below d (NaN); -1000, -4. After an error the pointer is null. The first
 * generation call begins with a refill. */
QUO_API int32_t __quoiNewAbstractStream(StreamState** stream, int32_t n, uint32_t* buffer,
                                        RefillI refill);
QUO_API int32_t __quodNewAbstractStream(StreamState** stream, int32_t n, double* buffer, double c,
                                        double d, RefillD refill);
QUO_API int32_t __quosNewAbstractStream(StreamState** stream, int32_t n, float* buffer, float c,
                                        float d, RefillS refill);

/* The generators behind them. Words are delivered as they are, a number u of [c, d) as
 * (u - c) scale + a with scale = (b - a) / (d - c), rounded to nearest at each step, in the type of
 * the stream; r must not overlap the buffer. -5 when the buffer is null, as it is after loading
 * from a file. -1121 when the function returned 0, -1120 when it returned a negative count or more
 * than *nmax: the numbers delivered by then stay in r, the stream keeps the position from before
 * the call (its slots may have been refilled meanwhile).
 *
 * InitStream: method 0 is for the constructors above, which hand over a record of their own in
 * params; called by anyone else it gives -3, looks at no parameter and leaves the stream alone. */
QUO_BRNG_FUNCTIONS(iAbstract)
QUO_BRNG_FUNCTIONS(dAbstract)
QUO_BRNG_FUNCTIONS(sAbstract)

/* ---- Partition and persistence. ---- */

/* From now on the stream delivers elements k, k + nstreams, k + 2 nstreams ... of its sequence,
 * counted from where it stands. -1013 for a negative nstreams, and then the generator is not asked;
 * -1000; else what the generator answers (InitStream by method 1), -1002 when it cannot. */
QUO_API int32_t __quoLeapfrogStream(StreamState* stream, int32_t k, int32_t nstreams);
/* Moves the stream on by nskip elements. -1000; else what the generator answers (InitStream by
 * method 2), -1003 when it cannot. */
QUO_API int32_t __quoSkipAheadStream(StreamState* stream, uint64_t nskip);

/* A stream in a file, all numbers little-endian:
 *   byte 0   "RNG", then the format byte 0
 *        4   16 bits each: 16, the header's size; S, the generator's StateSize - 16 (0 when that is
 *            negative); C, the number of chunks; 0, never read
 *       12   32 bits: the identifier
 *       16   S bytes: the stream from byte 16 on
 *   16 + S   C chunks from the head of the list on: 32 bits key, 32 bits size, the data
 *
 * A file's name is `length` bytes, or for a negative length what ends with a zero byte. */

/* Writes a stream to a new file, or over an old one. A chunk whose data is null is written as one
 * of no bytes. -4 for want of memory for the name; -1000 when the stream names no generator; -1101
 * when the file cannot be opened, -1102 when a write fails, -1100 when closing does, which writes
 * what is still buffered; the file may then hold a part of the stream. -1102 before the file is
 * touched when S or C does not fit its 16 bits. */
QUO_API int32_t __quoSaveStreamF(const StreamState* stream, const char* name, int32_t length);

/* Makes a stream of a file: it goes on exactly where the saved one stood, with the chunks in
 * reverse order. Whatever the file's bytes, no memory is taken that the rest of the file could not
 * fill (of a pipe, whose length nobody knows: more than twice what came of a chunk, 4096 bytes at
 * least), and what follows the last chunk is not read.
 *
 * The state's bytes are taken as they are. The library's own generators stay within their memory
 * whatever the bytes; a registered generator that keeps pointers or indexes in its state has to
 * look to itself. An abstract stream comes back without buffer and function, which belonged to the
 * process that saved it: it gives -5, and a new one has to be made to go on.
 *
 * The first that applies: -4 no memory for the name (and nothing else happens); -1101 not to be
 * opened; -1103 shorter than its header; -1110 no "RNG"; -1111 format byte not 0; -1110 no such
 * generator, S not that of the generator, or a header size below 16 (a larger one is accepted and
 * changes nothing); -1103 file ends within the state or a chunk; -4 no memory for the stream, a
 * chunk or its data; -1100 closing fails. After any but the first, what *stream refers to is
 * deleted and *stream null: let it be null before. */
QUO_API int32_t __quoLoadStreamF(StreamState** stream, const char* name, int32_t length);

/* ---- Distributions: uniform. ---- */

/* Bit of the method word: clamp the results into [a, b]. */
#define QUO_METHOD_ACCURATE 0x40000000u

/* Every distribution call returns the generator's status, a negative one unchanged, or -1000 for a
 * stream that names no generator. It computes in round-to-nearest without flushing, whatever the
 * caller has set, and leaves errno and the exception flags as they were, inexact aside and what
 * Cauchy and lognormal report. */

/* n uniforms on [a, b), one generator output each; rounding may give b itself. The accurate method
 * gives min(b, max(a, r)), in this order: a bound that is NaN bounds nothing, a NaN from the
 * generator stays. After a negative status nothing is clamped. */
QUO_API int32_t _quodRngUniform(uint32_t method, StreamState* stream, int32_t n, double* r,
                                double a, double b);
QUO_API int32_t _quosRngUniform(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                                float b);
/* n integers from a to b - 1: the floor of the double uniform on [a, b), generated in blocks of
 * 1024; rounding may give b itself. Nothing, and 0, for n < 1. A negative status ends the call;
 * finished blocks stay in r. What a user's generator returns outside the 32-bit range becomes the
 * nearest end, NaN 2^31 - 1. */
QUO_API int32_t _quoiRngUniform(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                int32_t a, int32_t b);
/* The generator's raw output: n times its word size. */
QUO_API int32_t _quoiRngUniformBits(uint32_t method, StreamState* stream, int32_t n, uint32_t* r);

/* ---- Distributions: Gaussian. ---- */

/* Methods of the normal distribution. */
#define QUO_METHOD_GAUSSIAN_BOXMULLER 0u  /* two uniforms an output */
#define QUO_METHOD_GAUSSIAN_BOXMULLER2 1u /* two uniforms two outputs */
#define QUO_METHOD_GAUSSIAN_ICDF 2u       /* one uniform an output */

/* n normal numbers with mean a and standard deviation sigma (> 0, which is not checked). Of two
 * uniforms u1, u2 on [0, 1), R = sqrt(-2 ln u1):
 *   BOXMULLER   R sin(2 pi u2), one output;
 *   BOXMULLER2  R sin(2 pi u2), then R cos(2 pi u2): G. E. P. Box, M. E. Muller, Annals of
 *               Mathematical Statistics 29 (1958). A pair that a call has half used is finished by
 *               the next call of this method and precision on the stream, so the sequence does not
 *               depend on how it is asked for. The pair is kept in the stream's chunk 2 (double, 16
 *               bytes) or 1 (single, 8 bytes), which goes with the stream into copies and files; a
 *               chunk of that key and another size is passed over, and a new one added;
 *   ICDF        sqrt(2) erfinv(u), u a uniform on [-1, 1).
 * Each output times sigma plus a, both rounded (ICDF: times sigma sqrt(2), rounded, plus a). Double
 * outputs come from the vector functions with 26 correct bits, single ones from those with 21.
 * Where these have no finite value, at u1 = 0 and u = -1, fixed values stand in: ln 0 is -744.44
 * (single: -103.28), erfinv(-1) is -0.76705 (-1.0837). The thread's vector-math mode, status and
 * callback are as before afterwards, and the callback is not called.
 *
 * Returns the status of the last request for uniforms; 0 for n < 1, which does nothing; -2 for
 * another method; -4. A negative status of the generator ends the call: earlier blocks of 1024
 * uniforms (BOXMULLER: 1024 outputs) are done, by BOXMULLER2 without sigma and a. */
QUO_API int32_t _quodRngGaussian(uint32_t method, StreamState* stream, int32_t n, double* r,
                                 double a, double sigma);
QUO_API int32_t _quosRngGaussian(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                                 float sigma);

/* How a lower triangular factor T of dimension m is stored. */
#define QUO_STORAGE_FULL 0   /* m m numbers, T[i][j] at i m + j; those above the diagonal unread */
#define QUO_STORAGE_PACKED 1 /* m (m + 1) / 2 numbers, column by column from the diagonal down */
#define QUO_STORAGE_DIAGONAL 2 /* m numbers, the diagonal */

/* n vectors x = a + T z of dimension dimen, one behind the other in r (n dimen numbers): z of
 * standard normal numbers, as many and in the order that _quo*RngGaussian gives by the method; a
 * has dimen numbers, the covariance of x is T T'. Element i of x is, summed from the left:
 *   full      T[i][i] z[i] + T[i][0] z[0] + ... + T[i][i-1] z[i-1] + a[i], for dimensions to 10;
 *             beyond, the system's BLAS multiplies (DTRMM, STRMM) in an order of its own, so that
 *             the last bits may depend on the processor and on the number of vectors of a call;
 *   packed    T[i][0] z[0] + T[i][1] z[1] + ... + T[i][i] z[i] + a[i];
 *   diagonal  T[i][i] z[i] + a[i].
 * Dimension 1 is _quo*RngGaussian(method, stream, n, r, a[0], t[0]), whatever the storage. For an
 * unknown storage the vectors z stay in r.
 *
 * Returns as _quo*RngGaussian, after a negative status with what was drawn in r, and -3 for a
 * dimension below 1, -4 where a packed factor of 1024 dimensions or more finds no memory for a
 * vector: the z stay in r then. */
QUO_API int32_t _quodRngGaussianMV(uint32_t method, StreamState* stream, int32_t n, double* r,
                                   int32_t dimen, int32_t mstorage, const double* a,
                                   const double* t);
QUO_API int32_t _quosRngGaussianMV(uint32_t method, StreamState* stream, int32_t n, float* r,
                                   int32_t dimen, int32_t mstorage, const float* a, const float* t);

/* ---- Distributions: exponential, Laplace, Weibull, Cauchy, Rayleigh, lognormal, Gumbel. ---- */

/* n numbers at r, an array at any address, made of uniforms u on [0, 1) unless it says otherwise,
 * by inversion (L. Devroye, Non-Uniform Random Variate Generation, Springer 1986, chapter II). The
 * method word is not looked at, and no parameter is checked: beta, alpha and sigma should be
 * positive. Logarithms, powers, tangents and exponentials are those of vector math with 26 bits in
 * double and 21 bits in single precision (_pexdLn_26, _pexsLn_21, ...); every other operation is
 * rounded by itself, in the order written, and max(a, x) is a > x ? a : x.
 *
 * log(0) is -744.4400719213812, in single precision -103.27893, the logarithm of the smallest
 * positive number: a generator's u = 0 gives a finite number. What a user's generator may give
 * outside [0, 1) is special too: its logarithm becomes the same value in exponential, Laplace and
 * Gumbel, and stays what it is in the others. No special element reaches the thread's callback,
 * mode or status but in the last function of Cauchy and lognormal, which has no callback of its
 * own: an exponential that overflows or underflows, or the tangent of an infinity that a user's
 * generator gives, is reported as _pexdExp_26 and _pexdTan_26 report it, by its place in r, and the
 * thread's callback may replace it.
 *
 * After a negative status r holds what the generator left there, untransformed. */

/* Exponential: max(a, a - beta log(u)). One uniform each. */
QUO_API int32_t _quodRngExponential(uint32_t method, StreamState* stream, int32_t n, double* r,
                                    double a, double beta);
QUO_API int32_t _quosRngExponential(uint32_t method, StreamState* stream, int32_t n, float* r,
                                    float a, float beta);
/* Laplace: log(u1) (-beta) + a if u2 <= 1/2, else log(u1) beta + a. Two uniforms each, u1 first,
 * drawn for 1024 numbers at a time; finished blocks stay in r after a negative status, the others
 * are not touched. Nothing, and 0, for n < 1. */
QUO_API int32_t _quodRngLaplace(uint32_t method, StreamState* stream, int32_t n, double* r,
                                double a, double beta);
QUO_API int32_t _quosRngLaplace(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                                float beta);
/* Weibull: max(a, x beta + a), x = (0 - log(u))^(1/alpha). One uniform each. A power that is a pole
 * (alpha negative) has the value of log(0), one that overflows is infinite. */
QUO_API int32_t _quodRngWeibull(uint32_t method, StreamState* stream, int32_t n, double* r,
                                double alpha, double a, double beta);
QUO_API int32_t _quosRngWeibull(uint32_t method, StreamState* stream, int32_t n, float* r,
                                float alpha, float a, float beta);
/* Cauchy: tan(u) beta + a, u uniform on [-pi/2, pi/2), bounds as rounded. One uniform each. */
QUO_API int32_t _quodRngCauchy(uint32_t method, StreamState* stream, int32_t n, double* r, double a,
                               double beta);
QUO_API int32_t _quosRngCauchy(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                               float beta);
/* Rayleigh: max(a, sqrt(0 - log(u)) beta + a). One uniform each. Where the density is
 * x/s^2 exp(-x^2/(2 s^2)), beta is s times the square root of 2. */
QUO_API int32_t _quodRngRayleigh(uint32_t method, StreamState* stream, int32_t n, double* r,
                                 double a, double beta);
QUO_API int32_t _quosRngRayleigh(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                                 float beta);
/* Lognormal: max(b, exp(z) beta + b), z normal with mean a and deviation sigma: method 1 of
 * _quodRngGaussian, whose uniforms it takes and whose pair it holds over to the next call. A status
 * of the normals is returned (-4 among them). What overflows is infinite, and reported. */
QUO_API int32_t _quodRngLognormal(uint32_t method, StreamState* stream, int32_t n, double* r,
                                  double a, double sigma, double b, double beta);
QUO_API int32_t _quosRngLognormal(uint32_t method, StreamState* stream, int32_t n, float* r,
                                  float a, float sigma, float b, float beta);
/* Gumbel, of the smallest value: log(e) beta + a, e exponential with a = 0 and beta = 1. One
 * uniform each. */
QUO_API int32_t _quodRngGumbel(uint32_t method, StreamState* stream, int32_t n, double* r, double a,
                               double beta);
QUO_API int32_t _quosRngGumbel(uint32_t method, StreamState* stream, int32_t n, float* r, float a,
                               float beta);

/* ---- Distributions: Bernoulli and geometric. ---- */

/* n integers at r, an array at any address, from one single-precision uniform u on [0, 1) each. The
 * method word is not looked at and p, the probability of a success, is not checked. */

/* Bernoulli: 1 if u < p, else 0, with p rounded to single precision. p = 0 gives zeros, p = 1 ones
 * unless u is rounded to 1 (one of 2^25), p = 2 ones always.
 * After a negative status r holds what the generator left there, floats. */
QUO_API int32_t _quoiRngBernoulli(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                  double p);
/* Geometric, the failures before the first success: the floor of _pexsLn_21(u) c in single
 * precision, c = 1/log(1 - p) computed in double and rounded; log(0) is -103.27893 for u, and
 * -744.4400719213812 for 1 - p (p = 1 gives zeros). Drawn in blocks of 1024; finished blocks stay
 * in r after a negative status, the others are not touched. Nothing, and 0, for n < 1. A count
 * beyond the 32-bit range becomes the nearest end; where 1 - p rounds to 1, c is infinite and that
 * is -2^31. (L. Devroye, Non-Uniform Random Variate Generation, Springer 1986, section X.2.) */
QUO_API int32_t _quoiRngGeometric(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                  double p);

/* ---- Distributions: gamma and beta. ---- */

/* n numbers at r, an array at any address, by exact methods: rejection, its candidates made of a
 * fixed number of double uniforms on [0, 1) each, drawn for as many candidates as numbers are still
 * wanted, at most 512 at a time. So the sequence does not depend on how it is asked for, and ends
 * with the candidate that became its last number. Logarithms, powers and normal numbers have 26
 * bits. Single precision is the double result, with a and beta applied, rounded.
 *
 * The method word is not looked at, and no parameter is checked: shapes and beta should be
 * positive. Every shape from the smallest subnormal to the largest number serves, and what is none
 * counts as the nearest (NaN as the smallest). What underflows is 0, so that tiny shapes give a,
 * and a + beta, in the end. What a generator gives outside [0, 1) gives no NaN either. A generator
 * that repeats rejected candidates for ever keeps the call for ever; one that gives nothing but 0,
 * 1/2 or NaN does not.
 *
 * Returns the status of the last request for uniforms; 0 for n < 1, which does nothing. A negative
 * status of the generator ends the call; the numbers of the requests before stay in r. */

/* Gamma: max(a, x beta + a), x of density x^(alpha - 1) e^-x/Gamma(alpha). For alpha > 1, d = alpha
 * - 1/3 and a normal number z = Phi^-1(u1) the candidate d (1 + z/sqrt(9 d))^3, which u2 accepts:
 * two uniforms, 95 % accepted at least. For alpha < 1 the same of shape alpha + 1 times
 * u3^(1/alpha): three uniforms. G. Marsaglia, W. W. Tsang, "A simple method for generating gamma
 * variables", ACM Transactions on Mathematical Software 26 (2000). For alpha = 1 -log(1 - u), one
 * uniform.
 *
 * The constants of the last alpha other than 1 are kept in the stream's chunk 0x47414D08 (double)
 * or 0x47414D04 (single), "GAM" and the bytes of a result, of 48 bytes, which goes with the stream
 * into copies and files; a chunk of that key and another size is passed over, and a new one added;
 * one whose constants are not those of its alpha is set up anew. -4 where there is no memory. */
QUO_API int32_t _quodRngGamma(uint32_t method, StreamState* stream, int32_t n, double* r,
                              double alpha, double a, double beta);
QUO_API int32_t _quosRngGamma(uint32_t method, StreamState* stream, int32_t n, float* r,
                              float alpha, float a, float beta);

/* Beta: max(a, x beta + a), no more than a + beta, x on [0, 1] of density proportional to
 * x^(p - 1) (1 - x)^(q - 1):
 *   p = 1         1 - (1 - u)^(1/q), one uniform (L. Devroye, Non-Uniform Random Variate
 *   q = 1         (1 - u)^(1/p)                   Generation, Springer 1986, chapter IX.4);
 *   p < 1, q < 1  s/(s + t), s = u1^(1/p), t = u2^(1/q), if s + t <= 1, in logarithms: two
 *                 uniforms, 50 % accepted at least (M. D. Joehnk, Metrika 8 (1964));
 *   p, q > 1      of the lesser shape a, the larger b and w = a (u1/(1 - u1))^lambda the number w
 *                 or b over b + w, which u2 accepts: two uniforms, 68 % accepted at least (R. C. H.
 *                 Cheng, "Generating beta variates with nonintegral shape parameters", algorithm
 *                 BB, Communications of the ACM 21 (1978));
 *   else          (a shape above 256 or, next to 1, up to 1 + 2^-20; one below 1 and one above)
 *                 g/(g + h), g and h candidates for gamma numbers of shapes p and q from u1 and u2
 *                 (the lesser shape from u1), both accepted by u3: three uniforms, 90 % accepted at
 *                 least; where the lesser shape is below 1, its power of u4 besides. */
QUO_API int32_t _quodRngBeta(uint32_t method, StreamState* stream, int32_t n, double* r, double p,
                             double q, double a, double beta);
QUO_API int32_t _quosRngBeta(uint32_t method, StreamState* stream, int32_t n, float* r, float p,
                             float q, float a, float beta);

/* ---- Distributions: binomial and hypergeometric. ---- */

/* n integers at r, an array at any address, whose sequence does not depend on how the requests are
 * split. Nothing, and 0, for n < 1. The method word is not looked at. After a negative status the
 * numbers finished before stay in r, those behind them are not touched.
 *
 * Both laws are exact. Where the variance is 60 or less, a number takes one double uniform u and is
 * the inverse of the distribution function, at once or counted from the other end: it follows u
 * without a step back. Each probability is then as sharp as the generator's doubles: to 2^-32 for
 * one of 32 bits, so that a value of a smaller probability may be seen too often or never; u = 0
 * counts as 2^-33. The search is indexed (H.-C. Chen and Y. Asau, AIIE Transactions 6, 1974). Above
 * 60 it is transformed rejection with a squeeze, two uniforms for each of 1.13 to 1.23 candidates
 * on average (W. Hoermann, J. Statistical Computation and Simulation 46, 1993, algorithm BTRS, and
 * Insurance: Mathematics and Economics 12, 1993, for the rim), which ends only with a generator
 * that does not go on giving one and the same candidate. Probabilities come from deviances (C.
 * Loader, Fast and accurate computation of binomial probabilities, 2000): those of tables are right
 * to 1e-13 relative, those of the rejection to 3e-9, whatever the counts. */

/* Binomial: the successes of ntrial trials, each with probability p. Below 0 ntrial counts as 0; p
 * below 0 and NaN as 0, above 1 as 1. The set-up is kept with the stream in a chunk of key 5 and
 * 544 bytes and is made anew where ntrial or p has changed; without memory for the chunk it is made
 * for each call. A chunk of another size is passed over. What a stream file brings in this chunk is
 * taken as it is, as far as it gives numbers from 0 to ntrial. */
QUO_API int32_t _quoiRngBinomial(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                 int32_t ntrial, double p);
/* Hypergeometric: the marked elements among s that are drawn without replacement from a lot of l,
 * of which m are marked. l counts as 0 below 0, s and m as the nearest of 0 and l where they are
 * not between. The set-up, about 0.2 microseconds, is made for each call. */
QUO_API int32_t _quoiRngHypergeometric(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                       int32_t l, int32_t s, int32_t m);

/* ---- Distributions: Poisson and negative binomial. ---- */

/* n counts at r, an array at any address, from double uniforms u on [0, 1); u on [-1, 1) for normal
 * numbers. Counts above 2^31 - 1 are 2^31 - 1. What stands at r does not depend on how a sequence
 * is split into calls, on the address or on the vector level.
 *
 *   Inversion by a table takes one uniform a count: the least k with F(k) > u, F the distribution
 *   function in double precision, its upper tail summed from above. A guide shortens the search
 *   (H.-C. Chen, Y. Asau, AIIE Transactions 6 (1974)).
 *   Rejection takes two uniforms a candidate and as many candidates as it needs. A candidate is
 *   accepted with its exact probability but for 1e-11 and 2e-15 times the distance of the count
 *   from the mode.
 *
 * The constants of a table or of rejection stay with the stream, in a chunk that goes into copies
 * and files, and are computed again when the parameters change. A chunk of that key and another
 * size is passed over and a new one added, constants that are not sound are computed again, and
 * without memory for a chunk they are computed in each call; none of this changes a count.
 *
 * The generator's u gives as many different counts as it has values: with 32 bits no probability
 * below 2^-32 is told from another, and counts whose deviation is above 10^8 or so lie on a grid.
 *
 * Returns the status of the last request for uniforms; 0 for n < 1, which does nothing. A negative
 * status of the generator ends the call, and earlier blocks (1024 counts of a table, 512 candidates
 * or counts otherwise) stay in r. No special element of the vector functions reaches the thread's
 * callback, mode or status. */

/* Methods of the Poisson distribution. */
#define QUO_METHOD_POISSON_PTPE 0u   /* exact: a table, or rejection */
#define QUO_METHOD_POISSON_NORMAL 1u /* a table, or normal numbers */
/* Method of the Poisson distribution with varying means. */
#define QUO_METHOD_POISSONV_NORMAL 0u

/* Poisson with mean lambda. Means that are not above 0 count as 0, which gives zeros; those above
 * 2^32 as 2^32. Below 27 both methods invert by a table. From 27 on:
 *   PTPE    rejection from a triangle, two parallelograms and two exponential tails:
 *           V. Kachitvichyanukul, B. W. Schmeiser, "The generation of Poisson random variates"
 *           (Purdue University, 1981). 1.45 candidates a count for lambda = 27, 1.15 for 1000 and
 *           beyond;
 *   NORMAL  one uniform a count: the floor of the Cornish-Fisher expansion of the quantile with z =
 *           sqrt(2) erfinv(u),
 *             lambda + sqrt(lambda) z + z^2/6 + 1/3 - (z/36 + z^3/72)/sqrt(lambda)
 *               + (-8/405 + 7 z^2/810 + z^4/270)/lambda,
 *           M. B. Giles, ACM Transactions on Mathematical Software 42 (2016). An approximation: the
 *           total variation distance from the Poisson distribution is 1.7e-5 for a mean of 27,
 *           4.8e-6 for 50, 1.2e-6 for 100 and 1.2e-8 for 1000, and falls like the mean's square,
 *           down to the 1e-8 that the 26 correct bits of z bring in. |z| is at most 8.3.
 * The constants of table and rejection are in chunk 3, 696 bytes. -2 for another method. */
QUO_API int32_t _quoiRngPoisson(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                double lambda);
/* Poisson with a mean for each count, lambda[0] to lambda[n-1] at any address, one uniform u on
 * [0, 1) each. A mean below 27 by inversion, the least k with F(k) > min(u, 1 - 2^-46), F summed
 * from 0 on; from 27 on the count of method NORMAL, with 2 u - 1 for u. Bounds of the means as
 * above. The method word is not looked at; no chunk. */
QUO_API int32_t _quoiRngPoissonV(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                 const double* lambda);
/* Negative binomial, the failures before the a-th success, each of probability p:
 * Gamma(a + k)/(Gamma(a) k!) p^a (1 - p)^k for a > 0 real, 0 < p < 1. Exact, by a table where 512
 * counts hold all but 2^-55 of the probability and the mean is below 400; else by rejection, for a
 * >= 1 from tangents at the logarithm of the probabilities (W. Hoermann, ACM Transactions on
 * Mathematical Software 21 (1995)), for a < 1 from the bound (k + a/2)^(a - 1) of Gamma(k + a)/k!
 * (D. Kershaw, Mathematics of Computation 41 (1983)) in a power and an exponential piece (J. H.
 * Ahrens, U. Dieter, Computing 12 (1974)). 1.0 to 1.4 candidates a count. Where no count is below
 * 2^32 the uniforms of a table are drawn. p >= 1 and a that is not above 0 give zeros, a is bounded
 * by 1e30, p by 1e-60 and, for a < 1, 1e-290. The method word is not looked at. Constants in chunk
 * 4. */
QUO_API int32_t _quoiRngNegbinomial(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                    double a, double p);

#ifdef __cplusplus
}
#endif
#endif /* PEXQUO_QUO_H_ */
