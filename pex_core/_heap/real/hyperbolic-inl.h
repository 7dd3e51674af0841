// What cosh, sinh and tanh share: argument reduction by points x[j] beside the eighths of ln2,
// whose exponentials come from registers.
//
// |x| = n ln2 + x[j] + r, k = 8 n + j, gives A = e^(|x| - r)/2 and B = e^-(|x| - r)/2, and with
// C = A + B and S = A - B
//   cosh x = C cosh r + S sinh r,   sinh |x| = S cosh r + C sinh r.
// For k = 0 that is C = 1, S = 0, r = |x| exactly, so there is no second regime near zero: A and B
// have no rounding errors that S could magnify, as both exponentials of a point are within 2^-65 of
// doubles (2^-31 of floats).

#include <cstdint>

#include "hwy/highway.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_heap/real/hyperbolic_polynomials.h"
#include "pex_core/_heap/real/hyperbolic_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_HYPERBOLIC_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_HYPERBOLIC_INL_H_
#undef PEX_CORE__HEAP_REAL_HYPERBOLIC_INL_H_
#else
#define PEX_CORE__HEAP_REAL_HYPERBOLIC_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX2
// The lower and the upper words of a table of 8 numbers of 64 bits.
struct EighthWords {
  alignas(32) uint32_t lower[8], upper[8];
  template <typename T>
  constexpr explicit EighthWords(const T (&table)[8]) : lower(), upper() {
    for (int j = 0; j < 8; ++j) {
      const auto bits = __builtin_bit_cast(uint64_t, table[j]);
      lower[j] = static_cast<uint32_t>(bits);
      upper[j] = static_cast<uint32_t>(bits >> 32);
    }
  }
};
template <const auto& kTable>
inline constexpr EighthWords kEighthWords{kTable};
#endif

// Entries k & 7 of tables of 8 doubles or of their bits; the other bits of k are of no concern.
template <class D>
struct EighthLookup {
#if HWY_TARGET == HWY_AVX3
  __m512i index;
  explicit HWY_INLINE EighthLookup(BitsOf<D> k) : index(k.raw) {}
  template <const auto& kTable>
  HWY_INLINE VecOf<D> Number() const {
    return VecOf<D>{_mm512_permutexvar_pd(index, _mm512_load_pd(kTable))};
  }
#elif HWY_TARGET == HWY_AVX2
  __m256i index;  // of both words
  explicit HWY_INLINE EighthLookup(BitsOf<D> k) : index(_mm256_shuffle_epi32(k.raw, 0xA0)) {}
  template <const auto& kTable>
  HWY_INLINE VecOf<D> Number() const {
    const auto words = [&](const uint32_t* table) HWY_ATTR {
      const auto eight = _mm256_load_si256(reinterpret_cast<const __m256i*>(table));
      return _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(eight, index));
    };
    constexpr const EighthWords& kWords = kEighthWords<kTable>;
    return VecOf<D>{
        _mm256_castps_pd(_mm256_blend_ps(words(kWords.lower), words(kWords.upper), 0xAA))};
  }
#else
  BitsOf<D> index;
  explicit HWY_INLINE EighthLookup(BitsOf<D> k) : index(hn::And(k, SetBits(D(), 7))) {}
  template <const auto& kTable>
  HWY_INLINE VecOf<D> Number() const {
    return hn::GatherIndex(D(), reinterpret_cast<const double*>(kTable), index);
  }
#endif
  template <const auto& kTable>
  HWY_INLINE BitsOf<D> Pattern() const {
    return Bits(D(), Number<kTable>());
  }
};

// Entries k & 7 of three tables of floats or of their bits, each standing twice in memory.
template <class V>
struct EighthRow {
  V first, second, third;
};
#if HWY_TARGET == HWY_SSE4
// The tables' rows, 16 bytes each.
struct EighthRows {
  alignas(16) uint32_t row[8][4];
  template <typename T1, typename T2, typename T3>
  constexpr EighthRows(const T1 (&first)[16], const T2 (&second)[16], const T3 (&third)[16])
      : row() {
    for (int j = 0; j < 8; ++j) {
      row[j][0] = __builtin_bit_cast(uint32_t, first[j]);
      row[j][1] = __builtin_bit_cast(uint32_t, second[j]);
      row[j][2] = __builtin_bit_cast(uint32_t, third[j]);
    }
  }
};
template <const auto& kFirst, const auto& kSecond, const auto& kThird>
inline constexpr EighthRows kEighthRows{kFirst, kSecond, kThird};
#endif

template <const auto& kFirst, const auto& kSecond, const auto& kThird, class D>
HWY_INLINE EighthRow<VecOf<D>> LookUpEighths(D d, BitsOf<D> k) {
#if HWY_TARGET == HWY_SSE4  // whole rows, then a transposition
  using V = VecOf<D>;
  const auto offsets = hn::ShiftLeft<4>(hn::And(k, SetBits(d, 7)));
  const auto row = [](uint64_t offset) HWY_ATTR {
    const auto rows = reinterpret_cast<const char*>(kEighthRows<kFirst, kSecond, kThird>.row);
    return _mm_load_ps(reinterpret_cast<const float*>(rows + offset));
  };
  const uint64_t lower = _mm_cvtsi128_si64(offsets.raw), upper = _mm_extract_epi64(offsets.raw, 1);
  const __m128 r0 = row(static_cast<uint32_t>(lower)), r1 = row(lower >> 32);
  const __m128 r2 = row(static_cast<uint32_t>(upper)), r3 = row(upper >> 32);
  const __m128 r01 = _mm_unpacklo_ps(r0, r1), r23 = _mm_unpacklo_ps(r2, r3);
  return {V{_mm_movelh_ps(r01, r23)}, V{_mm_movehl_ps(r23, r01)},
          V{_mm_movelh_ps(_mm_unpackhi_ps(r0, r1), _mm_unpackhi_ps(r2, r3))}};
#else
  const auto at = [&](const auto& table) HWY_ATTR {
    return LookupEighth(d, reinterpret_cast<const float*>(table), k);
  };
  return {at(kFirst), at(kSecond), at(kThird)};
#endif
}

// x and 2^-300 (single: 2^-38), for products that must not underflow and matter only beside 1. It
// changes no x whose square or product does matter there.
template <class D, class V>
HWY_INLINE V AboveUnderflow(D d, V x) {
  return hn::Add(x, hn::Set(d, sizeof(hn::TFromD<D>) == 8 ? 0x1p-300 : 0x1p-38f));
}

// x for products by SilentMul that matter only beside 1.
template <class D, class V>
HWY_INLINE V BesideOne(D d, V x) {
  if constexpr (kHasSilentMul<V>) return x;
  return AboveUnderflow(d, x);
}

// x c for a step's number.
template <class D, class V>
HWY_INLINE V StepsFromZero(D d, V x, hn::TFromD<D> c) {
  return SilentMul(BesideOne(d, x), hn::Set(d, c));
}

// c r^2 of floats beside 1, r below 2^-28 only if it stands for itself. 2^-60 changes no other r.
template <class D, class V>
HWY_INLINE V SquareBesideOne(D d, V r, float c) {
  const V w = kHasSilentMul<V> ? r : hn::Add(r, hn::Set(d, 0x1p-60f));
  return SilentMul(SilentMul(w, w), hn::Set(d, c));
}

template <class D, class V>
HWY_INLINE V SquareNearZero(D d, V r) {
  const V w = BesideOne(d, r);
  return SilentMul(w, w);
}

// |x|, 0 for tiny x, and the result of F for those other arguments with the sign of x put back; a
// tiny x is its own result.
template <class D, class V>
HWY_INLINE V MagnitudeUnlessTiny(D d, V x, hn::TFromD<D> tiny) {
  return Selected(hn::IfThenZeroElse(MagnitudeBelow(d, x, tiny), hn::Abs(x)));
}
template <class D, class V>
HWY_INLINE V SignedUnlessTiny(D d, V x, V magnitude, hn::TFromD<D> tiny) {
  return hn::IfThenElse(MagnitudeBelow(d, x, tiny), x, hn::CopySignToAbs(magnitude, x));
}

// k = round(x steps), in the low bits of a lane and as a number.
template <class D>
struct NearestStep {
  BitsOf<D> k;
  VecOf<D> kd;
};

// kUnit: a power of two by which both are multiplied.
template <int kUnit = 1, class D, class V>
HWY_INLINE NearestStep<D> ToNearestStep(D d, V steps) {
  const V shifter = hn::Set(d, kUnit * (sizeof(hn::TFromD<D>) == 8 ? 0x1.8p52 : 0x1.8p23f));
  const V kf = hn::Add(steps, shifter);
  return {Bits(d, kf), hn::Sub(kf, shifter)};
}

template <class D, class V>
HWY_INLINE NearestStep<D> ToNearestStep(D d, V x, hn::TFromD<D> steps) {
  return ToNearestStep(d, hn::Mul(x, hn::Set(d, steps)));
}

// ---- Cosh and sinh, 0 <= x < 704 or, in single precision, x < 86.5; with plain points |x| ----

// Steps of ln2/8 = kHi + kLo, the product of any k and the first part exact.
template <typename T>
struct EighthSteps;

template <>
struct EighthSteps<double> {
  template <const auto& kFirst, const auto& kSecond, const auto& kThird, class D>
  static HWY_INLINE EighthRow<VecOf<D>> Row(D, BitsOf<D> k) {
    const EighthLookup<D> lookup(k);
    return {lookup.template Number<kFirst>(), lookup.template Number<kSecond>(),
            lookup.template Number<kThird>()};
  }
  static constexpr double kPerUnit = 0x1.71547652b82fep+3;
  static constexpr double kHi = 0x1.62e42fefap-4, kLoInFull = 0x1.cf79abc9e3b3ap-43;
  static constexpr double kLo = 0x1.cf79abc9e4p-43;  // its product too, and good to 2^-84
  static constexpr double kDelay = 0x1.0a2bp-6;      // 3/16 of a step
  static constexpr int kToExponent = 49;
  static constexpr auto& kOffset = dHyperbolicOffset;
  static constexpr auto& kGrow = dHyperbolicGrow;
  static constexpr auto& kDecay = dHyperbolicDecay;
  static constexpr auto& kPlainGrow = dHyperbolicPlainGrow;
  static constexpr auto& kPlainDecay = dHyperbolicPlainDecay;
};

template <>
struct EighthSteps<float> {
  template <const auto& kFirst, const auto& kSecond, const auto& kThird, class D>
  static HWY_INLINE EighthRow<VecOf<D>> Row(D d, BitsOf<D> k) {
    return LookUpEighths<kFirst, kSecond, kThird>(d, k);
  }
  static constexpr float kPerUnit = 0x1.715476p+3f;
  static constexpr float kHi = 0x1.62ep-4f, kLo = 0x1.0bfcp-18f, kLoUpper = 0x1.0cp-18f;
  static constexpr float kDelay = 0x1.3ap-6f;  // the first step ends next to 1/16
  static constexpr int kToExponent = 20;
  static constexpr auto& kOffset = sHyperbolicOffset;
  static constexpr auto& kGrow = sHyperbolicGrow;
  static constexpr auto& kDecay = sHyperbolicDecay;
  static constexpr auto& kPlainGrow = sHyperbolicPlainGrow;
  static constexpr auto& kPlainDecay = sHyperbolicPlainDecay;
};

enum class Points {
  kRoughFromZero,  // as kRough, for tiny x too, whose product with the steps would underflow
  kRough,          // the eighths of ln2 in one part: r is good to 2^-29 of them
  kPlain,          // the eighths, A and B rounded: good enough for their sum
  kLate,           // the points beside them, A and B exact, each point a little after its turn
  kAccurate,       // the same each in its turn, with what the double of r lacks
  kAccurateRounded,
  kAccurateFromZero
};

template <class V>
struct HyperbolicSplit {
  V grow, decay;  // A and B
  V r;
  V r_rest;  // of accurate points: what is below the double of r
};

// r0 less the second part of the steps, rounded once: its product with their number is exact, or
// (single) the sum of two that are, the first of which leaves an exact difference, for r0 is a
// multiple of 2^-28.
template <int kUnit, class D, class V>
HWY_INLINE V LessSecondPart(D d, V r0, V kd) {
  using Steps = EighthSteps<hn::TFromD<D>>;
#if HWY_TARGET == HWY_SSE4
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    const V r1 = hn::Sub(r0, hn::Mul(kd, hn::Set(d, Steps::kLoUpper / kUnit)));
    return hn::Sub(r1, hn::Mul(kd, hn::Set(d, (Steps::kLo - Steps::kLoUpper) / kUnit)));
  }
#endif
  return HiddenNegMulAdd(kd, hn::Set(d, Steps::kLo / kUnit), r0);
}

// x less the steps to 2^-29 of them.
template <int kUnit, class D, class V>
HWY_INLINE V LessRoughly(D d, V x, V kd) {
  using Steps = EighthSteps<hn::TFromD<D>>;
  if constexpr (sizeof(hn::TFromD<D>) == 8) {
    return SubExactProduct(kd, hn::Set(d, Steps::kHi / kUnit), x);
  } else {
#if HWY_TARGET == HWY_SSE4
    const V r0 = hn::Sub(x, hn::Mul(kd, hn::Set(d, Steps::kHi / kUnit)));  // exact
    return hn::Sub(r0, hn::Mul(kd, hn::Set(d, Steps::kLoUpper / kUnit)));
#else
    return HiddenNegMulAdd(kd, hn::Set(d, (Steps::kHi + Steps::kLoUpper) / kUnit), x);
#endif
  }
}

template <Points kPoints, class D, class V>
HWY_INLINE HyperbolicSplit<V> Split(D d, V x) {
  using Steps = EighthSteps<hn::TFromD<D>>;
  constexpr bool kFromZero =
      kPoints == Points::kRoughFromZero || kPoints == Points::kAccurateFromZero;
  constexpr bool kAccurate = kPoints == Points::kAccurate || kPoints == Points::kLate ||
                             kPoints == Points::kAccurateRounded ||
                             kPoints == Points::kAccurateFromZero;
  HyperbolicSplit<V> u;
  V turn = x;
  if constexpr (kPoints == Points::kLate) turn = hn::Sub(x, hn::Set(d, Steps::kDelay));
  // Of floats, kUnit times k: the factor keeps products with tiny x from underflow.
  constexpr int kUnit = kFromZero && sizeof(hn::TFromD<D>) == 4 ? 1 << 24 : 1;
  const V steps = kFromZero && kUnit == 1 ? StepsFromZero(d, x, Steps::kPerUnit)
                                          : SilentMul(turn, hn::Set(d, kUnit * Steps::kPerUnit));
  const auto [k, kd] = ToNearestStep<kUnit>(d, steps);
  constexpr const auto& kGrow = kAccurate ? Steps::kGrow : Steps::kPlainGrow;
  constexpr const auto& kDecay = kAccurate ? Steps::kDecay : Steps::kPlainDecay;
  const auto [grow, decay, offset] = Steps::template Row<kGrow, kDecay, Steps::kOffset>(d, k);
  const auto n = hn::ShiftLeft<Steps::kToExponent>(k);
  u.grow = FromBits(d, hn::Add(Bits(d, grow), n));
  u.decay = FromBits(d, hn::Sub(Bits(d, decay), n));
  if constexpr (kPoints == Points::kRough || kPoints == Points::kRoughFromZero) {
    u.r = LessRoughly<kUnit>(d, x, kd);
    u.r_rest = u.r;
    return u;
  }
  V r0 = SubExactProduct(kd, hn::Set(d, Steps::kHi / kUnit), x);
  if constexpr (kAccurate) r0 = hn::Sub(r0, offset);  // exact
  if constexpr (kPoints == Points::kAccurate) {
    const V r1 = hn::Mul(kd, hn::Set(d, Steps::kLoInFull));
    u.r = hn::Sub(r0, r1);
    u.r_rest = hn::Sub(hn::Sub(r0, u.r), r1);
  } else {
    u.r = LessSecondPart<kUnit>(d, r0, kd);
    u.r_rest = u.r;
  }
  return u;
}

// a cosh r + b sinh r, where cosh r = 1 + r2 even(r2) and sinh r = r (1 + r2 odd(r2)). The last
// product is exact for a = 0, b = 1 and tiny r.
template <class D, class V, size_t N, size_t M>
HWY_INLINE V HyperbolicSum(D d, V a, V b, V r, V r2, const hn::TFromD<D> (&even)[N],
                           const hn::TFromD<D> (&odd)[M]) {
  const V one = hn::Set(d, static_cast<hn::TFromD<D>>(1));
  const V c = SilentMul(r2, SilentHorner(d, r2, even));
  const V s = hn::Mul(r, hn::Add(SilentMul(r2, SilentHorner(d, r2, odd)), one));
  return hn::Add(a, hn::Add(SilentMul(a, c), SilentMul(b, s)));
}

// The same with sinh r = r t, t = 1 + c r^2, and, as near, cosh r = 1 + r^2 (1 + t)/4. w is r as
// far as it matters beside 1, without an underflow.
template <class D, class V>
HWY_INLINE V HyperbolicShortSum(D d, V a, V b, V r, V w, hn::TFromD<D> c) {
  using T = hn::TFromD<D>;
  const V t = hn::Add(SilentMul(SilentMul(w, w), hn::Set(d, c)), hn::Set(d, T(1)));
  const V q = SilentMul(a, SilentMul(w, hn::Set(d, T(0.25))));
  return hn::Add(a, SilentMul(r, hn::Add(SilentMul(hn::Add(b, q), t), q)));
}

// cosh x for an x of BesideOne, with plain points of either sign: for -x they have A and B in each
// other's places, and the result is the same.
template <Points kPoints, class D, class V, size_t K, size_t N, size_t M>
HWY_INLINE void CoshOf(D d, const V (&x)[K], V (&out)[K], const hn::TFromD<D> (&even)[N],
                       const hn::TFromD<D> (&odd)[M]) {
  HyperbolicSplit<V> u[K];
  for (size_t k = 0; k < K; ++k) u[k] = Split<kPoints>(d, x[k]);
  for (size_t k = 0; k < K; ++k) {
    const auto& [grow, decay, r, rest] = u[k];
    const V a = hn::Add(grow, decay), b = hn::Sub(grow, decay);
    out[k] = HyperbolicSum(d, a, b, r, SilentMul(r, r), even, odd);
  }
}

// The same with an operation less: C + S r + r^2 (C even + S r odd).
template <class D, class V, size_t K, size_t N, size_t M>
HWY_INLINE void CoshLA(D d, const V (&x)[K], V (&out)[K], const hn::TFromD<D> (&even)[N],
                       const hn::TFromD<D> (&odd)[M]) {
  HyperbolicSplit<V> u[K];
  for (size_t k = 0; k < K; ++k) u[k] = Split<Points::kPlain>(d, x[k]);
  for (size_t k = 0; k < K; ++k) {
    const auto& [grow, decay, r, rest] = u[k];
    const V a = hn::Add(grow, decay), linear = hn::Mul(hn::Sub(grow, decay), r);
    const V r2 = SilentMul(r, r);
    const V bend =
        hn::Add(hn::Mul(a, SilentHorner(d, r2, even)), hn::Mul(linear, SilentHorner(d, r2, odd)));
    out[k] = hn::Add(a, hn::Add(linear, SilentMul(r2, bend)));
  }
}

// sinh x, x >= 0.
template <Points kPoints, class D, class V, size_t K, size_t N, size_t M>
HWY_INLINE void SinhOfMagnitude(D d, const V (&x)[K], V (&out)[K], const hn::TFromD<D> (&even)[N],
                                const hn::TFromD<D> (&odd)[M]) {
  HyperbolicSplit<V> u[K];
  for (size_t k = 0; k < K; ++k) u[k] = Split<kPoints>(d, x[k]);
  for (size_t k = 0; k < K; ++k) {
    const auto& [grow, decay, r, rest] = u[k];
    const V a = hn::Sub(grow, decay), b = hn::Add(grow, decay);
    out[k] = HyperbolicSum(d, a, b, r, SquareNearZero(d, r), even, odd);
  }
}

// The HA tier: a cosh r + b sinh r with a = C, b = S (kCosh) or the reverse. a and its sum with b r
// have no rounding error, nor has r where it counts, for sinh; what is left is below 2^-9 of the
// result. Tiny x must not be multiplied but by silent products.
template <bool kCosh, class D, class V, size_t K>
HWY_INLINE void HyperbolicHA(D d, const V (&x)[K], V (&out)[K]) {
  HyperbolicSplit<V> u[K];
  V r2[K], even[K], odd[K];
  for (size_t k = 0; k < K; ++k) {
    u[k] = Split < kCosh ? Points::kAccurateRounded : Points::kAccurate > (d, x[k]);
    r2[k] = SilentMul(u[k].r, u[k].r);
  }
  for (size_t k = 0; k < K; ++k) {
    even[k] = SilentHorner(d, r2[k], dCoshHAPolynomial);
    odd[k] = SilentHorner(d, r2[k], dSinhPolynomial);
  }
  for (size_t k = 0; k < K; ++k) {
    const auto& [grow, decay, r, r_rest] = u[k];
    const V cosh =
        SilentMul(r2[k], hn::Add(hn::Set(d, 0.5), SilentMul(r2[k], even[k])));  // cosh r - 1
    V sinh = SilentMul(SilentMul(r, r2[k]), odd[k]);                            // sinh r - r
    if constexpr (!kCosh) sinh = hn::Add(sinh, r_rest);
    const V sum = hn::Add(grow, decay), difference = hn::Sub(grow, decay);
    const V a = kCosh ? sum : difference, b = kCosh ? difference : sum;
    const V a_lost = hn::Sub(grow, a);
    const V a_rest = kCosh ? hn::Add(a_lost, decay) : hn::Sub(a_lost, decay);
    const Pair<V> product = TwoProduct(d, b, r);
    const Pair<V> head = FastTwoSum(a, product.hi);
    const V low = hn::Add(hn::Add(a_rest, head.lo), product.lo);
    const V high = hn::Add(SilentMul(a, cosh), SilentMul(b, sinh));
    out[k] = hn::Add(head.hi, hn::Add(high, low));
  }
}

// ---- Tanh ----

// |x| = n ln2/2 + y[j]/2 + h, where P/2 = 2^n e^y[j]/2: with t = tanh h
//   tanh |x| = ((P - 1) + (P + 1) t)/((P + 1) + (P - 1) t).
// P is a double to 2^-64, and (P + 1)/2 one for n < 3.
template <class V>
struct TanhSplit {
  V half_power;  // P/2
  V h;
};

// The magnitude for which tanh is computed, 2^-100 to 22: below, the argument is its own result,
// and above the result is 1, as it is for 22.
template <class D, class V>
HWY_INLINE V TanhMagnitude(D d, V x) {
  return hn::Min(hn::Max(hn::Abs(x), hn::Set(d, 0x1p-100)), hn::Set(d, 22.0));
}

// y with the sign of x, and not above |x|.
template <class V>
HWY_INLINE V TanhResult(V y, V x) {
  return hn::CopySignToAbs(hn::Min(y, hn::Abs(x)), x);
}

// The step is the nearest one to 16 |x|/ln2 less 1/4, so that h is at most a third of |x|, and what
// is rounded in h is a third at most as large in relation to |x|.
template <class D, class V>
HWY_INLINE TanhSplit<V> SplitForTanh(D d, V m) {
  // ln2/16, the product of k and the first part exact.
  constexpr double kHi = 0x1.62e42fefa38p-5, kLo = 0x1.ef35793c7673p-49;
  TanhSplit<V> u;
  const V shifted = hn::Sub(m, hn::Set(d, 0x1.62e4p-7));
  const auto [k, kd] = ToNearestStep(d, shifted, 0x1.71547652b82fep+4);
  const EighthLookup<D> lookup(k);
  const auto power = lookup.template Pattern<dHyperbolicTangentGrow>();
  u.half_power = FromBits(d, hn::Add(power, hn::ShiftLeft<49>(k)));
  const V h0 = hn::Sub(SubExactProduct(kd, hn::Set(d, kHi), m),
                       lookup.template Number<dHyperbolicTangentHalfOffset>());  // exact
  u.h = hn::Sub(h0, hn::Mul(kd, hn::Set(d, kLo)));
  return u;
}

// tanh m for m of TanhMagnitude. What is rounded away from both sides of the quotient comes back at
// the end, divided by roughly the divisor.
template <class D, class V, size_t K>
HWY_INLINE void TanhOfMagnitude(D d, const V (&m)[K], V (&out)[K]) {
  TanhSplit<V> u[K];
  for (size_t k = 0; k < K; ++k) u[k] = SplitForTanh(d, m[k]);
  for (size_t k = 0; k < K; ++k) {
    const auto& [half_power, h] = u[k];
    const V half = hn::Set(d, 0.5);
    const V h2 = hn::Mul(h, h);
    const V t = hn::Add(hn::Mul(h, hn::Mul(h2, Horner(d, h2, dTanhPolynomial))), h);
    const V a = hn::Sub(half_power, half), b = hn::Add(half_power, half);
    const Pair<V> above = FastTwoSum(a, hn::Mul(b, t)), below = FastTwoSum(b, hn::Mul(a, t));
    const V q = hn::Div(above.hi, below.hi);
    const V rest = hn::Sub(above.lo, hn::Mul(q, below.lo));
    // 1/below.hi to an eighth of itself.
    const V inverse = FromBits(d, hn::Sub(SetBits(d, 0x7FDE000000000000), Bits(d, below.hi)));
    out[k] = hn::Add(q, hn::Mul(rest, inverse));
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_HYPERBOLIC_INL_H_
