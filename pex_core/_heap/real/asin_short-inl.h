// asin and acos in single precision by floats, on AVX-512: asin(y) = y F(y^2) for y = |x| below
// 1/2, y = sqrt((1 - |x|)/2) from there on, as a sum of two floats.

#include <immintrin.h>

#include "hwy/highway.h"
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_short_tables.h"
#include "pex_core/_heap/real/short_sum-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/asin/asin_rare.h"

#if defined(PEX_CORE__HEAP_REAL_ASIN_SHORT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ASIN_SHORT_INL_H_
#undef PEX_CORE__HEAP_REAL_ASIN_SHORT_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ASIN_SHORT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In double precision, to 2^-52 or better, where no float is tiny.
template <template <auto&, AsinDomain, class, size_t> class Part, class D, class V, size_t K>
HWY_INLINE void AsinInDouble(D d, const V (&x)[K], V (&r)[K]) {
  const hn::Rebind<double, D> wide;
  VecOf<decltype(wide)> v[K], w[K];
  for (size_t k = 0; k < K; ++k) v[k] = hn::PromoteTo(wide, x[k]);
  PlainInTurn<Part, kAsinHA, AsinDomain::kCommon, 1>(wide, v, w);
  for (size_t k = 0; k < K; ++k) r[k] = hn::DemoteTo(d, w[k]);
}

#if HWY_TARGET == HWY_AVX3

// How much the sums may err in relation to themselves and, beside that, to t; of the latter
// 2^-24.66 was seen for asin(y) and the inverse cosine, 2^-23.78 for pi/2 - 2 asin(y).
inline constexpr float kAsinShortError = 0x1p-36f;
inline constexpr float kAsinShortErrorOfT = 0x1.5p-25f, kAsinShortErrorOfTLarge = 0x1.38p-24f;

inline constexpr float kHalfPiHi = 0x1.921fb6p+0f, kHalfPiLo = -0x1.777a5cp-25f;

// asin(y) = high + low, t the distance of y^2 from the row's.
struct AsinShort {
  __mmask16 large;
  hn::Vec512<float> high, low, t;
};

// 0 <= a <= 1; below 2^-30 a shall stand for that.
HWY_INLINE AsinShort AsinShortOf(__m512 a) {
  const __m512 half = _mm512_set1_ps(0.5f);
  const __mmask16 large = _mm512_cmp_ps_mask(a, half, _CMP_GE_OQ);
  const __m512 rest = _mm512_fnmadd_ps(a, half, half);  // exact
  const __m512 u = _mm512_mask_mul_ps(rest, _knot_mask16(large), a, a);
  const __m512i row =
      _mm512_castps_si512(_mm512_fmadd_ps(u, _mm512_set1_ps(125.0f), _mm512_set1_ps(0x1.8p23f)));
  const auto column = [row](const float* c) HWY_ATTR {
    return _mm512_permutex2var_ps(_mm512_load_ps(c), row, _mm512_load_ps(c + 16));
  };
  // u or the square, which is rounded no sooner, less the row's.
  const __m512 center = column(kAsinShortRows.u);
  const __m512 t = _mm512_mask_sub_ps(_mm512_fmsub_ps(a, a, center), large, rest, center);
  __m512 f = _mm512_fmadd_ps(column(kAsinShortRows.c3), t, column(kAsinShortRows.c2));
  f = _mm512_fmadd_ps(f, t, column(kAsinShortRows.c1));
  f = _mm512_fmadd_ps(f, t, column(kAsinShortRows.lo));
  const __m512 hi = column(kAsinShortRows.hi);
  // The root by an estimate and two steps, the second one's correction apart. An estimate that errs
  // by 2^-14 changes the sum by no more than 2^-37 of it: the bounds hold for any such.
  const __m512 inverse = _mm512_rsqrt14_ps(_mm512_max_ps(u, _mm512_set1_ps(0x1p-60f)));
  const __m512 half_inverse = _mm512_mul_ps(inverse, half);
  const __m512 first = _mm512_mul_ps(u, inverse);
  const __m512 second = _mm512_fmadd_ps(_mm512_fnmadd_ps(first, first, u), half_inverse, first);
  const __m512 remainder = _mm512_fnmadd_ps(second, second, u);
  const __m512 y_rest = _mm512_maskz_mul_ps(large, remainder, half_inverse);
  const __m512 y = _mm512_mask_mov_ps(a, large, second);
  const __m512 high = _mm512_mul_ps(y, hi);
  __m512 low = _mm512_fmsub_ps(y, hi, high);
  low = _mm512_fmadd_ps(y_rest, hi, low);
  low = _mm512_fmadd_ps(y, f, low);
  return {large, {high}, {low}, {t}};
}

// The float next to the lower bound of high + low, and doubt where it is not next to the upper one.
template <class D, class V>
HWY_INLINE V AsinRounded(D d, V high, V low, V t, V error_of_t, BitsOf<D>& doubt) {
  const V error = HiddenMulAdd(hn::Abs(t), error_of_t, hn::Set(d, kAsinShortError));
  const V least = hn::Add(high, HiddenNegMulAdd(high, error, low));
  const V most = hn::Add(high, HiddenMulAdd(high, error, low));
  doubt = hn::Xor(Bits(d, least), Bits(d, most));
  return least;
}

// A tiny x is its own inverse sine.
template <class D, class V>
HWY_INLINE V sAsinShort(D d, V x, BitsOf<D>& doubt) {
  const V size = hn::Abs(x);
  const auto s = AsinShortOf(hn::Max(size, hn::Set(d, 0x1p-30f)).raw);
  const __m512 pi = _mm512_set1_ps(kHalfPiHi), two = _mm512_set1_ps(2.0f);
  const __m512 high = _mm512_mask_fnmadd_ps(s.high.raw, s.large, two, pi);
  // What the sum leaves is exact.
  const __m512 left = _mm512_fnmadd_ps(s.high.raw, two, _mm512_sub_ps(pi, high));
  const __m512 base = _mm512_add_ps(left, _mm512_set1_ps(kHalfPiLo));
  const __m512 low = _mm512_mask_fnmadd_ps(s.low.raw, s.large, two, base);
  const V error_of_t{_mm512_mask_mov_ps(_mm512_set1_ps(kAsinShortErrorOfT), s.large,
                                        _mm512_set1_ps(kAsinShortErrorOfTLarge))};
  const V y = AsinRounded(d, V{high}, V{low}, s.t, error_of_t, doubt);
  const auto tiny = MagnitudeBelow(d, x, 0x1p-13f);
  return hn::IfVecThenElse(hn::SignBit(d), x, hn::IfThenElse(tiny, x, y));
}

// base + factor asin(y): pi/2 - asin(x), and for large x 2 asin(y) or pi - 2 asin(y).
struct AcosShortRows {
  alignas(64) float base[16], base_rest[16], factor[16];
};
inline constexpr AcosShortRows kAcosShortRows = {{kHalfPiHi, kHalfPiHi, 0, 2 * kHalfPiHi},
                                                 {kHalfPiLo, kHalfPiLo, 0, 2 * kHalfPiLo},
                                                 {-1, 1, 2, -2}};

template <class D, class V>
HWY_INLINE V sAcosShort(D d, V x, BitsOf<D>& doubt) {
  const auto s = AsinShortOf(hn::Max(hn::Abs(x), hn::Set(d, 0x1p-30f)).raw);
  const __m512i sign = _mm512_srli_epi32(_mm512_castps_si512(x.raw), 31);
  const __m512i row = _mm512_mask_or_epi32(sign, s.large, sign, _mm512_set1_epi32(2));
  const auto column = [row](const float* c)
                          HWY_ATTR { return _mm512_permutexvar_ps(row, _mm512_load_ps(c)); };
  const __m512 base = column(kAcosShortRows.base), factor = column(kAcosShortRows.factor);
  const __m512 high = _mm512_fmadd_ps(factor, s.high.raw, base);
  // What the sum leaves is exact.
  const __m512 left = _mm512_fmadd_ps(factor, s.high.raw, _mm512_sub_ps(base, high));
  const __m512 rest = _mm512_add_ps(left, column(kAcosShortRows.base_rest));
  const __m512 low = _mm512_fmadd_ps(factor, s.low.raw, rest);
  return AsinRounded(d, V{high}, V{low}, s.t, hn::Set(d, kAsinShortErrorOfT), doubt);
}

// The correctly rounded kernel of a function that has F::Short, and in double precision F::Part.
template <class F>
struct sAsinSums {
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    V in[1] = {x}, r[1];
    AsinInDouble<F::template Part>(d, in, r);
    return r[0];
  }
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    return F::Short(d, x, doubt);
  }
};
template <class F>
struct sAsinHAKernel : ShortSumKernel<sAsinSums<F>, Kernel<float>> {
  using Rarity = AboveOne<float>;
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
};

#else

template <class F>
struct sAsinHAKernel : LargeGroups<float, double> {
  using Rarity = AboveOne<float>;
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    AsinInDouble<F::template Part>(d, x, r);
  }
};

#endif

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ASIN_SHORT_INL_H_
