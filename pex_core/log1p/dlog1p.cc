// ln(1 + x) in double precision: the logarithm's reduction of u = 1 + x rounded; what the rounding
// of u loses is made good in the argument of the polynomial.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/log1p/dlog1p.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/log-inl.h"
#include "pex_core/_heap/real/log_stretch-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/log1p/log1p_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdLog1p";

struct dLog1pCommon : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  // 1 + x is not from 2^-1022 to 2^999: x <= -1, NaN, and where products with 2^-e come near
  // underflow.
  using Rarity = LogShortRarity<0x7E5FFFFF, 1>;
  static HWY_INLINE int Rare(double x, double* r) { return Log1pRare(x, r, dLnScalar); }
};

// 1 + x rounded = 2^e m, and t = 2^-e c x - (1 - 2^-e c), which stands for c m - 1 free of that
// rounding. No step changes a zero's sign or comes near underflow.
template <class D>
struct Log1pArgument {
  using V = VecOf<D>;
  LogShort<D> u[1];  // -e, +0 for 0
  V t;

  // Gives m; with u[0].c.
  HWY_INLINE V Split(D d, V x) {
    LogShortReduce<LnShortFactors, true>(d, {hn::Add(x, hn::Set(d, 1.0))}, u);
    return u[0].m;
  }
  HWY_INLINE void Find(D d, V x) {
    const V factor = FromBits(d, hn::Add(Bits(d, u[0].c), u[0].exponent_bits));
    t = ShortMulSub(d, x, factor, hn::Sub(hn::Set(d, 1.0), factor));
  }
};

// t + p^2 q(p), p standing for t in multiples of 2^-30: as the polynomial asks for it, and 0 where
// x is its own result.
template <class D>
struct Log1pEPPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V less_head, t, rest;

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const V one = hn::Set(d, 1.0);
    const LogStretch<D> u = LogStretchReduce<LnShortStretches>(d, hn::Add(x[0], one));
    less_head = SubExactProduct(u.e, hn::Set(d, LogStretchForm<LnShortStretches>::kLog2), u.log);
    const V factor = FromBits(d, hn::Sub(Bits(d, u.c), u.exponent_bits));
    t = ShortMulSub(d, x[0], factor, hn::Sub(one, factor));
  }
  HWY_INLINE void Evaluate() {
    const D d;
    const V grid = hn::Set(d, 0x1.8p22);
    rest = LogStretchRest(d, hn::Sub(hn::Add(t, grid), grid));
  }
  HWY_INLINE void Result(const V*, V* r) const { r[0] = hn::Sub(hn::Add(t, rest), less_head); }
};

// t + s (t - s^2 R(s^2)) for s = -t/(2 + t), which may well bear the rounding of 1 + x: t counts
// for little beside it, and s is 0 where x is its own result.
template <class D>
struct Log1pLAPart : Log1pArgument<D> {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V s, s2, rest;

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const V m = this->Split(d, x[0]);
    const V below = ShortNegMulAdd(d, m, this->u[0].c, hn::Set(d, 1.0));
    V quotient[1] = {hn::Div(below, hn::Sub(hn::Set(d, 2.0), below))};
    EndPart(quotient);
    s = quotient[0];
    this->Find(d, x[0]);
  }
  HWY_INLINE void Evaluate() {
    s2 = hn::Mul(s, s);
    rest = Horner(D(), s2, kLnLA);
  }
  HWY_INLINE void Result(const V*, V* r) const {
    constexpr double kLog2 = (NaturalLog::kLog2Hi + NaturalLog::kLog2Lo) * kExponentUnit;
    const V less_head = hn::Sub(hn::Mul(this->u[0].e, hn::Set(D(), kLog2)), this->u[0].log);
    const V tail = hn::Mul(s, hn::Sub(this->t, hn::Mul(s2, rest)));
    r[0] = hn::Sub(hn::Add(this->t, tail), less_head);
  }
};

struct dLog1pEP : dLog1pCommon {
  using Rarity = LogStretchRarity<0x7E5FFFFF, 1>;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 2 : 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    Log1pEPPart<D> parts[K];
    SomeInTurn<HWY_MIN(K, 2)>(parts, x, r);
  }
};

struct dLog1pLA : dLog1pCommon {
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    Log1pLAPart<D> parts[K];
    SomeInTurn<2>(parts, x, r);
  }
};

// In full: t = 2^-e (1 + x) - a free of the rounding of 1 + x, and exact, for what that loses is
// exact below 2^53, and from there on counts for nothing. No step changes a zero's sign, and the
// polynomial's argument is 0 where x is its own result.
template <class D>
struct Log1pHAPart {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V p[1], sum, less, q[1];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const V one = hn::Set(d, 1.0);
    LogShort<D> u[1];  // -e, +0 for 0
    const V above = hn::Add(x[0], one);
    LogScale<true>(d, {above}, u);
    const LogPoint<V> row = LogPointAt<LongNaturalLog>(d, u[0].m);
    const V less_one = hn::Sub(above, one);
    const V inverse_power = FromBits(d, hn::Add(Bits(d, one), u[0].exponent_bits));
    const V t = ExactProductLess(hn::Sub(x[0], less_one), inverse_power, hn::Sub(row.a, u[0].m));
    const V argument = hn::Mul(t, row.factor);
    const V less_head =
        ExactProductLess(u[0].e, hn::Set(d, LongNaturalLog::kLog2Hi * kExponentUnit), row.log);
    sum = hn::Sub(argument, less_head);
    const V rest = Remainder(d, hn::Add(sum, less_head), t, row.factor);
    less = AddExactProduct(u[0].e, hn::Set(d, LongNaturalLog::kLog2Rest * kExponentUnit), rest);
    p[0] = Selected(hn::IfThenElseZero(hn::Ne(less_one, hn::Zero(d)), argument));
    V end[1] = {less};
    EndPart(end);
    less = end[0];
  }
  HWY_INLINE void Evaluate() { LogFullPolynomial<LongNaturalLog>(D(), p, q); }
  HWY_INLINE void Result(const V*, V* r) const {
    const V c = hn::Add(hn::Mul(q[0], p[0]), hn::Set(D(), LongNaturalLog::kPolynomial[0]));
    r[0] = hn::Sub(sum, hn::Sub(less, hn::Mul(hn::Mul(p[0], p[0]), c)));
  }
};

struct dLog1pHA : dLog1pCommon {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    constexpr size_t kLag = HWY_TARGET == HWY_SSE4 ? 2 : 4;
    Log1pHAPart<D> parts[K];
    SomeInTurn<HWY_MIN(K, kLag)>(parts, x, r);
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
