// Arctangents in double precision: of a ratio y/x >= 0 (or of a, x = 1) by one of 16 breakpoints
// c, atan(y/x) = atan(c) + atan(t), t = (y - c x)/(x + c y).

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_heap/real/rows.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// A row of kAtanBins in each lane.
template <class V>
struct AtanRow {
  V c, finite, angle, rest;
};

inline constexpr auto kAtanRows =
    ByRows(kAtanBins.c, kAtanBins.finite, kAtanBins.angle, kAtanBins.rest);

// Rows `i & 15`.
template <class D>
HWY_INLINE AtanRow<VecOf<D>> AtanLookUp(D d, BitsOf<D> i) {
  using V = VecOf<D>;
#if HWY_TARGET == HWY_AVX3
  (void)d;
  const auto column = [i](const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i.raw, _mm512_load_pd(c + 8))};
  };
  return {column(kAtanBins.c), column(kAtanBins.finite), column(kAtanBins.angle),
          column(kAtanBins.rest)};
#elif HWY_TARGET == HWY_AVX2
  const auto j = hn::And(i, SetBits(d, 15));
  const __m128i lower = _mm256_castsi256_si128(j.raw);
  const __m128i upper = _mm256_extracti128_si256(j.raw, 1);
  const auto& rows = kAtanRows.row;
  const __m256d r0 = _mm256_load_pd(rows[_mm_cvtsi128_si64(lower)]);
  const __m256d r1 = _mm256_load_pd(rows[_mm_extract_epi64(lower, 1)]);
  const __m256d r2 = _mm256_load_pd(rows[_mm_cvtsi128_si64(upper)]);
  const __m256d r3 = _mm256_load_pd(rows[_mm_extract_epi64(upper, 1)]);
  const __m256d even01 = _mm256_unpacklo_pd(r0, r1), odd01 = _mm256_unpackhi_pd(r0, r1);
  const __m256d even23 = _mm256_unpacklo_pd(r2, r3), odd23 = _mm256_unpackhi_pd(r2, r3);
  return {V{_mm256_permute2f128_pd(even01, even23, 0x20)},
          V{_mm256_permute2f128_pd(odd01, odd23, 0x20)},
          V{_mm256_permute2f128_pd(even01, even23, 0x31)},
          V{_mm256_permute2f128_pd(odd01, odd23, 0x31)}};
#else
  const auto j = hn::And(i, SetBits(d, 15));
  const double* r0 = kAtanRows.row[_mm_cvtsi128_si64(j.raw)];
  const double* r1 = kAtanRows.row[_mm_extract_epi64(j.raw, 1)];
  const __m128d low0 = _mm_load_pd(r0), high0 = _mm_load_pd(r0 + 2);
  const __m128d low1 = _mm_load_pd(r1), high1 = _mm_load_pd(r1 + 2);
  return {V{_mm_unpacklo_pd(low0, low1)}, V{_mm_unpackhi_pd(low0, low1)},
          V{_mm_unpacklo_pd(high0, high1)}, V{_mm_unpackhi_pd(high0, high1)}};
#endif
}

// The row for a >= 0: its exponent and the leading bit of its mantissa, from 2^-4 to 12.
template <class D, class V>
HWY_INLINE AtanRow<V> AtanRowOf(D d, V a) {
  const V clamped = hn::Min(hn::Max(a, hn::Set(d, 0x1p-4)), hn::Set(d, 12.0));
  return AtanLookUp(d, hn::ShiftRight<51>(Bits(d, clamped)));
}

// The row for y/x, x, y >= 0, by the difference of their high words.
template <class D, class V>
HWY_INLINE AtanRow<V> AtanRowOf(D d, V y, V x) {
  const hn::Repartition<int32_t, D> d32;
  const auto difference = hn::Sub(hn::BitCast(d32, y), hn::BitCast(d32, x));
  // From 2^-4 to 12 as above, 2^0 being 1023 more.
  const auto clamped = hn::Min(hn::Max(difference, hn::Set(d32, -4 * (1 << 20))),
                               hn::Set(d32, 3 * (1 << 20) + (1 << 19)));
  const auto biased = hn::Add(clamped, hn::Set(d32, 1023 << 20));
  return AtanLookUp(d, hn::ShiftRight<51>(hn::BitCast(hn::RebindToSigned<D>(), biased)));
}

// atan(t) - t; 0 for tiny t, where no product shall underflow: it is below 2^-61 t there (single:
// 2^-29 t).
template <class D, class V, size_t K, size_t N, typename T = hn::TFromD<D>>
HWY_INLINE void AtanTail(D d, const V (&t)[K], const T (&c)[N], V (&r)[K]) {
  constexpr T kTiny = sizeof(T) == 8 ? T(0x1p-30) : T(0x1p-14);
  V z[K], z2[K], p[K];
  for (size_t k = 0; k < K; ++k) {
#if HWY_TARGET == HWY_AVX3
    z[k] = SquareWhere(d, hn::Ge(hn::Abs(t[k]), hn::Set(d, kTiny)), t[k]);
#else
    const V u = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, t[k], kTiny), t[k]));
    z[k] = hn::Mul(u, u);
#endif
  }
  for (size_t k = 0; k < K; ++k) z2[k] = hn::Mul(z[k], z[k]);
  EvenOdd(d, z, z2, c, p);
  for (size_t k = 0; k < K; ++k) r[k] = hn::Mul(t[k], hn::Mul(z[k], p[k]));
}

// For the ratio y/x >= 0 with c = 0 (below 1/2), 3/4 or infinity (above 2): the numerator and the
// denominator of t = (y - c x)/(x + c y), |t| <= 1/2, and atan(c); y - c x is exact but
// for the product.
template <class V>
struct AtanThird {
  V numerator, denominator, angle;
};

template <class D, class V>
HWY_INLINE AtanThird<V> AtanThirdOf(D d, V y, V x, V half_x, V twice_x) {
  const auto low = hn::Lt(y, half_x), high = hn::Gt(y, twice_x);
  const V c =
      hn::IfThenElse(high, hn::Set(d, 1.0), hn::IfThenZeroElse(low, hn::Set(d, kAtanMiddle)));
  return {hn::Sub(hn::IfThenZeroElse(high, y), hn::Mul(c, x)),
          hn::Add(hn::IfThenZeroElse(high, x), hn::Mul(c, y)),
          hn::IfThenElse(high, hn::Set(d, 0x1.921fb54442d18p+0),
                         hn::IfThenZeroElse(low, hn::Set(d, kAtanMiddleAngle)))};
}

// atan(y/x) for the third of the ratio, by plain sums: below 2 ulp.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void PlainAtan(D d, const AtanThird<V> (&q)[K], const double (&c)[N], V (&r)[K]) {
  V t[K], tail[K];
  for (size_t k = 0; k < K; ++k) t[k] = hn::Div(q[k].numerator, q[k].denominator);
  AtanTail(d, t, c, tail);
  for (size_t k = 0; k < K; ++k) r[k] = hn::Add(q[k].angle, hn::Add(t[k], tail[k]));
}

// t = hi + lo = (n.hi + n.lo)/(m.hi + m.lo) to about 2^-100.
template <class D, class V = VecOf<D>>
HWY_INLINE Pair<V> AtanQuotient(D d, Pair<VecOf<D>> n, Pair<VecOf<D>> m) {
  const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
  const V t = hn::Mul(n.hi, inverse);
  const Pair<V> p = TwoProduct(d, t, m.hi);
  const V rest = hn::Add(hn::Sub(hn::Sub(n.hi, p.hi), p.lo), hn::Sub(n.lo, hn::Mul(t, m.lo)));
  return {t, hn::Mul(rest, inverse)};
}

// atan(a), a >= 0, with the coefficients kAtanHA: at most 0.51 ulp. a - c is exact, for a is less
// than twice c and c less than twice a.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void FullAtan(D d, const V (&a)[K], const double (&coefficients)[N], V (&r)[K]) {
  Pair<V> t[K];
  V lead[K], tail[K], angle[K], rest[K];
  for (size_t k = 0; k < K; ++k) {
    const auto row = AtanRowOf(d, a[k]);
    angle[k] = row.angle;
    rest[k] = row.rest;
    const Pair<V> p = TwoProduct(d, row.c, a[k]);
    const Pair<V> m = FastTwoSum(row.finite, p.hi);  // exact: 1 is a multiple of the sum's ulp
    t[k] = AtanQuotient(d, {hn::Sub(hn::Mul(row.finite, a[k]), row.c), hn::Zero(d)},
                        {m.hi, hn::Add(m.lo, p.lo)});
    lead[k] = t[k].hi;
  }
  AtanTail(d, lead, coefficients, tail);
  for (size_t k = 0; k < K; ++k) {
    const Pair<V> s = FastTwoSum(angle[k], lead[k]);
    r[k] = hn::Add(s.hi, hn::Add(s.lo, hn::Add(tail[k], hn::Add(t[k].lo, rest[k]))));
  }
}

// atan2(y, x) for |x| and |y| in [2^-450, 2^450]; one of them may be 0.
// Where x < 0 the angle is taken from pi.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void PlainAtan2(D d, const V (&y)[K], const V (&x)[K], const double (&c)[N], V (&r)[K]) {
  AtanThird<V> third[K];
  V angle[K];
  for (size_t k = 0; k < K; ++k) {
    const V ax = hn::Abs(x[k]);
    third[k] = AtanThirdOf(d, hn::Abs(y[k]), ax, hn::Mul(ax, hn::Set(d, 0.5)), hn::Add(ax, ax));
  }
  PlainAtan(d, third, c, angle);
  for (size_t k = 0; k < K; ++k) {
    const V pi = hn::IfNegativeThenElse(x[k], hn::Set(d, 0x1.921fb54442d18p+1), hn::Zero(d));
    const V turned = hn::Xor(angle[k], hn::And(x[k], hn::SignBit(d)));
    r[k] = hn::CopySignToAbs(hn::Add(pi, turned), y[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN_INL_H_
