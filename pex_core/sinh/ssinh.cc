// The hyperbolic sine in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sinh/ssinh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/hyperbolic_scalar.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsSinh";

template <typename Compute = float>
struct sSinhCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x42ACFFFF>;  // |x| >= 86.5
  static HWY_INLINE int Rare(float x, float* r) { return sSinhScalar(x, r); }
};

// S (1 + r^2/2) + C r.
struct sSinhEP : sSinhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    for (size_t k = 0; k < K; ++k) {
      const auto [grow, decay, r, rest] = Split<Points::kRoughFromZero>(d, hn::Abs(x[k]));
      const V a = hn::Sub(grow, decay), b = hn::Add(grow, decay);
      const V slope = AddExactProduct(hn::Mul(a, r), hn::Set(d, 0.5f), b);
      out[k] = hn::CopySignToAbs(hn::Add(a, hn::Mul(r, slope)), x[k]);
    }
  }
};

// The same with sinh r a cubic. a = 0 for small arguments, and r is not tiny for others, so that a
// r does not underflow.
struct sSinhLA : sSinhCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    HyperbolicSplit<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = Split<Points::kAccurateFromZero>(d, hn::Abs(x[k]));
    for (size_t k = 0; k < K; ++k) {
      const auto& [grow, decay, r, rest] = u[k];
      const V a = hn::Sub(grow, decay), b = hn::Add(grow, decay);
      const V square = SquareBesideOne(d, r, sSinhPolynomial[0]);
      const V bend = hn::Mul(hn::Mul(a, r), hn::Set(d, sCoshPolynomial[0]));
      const V slope = hn::Add(b, hn::Add(hn::Mul(b, square), bend));
      const V y = hn::Add(a, hn::Mul(r, slope));
      out[k] = hn::CopySignToAbs(y, x[k]);
    }
  }
};

// In double precision, where nothing underflows. Correctly rounded for all floats.
struct sSinhHA : sSinhCommon<double> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    VecOf<decltype(dd)> m[K], y[K];
    for (size_t k = 0; k < K; ++k) m[k] = hn::PromoteTo(dd, hn::Abs(x[k]));
    SinhOfMagnitude<Points::kLate>(dd, m, y, dCoshLatePolynomial, dSinhLatePolynomial);
    for (size_t k = 0; k < K; ++k) out[k] = hn::CopySignToAbs(hn::DemoteTo(d, y[k]), x[k]);
  }
};

PEX_UNARY(float, sSinh_11, sSinhEP)
PEX_UNARY(float, sSinh_21, sSinhLA)
PEX_UNARY(float, sSinh_HA, sSinhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sSinh_11)
PEX_EXPORT_UNARY(float, sSinh_21)
PEX_EXPORT_UNARY(float, sSinh_HA)
}  // namespace pex
#endif
