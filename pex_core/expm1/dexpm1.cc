// e^x - 1 in double precision: 2^n (e^r - 1) + (2^n - 1), |r| <= ln2/2. For n = 0 the second term is
// exactly 0 and r exactly x, so small results keep their relative accuracy.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/dexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/expm1/expm1_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExpm1";

constexpr double kLn2Hi = 0x1.62e42fefa38p-1;    // ln2, 42 bits: its product with n is exact
constexpr double kLn2Lo = 0x1.ef35793c7673p-45;  // the rest
constexpr double kLeast = -60;                   // below it the result is -1 to nearest

template <class D>
struct Expm1Reduced {
  MaskOf<D> tiny;  // x is its own result, signed zeros and subnormals without a flag
  VecOf<D> x, n, power;
};

template <class D, class V>
HWY_INLINE Expm1Reduced<D> Expm1Reduce(D d, V x) {
  Expm1Reduced<D> u;
  u.tiny = MagnitudeBelow(d, x, 0x1p-54);
  u.x = hn::Max(hn::IfThenZeroElse(u.tiny, x), hn::Set(d, kLeast));
  const V shifter = hn::Set(d, 0x1.8p52);
  const V kf = hn::Add(hn::Mul(u.x, hn::Set(d, 0x1.71547652b82fep+0)), shifter);  // 1/ln2
  u.n = hn::Sub(kf, shifter);
  u.power = FromBits(d, hn::Add(hn::ShiftLeft<52>(Bits(d, kf)), SetBits(d, 0x3FF0000000000000)));
  return u;
}

struct dExpm1Common : Kernel<double> {
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static HWY_INLINE int Rare(double x, double* r) { return Expm1Rare(x, r, dExpScalar); }
};

struct dExpm1EP : dExpm1Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = Expm1Reduce(d, x);
    const V r = hn::Sub(u.x, hn::Mul(u.n, hn::Set(d, kLn2Hi + kLn2Lo)));
    const V r2 = hn::Mul(r, r);
    const V e = hn::Add(r, hn::Mul(r2, EvenOdd(d, r, r2, kExpm1EP)));
    const V less_one = hn::Sub(u.power, hn::Set(d, 1.0));
    return hn::IfThenElse(u.tiny, x, hn::Add(hn::Mul(u.power, e), less_one));
  }
};

struct dExpm1LA : dExpm1Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = Expm1Reduce(d, x);
    const V r = hn::Sub(hn::Sub(u.x, hn::Mul(u.n, hn::Set(d, kLn2Hi))),
                        hn::Mul(u.n, hn::Set(d, kLn2Lo)));
    const V r2 = hn::Mul(r, r);
    const V e = hn::Add(r, hn::Mul(r2, Estrin(d, r, r2, kExpm1LA)));
    const V less_one = hn::Sub(u.power, hn::Set(d, 1.0));
    return hn::IfThenElse(u.tiny, x, hn::Add(hn::Mul(u.power, e), less_one));
  }
};

// r, r^2/2 and 2^n - 1 with their rounding errors.
struct dExpm1HA : dExpm1Common {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    const auto u = Expm1Reduce(d, x);
    const V r0 = hn::Sub(u.x, hn::Mul(u.n, hn::Set(d, kLn2Hi)));  // exact
    const V r1 = hn::Mul(u.n, hn::Set(d, kLn2Lo));
    const V r = hn::Sub(r0, r1);
    const V r_rest = hn::Sub(hn::Sub(r0, r), r1);

    const V half = hn::Set(d, 0.5);
    const Pair<V> r2 = TwoProduct(d, r, r);
    const V cubic = hn::Mul(hn::Mul(r, r2.hi), Estrin(d, r, r2.hi, kExpm1HA));
    const Pair<V> e = FastTwoSum(r, hn::Mul(half, r2.hi));
    const V rest = hn::Add(hn::Add(r_rest, hn::Mul(r_rest, r)), hn::Mul(half, r2.lo));
    const V e_rest = hn::Add(e.lo, hn::Add(cubic, rest));

    const Pair<V> less_one = TwoSum(u.power, hn::Set(d, -1.0));
    const Pair<V> sum = TwoSum(less_one.hi, hn::Mul(u.power, e.hi));
    const V sum_rest = hn::Add(sum.lo, hn::Add(less_one.lo, hn::Mul(u.power, e_rest)));
    return hn::IfThenElse(u.tiny, x, hn::Add(sum.hi, sum_rest));
  }
};

PEX_UNARY(double, dExpm1_26, dExpm1EP)
PEX_UNARY(double, dExpm1_50, dExpm1LA)
PEX_UNARY(double, dExpm1_HA, dExpm1HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dExpm1_26)
PEX_EXPORT_UNARY(double, dExpm1_50)
PEX_EXPORT_UNARY(double, dExpm1_HA)
}  // namespace pex
#endif
