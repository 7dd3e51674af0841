// The exact reduction of large arguments by pi/2, for the vector kernels.
//
// x 2/pi modulo 4 needs the bits of 2/pi only from the one on whose product with x is no multiple
// of 4 (M. Payne and R. Hanek, 1983). For each exponent a table row holds the next 212 bits: a
// double comes as close as 2^-62 to a multiple of pi/2, and even then more than 90 bits are right.

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_two_over_pi.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_REDUCE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_REDUCE_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_REDUCE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_REDUCE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// x = quadrant pi/2 + r modulo 2 pi, |r| <= pi/4 (1 + 2^-50). The low two bits of each lane of
// quadrant count; r is good to 2^-60 of itself.
template <class D>
struct ReducedByPiOver2 {
  Pair<VecOf<D>> r;
  BitsOf<D> quadrant;
};

// The columns of the rows `g`: whole rows by lane, then a transposition, cheaper than gathers.
template <class D>
HWY_INLINE void TwoOverPiRows(D, BitsOf<D> g, VecOf<D> (&p)[4]) {
#if HWY_TARGET == HWY_AVX3
  using V = VecOf<D>;
  HWY_ALIGN int64_t row[8];
  hn::Store(g, hn::RebindToSigned<D>(), row);
  const auto rows = [&row](int i) HWY_ATTR {
    return _mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_load_pd(kTwoOverPi.row[row[i]])),
                              _mm256_load_pd(kTwoOverPi.row[row[i + 4]]), 1);
  };
  const __m512d r0 = rows(0), r1 = rows(1), r2 = rows(2), r3 = rows(3);
  const __m512d even01 = _mm512_unpacklo_pd(r0, r1), odd01 = _mm512_unpackhi_pd(r0, r1);
  const __m512d even23 = _mm512_unpacklo_pd(r2, r3), odd23 = _mm512_unpackhi_pd(r2, r3);
  const __m512i left = _mm512_setr_epi64(0, 1, 8, 9, 4, 5, 12, 13);
  const __m512i right = _mm512_setr_epi64(2, 3, 10, 11, 6, 7, 14, 15);
  p[0] = V{_mm512_permutex2var_pd(even01, left, even23)};
  p[1] = V{_mm512_permutex2var_pd(odd01, left, odd23)};
  p[2] = V{_mm512_permutex2var_pd(even01, right, even23)};
  p[3] = V{_mm512_permutex2var_pd(odd01, right, odd23)};
#elif HWY_TARGET == HWY_AVX2
  using V = VecOf<D>;
  const __m128i lower = _mm256_castsi256_si128(g.raw);
  const __m128i upper = _mm256_extracti128_si256(g.raw, 1);
  const __m256d r0 = _mm256_load_pd(kTwoOverPi.row[_mm_cvtsi128_si64(lower)]);
  const __m256d r1 = _mm256_load_pd(kTwoOverPi.row[_mm_extract_epi64(lower, 1)]);
  const __m256d r2 = _mm256_load_pd(kTwoOverPi.row[_mm_cvtsi128_si64(upper)]);
  const __m256d r3 = _mm256_load_pd(kTwoOverPi.row[_mm_extract_epi64(upper, 1)]);
  const __m256d even01 = _mm256_unpacklo_pd(r0, r1), odd01 = _mm256_unpackhi_pd(r0, r1);
  const __m256d even23 = _mm256_unpacklo_pd(r2, r3), odd23 = _mm256_unpackhi_pd(r2, r3);
  p[0] = V{_mm256_permute2f128_pd(even01, even23, 0x20)};
  p[1] = V{_mm256_permute2f128_pd(odd01, odd23, 0x20)};
  p[2] = V{_mm256_permute2f128_pd(even01, even23, 0x31)};
  p[3] = V{_mm256_permute2f128_pd(odd01, odd23, 0x31)};
#else
  using V = VecOf<D>;
  const double* r0 = kTwoOverPi.row[_mm_cvtsi128_si64(g.raw)];
  const double* r1 = kTwoOverPi.row[_mm_extract_epi64(g.raw, 1)];
  const __m128d low0 = _mm_load_pd(r0), high0 = _mm_load_pd(r0 + 2);
  const __m128d low1 = _mm_load_pd(r1), high1 = _mm_load_pd(r1 + 2);
  p[0] = V{_mm_unpacklo_pd(low0, low1)};
  p[1] = V{_mm_unpackhi_pd(low0, low1)};
  p[2] = V{_mm_unpacklo_pd(high0, high1)};
  p[3] = V{_mm_unpackhi_pd(high0, high1)};
#endif
}

// For finite |x| >= 1. A brief reduction is good to 2^-38 of r at least, and has no r.lo.
template <bool kBrief, class D, class V>
HWY_INLINE ReducedByPiOver2<D> ReduceLarge(D d, V x) {
  // x1 = x 2^-g, g the exponent of x less 53 where that is positive: |x1| < 2^54.
  const auto over = hn::Sub(Bits(d, hn::Abs(x)), SetBits(d, uint64_t{1023 + 53} << 52));
  const auto g = hn::ShiftRight<52>(hn::AndNot(hn::BroadcastSignBit(over), over));
  const V x1 = FromBits(d, hn::Sub(Bits(d, x), hn::ShiftLeft<52>(g)));
  V p[4];
  TwoOverPiRows(d, g, p);

  // x 2/pi modulo 4: t0 below 2^55, t0.lo and t1 below 4, t1.lo and t2 below 2^-50.
  const Pair<V> t0 = TwoProduct(d, x1, p[0]);
  const Pair<V> t1 = TwoProduct(d, x1, p[1]);
  const V eights = hn::Set(d, 0x1.8p55);  // rounds to multiples of 8
  const V turn = hn::Sub(t0.hi, hn::Sub(hn::Add(t0.hi, eights), eights));

  // The nearest integer, and what remains in sums of like size. When they cancel, the later sums
  // are as much finer, and the roundings of the last ones do not matter.
  const Pair<V> middle = TwoSum(t1.hi, t0.lo);
  const V shifter = hn::Set(d, 0x1.8p52);
  const V shifted = hn::Add(hn::Add(turn, middle.hi), shifter);
  const V part = hn::Sub(turn, hn::Sub(shifted, shifter));  // exact
  const Pair<V> s1 = TwoSum(part, middle.hi);
  const V half_pi = hn::Set(d, 0x1.921fb54442d18p0);
  if constexpr (kBrief) {
    const V rest = hn::Add(hn::Add(t1.lo, hn::Mul(x1, p[2])), hn::Add(middle.lo, s1.lo));
    return {{hn::Mul(hn::Add(s1.hi, rest), half_pi), hn::Zero(d)}, Bits(d, shifted)};
  }
  const Pair<V> t2 = TwoProduct(d, x1, p[2]);
  const V t3 = hn::Mul(x1, p[3]);
  const Pair<V> s2 = TwoSum(t1.lo, t2.hi);
  const Pair<V> s3 = TwoSum(middle.lo, s2.hi);
  const Pair<V> f = TwoSum(s1.hi, s3.hi);
  const V last = hn::Add(hn::Add(s2.lo, s3.lo), hn::Add(t2.lo, t3));
  const V rest = hn::Add(f.lo, hn::Add(s1.lo, last));

  const Pair<V> r = TwoProduct(d, f.hi, half_pi);
  const V lo = hn::Add(hn::Mul(f.hi, hn::Set(d, 0x1.1a62633145c07p-54)), hn::Mul(rest, half_pi));
  return {FastTwoSum(r.hi, hn::Add(r.lo, lo)), Bits(d, shifted)};
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_REDUCE_INL_H_
