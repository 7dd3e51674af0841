// atan(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan/satan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/_heap/real/rows.h"
#include "pex_core/_heap/real/short_sum-inl.h"
#include "pex_core/atan/atan_plain-inl.h"
#include "pex_core/atan/atan_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtan";

template <class D, size_t kVectors>
using sAtanPartEP = AtanRatioPart<kAtanRatioSingle, D, kVectors>;
using sAtanEP = AtanPlain<float, sAtanPartEP, AtanRatioRange>;

template <class D, size_t kVectors>
using sAtanPartLA = AtanHiddenPart<kAtanPlainSingleLA, D, kVectors>;
using sAtanLA = AtanPlain<float, sAtanPartLA>;

// kAtanHA, the first coefficient raised. The arctangent of 0x1.1ad646p-4 lies 0.13 ulp of double
// above the middle of two floats, and its nearest double is that middle: this adds 0.43 ulp there,
// and sends no other float to the wrong side.
inline constexpr double kAtanForSingle[] = {
    kAtanHA[0] + 0x1.4p-46, kAtanHA[1], kAtanHA[2], kAtanHA[3], kAtanHA[4], kAtanHA[5]};

// In double precision. Correctly rounded for all floats.
template <class D, class V, size_t K>
HWY_INLINE void sAtanWide(D d, const V (&x)[K], V (&r)[K]) {
  const hn::Rebind<double, D> wide;
  VecOf<decltype(wide)> a[K], v[K];
  for (size_t k = 0; k < K; ++k) a[k] = hn::PromoteTo(wide, hn::Abs(x[k]));
  FullAtan(wide, a, kAtanForSingle, v);
  for (size_t k = 0; k < K; ++k) r[k] = hn::CopySignToAbs(hn::DemoteTo(d, v[k]), x[k]);
}

template <typename Compute>
struct sAtanCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinity or NaN
  static HWY_INLINE int Rare(float x, float* r) { return sAtanRare(x, r); }
};

#if HWY_TARGET == HWY_SSE4
struct sAtanHA : sAtanCommon<double> {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    sAtanWide(d, x, r);
  }
};
#else

// How much the sum of floats may err: in relation to the row's angle, which bears it toward 0, and
// to t^2 beside that.
inline constexpr float kAtanShortError = 0x1p-37f, kAtanShortErrorOfSquare = 0x1p-27f;

inline constexpr auto kAtanShortBelow = [] {
  auto t = kAtanShortBins;
  for (int i = 0; i < 32; ++i) t.rest[i] -= kAtanShortError * t.angle[i];
  return t;
}();

#if HWY_TARGET == HWY_AVX2
inline constexpr auto kAtanShortRows =
    ByRows(kAtanShortBelow.c, kAtanShortBelow.finite, kAtanShortBelow.angle, kAtanShortBelow.rest);
#endif

// The row for a >= 0.
template <class D, class V>
HWY_INLINE AtanRow<V> AtanShortRowOf(D d, V a) {
  const V clamped = hn::Min(hn::Max(a, hn::Set(d, 0x1p-4f)), hn::Set(d, 15.5f));
#if HWY_TARGET == HWY_AVX3
  const auto i = hn::ShiftRight<21>(Bits(d, clamped));
  const auto column = [i](const float* c) HWY_ATTR {
    return V{_mm512_permutex2var_ps(_mm512_load_ps(c), i.raw, _mm512_load_ps(c + 16))};
  };
  return {column(kAtanShortBelow.c), column(kAtanShortBelow.finite), column(kAtanShortBelow.angle),
          column(kAtanShortBelow.rest)};
#else
  const auto j = hn::And(hn::ShiftRight<17>(Bits(d, clamped)), SetBits(d, 31 * 16));
  __m256i at;
  asm("vmovdqa %1, %0" : "=m"(at) : "x"(j.raw));
  const uint32_t* const row = reinterpret_cast<const uint32_t*>(&at);
  const auto pair = [row](int k) HWY_ATTR {
    const auto at = [row](int k) HWY_ATTR {
      return _mm_load_ps(reinterpret_cast<const float*>(
          reinterpret_cast<const char*>(kAtanShortRows.row) + row[k]));
    };
    return _mm256_insertf128_ps(_mm256_castps128_ps256(at(k)), at(k + 4), 1);
  };
  const __m256 r0 = pair(0), r1 = pair(1), r2 = pair(2), r3 = pair(3);
  const __m256d low01 = _mm256_castps_pd(_mm256_unpacklo_ps(r0, r1));
  const __m256d low23 = _mm256_castps_pd(_mm256_unpacklo_ps(r2, r3));
  const __m256d high01 = _mm256_castps_pd(_mm256_unpackhi_ps(r0, r1));
  const __m256d high23 = _mm256_castps_pd(_mm256_unpackhi_ps(r2, r3));
  return {V{_mm256_castpd_ps(_mm256_unpacklo_pd(low01, low23))},
          V{_mm256_castpd_ps(_mm256_unpackhi_pd(low01, low23))},
          V{_mm256_castpd_ps(_mm256_unpacklo_pd(high01, high23))},
          V{_mm256_castpd_ps(_mm256_unpackhi_pd(high01, high23))}};
#endif
}

// By floats: t = (a - c)/(1 + a c), or -1/a, and its rest by the exact remainder, added to atan(c)
// as two floats. Beyond powers of two where the arctangent is a itself or next to half of pi they
// stand for a, so that no product underflows.
struct sAtanSums {
  template <class D, class V>
  static HWY_INLINE V InFull(D d, V x) {
    V in[1] = {x}, r[1];
    sAtanWide(d, in, r);
    return r[0];
  }
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    const V size = hn::Abs(x);
    const V a = hn::Min(hn::Max(size, hn::Set(d, 0x1p-40f)), hn::Set(d, 0x1p40f));
    const auto row = AtanShortRowOf(d, size);
    const V numerator = ExactProductLess(row.finite, a, row.c);  // exact
    const V denominator = HiddenMulAdd(row.c, a, row.finite);
    const V denominator_rest = HiddenMulAdd(row.c, a, hn::Sub(row.finite, denominator));
    const V inverse = hn::Div(hn::Set(d, 1.0f), denominator);
    const V t = hn::Mul(numerator, inverse);
    const V remainder =
        HiddenNegMulAdd(t, denominator_rest, HiddenNegMulAdd(t, denominator, numerator));
    const V z = hn::Mul(t, t);
    const V p =
        HiddenMulSub(HiddenHorner(d, z, kAtanShort), t, hn::Set(d, kAtanShortErrorOfSquare));
    const V rest = HiddenMulAdd(remainder, inverse, HiddenMulAdd(z, p, row.rest));
    const V high = hn::Add(row.angle, t);
    const V low = hn::Add(hn::Sub(t, hn::Sub(high, row.angle)), rest);
    const V most = HiddenMulAdd(z, hn::Set(d, 2 * kAtanShortErrorOfSquare),
                                HiddenMulAdd(high, hn::Set(d, 2 * kAtanShortError), low));
    const V least = hn::Add(high, low);
    doubt = hn::Xor(Bits(d, least), Bits(d, hn::Add(high, most)));
    return hn::CopySignToAbs(hn::Min(least, size), x);
  }
};

using sAtanHA = ShortSumKernel<sAtanSums, sAtanCommon<float> >;
#endif

PEX_UNARY(float, sAtan_11, sAtanEP)
PEX_UNARY(float, sAtan_21, sAtanLA)
PEX_UNARY(float, sAtan_HA, sAtanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAtan_11)
PEX_EXPORT_UNARY(float, sAtan_21)
PEX_EXPORT_UNARY(float, sAtan_HA)
}  // namespace pex
#endif
