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

// AVX-512 takes minima and maxima without a flag, and of a NaN and a number the second operand: a
// NaN passes through the sums and products below as it does through x + x, and no lane is rare.
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
template <class V>
HWY_INLINE V AtLeast(V limit, V x) {
  return V{_mm512_max_round_ps(limit.raw, x.raw, _MM_FROUND_NO_EXC)};
}
#else
using sTanhVector = sTanhCommon<>;
template <class V>
HWY_INLINE V AtMost(V limit, V x) {
  return hn::Min(x, limit);
}
template <class V>
HWY_INLINE V AtLeast(V limit, V x) {
  return hn::Max(x, limit);
}
#endif

// A quotient of polynomials, 1 at the limit.
struct sTanhEP : sTanhVector {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const auto& [a, b, c, limit] = sTanhEPQuotient;
    const V unit = hn::Set(d, 1024.0f);
    for (size_t k = 0; k < K; ++k) {
      const V w = AtLeast(hn::Set(d, -limit), AtMost(hn::Set(d, limit), x[k]));
      const V s = SquareNearZero(d, w);
      const V p = hn::Add(SilentMul(hn::Add(s, hn::Set(d, a)), s), unit);
      const V q = hn::Add(SilentMul(hn::Add(SilentMul(s, hn::Set(d, c)), hn::Set(d, b)), s), unit);
      out[k] = hn::Div(hn::Mul(w, p), q);
    }
  }
};

// |x| = n ln2/2 + h. As n is the integer next to somewhat less than |x|/(ln2/2), the steps begin
// late, for the first results of each have the largest errors. Arguments from 10 on give 1, as 10
// does.
template <class V>
struct Halves {
  V power;  // 2^n
  V h;
};

template <class D, class V>
HWY_INLINE Halves<V> ToHalves(D d, V x) {
  const V m = AtMost(hn::Set(d, 10.0f), hn::Abs(x));
  const V shifter = hn::Set(d, 0x1.8p23f + 127);  // leaves the exponent of 2^n in the low bits
  const V kf = hn::Add(StepsFromZero(d, m, 0x1.5ap+1f), shifter);  // 0.938 times 2/ln2
  const V n = hn::Sub(kf, shifter);
  // ln2/2 is a float of 21 bits to 2^-29 of itself, and what comes of it is rounded once: its upper
  // 17 bits leave an exact difference.
#if HWY_TARGET == HWY_SSE4
  const V upper = hn::Sub(m, hn::Mul(n, hn::Set(d, 0x1.62e4p-2f)));
  const V h = hn::Sub(upper, hn::Mul(n, hn::Set(d, 0x1.8p-21f)));
#else
  const V h = HiddenNegMulAdd(n, hn::Set(d, 0x1.62e43p-2f), m);
#endif
  return {FromBits(d, hn::ShiftLeft<23>(Bits(d, kf))), h};
}

// With P = 2^n, c = h/tanh h and a = (P - 1)/2 the result is s/(s + c - h), s = P h + a (c - h):
// the rounding of s, in both sides of the quotient, weighs little where the result is close to 1.
struct sTanhLA : sTanhVector {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const V one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    Halves<V> u[K];
    for (size_t k = 0; k < K; ++k) u[k] = ToHalves(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      const auto& [power, h] = u[k];
      const V h2 = SquareNearZero(d, h);
      const V c = hn::Add(SilentMul(SilentHorner(d, h2, sTanhLAPolynomial), h2), one);
      const V a = ExactProductLess(power, half, half);
      const V rest = hn::Sub(c, h);
      const V s = AddExactProduct(power, h, hn::Mul(a, rest));
      out[k] = hn::CopySignToAbs(hn::Div(s, hn::Add(s, rest)), x[k]);
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
