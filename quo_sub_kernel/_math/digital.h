// Digital sequences in base 2 with 32 bits: points of up to `dimensions` coordinates in Gray-code
// order (I. A. Antonov, V. M. Saleev, USSR Comput. Math. Math. Phys. 19 (1979) 252-256).
//
// A coordinate has 32 columns v[0..31], the words of its generating matrix, most significant bit
// first. Point i has the coordinates xor of the v[c] over the bits c of i ^ (i >> 1). It is linear
// in i, so the 2^q points from i = b 2^q on are those from 0 on, a table, each xored with point
// b 2^q, the base; and the bases are a sequence of the same kind, with columns of their own, the
// steps. Outputs therefore come from two arrays that lie in memory as the results do.
//
// With regular matrices no coordinate is 0 but at i = 0. That point is passed over: the sequence
// runs through i = 1 to 2^32 - 1 and begins again.
#ifndef QUO_SUB_KERNEL__MATH_DIGITAL_H_
#define QUO_SUB_KERNEL__MATH_DIGITAL_H_

#include <bit>
#include <cstddef>
#include <cstdint>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/quiet_guard.h"

namespace quo {

inline constexpr int kDigits = 32;

// What differs between two generators' states.
struct DigitalShape {
  uint32_t dimensions;  // the most
  uint32_t words;       // that hold the state, its head included: what a copy of the state moves
  uint32_t all_words;   // of the state's bytes
  uint32_t key;         // of the chunk that keeps what a user seeded with
};

// Words that the vector code reads or copies behind a point.
inline constexpr uint32_t kWrap = 16;

// Behind the stream's head. The rest of the state follows: the steps, [32 - q][dimension]; the
// table, [2^q][dimension], none for q = 0; the base, [dimension], with its first kWrap elements
// modulo the dimension behind it (for q = 0 these may stand behind the words that are copied: no
// output comes from them). All else is 0.
struct DigitalState {
  uint32_t dimension;
  uint32_t log_block;  // q
  uint32_t index;      // of the point whose coordinate is next
  uint32_t place;      // which coordinate that is

  uint32_t* Step(size_t j) { return reinterpret_cast<uint32_t*>(this + 1) + j * dimension; }
  uint32_t* Table() { return Step(kDigits - log_block); }
  uint32_t* Base() { return Table() + (log_block == 0 ? 0 : size_t{dimension} << log_block); }
};
static_assert(sizeof(DigitalState) == 16);

// Whether a block of 2^q points of d coordinates has room.
constexpr bool HasRoom(const DigitalShape& shape, uint32_t d, uint32_t q) {
  if (q == 0) return (kDigits + 1) * d + 4 <= shape.words;
  return (kDigits + 1 - q + (1u << q)) * d + kWrap + 4 <= shape.words;
}

// Makes the head one that keeps every access within the state, as a file or a copy of another
// state may bring any: what is no dimension counts as 1.
inline void Repair(const DigitalShape& shape, DigitalState& s) {
  if (s.dimension - 1 >= shape.dimensions) s.dimension = 1;
  if (s.log_block > 16 || !HasRoom(shape, s.dimension, s.log_block)) s.log_block = 0;
  if (s.place >= s.dimension) s.place = 0;
  if (s.index == 0) s.index = 1;
}

// A new state: first the head, then every coordinate's columns, then the start.
void BeginDigital(const DigitalShape& shape, DigitalState& s, uint32_t dimension);
void SetCoordinate(DigitalState& s, uint32_t coordinate, const uint32_t* columns);
void SeekDigital(DigitalState& s, uint32_t index, uint32_t place);

// Writes the base's first elements behind it.
inline void WrapBase(uint32_t* base, uint32_t dimension) {
  if (dimension >= kWrap) {
    for (uint32_t k = 0; k < kWrap; ++k) base[dimension + k] = base[k];
    return;
  }
  for (uint32_t k = 0, from = 0; k < kWrap; ++k) {
    base[dimension + k] = base[from];
    from = from + 1 == dimension ? 0 : from + 1;
  }
}

// InitStream's methods but seeding. Leapfrog makes a stream of coordinate k alone, from its first
// value not yet delivered.
int32_t MoveDigital(const DigitalShape& shape, int32_t method, DigitalState& s, int32_t n,
                    const uint32_t* params);

// Keeps the words that a user seeded with as the stream's chunk of that key, in place of an earlier
// one; none when n is 0. -4, and the stream is as it was.
int32_t KeepSeeds(StreamState* stream, uint32_t key, size_t n, const uint32_t* words);

// The dimension that the first of n seed words asks for.
constexpr uint32_t SeededDimension(const DigitalShape& shape, int32_t n, const uint32_t* params) {
  return n < 1 || params[0] - 1 >= shape.dimensions ? 1 : params[0];
}

// Whether a is +0 and b 1, asked of the bits, as comparing numbers may raise flags.
constexpr bool IsUnitInterval(double a, double b) {
  return std::bit_cast<uint64_t>(a) == 0 &&
         std::bit_cast<uint64_t>(b) == std::bit_cast<uint64_t>(1.0);
}

inline DigitalState* DigitalOf(StreamState* stream) {
  return reinterpret_cast<DigitalState*>(stream + 1);
}

// Uniforms on [a, b) by the body of a vector level.
template <typename T, class Body>
inline void DigitalUniforms(Body& body, DigitalState* state, int32_t n, T* r, T a, T b) {
  const QuietGuard guard(ArePlainBounds(a, b));
  body(state, static_cast<size_t>(n), r, a, b);
}

}  // namespace quo

// The entries of the outputs of a generator of this kind, by the bodies of QUO_DIGITAL_BODIES.
// Within namespace quo under HWY_ONCE.
#define QUO_EXPORT_DIGITAL(Name, shape)                                                            \
  HWY_EXPORT(u##Name);                                                                             \
  HWY_EXPORT(d##Name);                                                                             \
  HWY_EXPORT(s##Name);                                                                             \
  HWY_EXPORT(i##Name);                                                                             \
  extern "C" QUO_API int32_t __quodBRng##Name(StreamState* stream, int32_t n, double* r, double a, \
                                              double b) {                                          \
    if (n < 1) return QUO_OK;                                                                      \
    DigitalState* const state = DigitalOf(stream);                                                 \
    Repair(shape, *state);                                                                         \
    if (IsUnitInterval(a, b)) {                                                                    \
      HWY_DYNAMIC_DISPATCH(u##Name)(state, static_cast<size_t>(n), r);                             \
    } else {                                                                                       \
      DigitalUniforms(HWY_DYNAMIC_DISPATCH(d##Name), state, n, r, a, b);                           \
    }                                                                                              \
    return QUO_OK;                                                                                 \
  }                                                                                                \
  extern "C" QUO_API int32_t __quosBRng##Name(StreamState* stream, int32_t n, float* r, float a,   \
                                              float b) {                                           \
    if (n < 1) return QUO_OK;                                                                      \
    DigitalState* const state = DigitalOf(stream);                                                 \
    Repair(shape, *state);                                                                         \
    DigitalUniforms(HWY_DYNAMIC_DISPATCH(s##Name), state, n, r, a, b);                             \
    return QUO_OK;                                                                                 \
  }                                                                                                \
  extern "C" QUO_API int32_t __quoiBRng##Name(StreamState* stream, int32_t n, uint32_t* r) {       \
    if (n < 1) return QUO_OK;                                                                      \
    DigitalState* const state = DigitalOf(stream);                                                 \
    Repair(shape, *state);                                                                         \
    HWY_DYNAMIC_DISPATCH(i##Name)(state, static_cast<size_t>(n), r);                               \
    return QUO_OK;                                                                                 \
  }

#endif  // QUO_SUB_KERNEL__MATH_DIGITAL_H_
