// a * a in the caller's rounding and flush modes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sqr/sqr.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Sqr : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return HardwareMul(x, x);
  }
};

PEX_PLAIN_UNARY(double, dSqr, Sqr<double>)
PEX_PLAIN_UNARY(float, sSqr, Sqr<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_HARDWARE_UNARY(double, dSqr)
PEX_EXPORT_HARDWARE_UNARY(float, sSqr)
}  // namespace pex
#endif
