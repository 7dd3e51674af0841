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

template <typename Compute = float>
struct sTanhCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x7F7FFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(float x, float* r) { return TanhRare(x, r); }
};

// x = n ln2/2 + h, |h| <= ln2/4. ln2/2 is a float of 21 bits to 2^-29 of itself, so h is exact as
// long as its error could tell. Beyond 10 the result is that of 10, which is 1.
template <class V>
struct Halves {
  V power;  // 2^n
  V h;
};

template <class D, class V>
HWY_INLINE Halves<V> ToHalves(D d, V x) {
  const V m = hn::Min(hn::Max(x, hn::Set(d, -10.0f)), hn::Set(d, 10.0f));
  const auto [n, nd] = ToNearestStep(d, AboveUnderflow(d, m), 0x1.715476p+1f);
  return {FromBits(d, hn::Add(hn::ShiftLeft<23>(n), SetBits(d, 0x3F800000))),
          hn::Sub(m, hn::Mul(nd, hn::Set(d, 0x1.62e43p-2f)))};
}

// tanh h = h (1 + h2 odd(h2)).
template <class D, class V, size_t N>
HWY_INLINE V TanhOfHalf(D d, V h, const float (&odd)[N]) {
  const V h2 = SquareNearZero(d, h);
  return hn::Mul(h, hn::Add(hn::Mul(h2, Horner(d, h2, odd)), hn::Set(d, 1.0f)));
}

// With P = 2^n and t = tanh h: ((P + 1) t - (1 - P))/((P + 1) - (1 - P) t), whose terms keep the
// sign of zero. Odd in every bit, as P and 1/P differ by scale.
struct sTanhEP : sTanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Halves<V> u[K];
    const V one = hn::Set(d, 1.0f);
    for (size_t k = 0; k < K; ++k) u[k] = ToHalves(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      const V t = TanhOfHalf(d, u[k].h, sTanhEPPolynomial);
      const V a = hn::Sub(one, u[k].power), b = hn::Add(one, u[k].power);
      out[k] = hn::Div(hn::Sub(hn::Mul(b, t), a), hn::Sub(b, hn::Mul(a, t)));
    }
  }
};

// What is rounded away from both sides of the quotient comes back at the end, divided by roughly
// the divisor.
struct sTanhLA : sTanhCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Halves<V> u[K];
    const V one = hn::Set(d, 1.0f);
    for (size_t k = 0; k < K; ++k) u[k] = ToHalves(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      const V t = TanhOfHalf(d, u[k].h, sTanhLAPolynomial);
      const V a = hn::Sub(one, u[k].power), b = hn::Add(one, u[k].power);
      const Pair<V> bt = TwoProduct(d, b, t);
      const V at = hn::Mul(a, t);
      const V above = hn::Sub(bt.hi, a), below = hn::Sub(b, at);
      const V above_rest = hn::Add(hn::Sub(bt.hi, hn::Add(above, a)), bt.lo);
      const V below_rest = hn::Sub(hn::Sub(b, below), at);
      const V q = hn::Div(above, below);
      // 1/below to an eighth of itself.
      const V inverse = FromBits(d, hn::Sub(SetBits(d, 0x7EF00000), Bits(d, below)));
      const V rest = hn::Sub(above_rest, hn::Mul(q, below_rest));
      out[k] = hn::Sub(q, hn::Mul(hn::Sub(hn::Zero(d), rest), inverse));
    }
  }
};

// In double precision, where nothing underflows. Correctly rounded for all floats.
struct sTanhHA : sTanhCommon<double> {
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
