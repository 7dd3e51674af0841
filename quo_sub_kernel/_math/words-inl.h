// What generators of 32-bit words make of them: the words themselves, or uniforms on [a, b).
//
// An output offers
//   T                its type of element;
//   Put(words, r)    writes a vector of words as that many elements to r, which need not be
//   aligned; One(word, r)     the same for one word.
// Every way gives an element the same bits.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hwy/highway.h"

#if defined(QUO_SUB_KERNEL__MATH_WORDS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_SUB_KERNEL__MATH_WORDS_INL_H_
#undef QUO_SUB_KERNEL__MATH_WORDS_INL_H_
#else
#define QUO_SUB_KERNEL__MATH_WORDS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using WordTag = hn::ScalableTag<uint32_t>;
using WordVec = hn::Vec<WordTag>;
inline constexpr size_t kWordLanes = hn::MaxLanes(WordTag());

class Words {
 public:
  using T = uint32_t;
  HWY_INLINE void Put(WordVec w, T* r) const { hn::StoreU(w, WordTag(), r); }
  HWY_INLINE void One(uint32_t w, T* r) const { std::memcpy(r, &w, sizeof(w)); }
};

// w scale + a.
class Doubles {
 public:
  using T = double;
  using Tag = hn::ScalableTag<double>;
  using Vec = hn::Vec<Tag>;
  static constexpr size_t kHalf = hn::MaxLanes(Tag());

  HWY_INLINE Doubles(double scale, double a) : scale_(scale), a_(a) {}
  HWY_INLINE void Put(WordVec w, T* r) const {
    const WordVec halves = Arranged(w);
    hn::StoreU(Lower(halves), Tag(), r);
    hn::StoreU(Upper(halves), Tag(), r + kHalf);
  }
  HWY_INLINE void One(uint32_t w, T* r) const {
    const double y = Single(w);
    std::memcpy(r, &y, sizeof(y));
  }

  // The words so that interleaving the lower, or the upper, halves of the 128-bit blocks leaves
  // them in order.
  static HWY_INLINE WordVec Arranged(WordVec w) {
    if constexpr (kWordLanes == 4) {
      return w;
    } else {
      HWY_ALIGN uint32_t index[kWordLanes];
      for (uint32_t k = 0; k < kWordLanes; ++k) index[k] = k / 4 * 2 + k % 2 + (k & 2) / 2 * kHalf;
      return hn::TableLookupLanes(w, hn::SetTableIndices(WordTag(), index));
    }
  }
  HWY_INLINE Vec Lower(WordVec halves) const {
    return Scaled(hn::InterleaveLower(WordTag(), halves, High<52>()));
  }
  HWY_INLINE Vec Upper(WordVec halves) const {
    return Scaled(hn::InterleaveUpper(WordTag(), halves, High<52>()));
  }
  HWY_INLINE double Single(uint32_t w) const { return w * scale_ + a_; }

 protected:
  // The high word of 2^e: under a word w it makes 2^e + w 2^(e-52).
  template <int e>
  static HWY_INLINE WordVec High() {
    return hn::Set(WordTag(), uint32_t{1023 + e} << 20);
  }

 private:
  HWY_INLINE Vec Scaled(WordVec w) const {
    const Tag d;
    const Vec x = hn::Sub(hn::BitCast(d, w), hn::Set(d, 0x1p52));
    return hn::Add(hn::Mul(x, hn::Set(d, scale_)), hn::Set(d, a_));
  }
  double scale_;
  double a_;
};

// Doubles(2^-32, 0) in fewer operations: w 2^-32 is exact.
class Fractions : public Doubles {
 public:
  HWY_INLINE Fractions() : Doubles(0x1p-32, 0) {}
  HWY_INLINE void Put(WordVec w, T* r) const {
    const WordVec halves = Arranged(w);
    hn::StoreU(Lower(halves), Tag(), r);
    hn::StoreU(Upper(halves), Tag(), r + kHalf);
  }
  HWY_INLINE Vec Lower(WordVec halves) const {
    return Fraction(hn::InterleaveLower(WordTag(), halves, High<20>()));
  }
  HWY_INLINE Vec Upper(WordVec halves) const {
    return Fraction(hn::InterleaveUpper(WordTag(), halves, High<20>()));
  }

 private:
  static HWY_INLINE Vec Fraction(WordVec w) {
    return hn::Sub(hn::BitCast(Tag(), w), hn::Set(Tag(), 0x1p20));
  }
};

// w scale rounded once to single, for a power of two that keeps all on the way in the normal range.
template <class D>
HWY_INLINE hn::Vec<hn::Rebind<float, D>> ScaledFloats(D d, hn::Vec<D> w, float scale) {
  const hn::Rebind<float, D> df;
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return hn::Mul(hn::ConvertTo(df, w), hn::Set(df, scale));
#else
  // The halves of w below the units of 2^39 and 2^23 scale, whose last places are 2^16 scale and
  // the scale; the difference of the former is exact, and the sum rounds.
  const hn::Repartition<uint16_t, D> d16;
  const float low_unit = 0x1p23f * scale, high_unit = 0x1p39f * scale;
  const auto low = hn::OddEven(hn::BitCast(d16, hn::Set(df, low_unit)), hn::BitCast(d16, w));
  const auto high = hn::Or(hn::ShiftRight<16>(w), hn::BitCast(d, hn::Set(df, high_unit)));
  const auto rest = hn::Sub(hn::BitCast(df, high), hn::Set(df, high_unit + low_unit));
  return hn::Add(rest, hn::BitCast(df, low));
#endif
}

// Floats(Fractions()) in fewer operations.
class FloatFractions {
 public:
  using T = float;
  HWY_INLINE void Put(WordVec w, T* r) const {
    hn::StoreU(ScaledFloats(WordTag(), w, 0x1p-32f), hn::ScalableTag<float>(), r);
  }
  HWY_INLINE void One(uint32_t w, T* r) const {
    const float y = static_cast<float>(w) * 0x1p-32f;
    std::memcpy(r, &y, sizeof(y));
  }
};

// Computed in double and rounded to single at the end.
template <class Wide>
class Floats {
 public:
  using T = float;
  explicit HWY_INLINE Floats(Wide wide) : wide_(wide) {}
  HWY_INLINE void Put(WordVec w, T* r) const {
    const hn::Rebind<float, Doubles::Tag> half;
    const WordVec halves = Wide::Arranged(w);
    const auto lower = hn::DemoteTo(half, wide_.Lower(halves));
    const auto upper = hn::DemoteTo(half, wide_.Upper(halves));
    const hn::ScalableTag<float> d;
    hn::StoreU(hn::Combine(d, upper, lower), d, r);
  }
  HWY_INLINE void One(uint32_t w, T* r) const {
    const float y = static_cast<float>(wide_.Single(w));
    std::memcpy(r, &y, sizeof(y));
  }

 private:
  Wide wide_;
};

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_WORDS_INL_H_
