// The hyperbolic cosine in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cosh/scosh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/hyperbolic_scalar.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsCosh";

template <typename Compute = float>
struct sCoshCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x42ACFFFF>;  // |x| >= 86.5
  static HWY_INLINE int Rare(float x, float* r) { return sCoshScalar(x, r); }
};

// C (1 + r^2/2) + S r.
struct sCoshEP : sCoshCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    for (size_t k = 0; k < K; ++k) {
      const auto [grow, decay, r, rest] = Split<Points::kRough>(d, BesideOne(d, x[k]));
      const V a = hn::Add(grow, decay), b = hn::Sub(grow, decay);
      const V half = hn::Set(d, 0.5f), two = hn::Set(d, 2.0f);
#if HWY_TARGET == HWY_SSE4  // the same, for products on their own
      out[k] = hn::Add(a, hn::Mul(r, hn::Add(b, hn::Mul(a, hn::Mul(r, half)))));
      (void)two;
#else
      const V twice = AddExactProduct(b, two, SilentMul(a, r));  // 2 S + C r
      out[k] = AddExactProduct(SilentMul(r, twice), half, a);
#endif
    }
  }
};

struct sCoshLA : sCoshCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V y[K];
    for (size_t k = 0; k < K; ++k) y[k] = BesideOne(d, x[k]);
    CoshLA(d, y, out, sCoshPolynomial, sSinhPolynomial);
  }
};

// dCoshLAPolynomial, the first coefficient raised. The hyperbolic cosine of 0x1.c12a5p-5 lies a
// part of an ulp of double beyond the middle of two floats, on whose other side its sum came out:
// this adds up to 0.4 ulp, and sends no other float to the wrong side.
inline constexpr double kCoshForSingle[] = {dCoshLAPolynomial[0] + 0x1.8p-45, dCoshLAPolynomial[1],
                                            dCoshLAPolynomial[2]};

// In double precision, where nothing underflows. Correctly rounded for all floats.
struct sCoshHA : sCoshCommon<double> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    VecOf<decltype(dd)> wide[K], y[K];
    for (size_t k = 0; k < K; ++k) wide[k] = hn::PromoteTo(dd, x[k]);
    CoshOf<Points::kPlain>(dd, wide, y, kCoshForSingle, dSinhPolynomial);
    for (size_t k = 0; k < K; ++k) out[k] = hn::DemoteTo(d, y[k]);
  }
};

PEX_UNARY(float, sCosh_11, sCoshEP)
PEX_UNARY(float, sCosh_21, sCoshLA)
PEX_UNARY(float, sCosh_HA, sCoshHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sCosh_11)
PEX_EXPORT_UNARY(float, sCosh_21)
PEX_EXPORT_UNARY(float, sCosh_HA)
}  // namespace pex
#endif
