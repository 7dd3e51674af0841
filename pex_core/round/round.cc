// The nearest integer, ties away from zero, whatever the caller's rounding and flush modes.
//
// t is the nearest integer with ties to even, which raises inexact where it differs from a. a - t
// is exact, and one half with the sign of a where a tie went the wrong way. An infinity minus
// itself raises invalid here; the result is still the infinity.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/round/round.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/plain-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Round : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V t = RoundTo<kNearest>(x);
    const V sign = hn::And(x, hn::Set(d, T(-0.0)));
    const auto tie = hn::Eq(hn::Xor(HardwareSub(x, t), sign), hn::Set(d, T(0.5)));
    // A zero of the sign of t elsewhere, which leaves t as it is.
    return hn::Add(t, hn::Or(hn::IfThenElseZero(tie, hn::Set(d, T(1))), sign));
  }
};

PEX_PLAIN_UNARY(double, dRound, Round<double>)
PEX_PLAIN_UNARY(float, sRound, Round<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_ROUNDING_UNARY(double, dRound)
PEX_EXPORT_ROUNDING_UNARY(float, sRound)
}  // namespace pex
#endif
