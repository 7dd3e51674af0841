// atan2 in double precision, HA: the ratio of the smaller magnitude to the larger by one of eight
// breakpoints c, atan(low/high) = atan(c) + atan(q), q = (low - c high)/(high + c low),
// |q| < 0.0999, and the other octants by reflection.

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The table by words and by rows, for the levels that permute words or read whole rows.
struct AtanOctantWords {
  alignas(32) uint32_t c[8], low[8], high[8];
  alignas(16) double row[8][2];
};
inline constexpr AtanOctantWords kAtanOctantWords = [] {
  AtanOctantWords words = {};
  for (int i = 0; i < 8; ++i) {
    const auto angle = static_cast<uint64_t>(BitsOfNumber(kAtanOctantBins.angle[i]));
    words.c[i] = static_cast<uint32_t>(BitsOfNumber(kAtanOctantBins.c[i]));
    words.low[i] = static_cast<uint32_t>(angle);
    words.high[i] = static_cast<uint32_t>(angle >> 32);
    words.row[i][0] = kAtanOctantBins.c[i];
    words.row[i][1] = kAtanOctantBins.angle[i];
  }
  return words;
}();

template <class V>
struct AtanOctantBin {
  V c, angle;
};

// The bin of low/high <= 1.
template <class D, class V>
HWY_INLINE AtanOctantBin<V> AtanOctantBinOf(D d, V low, V high) {
  const hn::RebindToUnsigned<D> du;
  const auto difference = hn::Sub(hn::BitCast(du, high), hn::BitCast(du, low));
#if HWY_TARGET == HWY_AVX3
  (void)d;
  // A mask costs less than the minimum that the other levels take.
  const __mmask8 within = _mm512_testn_epi64_mask(difference.raw, _mm512_set1_epi64(-1ll << 54));
  const __m512i i = hn::ShiftRight<51>(difference).raw;
  return {V{_mm512_maskz_permutexvar_pd(within, i, _mm512_load_pd(kAtanOctantBins.c))},
          V{_mm512_maskz_permutexvar_pd(within, i, _mm512_load_pd(kAtanOctantBins.angle))}};
#else
  const hn::Repartition<int32_t, D> d32;
  const auto least = hn::Min(hn::BitCast(d32, difference), hn::Set(d32, 7 << 19));
  const auto i = hn::ShiftRight<51>(hn::BitCast(du, least));
#if HWY_TARGET == HWY_AVX2
  (void)d;
  const __m256i both = _mm256_shuffle_epi32(i.raw, 0xA0);
  const auto column = [both](const uint32_t* words) HWY_ATTR {
    const auto* const table = reinterpret_cast<const __m256i*>(words);
    return _mm256_permutevar8x32_epi32(_mm256_load_si256(table), both);
  };
  const __m256i angle =
      _mm256_blend_epi32(column(kAtanOctantWords.low), column(kAtanOctantWords.high), 0xAA);
  return {V{_mm256_castsi256_pd(column(kAtanOctantWords.c))}, V{_mm256_castsi256_pd(angle)}};
#else
  (void)d;
  const __m128d row0 = _mm_load_pd(kAtanOctantWords.row[_mm_cvtsi128_si64(i.raw)]);
  const __m128d row1 = _mm_load_pd(kAtanOctantWords.row[_mm_extract_epi64(i.raw, 1)]);
  return {V{_mm_unpacklo_pd(row0, row1)}, V{_mm_unpackhi_pd(row0, row1)}};
#endif
#endif
}

// For |x| and |y| in [2^-450, 2^450], of which one may be 0: at most 0.55 ulp, of which the
// rounding of c low, the only one of the quotient that is left uncorrected, takes 0.045. kTiny:
// they may be outside [2^-64, 2^64) or 0; of a q below 2^-250, which others do not have, the tail
// is 0, for products that count for nothing shall not underflow.
template <bool kTiny, class D, class V, size_t K>
HWY_INLINE void FullAtan2(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  V first[K], rest[K], q[K], z[K], z2[K], p[K];
  for (size_t k = 0; k < K; ++k) {
    const V ay = hn::Abs(y[k]), ax = hn::Abs(x[k]);
#if HWY_TARGET == HWY_AVX3
    // Operands 10 and 11: the one of the smaller and of the larger magnitude, without sign.
    const V high{_mm512_range_pd(x[k].raw, y[k].raw, 11)};
    const V low{_mm512_range_pd(x[k].raw, y[k].raw, 10)};
#else
    const V high = hn::Max(ax, ay), low = hn::Min(ax, ay);
#endif
    const auto bin = AtanOctantBinOf(d, low, high);
    const Pair<V> ch = TwoProduct(d, bin.c, high);
    const V n = hn::Sub(low, ch.hi);  // exact
    const Pair<V> m = FastTwoSum(high, hn::Mul(bin.c, low));
    const V inverse = hn::Div(hn::Set(d, 1.0), m.hi);
    const V quotient = hn::Mul(n, inverse);
    const V excess = hn::Add(ch.lo, hn::Mul(quotient, m.lo));
    const V remainder = hn::Sub(Remainder(d, n, quotient, m.hi), excess);

    const auto steep = hn::RebindMask(d, hn::Gt(Bits(d, ay), Bits(d, ax)));
    const V pi =
        hn::IfThenElse(hn::MaskFromVec(x[k]), hn::Set(d, 0x1.921fb54442d18p+1), hn::Zero(d));
    const V corner = hn::IfThenElse(steep, hn::Set(d, 0x1.921fb54442d18p+0), pi);
    const V turn = hn::And(hn::Xor(x[k], hn::VecFromMask(d, steep)), hn::SignBit(d));
    const V base = hn::Add(corner, hn::Xor(bin.angle, turn));  // exact
    q[k] = hn::Xor(quotient, turn);
    const Pair<V> s = FastTwoSum(base, q[k]);
    // What pi has beyond its double, and its half, are the same fraction of them.
    const V corner_rest = hn::Mul(corner, hn::Set(d, 0x1.1a62633145c07p-53 / 0x1.921fb54442d18p+1));
    first[k] = s.hi;
    rest[k] = hn::Add(hn::Add(s.lo, corner_rest), hn::Mul(remainder, hn::Xor(inverse, turn)));
  }
  for (size_t k = 0; k < K; ++k) {
    V u = q[k];
    if constexpr (kTiny) u = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, u, 0x1p-250), u));
    z[k] = hn::Mul(u, u);
    z2[k] = hn::Mul(z[k], z[k]);
  }
  EvenOdd(d, z, z2, kAtanHA, p);
  for (size_t k = 0; k < K; ++k) {
    const V tail = hn::Mul(hn::Mul(q[k], z[k]), p[k]);
    r[k] = hn::CopySignToAbs(hn::Add(first[k], hn::Add(rest[k], tail)), y[k]);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_FULL_INL_H_
