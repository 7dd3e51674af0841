// The greatest integer not above a: one instruction with its own rounding mode. Raises inexact
// where the result differs from a.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/floor/floor.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Floor : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return RoundTo<kDown>(x);
  }
};

PEX_PLAIN_UNARY(double, dFloor, Floor<double>)
PEX_PLAIN_UNARY(float, sFloor, Floor<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_ROUNDING_UNARY(double, dFloor)
PEX_EXPORT_ROUNDING_UNARY(float, sFloor)
}  // namespace pex
#endif
