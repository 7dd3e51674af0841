// |a| in double precision, one computation for all tiers: the squares in full, t + rest; the root s
// of t by an estimate of 1/sqrt(t) with 15 correct bits and the binomial series; and what remains
// of t + rest over 2 s. At most 0.5001 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cabs/zabs.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/cabs/cabs_scalar.h"
#include "pex_core/cmul/exact_products-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Common lanes have parts from 2^-400 below 2^500, so that the squares and their errors are exact,
// or one of them zero.
struct zAbsKernel : ComplexKernel<double> {
  static constexpr bool kRealResult = true;
  static constexpr int kUnroll = 4;
  using Outside = PartsOutside<0x26F00000, 0x5F2FFFFF>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> a) {
    return Outside::MayBeAny(d, a.re, a.im);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return hn::Or(IsZero(d, a), Outside::Any(d, a.re, a.im));
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&a)[K], V (&r)[K]) {
    using C = RootConstants<double>;
    V t[K], rest[K], s[K];
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> square = SumOfSquares(d, a[k]);
      t[k] = square.hi;
      rest[k] = square.lo;
    }
    for (size_t k = 0; k < K; ++k) {
      s[k] = hn::Sqrt(t[k]);
      const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s[k])));
      const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s[k], z)));
      const V remainder = hn::Add(Remainder(d, t[k], s[k], s[k]), rest[k]);
      r[k] = hn::Add(s[k], hn::Mul(remainder, half_inverse));
    }
  }
  static double Rare(Complex<double> a) { return zAbsScalar(a); }
};

int zAbs(int32_t n, const PexComplex16* a, double* r) { return MapComplex<zAbsKernel>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zAbs);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, double, ControlGuard, zAbs, zAbs_HA)
}  // namespace pex
#endif
