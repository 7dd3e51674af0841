// Reduction for the HA kernels, to y = x - a about points a near multiples of pi/16, and sine
// and cosine from it.
//
// x = a + high - low, where x - n (pi/16) is exact for the double next to pi/16: high is that, and
// low are the rest of n pi/16 and the point's distance from its multiple. The leading terms
// sin(a) + cos(a) high are then summed without an error, and low goes to the small terms.

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/trig_sixteenth-inl.h"

#if defined(PEX_CORE__HEAP_REAL_TRIG_FINE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_TRIG_FINE_INL_H_
#undef PEX_CORE__HEAP_REAL_TRIG_FINE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_TRIG_FINE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// n pi/16 for |n| <= 2^15, counted in units of 2^14: the first part, the rest of it, and that in
// two parts more of fewer bits. All products with them but the rest's are exact.
inline constexpr double kUnit = 0x1p14;
inline constexpr double kSteps = 0x1.45f306dc9c883p+2 / kUnit;
inline constexpr double kSixteenth1 = 0x1.921fb54442d18p-3 * kUnit;
inline constexpr double kSixteenth1Upper = 0x1.921fb5444p-3 * kUnit;
inline constexpr double kSixteenthRest = 0x1.1a62633145c07p-57 * kUnit;
inline constexpr double kSixteenthRestUpper = 0x1.1a62p-57 * kUnit;
inline constexpr double kSixteenth2 = 0x1.1a6263314p-57 * kUnit;
inline constexpr double kSixteenth3 = 0x1.701b839a2p-95 * kUnit;

// Those are the arguments that are less than 2 of these units, by an exponent's highest bit.
inline constexpr double kFineLimit = 0x1.921fb54442d18p+12;
static_assert(kFineLimit * kSteps >= 2);
static_assert(__builtin_bit_cast(double, __builtin_bit_cast(uint64_t, kFineLimit) - 1) * kSteps <
              2);

// y = high - low, rounded; sine and cosine of a but for the sign of bit 4 of `index`. Rows() puts
// the points' offsets from their multiples into low.
template <class D, size_t K>
struct FineAngles {
  VecOf<D> high[K], low[K], y[K], sin[K], cos[K];
  BitsOf<D> index[K];
  HWY_INLINE void Rows() { TrigRowsAt(D(), index, low, sin, cos); }
};

// Of any arguments, without flags on AVX-512.
template <class D, class V, size_t K>
HWY_INLINE void FineSteps(D d, const V (&x)[K], V (&n)[K]) {
  for (size_t k = 0; k < K; ++k) n[k] = SilentMul(x[k], hn::Set(d, kSteps));
  EndStep(n);
}

// From the steps: their integers.
template <class U, class D, class V, size_t K>
HWY_INLINE void NearestFine(D d, U& u, V (&n)[K]) {
  const V shifter = hn::Set(d, (kShifter + 8) / kUnit);  // rows begin at -8
  for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], shifter);
  EndStep(n);
  for (size_t k = 0; k < K; ++k) {
    u.index[k] = Bits(d, n[k]);
    n[k] = hn::Sub(n[k], shifter);
  }
  EndStep(n);
}

template <class U, class D, class V, size_t K>
HWY_INLINE void SubtractFine(D d, const V (&x)[K], const V (&n)[K], U& u) {
#if HWY_TARGET == HWY_AVX3
  for (size_t k = 0; k < K; ++k) {
    u.high[k] = V{_mm512_fnmadd_round_pd(n[k].raw, hn::Set(d, kSixteenth1).raw, x[k].raw,
                                         _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)};
  }
#else
  SubProductsExactly(d, x, n, kSixteenth1, kSixteenth1Upper, u.high);
#endif
  EndStep(u.high);
  u.Rows();
  // An offset has no bits below 2^-73.
  for (size_t k = 0; k < K; ++k) {
    u.low[k] = PartsMulAdd(d, n[k], kSixteenthRest, kSixteenthRestUpper, u.low[k]);
  }
  EndStep(u.low);
  for (size_t k = 0; k < K; ++k) u.y[k] = hn::Sub(u.high[k], u.low[k]);
  EndStep(u.y);
}

// Whether a y is below 2^-31.5 in magnitude, by its square, which is below 1: larger ones have all
// these bits of the exponent. Closer to a zero the rounding of low would show.
inline constexpr uint64_t kNotNear = uint64_t{0x3C0} << 52;

template <class D, class V, size_t K>
HWY_INLINE bool AnyNear(D d, const V (&y2)[K]) {
  auto joined = Bits(d, y2[0]);
#if HWY_TARGET == HWY_AVX3
  for (size_t k = 1; k + 1 < K; k += 2) {
    joined.raw = _mm512_ternarylogic_epi64(joined.raw, Bits(d, y2[k]).raw, Bits(d, y2[k + 1]).raw,
                                           0x80);  // the bits of all three
  }
  if constexpr (K % 2 == 0) joined = hn::And(joined, Bits(d, y2[K - 1]));
  return _mm512_test_epi64_mask(hn::Not(joined).raw, SetBits(d, kNotNear).raw) != 0;
#else
  for (size_t k = 1; k < K; ++k) joined = hn::And(joined, Bits(d, y2[k]));
#if HWY_TARGET == HWY_AVX2
  return !_mm256_testc_si256(joined.raw, SetBits(d, kNotNear).raw);
#else
  return !_mm_testc_si128(joined.raw, SetBits(d, kNotNear).raw);
#endif
#endif
}

#if HWY_TARGET == HWY_AVX3
// The same, or whether steps are beyond the limit.
template <class D, class V, size_t K>
HWY_INLINE bool AnyNearOrLarge(D d, const V (&steps)[K], const V (&y2)[K]) {
  __m512i all = Bits(d, y2[0]).raw, any = Bits(d, steps[0]).raw;
  for (size_t k = 1; k + 1 < K; k += 2) {
    const __m512i next = Bits(d, y2[k]).raw, last = Bits(d, y2[k + 1]).raw;
    all = _mm512_ternarylogic_epi64(all, next, last, 0x80);  // the bits of all three
    any = hn::Or3(BitsOf<D>{any}, Bits(d, steps[k]), Bits(d, steps[k + 1])).raw;
  }
  if constexpr (K % 2 == 0) {
    all = hn::And(BitsOf<D>{all}, Bits(d, y2[K - 1])).raw;
    any = hn::Or(BitsOf<D>{any}, Bits(d, steps[K - 1])).raw;
  }
  const auto bits = SetBits(d, kNotNear | uint64_t{1} << 62);
  // Wrong bits: those of `any` that are set, and of the others those of `all` that are not.
  const __m512i wrong = _mm512_ternarylogic_epi64(all, any, SetBits(d, kNotNear).raw, 0x4E);
  return _mm512_test_epi64_mask(wrong, bits.raw) != 0;
}
#endif

template <class D, class V>
HWY_INLINE MaskOf<D> NearLanes(D d, V y2) {
  const auto bits = SetBits(d, kNotNear);
  return hn::RebindMask(d, hn::Ne(hn::And(Bits(d, y2), bits), bits));
}

// Lanes of every kind, reduced. Of a large one first the quadrants are taken off, each eight steps.
template <class U, class D, class V, size_t K>
HWY_INLINE void ReduceFineWide(D d, const TrigLanes<D, K>& lanes, const V (&x)[K], U& u,
                               V (&y2)[K]) {
  V x1[K], rest[K], n[K];
  BitsOf<D> steps[K];
  if (lanes.any_large) {
    for (size_t k = 0; k < K; ++k) {
      const auto large = ReduceLargeLanes(d, lanes.large[k], x[k]);
      x1[k] = hn::IfThenElse(lanes.large[k], large.r.hi, lanes.x[k]);
      rest[k] = hn::IfThenElseZero(lanes.large[k], large.r.lo);
      steps[k] = hn::ShiftLeft<3>(
          Bits(d, hn::IfThenElseZero(lanes.large[k], FromBits(d, large.quadrant))));
    }
  } else {
    for (size_t k = 0; k < K; ++k) {
      x1[k] = lanes.x[k];
      rest[k] = hn::Zero(d);
      steps[k] = SetBits(d, 0);
    }
  }
  FineSteps(d, x1, n);
  NearestFine(d, u, n);
  for (size_t k = 0; k < K; ++k) u.index[k] = hn::Add(u.index[k], steps[k]);
  U at = u;
  at.Rows();
  SubtractFine(d, x1, n, u);
  for (size_t k = 0; k < K; ++k) {
    // Near ones again, in full; of large ones the number that remained goes to low.
    const auto near = hn::AndNot(lanes.large[k], NearLanes(d, hn::Mul(u.y[k], u.y[k])));
    const V part2 = hn::Set(d, kSixteenth2);
    const V high = SubExactProduct(n[k], part2, u.high[k]);
    const V error = SubExactProduct(n[k], part2, hn::Sub(u.high[k], high));
    const V low = hn::Sub(hn::Mul(n[k], hn::Set(d, kSixteenth3)), error);
    u.high[k] = hn::IfThenElse(near, high, u.high[k]);
    u.low[k] = hn::IfThenElse(near, hn::Add(low, at.low[k]), u.low[k]);
    u.low[k] = hn::IfThenElse(lanes.large[k], hn::Sub(u.low[k], rest[k]), u.low[k]);
    u.y[k] = hn::Sub(u.high[k], u.low[k]);
    y2[k] = hn::Mul(u.y[k], u.y[k]);
  }
}

// (sin(y) - y)/(y y2) and (cos(y) - 1)/y2. The first products are exact: of the square 26 bits.
template <class D, class V, size_t K>
HWY_INLINE void FinePolynomials(D d, const V (&y2)[K], V (&s)[K], V (&c)[K]) {
  V w[K];
  for (size_t k = 0; k < K; ++k) {
    w[k] = FromBits(d, hn::And(Bits(d, y2[k]), SetBits(d, ~uint64_t{0} << 27)));
  }
  for (size_t k = 0; k < K; ++k) {
    s[k] = AddExactProduct(w[k], hn::Set(d, kSinFine[3]), hn::Set(d, kSinFine[2]));
    c[k] = AddExactProduct(w[k], hn::Set(d, kCosFine[3]), hn::Set(d, kCosFine[2]));
  }
  for (size_t i = 2; i-- > 0;) {
    EndStep(s);
    EndStep(c);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Mul(s[k], y2[k]);
    for (size_t k = 0; k < K; ++k) c[k] = hn::Mul(c[k], y2[k]);
    EndStep(s);
    EndStep(c);
    for (size_t k = 0; k < K; ++k) s[k] = hn::Add(s[k], hn::Set(d, kSinFine[i]));
    for (size_t k = 0; k < K; ++k) c[k] = hn::Add(c[k], hn::Set(d, kCosFine[i]));
  }
}

// The sine or cosine of a + y but for the sign.
template <Wave kWave, class D, class V, size_t K>
HWY_INLINE void FineWave(D d, const FineAngles<D, K>& u, const V (&y2)[K], V (&s)[K], V (&c)[K],
                         V (&r)[K]) {
  constexpr bool kSine = kWave == Wave::kSine;
  const auto& sin = u.sin;
  const auto& cos = u.cos;
  V p[K], hi[K], less[K];
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(kSine ? cos[k] : sin[k], u.y[k]);
  for (size_t k = 0; k < K; ++k) {
    hi[k] = kSine ? hn::Add(sin[k], p[k]) : hn::Sub(cos[k], p[k]);
    s[k] = hn::Mul(s[k], p[k]);
    c[k] = hn::Mul(c[k], kSine ? sin[k] : cos[k]);
  }
  EndStep(s);
  for (size_t k = 0; k < K; ++k) {
    less[k] = kSine ? hn::Sub(hi[k], sin[k]) : hn::Sub(cos[k], hi[k]);
    c[k] = kSine ? hn::Add(c[k], s[k]) : hn::Sub(c[k], s[k]);
  }
  EndStep(less);
  for (size_t k = 0; k < K; ++k) {
    less[k] = Remainder(d, less[k], kSine ? cos[k] : sin[k], u.high[k]);
    c[k] = hn::Mul(c[k], y2[k]);
    s[k] = hn::Mul(kSine ? cos[k] : sin[k], u.low[k]);
  }
  EndStep(less);
  for (size_t k = 0; k < K; ++k) less[k] = hn::Add(less[k], s[k]);
  for (size_t k = 0; k < K; ++k) c[k] = kSine ? hn::Sub(c[k], less[k]) : hn::Add(c[k], less[k]);
  for (size_t k = 0; k < K; ++k) r[k] = FlipSign<4>(d, hn::Add(hi[k], c[k]), u.index[k]);
}

// Usual arguments' reduction, and y^2. False for groups with a lane near a zero, or a large one.
template <class U, class D, class V, size_t K>
HWY_INLINE bool ReduceFine(D d, const V (&x)[K], U& u, V (&y2)[K]) {
  V n[K];
#if HWY_TARGET == HWY_AVX3
  V steps[K];
  FineSteps(d, x, steps);
  for (size_t k = 0; k < K; ++k) n[k] = steps[k];
#else
  FineSteps(d, x, n);
#endif
  NearestFine(d, u, n);
  SubtractFine(d, x, n, u);
  for (size_t k = 0; k < K; ++k) y2[k] = SilentMul(u.y[k], u.y[k]);
#if HWY_TARGET == HWY_AVX3
  return !AnyNearOrLarge(d, steps, y2);
#else
  return !AnyNear(d, y2);
#endif
}

// On AVX-512 the usual arguments are told with the others' reduction, which raises no flags.
struct FineUsual {
  template <class D, size_t K>
  static HWY_INLINE bool All([[maybe_unused]] D d, [[maybe_unused]] const VecOf<D> (&x)[K]) {
#if HWY_TARGET == HWY_AVX3
    return true;
#else
    return UsualExponents<-20, 5>::All(d, x);
#endif
  }
};

// The first part for usual arguments: their reduction, and y^2.
template <class U, class D, class V, size_t K>
HWY_INLINE void ReduceFinePart(D d, const V* arguments, U& u, V (&y2)[K]) {
  V x[K], n[K];
  for (size_t k = 0; k < K; ++k) x[k] = arguments[k];
  FineSteps(d, x, n);
  NearestFine(d, u, n);
  SubtractFine(d, x, n, u);
  for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
  EndPart(y2);
}

// The sine or cosine of usual arguments in parts: on AVX2 one after another, for all vectors of a
// group, they take a tenth less.
template <Wave kWave, class D, size_t K>
struct WaveFinePart {
  static constexpr size_t kSize = K;
  using V = VecOf<D>;
  FineAngles<D, K> u;
  V y2[K], s[K], c[K];

  HWY_INLINE void Reduce(const V* x) { ReduceFinePart(D(), x, u, y2); }
  HWY_INLINE void Evaluate() {
    FinePolynomials(D(), y2, s, c);
    EndPart(s);
    EndPart(c);
  }
  HWY_INLINE void Result(const V*, V* r) {
    V wave[K];
    FineWave<kWave>(D(), u, y2, s, c, wave);
    EndPart(wave);
    for (size_t k = 0; k < K; ++k) r[k] = wave[k];
  }
};

// Sine or cosine in full: one rounding, and a few hundredths of an ulp before.
template <Wave kWave>
struct WaveHA {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : HWY_TARGET == HWY_AVX2 ? 8 : 4;
  static constexpr size_t kRestUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
  static constexpr double kTiny = 0x1p-27;
  using Usual = FineUsual;

  template <class D, class V, size_t K>
  static HWY_INLINE bool Group(D d, const V (&x)[K], V (&r)[K]) {
    V y2[K];
    if constexpr (HWY_TARGET == HWY_AVX2 && K > 4) {
      WaveFinePart<kWave, D, 1> parts[K];
      SomeInTurn<K>(parts, x, r);
      for (size_t k = 0; k < K; ++k) y2[k] = parts[k].y2[0];
      return !AnyNear(d, y2);
    } else {
      FineAngles<D, K> u;
      if (!ReduceFine(d, x, u, y2)) [[unlikely]]
        return false;
      Finish(d, u, y2, r);
      return true;
    }
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, kTiny, kFineLimit);
    FineAngles<D, K> u;
    V y2[K];
    ReduceFineWide(d, lanes, x, u, y2);
    Finish(d, u, y2, r);
    for (size_t k = 0; k < K; ++k) {
      const V limit = kWave == Wave::kSine ? x[k] : hn::Set(d, 1.0);
      r[k] = hn::IfThenElse(lanes.tiny[k], limit, r[k]);
    }
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const FineAngles<D, K>& u, const V (&y2)[K], V (&r)[K]) {
    if constexpr (HWY_TARGET == HWY_AVX3 && K > 2) {  // what waits for its turn stays in memory
#pragma GCC unroll 8
      for (size_t k = 0; k < K; ++k) {
        const FineAngles<D, 1> at = {{u.high[k]}, {u.low[k]}, {u.y[k]},
                                     {u.sin[k]},  {u.cos[k]}, {u.index[k]}};
        V result[1];
        Finish(d, at, {y2[k]}, result);
        r[k] = result[0];
      }
    } else {
      V s[K], c[K];
      FinePolynomials(d, y2, s, c);
      FineWave<kWave>(d, u, y2, s, c, r);
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_TRIG_FINE_INL_H_
