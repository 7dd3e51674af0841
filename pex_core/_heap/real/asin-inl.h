// Inverse sine and cosine: asin(x) = x (1 + u P(u)) with u = 4 x^2 for |x| up to about 1/2, and for
// larger ones acos(|x|) = s (1 + u P(u)) with u = 2 (1 - |x|), s = sqrt(u).

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/asin_polynomials.h"
#include "pex_core/_heap/real/root_correct-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/fused_single-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ASIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ASIN_INL_H_
#undef PEX_CORE__HEAP_REAL_ASIN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ASIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: |x| > 1 or NaN. The levels that compare high words of doubles have 1 moved below its
// octave.
template <typename T>
struct AboveOne : RareAbove<T, (sizeof(T) == 8 ? 0x3FEFFFFF : 0x3F800000)> {
  static constexpr bool kWhole = sizeof(T) == 4 || HWY_TARGET == HWY_AVX3;
  static constexpr int64_t kLimit = kWhole ? BitsOfNumber(T(1)) : RareAbove<T, 0x3FEFFFFF>::kLimit;
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    const auto bits = Bits(d, hn::Abs(x));
    if constexpr (kWhole) return bits;
    return hn::Sub(bits, SetBits(d, 1));
  }
};

// -|x|, which serves where |x| would, and whose bits the computation shares with the test below.
template <class D, class V>
HWY_INLINE V NegAbs(D d, V x) {
  return hn::Or(x, hn::SignBit(d));
}

// Also |x| so small (single: below 2^-28, double: below 2^-239) that a product would underflow.
template <typename T>
struct AboveOneOrTiny {
  using Range = RareOutside<T, (sizeof(T) == 8 ? 0x31000000 : 0x31800000),
                            (sizeof(T) == 8 ? 0x3FEFFFFF : 0x3F800000)>;
  static constexpr int64_t kLimit = Range::kLimit;
  static constexpr T kTiny = sizeof(T) == 8 ? T(0x1p-239) : T(0x1p-28);
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    // From the pattern of -|x| to that of |x|, or for doubles to the one below it, and on.
    constexpr uint64_t kSum = sizeof(T) == 8
                                  ? (static_cast<uint64_t>(Range::kShift + 0x80000000u) << 32) - 1
                                  : Range::kShift + 0x80000000u;
    return hn::Add(Bits(d, NegAbs(d, x)), SetBits(d, kSum));
  }
};

inline constexpr double kPi = 0x1.921fb54442d18p+1, kPiRest = 0x1.1a62633145c07p-53;

// Which arguments a kernel is for: the common ones, or tiny ones too.
enum class AsinDomain { kCommon, kWhole };

template <typename T, AsinDomain kDomain>
using AsinRarity =
    std::conditional_t<kDomain == AsinDomain::kCommon, AboveOneOrTiny<T>, AboveOne<T>>;

// What a kernel for kDomain calls rare, and of groups of common arguments whether one may be: not
// in the 32 octaves below 1 (of doubles 128) or at 1. On AVX-512 the floats that are at 1 may be:
// the root of 0 by an estimate would be none.
template <typename T, AsinDomain kDomain, class Groups>
struct AsinRareGroups : Groups {
  using Rarity = AsinRarity<T, kDomain>;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d,
                                      const V (&x)[K]) requires(kDomain == AsinDomain::kCommon) {
    constexpr uint64_t kBeyond = sizeof(T) == 8 ? uint64_t{31} << 59 : uint64_t{15} << 28;
    constexpr bool kBelow = HWY_TARGET == HWY_AVX3 && sizeof(T) == 4;
    const auto last = SetBits(d, static_cast<uint64_t>(BitsOfNumber(T(-1)) - kBelow));
    return AnyKeyHas(d, x, kBeyond,
                     [&](V v) HWY_ATTR { return hn::Sub(last, Bits(d, NegAbs(d, v))); });
  }
};

// K for common arguments, and for the groups with others K for all.
template <template <AsinDomain> class K>
struct AsinKernel : K<AsinDomain::kCommon> {
  using Wide = K<AsinDomain::kWhole>;
};

// What both functions are made of: -|x|, whether it is below -1/2, rest = 2 (1 - |x|), and u. Tiny
// arguments have a u of 0, so that no product underflows.
template <class D>
struct AsinParts {
  VecOf<D> minus;
  MaskOf<D> large;
  VecOf<D> rest, u;
};

// Coefficients as whole registers in memory: on AVX-512 a broadcast takes a place of the
// arithmetic, a load takes none.
template <typename T, size_t N>
struct Spread {
  alignas(64) T c[N][64 / sizeof(T)];
};
template <typename T, size_t N>
constexpr Spread<T, N> SpreadOf(const T (&c)[N]) {
  Spread<T, N> s = {};
  for (size_t i = 0; i < N; ++i)
    for (T& x : s.c[i]) x = c[i];
  return s;
}

// The same for a single number.
template <auto kNumber, class D>
HWY_INLINE VecOf<D> Whole(D d) {
#if HWY_TARGET == HWY_AVX3
  using T = hn::TFromD<D>;
  static constexpr T kOne[] = {static_cast<T>(kNumber)};
  static constexpr auto kSpread = SpreadOf(kOne);
  auto* s = kSpread.c[0];
  asm("" : "+r"(s));
  return hn::Load(d, s);
#else
  return hn::Set(d, static_cast<hn::TFromD<D>>(kNumber));
#endif
}

// a ^ (b & c).
template <class V>
HWY_INLINE V XorAnd(V a, V b, V c) {
#if HWY_TARGET == HWY_AVX3
  const hn::Repartition<uint64_t, hn::DFromV<V>> du;
  const auto bits = [du](V v) HWY_ATTR { return hn::BitCast(du, v).raw; };
  if constexpr (sizeof(V) == 64) {
    const __m512i r = _mm512_ternarylogic_epi64(bits(a), bits(b), bits(c), 0x78);
    return hn::BitCast(hn::DFromV<V>(), hn::VFromD<decltype(du)>{r});
  }
#endif
  return hn::Xor(a, hn::And(b, c));
}

// x - 2 y for the lanes of the mask; the others are y. The product is exact.
template <class D>
HWY_INLINE VecOf<D> LessTwiceWhere(D d, MaskOf<D> mask, VecOf<D> x, VecOf<D> y) {
  const VecOf<D> two = Whole<2>(d);
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(x) == 64 && sizeof(hn::TFromD<D>) == 4) {
    return VecOf<D>{_mm512_mask_fnmadd_ps(y.raw, mask.raw, two.raw, x.raw)};
  } else if constexpr (sizeof(x) == 64) {
    return VecOf<D>{_mm512_mask_fnmadd_pd(y.raw, mask.raw, two.raw, x.raw)};
  }
#endif
  return hn::IfThenElse(mask, SubExactProduct(two, y, x), y);
}

template <AsinDomain kDomain, class D, class V>
HWY_INLINE AsinParts<D> AsinReduce(D d, V x) {
  using T = hn::TFromD<D>;
  constexpr T kTiny = AboveOneOrTiny<T>::kTiny;
  const V minus = NegAbs(d, x), twice = hn::Add(minus, minus);
  const V rest = hn::Add(Whole<2>(d), twice);  // exact where it is used
  const auto large = hn::Lt(minus, Whole<-0.5>(d));
#if HWY_TARGET == HWY_AVX3
  // Two comparisons: the complement of a mask takes another one of the few places.
  if constexpr (kDomain == AsinDomain::kCommon) {
    const auto small = hn::Ge(minus, Whole<-0.5>(d));
    return {minus, large, rest, MulWhere(d, small, twice, twice, rest)};
  }
#endif
  const V square = kDomain == AsinDomain::kCommon
                       ? hn::Mul(twice, twice)
                       : SquareWhere(d, hn::Le(minus, hn::Set(d, -kTiny)), twice);
  return {minus, large, rest, hn::Min(rest, square)};  // both are equal at |x| = 1/2
}

// The same of a half: rest = (1 - |x|)/2, and u a fourth of the other's.
template <AsinDomain kDomain, class D, class V>
HWY_INLINE AsinParts<D> AsinReduceHalf(D d, V x) {
  using T = hn::TFromD<D>;
  constexpr T kTiny = AboveOneOrTiny<T>::kTiny;
  const V minus = NegAbs(d, x), half = Whole<0.5>(d);
  const V rest = AddExactProduct(minus, half, half);  // exact where it is used
  const auto large = hn::Lt(minus, Whole<-0.5>(d));
#if HWY_TARGET == HWY_AVX3
  if constexpr (kDomain == AsinDomain::kCommon) {
    const auto small = hn::Ge(minus, Whole<-0.5>(d));
    return {minus, large, rest, MulWhere(d, small, minus, minus, rest)};
  }
#endif
  const V square = kDomain == AsinDomain::kCommon
                       ? hn::Mul(minus, minus)
                       : SquareWhere(d, hn::Le(minus, hn::Set(d, -kTiny)), minus);
  return {minus, large, rest, hn::Min(rest, square)};
}

template <typename T, size_t N>
constexpr size_t AsinTerms(const T (&)[N]) {
  return N;
}
constexpr size_t AsinTerms(const AsinSteps&) { return 12; }

// Coefficients for a fourth of u.
template <auto& c>
struct AsinOfHalf {
  using T = std::remove_cvref_t<decltype(c[0])>;
  struct Numbers {
    T of[std::size(c)];
  };
  static constexpr Numbers kNumbers = [] {
    Numbers n = {};
    T scale = 1;
    for (size_t i = 0; i < std::size(c); ++i) n.of[i] = c[i] * (scale *= 4);
    return n;
  }();
  static constexpr auto& kC = kNumbers.of;
};
template <auto& steps>
requires(std::is_same_v<decltype(steps), const AsinSteps&>) struct AsinOfHalf<steps> {
  static constexpr AsinSteps kC = [] {
    constexpr auto& c = steps.c;
    AsinSteps n = {{c[0] * 4, c[1] / 4, c[2] * 0x1p20, c[3] * 0x1p22, c[4] * 0x1p24}};
    for (size_t i = 5; i < std::size(c); i += 2) {
      n.c[i] = c[i] / 16;
      n.c[i + 1] = c[i + 1] * (0x1p16 / (uint64_t{1} << (2 * i - 10)));
    }
    return n;
  }();
};

// 1 in the lanes without the mask, -2 in those with it, or both times kSign.
template <int kSign = 1, class D>
HWY_INLINE VecOf<D> OneOrMinusTwo(D d, MaskOf<D> mask) {
  constexpr int kOne = kSign, kMinusTwo = -2 * kSign;
#if HWY_TARGET == HWY_AVX2
  // A selection would be three operations on Golden Cove.
  if constexpr (sizeof(mask) == 32 && sizeof(hn::TFromD<D>) == 8) {
    const __m256i chooser = hn::BitCast(hn::RebindToSigned<D>(), hn::VecFromMask(d, mask)).raw;
    return VecOf<D>{
        _mm256_permutevar_pd(_mm256_setr_pd(kOne, kMinusTwo, kOne, kMinusTwo), chooser)};
  } else if constexpr (sizeof(mask) == 32) {
    const __m256i chooser = hn::BitCast(hn::RebindToSigned<D>(), hn::VecFromMask(d, mask)).raw;
    return VecOf<D>{_mm256_permutevar_ps(
        _mm256_setr_ps(kOne, kOne, kOne, kMinusTwo, kOne, kOne, kOne, kMinusTwo), chooser)};
  }
#endif
  using T = hn::TFromD<D>;
  return hn::IfThenElse(mask, hn::Set(d, T(kMinusTwo)), hn::Set(d, T(kOne)));
}

// What gives coefficient i of kC, spread on AVX-512. The compiler must not see what it loads, or it
// makes broadcasts of it again.
template <auto& kC, class D>
HWY_INLINE auto TermsOf(D d) {
#if HWY_TARGET == HWY_AVX3
  static constexpr auto kSpread = SpreadOf(kC);
  auto* s = kSpread.c;
  asm("" : "+r"(s));
  return [d, s](size_t i) HWY_ATTR { return hn::Load(d, s[i]); };
#else
  return [d](size_t i) HWY_ATTR { return hn::Set(d, kC[i]); };
#endif
}

// Horner's scheme in hidden steps.
template <auto& kC, class D, class V, size_t K>
HWY_INLINE void HiddenHorner(D d, const V (&x)[K], V (&p)[K]) {
  const auto term = TermsOf<kC>(d);
  for (size_t k = 0; k < K; ++k) p[k] = term(std::size(kC) - 1);
  for (size_t i = std::size(kC) - 1; i-- > 0;) {
    for (size_t k = 0; k < K; ++k) p[k] = HiddenMulAdd(p[k], x[k], term(i));
    EndStep(p);
  }
}

#if HWY_TARGET == HWY_SSE4
// The same in double precision, rounded to floats at each step, as s p + lead is at last. From c[2]
// on the sums keep the binades of their coefficients, so that sums with large numbers round them;
// where s p + lead is rounded twice no result shows it: every argument has been tried.
template <auto& kC, class V>
HWY_INLINE V HiddenAsinSum(V u, V s, V lead) {
  using W = hn::Vec128<double>;
  const auto number = [](double x) HWY_ATTR { return W{_mm_set1_pd(x)}; };
  return ByHalves(
      [&](W x, W sx, W first) HWY_ATTR {
        constexpr size_t N = std::size(kC);
        W p = number(kC[N - 1]);
        for (size_t i = N - 1; i-- > 0;) {
          p = hn::Mul(p, x);
          if (i > 2) {
            p = W{_mm_cvtps_pd(_mm_cvtpd_ps(hn::Add(p, number(kC[i])).raw))};
          } else {
            p = SumInBinade(p, kC[i]);
          }
        }
        return hn::Add(hn::Mul(sx, p), first);
      },
      InHalves(u), InHalves(s), InHalves(lead));
}
#endif

// EvenOdd with them.
template <auto& kC, class D, class V, size_t K>
HWY_INLINE void SpreadEvenOdd(D d, const V (&x)[K], const V (&x2)[K], V (&p)[K]) {
  static constexpr auto kSpread = SpreadOf(kC);
  constexpr size_t N = std::size(kC);
  constexpr size_t kTop = (N - 1) / 2 * 2;
  auto* s = kSpread.c;
  asm("" : "+r"(s));
  const auto pair = [&](size_t i, size_t k) HWY_ATTR {
    const V low = hn::Load(d, s[i]);
    return i + 1 < N ? hn::Add(hn::Mul(hn::Load(d, s[i + 1]), x[k]), low) : low;
  };
  for (size_t k = 0; k < K; ++k) p[k] = pair(kTop, k);
  for (size_t i = kTop; i >= 2; i -= 2) {
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(hn::Mul(p[k], x2[k]), pair(i - 2, k));
  }
}

// The sum in steps.
template <auto& kSteps, class D, class V, size_t K>
HWY_INLINE void SpreadSteps(D d, const V (&u)[K], V (&p)[K]) {
  constexpr auto& kC = kSteps.c;
  const auto term = TermsOf<kC>(d);
  for (size_t k = 0; k < K; ++k) {
    const V w = hn::Add(u[k], term(1)), y = hn::Mul(w, w);
    V r = hn::Add(hn::Add(hn::Mul(w, term(3)), term(2)), hn::Mul(y, term(4)));
    for (size_t i = 5; i < std::size(kC); i += 2) {
      r = hn::Add(hn::Mul(hn::Add(y, term(i)), r), term(i + 1));
    }
    p[k] = hn::Add(hn::Mul(r, u[k]), term(0));
  }
}

// The root where it is large, or else minus. kEstimated: by estimates; with kPlenty of other work
// only where the processor's root takes longer than that, on Golden Cove.
template <bool kEstimated, bool kPlenty, class D>
HWY_INLINE VecOf<D> AsinRoot(D d, const AsinParts<D>& v) {
#if HWY_TARGET == HWY_AVX3
  constexpr bool kPossible = sizeof(v.rest) == 64 && sizeof(hn::TFromD<D>) == 8;
  if constexpr (!kEstimated || !kPossible) {
  } else if (!kPlenty || __builtin_cpu_is("intel")) {
    const __mmask8 positive =
        _mm512_mask_test_epi64_mask(v.large.raw, Bits(d, v.rest).raw, Bits(d, v.rest).raw);
    VecOf<D> root[1] = {v.rest};
    VecOf<D> inverse[1] = {{_mm512_mask_rsqrt14_pd(Whole<0.5>(d).raw, positive, v.rest.raw)}};
    RootsByEstimates(d, root, inverse);
    return hn::IfThenElse(v.large, root[0], v.minus);
  }
#endif
  return SqrtWhere(d, v.large, v.rest, v.minus);
}

// Both functions by plain sums, single by hidden steps, for kVectors vectors: below 2 ulp with the
// coefficients of LA (Asin 1.89 seen, single 1.71, Acos 1.24 and 1.88). Result() has acos(|x|) for
// large x, -asin(|x|) for others. kHalf: of half of that, asin(sqrt((1 - |x|)/2)), and without sign
// where kRoots.
template <auto& c, AsinDomain kDomain, class D, size_t kVectors, bool kHalf = false>
struct PlainAsinPart {
  using V = VecOf<D>;
  using T = hn::TFromD<D>;
  static constexpr size_t kSize = kVectors;
  // The root of u is |x| or the other root.
  static constexpr bool kRoots = kHalf && HWY_TARGET == HWY_AVX2 && kDomain == AsinDomain::kCommon;
  MaskOf<D> large[kVectors];
  V lead[kVectors], u[kVectors], p[kVectors];

  // Roots of doubles take Golden Cove longer than all the rest: of some vectors one goes without.
  static constexpr bool kSingle = sizeof(T) == 4;
  static constexpr size_t kReduceKinds = AsinTerms(c) < 6 ? 3 : 4;
  template <size_t kKind>
  HWY_INLINE void Reduce(const V* x) {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      AsinParts<D> v;
      if constexpr (kHalf) {
        v = AsinReduceHalf<kDomain>(d, x[k]);
      } else {
        v = AsinReduce<kDomain>(d, x[k]);
      }
      large[k] = v.large;
      u[k] = v.u;
      if constexpr (kRoots) {
        lead[k] = hn::Sqrt(v.u);
      } else if (!kSingle && k == 0) {
        lead[k] = AsinRoot<kKind == 0, (AsinTerms(c) > 5)>(d, v);
      } else {
        lead[k] = AsinRoot<false, false>(d, v);
      }
    }
    EndPart(lead);
  }
  HWY_INLINE void Evaluate() {
    const D d;
    if constexpr (kSingle) {
#if HWY_TARGET != HWY_SSE4
      HiddenHorner<c>(d, u, p);
#endif
    } else if constexpr (std::is_same_v<decltype(c), const AsinSteps&>) {
      SpreadSteps<c>(d, u, p);
    } else {
      V u2[kVectors];
      for (size_t k = 0; k < kVectors; ++k) u2[k] = hn::Mul(u[k], u[k]);
#if HWY_TARGET == HWY_AVX3
      SpreadEvenOdd<c>(d, u, u2, p);
#else
      EvenOdd(d, u, u2, c, p);
#endif
    }
    EndPart(p);
  }
  HWY_INLINE V Sum(size_t k) const {
    const V s = hn::Mul(lead[k], u[k]);
    if constexpr (kSingle) {
#if HWY_TARGET == HWY_SSE4
      return HiddenAsinSum<c>(u[k], s, lead[k]);
#else
      return HiddenMulAdd(s, p[k], lead[k]);
#endif
    }
    return hn::Add(lead[k], hn::Mul(s, p[k]));
  }
};

// On SSE4, whose selections are single operations, not of half.
#if HWY_TARGET == HWY_SSE4
template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
using PlainAsinSum = PlainAsinPart<c, kDomain, D, kVectors>;
#else
template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
using PlainAsinSum = PlainAsinPart<AsinOfHalf<c>::kC, kDomain, D, kVectors, true>;
#endif

template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
struct PlainAsin : PlainAsinSum<c, kDomain, D, kVectors> {
  using V = VecOf<D>;
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    const V half_pi = Whole<kPi / 2>(d);
    for (size_t k = 0; k < kVectors; ++k) {
      const V sum = this->Sum(k);
      const auto large = this->large[k];
#if HWY_TARGET == HWY_AVX3
      r[k] = hn::IfVecThenElse(Whole<-0.0>(d), x[k], LessTwiceWhere(d, large, half_pi, sum));
#elif HWY_TARGET == HWY_SSE4
      r[k] = hn::CopySignToAbs(SubFromWhere(d, large, half_pi, sum), x[k]);
#else
      const V base = hn::IfThenElseZero(large, half_pi);
      const V size = AddExactProduct(sum, OneOrMinusTwo(d, large), base);
      r[k] = this->kRoots ? hn::CopySignToAbs(size, x[k]) : hn::CopySign(size, x[k]);
#endif
    }
  }
};

template <auto& c, AsinDomain kDomain, class D, size_t kVectors, double kHalfPi = kPi / 2>
struct PlainAcosTo : PlainAsinPart<c, kDomain, D, kVectors> {
  using V = VecOf<D>;
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    const V half_pi = Whole<kHalfPi>(d), sign = Whole<-0.0>(d);
    for (size_t k = 0; k < kVectors; ++k) {
      // 0 or pi for large x, pi/2 for others
      const V signed_half = HWY_TARGET == HWY_AVX3 ? hn::IfVecThenElse(sign, x[k], half_pi)
                                                   : hn::CopySignToAbs(half_pi, x[k]);
      const V base = SubWhere(d, this->large[k], half_pi, signed_half);
      r[k] = hn::Add(base, XorAnd(this->Sum(k), x[k], sign));
    }
  }
};

template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
struct PlainAcos : PlainAcosTo<c, kDomain, D, kVectors> {};

// How many vectors make a group, and how many of them a part of it.
template <typename T>
struct AsinGroups : LargeGroups<T> {
  static constexpr bool kWide = HWY_TARGET == HWY_AVX3 || sizeof(T) == 8;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 && sizeof(T) == 8 ? 12 : kWide ? 8 : 4;
  static constexpr int kRestUnroll = kWide ? LargeGroups<T>::kRestUnroll : 2;
  static constexpr size_t kTogether = sizeof(T) == 4 ? 2 : 1;
};

// Part<c, kDomain, ...> for all vectors of a group, kSize of them at a time.
template <template <auto&, AsinDomain, class, size_t> class Part, auto& c, AsinDomain kDomain,
          size_t kSize, class D, class V, size_t K>
HWY_INLINE void PlainInTurn(D, const V (&x)[K], V (&r)[K]) {
  constexpr size_t kEach = K % kSize == 0 ? kSize : 1;
  Part<c, kDomain, D, kEach> parts[K / kEach];
  SomeInTurn<kSize == 1 ? 2 : 1>(parts, x, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ASIN_INL_H_
