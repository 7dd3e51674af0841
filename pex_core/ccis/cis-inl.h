// What CIS shares: the arguments that are not finite, and lanes of any finite ones.

#include "pex_core/_heap/real/trig_sincos-inl.h"
#include "pex_core/_kernel/complex-inl.h"

#if defined(PEX_CORE_CCIS_CIS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CCIS_CIS_INL_H_
#undef PEX_CORE_CCIS_CIS_INL_H_
#else
#define PEX_CORE_CCIS_CIS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <typename Element>
struct WideCIS : ComplexKernel<Element, double> {
  static constexpr bool kRealArgument = true;
  using Range = RareAbove<Element, sizeof(Element) == 8 ? 0x7FEFFFFF : 0x7F7FFFFF>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return LanesAbove(d, Range::Key(d, x), Range::kLimit);
  }
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, Complex<V>& r) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> in[1], sin[1], cos[1];
    if constexpr (sizeof(Element) == 8) {
      in[0] = x;
    } else {
      in[0] = hn::PromoteTo(wide, x);
    }
    SineCosineHA::Wide(wide, in, sin, cos);
    if constexpr (sizeof(Element) == 8) {
      r = {cos[0], sin[0]};
    } else {
      r = Narrow(d, Complex<VecOf<decltype(wide)>>{cos[0], sin[0]});
    }
  }
  // NaN, raising invalid for an infinity.
  static Complex<Element> Rare(Element x) {
    Element r;
    TrigRare(x, &r);
    return {r, r};
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CCIS_CIS_INL_H_
