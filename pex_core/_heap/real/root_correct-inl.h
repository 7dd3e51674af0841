// Correctly rounded square roots of several vectors. Zen 4's root of eight doubles takes 16 cycles
// of a unit beside which almost everything else runs, and iterations from the processor's estimate
// of 1/sqrt take less than that; so half of the vectors go each way. Golden Cove's takes 24 cycles,
// and one of four doubles 12. Correct rounding leaves no trace of the way, nor of the estimate, in
// which processors differ.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ROOT_CORRECT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ROOT_CORRECT_INL_H_
#undef PEX_CORE__HEAP_REAL_ROOT_CORRECT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ROOT_CORRECT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SSE4
// t becomes its correctly rounded root, for 2^-900 < t < 2^1010 and y within 2^-14 of 1/sqrt(t).
//
// Goldschmidt's steps bring g near sqrt(t), h near 1/(2 sqrt(t)); the first one goes so far beyond
// that its one-sided error of 3/8 e^2, e = 1 - t y^2, lies on both sides. Then g, once corrected,
// is within 0.54 ulp and h within 2.6 2^-53, and the last step rounds a number that differs from
// sqrt(t) by at most 3.1 c, c = ulp^2 / (2 sqrt(t)). Beside a middle between two numbers sqrt(t)
// keeps a distance of (j - 1/4) c with an even j: only those of j = -2, 0 and 2 are near enough to
// be rounded to the wrong side. These few t are known, and a test takes them and their neighbours
// from every kind of y.
template <class D, class V, size_t N>
HWY_INLINE void RootsByEstimates(D d, V* HWY_RESTRICT t, V (&y)[N]) {
  constexpr double kBeyond = 0.5 + 0x1.8p-29;
  const V half = hn::Set(d, 0.5);
  V g[N], h[N], r[N];
  for (size_t k = 0; k < N; ++k) g[k] = hn::Mul(t[k], y[k]);
  for (size_t k = 0; k < N; ++k) {  // half of it without the pipes of the multiplications
    h[k] = FromBits(d, hn::Sub(Bits(d, y[k]), SetBits(d, uint64_t{1} << 52)));
  }
  for (size_t k = 0; k < N; ++k) r[k] = HiddenNegMulAdd(g[k], h[k], hn::Set(d, kBeyond));
  for (size_t k = 0; k < N; ++k) g[k] = HiddenMulAdd(g[k], r[k], g[k]);
  for (size_t k = 0; k < N; ++k) h[k] = HiddenMulAdd(h[k], r[k], h[k]);
  for (size_t k = 0; k < N; ++k) r[k] = HiddenNegMulAdd(g[k], h[k], half);
  for (size_t k = 0; k < N; ++k) h[k] = HiddenMulAdd(h[k], r[k], h[k]);
  for (size_t k = 0; k < N; ++k) r[k] = Remainder(d, t[k], g[k], g[k]);
  for (size_t k = 0; k < N; ++k) g[k] = HiddenMulAdd(r[k], h[k], g[k]);
  for (size_t k = 0; k < N; ++k) r[k] = Remainder(d, t[k], g[k], g[k]);
  for (size_t k = 0; k < N; ++k) t[k] = HiddenMulAdd(r[k], h[k], g[k]);
}
#endif

#if HWY_TARGET == HWY_AVX3
// The correctly rounded root of floats: 0 < t whose last place is no subnormal number. A test takes
// all t, but for powers of 4, from every y within 2^-14 of 1/sqrt(t).
template <class D, class V>
HWY_INLINE V RootByEstimate(D d, V t, V y) {
  const V half = hn::Set(d, 0.5f);
  V g = hn::Mul(t, y), h = hn::Mul(y, half);
  const V r = HiddenNegMulAdd(g, h, half);
  g = HiddenMulAdd(g, r, g);
  h = HiddenMulAdd(h, r, h);
  return HiddenMulAdd(Remainder(d, t, g, g), h, g);
}
template <class D, class V>
HWY_INLINE V RootByEstimate(D d, V t) {
  return RootByEstimate(d, t, V{_mm512_rsqrt14_ps(t.raw)});
}
// The same, of 0 too.
template <class D, class V>
HWY_INLINE V RootByEstimateOrZero(D d, V t) {
  if constexpr (sizeof(V) == 64 && sizeof(hn::TFromD<D>) == 8) {
    const __mmask8 positive = _mm512_test_epi64_mask(Bits(d, t).raw, Bits(d, t).raw);
    // Any number but 0, whose half is not to be had by its exponent.
    V root[1] = {t}, y[1] = {{_mm512_mask_rsqrt14_pd(hn::Set(d, 1.0).raw, positive, t.raw)}};
    RootsByEstimates(d, root, y);
    return root[0];
  } else if constexpr (sizeof(V) == 64) {
    const __mmask16 positive = _mm512_test_epi32_mask(Bits(d, t).raw, Bits(d, t).raw);
    return RootByEstimate(d, t, V{_mm512_maskz_rsqrt14_ps(positive, t.raw)});
  }
  return hn::Sqrt(t);
}
#else
template <class D, class V>
HWY_INLINE V RootByEstimate(D, V t) {
  return hn::Sqrt(t);
}
template <class D, class V>
HWY_INLINE V RootByEstimateOrZero(D, V t) {
  return hn::Sqrt(t);
}
#endif

#if HWY_TARGET == HWY_AVX2
// 1/sqrt(t) within 2^-15.1: a straight line through the bits, within 3.5 %, and a quadratic
// polynomial in e = 1 - t y^2. AVX2 has estimates of floats alone.
template <class D, class V>
HWY_INLINE V InverseRootEstimate(D d, V t) {
  const V y = FromBits(d, hn::Sub(SetBits(d, 0x5FE6EB50C7B537A9), ShiftBitsRight<1>(d, t)));
  const V e = HiddenNegMulAdd(hn::Mul(t, y), y, hn::Set(d, 1.0));
  const V slope = HiddenMulAdd(e, hn::Set(d, 0.375), hn::Set(d, 0.50115));
  return HiddenMulAdd(y, hn::Mul(e, slope), y);
}
#endif

// The first kEstimated of K by estimates.
template <size_t kEstimated, class D, class V, size_t K>
HWY_INLINE void MixedRoots(D d, V (&t)[K]) {
  for (size_t k = kEstimated; k < K; ++k) t[k] = hn::Sqrt(t[k]);
#if HWY_TARGET != HWY_SSE4
  if constexpr (kEstimated > 0) {
    V y[kEstimated];
#if HWY_TARGET == HWY_AVX3
    for (size_t k = 0; k < kEstimated; ++k) y[k] = V{_mm512_rsqrt14_pd(t[k].raw)};
#else
    for (size_t k = 0; k < kEstimated; ++k) y[k] = InverseRootEstimate(d, t[k]);
#endif
    RootsByEstimates(d, t, y);
  }
#else
  (void)d;
#endif
}

// t becomes its root, correctly rounded; for doubles 2^-900 < t < 2^1010, for floats 2^-100 < t.
template <class D, class V, size_t K>
HWY_INLINE void Roots(D d, V (&t)[K]) {
  constexpr bool kLong = sizeof(hn::TFromD<D>) == 8 && sizeof(V) == 64;  // AVX-512's doubles
  if constexpr (kLong && K >= 4) {
    if (__builtin_cpu_is("intel")) {
      MixedRoots<K * 3 / 4>(d, t);
    } else {
      MixedRoots<K / 2>(d, t);
    }
  } else if constexpr (sizeof(hn::TFromD<D>) == 8 && sizeof(V) == 32 && K >= 4) {
    MixedRoots<K / 2>(d, t);
  } else if constexpr (sizeof(hn::TFromD<D>) == 4 && sizeof(V) == 64 && K >= 4) {
    for (size_t k = 0; k < K; ++k) t[k] = k % 2 == 0 ? RootByEstimate(d, t[k]) : hn::Sqrt(t[k]);
  } else {
    MixedRoots<0>(d, t);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ROOT_CORRECT_INL_H_
