// e^x in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/exp/sexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/exp/exp_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsExp";

template <typename Compute = float>
struct sExpCommon : Kernel<float, Compute> {
  using Rarity = RareAbove<float, 0x42AE0000>;  // |x| > 87
  static HWY_INLINE int Rare(float x, float* r) { return sExpScalar(x, r); }
};

// 2^(k/16) from a table, times 1 + r, -0.584 ln2/16 <= r <= 0.417 ln2/16: k is the integer next to
// (x + 1) 16/ln2 - 23, so that 1 + x alone needs to be formed. 11.56 correct bits (0x1.ff5732p+5).
struct sExpEP : sExpCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V w = hn::Add(x, hn::Set(d, 1.0f));
    const V kf = hn::Add(hn::Mul(w, hn::Set(d, 0x1.715476p+4f)), hn::Set(d, 0x1.8p23f - 23));
    const V kd = hn::Sub(kf, hn::Set(d, 0x1.8p23f));
    const auto k = Bits(d, kf);
    const V s =
        FromBits(d, hn::Add(LookupSixteenth(d, sExpShiftedSixteenths, k), hn::ShiftLeft<19>(k)));
    return hn::Mul(s, hn::Sub(w, hn::Mul(kd, hn::Set(d, 0x1.62e43p-5f))));
  }
};

// 2^(j/8) from a table, times a cubic in |r| <= ln2/16, times 2^n by the exponent. Adding 2^-36
// changes no result; it keeps the products of tiny numbers from underflow. Largest error 1.16 ulp
// (0x1.e05b36p+1).
struct sExpLA : sExpCommon<> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V shifter = hn::Set(d, 0x1.8p23f);  // leaves the rounded integer in the low bits
    const V y = hn::Add(x, hn::Set(d, 0x1p-36f));
    const V kf = hn::Add(hn::Mul(y, hn::Set(d, 0x1.715476p+3f)), shifter);  // 8/ln2
    const V kd = hn::Sub(kf, shifter);
    const auto k = Bits(d, kf);
    // ln2/8 = 0x1.62ep-4 + 0x1.0bfbe8p-18, the product of k and the first part exact.
    const V r = hn::Sub(SubExactProduct(kd, hn::Set(d, 0x1.62ep-4f), y),
                        hn::Mul(kd, hn::Set(d, 0x1.0bfbe8p-18f)));
    const V t = LookupEighth(d, sExpEighths, k);
    const V c =
        hn::Add(hn::Mul(hn::Set(d, sExpLAPolynomial[1]), r), hn::Set(d, sExpLAPolynomial[0]));
    const V p = hn::Add(hn::Mul(hn::Mul(c, r), r), r);
    const V scaled = hn::Add(hn::Mul(t, p), t);
    const auto n = hn::And(hn::ShiftLeft<20>(k), SetBits(d, 0xFF800000));
    return FromBits(d, hn::Add(Bits(d, scaled), n));
  }
};

// In double precision. Correctly rounded for all floats.
struct sExpHA : sExpCommon<double> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const hn::Rebind<double, D> dd;
    const auto [s, p] = ExpReduceWide(dd, hn::PromoteTo(dd, x));
    return hn::DemoteTo(d, hn::Add(hn::Mul(s, p), s));
  }
};

PEX_UNARY(float, sExp_11, sExpEP)
PEX_UNARY(float, sExp_21, sExpLA)
PEX_UNARY(float, sExp_HA, sExpHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sExp_11)
PEX_EXPORT_UNARY(float, sExp_21)
PEX_EXPORT_UNARY(float, sExp_HA)
}  // namespace pex
#endif
