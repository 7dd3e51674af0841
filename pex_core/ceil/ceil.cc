// The least integer not below a: one instruction with its own rounding mode. Raises inexact where
// the result differs from a.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ceil/ceil.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Ceil : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D, V x) {
    return RoundTo<kUp>(x);
  }
};

PEX_PLAIN_UNARY(double, dCeil, Ceil<double>)
PEX_PLAIN_UNARY(float, sCeil, Ceil<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_ROUNDING_UNARY(double, dCeil)
PEX_EXPORT_ROUNDING_UNARY(float, sCeil)
}  // namespace pex
#endif
