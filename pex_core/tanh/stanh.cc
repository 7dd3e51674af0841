// The hyperbolic tangent in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tanh/stanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/tanh/tanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsTanh";

template <class Groups = LargeGroups<float>>
struct sTanhCommon : Groups {
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(float x, float* r) { return TanhRare(x, r); }
};

// AVX-512 takes a minimum without a flag, and of a NaN and a number the second operand: a NaN
// passes through the sums and products below as it does through x + x, and no lane is rare.
#if HWY_TARGET == HWY_AVX3
struct NoneRare : RareAbove<float, 0x7F7FFFFF> {
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Joined(D, BitsOf<D> key, V) {
    return key;
  }
  template <class D>
  static HWY_INLINE bool Any(D, BitsOf<D>) {
    return false;
  }
};
struct sTanhVector : sTanhCommon<> {
  using Rarity = NoneRare;
};
template <class V>
HWY_INLINE V AtMost(V limit, V x) {
  return V{_mm512_min_round_ps(limit.raw, x.raw, _MM_FROUND_NO_EXC)};
}
#else
using sTanhVector = sTanhCommon<>;
template <class V>
HWY_INLINE V AtMost(V limit, V x) {
  return hn::Min(x, limit);
}
#endif

// Where n = 1 begins: beyond the middle of the steps, so that the number of the step is found
// without an underflow; for LA later still, for the first results have the largest errors.
inline constexpr float kFirstEP = 0.19f, kFirst = 0.28f;

// |x| = n ln2/2 + h with n = 0 up to `first`. ln2/2 is a float of 21 bits to 2^-29 of itself, so h
// is exact as long as its error could tell. Arguments from 10 on give 1, as 10 does.
template <class V>
struct Halves {
  V half_power;  // 2^n/2
  V h;
};

template <class D, class V>
HWY_INLINE Halves<V> ToHalves(D d, V x, float first) {
  const V m = AtMost(hn::Set(d, 10.0f), hn::Abs(x));
  const V turn = hn::Sub(m, hn::Set(d, first - 0x1.62e43p-3f));
  const auto [n, nd] = ToNearestStep(d, turn, 0x1.715476p+1f);
  return {FromBits(d, hn::Add(hn::ShiftLeft<23>(n), SetBits(d, 0x3F000000))),
          hn::Sub(m, hn::Mul(nd, hn::Set(d, 0x1.62e43p-2f)))};
}

// tanh h = h (1 + h2 odd(h2)).
template <class D, class V, size_t N>
HWY_INLINE V TanhOfHalf(D d, V h, const float (&odd)[N]) {
  const V h2 = SquareNearZero(d, h);
  return hn::Mul(h, hn::Add(SilentMul(h2, SilentHorner(d, h2, odd)), hn::Set(d, 1.0f)));
}

// With P = 2^n and t = tanh h the result is (g + t)/(g + 1), g = (P - 1)/2 (1 + t).
struct sTanhEP : sTanhVector {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Halves<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = ToHalves(d, x[k], kFirstEP);
    for (size_t k = 0; k < K; ++k) {
      const V t = TanhOfHalf(d, u[k].h, sTanhEPPolynomial);
      const V a = hn::Sub(u[k].half_power, hn::Set(d, 0.5f));
      const V g = hn::Add(a, hn::Mul(a, t));
      const V y = hn::Div(hn::Add(g, t), hn::Add(g, hn::Set(d, 1.0f)));
      out[k] = hn::CopySignToAbs(y, x[k]);
    }
  }
};

// g is the rounded divisor less 1, so that the rounding of the divisor, in both sides of the
// quotient, weighs little where the result is close to 1.
struct sTanhLA : sTanhVector {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Halves<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = ToHalves(d, x[k], kFirst);
    for (size_t k = 0; k < K; ++k) {
      const V half = hn::Set(d, 0.5f);
      const V t = TanhOfHalf(d, u[k].h, sTanhLAPolynomial);
      const V a = hn::Sub(u[k].half_power, half), b = hn::Add(u[k].half_power, half);
      const V below = hn::Add(b, hn::Mul(a, t));
      const V above = hn::Add(hn::Sub(below, hn::Set(d, 1.0f)), t);
      out[k] = hn::CopySignToAbs(hn::Div(above, below), x[k]);
    }
  }
};

// In double precision, where nothing underflows. Correctly rounded for all floats.
struct sTanhHA : sTanhCommon<Kernel<float, double>> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    VecOf<decltype(dd)> m[K], y[K];
    for (size_t k = 0; k < K; ++k) m[k] = TanhMagnitude(dd, hn::PromoteTo(dd, x[k]));
    TanhOfMagnitude(dd, m, y);
    for (size_t k = 0; k < K; ++k) out[k] = TanhResult(hn::DemoteTo(d, y[k]), x[k]);
  }
};

PEX_UNARY(float, sTanh_11, sTanhEP)
PEX_UNARY(float, sTanh_21, sTanhLA)
PEX_UNARY(float, sTanh_HA, sTanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sTanh_11)
PEX_EXPORT_UNARY(float, sTanh_21)
PEX_EXPORT_UNARY(float, sTanh_HA)
}  // namespace pex
#endif
