// a - b in the caller's rounding and flush modes, of two NaNs the first.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/sub/sub.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Sub : PlainKernel<T, 2> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    return HardwareSub(a, b);
  }
};

PEX_PLAIN_BINARY(double, dSub, Sub<double>)
PEX_PLAIN_BINARY(float, sSub, Sub<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_HARDWARE_BINARY(double, dSub)
PEX_EXPORT_HARDWARE_BINARY(float, sSub)
}  // namespace pex
#endif
