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

// t + p^2 q(p), p standing for c m - 1 in 27 bits: products with short coefficients are exact, as
// are those with the upper part of ln(2), which is all that counts.
template <class D>
struct Log1pEPPart : Log1pArgument<D> {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  V p, rest;

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    const V m = this->Split(d, x[0]);
    const V less_one = ShortProductLessOne(d, m, this->u[0].c);
    p = hn::And(less_one, FromBits(d, SetBits(d, kUpperBits<uint64_t>)));
    this->Find(d, x[0]);
  }
  HWY_INLINE void Evaluate() {
    const D d;
    const auto term = [d](size_t i) HWY_ATTR { return hn::Set(d, kLog1pEP[i]); };
    const V square = hn::Mul(p, p);
    const V low = AddExactProduct(p, term(1), term(0));
    const V high = AddExactProduct(p, term(3), term(2));
    rest = hn::Mul(square, hn::Add(low, hn::Mul(square, high)));
  }
  HWY_INLINE void Result(const V*, V* r) const {
    const V log2 = hn::Set(D(), NaturalLog::kLog2Hi * kExponentUnit);
    const V less_head = ExactProductLess(this->u[0].e, log2, this->u[0].log);
    r[0] = hn::Sub(hn::Add(this->t, rest), less_head);
  }
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

template <template <class> class Part>
struct dLog1pInTurn : dLog1pCommon {
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D, const V (&x)[K], V (&r)[K]) {
    Part<D> parts[K];
    SomeInTurn<2>(parts, x, r);
  }
};

using dLog1pEP = dLog1pInTurn<Log1pEPPart>;
using dLog1pLA = dLog1pInTurn<Log1pLAPart>;

struct dLog1pHA : dLog1pCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const V one = hn::Set(d, 1.0);
    LogReduced<D> v[K];
    V u[K], u_rest[K], log[K];
    Pair<V> p[K];
    for (size_t k = 0; k < K; ++k) {
      const V y = Selected(hn::IfThenZeroElse(MagnitudeBelow(d, x[k], kTiny), x[k]));
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
