// Arg as atan2(Im, Re): bit for bit the values of the real function's tiers.

#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/_kernel/complex-inl.h"

#if defined(PEX_CORE_CARG_CARG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CARG_CARG_INL_H_
#undef PEX_CORE_CARG_CARG_INL_H_
#else
#define PEX_CORE_CARG_CARG_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Formula::Of(d, y, x, r) is atan2(y, x) for arrays of common lanes.
template <typename Element, typename Compute, class Domain, class Formula>
struct ArgKernel : ComplexKernel<Element, Compute> {
  static constexpr bool kRealResult = true;
  static constexpr int kUnroll = Formula::kUnroll;
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&a)[K]) {
    V y[K], x[K];
    Parts(a, y, x);
    return Domain::AnyMayBeRare(d, y, x);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> a) {
    return Domain::IsRare(d, a.im, a.re);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&a)[K], V (&r)[K]) {
    V y[K], x[K];
    Parts(a, y, x);
    Formula::Of(d, y, x, r);
  }

 private:
  template <class V, size_t K>
  static HWY_INLINE void Parts(const Complex<V> (&a)[K], V (&y)[K], V (&x)[K]) {
    for (size_t k = 0; k < K; ++k) {
      y[k] = a[k].im;
      x[k] = a[k].re;
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CARG_CARG_INL_H_
