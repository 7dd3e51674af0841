// The complementary error function and the normal distribution function in HA from a point c of a
// table of the function f and its derivative s:
//   f(x) = f(c) + s d T,  d = x - c,
// T that of erf_quotient-inl.h in w = d (x + c) and v = d^2: T - 1 is a quotient with the same
// divisor. The function is next to a double at its points, which lie closer together the
// larger |x| is, so that s d T is at most a twentieth of the value. The sum of the value and s d is
// kept with what its roundings leave. What the tables lack weighs at most 0.018 ulp, and all else
// less: the error is below 0.53 ulp (0.5168 seen).

#include "hwy/highway.h"
#include "pex_core/_heap/real/cdfnorm_tables.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_quotient-inl.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
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

// A table and the coefficients of T.
struct CdfNormCurve {
  static constexpr auto& kPoints = kCdfNormPoints;
  static constexpr double kUnit = kCdfNormUnit, kVertex = kCdfNormVertex;
  static constexpr auto& kRatio = kCdfNormRatio;
  static constexpr double kWhole = 4, kFourth = 1.0 / 960;
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

struct ErfcCurve {
  static constexpr auto& kPoints = kErfcPoints;
  static constexpr double kUnit = kErfcUnit, kVertex = kErfcVertex;
  // Twice those of a fourth of w^2.
  static constexpr double kRatio[] = {kCdfNormRatio[0] * 2, kCdfNormRatio[1] * 8,
                                      kCdfNormRatio[2] * 32};
  static constexpr double kWhole = 2, kFourth = 1.0 / 120;
  // From the vertex to 25.25, where the result is 2^-925 and no part of it but 0 is below 2^-86 of
  // it, or (kWide) from -8164 to 26.54.
  static constexpr double kWideEnd = -8164;
  template <bool kWide>
  using Rarity =
      RareByDistance<double, kWide ? kWideEnd : kVertex, true, kWide ? 0x40BFFE89 : 0x40409FFF>;
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

// Some vectors' results, in the parts of SomeInTurn, from their rows.
template <class Curve, bool kWide, class D, size_t K>
struct CurveResults {
  using V = VecOf<D>;
  static constexpr size_t kSize = K;
  const RowOffsets<sizeof(CurvePoint), D>* at;
  V value[K], slope[K], dx[K], w[K], v[K], t[K];

  static HWY_INLINE V Set(double z) { return hn::Set(D(), z); }
  static HWY_INLINE V Scaled(V z) { return kWide ? hn::Mul(z, Set(kCurveScale)) : z; }

  HWY_INLINE void Reduce(const V* x) {
    for (size_t k = 0; k < K; ++k) {
      const auto row = LoadRows4(D(), &Curve::kPoints[0].c, at[k]);
      dx[k] = hn::Sub(x[k], row.a);
      value[k] = Scaled(row.b);
      slope[k] = Scaled(row.c);
      w[k] = hn::Mul(dx[k], hn::Add(x[k], row.a));
      v[k] = hn::Mul(dx[k], hn::Mul(dx[k], Set(Curve::kWhole)));
    }
    EndStep(w);
    EndStep(v);
  }

  // T - 1
  HWY_INLINE void Evaluate() {
    AddendsOfQuotient<Curve>(D(), w, v);
    for (size_t k = 0; k < K; ++k) {
      t[k] = hn::Div(hn::Sub(v[k], w[k]), hn::Add(w[k], Set(Curve::kWhole)));
    }
    EndPart(t);
  }

  HWY_INLINE void Result(const V*, V* y) const {
    for (size_t k = 0; k < K; ++k) {
      const V p = hn::Mul(slope[k], dx[k]);
      const V hi = hn::Add(value[k], p);
      const V over = SlopeRemainder(D(), hn::Sub(hi, value[k]), slope[k], dx[k], p);
      y[k] = hn::Add(hi, hn::Sub(hn::Mul(p, t[k]), over));
      if constexpr (kWide) y[k] = hn::Mul(y[k], Set(1 / kCurveScale));
    }
  }
};

// The rows of all vectors are found first: they arrive while others' results are computed.
template <class Curve, bool kWide, class D, class V, size_t K>
HWY_INLINE void FromCurve(D d, const V (&x)[K], V (&y)[K]) {
  constexpr size_t kBlock = K < 4 ? K : 1;
  RowOffsets<sizeof(CurvePoint), D> at[K];
  CurveResults<Curve, kWide, D, kBlock> parts[K / kBlock];
  V safe[K];
#pragma GCC unroll 16
  for (size_t k = 0; k < K; ++k) {
    safe[k] = kWide ? Curve::Clamped(d, x[k]) : x[k];
    const V from = Curve::FromVertex(d, safe[k]);
    // The sum ends in 32 rows.
    const V sum =
        hn::Add(hn::Mul(from, from), hn::Set(d, 0x1.8p52 / (Curve::kUnit * sizeof(CurvePoint))));
    at[k].SetBytes(hn::And(Bits(d, sum), SetBits(d, 0x3FFF * sizeof(CurvePoint))));
    if (k % kBlock == 0) parts[k / kBlock].at = at + k;
  }
  SomeInTurn<2>(parts, safe, y);
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
