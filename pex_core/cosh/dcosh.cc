// The hyperbolic cosine in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cosh/dcosh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/hyperbolic_scalar.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCosh";

template <class Groups = LargeGroups<double>>
struct dCoshCommon : Groups {
  using Rarity = RareAbove<double, 0x4085FFFF>;  // |x| >= 704
  static HWY_INLINE int Rare(double x, double* r) { return dCoshScalar(x, r); }
};

struct dCoshEP : dCoshCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    HyperbolicSplit<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = Split<Points::kRough>(d, BesideOne(d, x[k]));
    for (size_t k = 0; k < K; ++k) {
      const auto& [grow, decay, r, rest] = u[k];
      const V a = hn::Add(grow, decay), b = hn::Sub(grow, decay);
      out[k] = HyperbolicShortSum(d, a, b, r, r, dSinhEPPolynomial[0]);
    }
  }
};

struct dCoshLA : dCoshCommon<> {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 4 : 8;  // SSE4 would spill more
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V y[K];
    for (size_t k = 0; k < K; ++k) y[k] = BesideOne(d, x[k]);
    CoshLA(d, y, out, dCoshLAPolynomial, dSinhPolynomial);
  }
};

struct dCoshHA : dCoshCommon<Kernel<double>> {
  static constexpr int kUnroll = 4;              // more vectors do not fit the registers
  using Rarity = RareAbove<double, 0x40857FFF>;  // |x| >= 688: halves of e^x would overflow
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V m[K];
    for (size_t k = 0; k < K; ++k) m[k] = BesideOne(d, hn::Abs(x[k]));
    HyperbolicHA<true>(d, m, out);
  }
};

PEX_UNARY(double, dCosh_26, dCoshEP)
PEX_UNARY(double, dCosh_50, dCoshLA)
PEX_UNARY(double, dCosh_HA, dCoshHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCosh_26)
PEX_EXPORT_UNARY(double, dCosh_50)
PEX_EXPORT_UNARY(double, dCosh_HA)
}  // namespace pex
#endif
