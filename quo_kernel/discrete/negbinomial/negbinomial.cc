// Negative binomial: the failures before the a-th success, a > 0 real, with
// f(k) = Gamma(a + k)/(Gamma(a) k!) p^a q^k, q = 1 - p.
//
// Three ways, by the parameters, all exact: where 512 counts hold all but 2^-55 of the
// probability, by the table of the distribution function; else by rejection, for a >= 1, where f is
// log-concave, from tangents (W. Hoermann, "A rejection technique for sampling from T-concave
// distributions", ACM Transactions on Mathematical Software 21 (1995)); for a < 1 from
// Gamma(k + a)/k! < (k + a/2)^(a - 1) (D. Kershaw, "Some extensions of W. Gautschi's inequalities
// for the gamma function", Mathematics of Computation 41 (1983)) in two pieces as for the gamma
// distribution (J. H. Ahrens, U. Dieter, "Computer methods for sampling from gamma, beta, Poisson
// and binomial distributions", Computing 12 (1974)).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/negbinomial/negbinomial.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/candidates.h"
#include "quo_kernel/_kernel/inversion_table.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/_kernel/set_up.h"
#include "quo_kernel/_kernel/vector_math.h"
#include "quo_kernel/discrete/negbinomial/hats-inl.h"
#include "quo_kernel/discrete/negbinomial/hats.h"

#ifndef QUO_KERNEL_DISCRETE_NEGBINOMIAL_NEGBINOMIAL_CC_  // once, not once per vector level
#define QUO_KERNEL_DISCRETE_NEGBINOMIAL_NEGBINOMIAL_CC_
namespace quo {
namespace {

// The passes of one vector level that the shapes have in common.
struct ShapePasses {
  void (*arguments)(int32_t n, const NbLogRatio& f, const double* k, double* arg1, double* arg2);
  void (*log_ratios)(int32_t n, const NbLogRatio& f, const double* k, const double* log1,
                     const double* log2, double* r);
  void (*decide)(int32_t n, const NbLogRatio& f, NbAside* aside);
};

struct NbPasses {
  ShapePasses shapes[2];  // a < 1, a >= 1
  int32_t (*sort_concave)(int32_t, const double*, const NbConcave&, int32_t*, NbAside*);
  void (*split_concave)(int32_t, const NbConcave&, NbAside*);
  void (*place_concave)(int32_t, const NbConcave&, NbAside*);
  int32_t (*sort_convex)(int32_t, const double*, const NbConvex&, int32_t*, NbAside*);
  void (*split_convex)(int32_t, const NbConvex&, NbAside*);
  void (*log_place_convex)(int32_t, const NbConvex&, NbAside*);
  void (*place_convex)(int32_t, const NbConvex&, NbAside*);
};

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

constexpr NbPasses kNbPasses = {{{LogArgumentsOf<false>, LogRatios<false>, DecideNb<false>},
                                 {LogArgumentsOf<true>, LogRatios<true>, DecideNb<true>}},
                                SortConcave,
                                SplitConcave,
                                PlaceConcave,
                                SortConvex,
                                SplitConvex,
                                LogPlaceConvex,
                                PlaceConvex};
const NbPasses* NbPassesOfLevel() { return &kNbPasses; }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(NbPassesOfLevel);

namespace {

const NbPasses& Level() { return *HWY_DYNAMIC_DISPATCH(NbPassesOfLevel)(); }

constexpr double _quoiNegbinomialTab[] = {kLnSmallest};

// Scalar values of the vector functions.
double Log1p(double x) { return math::dLog1p_50(1, &x, &x), x; }
double Exp(double x) { return math::dExp_50(1, &x, &x), x; }
double Expm1(double x) { return math::dExpm1_50(1, &x, &x), x; }
double Log(double x) { return math::dLn_50(1, &x, &x), x; }

// ---- Set-up. ----

// The parameters and the ratios of probabilities.
struct Negbinomial {
  double a, p, q;

  // (a + k) q - (k + 1), k real: positive where f grows from k to k + 1.
  double Excess(double k) const { return p < 0.5 ? a - 1 - p * (a + k) : (a + k) * q - (k + 1); }
};

// ln f at n counts, n a multiple of kPad.
void LogProbabilities(int32_t n, const NbLogRatio& f, bool concave, const double* k, double* r) {
  alignas(64) double log1[2 * kPad], log2[2 * kPad];
  const ShapePasses& passes = Level().shapes[concave];
  passes.arguments(n, f, k, log1, log2);
  math::dLog1p_50(n, log1, log1);
  math::dLog1p_50(n, log2, log2);
  passes.log_ratios(n, f, k, log1, log2, r);
}

double LogProbability(const NbLogRatio& f, bool concave, double count) {
  alignas(64) double k[kPad], r[kPad];
  std::fill_n(k, kPad, count);
  LogProbabilities(kPad, f, concave, k, r);
  return r[0];
}

// The counts below 16, downward from f(16).
void FillSmall(const Negbinomial& nb, bool concave, NbLogRatio* f) {
  double value = LogProbability(*f, concave, kNbFewest);
  alignas(64) double quotients[kNbFewest];
  for (int k = 0; k < kNbFewest; ++k) quotients[k] = (k + 1) / ((nb.a + k) * nb.q);
  math::dLn_50(kNbFewest, quotients, quotients);
  for (int k = kNbFewest; k-- > 0;) f->small[k] = value += quotients[k];
}

// One tail of the hat: the tangent at the one of some counts where f is next to f(mode)/e.
struct Tangent {
  double at, log_f;    // the count and ln f there
  double decay, rest;  // -ln of the ratio to the next count outward, and 1 - ratio
};

Tangent TangentOf(const Negbinomial& nb, const NbConcave& hat, double deviation, double outward) {
  constexpr int32_t kTries = 2 * kPad;
  alignas(64) double k[kTries], log[kTries];
  for (int i = 0; i < kTries; ++i) {
    k[i] = hat.mode + outward * __quodFloor(1 + 0.1 * (i + 1) * deviation);
    k[i] = std::max(k[i], 0.0);
  }
  LogProbabilities(kTries, hat.f, true, k, log);
  int best = 0;
  for (int i = 1; i < kTries; ++i) {
    if (std::abs(log[i] + 1) < std::abs(log[best] + 1)) best = i;
  }
  const double at = k[best], log_f = std::min(log[best], 0.0);
  if (outward > 0) {
    const double change = nb.Excess(at) / (at + 1);
    return {at, log_f, -Log1p(change), -change};
  }
  const double excess = nb.Excess(at - 1);
  return {at, log_f, at > 0 ? Log1p(excess / at) : 1, excess / (at + excess)};
}

void ComputeConcave(const Negbinomial& nb, NbConcave* hat) {
  NbLogRatio& f = hat->f;
  const double deviation = __quodSqrt(nb.a * nb.q) / nb.p;
  hat->mode = __quodFloor((nb.a - 1) * nb.q / nb.p);
  f.a = nb.a;
  f.origin = std::max<double>(hat->mode, kNbFewest);
  f.over_w0 = 1 / (f.origin + (nb.a - 0.5));
  f.over_z0 = 1 / (f.origin + 0.5);
  f.drift = Log1p(nb.Excess(f.origin - 0.5) * f.over_z0);
  f.norm = 0;
  f.norm = LogProbability(f, true, f.origin);
  FillSmall(nb, true, &f);
  const double at_mode = LogProbability(f, true, hat->mode);
  f.norm += at_mode;
  for (double& small : f.small) small -= at_mode;

  // The tails begin where the tangents fall below f(mode).
  const Tangent right = TangentOf(nb, *hat, deviation, 1);
  hat->begin_right = -__quodFloor(-(right.at + right.log_f / right.decay));
  hat->top_right = std::min(0.0, right.log_f - (hat->begin_right - right.at) * right.decay);
  hat->decay_right = right.decay;
  const double tail_right = Exp(hat->top_right) / right.rest;
  hat->first = 0;
  double tail_left = 0;
  if (hat->mode > 0) {
    const Tangent left = TangentOf(nb, *hat, deviation, -1);
    hat->begin_left = __quodFloor(left.at - left.log_f / left.decay);
    if (left.at > 0 && hat->begin_left >= 0) {
      hat->top_left = std::min(0.0, left.log_f - (left.at - hat->begin_left) * left.decay);
      hat->decay_left = left.decay;
      hat->first = hat->begin_left + 1;
      tail_left = Exp(hat->top_left) / left.rest;
    }
  }
  hat->width = hat->begin_right - hat->first;
  hat->end_left = hat->width + tail_left;
  hat->total = hat->end_left + tail_right;
  hat->over_left = tail_left > 0 ? 1 / tail_left : 0;
  hat->over_right = 1 / tail_right;

  const double ends[] = {hat->first, hat->begin_right - 1};
  double* const falls[] = {&hat->fall_left, &hat->fall_right};
  for (int side = 0; side < 2; ++side) {
    const double distance = std::abs(ends[side] - hat->mode);
    *falls[side] = distance > 0 ? -LogProbability(f, true, ends[side]) / distance : 0;
  }
}

void ComputeConvex(const Negbinomial& nb, NbConvex* hat) {
  NbLogRatio& f = hat->f;
  f.a = nb.a;
  f.drift = Log1p(-nb.p);
  f.norm = nb.a - 1;
  FillSmall(nb, false, &f);
  double sum = 0;
  for (int k = 0; k < kNbFewest; ++k) hat->head[k] = sum += Exp(f.small[k]);

  constexpr double kBegin = kNbFewest - 1;
  const double half = 0.5 * nb.a;
  hat->theta = -f.drift;
  hat->bend = std::max(1 / hat->theta, kBegin + 1);
  hat->over_a = 1 / nb.a;
  hat->log_begin = Log(kBegin + half);
  const double log_bend = Log(hat->bend + half);
  hat->growth = Expm1(nb.a * (log_bend - hat->log_begin));
  hat->log_top = kBegin * f.drift;
  hat->log_bend = (nb.a - 1) * log_bend;
  const double power = Exp(nb.a * hat->log_begin + hat->log_top) * hat->growth * hat->over_a;
  const double tail = Exp(hat->log_bend - hat->theta * hat->bend) / hat->theta;
  hat->end_power = sum + power;
  hat->total = hat->end_power + tail;
  hat->over_power = 1 / power;
  hat->over_tail = 1 / tail;
}

enum class Way : uint64_t { kTable, kConstant, kConcave, kConvex };

struct NegbinomialSetUp {
  SetUpHead head;
  double a, p;
  Way way;
  union {
    double cdf[512];  // ends with a 1
    double constant;
    NbConcave concave;
    NbConvex convex;
  };

  int32_t TableSize() const {
    return static_cast<int32_t>(
        (std::min<uint64_t>(head.used, sizeof(*this)) - offsetof(NegbinomialSetUp, cdf)) /
        sizeof(double));
  }
  bool IsFor(double for_a, double for_p) const {
    if (a != for_a || p != for_p) return false;
    if (way != Way::kTable) return true;
    return head.used >= offsetof(NegbinomialSetUp, cdf[1]) && cdf[TableSize() - 1] == 1;
  }

  void Compute(double for_a, double for_p) {
    a = for_a;
    p = for_p;
    head.used = offsetof(NegbinomialSetUp, cdf) + Choose() * sizeof(double);
  }

 private:
  // Sets the way and its constants, and returns how many doubles these are.
  size_t Choose() {
    way = Way::kConstant;
    constant = 0;
    if (!(a > 0 && p < 1)) return 1;
    // Beyond these bounds no probability within the 32-bit range differs.
    Negbinomial nb = {std::clamp(a, 1e-100, 1e30), std::max(p, a < 1 ? 1e-290 : 1e-60), 0};
    nb.q = 1 - nb.p;
    const double mean = nb.a * nb.q / nb.p, deviation = __quodSqrt(nb.a * nb.q) / nb.p;
    if (mean - 40 * deviation > 0x1p32) {
      constant = std::numeric_limits<int32_t>::max();
      return 1;
    }
    if (mean < 400) {
      const auto ratio = [&nb](double k) { return (nb.a + k) * nb.q / (k + 1); };
      const int32_t size = TabulateDistribution(std::size(cdf), cdf, nb.q, ratio);
      if (size > 0) {
        way = Way::kTable;
        return static_cast<size_t>(size);
      }
    }
    std::memset(static_cast<void*>(cdf), 0, sizeof(cdf));
    if (nb.a < 1) {
      way = Way::kConvex;
      ComputeConvex(nb, &convex);
      return sizeof(convex) / sizeof(double);
    }
    way = Way::kConcave;
    ComputeConcave(nb, &concave);
    return sizeof(concave) / sizeof(double);
  }
};

// ---- Drawing. ----

constexpr uint32_t kChunkKey = 4;

// The logarithms and the decision that both shapes end with.
void DecideAside(int32_t n, const NbLogRatio& f, bool concave, NbAside* aside) {
  math::dLn_50(n, aside->v, aside->v);
  math::dLog1p_50(n, aside->log1, aside->log1);
  math::dLog1p_50(n, aside->log2, aside->log2);
  Level().shapes[concave].decide(n, f, aside);
}

void Decide(int32_t n, const NbConcave& hat, NbAside* aside) {
  const NbPasses& passes = Level();
  passes.split_concave(n, hat, aside);
  math::dLn_50(n, aside->t, aside->t);
  passes.place_concave(n, hat, aside);
  DecideAside(n, hat.f, true, aside);
}

void Decide(int32_t n, const NbConvex& hat, NbAside* aside) {
  const NbPasses& passes = Level();
  passes.split_convex(n, hat, aside);
  math::dLog1p_50(n, aside->t, aside->t);
  passes.log_place_convex(n, hat, aside);
  math::dExp_50(n, aside->log1, aside->log1);
  passes.place_convex(n, hat, aside);
  DecideAside(n, hat.f, false, aside);
}

int32_t Sort(int32_t m, const double* u, const NbConcave& hat, int32_t* counts, NbAside* aside) {
  return Level().sort_concave(m, u, hat, counts, aside);
}
int32_t Sort(int32_t m, const double* u, const NbConvex& hat, int32_t* counts, NbAside* aside) {
  return Level().sort_convex(m, u, hat, counts, aside);
}

template <class Hat>
int32_t Rejection(StreamState* stream, int32_t n, int32_t* r, const Hat& hat) {
  NbAside aside;
  Counts counts;
  const auto sieve = [&](int32_t m, double* u, int32_t* to) {
    FillUp(2 * m, u, 0.5, 2 * kPad);
    if (const int32_t others = Sort(m, u, hat, counts.data(), &aside); others > 0) {
      FillUp(others, aside.place, 0.5 * hat.total);
      FillUp(others, aside.v, 0.5);
      Decide(Whole(others), hat, &aside);
      counts.Insert(others, aside.index, aside.place);
    }
    return counts.Accepted(m, to);
  };
  return Reject<2, kCandidates>(stream, n, r, sieve);
}

// By a table of one count.
int32_t DrawConstant(StreamState* stream, int32_t n, int32_t* r, double constant) {
  constexpr double kOnly[] = {1};
  const int32_t count = constant > 0 ? std::numeric_limits<int32_t>::max() : 0;
  return DrawByTable(stream, n, r, kOnly, 1, count);
}

}  // namespace

extern "C" QUO_API int32_t _quoiRngNegbinomial(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                               double a, double p) {
  if (n < 1) return QUO_OK;
  const VectorMath borrowed(ReplaceAll<_quoiNegbinomialTab>);
  NegbinomialSetUp own;
  const NegbinomialSetUp& set_up = SetUp(stream, kChunkKey, own, AfterControl(a), AfterControl(p));
  switch (set_up.way) {
    case Way::kTable:
      return DrawByTable(stream, n, r, set_up.cdf, set_up.TableSize());
    case Way::kConcave:
      return Rejection(stream, n, r, set_up.concave);
    case Way::kConvex:
      return Rejection(stream, n, r, set_up.convex);
    default:
      return DrawConstant(stream, n, r, set_up.constant);
  }
}

}  // namespace quo
#endif
