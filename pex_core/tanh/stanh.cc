// The hyperbolic tangent in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tanh/stanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/tanh/tanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsTanh";

template <typename Compute = float>
struct sTanhCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(float x, float* r) { return TanhRare(x, r); }
};

// With x = n ln2/2 + h, |h| <= ln2/4, and P = 2^n: ((P + 1) tanh h - (1 - P))/((P + 1) + (P - 1)
// tanh h). ln2/2 is a float of 21 bits to 2^-29 of itself, so h is exact as long as its error could
// tell. From 10 on both sides are the same number. Odd in every bit, as P and 1/P differ by scale.
struct sTanhLA : sTanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V h[K], power[K];
    const V one = hn::Set(d, 1.0f);
    for (size_t k = 0; k < K; ++k) {
      const V m = hn::Min(hn::Max(x[k], hn::Set(d, -10.0f)), hn::Set(d, 10.0f));
      const auto [n, nd] = ToNearestStep(d, m, 0x1.715476p+1f);
      h[k] = hn::Sub(m, hn::Mul(nd, hn::Set(d, 0x1.62e43p-2f)));
      power[k] = FromBits(d, hn::Add(hn::ShiftLeft<23>(n), Bits(d, one)));
    }
    for (size_t k = 0; k < K; ++k) {
      const V h2 = SquareNearZero(d, h[k]);
      const V t = hn::Mul(h[k], hn::Add(hn::Mul(h2, Horner(d, h2, sTanhPolynomial)), one));
      const V a = hn::Sub(one, power[k]), b = hn::Add(one, power[k]);
      out[k] = hn::Div(hn::Sub(hn::Mul(b, t), a), hn::Sub(b, hn::Mul(a, t)));
    }
  }
};
using sTanhEP = sTanhLA;

// In double precision, where nothing underflows. Correctly rounded for all floats.
struct sTanhHA : sTanhCommon<double> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    VecOf<decltype(dd)> m[K], y[K];
    for (size_t k = 0; k < K; ++k) m[k] = TanhMagnitude(dd, hn::PromoteTo(dd, x[k]));
    TanhOfMagnitude(dd, m, y);
    for (size_t k = 0; k < K; ++k) out[k] = TanhResult(hn::DemoteTo(d, y[k]), x[k]);
  }
};

PEX_UNARY(float, sTanh_11, sTanhEP)
PEX_UNARY(float, sTanh_21, sTanhLA)
PEX_UNARY(float, sTanh_HA, sTanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sTanh_11)
PEX_EXPORT_UNARY(float, sTanh_21)
PEX_EXPORT_UNARY(float, sTanh_HA)
}  // namespace pex
#endif
