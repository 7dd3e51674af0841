// What the Mersenne twisters share beside their vector code: seeding and tempering by the
// definition.
//
// A twister's State is what stands behind the stream's head. It offers
//   kN, kM, kUpper   state words, offset of the middle word, mask of the bits taken from the older
//                    word;
//   kU               the first tempering shift;
//   mt, mti          the block of words and the index of the next one to deliver;
//   words()          twist matrix word and tempering masks.
#ifndef QUO_SUB_KERNEL__MATH_MERSENNE_H_
#define QUO_SUB_KERNEL__MATH_MERSENNE_H_

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "pexquo/quo.h"

namespace quo {

// Twist matrix word a, tempering masks b and c.
struct TwisterWords {
  uint32_t a, b, c;
};

// Tempering: the first shift is the twister's, the others are common.
inline constexpr int kTemperS = 7, kTemperT = 15, kTemperL = 18;

template <class State>
constexpr uint32_t Temper(uint32_t y, TwisterWords words) {
  y ^= y >> State::kU;
  y ^= (y << kTemperS) & words.b;
  y ^= (y << kTemperT) & words.c;
  return y ^ (y >> kTemperL);
}

// What seeding makes of the word before: the top bits, which alone tell long-lived differences,
// reach the low ones.
constexpr uint32_t Folded(uint32_t x) { return x ^ (x >> 30); }

// The block that the key is mixed into: the same for every key, and a shorter block is the start of
// a longer one.
inline constexpr auto kUnseeded = [] {
  std::array<uint32_t, 624> mt{19650218};
  for (uint32_t i = 1; i < mt.size(); ++i) mt[i] = 1812433253 * Folded(mt[i - 1]) + i;
  return mt;
}();

// Seeding by an array: M. Matsumoto and T. Nishimura, the initialisation of January 2002 of
// "Mersenne Twister", ACM TOMACS 8 (1998) 3-30. No key counts as the key 1. Each word waits for the
// one before it, so the time is that of N + max(N, n) - 1 dependent steps.
template <class State>
void SeedTwister(State* state, int32_t n, const uint32_t* params) {
  constexpr size_t kN = State::kN;
  static constexpr uint32_t kNoKey[] = {1};
  const uint32_t* const key = n < 1 ? kNoKey : params;
  const size_t length = n < 1 ? 1 : static_cast<size_t>(n);
  uint32_t* const mt = state->mt;
  std::memcpy(mt, kUnseeded.data(), sizeof(state->mt));
  uint32_t x = mt[0];
  size_t i = 1;
  const auto next = [&i] { i = i + 1 < kN ? i + 1 : 1; };
  size_t j = 0;
  for (size_t k = std::max(kN, length); k != 0; --k, next()) {
    x = mt[i] = (mt[i] ^ Folded(x) * 1664525) + (key[j] + static_cast<uint32_t>(j));
    j = j + 1 < length ? j + 1 : 0;
  }
  for (size_t k = kN - 1; k != 0; --k, next()) {
    x = mt[i] = (mt[i] ^ Folded(x) * 1566083941) - static_cast<uint32_t>(i);
  }
  mt[0] = 0x80000000;  // never all zero
  state->mti = kN;
  state->reserved = 0;
}

// An integer below 2^33 in size as the nearest floating-point number, ties to even, whatever the
// rounding mode, and without a flag.
inline void ToNearest(int64_t v, double* x) { *x = static_cast<double>(v); }
inline void ToNearest(int64_t v, float* x) {
  const uint64_t size = static_cast<uint64_t>(v < 0 ? -v : v);
  const int surplus = std::bit_width(size | 1) - 24;
  if (surplus > 0) {
    const uint64_t odd = size >> surplus & 1, half = uint64_t{1} << (surplus - 1);
    const uint64_t kept = (size + half - 1 + odd) >> surplus << surplus;
    v = v < 0 ? -static_cast<int64_t>(kept) : static_cast<int64_t>(kept);
  }
  *x = static_cast<float>(v);
}

// A few uniforms on [0, 1) or [-1, 1), w 2^-32 or (w - 2^31) 2^-31 rounded, from words that the
// block still has; false, with nothing done, for any other request. Nothing here depends on the
// control word or raises a flag, so it goes without a guard, whose reading of the word takes longer
// than all else.
template <class State, typename T>
bool FewUniforms(State& state, int32_t n, T* r, T a, T b) {
  constexpr int32_t kFew = 8;
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  const auto is = [](T bound, T value) {
    return std::bit_cast<Bits>(bound) == std::bit_cast<Bits>(value);
  };
  const bool centred = is(a, T(-1));
  if (n >= kFew || !is(b, T(1)) || !(centred || is(a, T(0))) ||
      static_cast<uint32_t>(state.mti) > State::kN - static_cast<uint32_t>(n)) {
    return false;
  }
  const TwisterWords words = state.words();
  const int64_t centre = centred ? int64_t{1} << 31 : 0;
  const T scale = centred ? T(0x1p-31) : T(0x1p-32);
  for (int32_t i = 0; i < n; ++i) {
    T x;
    ToNearest(Temper<State>(state.mt[state.mti + i], words) - centre, &x);
    x *= scale;
    std::memcpy(r + i, &x, sizeof(x));
  }
  state.mti += n;
  return true;
}

// InitStream: the twisters neither leap nor skip.
template <class State>
int32_t InitTwister(int32_t method, State* state, int32_t n, const uint32_t* params) {
  switch (method) {
    case QUO_INIT_STANDARD:
      SeedTwister(state, n, params);
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      return QUO_LEAPFROG_UNSUPPORTED;
    case QUO_INIT_SKIPAHEAD:
      return QUO_SKIPAHEAD_UNSUPPORTED;
    default:
      return QUO_BAD_METHOD;
  }
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_MERSENNE_H_
