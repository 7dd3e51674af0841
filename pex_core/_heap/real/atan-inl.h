// Arctangents in double precision: of a ratio y/x >= 0 (or of a, x = 1) by one of 16 breakpoints
// c, atan(y/x) = atan(c) + atan(t), t = (y - c x)/(x + c y).

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
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

// The table by rows, for the levels that read whole rows.
struct AtanRows {
  alignas(64) double row[16][4];
};
inline constexpr AtanRows kAtanRows = [] {
  AtanRows rows = {};
  for (int i = 0; i < 16; ++i) {
    rows.row[i][0] = kAtanBins.c[i];
    rows.row[i][1] = kAtanBins.finite[i];
    rows.row[i][2] = kAtanBins.angle[i];
    rows.row[i][3] = kAtanBins.rest[i];
  }
  return rows;
}();

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

// Below this atan(t) is t to within 2^-61 of itself, and the square of t is left out: no product
// underflows.
inline constexpr double kAtanTiny = 0x1p-30;

// atan(t) - t for |t| < 0.0999.
template <class D, class V, size_t N>
HWY_INLINE V AtanTail(D d, V t, const double (&c)[N]) {
  const V u = hn::IfThenZeroElse(MagnitudeBelow(d, t, kAtanTiny), t);
  const V z = hn::Mul(u, u);
  return hn::Mul(t, hn::Mul(z, Horner(d, z, c)));
}

// atan(a), a >= 0, by plain sums: below 1.5 ulp with the coefficients of LA.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void PlainAtan(D d, const V (&a)[K], const double (&c)[N], V (&r)[K]) {
  V t[K], angle[K];
  for (size_t k = 0; k < K; ++k) {
    const auto row = AtanRowOf(d, a[k]);
    angle[k] = row.angle;
    t[k] = hn::Div(hn::Sub(hn::Mul(row.finite, a[k]), row.c),
                   hn::Add(row.finite, hn::Mul(row.c, a[k])));
  }
  for (size_t k = 0; k < K; ++k) {
    r[k] = hn::Add(angle[k], hn::Add(t[k], AtanTail(d, t[k], c)));
  }
}

// t = hi + lo = (n.hi + n.lo)/(m.hi + m.lo) to about 2^-100.
template <class D, class V>
HWY_INLINE Pair<V> AtanQuotient(D d, Pair<V> n, Pair<V> m) {
  const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
  const V t = hn::Mul(n.hi, inverse);
  const Pair<V> p = TwoProduct(d, t, m.hi);
  const V rest = hn::Add(hn::Sub(hn::Sub(n.hi, p.hi), p.lo), hn::Sub(n.lo, hn::Mul(t, m.lo)));
  return {t, hn::Mul(rest, inverse)};
}

// atan(a), a >= 0: at most 0.52 ulp. a - c is exact, for a is less than twice c and c less than
// twice a.
template <class D, class V, size_t K>
HWY_INLINE void FullAtan(D d, const V (&a)[K], V (&r)[K]) {
  Pair<V> t[K];
  V angle[K], rest[K];
  for (size_t k = 0; k < K; ++k) {
    const auto row = AtanRowOf(d, a[k]);
    angle[k] = row.angle;
    rest[k] = row.rest;
    const Pair<V> p = TwoProduct(d, row.c, a[k]);
    const Pair<V> m = FastTwoSum(row.finite, p.hi);  // exact: 1 is a multiple of the sum's ulp
    t[k] = AtanQuotient(d, {hn::Sub(hn::Mul(row.finite, a[k]), row.c), hn::Zero(d)},
                        {m.hi, hn::Add(m.lo, p.lo)});
  }
  for (size_t k = 0; k < K; ++k) {
    const V tail = hn::Add(AtanTail(d, t[k].hi, kAtanHA), hn::Add(t[k].lo, rest[k]));
    const Pair<V> s = FastTwoSum(angle[k], t[k].hi);
    r[k] = hn::Add(s.hi, hn::Add(s.lo, tail));
  }
}

// atan2(y, x) for |x| and |y| in [2^-450, 2^450], one of them may be 0. sign(x) v stands for v with
// the sign changed where x < 0; then the angle is taken from pi.
template <class D, class V, size_t N>
HWY_INLINE V PlainAtan2(D d, V y, V x, const double (&c)[N]) {
  const V ay = hn::Abs(y), ax = hn::Abs(x);
  const V x_sign = hn::And(x, hn::SignBit(d));
  const auto row = AtanRowOf(d, ay, ax);
  const V t = hn::Div(hn::Sub(hn::Mul(row.finite, ay), hn::Mul(row.c, ax)),
                      hn::Add(hn::Mul(row.finite, ax), hn::Mul(row.c, ay)));
  const V angle = hn::Add(row.angle, hn::Add(t, AtanTail(d, t, c)));
  const V base = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.921fb54442d18p+1), hn::Zero(d));
  return hn::CopySign(hn::Add(base, hn::Xor(angle, x_sign)), y);
}

template <class D, class V>
HWY_INLINE V FullAtan2(D d, V y, V x) {
  const V ay = hn::Abs(y), ax = hn::Abs(x);
  const V x_sign = hn::And(x, hn::SignBit(d));
  const auto row = AtanRowOf(d, ay, ax);
  const Pair<V> cx = TwoProduct(d, row.c, ax), cy = TwoProduct(d, row.c, ay);
  const V n = hn::Sub(hn::Mul(row.finite, ay), cx.hi);  // exact
  const Pair<V> m = TwoSum(hn::Mul(row.finite, ax), cy.hi);
  const Pair<V> t = AtanQuotient(d, {n, hn::Neg(cx.lo)}, {m.hi, hn::Add(m.lo, cy.lo)});
  const V tail = hn::Add(AtanTail(d, t.hi, kAtanHA), hn::Add(t.lo, row.rest));
  const V zero = hn::Zero(d);
  const V pi = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.921fb54442d18p+1), zero);
  const V pi_rest = hn::IfNegativeThenElse(x, hn::Set(d, 0x1.1a62633145c07p-53), zero);
  const Pair<V> s1 = FastTwoSum(pi, hn::Xor(row.angle, x_sign));
  const Pair<V> s2 = FastTwoSum(s1.hi, hn::Xor(t.hi, x_sign));
  const V rest = hn::Add(s1.lo, hn::Add(pi_rest, hn::Xor(tail, x_sign)));
  return hn::CopySign(hn::Add(s2.hi, hn::Add(s2.lo, rest)), y);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN_INL_H_
