// ln(1 + x) in double precision: the logarithm of u = 1 + x rounded, with the rounding error of u
// added to its significand.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log1p/dlog1p.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/log1p/log1p_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLog1p";

struct dLog1pCommon : Kernel<double> {
  // 1 + x is not positive, normal and finite: x <= -1, +inf, NaN.
  struct Rarity : RareOutside<double, 0x00100000, 0x7FEFFFFF> {
    template <class D>
    static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
      return RareOutside::Key(d, hn::Add(x, hn::Set(d, 1.0)));
    }
  };
  static HWY_INLINE int Rare(double x, double* r) { return Log1pRare(x, r); }
};

// A tiny x is its own result: to nearest down to 2^-54 below it, signed zeros and subnormals without
// a flag.
inline constexpr double kTiny = 0x1p-54;

// 2^-e times y, for what LogReduce found.
template <class D, class V>
HWY_INLINE V ScaleLike(D d, const LogReduced<D>& u, V y) {
  const auto one = SetBits(d, static_cast<uint64_t>(BitsOfNumber(1.0) + kBias));
  return hn::Mul(y, FromBits(d, hn::Sub(one, u.exponent_bits)));
}

struct dLog1pEP : dLog1pCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V y = hn::IfThenZeroElse(tiny, x);
    const V u = hn::Add(y, one);
    const V u_rest = hn::Sub(y, hn::Sub(u, one));
    const auto v = LogReduce<NaturalLog>(d, u);
    const V t = hn::Add(hn::Sub(v.m, v.row.a), ScaleLike(d, v, u_rest));
    return hn::IfThenElse(tiny, x, LogPlain<NaturalLog>(d, v, hn::Mul(t, v.row.factor), kLnEP));
  }
};

// For x above 1 the error of u found by this one difference is itself off by half an ulp of u, less
// than the rounding of the result.
struct dLog1pLA : dLog1pCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V y = hn::IfThenZeroElse(tiny, x);
    const V u = hn::Add(y, one);
    const V u_rest = hn::Sub(y, hn::Sub(u, one));
    const auto v = LogReduce<NaturalLog>(d, u);
    const V t = hn::Add(hn::Sub(v.m, v.row.a), ScaleLike(d, v, u_rest));
    return hn::IfThenElse(tiny, x, LogPlain<NaturalLog>(d, v, hn::Mul(t, v.row.factor), kLnLA));
  }
};

struct dLog1pHA : dLog1pCommon {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const V one = hn::Set(d, 1.0);
    const auto tiny = MagnitudeBelow(d, x, kTiny);
    const V y = hn::IfThenZeroElse(tiny, x);
    const Pair<V> u = TwoSum(one, y);
    const auto v = LogReduce<NaturalLog>(d, u.hi);
    const Pair<V> t = TwoSum(hn::Sub(v.m, v.row.a), ScaleLike(d, v, u.lo));
    const Pair<V> p = TwoProduct(d, t.hi, v.row.factor);
    const V p_rest = hn::Add(p.lo, hn::Mul(t.lo, v.row.factor));
    return hn::IfThenElse(tiny, x, LogSum<NaturalLog>(d, v, p.hi, p_rest, kLnHA));
  }
};

PEX_UNARY(double, dLog1p_26, dLog1pEP)
PEX_UNARY(double, dLog1p_50, dLog1pLA)
PEX_UNARY(double, dLog1p_HA, dLog1pHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dLog1p_26)
PEX_EXPORT_UNARY(double, dLog1p_50)
PEX_EXPORT_UNARY(double, dLog1p_HA)
}  // namespace pex
#endif
