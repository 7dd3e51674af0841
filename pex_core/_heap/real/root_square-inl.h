// Square roots and their inverses without the processor's root and division, which are slower:
// a line through the bits, a parabola (15 correct bits), one more step. D holds doubles or floats.

#include "hwy/highway.h"
#include "pex_core/_heap/real/root_constants.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ROOT_SQUARE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ROOT_SQUARE_INL_H_
#undef PEX_CORE__HEAP_REAL_ROOT_SQUARE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ROOT_SQUARE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Approximations of sqrt(t) and 1/sqrt(t).
template <class V>
struct RootPair {
  V root, inverse;
};

template <class D>
using RootConstantsOf = RootConstants<hn::TFromD<D>>;

// Times the scale of the polynomial c: with 15 correct bits for positive normal t, and anything
// finite for zero.
template <class D, class V, typename T>
HWY_INLINE RootPair<V> RootStart(D d, V t, const T (&c)[3]) {
  const V y = FromBits(d, hn::Sub(SetBits(d, RootConstantsOf<D>::kInverseRoot),
                                  hn::ShiftRight<1>(Bits(d, t))));
  const V h = hn::Mul(t, y);
  const V q = Horner(d, hn::Mul(h, y), c);
  return {hn::Mul(h, q), hn::Mul(y, q)};
}

// sqrt(t) with an error of sqrt and t y below 1.2 ulp, and as much of a rounding of t.
template <class D, class V>
HWY_INLINE V RootLA(D d, V t) {
  const auto [s, y] = RootStart(d, t, RootConstantsOf<D>::kStart);
  const V e = hn::Sub(hn::Set(d, 1), hn::Mul(s, y));
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return hn::Add(s, hn::Mul(hn::Mul(s, e), Horner(d, e, dRootRest)));
  } else {
    return hn::Add(s, hn::Mul(hn::Mul(s, e), hn::Set(d, 0.5f)));
  }
}

// sqrt(t) with 28 or 15 correct bits.
template <class D, class V>
HWY_INLINE V RootEP(D d, V t) {
  using C = RootConstantsOf<D>;
  const auto [s, y] = RootStart(d, t, C::kFirstStart);
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return hn::Mul(s, hn::Sub(hn::Set(d, C::kSecondStep), hn::Mul(s, y)));
  } else {
    return s;
  }
}

// 1/sqrt(t) likewise, for positive normal t.
template <class D, class V>
HWY_INLINE V InverseRootLA(D d, V t) {
  const V y = RootStart(d, t, RootConstantsOf<D>::kStart).inverse;
  const V e = hn::Sub(hn::Set(d, 1), hn::Mul(hn::Mul(t, y), y));
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return hn::Add(y, hn::Mul(hn::Mul(y, e), Horner(d, e, dRootRest)));
  } else {
    return hn::Add(y, hn::Mul(hn::Mul(y, e), hn::Set(d, 0.5f)));
  }
}

template <class D, class V>
HWY_INLINE V InverseRootEP(D d, V t) {
  using C = RootConstantsOf<D>;
  const V y = RootStart(d, t, C::kFirstStart).inverse;
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return hn::Mul(y, hn::Sub(hn::Set(d, C::kSecondStep), hn::Mul(hn::Mul(t, y), y)));
  } else {
    return y;
  }
}

// t = 4^k m, 1 <= m < 4, for positive normal t.
template <class D>
struct RootReduced {
  VecOf<D> m;
  BitsOf<D> exponent;  // 2k, in the place of an exponent
};

template <class D, class V>
HWY_INLINE RootReduced<D> RootReduce(D d, V t) {
  using C = RootConstantsOf<D>;
  const auto exponent =
      hn::And(hn::Sub(Bits(d, t), SetBits(d, C::kOne)), SetBits(d, C::kEvenExponent));
  return {FromBits(d, hn::Sub(Bits(d, t), exponent)), exponent};
}

// 2^-k x and 2^3k x, where those are normal.
template <class D, class V>
HWY_INLINE V InverseRootScale(D d, V x, BitsOf<D> exponent) {
  return FromBits(d, hn::Sub(Bits(d, x), hn::ShiftRight<1>(exponent)));
}

template <class D, class V>
HWY_INLINE V CubedRootScale(D d, V x, BitsOf<D> exponent) {
  return FromBits(d, hn::Add(Bits(d, x), hn::Add(exponent, hn::ShiftRight<1>(exponent))));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ROOT_SQUARE_INL_H_
