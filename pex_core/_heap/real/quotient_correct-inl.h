// Correctly rounded quotients by fused operations: beside a divider that is busy.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#undef PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3
// n/m, m > 0, where 1/m, n m and a last place of the quotient times m's are usual numbers.
//
// A pattern less that of m is y = w/m with w in [0.95, 1.05125]; the quadratic polynomial that
// takes w (0.75 (b^2 - h^2) + (1.5 b - w)^2) nearest to 1, by Chebyshev's cubic polynomial over [b
// - h, b + h], makes y = 1/m to within 2^-14.9. A step of Newton's leaves 2^-28.6 and a rounding,
// and the remainder of the quotient by this y corrects it (Markstein 1990). That is the rounded
// quotient unless y has been rounded to the other side of 1/m's nearest number; so the arguments of
// each kernel are tried in full.
template <class D, class V>
HWY_INLINE V QuotientBySteps(D d, V n, V m) {
  constexpr double kCenter = 1.000625, kHalf = 0.050625;
  constexpr float kShift = static_cast<float>(1.5 * kCenter);
  constexpr float kLift = static_cast<float>(0.75 * (kCenter * kCenter - kHalf * kHalf));
  V y = FromBits(d, hn::Sub(SetBits(d, 0x7EF33333), Bits(d, m)));
  const V w = HiddenNegMulAdd(m, y, hn::Set(d, kShift));
  y = hn::Mul(y, HiddenMulAdd(w, w, hn::Set(d, kLift)));
  y = HiddenMulAdd(y, HiddenNegMulAdd(m, y, hn::Set(d, 1.0f)), y);
  const V q = hn::Mul(n, y);
  return HiddenMulAdd(HiddenNegMulAdd(m, q, n), y, q);
}
#else
template <class D, class V>
HWY_INLINE V QuotientBySteps(D, V n, V m) {
  return hn::Div(n, m);
}
#endif

#if HWY_TARGET == HWY_AVX3
// a becomes a/b, correctly rounded, for y within 2^-14 of 1/b and usual numbers far from the ends
// of the range.
//
// The first step goes so far beyond that y is then too large, by 2^-28 to 2^-27, and what is
// rounded next, upwards, leaves it too large by 2^-80 at most before it is rounded once more. q
// becomes one of the two numbers next to a/b, and the last step rounds a number that differs from
// a/b by the relative error of y, at most m 2^-54 (1 + 2^-26), of about half an ulp; m from 1 to 2
// is the significand of b. From the middle between two numbers a/b keeps a distance of 2^-53 / m
// ulp, which is more but for m next to 2. There, at m = 2 - k 2^-52 with an odd k, y is the number
// above 1/b, for 1/b is above a middle by k^2 2^-54 ulp; so it leads no q that is right across the
// middle and every other one (Markstein 1990).
template <class D, class V, size_t K>
HWY_INLINE void QuotientsByEstimates(D d, V* HWY_RESTRICT a, const V* HWY_RESTRICT b, V (&y)[K]) {
  constexpr int kUp = _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC;
  const V one = hn::Set(d, 1.0), beyond = hn::Set(d, 1 + 0x1p-27);
  V e[K], q[K], r[K];
  for (size_t k = 0; k < K; ++k) e[k] = HiddenNegMulAdd(b[k], y[k], beyond);
  for (size_t k = 0; k < K; ++k) y[k] = HiddenMulAdd(y[k], e[k], y[k]);
  for (size_t k = 0; k < K; ++k) {
    e[k] = V{_mm512_fnmadd_round_pd(b[k].raw, y[k].raw, one.raw, kUp)};
  }
  for (size_t k = 0; k < K; ++k) q[k] = hn::Mul(a[k], y[k]);
  for (size_t k = 0; k < K; ++k) {
    e[k] = V{_mm512_fmadd_round_pd(e[k].raw, e[k].raw, e[k].raw, kUp)};
  }
  for (size_t k = 0; k < K; ++k) r[k] = HiddenNegMulAdd(b[k], q[k], a[k]);
  for (size_t k = 0; k < K; ++k) y[k] = HiddenMulAdd(y[k], e[k], y[k]);
  for (size_t k = 0; k < K; ++k) q[k] = HiddenMulAdd(r[k], y[k], q[k]);
  for (size_t k = 0; k < K; ++k) r[k] = HiddenNegMulAdd(b[k], q[k], a[k]);
  for (size_t k = 0; k < K; ++k) a[k] = HiddenMulAdd(r[k], y[k], q[k]);
}
template <class D, class V>
HWY_INLINE V QuotientByEstimate(D d, V a, V b) {
  V q[1] = {a}, y[1] = {V{_mm512_rcp14_pd(b.raw)}};
  QuotientsByEstimates(d, q, &b, y);
  return q[0];
}

// The first kEstimated of K by estimates.
template <size_t kEstimated, class D, class V, size_t K>
HWY_INLINE void MixedQuotients(D d, V (&a)[K], const V (&b)[K]) {
  for (size_t k = kEstimated; k < K; ++k) a[k] = hn::Div(a[k], b[k]);
  V y[kEstimated];
  for (size_t k = 0; k < kEstimated; ++k) y[k] = V{_mm512_rcp14_pd(b[k].raw)};
  QuotientsByEstimates(d, a, b, y);
}

// a becomes a/b, for the same numbers. Golden Cove divides eight doubles in 16 cycles, longer than
// all else takes.
template <class D, class V, size_t K>
HWY_INLINE void Quotients(D d, V (&a)[K], const V (&b)[K]) {
  if constexpr (sizeof(V) == 64 && K >= 4) {
    if (__builtin_cpu_is("intel")) return MixedQuotients<K / 4>(d, a, b);
  }
  for (size_t k = 0; k < K; ++k) a[k] = hn::Div(a[k], b[k]);
}
#endif

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_QUOTIENT_CORRECT_INL_H_
