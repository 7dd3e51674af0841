// |a| in single precision, one computation for all tiers: in double precision, where squares of
// floats neither overflow nor underflow, by an estimate of 1/sqrt(|a|^2) with 15 correct bits and
// one step of the binomial series: 2^-42 of itself before the one rounding, 0.500001 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cabs/cabs.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/cabs/cabs_scalar.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

struct cAbsKernel : ComplexKernel<float, double> {
  static constexpr bool kRealResult = true;
  static constexpr int kUnroll = 4;
  using Range = RareAbove<float, 0x7F7FFFFF>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return LanesAbove(d, JoinKeys(d, Range::Key(d, a.re), Range::Key(d, a.im)), Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&a)[K], V (&r)[K]) {
    const hn::Rebind<double, D> wide;
    using W = VecOf<decltype(wide)>;
    W t[K], y[K], s[K], e[K];
    for (size_t k = 0; k < K; ++k) {
      const Complex<W> w = Widen(d, a[k]);
      t[k] = hn::Add(hn::Mul(w.re, w.re), hn::Mul(w.im, w.im));
    }
    RootStart<true>(wide, t, RootConstants<double>::kStart, y, s);
    // sqrt(t) = s / sqrt(1 - e)
    for (size_t k = 0; k < K; ++k) e[k] = hn::Sub(hn::Set(wide, 1.0), hn::Mul(s[k], y[k]));
    for (size_t k = 0; k < K; ++k) {
      const W p = hn::Add(hn::Mul(e[k], hn::Set(wide, 0.375)), hn::Set(wide, 0.5));
      r[k] = hn::DemoteTo(d, hn::Add(s[k], hn::Mul(hn::Mul(s[k], e[k]), p)));
    }
  }
  static float Rare(Complex<float> a) { return cAbsNotFinite(a); }
};

int cAbs(int32_t n, const PexComplex8* a, float* r) { return MapComplex<cAbsKernel>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cAbs);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, float, ControlGuard, cAbs, cAbs_HA)
}  // namespace pex
#endif
