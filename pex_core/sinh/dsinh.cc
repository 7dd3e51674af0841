// The hyperbolic sine in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sinh/dsinh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/hyperbolic_scalar.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdSinh";

template <class Groups = LargeGroups<double>>
struct dSinhCommon : Groups {
  using Rarity = RareAbove<double, 0x4085FFFF>;  // |x| >= 704
  static HWY_INLINE int Rare(double x, double* r) { return dSinhScalar(x, r); }
};

template <class V, size_t K>
HWY_INLINE void Magnitudes(const V (&x)[K], V (&m)[K]) {
  for (size_t k = 0; k < K; ++k) m[k] = hn::Abs(x[k]);
}

struct dSinhEP : dSinhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    HyperbolicSplit<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = Split<Points::kRoughFromZero>(d, hn::Abs(x[k]));
    for (size_t k = 0; k < K; ++k) {
      const auto& [grow, decay, r, rest] = u[k];
      const V a = hn::Sub(grow, decay), b = hn::Add(grow, decay);
      const V y = HyperbolicShortSum(d, a, b, r, BesideOne(d, r), dSinhEPPolynomial[0]);
      out[k] = hn::CopySignToAbs(y, x[k]);
    }
  }
};

struct dSinhLA : dSinhCommon<> {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 4 : 8;  // SSE4 would spill more
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V m[K], y[K];
    Magnitudes(x, m);
    SinhOfMagnitude<Points::kLate>(d, m, y, dCoshLatePolynomial, dSinhLatePolynomial);
    for (size_t k = 0; k < K; ++k) out[k] = hn::CopySignToAbs(y[k], x[k]);
  }
};

// Tiny arguments are their own results; where products with them would tell of an underflow they
// are put aside.
struct dSinhHA : dSinhCommon<Kernel<double>> {
  static constexpr int kUnroll = 4;              // more vectors do not fit the registers
  using Rarity = RareAbove<double, 0x40857FFF>;  // |x| >= 688: halves of e^x would overflow
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr double kTiny = 0x1p-54;
    V m[K], y[K];
    for (size_t k = 0; k < K; ++k) {
      m[k] = kHasSilentMul<V> ? hn::Abs(x[k]) : MagnitudeUnlessTiny(d, x[k], kTiny);
    }
    HyperbolicHA<false>(d, m, y);
    for (size_t k = 0; k < K; ++k) {
      out[k] =
          kHasSilentMul<V> ? hn::CopySignToAbs(y[k], x[k]) : SignedUnlessTiny(d, x[k], y[k], kTiny);
    }
  }
};

PEX_UNARY(double, dSinh_26, dSinhEP)
PEX_UNARY(double, dSinh_50, dSinhLA)
PEX_UNARY(double, dSinh_HA, dSinhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dSinh_26)
PEX_EXPORT_UNARY(double, dSinh_50)
PEX_EXPORT_UNARY(double, dSinh_HA)
}  // namespace pex
#endif
