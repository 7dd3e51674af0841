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

template <class D>
using RootConstantsOf = RootConstants<hn::TFromD<D>>;

// y near 1/sqrt(t) and s near sqrt(t), times the scale of the polynomial c: with 15 correct bits
// for positive normal t, and anything finite for zero. All of this works on several vectors, a step
// at a time: the chains of dependent operations are long.
template <bool kRoots, class D, class V, size_t K, typename T>
HWY_INLINE void RootStart(D d, const V (&t)[K], const T (&c)[3], V (&y)[K], V (&s)[K]) {
  const hn::RebindToUnsigned<D> du;
  const auto line = hn::Set(du, RootConstantsOf<D>::kInverseRoot);
  V h[K], q[K];
  for (size_t k = 0; k < K; ++k) {
    y[k] = hn::BitCast(d, hn::Sub(line, hn::ShiftRight<1>(hn::BitCast(du, t[k]))));
  }
  for (size_t k = 0; k < K; ++k) h[k] = hn::Mul(t[k], y[k]);
  for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(h[k], y[k]);
  for (size_t k = 0; k < K; ++k) q[k] = Horner(d, q[k], c);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Mul(y[k], q[k]);
  if constexpr (kRoots) {
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(h[k], q[k]);
  } else {
    (void)s;
  }
}

// r / sqrt(1 - e) by the binomial series: in double for |e| < 2^-14 within 2^-57, in single
// precision within 2^-29.
template <class D, class V, size_t K>
HWY_INLINE void RootCorrect(D d, const V (&e)[K], V (&r)[K]) {
  V p[K];
  for (size_t k = 0; k < K; ++k) {
    if constexpr (sizeof(hn::TFromD<D>) == 8) {
      p[k] = Horner(d, e[k], {0.5, 0.375, 0.3125});
    } else {
      p[k] = hn::Set(d, 0.5f);
    }
  }
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(hn::Mul(r[k], e[k]), p[k]);
  for (size_t k = 0; k < K; ++k) r[k] = hn::Add(r[k], p[k]);
}

// sqrt(t) with 28 correct bits, in single precision 15.
template <class D, class V, size_t K>
HWY_INLINE void RootEP(D d, const V (&t)[K], V (&r)[K]) {
  using C = RootConstantsOf<D>;
  V y[K], s[K];
  RootStart<true>(d, t, C::kStepStart, y, s);
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    for (size_t k = 0; k < K; ++k) {
      s[k] = hn::Mul(s[k], hn::Sub(hn::Set(d, C::kStep), hn::Mul(s[k], y[k])));
    }
  }
  for (size_t k = 0; k < K; ++k) r[k] = s[k];
}

// 1/sqrt(t) for positive normal t: within 1.5 ulp; with 28 or 15 correct bits.
template <class D, class V, size_t K>
HWY_INLINE void InverseRootLA(D d, const V (&t)[K], V (&r)[K]) {
  V y[K], e[K];
  RootStart<false>(d, t, RootConstantsOf<D>::kStart, y, y);
  for (size_t k = 0; k < K; ++k) e[k] = hn::Mul(t[k], y[k]);
  for (size_t k = 0; k < K; ++k) e[k] = hn::Sub(hn::Set(d, 1), hn::Mul(e[k], y[k]));
  RootCorrect(d, e, y);
  for (size_t k = 0; k < K; ++k) r[k] = y[k];
}

template <class D, class V, size_t K>
HWY_INLINE void InverseRootEP(D d, const V (&t)[K], V (&r)[K]) {
  using C = RootConstantsOf<D>;
  V y[K];
  RootStart<false>(d, t, C::kStepStart, y, y);
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    for (size_t k = 0; k < K; ++k) {
      const V u = hn::Mul(hn::Mul(t[k], y[k]), y[k]);
      y[k] = hn::Mul(y[k], hn::Sub(hn::Set(d, C::kStep), u));
    }
  }
  for (size_t k = 0; k < K; ++k) r[k] = y[k];
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
