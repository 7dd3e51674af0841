// The complementary error function and the normal distribution function in HA from a point c of a
// table of the function f and its derivative s:
//   f(x) = f(c) + s d T,  d = x - c,
// T that of erfc-inl.h: T - 1 = E + (1 + E) v R, E = F(w) - 1 and R = a + b w^2 + e v, in w = d (x
// + c) and v = d^2, for the normal distribution in their halves. The function is next to a double
// at its points, which lie closer together the larger |x| is, so that s d T is at most a twentieth
// of the value. The sum of the value and s d is kept with what its roundings leave. What R lacks
// weighs at most 0.024 ulp, and all else a hundredth: the error is below 0.55 ulp (0.5400 seen).

#include "hwy/highway.h"
#include "pex_core/_heap/real/cdfnorm_tables.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_series.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFC_POINTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFC_POINTS_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFC_POINTS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFC_POINTS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// A table and the coefficients of (F - 1)/w and R.
struct CdfNormCurve {
  static constexpr auto& kPoints = kCdfNormPoints;
  static constexpr double kUnit = kCdfNormUnit, kVertex = kCdfNormVertex;
  static constexpr auto& kMean = kCdfNormMeanHA;
  static constexpr double kRatio[] = {kErfcPointRatio[0] / 2, kErfcPointRatio[1] / 8,
                                      kErfcPointRatio[2] / 4};
  // From -35, where the result is 2^-890, to the vertex, or (kWide) from -37.509, where it comes
  // close to the subnormal numbers, to 8153.
  static constexpr double kWideEnd = 8153;
  template <bool kWide>
  using Rarity =
      RareByDistance<double, kWide ? kWideEnd : kVertex, false, kWide ? 0x40BFFE81 : 0x40471FFF>;
  // From 8.5 on the result is 1.
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Min(x, hn::Set(d, 8.75));
  }
  template <class D, class V>
  static HWY_INLINE V FromVertex(D d, V x) {
    return hn::Sub(hn::Set(d, kVertex), x);
  }
};

// (F - 1)/w by the coefficients for 2 w.
struct ErfcMeans {
  double c[7];
};
inline constexpr ErfcMeans kErfcMeans = [] {
  ErfcMeans means = {};
  double power = 1;
  for (int i = 0; i < 7; ++i) means.c[i] = kCdfNormMeanHA[i] * (power *= 2);
  return means;
}();

struct ErfcCurve {
  static constexpr auto& kPoints = kErfcPoints;
  static constexpr double kUnit = kErfcUnit, kVertex = kErfcVertex;
  static constexpr auto& kMean = kErfcMeans.c;
  static constexpr auto& kRatio = kErfcPointRatio;
  // From the vertex to 24.62, where the result is 2^-880, or (kWide) from -8164 to 26.54.
  static constexpr double kWideEnd = -8164;
  template <bool kWide>
  using Rarity =
      RareByDistance<double, kWide ? kWideEnd : kVertex, true, kWide ? 0x40BFFE89 : 0x40404FFF>;
  // From -6 down the result is 2.
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Max(x, hn::Set(d, -6.125));
  }
  template <class D, class V>
  static HWY_INLINE V FromVertex(D d, V x) {
    return hn::Sub(x, hn::Set(d, kVertex));
  }
};

// Raised by so many octaves nothing underflows on the way to a result above the subnormal numbers.
inline constexpr double kCurveScale = 0x1p300;

// c - slope * x rounded once, as Remainder, from the rounded product and for a slope of 52 bits:
// the parts that masks leave of it and of x are so short that their products are exact.
template <class D, class V>
HWY_INLINE V SlopeRemainder(D d, V c, V slope, V x, [[maybe_unused]] V product) {
#if HWY_TARGET == HWY_SSE4
  const auto upper = [d](V z, int zeros) HWY_ATTR {
    return hn::And(z, FromBits(d, SetBits(d, ~uint64_t{0} << zeros)));
  };
  const V s1 = upper(slope, 27), s2 = hn::Sub(slope, s1);
  const V x1 = upper(x, 26), x2 = hn::Sub(x, x1);
  const V err1 = hn::Sub(product, hn::Mul(s1, x1));
  const V err2 = hn::Sub(err1, hn::Mul(s2, x1));
  const V less = hn::Sub(hn::Mul(s2, x2), hn::Sub(err2, hn::Mul(s1, x2)));
  return hn::Sub(hn::Sub(c, product), less);
#else
  return Remainder(d, c, slope, x);
#endif
}

template <class Curve, bool kWide, class Offsets, class D, class V, size_t K>
HWY_INLINE void CurveFromRows(D d, const V (&x)[K], const Offsets* at, V* y) {
  const auto scaled = [d](V z) HWY_ATTR { return kWide ? hn::Mul(z, hn::Set(d, kCurveScale)) : z; };
  V value[K], slope[K], dx[K], w[K], w2[K], v[K], t[K];
#pragma GCC unroll 4
  for (size_t k = 0; k < K; ++k) {
    const auto row = LoadRows4(d, &Curve::kPoints[0].c, at[k]);
    dx[k] = hn::Sub(x[k], row.a);
    value[k] = scaled(row.b);
    slope[k] = scaled(row.c);
    w[k] = hn::Mul(dx[k], hn::Add(x[k], row.a));
    v[k] = hn::Mul(dx[k], dx[k]);
  }
#pragma GCC unroll 4
  for (size_t k = 0; k < K; ++k) w2[k] = hn::Mul(w[k], w[k]);
  EvenOdd(d, w, w2, Curve::kMean, t);
#pragma GCC unroll 4
  for (size_t k = 0; k < K; ++k) {
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, Curve::kRatio[i]); };
    const V even = hn::Add(hn::Mul(w2[k], c(1)), c(0));
    v[k] = hn::Mul(v[k], hn::Add(even, hn::Mul(v[k], c(2))));
    w[k] = hn::Mul(w[k], t[k]);
  }
#pragma GCC unroll 4
  for (size_t k = 0; k < K; ++k) {
    t[k] = hn::Add(w[k], hn::Mul(hn::Add(hn::Set(d, 1.0), w[k]), v[k]));
  }
#pragma GCC unroll 4
  for (size_t k = 0; k < K; ++k) {
    const V p = hn::Mul(slope[k], dx[k]);
    const V hi = hn::Add(value[k], p);
    const V over = SlopeRemainder(d, hn::Sub(hi, value[k]), slope[k], dx[k], p);
    y[k] = hn::Add(hi, hn::Sub(hn::Mul(p, t[k]), over));
    if constexpr (kWide) y[k] = hn::Mul(y[k], hn::Set(d, 1 / kCurveScale));
  }
}

// The rows of all vectors are found first: they arrive while others' results are computed.
template <class Curve, bool kWide, class D, class V, size_t K>
HWY_INLINE void FromCurve(D d, const V (&x)[K], V (&y)[K]) {
  constexpr size_t kMost = HWY_TARGET == HWY_AVX2 ? 2 : 4;
  constexpr size_t kBlock = K < kMost ? K : K % kMost == 0 ? kMost : 1;
  static_assert(K % kBlock == 0);
  V inner[K / kBlock][kBlock];
  RowOffsets<sizeof(CurvePoint), D> at[K];
#pragma GCC unroll 16
  for (size_t k = 0; k < K; ++k) {
    const V safe = kWide ? Curve::Clamped(d, x[k]) : x[k];
    const V from = Curve::FromVertex(d, safe);
    // The sum ends in 32 rows.
    const V sum =
        hn::Add(hn::Mul(from, from), hn::Set(d, 0x1.8p52 / (Curve::kUnit * sizeof(CurvePoint))));
    at[k].SetBytes(hn::And(Bits(d, sum), SetBits(d, 0x3FFF * sizeof(CurvePoint))));
    inner[k / kBlock][k % kBlock] = safe;
  }
#pragma GCC unroll 16
  for (size_t b = 0; b < K / kBlock; ++b) {
    CurveFromRows<Curve, kWide>(d, inner[b], at + b * kBlock, y + b * kBlock);
  }
}

template <class Curve, int (*kRare)(double, double*), bool kWide = true>
struct CurvePart : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  static constexpr int kUnroll = 16;
  static constexpr int kRestUnroll = 4;
  using Rarity = typename Curve::template Rarity<kWide>;
  static HWY_INLINE int Rare(double x, double* r) { return kRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    FromCurve<Curve, kWide>(d, x, out);
  }
};

template <class Curve, int (*kRare)(double, double*)>
struct CurveKernel : CurvePart<Curve, kRare, false> {
  using Wide = CurvePart<Curve, kRare>;
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_POINTS_INL_H_
