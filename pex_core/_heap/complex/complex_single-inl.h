// Complex elementary functions in float arithmetic, beside kernels in double, HA's. Lanes outside
// the range of the float formula, and those that it finds delicate, are computed like HA's; what HA
// leaves to the scalar routine goes there too.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The doubles of both halves of vectors of floats, and back.
template <class D, class V, class Wide = hn::Rebind<double, hn::Half<D>>>
HWY_INLINE void WidenHalves(D, V x, VecOf<Wide>& lower, VecOf<Wide>& upper) {
  const hn::Half<D> half;
  lower = hn::PromoteTo(Wide(), hn::LowerHalf(half, x));
  upper = hn::PromoteTo(Wide(), hn::UpperHalf(half, x));
}
template <class D, class W>
HWY_INLINE VecOf<D> NarrowHalves(D d, W lower, W upper) {
  const hn::Half<D> half;
  return hn::Combine(d, hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
}

// One vector's results of a kernel of groups.
template <class K, class D, class V>
HWY_INLINE Complex<V> ResultOf(D d, Complex<V> z) {
  const Complex<V> zs[1] = {z};
  Complex<V> rs[1];
  K::MainGroup(d, zs, rs);
  return rs[0];
}

// HA's results for the lanes of the mask, which are common ones of HA's.
template <class HA, class D, class V>
HWY_NOINLINE Complex<V> InDoubleWhere(D d, MaskOf<D> mask, Complex<V> z, Complex<V> otherwise) {
  const auto r = ResultOf<HA>(d, Replace(d, hn::Not(mask), z, HA::kHarmless));
  return {hn::IfThenElse(mask, r.re, otherwise.re), hn::IfThenElse(mask, r.im, otherwise.im)};
}

// Formula has IsRare, a mask of what it does not cover, perhaps MayBeRare (complex-inl.h), kUnroll
// and MainGroup.
template <class HA, class Formula>
struct SingleKernel : ComplexKernel<float>, Formula {
  static constexpr int kUnroll = Formula::kUnroll;
  static Complex<float> Rare(Complex<float> z) { return HA::Rare(z); }

  struct Wide : ComplexKernel<float> {
    static constexpr int kUnroll = 1;
    template <class D, class V>
    static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
      return hn::And(Formula::IsRare(d, z), HA::IsRare(d, z));
    }
    template <class D, class V>
    static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
      const auto rare = Formula::IsRare(d, z);
      const auto common =
          ResultOf<Formula>(d, Replace(d, rare, z, ComplexKernel<float>::kHarmless));
      r = hn::AllFalse(d, rare) ? common : InDoubleWhere<HA>(d, rare, z, common);
    }
    static Complex<float> Rare(Complex<float> z) { return SingleKernel::Rare(z); }
  };
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
