// The conjugate: the sign bit of the imaginary part flipped, also of a NaN. No other bit changes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cconj/cconj.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_kernel/complex-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// A single-precision number as 64 bits: the imaginary part is on top.
struct SingleConj : PlainKernel<double> {
  static constexpr bool kMemoryBound = true;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::Xor(x, hn::SignBit(d));
  }
};

// Every second double.
struct DoubleConj : PlainKernel<double> {
  static constexpr bool kMemoryBound = true;
  static constexpr size_t kTogether = 2;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return hn::Xor(x, hn::OddEven(hn::SignBit(d), hn::Zero(d)));
  }
};

int cConj(int32_t n, const PexComplex8* a, PexComplex8* r) {
  const auto* from = reinterpret_cast<const double*>(a);
  auto* to = reinterpret_cast<double*>(r);
  return RunPlain<SingleConj>(n, {from, from, to, to});
}
int zConj(int32_t n, const PexComplex16* a, PexComplex16* r) {
  const auto* from = reinterpret_cast<const double*>(a);
  auto* to = reinterpret_cast<double*>(r);
  return RunPlain<DoubleConj>(2 * int64_t{n}, {from, from, to, to});
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cConj);
HWY_EXPORT(zConj);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, NoGuard, cConj, cConj)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, NoGuard, zConj, zConj)
}  // namespace pex
#endif
