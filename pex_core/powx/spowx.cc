// x^b in single precision, one b for all elements.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/powx/spowx.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <bit>

#include "pex_core/_heap/real/pow_single_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsPowx";

// x^kPower, 2 <= kPower <= 4, or its reciprocal, by products in double: neither leaves the range,
// and the result is rounded to single once.
template <int kPower, bool kReciprocal>
struct sPowxProduct : Kernel<float, double> {
  static constexpr int kArguments = 2;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x, V) {
    if constexpr (!kReciprocal) return hn::MaskFromVec(hn::Zero(d));
    return hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(x)), SetBits(d, 0)));
  }
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x, V) {
    const hn::Rebind<double, D> wide;
    const auto w = hn::PromoteTo(wide, x);
    auto power = hn::Mul(w, w);
    if constexpr (kPower == 3) power = hn::Mul(power, w);
    if constexpr (kPower == 4) power = hn::Mul(power, power);
    if constexpr (kReciprocal) power = hn::Div(hn::Set(wide, 1.0), power);
    return hn::DemoteTo(d, power);
  }
  static HWY_INLINE int Rare(float x, float y, float* r) { return sPowRare(x, y, r); }
};

// The exponents that have kernels of their own, by their bits; General for the others.
#define PEX_POWX(suffix, General)                                                  \
  using sPowx_##suffix##Run = Run<General, const float*, float, float*>;           \
  int sPowx_##suffix(int32_t n, const float* a, float b, float* r) {               \
    constexpr float kThird = 1.0f / 3, kTwoThirds = 2.0f / 3;                      \
    const auto is = [b](float special) {                                           \
      return std::bit_cast<uint32_t>(b) == std::bit_cast<uint32_t>(special);       \
    };                                                                             \
    char* const name = _PEX_THISFUNC_NAME;                                         \
    if (is(2.0f)) return MapUnaryScalar<sPowxProduct<2, false>>(n, a, b, r, name); \
    if (is(3.0f)) return MapUnaryScalar<sPowxProduct<3, false>>(n, a, b, r, name); \
    if (is(4.0f)) return MapUnaryScalar<sPowxProduct<4, false>>(n, a, b, r, name); \
    if (is(-2.0f)) return MapUnaryScalar<sPowxProduct<2, true>>(n, a, b, r, name); \
    if (is(-3.0f)) return MapUnaryScalar<sPowxProduct<3, true>>(n, a, b, r, name); \
    if (is(-4.0f)) return MapUnaryScalar<sPowxProduct<4, true>>(n, a, b, r, name); \
    if (is(0.5f)) return _pexsSqrt_##suffix(n, a, r);                              \
    if (is(-0.5f)) return _pexsInvSqrt_##suffix(n, a, r);                          \
    if (is(kThird)) return _pexsCbrt_##suffix(n, a, r);                            \
    if (is(-kThird)) return _pexsInvCbrt_##suffix(n, a, r);                        \
    if (is(kTwoThirds)) return _pexsPow2o3_##suffix(n, a, r);                      \
    if (is(1.5f)) return _pexsPow3o2_##suffix(n, a, r);                            \
    if (is(-1.0f)) return _pexsInv_HA(n, a, r);                                    \
    return sPowx_##suffix##Run::All<PEX_HALF(sPowx_##suffix)>(n, a, b, r, name);   \
  }

PEX_POWX(21, sPowLA)
PEX_POWX(HA, sPowHA)

#undef PEX_POWX

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY_SCALAR(float, sPowx_21)
PEX_EXPORT_UNARY_SCALAR(float, sPowx_HA)
}  // namespace pex

// No shorter than LA.
extern "C" PEXQUO_API int _pexsPowx_11(int32_t n, const float* a, float b, float* r) {
  return _pexsPowx_21(n, a, b, r);
}
#endif
