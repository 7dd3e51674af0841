// a rounded to an integer in the caller's rounding mode. Raises inexact where the result differs
// from a.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/rint/rint.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Rint : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return RoundTo<kCurrent>(x);
  }
};

PEX_PLAIN_UNARY(double, dRint, Rint<double>)
PEX_PLAIN_UNARY(float, sRint, Rint<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_HARDWARE_UNARY(double, dRint)
PEX_EXPORT_HARDWARE_UNARY(float, sRint)
}  // namespace pex
#endif
