// Sine, cosine and tangent in single precision: arguments reduced exactly, whatever their size.
//
// x = N u + y. For the sine u = pi and N = k is an integer, for the cosine u = pi and N = k - 1/2,
// so that both are (-1)^k sin y with |y| <= pi/2; for the tangent and the pair of sine and cosine
// u = pi/2 and N = k, with |y| <= pi/4. Arguments that float arithmetic can reduce (2^-21 <=
// |x| < 2^11) stay in it; the others go through double precision, multiplied by a part of 1/pi
// (Payne and Hanek 1983) that depends on their exponent.

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_single.h"
#include "pex_core/_heap/real/trig_single_polynomials.h"
#include "pex_core/_heap/real/trig_single_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/fused_single-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

enum class Turn { kSine, kCosine, kQuarter };

// How good the reduction is in float arithmetic: about 14 bits next to the zeros; but for one
// rounding of y; in full.
enum class Care { kRough, kRounded, kFull };

// The reduced argument y and k in the lowest two bits.
template <class D>
struct Reduced {
  VecOf<D> y;
  BitsOf<D> k;
  VecOf<D> excess = {};  // y less its exact value, as far as Care says
};

// x with its sign changed where the highest of `bits` is set.
template <class D, class V>
HWY_INLINE V FlipSign(D d, V x, BitsOf<D> bits) {
  const auto sign = SetBits(d, sizeof(hn::TFromD<D>) == 8 ? 1ull << 63 : 1ull << 31);
#if HWY_TARGET == HWY_AVX3
  return FromBits(d, BitsOf<D>{_mm512_ternarylogic_epi32(Bits(d, x).raw, bits.raw, sign.raw,
                                                         0x78)});  // x ^ (bits & sign)
#else
  return hn::Xor(x, FromBits(d, hn::And(bits, sign)));
#endif
}

// x with the sign of y, for an x that has it already or is a zero: -0 and 0 from its powers is 0.
template <class D, class V>
HWY_INLINE V KeepSign(D d, V x, V y) {
  const auto sign = SetBits(d, sizeof(hn::TFromD<D>) == 8 ? 1ull << 63 : 1ull << 31);
#if HWY_TARGET == HWY_AVX3
  return FromBits(d, BitsOf<D>{_mm512_ternarylogic_epi32(Bits(d, x).raw, Bits(d, y).raw, sign.raw,
                                                         0xF8)});  // x | (y & sign)
#else
  return hn::Or(x, hn::And(y, FromBits(d, sign)));
#endif
}

// pi = high + middle + low with an error of 2^-62, and with 2^-50 in high + rest. N times the
// middle part is exact for N of 11 bits.
inline constexpr float kPiHigh = 0x1.921fb4p+1f, kPiMiddle = 0x1.444p-23f, kPiLow = 0x1.68c234p-38f,
                       kPiRest = 0x1.4442d2p-23f;

// A row of the parts of 1/pi for each lane, row & 15.
template <class V>
struct InversePi {
  V high, middle, low;
};
template <class D>
HWY_INLINE InversePi<VecOf<D>> InversePiAt(D d, BitsOf<hn::Rebind<float, D>> row) {
  using V = VecOf<D>;
#if HWY_TARGET == HWY_AVX3
  const auto i = hn::PromoteTo(hn::RebindToSigned<D>(), row);
  (void)d;
  const auto column = [i](const double* c) HWY_ATTR {
    return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i.raw, _mm512_load_pd(c + 8))};
  };
  return {column(kInversePiHigh), column(kInversePiMiddle), column(kInversePiLow)};
#else
  const hn::RebindToSigned<hn::Rebind<float, D>> di;
  const auto i = hn::And(row, hn::Set(di, 15));
  const auto row_of = [](int32_t k) HWY_ATTR { return kInversePiRows[static_cast<uint32_t>(k)]; };
  (void)d;
#if HWY_TARGET == HWY_AVX2  // whole rows, then a transposition
  const __m256d r0 = _mm256_load_pd(row_of(_mm_cvtsi128_si32(i.raw)));
  const __m256d r1 = _mm256_load_pd(row_of(_mm_extract_epi32(i.raw, 1)));
  const __m256d r2 = _mm256_load_pd(row_of(_mm_extract_epi32(i.raw, 2)));
  const __m256d r3 = _mm256_load_pd(row_of(_mm_extract_epi32(i.raw, 3)));
  const __m256d even01 = _mm256_unpacklo_pd(r0, r1), even23 = _mm256_unpacklo_pd(r2, r3);
  const __m256d odd01 = _mm256_unpackhi_pd(r0, r1), odd23 = _mm256_unpackhi_pd(r2, r3);
  return {V{_mm256_permute2f128_pd(even01, even23, 0x20)},
          V{_mm256_permute2f128_pd(odd01, odd23, 0x20)},
          V{_mm256_permute2f128_pd(even01, even23, 0x31)}};
#else
  const double* r0 = row_of(_mm_cvtsi128_si32(i.raw));
  const double* r1 = row_of(_mm_extract_epi32(i.raw, 1));
  const __m128d low0 = _mm_load_pd(r0), low1 = _mm_load_pd(r1);
  return {V{_mm_unpacklo_pd(low0, low1)}, V{_mm_unpackhi_pd(low0, low1)},
          V{_mm_unpacklo_pd(_mm_load_pd(r0 + 2), _mm_load_pd(r1 + 2))}};
#endif
#endif
}

inline constexpr float kWideLimit = 0x1p22f;

template <Turn kTurn>
struct Reduction {
  static constexpr bool kQuarter = kTurn == Turn::kQuarter;
  static constexpr float kUnit = kQuarter ? 0.5f : 1.0f;  // u/pi
  static constexpr float kInverse = 0x1.45f306p-2f / kUnit;
  static constexpr float kShifter = 0x1.8p23f;  // leaves k in the lowest bits

  // Arguments for float arithmetic: their exponents less the first have only the lowest bits,
  // whatever the sign. N times the middle part of u is exact, x - N times the high part is a
  // multiple of the high part's last place and a number, and no power of y underflows.
  static constexpr float kLeast = 0x1p-21f, kLimit = 0x1p11f;
  static constexpr uint32_t kOffset = BitsOfNumber(kLeast);
  static constexpr uint32_t kHighBits = 0x70000000;
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, V x) {
    return hn::Sub(Bits(d, x), SetBits(d, kOffset));
  }
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Joined(D d, BitsOf<D> key, V x) {
    return hn::Or(key, Key(d, x));
  }
  template <class D>
  static HWY_INLINE bool Any(D d, BitsOf<D> key) {
#if HWY_TARGET == HWY_AVX3
    return _mm512_test_epi32_mask(key.raw, SetBits(d, kHighBits).raw) != 0;
#elif HWY_TARGET == HWY_AVX2
    return _mm256_testz_si256(key.raw, SetBits(d, kHighBits).raw) == 0;
#else
    return _mm_testz_si128(key.raw, SetBits(d, kHighBits).raw) == 0;
#endif
  }

  // x/u + kShifter rounded once: double precision leaves the same integer.
  template <class D, class V>
  static HWY_INLINE void NearestTurn(D d, V x, BitsOf<D>& turn, V& n) {
#if HWY_TARGET == HWY_SSE4
    const hn::Repartition<double, D> wide;
    const auto quotient = [&](VecOf<decltype(wide)> part) HWY_ATTR {
      return hn::Add(hn::Mul(part, hn::Set(wide, double{kInverse})), hn::Set(wide, 0x1.8p52)).raw;
    };
    const WideHalves halves = InHalves(x);
    const __m128d lower = quotient(halves.lower), upper = quotient(halves.upper);
    turn = BitsOf<D>{_mm_castps_si128(
        _mm_shuffle_ps(_mm_castpd_ps(lower), _mm_castpd_ps(upper), _MM_SHUFFLE(2, 0, 2, 0)))};
    n = hn::ConvertTo(d, turn);
#else
    n = HiddenMulAdd(x, hn::Set(d, kInverse), hn::Set(d, kShifter));
    turn = Bits(d, n);
    n = hn::Sub(n, hn::Set(d, kShifter));
#endif
  }

  // n - kShifter - 1/2, a number: kShifter + 1/2 has a bit too many, but is five times a number.
  template <class D, class V>
  static HWY_INLINE V LessShifterAndHalf(D d, V n) {
#if HWY_TARGET == HWY_SSE4
    return hn::Sub(hn::Sub(n, hn::Set(d, kShifter)), hn::Set(d, 0.5f));
#else
    constexpr float kFifth = 2516582.5f;
    static_assert(5 * double{kFifth} == double{kShifter} + 0.5);
    return Remainder(d, n, hn::Set(d, 5.0f), hn::Set(d, kFifth));
#endif
  }

  // x less n times u's high part, a number.
  template <class D, class V>
  static HWY_INLINE V LessHigh(D d, V x, V n) {
#if HWY_TARGET == HWY_SSE4
    constexpr float kUpper = 0x1.92p+1f;  // both products and both differences are exact
    const V rest = hn::Sub(x, hn::Mul(n, hn::Set(d, kUpper * kUnit)));
    return hn::Sub(rest, hn::Mul(n, hn::Set(d, (kPiHigh - kUpper) * kUnit)));
#else
    return Remainder(d, x, n, hn::Set(d, kPiHigh * kUnit));
#endif
  }

  // The same in full. The middle part leaves a sum whose rounding error is a number, and what the
  // low part takes is below a third of a last place of sums of at least 1/4. That the product with
  // the low part is exact shows in no sum: every argument has been tried.
  template <class D, class V, size_t K>
  static HWY_INLINE void NearInFull(D d, const V (&x)[K], Reduced<D> (&u)[K]) {
    const V middle = hn::Set(d, kPiMiddle * kUnit), least = hn::Set(d, kPiLow * kUnit);
    V n[K], y[K], sum[K];
    for (size_t k = 0; k < K; ++k) NearestTurn(d, x[k], u[k].k, n[k]);
    EndStep(n);
    for (size_t k = 0; k < K; ++k) y[k] = LessHigh(d, x[k], n[k]);
    EndStep(y);
    for (size_t k = 0; k < K; ++k) sum[k] = SubExactProduct(n[k], middle, y[k]);
    EndStep(sum);
    for (size_t k = 0; k < K; ++k) y[k] = hn::Sub(sum[k], y[k]);
    EndStep(y);
    for (size_t k = 0; k < K; ++k) u[k].excess = AddExactProduct(n[k], middle, y[k]);
    for (size_t k = 0; k < K; ++k) u[k].y = HiddenNegMulAdd(n[k], least, sum[k]);
  }

  // Roughly: x less n times u's high part and the rest of it, the former difference a number, as no
  // n but 0 goes with small x. In double precision the same turn comes out, and both differences
  // are exact.
  template <class D, class V, size_t K>
  static HWY_INLINE void NearRoughly([[maybe_unused]] D d, const V (&x)[K], Reduced<D> (&u)[K]) {
    static_assert(kTurn != Turn::kCosine);
#if HWY_TARGET == HWY_SSE4
    const hn::Repartition<double, D> wide;
    using W = VecOf<decltype(wide)>;
    const auto reduce = [wide](W part, W& turn) HWY_ATTR {
      const W shifter = hn::Set(wide, 0x1.8p52);
      turn = hn::Add(hn::Mul(part, hn::Set(wide, double{kInverse})), shifter);
      const W n = hn::Sub(turn, shifter);
      const W rest = hn::Sub(part, hn::Mul(n, hn::Set(wide, double{kPiHigh * kUnit})));
      return hn::Sub(rest, hn::Mul(n, hn::Set(wide, double{kPiRest * kUnit}))).raw;
    };
    for (size_t k = 0; k < K; ++k) {
      const WideHalves halves = InHalves(x[k]);
      W turn0, turn1;
      const __m128d y0 = reduce(halves.lower, turn0), y1 = reduce(halves.upper, turn1);
      u[k].y = V{_mm_movelh_ps(_mm_cvtpd_ps(y0), _mm_cvtpd_ps(y1))};
      u[k].k = BitsOf<D>{_mm_castps_si128(_mm_shuffle_ps(
          _mm_castpd_ps(turn0.raw), _mm_castpd_ps(turn1.raw), _MM_SHUFFLE(2, 0, 2, 0)))};
    }
#else
    V n[K], y[K];
    for (size_t k = 0; k < K; ++k) NearestTurn(d, x[k], u[k].k, n[k]);
    EndStep(n);
    for (size_t k = 0; k < K; ++k) y[k] = LessHigh(d, x[k], n[k]);
    EndStep(y);
    for (size_t k = 0; k < K; ++k) {
      y[k] = HiddenNegMulAdd(n[k], hn::Set(d, kPiRest * kUnit), y[k]);
    }
    EndStep(y);
    for (size_t k = 0; k < K; ++k) u[k].y = y[k];
#endif
  }

  // For arguments from kLeast up to kLimit, some vectors in steps.
  template <Care kCare, class D, class V, size_t K>
  static HWY_INLINE void NearGroup(D d, const V (&x)[K], Reduced<D> (&u)[K]) {
    static_assert(kCare != Care::kFull || kQuarter);
    if constexpr (kCare == Care::kFull) return NearInFull(d, x, u);
    if constexpr (kCare == Care::kRough && kTurn != Turn::kCosine) return NearRoughly(d, x, u);
    V n[K], y[K], sum[K];
    const V inverse = ConstantOf<K>(hn::Set(d, kInverse));
    if constexpr (kTurn == Turn::kCosine) {
      const V quarter_turn = ConstantOf<K>(hn::Set(d, 0x1.921fb6p+0f));
      for (size_t k = 0; k < K; ++k) n[k] = hn::Add(x[k], quarter_turn);
      EndStep(n);
      for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], inverse);
    } else {
      for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(x[k], inverse);
    }
    EndStep(n);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], hn::Set(d, kShifter));
    EndStep(n);
    for (size_t k = 0; k < K; ++k) u[k].k = Bits(d, n[k]);
    for (size_t k = 0; k < K; ++k) {
      n[k] = kTurn == Turn::kCosine ? LessShifterAndHalf(d, n[k])
                                    : hn::Sub(n[k], hn::Set(d, kShifter));
    }
    EndStep(n);
    for (size_t k = 0; k < K; ++k) y[k] = Remainder(d, x[k], n[k], hn::Set(d, kPiHigh * kUnit));
    EndStep(y);
    if constexpr (kCare == Care::kRough) {
      for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], hn::Set(d, kPiRest * kUnit));
      for (size_t k = 0; k < K; ++k) y[k] = hn::Sub(y[k], n[k]);
      EndStep(y);
      for (size_t k = 0; k < K; ++k) u[k].y = y[k];
      return;
    }
    const V middle = hn::Set(d, kPiMiddle * kUnit), least = hn::Set(d, kPiLow * kUnit);
    for (size_t k = 0; k < K; ++k) sum[k] = Remainder(d, y[k], n[k], middle);
    EndStep(sum);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(n[k], least);
    EndStep(n);
    for (size_t k = 0; k < K; ++k) u[k].y = sum[k];
    for (size_t k = 0; k < K; ++k) u[k].excess = n[k];
  }
  template <Care kCare, class D, class V>
  static HWY_INLINE Reduced<D> Near(D d, V x) {
    Reduced<D> u[1];
    NearGroup<kCare>(d, {x}, u);
    return u[0];
  }

  // In double precision, for floats below kWideLimit in magnitude. Multiples of u's high part have
  // no bits below 2^-52, nor have floats that are more than a quarter of it.
  template <class D, class V>
  static HWY_INLINE Reduced<D> NearWide(D d, V x) {
    const V shifter = hn::Set(d, 0x1.8p52);
    V turns = hn::Mul(x, hn::Set(d, 0x1.45f306dc9c883p-2 / kUnit));
    if (kTurn == Turn::kCosine) turns = hn::Add(turns, hn::Set(d, 0.5));
    const V quotient = hn::Add(turns, shifter);
    V n = hn::Sub(quotient, shifter);
    if (kTurn == Turn::kCosine) n = hn::Sub(n, hn::Set(d, 0.5));
    const V y = Remainder(d, x, n, hn::Set(d, 0x1.921fb54442d18p+1 * kUnit));
    return {hn::Sub(y, hn::Mul(n, hn::Set(d, 0x1.1a62633145c07p-53 * kUnit))), Bits(d, quotient)};
  }

  // In double precision, for floats of at least 1: x is the argument divided by 2^(8 row), in
  // [1, 256). The three products with the parts of 1/pi are x/pi mod 2, the first two exact. What
  // the sum of the first two is off an integer is exact too where it is small, so that y has a
  // relative error of a few 2^-53.
  template <class D, class V>
  static HWY_INLINE Reduced<D> Far(D d, V x, BitsOf<hn::Rebind<float, D>> row) {
    const V shifter = hn::Set(d, 0x1.8p52);
    const auto inverse = InversePiAt(d, row);
    if (kQuarter) x = hn::Add(x, x);
    const V high = hn::Mul(x, inverse.high);
    const V middle = hn::Mul(x, inverse.middle);
    const V low = hn::Mul(x, inverse.low);
    const V k1 = hn::Add(high, shifter);
    V rest = hn::Sub(high, hn::Sub(k1, shifter));
    if (kTurn == Turn::kCosine) rest = hn::Add(rest, hn::Set(d, 0.5));
    const V k2 = hn::Add(hn::Add(rest, middle), shifter);
    const V turns = hn::Add(hn::Add(hn::Sub(rest, hn::Sub(k2, shifter)), middle), low);
    return {hn::Mul(turns, hn::Set(d, 0x1.921fb54442d18p+1 * kUnit)),
            hn::Add(Bits(d, k1), Bits(d, k2))};
  }

  // The same for vectors of floats of at least 1 in magnitude, finite.
  template <class D, class V>
  static HWY_INLINE Reduced<hn::Rebind<double, D>> FarWide(D d, V x) {
    const hn::Rebind<double, D> wide;
    const auto above_one = hn::Sub(Bits(d, x), SetBits(d, 0x3F800000));
    const auto scaled = hn::Add(hn::And(above_one, SetBits(d, 0x83FFFFFF)), SetBits(d, 0x3F800000));
    return Far(wide, hn::PromoteTo(wide, FromBits(d, scaled)), hn::ShiftRight<26>(above_one));
  }

  // In double precision, for all finite floats.
  template <class D, class V>
  static HWY_INLINE Reduced<hn::Rebind<double, D>> WholeWide(D d, V x) {
    const hn::Rebind<double, D> wide;
    const auto near_mask = MagnitudeBelow(d, x, kWideLimit);
    const auto near =
        NearWide(wide, hn::PromoteTo(wide, Selected(hn::IfThenElseZero(near_mask, x))));
    const auto far = FarWide(d, Selected(hn::IfThenElse(near_mask, hn::Set(d, 1.0f), x)));
    const auto select = MagnitudeBelow(wide, hn::PromoteTo(wide, x), double{kWideLimit});
    const auto y = hn::IfThenElse(select, near.y, far.y);
    return {y, Bits(wide, hn::IfThenElse(select, FromBits(wide, near.k), FromBits(wide, far.k)))};
  }

  // In single precision, for all finite arguments of at least kLeast.
  template <Care kCare, class D, class V>
  static HWY_INLINE Reduced<D> Whole(D d, V x) {
    const V one = hn::Set(d, 1.0f);
    const auto near_mask = MagnitudeBelow(d, x, kLimit);
    const Reduced<D> near = Near<kCare>(d, Selected(hn::IfThenElse(near_mask, x, one)));
    if (hn::AllTrue(d, near_mask)) return near;
    const V far_x = Selected(hn::IfThenElse(near_mask, one, x));
    const hn::Half<D> half;
    const auto lower = FarNarrow(half, hn::LowerHalf(half, far_x));
    const auto upper = FarNarrow(half, hn::UpperHalf(half, far_x));
    const V k = hn::Combine(d, upper.k, lower.k);
    return {hn::IfThenElse(near_mask, near.y, hn::Combine(d, upper.y, lower.y)),
            Bits(d, hn::IfThenElse(near_mask, FromBits(d, near.k), k)),
            hn::IfThenElse(near_mask, near.excess, hn::Combine(d, upper.excess, lower.excess))};
  }

  // Far, rounded to single precision; k in the lowest bits of a float.
  template <class D>
  struct Rounded {
    VecOf<D> y, k, excess;
  };
  template <class D, class V>
  static HWY_INLINE Rounded<D> FarNarrow(D d, V x) {
    const hn::Rebind<double, D> wide;
    const auto far = FarWide(d, x);
    const V y = hn::DemoteTo(d, far.y);
    const auto offset = hn::Set(wide, 0x1p52);  // its lowest bits are those of k mod 4
    const auto k = hn::Or(hn::And(far.k, SetBits(wide, 3)), Bits(wide, offset));
    const V k_narrow = hn::DemoteTo(d, hn::Sub(FromBits(wide, k), offset));
    // The sines of half turns take an excess only where it is far below a last place.
    const V excess =
        kQuarter ? hn::DemoteTo(d, hn::Sub(hn::PromoteTo(wide, y), far.y)) : hn::Zero(d);
    return {y, hn::Add(k_narrow, hn::Set(d, 0x1p23f)), excess};
  }
};

// Kernels of a function with a formula for the reduced argument: a Main for what the fast reduction
// covers, and its Wide companion for all finite arguments.
template <class Formula>
struct TrigNarrow : Kernel<float> {
  static constexpr int kUnroll = Formula::kUnroll;
  static constexpr int kResults = Formula::kResults;
  using Reduce = Reduction<Formula::kTurn>;
  using Rarity = Reduce;
  template <class D, class V, size_t K>
  requires(kResults == 1) static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Reduced<D> u[K];
    Reduce::template NearGroup<Formula::kCare>(d, x, u);
    Formula::Group(d, u, r);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, V& sine, V& cosine) {
    Formula::Of(d, Reduce::template Near<Formula::kCare>(d, x), sine, cosine);
  }
  template <class... R>
  static HWY_INLINE int Rare(float x, R*... r) {
    return sTrigScalar(x, r...);
  }
  // Tiny arguments have their limit as result.
  struct Wide : Kernel<float> {
    static constexpr int kUnroll = 2;
    static constexpr int kResults = Formula::kResults;
    using Rarity = RareAbove<float, 0x7F7FFFFF>;
    template <class D, class V>
    static HWY_INLINE V Main(D d, V x) {
      const V one = hn::Set(d, 1.0f);
      const auto tiny = MagnitudeBelow(d, x, Reduce::kLeast);
      const Reduced<D> u[1] = {
          Reduce::template Whole<Formula::kCare>(d, Selected(hn::IfThenElse(tiny, one, x)))};
      V r[1];
      Formula::Group(d, u, r);
      return hn::IfThenElse(tiny, Formula::kTurn == Turn::kCosine ? one : x, r[0]);
    }
    template <class D, class V>
    static HWY_INLINE void Main(D d, V x, V& sine, V& cosine) {
      const V one = hn::Set(d, 1.0f);
      const auto tiny = MagnitudeBelow(d, x, Reduce::kLeast);
      Formula::Of(d,
                  Reduce::template Whole<Formula::kCare>(d, Selected(hn::IfThenElse(tiny, one, x))),
                  sine, cosine);
      sine = hn::IfThenElse(tiny, x, sine);
      cosine = hn::IfThenElse(tiny, one, cosine);
    }
    template <class... R>
    static HWY_INLINE int Rare(float x, R*... r) {
      return sTrigScalar(x, r...);
    }
  };
};

// The same in double precision: vectors of half as many floats, computed to some 42 bits. Results
// that are so near the midpoint between two floats that the error could decide are settled one by
// one.
template <class Formula>
struct TrigWide : Kernel<float, double> {
  static constexpr int kUnroll = Formula::kUnroll;
  static constexpr int kResults = Formula::kResults;
  using Reduce = Reduction<Formula::kTurn>;
  using Rarity = RareAbove<float, BitsOfNumber(kWideLimit) - 1>;

  // The distance from a midpoint in last places of a double is 2^kDoubt or less.
  template <class D, class V>
  static HWY_INLINE MaskOf<D> InDoubt(D d, V v) {
    const auto above = hn::Add(Bits(d, v), SetBits(d, (1ull << 28) + (1ull << Formula::kDoubt)));
    constexpr uint64_t kMask = (1ull << 29) - (1ull << (Formula::kDoubt + 1));
    return hn::RebindMask(d, hn::Eq(hn::And(above, SetBits(d, kMask)), SetBits(d, 0)));
  }
  template <class D, class V, class W>
  static HWY_NOINLINE W Settled(D d, V x, W v, sSettle settle) {
    const hn::Rebind<double, D> wide;
    HWY_ALIGN float xs[hn::MaxLanes(D())];
    HWY_ALIGN double vs[hn::MaxLanes(D())];
    hn::Store(x, d, xs);
    hn::Store(v, wide, vs);
    for (size_t i = 0; i < hn::Lanes(d); ++i) vs[i] = settle(xs[i], vs[i], Formula::kDoubt);
    return hn::Load(wide, vs);
  }

  template <bool kWhole, class D, class V>
  static HWY_INLINE auto Reduced(D d, V x) {
    const hn::Rebind<double, D> wide;
    if constexpr (kWhole) {
      return Reduce::WholeWide(d, x);
    } else {
      return Reduce::NearWide(wide, hn::PromoteTo(wide, x));
    }
  }
  template <bool kWhole, class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&r)[K]) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> v[K];
    for (size_t k = 0; k < K; ++k) v[k] = Formula::Of(wide, Reduced<kWhole>(d, x[k]));
    auto doubt = InDoubt(wide, v[0]);
    for (size_t k = 1; k < K; ++k) doubt = hn::Or(doubt, InDoubt(wide, v[k]));
    if (!hn::AllFalse(wide, doubt)) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) v[k] = Settled(d, x[k], v[k], Formula::kSettle);
    }
    for (size_t k = 0; k < K; ++k) r[k] = hn::DemoteTo(d, v[k]);
  }
  template <bool kWhole, class D, class V>
  static HWY_INLINE void Two(D d, V x, V& r1, V& r2) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> v1, v2;
    Formula::Of(wide, Reduced<kWhole>(d, x), v1, v2);
    const auto doubt = hn::Or(InDoubt(wide, v1), InDoubt(wide, v2));
    if (!hn::AllFalse(wide, doubt)) [[unlikely]] {
      v1 = Settled(d, x, v1, sSettleSine);
      v2 = Settled(d, x, v2, sSettleCosine);
    }
    r1 = hn::DemoteTo(d, v1);
    r2 = hn::DemoteTo(d, v2);
  }

  template <class D, class V, size_t K>
  requires(kResults == 1) static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Group<false>(d, x, r);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, V& r1, V& r2) {
    Two<false>(d, x, r1, r2);
  }
  template <class... R>
  static HWY_INLINE int Rare(float x, R*... r) {
    return sTrigScalar(x, r...);
  }

  struct Wide : Kernel<float, double> {
    static constexpr int kUnroll = 2;
    static constexpr int kResults = Formula::kResults;
    using Rarity = RareAbove<float, 0x7F7FFFFF>;
    template <class D, class V, size_t K>
    requires(kResults == 1) static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
      Group<true>(d, x, r);
    }
    template <class D, class V>
    static HWY_INLINE void Main(D d, V x, V& r1, V& r2) {
      Two<true>(d, x, r1, r2);
    }
    template <class... R>
    static HWY_INLINE int Rare(float x, R*... r) {
      return sTrigScalar(x, r...);
    }
  };
};

// Lanes with an odd k.
template <class D>
HWY_INLINE MaskOf<D> OddQuarter(D d, BitsOf<D> k) {
  return hn::RebindMask(d, hn::TestBit(k, SetBits(d, 1)));
}

// (-1)^k sin y: the sine and the cosine. The cosine's polynomials give 1 at pi/2.
template <class Half>
struct sSineNarrow {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 8, kResults = 1;
  static constexpr Turn kTurn = Half::kTurn;
  static constexpr Care kCare = Half::kCare;
  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const Reduced<D> (&u)[K], V (&r)[K]) {
    V s[K], p[K];
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(u[k].y, u[k].y);
    EndStep(s);
    HornerInSteps(d, s, Half::kPolynomial, p);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(u[k].y, s[k]);
    EndStep(s);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(s[k], p[k]);
    EndStep(p);
    if (Half::kCare != Care::kRough) {
      for (size_t k = 0; k < K; ++k) p[k] = hn::Sub(p[k], u[k].excess);
      EndStep(p);
    }
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(u[k].y, p[k]);
    EndStep(p);
    for (size_t k = 0; k < K; ++k) {
      r[k] = hn::Xor(p[k], FromBits(d, hn::ShiftLeft<31>(u[k].k)));
    }
  }
};

template <Turn kTurnOf, sSettle kSettleOf>
struct sSineHA {
  static constexpr int kUnroll = 4, kResults = 1, kDoubt = 10;
  static constexpr Turn kTurn = kTurnOf;
  static constexpr sSettle kSettle = kSettleOf;
  template <class D>
  static HWY_INLINE VecOf<D> Of(D d, Reduced<D> u) {
    const auto s = hn::Mul(u.y, u.y);
    const auto p = EvenOdd(d, s, hn::Mul(s, s), sSinHAPolynomial);
    const auto sum = hn::Add(hn::Mul(hn::Mul(u.y, s), p), u.y);
    return hn::Xor(kTurn == Turn::kSine ? KeepSign(d, sum, u.y) : sum,
                   FromBits(d, hn::ShiftLeft<63>(u.k)));
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_SINGLE_INL_H_
