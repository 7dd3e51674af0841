// a rounded to an integer in the caller's rounding mode, without inexact.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/nearbyint/nearbyint.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct NearbyInt : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return RoundTo<kCurrentQuiet>(x);
  }
};

PEX_PLAIN_UNARY(double, dNearbyInt, NearbyInt<double>)
PEX_PLAIN_UNARY(float, sNearbyInt, NearbyInt<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_HARDWARE_UNARY(double, dNearbyInt)
PEX_EXPORT_HARDWARE_UNARY(float, sNearbyInt)
}  // namespace pex
#endif
