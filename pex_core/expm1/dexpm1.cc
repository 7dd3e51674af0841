// e^x - 1 in double precision: 2^n (e^r - 1) + (2^n - 1), |r| <= ln2/2. For n = 0 the second term
// is exactly 0 and r exactly x, so small results keep their relative accuracy.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/expm1/dexpm1.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/exp_log_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/hardware-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/expm1/expm1_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdExpm1";

constexpr double kLn2Hi = 0x1.62e42fefa38p-1;           // ln2, 42 bits: its product with n is exact
constexpr double kLn2Lo = 0x1.ef35793c7673p-45;         // the rest
constexpr double kLn2Middle = 0x1.ef35793c768p-45;      // 42 bits of that
constexpr double kLeast = -60;                          // below it the result is -1 to nearest
inline constexpr bool kFused = HWY_TARGET != HWY_SSE4;  // exact products with their sums

template <class D>
struct Expm1Reduced {
  MaskOf<D> tiny;  // x is its own result, signed zeros and subnormals without a flag
  VecOf<D> x, n, power;
};

// kProducts: products with small powers are formed on their own, and would underflow below kLeast.
// kSilent: tiny arguments take part where products can be silent.
template <bool kProducts, bool kSilent, class D, class V>
HWY_INLINE Expm1Reduced<D> Expm1Reduce(D d, V x) {
  Expm1Reduced<D> u;
  u.x = x;
  if constexpr (!(kSilent && kHasSilentMul<V>)) {
    u.tiny = MagnitudeBelow(d, x, 0x1p-54);
    u.x = Selected(hn::IfThenZeroElse(u.tiny, x));
  }
  if constexpr (kProducts) u.x = hn::Max(u.x, hn::Set(d, kLeast));
  const V shifter = hn::Set(d, kSilent ? 0x1.8p52 + 1023 : 0x1.8p52);
  const V kf = hn::Add(SilentMul(u.x, hn::Set(d, 0x1.71547652b82fep+0)), shifter);  // 1/ln2
  u.n = hn::Sub(kf, shifter);
  const auto exponent = hn::ShiftLeft<52>(Bits(d, kf));
  u.power = FromBits(d, kSilent ? exponent : hn::Add(exponent, SetBits(d, 0x3FF0000000000000)));
  return u;
}

// The result y of a kSilent reduction of x.
template <class D, class V>
HWY_INLINE V Expm1Result([[maybe_unused]] D d, const Expm1Reduced<D>& u, V x, V y) {
  if constexpr (kHasSilentMul<V>) return hn::CopySign(y, x);  // of zeros
  return hn::Or(y, hn::IfThenElseZero(u.tiny, x));            // y is 0 there
}

template <class Groups>
struct dExpm1Common : Groups {
  using Rarity = RareAbove<double, 0x4086232A>;  // |x| >= 708.39599609375
  static HWY_INLINE int Rare(double x, double* r) { return Expm1Rare(x, r, dExpScalar); }
};

// A polynomial with its signs changed.
template <size_t N>
struct Polynomial {
  double c[N];
};
template <size_t N>
constexpr Polynomial<N> Negated(const double (&c)[N]) {
  Polynomial<N> negated = {};
  for (size_t i = 0; i < N; ++i) negated.c[i] = -c[i];
  return negated;
}

struct dExpm1EP : dExpm1Common<LargeGroups<double>> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Expm1Reduced<D> u[K];
    V r[K], r2[K], q[K];
    for (size_t k = 0; k < K; ++k) u[k] = Expm1Reduce<!kFused, true>(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      r[k] = hn::Sub(u[k].x, hn::Mul(u[k].n, hn::Set(d, kLn2Hi + kLn2Lo)));
      r2[k] = SilentMul(r[k], r[k]);
    }
    SilentEvenOdd(d, r, r2, kExpm1EP, q);
    for (size_t k = 0; k < K; ++k) {
      const V e = hn::Add(r[k], SilentMul(r2[k], q[k]));
      const V less_one = hn::Sub(u[k].power, hn::Set(d, 1.0));
      out[k] = Expm1Result(d, u[k], x[k], AddExactProduct(u[k].power, e, less_one));
    }
  }
};

struct dExpm1LA : dExpm1Common<LargeGroups<double>> {
  static constexpr auto kLess = Negated(kExpm1LA);
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const V low = hn::Set(d, kLn2Middle);
    Expm1Reduced<D> u[K];
    V r0[K], r[K], r2[K], q[K];
    for (size_t k = 0; k < K; ++k) u[k] = Expm1Reduce<!kFused, true>(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      r0[k] = SubExactProduct(u[k].n, hn::Set(d, kLn2Hi), u[k].x);  // exact
      r[k] = SubExactProduct(u[k].n, low, r0[k]);
      r2[k] = SilentMul(r[k], r[k]);
    }
    SilentEvenOdd(d, r, r2, kLess.c, q);
    for (size_t k = 0; k < K; ++k) {
      // The rounding of r would tell in 2^n (e^r - 1), so r0 goes its own way. Products with
      // powers of two are exact. The signs are such that zeros keep theirs.
      const V rest = AddExactProduct(u[k].n, low, SilentMul(r2[k], q[k]));
      const V head = ExactProductLess(u[k].power, r0[k], hn::Sub(hn::Set(d, 1.0), u[k].power));
      const V y = SubExactProduct(u[k].power, rest, head);
      out[k] = kHasSilentMul<V> ? y : Expm1Result(d, u[k], x[k], y);
    }
  }
};

// r, r^2/2 and 2^n - 1 with their rounding errors.
struct dExpm1HA : dExpm1Common<Kernel<double>> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const V half = hn::Set(d, 0.5);
    Expm1Reduced<D> u[K];
    V r[K], r_rest[K], square[K], q[K];
    Pair<V> r2[K];
    for (size_t k = 0; k < K; ++k) u[k] = Expm1Reduce<true, false>(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      const V r0 = SubExactProduct(u[k].n, hn::Set(d, kLn2Hi), u[k].x);  // exact
      const V r1 = hn::Mul(u[k].n, hn::Set(d, kLn2Lo));
      r[k] = hn::Sub(r0, r1);
      r_rest[k] = hn::Sub(hn::Sub(r0, r[k]), r1);
      r2[k] = TwoProduct(d, r[k], r[k]);
      square[k] = r2[k].hi;
    }
    EvenOdd(d, r, square, kExpm1HA, q);
    for (size_t k = 0; k < K; ++k) {
      const V cubic = hn::Mul(hn::Mul(r[k], square[k]), q[k]);
      const Pair<V> e = FastTwoSum(r[k], hn::Mul(half, square[k]));
      const V rest = hn::Add(hn::Add(r_rest[k], hn::Mul(r_rest[k], r[k])), hn::Mul(half, r2[k].lo));
      const V e_rest = hn::Add(e.lo, hn::Add(cubic, rest));
      const Pair<V> less_one = TwoSum(u[k].power, hn::Set(d, -1.0));
      const Pair<V> sum = TwoSum(less_one.hi, hn::Mul(u[k].power, e.hi));
      const V sum_rest = hn::Add(sum.lo, hn::Add(less_one.lo, hn::Mul(u[k].power, e_rest)));
      out[k] = hn::IfThenElse(u[k].tiny, x[k], hn::Add(sum.hi, sum_rest));
    }
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
