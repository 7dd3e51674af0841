// Which lanes of atan2 are common, for the entries of two real arguments and of one complex one,
// and the single-precision HA kernel of both.

#include "pex_core/_heap/real/atan-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: |x| or |y| outside the range of patterns (high words of doubles), or both 0. A zero stands
// for the other argument.
template <typename T, int32_t kLow, int32_t kHigh>
struct Atan2Outside {
  using Range = RareOutside<T, kLow, kHigh>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, V y, V x) {
    return KeyAbove(d, JoinedKey(d, y, x), Range::kLimit);
  }
  // The same of any of several points.
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&y)[K], const V (&x)[K]) {
    if constexpr (sizeof(T) == 8 && HWY_TARGET != HWY_AVX3) {
      auto key = JoinedKey(d, y[0], x[0]);
      for (size_t k = 1; k < K; ++k) key = JoinKeys(d, key, JoinedKey(d, y[k], x[k]));
      return !hn::AllFalse(d, KeyAbove(d, key, Range::kLimit));
    } else {
      constexpr auto kLeast = static_cast<uint64_t>(kLow) << (sizeof(T) == 8 ? 32 : 0);
      constexpr auto kMost =
          sizeof(T) == 8 ? static_cast<uint64_t>(kHigh) << 32 | 0xFFFFFFFF : kHigh;
      auto largest = SetBits(d, 0), least = SetBits(d, kMost);
      for (size_t k = 0; k < K; ++k) {
        const auto ay = Bits(d, hn::Abs(y[k])), ax = Bits(d, hn::Abs(x[k]));
        largest = hn::Max(largest, hn::Max(ax, ay));
        least = hn::Min(least, hn::Min(ax, ay));
      }
      const auto outside =
          hn::Or(hn::Gt(largest, SetBits(d, kMost)), hn::Lt(least, SetBits(d, kLeast)));
      return !hn::AllFalse(hn::RebindToSigned<D>(), outside);
    }
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V y, V x) {
    const auto zero_y = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(y)), SetBits(d, 0)));
    const auto zero_x = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(x)), SetBits(d, 0)));
    const auto key = JoinedKey(d, hn::IfThenElse(zero_y, x, y), hn::IfThenElse(zero_x, y, x));
    return LanesAbove(d, key, Range::kLimit);
  }

 private:
  template <class D, class V>
  static HWY_INLINE BitsOf<D> JoinedKey(D d, V y, V x) {
    return JoinKeys(d, Range::Key(d, hn::Abs(y)), Range::Key(d, hn::Abs(x)));
  }
};

// Common lanes have |x| and |y| from 2^-450 to 2^450, single from 2^-60 to 2^60, so that no product
// and no quotient overflows or underflows; one of them may be 0.
using Atan2Domain = Atan2Outside<double, 0x23D00000, 0x5C0FFFFF>;
using sAtan2Domain = Atan2Outside<float, 0x21800000, 0x5D7FFFFF>;
using sAtan2WideDomain = Atan2Outside<float, 0x01000000, 0x7F7FFFFF>;  // from 2^-125 on

// Whether of any y and x, as integers, the difference to `shift` has a bit of `beyond`.
template <class D, class V, size_t K>
HWY_INLINE bool AnyBeyond(D d, const V (&y)[K], const V (&x)[K], uint64_t shift, uint64_t beyond) {
#if HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(hn::TFromD<D>) == 8) {  // by the high words alone, one register of both
    const hn::Repartition<int32_t, D> d32;
    const auto from = hn::Set(d32, static_cast<int32_t>(shift >> 32));
    auto joined = hn::Zero(d32);
    for (size_t k = 0; k < K; ++k) {
      joined = hn::Or(joined, hn::Sub(hn::BitCast(d32, HighWords(d, y[k], x[k])), from));
    }
    return HasAnyBit(joined, hn::Set(d32, static_cast<int32_t>(beyond >> 32)));
  }
#endif
  const auto from = SetBits(d, shift);
  auto joined = SetBits(d, 0);
  for (size_t k = 0; k < K; ++k) {
    joined = hn::Or3(joined, hn::Sub(Bits(d, y[k]), from), hn::Sub(Bits(d, x[k]), from));
  }
  return HasAnyBit(joined, SetBits(d, beyond));
}

// 2^kBits octaves around 1: exponents of which, less the first one, the leading bits are 0, found
// by subtractions that any unit does. The drivers of real and of complex functions ask by different
// names.
template <int kBits>
struct Atan2Octaves : Atan2Outside<double, (1023 - (1 << (kBits - 1))) << 20,
                                   ((1023 + (1 << (kBits - 1))) << 20) - 1> {
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyOutside(D d, const V (&y)[K], const V (&x)[K]) {
    constexpr uint64_t kFirst = 1023 - (1 << (kBits - 1));
    return AnyBeyond(d, y, x, kFirst << 52, (uint64_t{1} << 63) - (uint64_t{1} << (52 + kBits)));
  }
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&y)[K], const V (&x)[K]) {
    return AnyOutside(d, y, x);
  }
};
using Atan2ModestDomain = Atan2Octaves<7>;  // from 2^-64 below 2^64
using Atan2NarrowDomain = Atan2Octaves<8>;  // from 2^-128 below 2^128

// The same of floats, from 2^-32 below 2^32, whose exponents less 95 have five bits.
struct sAtan2ModestDomain : sAtan2Domain {
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyOutside(D d, const V (&y)[K], const V (&x)[K]) {
    return AnyBeyond(d, y, x, uint64_t{95} << 23, uint64_t{3} << 29);
  }
};

// A mask of floats for their lower or upper half as doubles.
template <bool kUpper, class D, class Half = hn::Half<D>, class Wide = hn::Rebind<double, Half>>
HWY_INLINE MaskOf<Wide> WideMask(D d, MaskOf<D> mask) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  using Raw = decltype(MaskOf<Wide>::raw);
  return {static_cast<Raw>(mask.raw >> (kUpper ? hn::MaxLanes(Half()) : 0))};
#else
  const auto lanes = Bits(d, hn::VecFromMask(d, mask));
  const hn::RebindToSigned<Half> from;
  const hn::RebindToSigned<Wide> to;
  const auto half = [&] {
    if constexpr (kUpper) {
      return hn::UpperHalf(from, lanes);
    } else {
      return hn::LowerHalf(from, lanes);
    }
  }();
  return hn::MaskFromVec(hn::BitCast(Wide(), hn::PromoteTo(to, half)));
#endif
}

// atan2(y, x) of one vector of floats in double precision, in three parts. Of |x| and |y| the
// larger one is l, the smaller one s; atan(s/l) = atan(c) + atan(t), t = (s - c l)/(l + c s),
// |t| < 0.2801, with c = 9/16 above a quarter and 0 below.
template <class D>
struct Atan2InDouble {
  using V = VecOf<D>;
  using Half = hn::Half<D>;
  using Wide = hn::Rebind<double, Half>;
  using W = VecOf<Wide>;
  MaskOf<Wide> above[2];
  W t[2], angle[2];

  HWY_INLINE void Reduce(V y, V x) {
    const D d;
    const Half half;
    const Wide wide;
    const auto ax = Bits(d, hn::Abs(x)), ay = Bits(d, hn::Abs(y));
    const auto larger = hn::Max(ax, ay), smaller = hn::Min(ax, ay);
    // By the patterns: the bound lies between 0.2577 and 0.2651.
    const auto near = hn::RebindMask(d, hn::Lt(hn::Sub(larger, smaller), SetBits(d, 0xF851EC)));
    above[0] = WideMask<false>(d, near), above[1] = WideMask<true>(d, near);
    const V l = FromBits(d, larger), s = FromBits(d, smaller);
    const W ls[] = {hn::PromoteTo(wide, hn::LowerHalf(half, l)),
                    hn::PromoteTo(wide, hn::UpperHalf(half, l))};
    const W ss[] = {hn::PromoteTo(wide, hn::LowerHalf(half, s)),
                    hn::PromoteTo(wide, hn::UpperHalf(half, s))};
    for (size_t k = 0; k < 2; ++k) {
      const W c = hn::IfThenElseZero(above[k], hn::Set(wide, 0.5625));
      t[k] = hn::Div(SubExactProduct(c, ls[k], ss[k]), AddExactProduct(c, ss[k], ls[k]));
    }
  }
  HWY_INLINE void Evaluate() {
    const Wide wide;
    W z[2], p[2];
    for (size_t k = 0; k < 2; ++k) z[k] = hn::Mul(t[k], t[k]);
    Horner(wide, z, kAtanOctantEP, p);
    for (size_t k = 0; k < 2; ++k) {
      angle[k] = hn::Add(hn::Add(t[k], hn::Mul(hn::Mul(t[k], z[k]), p[k])),
                         hn::IfThenElseZero(above[k], hn::Set(wide, 0x1.0657e94db30d0p-1)));
    }
  }
  HWY_INLINE V Result(V y, V x) const {
    const D d;
    const Half half;
    const Wide wide;
    const auto beyond = hn::RebindMask(d, hn::Gt(Bits(d, hn::Abs(y)), Bits(d, hn::Abs(x))));
    const auto minus = hn::RebindMask(d, hn::Lt(Bits(d, x), SetBits(d, 0)));
    const MaskOf<Wide> steep[] = {WideMask<false>(d, beyond), WideMask<true>(d, beyond)};
    const MaskOf<Wide> negative[] = {WideMask<false>(d, minus), WideMask<true>(d, minus)};
    W r[2];
    for (size_t k = 0; k < 2; ++k) {
      const W acute = hn::IfThenElse(
          steep[k], hn::Sub(hn::Set(wide, 0x1.921fb54442d18p+0), angle[k]), angle[k]);
      r[k] =
          hn::IfThenElse(negative[k], hn::Sub(hn::Set(wide, 0x1.921fb54442d18p+1), acute), acute);
    }
    return hn::CopySignToAbs(hn::Combine(d, hn::DemoteTo(half, r[1]), hn::DemoteTo(half, r[0])), y);
  }
};

// atan2(y, x) of floats, for all from 2^-125 on; one may be 0: below 0.5094 ulp.
template <class D, class V, size_t K>
HWY_INLINE void SingleAtan2HA(D, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  Atan2InDouble<D> parts[K];
  InTurn(parts, r, y, x);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
