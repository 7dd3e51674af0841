// The kernels of the power, for every function that takes powers: signs, the rare lanes.

#include "hwy/highway.h"
#include "pex_core/_heap/real/pow-inl.h"
#include "pex_core/_heap/real/pow_rare.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

#if defined(PEX_CORE__HEAP_REAL_POW_KERNEL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_POW_KERNEL_INL_H_
#undef PEX_CORE__HEAP_REAL_POW_KERNEL_INL_H_
#else
#define PEX_CORE__HEAP_REAL_POW_KERNEL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// y, or 0 where it is so small that every power is 1.
template <class D, class V>
HWY_INLINE V WithoutTiny(D d, V y) {
  return Selected(hn::IfThenZeroElse(MagnitudeBelow(d, y, 0x1p-70), y));
}

// x is negative, and y not an integer below 2^52 in magnitude.
template <class D, class V>
HWY_INLINE MaskOf<D> LacksSign(D d, V x, V y) {
  const V magnitude = hn::Abs(y), shifter = hn::Set(d, 0x1p52);
  const auto integer = hn::Eq(hn::Sub(hn::Add(magnitude, shifter), shifter), magnitude);
  const auto signed_power = hn::And(integer, MagnitudeBelow(d, y, 0x1p52));
  return hn::AndNot(signed_power, hn::Lt(x, hn::Zero(d)));
}

// The sign of x^y for such an integer y, and nothing else: that of x if y is odd.
template <class D, class V>
HWY_INLINE V SignOfPower(D d, V x, V y) {
  const V integer = hn::Add(hn::Abs(y), hn::Set(d, 0x1p52));  // ends in the lowest bit of y
  const V odd = FromBits(d, hn::ShiftLeft<63>(Bits(d, integer)));
  return hn::And(hn::And(x, odd), hn::SignBit(d));
}

// Common lanes: x normal and finite, y below 2^63 in magnitude and for negative x an integer below
// 2^52, the result normal. kKeepsFirstPower: the method may miss x^1, which is x.
template <class Method, bool kKeepsFirstPower>
struct PowKernel : Kernel<double> {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = Method::kUnroll;
  using XRarity = RareOutside<double, 0x00100000, 0x7FEFFFFF>;  // of |x|
  using YRarity = RareAbove<double, 0x43DFFFFF>;

  static HWY_INLINE int Rare(double x, double y, double* r) { return dPowScalar(x, y, r); }

  // Some x or y, whose keys are these, is unfit for the method: sign bits of lanes.
  template <class D>
  static HWY_INLINE VecOf<D> Unfit(D d, BitsOf<D> x_key, BitsOf<D> y_key) {
    return hn::Or(hn::VecFromMask(d, KeyAbove(d, x_key, XRarity::kLimit)),
                  hn::VecFromMask(d, KeyAbove(d, y_key, YRarity::kLimit)));
  }

  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x, V y) {
    const auto signs = Unfit(d, XRarity::Key(d, hn::Abs(x)), YRarity::Key(d, y));
    const auto unfit = hn::RebindMask(d, hn::Lt(Bits(d, signs), SetBits(d, 0)));
    x = Selected(hn::IfThenElse(unfit, hn::Set(d, 1.0), x));
    y = Selected(hn::IfThenElse(unfit, hn::Set(d, 1.0), y));
    return hn::Or(hn::Or(unfit, LacksSign(d, x, y)),
                  Method::Beyond(d, hn::Abs(x), WithoutTiny(d, y)));
  }

  // Whether every x is positive and normal, and every y neither tiny nor large.
  template <class D, class V, size_t K>
  static HWY_INLINE bool AllUsual([[maybe_unused]] D d, const V (&x)[K], const V (&y)[K]) {
    using YUsual = RareByMagnitude<RareOutside<double, 0x3B900000, 0x43DFFFFF>>;
#if HWY_TARGET == HWY_AVX3
    using XKey = typename OfHighWords<XRarity>::Type;
    using YKey = typename OfHighWords<YUsual>::Type;
    const hn::Repartition<float, D> dk;
    const auto word = [&](const V(&v)[K], size_t k)
                          HWY_ATTR { return HighWords(d, v[k], v[k + 1 < K ? k + 1 : k]); };
    constexpr size_t kStep = 2;
#else
    using XKey = XRarity;
    using YKey = YUsual;
    const D dk;
    const auto word = [](const V(&v)[K], size_t k) HWY_ATTR { return v[k]; };
    constexpr size_t kStep = 1;
#endif
    auto x_key = XKey::Key(dk, word(x, 0));
    auto y_key = YKey::Key(dk, word(y, 0));
    for (size_t k = kStep; k < K; k += kStep) {
      x_key = JoinKeys(dk, x_key, XKey::Key(dk, word(x, k)));
      y_key = JoinKeys(dk, y_key, YKey::Key(dk, word(y, k)));
    }
    return hn::AllFalse(
        dk, hn::Or(KeyAbove(dk, x_key, XKey::kLimit), KeyAbove(dk, y_key, YKey::kLimit)));
  }

  template <class D, class V, size_t K>
  static HWY_INLINE bool TryGroup(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    if (!AllUsual(d, x, y)) [[unlikely]]
      return TryOther(d, x, y, r);
    V power[K];
    if (!Method::Power(d, x, y, power)) [[unlikely]]
      return false;
    for (size_t k = 0; k < K; ++k) {
      r[k] = kKeepsFirstPower ? hn::IfThenElse(hn::Eq(y[k], hn::Set(d, 1.0)), x[k], power[k])
                              : power[k];
    }
    return true;
  }

  // The same for negative x and tiny y too.
  template <class D, class V, size_t K>
  static HWY_NOINLINE bool TryOther(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    V magnitude[K], power[K], sign[K];
    for (size_t k = 0; k < K; ++k) magnitude[k] = hn::Abs(x[k]);
    auto x_key = XRarity::Key(d, magnitude[0]);
    auto y_key = YRarity::Key(d, y[0]);
    V signs = x[0];
    for (size_t k = 1; k < K; ++k) {
      x_key = JoinKeys(d, x_key, XRarity::Key(d, magnitude[k]));
      y_key = JoinKeys(d, y_key, YRarity::Key(d, y[k]));
      signs = hn::Or(signs, x[k]);
    }
    if (!hn::AllFalse(d, hn::MaskFromVec(Unfit(d, x_key, y_key)))) [[unlikely]]
      return false;
    const bool negative =
        !hn::AllFalse(d, hn::RebindMask(d, hn::Lt(Bits(d, signs), SetBits(d, 0))));
    if (negative) {
      auto lacks_sign = LacksSign(d, x[0], y[0]);
      for (size_t k = 1; k < K; ++k) lacks_sign = hn::Or(lacks_sign, LacksSign(d, x[k], y[k]));
      if (!hn::AllFalse(d, lacks_sign)) [[unlikely]]
        return false;
      for (size_t k = 0; k < K; ++k) sign[k] = SignOfPower(d, x[k], y[k]);
    }
    for (size_t k = 0; k < K; ++k) power[k] = WithoutTiny(d, y[k]);
    if (!Method::Power(d, magnitude, power, power)) [[unlikely]]
      return false;
    for (size_t k = 0; k < K; ++k) {
      if constexpr (kKeepsFirstPower) {
        power[k] = hn::IfThenElse(hn::Eq(y[k], hn::Set(d, 1.0)), magnitude[k], power[k]);
      }
      r[k] = negative ? hn::Or(power[k], sign[k]) : power[k];
    }
    return true;
  }
};

using dPowKernelEP = PowKernel<PowPlain, true>;
using dPowKernelLA = PowKernel<PowByPairs<PowLA>, false>;
using dPowKernelHA = PowKernel<PowByPairs<PowHA>, false>;

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_POW_KERNEL_INL_H_
