// The natural logarithm of complex numbers in double precision: ln(x^2 + y^2)/2 and the angle, by
// the real functions' methods of each tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cln/zln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_log-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Squares s = x^2 + y^2 from 3/8 to 11/4: elsewhere |ln s| > 0.98, and the two units of s's last
// place that s may be off by are at most one of the result's.
using OffCircle = RareOutside<double, 0x3FD80000, 0x4005FFFF>;
// The polynomial's argument t with what s lacks of x^2 + y^2, for lanes near the circle.
template <bool kWide, class D, class V = VecOf<D>>
HWY_INLINE V AddRestOfSquare(D d, Complex<V> z, V s, LogShort<D> u, V t) {
  const V ax = hn::Abs(z.re), ay = hn::Abs(z.im);
  const V more = hn::Max(ax, ay), less = hn::Min(ax, ay);
  const Pair<V> x2 = TwoProduct(d, more, more), y2 = TwoProduct(d, less, less);
  V rest = hn::Add(hn::Sub(y2.hi, hn::Sub(s, x2.hi)), hn::Add(x2.lo, y2.lo));
  if constexpr (kWide) rest = RestThatCounts(d, s, rest);
  const auto power = hn::Add(hn::Sub(Bits(d, u.m), Bits(d, s)), SetBits(d, BitsOfNumber(1.0)));
  const V sum = hn::Add(t, hn::Mul(rest, hn::Mul(u.c, FromBits(d, power))));
  const V r = hn::IfThenElse(LanesBeyond<OffCircle>(d, s), t, sum);
  const auto off = LanesBeyond<OffOne>(d, s);
  if (hn::AllTrue(d, off)) return r;
  return hn::IfThenElse(off, r, Value(d, SquaresLessOne<Pair<V>>(d, more, less)));
}

template <bool kWide>
struct dComplexLn : ComplexLogKernel<ComplexLn, kWide> {
  template <class D, class V, size_t K>
  static HWY_INLINE void Squares(const D, const Complex<V> (&z)[K], V (&s)[K]) {
    for (size_t k = 0; k < K; ++k) {
      s[k] = hn::Add(hn::Mul(z[k].re, z[k].re), hn::Mul(z[k].im, z[k].im));
    }
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Octants(D d, const Complex<V> (&z)[K], AtanOctant<V> (&r)[K]) {
    for (size_t k = 0; k < K; ++k) r[k] = AtanOctantOf(d, z[k].im, z[k].re);
  }
  template <class D, class V, size_t K, size_t N>
  static HWY_INLINE void Results(D d, const Complex<V> (&z)[K], const V (&size)[K],
                                 const AtanOctant<V> (&octant)[K], const double (&c)[N],
                                 Complex<V> (&r)[K]) {
    V y[K], angle[K];
    for (size_t k = 0; k < K; ++k) y[k] = z[k].im;
    AtanOctantSum<kWide>(d, octant, y, c, angle);
    for (size_t k = 0; k < K; ++k) r[k] = {hn::Mul(size[k], hn::Set(d, 0.5)), angle[k]};
  }
};

template <bool kWide>
struct dComplexLnLA : dComplexLn<kWide> {
  using Base = dComplexLn<kWide>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V s[K], t[K], size[K];
    LogShort<D> u[K];
    AtanOctant<V> octant[K];
    Base::Octants(d, z, octant);
    Base::Squares(d, z, s);
    LogShortReduce(d, s, u);
    for (size_t k = 0; k < K; ++k) t[k] = ProductLessOne(d, u[k].m, u[k].c);
    if (AnyWithin<OffCircle>(d, s)) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) t[k] = AddRestOfSquare<kWide>(d, z[k], s[k], u[k], t[k]);
    }
    LogShortSum<kWide>(d, u, t, size);
    Base::Results(d, z, size, octant, kAtanOctantLA, r);
  }
};

template <bool kWide>
struct dComplexLnEP : dComplexLn<kWide> {
  using Base = dComplexLn<kWide>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 3 : 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V s[K], t[K], t2[K], q[K], size[K];
    LogShort<D> u[K];
    AtanOctant<V> octant[K];
    Base::Octants(d, z, octant);
    Base::Squares(d, z, s);
    LogShortReduce<LnPointFactors>(d, s, u);
    for (size_t k = 0; k < K; ++k) {
      t[k] = hn::Sub(hn::Mul(u[k].m, u[k].c), hn::Set(d, 1.0));
    }
    if (AnyWithin<OffOne>(d, s)) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) {
        const V ax = hn::Abs(z[k].re), ay = hn::Abs(z[k].im);
        const V exact = Value(d, SquaresLessOne<Pair<V>>(d, hn::Max(ax, ay), hn::Min(ax, ay)));
        t[k] = hn::IfThenElse(LanesBeyond<OffOne>(d, s[k]), t[k], exact);
      }
    }
    for (size_t k = 0; k < K; ++k) {
      V part = t[k];
      if constexpr (kWide) part = ToBeSquared(d, part);
      t2[k] = hn::Mul(part, part);
    }
    EvenOdd(d, t, t2, kLnEP, q);
    for (size_t k = 0; k < K; ++k) {
      constexpr double kLog2 = (NaturalLog::kLog2Hi + NaturalLog::kLog2Lo) * kExponentUnit;
      const V head = hn::Add(hn::Mul(u[k].e, hn::Set(d, kLog2)), u[k].log);
      size[k] = hn::Add(head, hn::Add(t[k], hn::Mul(t2[k], q[k])));
    }
    Base::Results(d, z, size, octant, kAtanOctantEP, r);
  }
};

template <bool kWide>
struct dComplexLnHA : dComplexLn<kWide> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 3;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    Pair<V> size[K], angle[K];
    ComplexLogPairs<kWide>(d, z, size, angle);
    for (size_t k = 0; k < K; ++k) {
      r[k] = {hn::Mul(Value(d, size[k]), hn::Set(d, 0.5)),
              hn::CopySignToAbs(Value(d, angle[k]), z[k].im)};
    }
  }
};

struct dLnLA : dComplexLnLA<false> {
  using Wide = dComplexLnLA<true>;
};
struct dLnEP : dComplexLnEP<false> {
  using Wide = dComplexLnEP<true>;
};

struct dLnHA : dComplexLnHA<false> {
  using Wide = dComplexLnHA<true>;
};

int zLn_26(int32_t n, const PexComplex16* a, PexComplex16* r) { return MapComplex<dLnEP>(n, a, r); }
int zLn_50(int32_t n, const PexComplex16* a, PexComplex16* r) { return MapComplex<dLnLA>(n, a, r); }
int zLn_HA(int32_t n, const PexComplex16* a, PexComplex16* r) { return MapComplex<dLnHA>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zLn_26);
HWY_EXPORT(zLn_50);
HWY_EXPORT(zLn_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLn_26, zLn_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLn_50, zLn_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zLn_HA, zLn_HA)
}  // namespace pex
#endif
