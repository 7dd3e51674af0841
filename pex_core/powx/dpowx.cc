// x^b in double precision for one b: products for small whole b, the root and reciprocal kernels
// where b names one, else the power. Errors met in another kernel bear that kernel's name.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/powx/dpowx.cc"
#include <cstdint>
#include <type_traits>

#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/pow_kernel-inl.h"
#include "pex_core/_heap/real/pow_rare.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdPowx";

// x^kWhole for kWhole from 2 to 4 by plain products: 0.5, 1 and 1.5 roundings. A power overflows or
// underflows whenever a product before it does.
template <int kWhole>
struct PowxProduct : Kernel<double> {
  static constexpr int kArguments = 2;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V, V) {
    return hn::MaskFromVec(hn::Zero(d));
  }
  template <class D, class V>
  static HWY_INLINE V Main(D, V x, V) {
    const V square = hn::Mul(x, x);
    return kWhole == 2 ? square : hn::Mul(square, kWhole == 3 ? x : square);
  }
  static HWY_INLINE int Rare(double x, double y, double* r) { return dPowScalar(x, y, r); }
};

// The magnitudes whose powers, and the errors of their products, are normal numbers: 2^-kOctaves to
// 2^kOctaves, less a half.
template <int kWhole>
struct PowxRange : Kernel<double> {
  static constexpr int kArguments = 2;
  static constexpr int kOctaves = 900 / kWhole;
  using Rarity = RareOutside<double, (1023 - kOctaves) << 20, (1023 + kOctaves) << 20>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x, V) {
    const auto above = KeyAbove(d, Rarity::Key(d, hn::Abs(x)), Rarity::kLimit);
    return hn::RebindMask(d, hn::Lt(Bits(d, hn::VecFromMask(d, above)), SetBits(d, 0)));
  }
  static HWY_INLINE int Rare(double x, double y, double* r) { return dPowScalar(x, y, r); }
};

// x^kWhole as two doubles.
template <int kWhole, class D, class V>
HWY_INLINE Pair<V> PowxPair(D d, V x) {
  const Pair<V> square = TwoProduct(d, x, x);
  if constexpr (kWhole == 2) return square;
  const Pair<V> product = TwoProduct(d, square.hi, kWhole == 3 ? x : square.hi);
  const V cross = hn::Mul(square.lo, kWhole == 3 ? x : hn::Add(square.hi, square.hi));
  return {product.hi, hn::Add(product.lo, cross)};
}

// The same with the errors of the products made up for: at most 0.501 ulp.
template <int kWhole>
struct PowxFullProduct : PowxRange<kWhole> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x, V) {
    const Pair<V> power = PowxPair<kWhole>(d, x);
    return hn::Add(power.hi, power.lo);
  }
};

// x^-kWhole as the quotient of 1 and a product: 1.5 ulp if that is rounded once, but 2.4 and 3.2
// ulp on the plain cube and fourth power.
template <int kWhole, template <int> class Product>
struct PowxReciprocal : PowxRange<kWhole> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x, V y) {
    return hn::Div(hn::Set(d, 1.0), Product<kWhole>::Main(d, x, y));
  }
};

// The same without the error of the division.
template <int kWhole>
struct PowxFullReciprocal : PowxRange<kWhole> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x, V) {
    const Pair<V> power = PowxPair<kWhole>(d, x);
    const V one = hn::Set(d, 1.0);
    const V q = hn::Div(one, power.hi);
    const Pair<V> product = TwoProduct(d, q, power.hi);
    const V rest = hn::Sub(hn::Sub(hn::Sub(one, product.hi), product.lo), hn::Mul(q, power.lo));
    return hn::Add(q, hn::Mul(q, rest));
  }
};

struct PowxKernelsEP {
  using Power = dPowKernelEP;
  template <int kWhole>
  using Direct = PowxProduct<kWhole>;
  template <int kWhole>
  using Reciprocal = PowxReciprocal<kWhole, PowxProduct>;
};

struct PowxKernelsLA {
  using Power = dPowKernelLA;
  template <int kWhole>
  using Direct = PowxProduct<kWhole>;
  template <int kWhole>
  using Reciprocal = std::conditional_t<kWhole == 2, PowxReciprocal<kWhole, PowxProduct>,
                                        PowxReciprocal<kWhole, PowxFullProduct>>;
};

struct PowxKernelsHA {
  using Power = dPowKernelHA;
  template <int kWhole>  // a square is rounded once as it is
  using Direct = std::conditional_t<kWhole == 2, PowxProduct<kWhole>, PowxFullProduct<kWhole>>;
  template <int kWhole>
  using Reciprocal = PowxFullReciprocal<kWhole>;
};

template <class Kernels>
using PowxRun = Run<typename Kernels::Power, const double*, double, double*>;

// b that are whole and small, and all that name no other kernel. With an infinite b or a NaN every
// element is rare.
template <class Kernels, class Half>
HWY_INLINE int PowxBody(int32_t n, const double* a, double b, double* r) {
  const auto map = [=]<class K>(K)
                       HWY_ATTR { return MapUnaryScalar<K>(n, a, b, r, _PEX_THISFUNC_NAME); };
  switch (BitsOfNumber(b)) {
    case BitsOfNumber(2.0):
      return map(typename Kernels::template Direct<2>());
    case BitsOfNumber(3.0):
      return map(typename Kernels::template Direct<3>());
    case BitsOfNumber(4.0):
      return map(typename Kernels::template Direct<4>());
    case BitsOfNumber(-2.0):
      return map(typename Kernels::template Reciprocal<2>());
    case BitsOfNumber(-3.0):
      return map(typename Kernels::template Reciprocal<3>());
    case BitsOfNumber(-4.0):
      return map(typename Kernels::template Reciprocal<4>());
    default:
      return PowxRun<Kernels>::template All<Half>(n, a, b, r, _PEX_THISFUNC_NAME);
  }
}

using dPowx_26Run = PowxRun<PowxKernelsEP>;
int dPowx_26(int32_t n, const double* a, double b, double* r) {
  return PowxBody<PowxKernelsEP, PEX_HALF(dPowx_26)>(n, a, b, r);
}
using dPowx_50Run = PowxRun<PowxKernelsLA>;
int dPowx_50(int32_t n, const double* a, double b, double* r) {
  return PowxBody<PowxKernelsLA, PEX_HALF(dPowx_50)>(n, a, b, r);
}
using dPowx_HARun = PowxRun<PowxKernelsHA>;
int dPowx_HA(int32_t n, const double* a, double b, double* r) {
  return PowxBody<PowxKernelsHA, PEX_HALF(dPowx_HA)>(n, a, b, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {

static constexpr uint64_t Pattern(double x) { return __builtin_bit_cast(uint64_t, x); }

// Exponents that name another kernel go there whole; the reciprocal is the HA one in every tier.
#define PEX_EXPORT_POWX(tier)                                                                  \
  HWY_EXPORT(dPowx##tier);                                                                     \
  extern "C" PEXQUO_API int _pexdPowx##tier(int32_t n, const double* a, double b, double* r) { \
    switch (Pattern(b)) {                                                                      \
      case Pattern(0.5):                                                                       \
        return _pexdSqrt##tier(n, a, r);                                                       \
      case Pattern(-0.5):                                                                      \
        return _pexdInvSqrt##tier(n, a, r);                                                    \
      case Pattern(1.0 / 3):                                                                   \
        return _pexdCbrt##tier(n, a, r);                                                       \
      case Pattern(-1.0 / 3):                                                                  \
        return _pexdInvCbrt##tier(n, a, r);                                                    \
      case Pattern(2.0 / 3):                                                                   \
        return _pexdPow2o3##tier(n, a, r);                                                     \
      case Pattern(1.5):                                                                       \
        return _pexdPow3o2##tier(n, a, r);                                                     \
      case Pattern(-1.0):                                                                      \
        return _pexdInv_HA(n, a, r);                                                           \
    }                                                                                          \
    const ControlGuard guard;                                                                  \
    return PEX_DISPATCH(dPowx##tier)(n, a, b, r);                                              \
  }

PEX_EXPORT_POWX(_26)
PEX_EXPORT_POWX(_50)
PEX_EXPORT_POWX(_HA)

}  // namespace pex
#endif
