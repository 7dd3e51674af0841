// Beta: a + beta x, x of shapes p and q, within [a, a + beta]. By the shapes:
//   p = 1 or q = 1   inversion: 1 - (1 - u)^(1/q), (1 - u)^(1/p);
//   both below 1     M. D. Joehnk, "Erzeugung von betaverteilten und gammaverteilten
//                    Zufallszahlen", Metrika 8 (1964): of uniforms u and v, s = u^(1/p) and
//                    t = v^(1/q), comes s/(s + t) if s + t <= 1, all in logarithms;
//   both above 1     R. C. H. Cheng, "Generating beta variates with nonintegral shape parameters",
//                    Communications of the ACM 21 (1978), algorithm BB: of uniforms u and v, the
//                    log-logistic number w = a (u/(1 - u))^lambda gives w/(b + w), a the lesser
//                    and b the larger shape; always with the test in full, for vectors have no
//                    use of cheaper ones that decide most cases;
//   large, else      g/(g + h) of gamma numbers g and h of shapes p and q (candidates-inl.h), both
//                    accepted by one uniform.
// Single precision is the double result rounded.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/continuous/beta/beta.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/compress-inl.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/continuous/gamma/candidates-inl.h"
#include "quo_kernel/continuous/gamma/displaced-inl.h"
#include "quo_kernel/continuous/gamma/power-inl.h"
#include "quo_kernel/continuous/gamma/sieve-inl.h"

#ifndef QUO_KERNEL_CONTINUOUS_BETA_BETA_CC_  // once, not once per vector level
#define QUO_KERNEL_CONTINUOUS_BETA_BETA_CC_
namespace quo {
namespace {

constexpr int32_t kBlock = 512;

enum class BetaMethod { kInversion, kJoehnk, kCheng, kGammas, kGammasOneBelow };
constexpr int kUniforms[] = {1, 2, 2, 3, 4};

// The constants of shapes p and q.
struct BetaShape {
  BetaMethod method;
  bool swapped;          // which of the shapes comes first: p > q; by inversion, q = 1
  double power[2];       // 1/p and 1/q
  double ordered[2];     // the lesser shape and the larger
  double sum;            // p + q
  double lambda, slope;  // Cheng's beta and gamma
  GammaShape gamma[2];   // of the lesser shape and the larger
  double factor[2];      // d of each, or both times the same power of 2

  BetaShape(double p, double q);  // in the range of GammaShape
};

constexpr double kLog4 = 0x1.62e42fefa39efp+0;

template <typename T>
using BetaSieve = int32_t (*)(const BetaShape& shape, int32_t m, double* u, T* r, double a,
                              double beta);

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

// The candidates of one method: Group(shape, u, x, accepted) for a group of vectors from their
// uniforms, which stand one candidate after the other.
template <BetaMethod kMethod>
struct Candidates;

template <>
struct Candidates<BetaMethod::kInversion> {
  template <class D, class V, class M, size_t K>
  static HWY_INLINE void Group(D d, const BetaShape& shape, const double* u, V (&x)[K],
                               M (&accepted)[K]) {
    const V one = hn::Set(d, 1.0);
    V v[K], t[K];
    for (size_t k = 0; k < K; ++k) {
      v[k] = hn::Max(hn::Sub(one, hn::Load(d, u + k * hn::Lanes(d))), hn::Set(d, 0x1p-53));
      x[k] = one;
      accepted[k] = hn::Eq(one, one);
    }
    LogPowers(d, shape.swapped ? shape.power[0] : shape.power[1], v, t);
    if (shape.swapped) {
      TimesExp(d, t, x);
    } else {
      OneMinusExp(d, t, x);
    }
  }
};

template <>
struct Candidates<BetaMethod::kJoehnk> {
  template <class D, class V, class M, size_t K>
  static HWY_INLINE void Group(D d, const BetaShape& shape, const double* u, V (&x)[K],
                               M (&accepted)[K]) {
    const V one = hn::Set(d, 1.0);
    V v[2][K], t[2][K], ratio[K], sum[K], most[K], difference[K];
    for (size_t k = 0; k < K; ++k) {
      hn::LoadInterleaved2(d, u + 2 * k * hn::Lanes(d), v[0][k], v[1][k]);
    }
    for (size_t j = 0; j < 2; ++j) LogPowers(d, shape.power[j], v[j], t[j]);
    for (size_t k = 0; k < K; ++k) {
      most[k] = hn::Max(t[0][k], t[1][k]);
      difference[k] = hn::Sub(hn::Min(t[0][k], t[1][k]), most[k]);
      ratio[k] = one;
    }
    TimesExp(d, difference, ratio);  // of the lesser to the larger
    for (size_t k = 0; k < K; ++k) sum[k] = hn::Add(one, ratio[k]);
    for (size_t k = 0; k < K; ++k) {
      x[k] = hn::Div(hn::IfThenElse(hn::Ge(t[0][k], t[1][k]), one, ratio[k]), sum[k]);
    }
    TimesExp(d, most, sum);
    for (size_t k = 0; k < K; ++k) accepted[k] = hn::Le(sum[k], one);
  }
};

template <>
struct Candidates<BetaMethod::kCheng> {
  template <class D, class V, class M, size_t K>
  static HWY_INLINE void Group(D d, const BetaShape& shape, const double* u, V (&x)[K],
                               M (&accepted)[K]) {
    const V one = hn::Set(d, 1.0), sum = hn::Set(d, shape.sum);
    V odds[K], z[K], v[K], w[K], inverse[K], ratio[K], log_z[K], log_ratio[K];
    for (size_t k = 0; k < K; ++k) {
      V first, second;
      hn::LoadInterleaved2(d, u + 2 * k * hn::Lanes(d), first, second);
      first = InnerUniform(d, first);
      second = hn::Max(second, hn::Set(d, 0x1p-100));
      odds[k] = hn::Div(first, hn::Sub(one, first));
      z[k] = hn::Mul(hn::Mul(first, first), second);
    }
    level::LogEP<pex::NaturalLog>(d, odds, v);
    level::LogEP<pex::NaturalLog>(d, z, log_z);
    for (size_t k = 0; k < K; ++k) v[k] = hn::Mul(v[k], hn::Set(d, shape.lambda));
    ModerateExp(d, v, w);
    for (size_t k = 0; k < K; ++k) {
      w[k] = hn::Mul(w[k], hn::Set(d, shape.ordered[0]));
      inverse[k] = hn::Div(one, hn::Add(w[k], hn::Set(d, shape.ordered[1])));
      ratio[k] = hn::Mul(sum, inverse[k]);
    }
    level::LogEP<pex::NaturalLog>(d, ratio, log_ratio);
    for (size_t k = 0; k < K; ++k) {
      const V r = hn::Sub(hn::Mul(v[k], hn::Set(d, shape.slope)), hn::Set(d, kLog4));
      accepted[k] = hn::Ge(hn::Add(r, hn::Mul(sum, log_ratio[k])), log_z[k]);
      x[k] = hn::Mul(inverse[k], shape.swapped ? hn::Set(d, shape.ordered[1]) : w[k]);
    }
  }
};

template <bool kOneBelow>
struct CandidatesByGammas {
  template <class D, class V, class M, size_t K>
  static HWY_INLINE void Group(D d, const BetaShape& shape, const double* u, V (&x)[K],
                               M (&accepted)[K]) {
    V u_normal[2][K], u_accept[K], u_power[K], g[2][K];
    for (size_t k = 0; k < K; ++k) {
      if constexpr (kOneBelow) {
        hn::LoadInterleaved4(d, u + 4 * k * hn::Lanes(d), u_normal[0][k], u_normal[1][k],
                             u_accept[k], u_power[k]);
      } else {
        hn::LoadInterleaved3(d, u + 3 * k * hn::Lanes(d), u_normal[0][k], u_normal[1][k],
                             u_accept[k]);
      }
    }
    GammaCandidates(d, shape.gamma, u_normal, u_accept, g, accepted);
    for (size_t j = 0; j < 2; ++j) {
      for (size_t k = 0; k < K; ++k) g[j][k] = hn::Mul(g[j][k], hn::Set(d, shape.factor[j]));
    }
    if constexpr (kOneBelow) {
      V t[K];
      LogPowers(d, shape.gamma[0].power, u_power, t);
      TimesExp(d, t, g[0]);
    }
    V(&part)[K] = g[shape.swapped ? 1 : 0];
    for (size_t k = 0; k < K; ++k) x[k] = hn::Div(part[k], hn::Add(g[0][k], g[1][k]));
  }
};
template <>
struct Candidates<BetaMethod::kGammas> : CandidatesByGammas<false> {};
template <>
struct Candidates<BetaMethod::kGammasOneBelow> : CandidatesByGammas<true> {};

// The accepted numbers of a group go to x, which has room for all. Their count.
template <BetaMethod kMethod, size_t kVectors>
HWY_INLINE size_t SieveGroup(const BetaShape& shape, const double* HWY_RESTRICT u,
                             double* HWY_RESTRICT x) {
  const hn::ScalableTag<double> d;
  hn::Vec<decltype(d)> r[kVectors];
  hn::Mask<decltype(d)> accepted[kVectors];
  Candidates<kMethod>::Group(d, shape, u, r, accepted);
  size_t count = 0;
  for (size_t k = 0; k < kVectors; ++k) count += StoreChosen(d, r[k], accepted[k], x + count);
  return count;
}

template <BetaMethod kMethod, typename T>
int32_t Sieve(const BetaShape& shape, int32_t m, double* u, T* r, double a, double beta) {
  constexpr size_t kEach = kUniforms[static_cast<size_t>(kMethod)];
  constexpr size_t kVectors = kEach < 3 && HWY_TARGET != HWY_AVX3 ? 8 : 4;
  return SieveBlock<kEach, kVectors, kBlock>(
      m, u,
      [&](auto vectors, const double* first, double* x)
          HWY_ATTR { return SieveGroup<kMethod, vectors>(shape, first, x); },
      [&](size_t count, const double* x) HWY_ATTR { StoreDisplaced<true>(count, x, r, a, beta); });
}

template <typename T>
BetaSieve<T> SieveOf(BetaMethod method) {
  static constexpr BetaSieve<T> kSieves[] = {
      Sieve<BetaMethod::kInversion, T>, Sieve<BetaMethod::kJoehnk, T>, Sieve<BetaMethod::kCheng, T>,
      Sieve<BetaMethod::kGammas, T>, Sieve<BetaMethod::kGammasOneBelow, T>};
  return kSieves[static_cast<size_t>(method)];
}

BetaSieve<double> DoubleSieve(BetaMethod method) { return SieveOf<double>(method); }
BetaSieve<float> SingleSieve(BetaMethod method) { return SieveOf<float>(method); }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(DoubleSieve);
HWY_EXPORT(SingleSieve);

namespace {

BetaSieve<double> SieveFor(BetaMethod method, double*) {
  return HWY_DYNAMIC_DISPATCH(DoubleSieve)(method);
}
BetaSieve<float> SieveFor(BetaMethod method, float*) {
  return HWY_DYNAMIC_DISPATCH(SingleSieve)(method);
}

BetaMethod MethodOf(double p, double q) {
  if (p == 1 || q == 1) return BetaMethod::kInversion;
  if (p < 1 && q < 1) return BetaMethod::kJoehnk;
  if (p > 1 && q > 1) {
    // Next to 1 Cheng's constants lose their digits; for large shapes the other is faster.
    const bool safe = std::min(p, q) > 1 + 0x1p-20 && std::max(p, q) <= 256;
    return safe ? BetaMethod::kCheng : BetaMethod::kGammas;
  }
  return BetaMethod::kGammasOneBelow;
}

// Powers beyond this one make all uniforms 0; below, differences of their logarithms are finite.
constexpr double kMostPower = 1e300;

BetaShape::BetaShape(double p, double q)
    : method(MethodOf(p, q)),
      swapped(method == BetaMethod::kInversion ? p != 1 : p > q),
      ordered{std::min(p, q), std::max(p, q)},
      sum(p + q),
      lambda(0),
      slope(0),
      gamma{GammaShape(ordered[0]), GammaShape(ordered[1])},
      factor{gamma[0].d, gamma[1].d} {
  if (method == BetaMethod::kCheng) {
    lambda = std::sqrt((sum - 2) / (2 * p * q - sum));
    slope = ordered[0] + 1 / lambda;
  }
  // Where all numbers are 0 or 1, the chance of 1, p/(p + q), alone counts.
  const double scale = std::max(p, q) < 1e-250 ? 0x1p600 : 1;
  power[0] = std::min(1 / (p * scale), kMostPower);
  power[1] = std::min(1 / (q * scale), kMostPower);
  if (factor[1] > 0x1p1000) {
    for (double& f : factor) f *= 0x1p-200;
  }
}

template <typename T>
int32_t Beta(StreamState* stream, int32_t n, T* r, T single_p, T single_q, T single_a,
             T single_beta) {
  if (n < 1) return QUO_OK;
  const QuietCall quiet;
  const double p = GammaShape::InRange(AfterControl(single_p));
  const double q = GammaShape::InRange(AfterControl(single_q));
  const double a = AfterControl(single_a), beta = AfterControl(single_beta);
  const BetaShape shape(p, q);
  const auto sieve = [&, kept = SieveFor(shape.method, r)](int32_t m, double* u, T* x) {
    return kept(shape, m, u, x, a, beta);
  };
  switch (shape.method) {
    case BetaMethod::kInversion:
      return Reject<1, kBlock>(stream, n, r, sieve);
    case BetaMethod::kJoehnk:
    case BetaMethod::kCheng:
      return Reject<2, kBlock>(stream, n, r, sieve);
    case BetaMethod::kGammas:
      return Reject<3, kBlock>(stream, n, r, sieve);
    case BetaMethod::kGammasOneBelow:
      break;
  }
  return Reject<4, kBlock>(stream, n, r, sieve);
}

}  // namespace

extern "C" QUO_API int32_t _quodRngBeta(uint32_t, StreamState* stream, int32_t n, double* r,
                                        double p, double q, double a, double beta) {
  return Beta(stream, n, r, p, q, a, beta);
}

extern "C" QUO_API int32_t _quosRngBeta(uint32_t, StreamState* stream, int32_t n, float* r, float p,
                                        float q, float a, float beta) {
  return Beta(stream, n, r, p, q, a, beta);
}

}  // namespace quo
#endif
