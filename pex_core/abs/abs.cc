// |a| as the product of a and plus or minus one: a signalling NaN becomes quiet and raises invalid,
// a NaN keeps its sign.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/abs/abs.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <bit>

#include "pex_core/_kernel/plain-inl.h"
#include "pex_core/abs/abs.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <typename T>
struct Abs : PlainKernel<T> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return HardwareMul(x, hn::CopySignToAbs(hn::Set(d, T(1)), x));
  }
};

PEX_PLAIN_UNARY(double, dAbs, Abs<double>)
PEX_PLAIN_UNARY(float, sAbs, Abs<float>)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_ROUNDING_UNARY(double, dAbs)
PEX_EXPORT_ROUNDING_UNARY(float, sAbs)
}  // namespace pex

extern "C" double _pex_dabs_scalar(double x) {
  return std::bit_cast<double>(std::bit_cast<uint64_t>(x) & 0x7FFFFFFFFFFFFFFF);
}
extern "C" float _pex_sabs_scalar(float x) {
  return std::bit_cast<float>(std::bit_cast<uint32_t>(x) & 0x7FFFFFFF);
}
#endif
