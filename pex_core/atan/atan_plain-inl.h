// The LA and EP kernels of Atan: atan(a) = atan(c) + atan(t), t = (a - c)/(1 + c a), with c = 0
// for small a and one or two finite c beyond, the last of which serves up to infinity.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/atan/atan_rare.h"

#if defined(PEX_CORE_ATAN_ATAN_PLAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#undef PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#else
#define PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// atan(a) = angle + atan(numerator/denominator).
template <class V>
struct AtanPart {
  V numerator, denominator, angle;
};

// |t| < 0.3251. The differences a - c are exact where they are below c.
template <class D, class V>
HWY_INLINE AtanPart<V> AtanPartOfDouble(D d, V a) {
  const auto middle = hn::Gt(a, hn::Set(d, 0.325)), high = hn::Gt(a, hn::Set(d, 1.376));
  const V c = hn::IfThenElse(high, hn::Set(d, kAtanSteep),
                             hn::IfThenElseZero(middle, hn::Set(d, kAtanFlat)));
  return {hn::Sub(a, c), hn::Add(hn::Set(d, 1.0), hn::Mul(c, a)),
          hn::IfThenElse(high, hn::Set(d, kAtanSteepAngle),
                         hn::IfThenElseZero(middle, hn::Set(d, kAtanFlatAngle)))};
}

// atan(t). Nothing underflows from 2^-300 (single: 2^-40) on.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void AtanSeries(D d, const V (&t)[K], const hn::TFromD<D> (&c)[N], V (&r)[K]) {
  V z[K], p[K];
  for (size_t k = 0; k < K; ++k) z[k] = hn::Mul(t[k], t[k]);
  HornerInSteps(d, z, c, p);
  for (size_t k = 0; k < K; ++k) r[k] = hn::Add(t[k], hn::Mul(t[k], hn::Mul(z[k], p[k])));
}

template <class D, class V, size_t K, size_t N>
HWY_INLINE void AtanOfMagnitudes(D d, const V (&a)[K], const double (&c)[N], V (&r)[K]) {
  V t[K], angle[K];
  for (size_t k = 0; k < K; ++k) {
    const AtanPart<V> part = AtanPartOfDouble(d, a[k]);
    t[k] = hn::Div(part.numerator, part.denominator);
    angle[k] = part.angle;
  }
  AtanSeries(d, t, c, r);
  for (size_t k = 0; k < K; ++k) r[k] = hn::Add(angle[k], r[k]);
}

// |t| < 0.62, c = 2. The nearest float to atan(2) is 0.41 ulp above it, of the angles below 1 0.82;
// the denominator, less by 2^-22 than 1 + 2 a, moves t back by half of that and more.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void AtanOfMagnitudes(D d, const V (&a)[K], const float (&c)[N], V (&r)[K]) {
  V t[K];
  MaskOf<D> high[K];
  for (size_t k = 0; k < K; ++k) {
    high[k] = hn::Gt(a[k], hn::Set(d, 0.62f));
    const V sum = hn::Add(hn::Set(d, 0x1.fffff8p-1f), hn::Add(a[k], a[k]));
    t[k] = hn::Div(AddWhere(d, high[k], a[k], hn::Set(d, -2.0f)),
                   hn::IfThenElse(high[k], sum, hn::Set(d, 1.0f)));
  }
  AtanSeries(d, t, c, r);
  for (size_t k = 0; k < K; ++k) r[k] = AddWhere(d, high[k], r[k], hn::Set(d, 0x1.1b6e1ap+0f));
}

// What Main covers. Below, products underflow, and the arctangent is the argument; above, it is
// half of pi.
template <typename T>
struct AtanRange {
  static constexpr T kLeast = sizeof(T) == 8 ? T(0x1p-300) : T(0x1p-40);
  static constexpr T kHuge = sizeof(T) == 8 ? T(0x1p60) : T(0x1p26);
  template <class Pattern>
  static constexpr int32_t High(Pattern bits) {
    return static_cast<int32_t>(sizeof(T) == 8 ? bits >> 16 >> 16 : bits);
  }
  using Range = RareOutside<T, High(BitsOfNumber(kLeast)), High(BitsOfNumber(kHuge)) - 1>;
  static constexpr int64_t kLimit = Range::kLimit;
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, V x) {
    return Range::Key(d, hn::Abs(x));
  }
};

template <typename Element>
struct AtanCommon : Kernel<Element> {
  static constexpr int kUnroll = 8;
  static HWY_INLINE int Rare(Element x, Element* r) {
    if constexpr (sizeof(Element) == 8) {
      return dAtanRare(x, r);
    } else {
      return sAtanRare(x, r);
    }
  }
};

// kClamped: for coefficients whose error reaches beyond half of pi.
template <typename T, const auto& kCoefficients, bool kClamped = false>
struct AtanPlain : AtanCommon<T> {
  using Rarity = AtanRange<T>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V a[K], v[K];
    for (size_t k = 0; k < K; ++k) a[k] = hn::Abs(x[k]);
    AtanOfMagnitudes(d, a, kCoefficients, v);
    for (size_t k = 0; k < K; ++k) {
      if constexpr (kClamped) v[k] = hn::Min(v[k], hn::Set(d, T(0x1.921fb54442d18p+0)));
      r[k] = hn::CopySignToAbs(v[k], x[k]);
    }
  }

  struct Wide : AtanCommon<T> {
    static constexpr int kUnroll = 2;
    using Rarity = RareAbove<T, sizeof(T) == 8 ? 0x7FEFFFFF : 0x7F7FFFFF>;  // infinity or NaN
    template <class D, class V>
    static HWY_INLINE V Main(D d, V x) {
      const auto tiny = MagnitudeBelow(d, x, AtanRange<T>::kLeast);
      const auto below = MagnitudeBelow(d, x, AtanRange<T>::kHuge);
      const auto common = hn::AndNot(tiny, below);
      const V half_pi = hn::CopySign(hn::Set(d, T(0x1.921fb54442d18p+0)), x);
      const V group[1] = {hn::IfThenElse(common, x, hn::Set(d, T(1)))};
      V r[1];
      MainGroup(d, group, r);
      return hn::IfThenElse(common, r[0], hn::IfThenElse(tiny, x, half_pi));
    }
  };
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
