// Candidates for gamma numbers of a shape: vectors of numbers and the lanes that are accepted.
//
// G. Marsaglia, W. W. Tsang, "A simple method for generating gamma variables", ACM Transactions on
// Mathematical Software 26 (2000): for shape alpha >= 1 and d = alpha - 1/3, of a normal x and a
// uniform u comes d w^3, w = 1 + x/sqrt(9 d), if w > 0 and u < exp(3 d g(w - 1)), where
//   g(y) = log(1 + y) - y + y^2/2 - y^3/3.
// The normal number is the inverse of its distribution function at another uniform, so that each
// candidate takes the same number of uniforms. A shape below 1 multiplies a number of shape
// alpha + 1 by U^(1/alpha), U a third uniform.
//
// The exponential is not less than 1 - 0.02205 x^4/d, and than 1 - x^4/(108 d) for x > 0 (the
// constants of the largest d (1 - exp(3 d g))/x^4 over d >= 2/3, which falls with d), so most
// candidates need no logarithm.
#ifndef QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_ONCE_  // once, not once per vector level
#define QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_ONCE_
#include <algorithm>
#include <cmath>
#include <limits>

namespace quo {

// The constants of a shape.
struct GammaShape {
  double d;        // alpha - 1/3, of alpha + 1 below 1
  double c;        // 1/sqrt(9 d)
  double power;    // 1/alpha below 1, else 0
  double near[2];  // (1 - exp(3 d g))/x^4 at most, for x < 0 and x > 0

  explicit GammaShape(double alpha) {
    alpha = InRange(alpha);
    d = Displaced(alpha);
    c = 1 / (3 * std::sqrt(d));
    power = alpha < 1 ? std::min(1 / alpha, kMostPower) : 0;
    near[0] = kNear[0] / d;
    near[1] = kNear[1] / d;
  }

  // Whether these are the constants of alpha, but for rounding errors.
  bool Fits(double alpha) const {
    alpha = InRange(alpha);
    const auto one = [](double x) { return std::fabs(x - 1) < 0x1p-40; };
    const bool power_fits =
        alpha >= 1 ? power == 0 : one(power * alpha) || (power == kMostPower && alpha < 1e-299);
    return d == Displaced(alpha) && one(3 * c * (3 * c * d)) && power_fits &&
           one(near[0] / kNear[0] * d) && one(near[1] / kNear[1] * d);
  }

  // alpha > 0 and finite; what is not becomes the next that is, NaN the least.
  static double InRange(double alpha) {
    constexpr double kLeast = 0x1p-1074, kMost = std::numeric_limits<double>::max();
    return alpha > kLeast ? std::min(alpha, kMost) : kLeast;
  }

  // Uniforms of a candidate: that of the normal number, of the acceptance, of the power.
  int Uniforms() const { return power == 0 ? 2 : 3; }

 private:
  // (U^10^300 is 0 for all uniforms U, and sums of some logarithms of it are finite.)
  static constexpr double kMostPower = 1e300;
  static constexpr double kNear[] = {0.02205, 0.00926};
  static double Displaced(double alpha) {
    return (alpha < 1 ? alpha + 1 : alpha) - 0x1.5555555555555p-2;
  }
};

}  // namespace quo
#endif

#include "hwy/highway.h"
#include "pex_core/_heap/real/erfinv_kernels-inl.h"
#include "pex_core/_heap/real/log-inl.h"
#include "quo_kernel/continuous/gamma/power-inl.h"

#if defined(QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_INL_H_
#undef QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_INL_H_
#else
#define QUO_KERNEL_CONTINUOUS_GAMMA_CANDIDATES_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// A uniform of at least 2^-54, at most 1 - 2^-53. What is below or not a number becomes 1/2, so
// that of a generator that gives nothing else candidates are accepted too.
template <class D, class V>
HWY_INLINE V InnerUniform(D d, V u) {
  const V below = hn::Min(u, hn::Set(d, 1 - 0x1p-53));
  return hn::IfThenElse(hn::Ge(u, hn::Set(d, 0x1p-54)), below, hn::Set(d, 0.5));
}

// x = the inverse of the normal distribution function at u, within 26 bits.
template <class D, class V, size_t K>
HWY_INLINE void NormalsOf(D d, const V (&u)[K], V (&x)[K]) {
  using Function = level::InverseOfCdfNorm;
  V inner[K];
  level::Pair<V> y[K];
  for (size_t k = 0; k < K; ++k) inner[k] = InnerUniform(d, u[k]);
  level::ErfInvAll<Function, level::ErfInvTier::kShort>(d, inner, y);
  for (size_t k = 0; k < K; ++k) x[k] = y[k].hi;
}

// 3 d g(y), of y and log(1 + y). Rounding moves it by 10^-11 at most.
template <class D, class V>
HWY_INLINE V LogOfAcceptance(D d, const GammaShape& shape, V y, V log) {
  const auto set = [d](double x) HWY_ATTR { return hn::Set(d, x); };
  const V y2 = hn::Mul(y, y);
  V g;
  if (shape.d < 1e4) {
    const V cubic = hn::Sub(set(0.5), hn::Mul(y, set(1 / 3.0)));
    g = hn::Add(hn::Sub(log, y), hn::Mul(y2, cubic));
  } else {  // |y| < 0.03
    V p = hn::Sub(set(1 / 7.0), hn::Mul(y, set(1 / 8.0)));
    p = hn::Sub(set(1 / 6.0), hn::Mul(y, p));
    p = hn::Sub(set(1 / 5.0), hn::Mul(y, p));
    p = hn::Sub(set(1 / 4.0), hn::Mul(y, p));
    g = hn::Neg(hn::Mul(hn::Mul(y2, y2), p));
  }
  return hn::Mul(set(3 * shape.d), g);
}

// Of the lanes `asked`, where all y are above -1, those with u < exp(3 d g) for the sum of the
// exponents of all shapes.
template <class D, class V, class M, size_t J>
HWY_NOINLINE HWY_ATTR M AcceptedByLogarithm(D d, const GammaShape* shape, const V (&y)[J], V u,
                                            M asked) {
  const V one = hn::Set(d, 1.0);
  V x[J + 1], log[J + 1];
  for (size_t j = 0; j < J; ++j) x[j] = hn::IfThenElse(asked, hn::Add(one, y[j]), one);
  x[J] = hn::Max(hn::IfThenElse(asked, u, one), hn::Set(d, 0x1p-1000));
  level::LogBelowOne(d, x, log);
  V sum = LogOfAcceptance(d, shape[0], y[0], log[0]);
  for (size_t j = 1; j < J; ++j) sum = hn::Add(sum, LogOfAcceptance(d, shape[j], y[j], log[j]));
  return hn::And(asked, hn::Lt(log[J], sum));
}

// Candidates of J shapes at once, whose constants are shape[0] to shape[J - 1]: one of each with
// one uniform u to accept them all together: a uniform below the product of two chances is as good
// as one for each. In r the w^3 of the normal numbers that are the inverse at u_normal, to be
// multiplied by d.
template <class D, class V, class M, size_t J, size_t K>
HWY_INLINE void GammaCandidates(D d, const GammaShape* shape, const V (&u_normal)[J][K],
                                const V (&u)[K], V (&r)[J][K], M (&accepted)[K]) {
  const V one = hn::Set(d, 1.0), zero = hn::Zero(d);
  V x[J][K];
  for (size_t j = 0; j < J; ++j) NormalsOf(d, u_normal[j], x[j]);
  for (size_t k = 0; k < K; ++k) {
    V y[J], bound = one, least = one;
    for (size_t j = 0; j < J; ++j) {
      y[j] = hn::Mul(hn::Set(d, shape[j].c), x[j][k]);
      const V w = hn::Add(one, y[j]), x2 = hn::Mul(x[j][k], x[j][k]);
      const V near = hn::IfThenElse(hn::Gt(y[j], zero), hn::Set(d, shape[j].near[1]),
                                    hn::Set(d, shape[j].near[0]));
      bound = hn::Sub(bound, hn::Mul(hn::Mul(x2, x2), near));
      least = j == 0 ? w : hn::Min(least, w);
      r[j][k] = hn::Mul(hn::Mul(w, w), w);
    }
    const M positive = hn::Gt(least, zero), doubtful = hn::Gt(u[k], bound);
    accepted[k] = hn::AndNot(doubtful, positive);
    const M asked = hn::And(doubtful, positive);
    if (!hn::AllFalse(d, asked)) {
      accepted[k] = hn::Or(accepted[k], AcceptedByLogarithm(d, shape, y, u[k], asked));
    }
  }
}

// t = log(u) power, at most 0, u uniform.
template <class D, class V, size_t K>
HWY_INLINE void LogPowers(D d, double power, const V (&u)[K], V (&t)[K]) {
  V positive[K], log[K];
  for (size_t k = 0; k < K; ++k) positive[k] = hn::Max(u[k], hn::Set(d, 0x1p-1022));
  level::LogEP<pex::NaturalLog>(d, positive, log);
  for (size_t k = 0; k < K; ++k) {
    t[k] = hn::Min(hn::Mul(log[k], hn::Set(d, power)), hn::Zero(d));
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
