// a * b in the caller's rounding and flush modes, of two NaNs the first.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/mul/mul.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Mul : PlainKernel<T, 2> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    return HardwareMul(a, b);
  }
};

PEX_PLAIN_BINARY(double, dMul, Mul<double>)
PEX_PLAIN_BINARY(float, sMul, Mul<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_HARDWARE_BINARY(double, dMul)
PEX_EXPORT_HARDWARE_BINARY(float, sMul)
}  // namespace pex
#endif
