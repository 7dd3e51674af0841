// ln(1 + x) in double precision: the logarithm's reduction of u = 1 + x rounded; what the rounding
// of u loses is made good in the argument of the polynomial.
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
  // 1 + x is not from 2^-1022 to 2^999: x <= -1, NaN, and where products with 2^-e come near
  // underflow.
  using Rarity = LogShortRarity<0x7E5FFFFF, 1>;
  static HWY_INLINE int Rare(double x, double* r) { return Log1pRare(x, r, dLnScalar); }
};

// A tiny x is its own result: to nearest down to 2^-54 below it, signed zeros and subnormals
// without a flag.
inline constexpr double kTiny = 0x1p-54;

// Without the rounding error of u: below 2^-26 x itself is as good.
struct dLog1pEP : dLog1pCommon {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    V u[K], log[K];
    for (size_t k = 0; k < K; ++k) u[k] = hn::Add(x[k], hn::Set(d, 1.0));
    LogEP<NaturalLog>(d, u, log);
    for (size_t k = 0; k < K; ++k) {
      r[k] = hn::IfThenElse(MagnitudeBelow(d, x[k], 0x1p-26), x[k], log[k]);
    }
  }
};

// ln(1 + t) = t + s (t - s^2 R(s^2)) for s = -t/(2 + t): t itself is 2^-e c x - (1 - 2^-e c), free
// of the rounding of 1 + x, which s may well bear: t counts for little beside it, and s is 0 where
// x is its own result. No step changes a zero's sign or comes near underflow.
struct dLog1pLA : dLog1pCommon {
  static constexpr int kUnroll = HWY_TARGET == HWY_SSE4 ? 8 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const V one = hn::Set(d, 1.0);
    LogShort<D> v[K];
    V u[K], t[K], s[K], s2[K], rest[K];
    for (size_t k = 0; k < K; ++k) u[k] = hn::Add(x[k], one);
    LogShortReduce<LnShortFactors, true>(d, u, v);
    for (size_t k = 0; k < K; ++k) {
      const V below = ShortNegMulAdd(d, v[k].m, v[k].c, hn::Set(d, 1.0));
      s[k] = hn::Div(below, hn::Sub(hn::Set(d, 2.0), below));
    }
    for (size_t k = 0; k < K; ++k) {
      const V factor = FromBits(d, hn::Add(Bits(d, v[k].c), v[k].exponent_bits));
      t[k] = ShortMulSub(d, x[k], factor, hn::Sub(one, factor));
      s2[k] = hn::Mul(s[k], s[k]);
    }
    Horner(d, s2, kLnLA, rest);
    for (size_t k = 0; k < K; ++k) {
      rest[k] = hn::Sub(t[k], hn::Mul(s2[k], rest[k]));
      constexpr double kLog2 = (NaturalLog::kLog2Hi + NaturalLog::kLog2Lo) * kExponentUnit;
      const V less_head = hn::Sub(hn::Mul(v[k].e, hn::Set(d, kLog2)), v[k].log);
      r[k] = hn::Sub(hn::Add(t[k], hn::Mul(s[k], rest[k])), less_head);
    }
  }
};

struct dLog1pHA : dLog1pCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const V one = hn::Set(d, 1.0);
    LogReduced<D> v[K];
    V u[K], u_rest[K], log[K];
    Pair<V> p[K];
    for (size_t k = 0; k < K; ++k) {
      const V y = hn::IfThenZeroElse(MagnitudeBelow(d, x[k], kTiny), x[k]);
      const Pair<V> sum = TwoSum(one, y);
      u[k] = sum.hi;
      u_rest[k] = sum.lo;
    }
    LogReduce<NaturalLog>(d, u, v);
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> t =
          TwoSum(hn::Sub(v[k].m, v[k].row.a), hn::Mul(InversePower(d, v[k]), u_rest[k]));
      p[k] = TwoProduct(d, t.hi, v[k].row.factor);
      p[k].lo = hn::Add(p[k].lo, hn::Mul(t.lo, v[k].row.factor));
    }
    LogSum<NaturalLog>(d, v, p, log);
    for (size_t k = 0; k < K; ++k) {
      r[k] = hn::IfThenElse(MagnitudeBelow(d, x[k], kTiny), x[k], log[k]);
    }
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
