// The LA and EP kernels of Atan: atan(a) = angle + atan(t), t = (a - c)/(1 + c a), angle = atan(c),
// with c = 0 for small a and finite ones beyond, the last of which serves up to infinity.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/quotient_correct-inl.h"
#include "pex_core/_heap/real/rows.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/fused_single-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/atan/atan_rare.h"

#if defined(PEX_CORE_ATAN_ATAN_PLAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#undef PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#else
#define PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The rows of kAtanBins...: where they begin and end, and the bits that number them.
template <typename T>
struct AtanBinsOf {
  static constexpr double kShift = 0.375, kTop = 5.5;
  static constexpr int kBit = 50;
  static constexpr auto& kBins = kAtanBinsOfDouble;
};
template <>
struct AtanBinsOf<float> {
  static constexpr float kShift = 0.375f, kTop = 5.0f;
  static constexpr int kBit = 22;
  static constexpr auto& kBins = kAtanBinsOfFloat;
};

template <typename T>
inline constexpr auto kAtanPlainRows = ByRows(AtanBinsOf<T>::kBins.c, AtanBinsOf<T>::kBins.angle);

template <class V>
struct AtanBin {
  V c, angle;
};

// The row for a >= 0.
template <class D, class V>
HWY_INLINE AtanBin<V> AtanBinOf(D d, V a) {
  using T = hn::TFromD<D>;
  using B = AtanBinsOf<T>;
  const V sum = hn::Min(hn::Add(a, hn::Set(d, B::kShift)), hn::Set(d, B::kTop));
#if HWY_TARGET == HWY_AVX3
  const auto i = hn::ShiftRight<B::kBit>(Bits(d, sum)).raw;
  const auto column = [i](const T* c) HWY_ATTR {
    if constexpr (sizeof(T) == 4) {
      return V{_mm512_permutexvar_ps(i, _mm512_load_ps(c))};
    } else {
      return V{_mm512_permutex2var_pd(_mm512_load_pd(c), i, _mm512_load_pd(c + 8))};
    }
  };
  return {column(B::kBins.c), column(B::kBins.angle)};
#elif HWY_TARGET == HWY_AVX2
  if constexpr (sizeof(T) == 4) {
    const __m256i i = hn::ShiftRight<B::kBit>(Bits(d, sum)).raw;
    return {V{_mm256_permutevar8x32_ps(_mm256_load_ps(B::kBins.c), i)},
            V{_mm256_permutevar8x32_ps(_mm256_load_ps(B::kBins.angle), i)}};
  } else {
    constexpr uint64_t kRow = 15 * sizeof(kAtanPlainRows<T>.row[0]);
    RowOffsets<16, D> offsets;
    offsets.SetBytes(hn::And(ShiftBitsRight<B::kBit - 4>(d, sum), SetBits(d, kRow)));
    const Row2<V> row = LoadRows2(d, kAtanPlainRows<T>.row[0], offsets);
    return {row.a, row.b};
  }
#else
  const auto i = hn::ShiftRight<B::kBit>(Bits(d, sum)).raw;
  const auto* rows = kAtanPlainRows<T>.row;
  if constexpr (sizeof(T) == 8) {
    const __m128d row0 = _mm_load_pd(rows[_mm_cvtsi128_si64(i) & 15]);
    const __m128d row1 = _mm_load_pd(rows[_mm_extract_epi64(i, 1) & 15]);
    return {V{_mm_unpacklo_pd(row0, row1)}, V{_mm_unpackhi_pd(row0, row1)}};
  } else {
    const auto two = [rows](uint64_t pair) HWY_ATTR {
      const auto* low = reinterpret_cast<const __m64*>(rows[pair & 15]);
      const auto* high = reinterpret_cast<const __m64*>(rows[pair >> 32 & 15]);
      return _mm_loadh_pi(_mm_loadl_pi(_mm_setzero_ps(), low), high);
    };
    const __m128 row01 = two(static_cast<uint64_t>(_mm_cvtsi128_si64(i)));
    const __m128 row23 = two(static_cast<uint64_t>(_mm_extract_epi64(i, 1)));
    return {V{_mm_shuffle_ps(row01, row23, 0x88)}, V{_mm_shuffle_ps(row01, row23, 0xDD)}};
  }
#endif
}

// t becomes atan(t). Nothing underflows from 2^-196 (single: 2^-40) on.
template <auto& kC, class D, class V, size_t K>
HWY_INLINE void AtanSeries(D d, V (&t)[K]) {
  V z[K], p[K];
  for (size_t k = 0; k < K; ++k) z[k] = hn::Mul(t[k], t[k]);
  HornerInSteps(d, z, kC, p);
  for (size_t k = 0; k < K; ++k) t[k] = hn::Add(t[k], hn::Mul(t[k], hn::Mul(z[k], p[k])));
  EndPart(t);
}

// kVectors vectors in three parts.
template <auto& kC, class D, size_t kVectors>
struct AtanPlainPart {
  using V = VecOf<D>;
  using T = hn::TFromD<D>;
  static constexpr size_t kSize = kVectors;
  V t[kVectors], angle[kVectors];

  HWY_INLINE void Reduce(const V* x) {
    ReduceBy(x, [](V n, V m) HWY_ATTR { return hn::Div(n, m); });
  }
  template <class F>
  HWY_INLINE void ReduceBy(const V* x, F quotient) {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      const AtanBin<V> bin = AtanBinOf(d, a);
      // The difference is exact where it is not much less than c.
      t[k] = quotient(hn::Sub(a, bin.c), hn::Add(hn::Set(d, T(1)), hn::Mul(bin.c, a)));
      angle[k] = bin.angle;
    }
    EndPart(t);
  }
  HWY_INLINE void Evaluate() { AtanSeries<kC>(D(), t); }
  HWY_INLINE void Result(const V* x, V* r) const {
    for (size_t k = 0; k < kVectors; ++k) {
      r[k] = hn::CopySignToAbs(hn::Add(angle[k], t[k]), x[k]);
    }
  }
};

#if HWY_TARGET == HWY_AVX3
// The same where the division takes longer than all the rest: of some vectors one goes without.
template <auto& kC, class D, size_t kVectors>
struct AtanMixedPart : AtanPlainPart<kC, D, kVectors> {
  using V = VecOf<D>;
  static constexpr size_t kReduceKinds = 4;
  template <size_t kKind>
  HWY_INLINE void Reduce(const V* x) {
    if constexpr (kKind == 0) {
      this->ReduceBy(x, [](V n, V m) HWY_ATTR { return QuotientByEstimate(D(), n, m); });
    } else {
      AtanPlainPart<kC, D, kVectors>::Reduce(x);
    }
  }
};
#endif

// The same in single precision, in the fewest roundings. Every argument has been tried: no result
// shows that SSE4 rounds 1 + c a and the last sum in double precision first.
template <auto& kC, class D, size_t kVectors>
struct AtanHiddenPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = kVectors;
  V t[kVectors], angle[kVectors], z[kVectors], q[kVectors];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      const AtanBin<V> bin = AtanBinOf(d, a);
#if HWY_TARGET == HWY_SSE4
      using W = hn::Vec128<double>;
      const V m =
          ByHalves([](W c, W b) HWY_ATTR { return hn::Add(hn::Mul(c, b), W{_mm_set1_pd(1)}); },
                   InHalves(bin.c), InHalves(a));
#else
      const V m = HiddenMulAdd(bin.c, a, hn::Set(d, 1.0f));
#endif
      // The difference is exact where it is not much less than c.
      t[k] = hn::Div(hn::Sub(a, bin.c), m);
      angle[k] = bin.angle;
    }
    EndPart(t);
  }
  // q = 1 + z (c[0] + z c[1]) with z = t^2.
  HWY_INLINE void Evaluate() {
    for (size_t k = 0; k < kVectors; ++k) z[k] = hn::Mul(t[k], t[k]);
#if HWY_TARGET != HWY_SSE4
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      q[k] = HiddenMulAdd(z[k], hn::Set(d, kC[1]), hn::Set(d, kC[0]));
      q[k] = HiddenMulAdd(z[k], q[k], hn::Set(d, 1.0f));
    }
    EndPart(q);
#endif
  }
  HWY_INLINE V Sum(size_t k) const {
#if HWY_TARGET == HWY_SSE4
    using W = hn::Vec128<double>;
    const auto number = [](double x) HWY_ATTR { return W{_mm_set1_pd(x)}; };
    return ByHalves(
        [&](W t, W angle, W z) HWY_ATTR {
          constexpr double kHalves = 0x1.8p28;  // 2^52 last places of floats in [1/2, 1]
          W q = hn::Mul(z, SumInBinade(hn::Mul(z, number(kC[1])), kC[0]));
          q = hn::Sub(hn::Add(q, number(1 + kHalves)), number(kHalves));
          return hn::Add(hn::Mul(t, q), angle);
        },
        InHalves(t[k]), InHalves(angle[k]), InHalves(z[k]));
#else
    return HiddenMulAdd(t[k], q[k], angle[k]);
#endif
  }
  HWY_INLINE void Result(const V* x, V* r) const {
    for (size_t k = 0; k < kVectors; ++k) r[k] = hn::CopySignToAbs(Sum(k), x[k]);
  }
};

// EP in single precision, without a table: x (c[0] v + c[1])/((a + c[3]) (v + c[4]) + c[5]) with v
// = a (a + c[2]).
template <auto& kC, class D, size_t kVectors>
struct AtanRatioPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = kVectors;
  V r[kVectors];

  // The division takes AVX-512 longer than all the rest: of some vectors one goes without.
  static constexpr size_t kReduceKinds = HWY_TARGET == HWY_AVX3 ? 4 : 1;
  template <size_t kKind>
  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const auto c = [d](size_t i) HWY_ATTR { return hn::Set(d, kC[i]); };
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      const V v = hn::Mul(a, hn::Add(a, c(2)));
      const V n = hn::Mul(x[k], hn::Add(hn::Mul(v, c(0)), c(1)));
      const V m = hn::Add(hn::Mul(hn::Add(a, c(3)), hn::Add(v, c(4))), c(5));
      r[k] = kReduceKinds > 1 && kKind == 0 ? QuotientBySteps(d, n, m) : hn::Div(n, m);
    }
    EndPart(r);
  }
  HWY_INLINE void Evaluate() {}
  HWY_INLINE void Result(const V*, V* to) const {
    for (size_t k = 0; k < kVectors; ++k) to[k] = r[k];
  }
};

// What Main covers: kOctaves from kLeast on. Below, products underflow, and the arctangent is the
// argument; from kHuge on it is half of pi.
template <typename T>
struct AtanRange {
  static constexpr T kLeast = sizeof(T) == 8 ? T(0x1p-196) : T(0x1p-40);
  static constexpr T kHuge = sizeof(T) == 8 ? T(0x1p60) : T(0x1p26);
  static constexpr int kOctaves = sizeof(T) == 8 ? 256 : 64;
};

// For the ratio, which has no cubes beyond the numbers and is not the argument for small ones.
struct AtanRatioRange : AtanRange<float> {
  static constexpr float kLeast = 0x1p-16f;
  static constexpr int kOctaves = 32;
};

// Whether some number is outside.
template <class Range, class D, size_t K>
HWY_INLINE bool AnyOutsideAtanRange(D d, const VecOf<D> (&x)[K]) {
  using T = hn::TFromD<D>;
  constexpr uint64_t kInside = uint64_t{Range::kOctaves} << (sizeof(T) == 8 ? 52 : 23);
  constexpr uint64_t kSign = uint64_t{1} << (8 * sizeof(T) - 1);
  const auto least = SetBits(d, static_cast<uint64_t>(BitsOfNumber(Range::kLeast)));
  return AnyKeyHas(d, x, kSign - kInside,
                   [&](VecOf<D> v) HWY_ATTR { return hn::Sub(Bits(d, v), least); });
}

template <typename Element>
struct AtanCommon : Kernel<Element> {
  static constexpr int kUnroll = 8;
  static constexpr size_t kLag = HWY_TARGET != HWY_AVX3 && sizeof(Element) == 8 ? 3 : 2;
  static HWY_INLINE int Rare(Element x, Element* r) {
    if constexpr (sizeof(Element) == 8) {
      return dAtanRare(x, r);
    } else {
      return sAtanRare(x, r);
    }
  }
};

template <typename T, template <class, size_t> class Part, class Range = AtanRange<T>>
struct AtanPlain : AtanCommon<T> {
  static constexpr HalfVectors kHalfVectors =
      sizeof(T) == 8 ? HalfVectors::kAtEnd : HalfVectors::kAlone;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&x)[K]) {
    return AnyOutsideAtanRange<Range>(d, x);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    Part<D, 1> parts[K];
    SomeInTurn<AtanCommon<T>::kLag>(parts, x, r);
  }

  struct Wide : AtanCommon<T> {
    static constexpr int kUnroll = 2;
    using Rarity = RareAbove<T, sizeof(T) == 8 ? 0x7FEFFFFF : 0x7F7FFFFF>;  // infinity or NaN
    template <class D, class V>
    static HWY_INLINE V Main(D d, V x) {
      const auto tiny = MagnitudeBelow(d, x, Range::kLeast);
      const auto below = MagnitudeBelow(d, x, Range::kHuge);
      const auto common = hn::AndNot(tiny, below);
      const V half_pi = hn::CopySign(hn::Set(d, T(0x1.921fb54442d18p+0)), x);
      const V group[1] = {Selected(hn::IfThenElse(common, x, hn::Set(d, T(1))))};
      V r[1];
      MainGroup(d, group, r);
      return hn::IfThenElse(common, r[0], hn::IfThenElse(tiny, x, half_pi));
    }
  };
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
