// R250: w(n) = w(n-250) xor w(n-147), a generalised feedback shift register of 32-bit words.
//   S. Kirkpatrick, E. P. Stoll: A very fast shift-register sequence random number generator,
//   J. Comput. Phys. 40 (1981), 517-526.
//
// 147 words follow from the state at once, so vectors of 16 never wait for each other. The state is
// laid out straight, oldest word first, in front of the new words: long requests of words go on in
// the caller's array, the others in a buffer. What is left of a vector is made by one that overlaps
// the one before.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/r250/r250.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstring>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/outputs.h"
#include "quo_sub_kernel/_math/words-inl.h"
#include "quo_sub_kernel/r250/r250.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

constexpr size_t kFew250 = 16;       // fewer words than this are made one by one
constexpr size_t kChunk250 = 1024;   // words of the buffer behind the last 250
constexpr size_t kDirect250 = 1024;  // so many words and more go on in the caller's array
static_assert(kFew250 >= kWordLanes);

// By the definition, from any state: an index that is none, as a state from elsewhere may hold,
// counts modulo 250.
size_t Index250(int32_t i) {
  constexpr int32_t lag = kLag250;
  if (0 <= i && i < lag) return static_cast<size_t>(i);
  return static_cast<size_t>((i % lag + lag) % lag);
}

template <class Output>
HWY_INLINE void Singly250(StateR250& s, size_t n, typename Output::T* r, const Output& output) {
  size_t i = Index250(s.i), j = Index250(s.j);
  for (size_t k = 0; k < n; ++k) {
    s.x[i] ^= s.x[j];
    output.One(s.x[i], r + k);
    i = i + 1 == kLag250 ? 0 : i + 1;
    j = j + 1 == kLag250 ? 0 : j + 1;
  }
  s.i = static_cast<int32_t>(i);
  s.j = static_cast<int32_t>(j);
}

// For words that need only be where the recurrence stores them.
struct Nowhere {
  using T = uint32_t;
  HWY_INLINE void Put(WordVec, T*) const {}
};

// n words behind the 250 at `oldest`, and what becomes of them at r; n is at least a vector's. From
// the 250th on by w(n) = w(n-500) xor w(n-294), the square of the trinomial: words that were stored
// longer ago load faster.
template <class Output>
HWY_INLINE void Extend250(uint32_t* oldest, size_t n, typename Output::T* r, const Output& output) {
  const WordTag d;
  const auto extend = [&](size_t k, const uint32_t* first, const uint32_t* second) HWY_ATTR {
    const WordVec w = hn::Xor(hn::LoadU(d, first), hn::LoadU(d, second));
    hn::StoreU(w, d, oldest + kLag250 + k);
    output.Put(w, r + k);
  };
  constexpr size_t kSquared = 256;
  static_assert(kSquared >= kLag250 && kSquared % kWordLanes == 0);
  size_t k = 0;
  for (; k + kWordLanes <= std::min(n, kSquared); k += kWordLanes) {
    extend(k, oldest + k, oldest + k + kPartner250);
  }
  for (; k + kWordLanes <= n; k += kWordLanes) {
    const uint32_t* const first = oldest + k - kLag250;
    extend(k, first, first + 2 * kPartner250);
  }
  if (k < n) {
    k = n - kWordLanes;
    extend(k, oldest + k, oldest + k + kPartner250);
  }
}

template <class Output>
HWY_INLINE void Generate250(StateR250& s, size_t n, typename Output::T* r, const Output& output) {
  const size_t i = Index250(s.i), j = Index250(s.j);
  const bool is_reached = (i + kPartner250) % kLag250 == j;  // by the recurrence, from a seed
  if (n < kFew250 || !is_reached) return Singly250(s, n, r, output);

  constexpr size_t kBytes = sizeof(s.x);
  constexpr size_t kPad = -kLag250 % kWordLanes;  // aligns the new words
  HWY_ALIGN uint32_t buffer[kPad + kLag250 + kChunk250 + kFew250];
  uint32_t* const words = buffer + kPad;
  std::memcpy(words, s.x + i, (kLag250 - i) * sizeof(uint32_t));
  std::memcpy(words + (kLag250 - i), s.x, i * sizeof(uint32_t));
  if (n < kLag250) {  // the state as single steps leave it
    Extend250(words, n, r, output);
    const size_t to_end = std::min(n, kLag250 - i);
    std::memcpy(s.x + i, words + kLag250, to_end * sizeof(uint32_t));
    std::memcpy(s.x, words + kLag250 + to_end, (n - to_end) * sizeof(uint32_t));
    s.i = static_cast<int32_t>((i + n) % kLag250);
    s.j = static_cast<int32_t>((j + n) % kLag250);
    return;
  }
  const void* last = nullptr;
  if (std::is_same_v<Output, Words> && n >= kDirect250) {
    uint32_t* const w = reinterpret_cast<uint32_t*>(r);
    constexpr size_t kFirst = (kLag250 + 15) / 16 * 16;
    Extend250(words, kFirst, r, output);
    Extend250(w + (kFirst - kLag250), n - kFirst, w + kFirst, Nowhere());
    last = w + n - kLag250;
  } else {
    // The last round takes up what would be too few for a vector.
    while (n > kChunk250 + kFew250) {
      Extend250(words, kChunk250, r, output);
      std::memcpy(words, words + kChunk250, kBytes);
      r += kChunk250;
      n -= kChunk250;
    }
    Extend250(words, n, r, output);
    last = words + n;
  }
  std::memcpy(s.x, last, kBytes);
  s.i = 0;
  s.j = kPartner250;
}

void dR250(StateR250* state, size_t n, double* r, double a, double b) {
  if (a == 0 && b == 1) {
    Generate250(*state, n, r, Fractions());
  } else {
    Generate250(*state, n, r, Doubles((b - a) * 0x1p-32, a));
  }
}
void sR250(StateR250* state, size_t n, float* r, double a, double b) {
  if (a == 0 && b == 1) {
    Generate250(*state, n, r, FloatFractions());
  } else {
    Generate250(*state, n, r, Floats(Doubles((b - a) * 0x1p-32, a)));
  }
}
void iR250(StateR250* state, size_t n, uint32_t* r) { Generate250(*state, n, r, Words()); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

StateR250* State(StreamState* stream) { return reinterpret_cast<StateR250*>(stream + 1); }

// Powers of 69069 times the seed, with a diagonal of ones over zeros in every seventh word: those
// 32 are linearly independent.
void Seed(StateR250& state, uint32_t s) {
  for (uint32_t& x : state.x) x = s *= 69069;
  for (uint32_t t = 0; t < 32; ++t) {
    uint32_t& x = state.x[3 + 7 * t];
    x = (x & (0xFFFFFFFF >> t)) | 0x80000000 >> t;
  }
}

void Seed(StateR250& state, int32_t n, const uint32_t* params) {
  if (n >= static_cast<int32_t>(kLag250)) {
    std::memcpy(state.x, params, sizeof(state.x));
  } else {
    Seed(state, n < 1 || params[0] == 0 ? 1 : params[0]);
  }
  state.i = 0;
  state.j = kPartner250;
}

}  // namespace

extern "C" QUO_API int32_t __quoBRngR250InitStream(int32_t method, StreamState* stream, int32_t n,
                                                   const uint32_t* params) {
  switch (method) {
    case QUO_INIT_STANDARD:
      Seed(*State(stream), n, params);
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      return QUO_LEAPFROG_UNSUPPORTED;
    case QUO_INIT_SKIPAHEAD:
      return QUO_SKIPAHEAD_UNSUPPORTED;
    default:
      return QUO_BAD_METHOD;
  }
}

QUO_EXPORT_UNIFORMS(R250)
QUO_EXPORT_WORDS(R250)

}  // namespace quo
#endif
