// Poisson with one mean: below a mean of 27 by the table of its distribution function, from there
// on by rejection, PTPE, or by a normal number.
//
// PTPE is V. Kachitvichyanukul, B. W. Schmeiser, "The generation of Poisson random variates"
// (1981): below the histogram f(floor(x))/f(M), M the mode, lies a triangle about M + 1/2, from xL
// to xR, and above it a hat of two parallelograms of height c over the triangle's sides and
// exponential tails outside. A point is drawn uniformly under triangle and hat; in the triangle,
// three quarters of all, its floor is the count, elsewhere if it falls below the histogram. That
// the triangle lies below the histogram and the hat above is tested for means from 27 to 10^6.
//
// A block of candidates goes through a pass that stores the counts of the triangle and puts the
// rest aside, vector functions and two passes that decide on the rest, and one that collects what
// was accepted, in order.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/poisson/poisson.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/candidates.h"
#include "quo_kernel/_kernel/counts-inl.h"
#include "quo_kernel/_kernel/inversion_table.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/_kernel/set_up.h"
#include "quo_kernel/_kernel/stirling-inl.h"
#include "quo_kernel/_kernel/vector_math.h"
#include "quo_kernel/discrete/poisson/normal_poisson-inl.h"
#include "quo_kernel/discrete/poisson/poisson.h"

#ifndef QUO_KERNEL_DISCRETE_POISSON_POISSON_CC_  // once, not once per vector level
#define QUO_KERNEL_DISCRETE_POISSON_POISSON_CC_
namespace quo {
namespace {

struct Ptpe {
  double mode, centre, left, right;  // M, M + 1/2, xL, xR
  double slope, lift, spread;        // 1/p1, c, 1/c
  double p1, p2, p3, p4;             // where triangle, parallelograms, left and right tail end
  double decay_left, decay_right;    // of the tails
  double norm;                       // ln f(M), less what ln f has in common for all counts
  double small[16];                  // ln f(k)/f(M) for the k where Stirling's series is too coarse
};

// Candidates that are not in the triangle.
struct Aside {
  PerCandidate index;   // in the block
  PerCandidate place;   // between 0 and p4; then the count, -1 if rejected
  PerCandidate v;       // the second uniform
  PerCandidate height;  // of the point; then its logarithm
  PerCandidate log;     // of v, then of (k + 1/2)/lambda
};

struct Passes {
  int32_t (*sort)(int32_t m, const double* u, const Ptpe& ptpe, int32_t* counts, Aside* aside);
  void (*place)(int32_t n, const Ptpe& ptpe, double lambda, Aside* aside);
  void (*log_ratios)(int32_t n, const Ptpe& ptpe, double lambda, const double* count,
                     const double* log, double* r);
  void (*decide)(int32_t n, const Ptpe& ptpe, double lambda, Aside* aside);
  void (*normal)(int32_t n, const double* e, int32_t* r, double lambda, double root);
};

}  // namespace
}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;

// The counts of m candidates as if all were in the triangle; those that are not go aside. Returns
// how many. u and what is written are padded to whole vectors.
int32_t Sort(int32_t m, const double* u, const Ptpe& ptpe, int32_t* counts, Aside* aside) {
  const D d;
  const int32_t lanes = static_cast<int32_t>(hn::Lanes(d));
  const V p1 = hn::Set(d, ptpe.p1), p4 = hn::Set(d, ptpe.p4), centre = hn::Set(d, ptpe.centre);
  V index = hn::Iota(d, 0.0);
  const V step = hn::Set(d, lanes), end = hn::Set(d, m);
  size_t n = 0;
  for (int32_t i = 0; i < m; i += lanes) {
    V place, v;
    hn::LoadInterleaved2(d, u + 2 * i, place, v);
    place = hn::Mul(place, p4);
    const V x = hn::Add(hn::Sub(centre, hn::Mul(p1, v)), place);
    hn::StoreU(SaturatedFloor(d, x), hn::Rebind<int32_t, D>(), counts + i);
    const Selection outside(hn::And(hn::Gt(place, p1), hn::Lt(index, end)));
    outside.Store(index, aside->index + n);
    outside.Store(place, aside->place + n);
    outside.Store(v, aside->v + n);
    n += outside.Count();
    index = hn::Add(index, step);
  }
  return static_cast<int32_t>(n);
}

// Of places and the logarithms of v: the counts, the heights of the points over f(M), and
// (k + 1/2)/lambda - 1.
void Place(int32_t n, const Ptpe& ptpe, double lambda, Aside* aside) {
  const D d;
  const auto set = [d](double x) HWY_ATTR { return hn::Set(d, x); };
  const V one = set(1.0), half = set(0.5), zero = hn::Zero(d);
  const V p1 = set(ptpe.p1), p2 = set(ptpe.p2), p3 = set(ptpe.p3), centre = set(ptpe.centre);
  const V left = set(ptpe.left), right = set(ptpe.right), lift = set(ptpe.lift);
  const V spread = set(ptpe.spread), slope = set(ptpe.slope), mean = set(lambda);
  const V decay_left = set(ptpe.decay_left), decay_right = set(ptpe.decay_right);
  for (int32_t i = 0; i < n; i += static_cast<int32_t>(hn::Lanes(d))) {
    const V place = hn::Load(d, aside->place + i), v = hn::Load(d, aside->v + i);
    const V log = hn::Load(d, aside->log + i);
    // Over the triangle.
    V x = hn::Add(left, hn::Mul(hn::Sub(place, p1), spread));
    const V from_centre = hn::Mul(hn::Abs(hn::Sub(x, centre)), slope);
    V height = hn::Add(hn::Mul(v, lift), hn::Sub(one, from_centre));
    // Tails.
    const auto in_tail = hn::Gt(place, p2), in_right = hn::Gt(place, p3);
    const V decay = hn::IfThenElse(in_right, decay_right, decay_left);
    const V distance = hn::Div(log, decay);
    const V tail = hn::IfThenElse(in_right, hn::Sub(right, distance), hn::Add(left, distance));
    const V begin = hn::IfThenElse(in_right, p3, p2);
    x = hn::IfThenElse(in_tail, tail, x);
    height = hn::IfThenElse(in_tail, hn::Mul(hn::Mul(v, hn::Sub(place, begin)), decay), height);
    // Below 0 there is nothing.
    height = hn::IfThenElse(hn::Lt(x, zero), set(2.0), height);
    const V k = hn::Floor(hn::Max(x, zero));
    hn::Store(k, d, aside->place + i);
    hn::Store(height, d, aside->height + i);
    hn::Store(hn::Div(hn::Sub(hn::Add(k, half), mean), mean), d, aside->log + i);
  }
}

// ln f(k)/f(M) for the counts k, of log = ln((k + 1/2)/lambda): with z = k + 1/2,
// ln f(k) = c(z) - (z log - (z - lambda)) and what does not depend on k.
HWY_INLINE V LogRatio(const Ptpe& ptpe, V lambda, V norm, V k, V log) {
  const D d;
  const V z = hn::Add(k, hn::Set(d, 0.5));
  const V deviance = hn::Sub(hn::Mul(z, log), hn::Sub(z, lambda));
  const V ratio = hn::Sub(hn::Sub(StirlingCorrection(d, z), deviance), norm);
  const auto is_small = hn::Lt(k, hn::Set(d, 16.0));
  if (hn::AllFalse(d, is_small)) [[likely]]
    return ratio;
  const hn::RebindToSigned<D> di;
  const auto index = hn::ConvertTo(di, hn::IfThenElseZero(is_small, k));
  return hn::IfThenElse(is_small, hn::GatherIndex(d, ptpe.small, index), ratio);
}

void LogRatios(int32_t n, const Ptpe& ptpe, double lambda, const double* count, const double* log,
               double* r) {
  const D d;
  for (int32_t i = 0; i < n; i += static_cast<int32_t>(hn::Lanes(d))) {
    const V k = hn::Load(d, count + i), l = hn::Load(d, log + i);
    hn::Store(LogRatio(ptpe, hn::Set(d, lambda), hn::Set(d, ptpe.norm), k, l), d, r + i);
  }
}

// The counts of points below the histogram, saturated; -1 in place of the others.
void Decide(int32_t n, const Ptpe& ptpe, double lambda, Aside* aside) {
  const D d;
  const V mean = hn::Set(d, lambda), norm = hn::Set(d, ptpe.norm);
  for (int32_t i = 0; i < n; i += static_cast<int32_t>(hn::Lanes(d))) {
    const V k = hn::Load(d, aside->place + i);
    const V ratio = LogRatio(ptpe, mean, norm, k, hn::Load(d, aside->log + i));
    const auto below = hn::Le(hn::Load(d, aside->height + i), ratio);
    const V count = hn::IfThenElse(below, Saturated(d, k), hn::Set(d, -1.0));
    hn::Store(count, d, aside->place + i);
  }
}

void NormalCounts(int32_t n, const double* e, int32_t* r, double lambda, double root) {
  const D d;
  const V mean = hn::Set(d, lambda), deviation = hn::Set(d, root);
  for (int32_t i = 0; i < n; i += static_cast<int32_t>(hn::Lanes(d))) {
    const V x = NormalPoisson(d, hn::Load(d, e + i), mean, deviation);
    hn::StoreU(SaturatedFloor(d, x), hn::Rebind<int32_t, D>(), r + i);
  }
}

constexpr Passes kPasses = {Sort, Place, LogRatios, Decide, NormalCounts};
const Passes* PassesOfLevel() { return &kPasses; }

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(PassesOfLevel);

namespace {

constexpr uint32_t kChunkKey = 3;
constexpr double kTabulatedBelow = kNormalFrom;

const Passes& Level() { return *HWY_DYNAMIC_DISPATCH(PassesOfLevel)(); }

struct PoissonSetUp {
  SetUpHead head;
  double lambda;
  union {
    Ptpe ptpe;
    double cdf[84];  // ends with a 1
  };

  bool IsTable() const { return lambda < kTabulatedBelow; }
  int32_t TableSize() const {
    return static_cast<int32_t>(
        (std::min<uint64_t>(head.used, sizeof(*this)) - offsetof(PoissonSetUp, cdf)) /
        sizeof(double));
  }
  bool IsFor(double mean) const {
    if (lambda != mean) return false;
    if (!IsTable()) return ptpe.p1 > 0.25 * ptpe.p4;  // a quarter at least is accepted
    return head.used >= offsetof(PoissonSetUp, cdf[1]) && cdf[TableSize() - 1] == 1;
  }

  void Compute(double mean) {
    lambda = mean;
    size_t count = sizeof(Ptpe) / sizeof(double);
    if (IsTable()) {
      const auto ratio = [mean](double k) { return mean / (k + 1); };
      count = static_cast<size_t>(TabulateDistribution(std::size(cdf), cdf, 0, ratio));
    } else {
      ComputePtpe();
    }
    head.used = offsetof(PoissonSetUp, cdf) + count * sizeof(double);
  }

 private:
  void ComputePtpe() {
    Ptpe& t = ptpe;
    t.mode = __quodFloor(lambda);
    t.centre = t.mode + 0.5;
    t.p1 = __quodFloor(2.195 * __quodSqrt(t.mode) - 2.2) + 0.5;
    t.slope = 1 / t.p1;
    t.lift = 0.133 + 8.56 / (6.83 + t.mode);
    t.spread = 1 / t.lift;
    t.left = t.centre - t.p1;
    t.right = t.centre + t.p1;
    const double a = (lambda - t.left) / lambda, b = (t.right - lambda) / t.right;
    t.decay_left = a * (1 + a / 2);
    t.decay_right = b * (1 + b / 2);
    t.p2 = t.p1 * (1 + 2 * t.lift);
    t.p3 = t.p2 + (0.109 + 8.25 / (10.86 + t.mode)) / t.decay_left;
    t.p4 = t.p3 + t.lift / t.decay_right;

    alignas(64) double k[kPad] = {t.mode, 16}, log[kPad], ratio[kPad], quotients[16];
    for (int i = 0; i < kPad; ++i) log[i] = (k[i] + 0.5 - lambda) / lambda;
    math::dLog1p_50(kPad, log, log);
    Level().log_ratios(kPad, t, lambda, k, log, ratio);  // with a norm of 0
    t.norm = ratio[0];
    for (int i = 0; i < 16; ++i) quotients[i] = (i + 1) / lambda;
    math::dLn_50(16, quotients, quotients);
    double small = ratio[1] - t.norm;
    for (int i = 16; i-- > 0;) t.small[i] = small += quotients[i];
  }
};
static_assert(sizeof(PoissonSetUp) == 696);

int32_t Rejection(StreamState* stream, int32_t n, int32_t* r, const PoissonSetUp& set_up) {
  const Passes& passes = Level();
  Aside aside;
  Counts counts;
  const auto sieve = [&](int32_t m, double* u, int32_t* to) {
    const Ptpe& ptpe = set_up.ptpe;
    FillUp(2 * m, u, 0.5, 2 * kPad);
    const int32_t others = passes.sort(m, u, ptpe, counts.data(), &aside);
    if (others > 0) {
      FillUp(others, aside.place, ptpe.p2);
      FillUp(others, aside.v, 0.5);
      const int32_t whole = Whole(others);
      math::dLn_50(whole, aside.v, aside.log);
      passes.place(whole, ptpe, set_up.lambda, &aside);
      math::dLn_50(whole, aside.height, aside.height);
      math::dLog1p_50(whole, aside.log, aside.log);
      passes.decide(whole, ptpe, set_up.lambda, &aside);
      counts.Insert(others, aside.index, aside.place);
    }
    return counts.Accepted(m, to);
  };
  return Reject<2, kCandidates>(stream, n, r, sieve);
}

int32_t NormalBased(StreamState* stream, int32_t n, int32_t* r, double lambda) {
  const Passes& passes = Level();
  const double root = __quodSqrt(lambda);
  const auto transform = [&](int32_t m, double* e, int32_t* to) {
    alignas(64) int32_t counts[kCandidates];
    FillUp(m, e, 0.5);
    const int32_t whole = Whole(m);
    math::dErfInv_26(whole, e, e);
    passes.normal(whole, e, counts, lambda, root);
    std::memcpy(static_cast<void*>(to), counts, static_cast<size_t>(m) * sizeof(int32_t));
  };
  return GenerateInBlocks<kCandidates>(stream, n, r, -1.0, 1.0, transform);
}

}  // namespace

extern "C" QUO_API int32_t _quoiRngPoisson(uint32_t method, StreamState* stream, int32_t n,
                                           int32_t* r, double lambda) {
  if (method > QUO_METHOD_POISSON_NORMAL) return QUO_BAD_METHOD;
  if (n < 1) return QUO_OK;
  const VectorMath borrowed(ReplaceForPoisson);
  const double mean = SoundMean(AfterControl(lambda));
  if (method == QUO_METHOD_POISSON_NORMAL && mean >= kTabulatedBelow) {
    return NormalBased(stream, n, r, mean);
  }
  PoissonSetUp own;
  const PoissonSetUp& set_up = SetUp(stream, kChunkKey, own, mean);
  if (set_up.IsTable()) return DrawByTable(stream, n, r, set_up.cdf, set_up.TableSize());
  return Rejection(stream, n, r, set_up);
}

}  // namespace quo
#endif
