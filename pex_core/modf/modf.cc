// Integer and fractional part, both with the sign of a, whatever the caller's rounding and flush
// modes. Raises inexact where the fractional part is not zero; a NaN becomes quiet in both results.
//
// The truncation is the integer part and the exact difference the fractional part. An infinity and
// every other integer is taken out of the difference: it has a zero of its sign, and no flag.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/modf/modf.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Modf : PlainKernel<T, 1, 2> {
  template <class D, class V>
  static HWY_INLINE void Main(D d, V x, V& whole, V& fraction) {
    whole = RoundTo<kTowardZero>(x);
    const auto integer = hn::Eq(x, whole);
    const V difference =
        HardwareSub(hn::IfThenZeroElse(integer, x), hn::IfThenZeroElse(integer, whole));
    fraction = hn::Or(difference, hn::And(x, hn::Set(d, T(-0.0))));
  }
};

PEX_PLAIN_UNARY_TWO(double, dModf, Modf<double>)
PEX_PLAIN_UNARY_TWO(float, sModf, Modf<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_ROUNDING_UNARY_TWO(double, dModf)
PEX_EXPORT_ROUNDING_UNARY_TWO(float, sModf)
}  // namespace pex
#endif
