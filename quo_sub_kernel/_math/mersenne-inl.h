// The vector code of the Mersenne twisters: the twist, the tempering and the outputs.
//
// A generator's Source regenerates its block, which is left to it as the block's length decides
// how. It offers
//   State          the parameters and the block, see mersenne.h;
//   kMost            the most words that Next makes: whole blocks, and whole vectors;
//   Source(state)    takes over the block, which is used up;
//   Next(n, visit)   makes n words, at most kMost, from the start of the next block on; calls
//                    visit(k, x) for each vector x from word k on, and returns them all;
//   Leave(n)         puts the block that holds the last of these n words back into the state.
// The result array need not be aligned.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hwy/highway.h"
#include "quo_sub_kernel/_math/mersenne.h"
#include "quo_sub_kernel/_math/words-inl.h"

#if defined(QUO_SUB_KERNEL__MATH_MERSENNE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_SUB_KERNEL__MATH_MERSENNE_INL_H_
#undef QUO_SUB_KERNEL__MATH_MERSENNE_INL_H_
#else
#define QUO_SUB_KERNEL__MATH_MERSENNE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The bits of `yes` under the mask, the others of `no`.
template <class V>
HWY_INLINE V Select(V mask, V yes, V no) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) {
    return V{_mm512_ternarylogic_epi32(mask.raw, yes.raw, no.raw, 0xCA)};
  }
#endif
  return hn::Or(hn::And(mask, yes), hn::AndNot(mask, no));
}

// x ^ (y & mask)
template <class V>
HWY_INLINE V XorMasked(V x, V y, V mask) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) {
    return V{_mm512_ternarylogic_epi32(x.raw, y.raw, mask.raw, 0x78)};
  }
#endif
  return hn::Xor(x, hn::And(y, mask));
}

// The new words from those N, N - 1 and N - M places back.
template <class State>
class Twist {
 public:
  explicit HWY_INLINE Twist(uint32_t a) : upper_(Set(State::kUpper)), a_(Set(a)) {}
  HWY_INLINE WordVec operator()(WordVec oldest, WordVec next, WordVec middle) const {
    const WordVec y = Select(upper_, oldest, next);
#if HWY_TARGET == HWY_AVX3
    const auto odd = hn::TestBit(y, Set(1));
    return hn::Xor3(middle, hn::ShiftRight<1>(y), hn::IfThenElseZero(odd, a_));
#elif HWY_TARGET == HWY_AVX2
    __m256 none = _mm256_setzero_ps();
    asm("" : "+x"(none));  // or GCC makes a comparison and an And of the selection
    const __m256 low = _mm256_castsi256_ps(hn::ShiftLeft<31>(y).raw);
    const __m256 odd = _mm256_blendv_ps(none, _mm256_castsi256_ps(a_.raw), low);
    return hn::Xor(hn::Xor(middle, hn::ShiftRight<1>(y)), WordVec{_mm256_castps_si256(odd)});
#else
    const hn::RebindToFloat<WordTag> d;
    const auto odd = hn::IfNegativeThenElse(hn::BitCast(d, hn::ShiftLeft<31>(y)),
                                            hn::BitCast(d, a_), hn::Zero(d));
    return hn::Xor(hn::Xor(middle, hn::ShiftRight<1>(y)), hn::BitCast(WordTag(), odd));
#endif
  }

 private:
  static HWY_INLINE WordVec Set(uint32_t x) { return hn::Set(WordTag(), x); }
  WordVec upper_, a_;
};

// The tempered words themselves.
struct TwisterIntegers {
  using T = uint32_t;
  template <class D>
  HWY_INLINE void Write(D d, hn::Vec<D> w, uint32_t* r) const {
    hn::StoreU(w, d, r);
  }
  HWY_INLINE void WriteOne(uint32_t w, uint32_t* r) const { std::memcpy(r, &w, sizeof(w)); }
};

// The doubles of the lower or upper half of the words: these as the low words, `high` as the
// others.
template <bool kUpper, class D>
HWY_INLINE hn::Vec<hn::Repartition<double, D>> WithHighWord(D d, hn::Vec<D> w, uint32_t high) {
  const hn::Repartition<double, D> dd;
  const auto h = hn::Set(d, high);
#if HWY_TARGET == HWY_AVX3
  if constexpr (hn::MaxLanes(d) == 16) {
    HWY_ALIGN static constexpr uint32_t kPlaces[2][16] = {
        {0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16, 6, 16, 7, 16},
        {8, 16, 9, 16, 10, 16, 11, 16, 12, 16, 13, 16, 14, 16, 15, 16}};
    const auto places = hn::Load(d, kPlaces[kUpper]);
    return hn::BitCast(dd, hn::Vec<D>{_mm512_permutex2var_epi32(w.raw, places.raw, h.raw)});
  }
#elif HWY_TARGET == HWY_AVX2
  if constexpr (hn::MaxLanes(d) == 8) {
    w = hn::Vec<D>{_mm256_permute4x64_epi64(w.raw, 0xD8)};  // the quarters 0, 2, 1, 3
  }
#endif
  if constexpr (kUpper) {
    return hn::BitCast(dd, hn::InterleaveUpper(d, w, h));
  } else {
    return hn::BitCast(dd, hn::InterleaveLower(d, w, h));
  }
}

// (w - 2^31) times scale plus centre, each operation rounded.
struct TwisterUniform {
  double scale, centre;
  HWY_INLINE TwisterUniform(double a, double b) : scale((b - a) * 0x1p-32), centre((a + b) * 0.5) {}

  template <bool kUpper, class D>
  HWY_INLINE hn::Vec<hn::Repartition<double, D>> Half(D d, hn::Vec<D> w) const {
    const hn::Repartition<double, D> dd;
#if HWY_TARGET == HWY_AVX2  // 2^52 + w less all else, exact: fewer operations than conversions
    const auto x =
        hn::Sub(WithHighWord<kUpper>(d, w, (1023 + 52) << 20), hn::Set(dd, 0x1.000008p52));
#else
    const hn::RebindToSigned<D> di;
    const hn::Half<decltype(di)> half;
    const auto centred = hn::BitCast(di, hn::Xor(w, hn::Set(d, 0x80000000)));  // w - 2^31
    const auto x =
        hn::PromoteTo(dd, kUpper ? hn::UpperHalf(half, centred) : hn::LowerHalf(half, centred));
#endif
    return hn::Add(hn::Mul(x, hn::Set(dd, scale)), hn::Set(dd, centre));
  }
  HWY_INLINE double One(uint32_t w) const {
    return static_cast<double>(static_cast<int32_t>(w ^ 0x80000000)) * scale + centre;
  }
};

// The same bits in fewer operations where the scale is a power of two, so that the product is
// exact, and its step is no less than an ulp of what the centre is taken from: 2^52 scale + w
// scale, less that and the centre, is rounded once, as the sum above is.
class TwisterDyadic {
 public:
  // Whether the bounds are of this kind.
  static HWY_INLINE bool Takes(const TwisterUniform& u) {
    const double least = Least(u);
    return IsPowerOfTwo(u.scale) && std::fabs(u.centre) <= least &&
           least - (least - u.centre) == u.centre;
  }
  explicit HWY_INLINE TwisterDyadic(const TwisterUniform& u)
      : high_(HighWord(u.scale) + (52 << 20)), origin_(Least(u) - u.centre) {}

  template <bool kUpper, class D>
  HWY_INLINE hn::Vec<hn::Repartition<double, D>> Half(D d, hn::Vec<D> w) const {
    const auto above = WithHighWord<kUpper>(d, w, high_);
    return hn::Sub(above, hn::Set(hn::Repartition<double, D>(), origin_));
  }
  HWY_INLINE double One(uint32_t w) const {
    return std::bit_cast<double>(uint64_t{high_} << 32 | w) - origin_;
  }

  // Of a size that keeps all on the way to an output, single or double, in the normal range: up to
  // the 2^39 scale of ScaledFloats. Asked of the bits, as comparing numbers may raise flags.
  static HWY_INLINE bool IsPowerOfTwo(double scale) {
    const uint64_t bits = std::bit_cast<uint64_t>(scale);
    return bits << 12 == 0 && bits >= uint64_t{1023 - 120} << 52 &&
           bits <= uint64_t{1023 + 88} << 52;
  }

 private:
  static HWY_INLINE uint32_t HighWord(double x) {
    return static_cast<uint32_t>(std::bit_cast<uint64_t>(x) >> 32);
  }
  // What stands for the least word, -2^31 before scaling.
  static HWY_INLINE double Least(const TwisterUniform& u) { return u.scale * (0x1p52 + 0x1p31); }

  uint32_t high_;  // word of 2^52 scale
  double origin_;
};

template <class Uniform>
struct TwisterDoubles {
  using T = double;
  Uniform uniform;
  template <class D>
  HWY_INLINE void Write(D d, hn::Vec<D> w, double* r) const {
    const hn::Repartition<double, D> dd;
    hn::StoreU(uniform.template Half<false>(d, w), dd, r);
    hn::StoreU(uniform.template Half<true>(d, w), dd, r + hn::MaxLanes(dd));
  }
  HWY_INLINE void WriteOne(uint32_t w, double* r) const {
    const double x = uniform.One(w);
    std::memcpy(r, &x, sizeof(x));
  }
};

// Computed in double and rounded to single at the end.
struct TwisterFloats {
  using T = float;
  TwisterUniform uniform;
  template <class D>
  HWY_INLINE void Write(D d, hn::Vec<D> w, float* r) const {
    const hn::Rebind<float, D> df;
    const hn::Half<decltype(df)> half;
    const auto lower = hn::DemoteTo(half, uniform.Half<false>(d, w));
    const auto upper = hn::DemoteTo(half, uniform.Half<true>(d, w));
    hn::StoreU(hn::Combine(df, upper, lower), df, r);
  }
  HWY_INLINE void WriteOne(uint32_t w, float* r) const {
    const float x = static_cast<float>(uniform.One(w));
    std::memcpy(r, &x, sizeof(x));
  }
};

// On [0, b), b a power of two: w scale rounded to single.
struct TwisterFloatsFromZero {
  using T = float;
  float scale;
  template <class D>
  HWY_INLINE void Write(D d, hn::Vec<D> w, float* r) const {
    hn::StoreU(ScaledFloats(d, w, scale), hn::Rebind<float, D>(), r);
  }
  HWY_INLINE void WriteOne(uint32_t w, float* r) const {
    const float x = static_cast<float>(w) * scale;
    std::memcpy(r, &x, sizeof(x));
  }
};

// On [-b, b), b a power of two: (w - 2^31) scale rounded to single.
struct TwisterFloatsAroundZero {
  using T = float;
  float scale;
  template <class D>
  HWY_INLINE void Write(D d, hn::Vec<D> w, float* r) const {
    const hn::Rebind<float, D> df;
    const hn::RebindToSigned<D> di;
    const auto centred = hn::BitCast(di, hn::Xor(w, hn::Set(d, 0x80000000)));
    hn::StoreU(hn::Mul(hn::ConvertTo(df, centred), hn::Set(df, scale)), df, r);
  }
  HWY_INLINE void WriteOne(uint32_t w, float* r) const {
    const float x = static_cast<float>(static_cast<int32_t>(w ^ 0x80000000)) * scale;
    std::memcpy(r, &x, sizeof(x));
  }
};

template <class State, class D>
HWY_INLINE hn::Vec<D> Tempered(D d, hn::Vec<D> y, TwisterWords words) {
  y = hn::Xor(y, hn::ShiftRight<State::kU>(y));
  y = XorMasked(y, hn::ShiftLeft<kTemperS>(y), hn::Set(d, words.b));
  y = XorMasked(y, hn::ShiftLeft<kTemperT>(y), hn::Set(d, words.c));
  return hn::Xor(y, hn::ShiftRight<kTemperL>(y));
}

// The outputs of n words, at least one vector; the last vector may overlap the one before it.
template <class State, class D, class Output>
HWY_INLINE void TemperVectors(D d, TwisterWords words, const uint32_t* mt, size_t n,
                              const Output& output, typename Output::T* r) {
  constexpr size_t kStep = hn::MaxLanes(d);
  const auto write = [&](size_t i) HWY_ATTR {
    output.Write(d, Tempered<State>(d, hn::LoadU(d, mt + i), words), r + i);
  };
  size_t i = 0;
  for (; i + kStep <= n; i += kStep) write(i);
  if (i < n) write(n - kStep);
}

template <class State, class Output>
HWY_INLINE void TemperWords(TwisterWords words, const uint32_t* mt, size_t n, const Output& output,
                            typename Output::T* r) {
  const hn::CappedTag<uint32_t, 4> few;
  if (n >= kWordLanes) {
    TemperVectors<State>(WordTag(), words, mt, n, output, r);
  } else if (n >= hn::MaxLanes(few)) {
    TemperVectors<State>(few, words, mt, n, output, r);
  } else {
    for (size_t i = 0; i < n; ++i) output.WriteOne(Temper<State>(mt[i], words), r + i);
  }
}

// n outputs, n at least 1. An index out of the block's range, which only a foreign state can have,
// counts as a used-up block.
template <class Source, class Output>
HWY_INLINE void Generate(typename Source::State& state, size_t n, typename Output::T* r,
                         const Output& output) {
  using State = typename Source::State;
  const TwisterWords words = state.words();
  const size_t used = std::min<size_t>(static_cast<uint32_t>(state.mti), State::kN);
  const size_t pending = std::min(n, State::kN - used);
  TemperWords<State>(words, state.mt + used, pending, output, r);
  state.mti = static_cast<int32_t>(used + pending);
  if (pending == n) return;
  r += pending;
  n -= pending;
  Source source(state);
  for (; n > Source::kMost; r += Source::kMost, n -= Source::kMost) {
    source.Next(Source::kMost, [&](size_t k, WordVec x) HWY_ATTR {
      output.Write(WordTag(), Tempered<State>(WordTag(), x, words), r + k);
    });
  }
  TemperWords<State>(words, source.Next(n, [](size_t, WordVec) HWY_ATTR {}), n, output, r);
  source.Leave(n);
  state.mti = static_cast<int32_t>((n - 1) % State::kN + 1);
}

// Moves the state on as n outputs would, n at least 1: the words are made and not tempered.
template <class Source>
HWY_INLINE void PassOver(typename Source::State& state, size_t n) {
  using State = typename Source::State;
  const size_t used = std::min<size_t>(static_cast<uint32_t>(state.mti), State::kN);
  const size_t pending = std::min(n, State::kN - used);
  state.mti = static_cast<int32_t>(used + pending);
  if (pending == n) return;
  n -= pending;
  const auto ignore = [](size_t, WordVec) HWY_ATTR {};
  Source source(state);
  for (; n > Source::kMost; n -= Source::kMost) source.Next(Source::kMost, ignore);
  source.Next(n, ignore);
  source.Leave(n);
  state.mti = static_cast<int32_t>((n - 1) % State::kN + 1);
}

template <class Source>
HWY_INLINE void GenerateDoubles(typename Source::State& state, size_t n, double* r, double a,
                                double b) {
  const TwisterUniform uniform(a, b);
  if (TwisterDyadic::Takes(uniform)) {
    Generate<Source>(state, n, r, TwisterDoubles<TwisterDyadic>{TwisterDyadic(uniform)});
  } else {
    Generate<Source>(state, n, r, TwisterDoubles<TwisterUniform>{uniform});
  }
}

template <class Source>
HWY_INLINE void GenerateFloats(typename Source::State& state, size_t n, float* r, double a,
                               double b) {
  const TwisterUniform uniform(a, b);
  const bool dyadic = TwisterDyadic::IsPowerOfTwo(uniform.scale);
  const float scale = static_cast<float>(uniform.scale);
  if (dyadic && a == 0) {
    Generate<Source>(state, n, r, TwisterFloatsFromZero{scale});
  } else if (dyadic && uniform.centre == 0) {
    Generate<Source>(state, n, r, TwisterFloatsAroundZero{scale});
  } else {
    Generate<Source>(state, n, r, TwisterFloats{uniform});
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_MERSENNE_INL_H_
