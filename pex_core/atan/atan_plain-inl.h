// The LA and EP kernels of Atan: atan(a) = angle + atan(t), t = (a - c)/(1 + c a), angle = atan(c),
// with c = 0 for small a and finite ones beyond, the last of which serves up to infinity.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_kernel/elementwise-inl.h"
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

// The table by rows, for the levels that read whole rows.
template <typename T>
struct AtanPlainRows {
  alignas(64) T row[16][2];
};
template <typename T>
inline constexpr AtanPlainRows<T> kAtanPlainRows = [] {
  AtanPlainRows<T> rows = {};
  for (int i = 0; i < 16; ++i) {
    rows.row[i][0] = AtanBinsOf<T>::kBins.c[i];
    rows.row[i][1] = AtanBinsOf<T>::kBins.angle[i];
  }
  return rows;
}();

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
    // The scalar unit takes the numbers out.
    alignas(32) uint64_t bits[4];
    hn::Store(Bits(d, sum), hn::RebindToSigned<D>(), reinterpret_cast<int64_t*>(bits));
    const auto row = [&bits](size_t lane) HWY_ATTR {
      return _mm_load_pd(kAtanPlainRows<T>.row[bits[lane] >> B::kBit & 15]);
    };
    const auto rows = [&row](size_t lane) HWY_ATTR {
      return _mm256_insertf128_pd(_mm256_castpd128_pd256(row(lane)), row(lane + 2), 1);
    };
    const __m256d even = rows(0), odd = rows(1);
    return {V{_mm256_unpacklo_pd(even, odd)}, V{_mm256_unpackhi_pd(even, odd)}};
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
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      const AtanBin<V> bin = AtanBinOf(d, a);
      // The difference is exact where it is not much less than c.
      t[k] = hn::Div(hn::Sub(a, bin.c), hn::Add(hn::Set(d, T(1)), hn::Mul(bin.c, a)));
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

// The same for EP in single precision, with no other c than 0 and 2: |t| < 0.62.
template <auto& kC, class D, size_t kVectors>
struct AtanShortPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = kVectors;
  V t[kVectors];
  MaskOf<D> high[kVectors];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      high[k] = hn::Gt(a, hn::Set(d, 0.62f));
      t[k] = hn::Div(SubWhere(d, high[k], a, hn::Set(d, 2.0f)),
                     AddWhere(d, high[k], hn::Set(d, 1.0f), hn::Add(a, a)));
    }
    EndPart(t);
  }
  HWY_INLINE void Evaluate() { AtanSeries<kC>(D(), t); }
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    for (size_t k = 0; k < kVectors; ++k) {
      r[k] = hn::CopySignToAbs(AddWhere(d, high[k], t[k], hn::Set(d, 0x1.1b6e1ap+0f)), x[k]);
    }
  }
};

// What Main covers. Below, products underflow, and the arctangent is the argument; above, it is
// half of pi.
template <typename T>
struct AtanRange {
  static constexpr T kLeast = sizeof(T) == 8 ? T(0x1p-196) : T(0x1p-40);
  static constexpr T kHuge = sizeof(T) == 8 ? T(0x1p60) : T(0x1p26);
};

// Whether some number is outside the 64 octaves of floats or 256 of doubles from the least on.
template <class D, size_t K>
HWY_INLINE bool AnyOutsideAtanRange(D d, const VecOf<D> (&x)[K]) {
  using T = hn::TFromD<D>;
  const auto least = SetBits(d, static_cast<uint64_t>(BitsOfNumber(AtanRange<T>::kLeast)));
  constexpr uint64_t kAbove = sizeof(T) == 8 ? uint64_t{7} << 60 : uint64_t{3} << 29;
  return AnyKeyHas(d, x, kAbove, [&](VecOf<D> v) HWY_ATTR { return hn::Sub(Bits(d, v), least); });
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

template <typename T, template <class, size_t> class Part>
struct AtanPlain : AtanCommon<T> {
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&x)[K]) {
    return AnyOutsideAtanRange(d, x);
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
      const auto tiny = MagnitudeBelow(d, x, AtanRange<T>::kLeast);
      const auto below = MagnitudeBelow(d, x, AtanRange<T>::kHuge);
      const auto common = hn::AndNot(tiny, below);
      const V half_pi = hn::CopySign(hn::Set(d, T(0x1.921fb54442d18p+0)), x);
      const V group[1] = {hn::IfThenElse(common, x, hn::Set(d, T(1)))};
      V r[1];
      MainGroup(d, group, r);
      return hn::IfThenElse(common, r[0], hn::IfThenElse(tiny, x, half_pi));
    }
  };
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_ATAN_ATAN_PLAIN_INL_H_
