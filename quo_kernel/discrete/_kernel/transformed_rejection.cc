// The candidates, their squeeze and the exact test, in vectors.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/_kernel/transformed_rejection.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "quo_kernel/discrete/_kernel/transformed_rejection.h"

#include <algorithm>
#include <cmath>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/_kernel/unaligned.h"

#ifndef QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_CC_
#define QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_CC_
namespace quo {

constexpr int32_t kBlock = 256;  // candidates, a whole number of vectors

template <int kCells>
struct Target {
  const Cells<kCells>& law;
  const Peak& peak;
  Reflection reflected;
  TableMountain hat;
  double per_mode = 1;  // 1 by the cells of the mode

  Target(const Cells<kCells>& l, const Peak& p, Reflection to)
      : law(l),
        peak(p),
        reflected(to),
        hat(l.mean[0], l.variance, kCells == 2 ? l.mean[0] / l.margins[0] : 0) {
    for (int i = 0; i < kCells; ++i) per_mode /= law.X(i, law.mode);
  }

  // w <= f(k)/f(mode), by the full sums.
  bool Accepts(double k, double w) const { return w == 0 || __quodLn(w) <= law.Log(k) - peak.log; }
};

}  // namespace quo
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;
constexpr int32_t kLanes = hn::MaxLanes(D());

// w of atanh(v) = v (1 + w), z = v^2
HWY_INLINE V AtanhSeries(V z) {
  const D d;
  V w = hn::Mul(hn::Set(d, kAtanh[9]), z);
  for (int i = 8; i >= 0; --i) w = hn::Mul(hn::Add(w, hn::Set(d, kAtanh[i])), z);
  return w;
}

// ln y, y positive and normal: y = 2^e m, m next to 1, by atanh((m - 1)/(m + 1)). Within 3e-16 and
// 1 ulp.
HWY_INLINE V Ln(V y) {
  const D d;
  const hn::RebindToUnsigned<D> du;
  constexpr uint64_t kHalfRoot = 0x3FE6A09E667F3BCD, kTwo52 = 0x4330000000000000;
  const auto shifted = hn::Add(hn::BitCast(du, y), hn::Set(du, (uint64_t{1023} << 52) - kHalfRoot));
  const V e = hn::Sub(hn::BitCast(d, hn::Or(hn::ShiftRight<52>(shifted), hn::Set(du, kTwo52))),
                      hn::Set(d, 0x1p52 + 1023));
  const V m = hn::BitCast(
      d, hn::Add(hn::And(shifted, hn::Set(du, (uint64_t{1} << 52) - 1)), hn::Set(du, kHalfRoot)));
  const V one = hn::Set(d, 1.0), s = hn::Div(hn::Sub(m, one), hn::Add(m, one));
  const V log = hn::Add(s, hn::Mul(s, AtanhSeries(hn::Mul(s, s))));
  return hn::Add(hn::Mul(e, hn::Set(d, 0x1.62e42fefa39efp-1)), hn::Add(log, log));
}

// w <= f(k)/f(mode). `rare`: where the series do not reach, far out in a tail.
template <int kCells>
HWY_INLINE M Accepts(const Target<kCells>& target, V k, V w, M* rare) {
  const D d;
  const V one = hn::Set(d, 1.0), distance = hn::Sub(k, hn::Set(d, target.law.mean[0]));
  V sum = hn::Zero(d), cells = hn::Set(d, target.per_mode), least = hn::Set(d, kStirlingFrom),
    most = hn::Zero(d);
  for (int i = 0; i < kCells; ++i) {
    const V start = hn::Set(d, target.law.start[i]), mean = hn::Set(d, target.law.mean[i]);
    const V x = kSteps[i] > 0 ? hn::Add(start, k) : hn::Sub(start, k);
    const V off = kSteps[i] > 0 ? distance : hn::Neg(distance);
    const V v = hn::Div(off, hn::Add(x, mean));
    const V series = AtanhSeries(hn::Mul(v, v));
    sum = hn::Add(sum, hn::Mul(v, hn::Add(off, hn::Mul(hn::Add(x, x), series))));
    const V r = hn::Div(one, x), y = hn::Mul(r, r);
    V delta = hn::Sub(hn::Set(d, kStirling[2]), hn::Mul(hn::Set(d, kStirling[3]), y));
    delta = hn::Sub(hn::Set(d, kStirling[1]), hn::Mul(delta, y));
    delta = hn::Sub(hn::Set(d, kStirling[0]), hn::Mul(delta, y));
    sum = hn::Add(sum, hn::Mul(delta, r));
    cells = hn::Mul(cells, x);
    least = hn::Min(least, x);
    most = hn::Max(most, hn::Abs(v));
  }
  *rare =
      hn::Or(hn::Lt(least, hn::Set(d, kStirlingFrom)), hn::Gt(most, hn::Set(d, kMostForSeries)));
  const V room = hn::Sub(hn::Set(d, target.peak.height), sum);
  const V weighed = hn::Max(hn::Mul(hn::Mul(w, w), cells), hn::Set(d, 0x1p-1000));
  return hn::Le(Ln(weighed), hn::Add(room, room));
}

constexpr int32_t kNone = -1;

// The counts of m candidates, kNone for those rejected, and what they have to pass yet: w, 0 where
// nothing is left to test. Then the doubtful ones among them. The lists are made one by one,
// without a branch: that takes less than to compress vectors.
struct Candidates {
  HWY_ALIGN double w[kBlock];
  HWY_ALIGN int32_t k[kBlock];
  int32_t doubtful = 0;
  int32_t place[kBlock];
  HWY_ALIGN double doubtful_k[kBlock + kLanes], doubtful_w[kBlock + kLanes];
  HWY_ALIGN int32_t verdict[kBlock + kLanes];
};

template <int kCells>
HWY_INLINE void Propose(const Target<kCells>& target, int32_t m, const double* u, Candidates* all) {
  const D d;
  const hn::Rebind<int32_t, D> di;
  const TableMountain& hat = target.hat;
  const V half = hn::Set(d, 0.5), a = hn::Set(d, hat.a), b = hn::Set(d, hat.b);
  const V twice_a = hn::Add(a, a), c = hn::Set(d, hat.c), most = hn::Set(d, target.law.most);
  const V alpha = hn::Set(d, hat.alpha), v_sure = hn::Set(d, hat.v_sure);
  const V inside = hn::Set(d, TableMountain::kInside), rim = hn::Set(d, TableMountain::kRim);
  const V none = hn::Set(d, double{kNone});
  for (int32_t i = 0; i < m; i += kLanes) {
    V first, v;
    hn::LoadInterleaved2(d, u + 2 * i, first, v);
    const V x = hn::Sub(first, half), edge = hn::Sub(half, hn::Abs(x));
    const V r = hn::Div(hn::Set(d, 1.0), edge);
    const V k = hn::Floor(hn::Add(hn::Mul(hn::Add(hn::Mul(twice_a, r), b), x), c));
    const M sure = hn::And(hn::Ge(edge, inside), hn::Le(v, v_sure));
    const M lost = hn::And(hn::Lt(edge, rim), hn::Gt(v, edge));
    const M within = hn::AndNot(lost, hn::And(hn::Ge(k, hn::Zero(d)), hn::Le(k, most)));
    hn::Store(hn::DemoteTo(di, hn::IfThenElse(within, k, none)), di, all->k + i);
    const V w = hn::Div(hn::Mul(v, alpha), hn::Add(hn::Mul(hn::Mul(a, r), r), b));
    hn::Store(hn::IfThenElseZero(hn::AndNot(sure, within), w), d, all->w + i);
  }
}

HWY_INLINE void ListDoubtful(int32_t m, Candidates* all) {
  int32_t n = 0;
  for (int32_t i = 0; i < m; ++i) {
    all->place[n] = i;
    n += Get(reinterpret_cast<const int64_t*>(all->w + i)) != 0;
  }
  all->doubtful = n;
  for (int32_t j = 0; j < n; ++j) {
    all->doubtful_k[j] = all->k[all->place[j]];
    all->doubtful_w[j] = all->w[all->place[j]];
  }
}

template <int kCells>
HWY_INLINE void Test(const Target<kCells>& target, Candidates* all) {
  const D d;
  const hn::Rebind<int32_t, D> di;
  const int32_t n = all->doubtful;
  hn::StoreU(hn::Set(d, target.law.mode), d, all->doubtful_k + n);  // the rest of the last vector
  hn::StoreU(hn::Zero(d), d, all->doubtful_w + n);
  for (int32_t i = 0; i < n; i += kLanes) {
    const V k = hn::Load(d, all->doubtful_k + i), w = hn::Load(d, all->doubtful_w + i);
    M rare;
    const V verdict = hn::IfThenElse(Accepts(target, k, w, &rare), k, hn::Set(d, double{kNone}));
    hn::Store(hn::DemoteTo(di, verdict), di, all->verdict + i);
    if (HWY_LIKELY(hn::AllFalse(d, rare))) continue;
    HWY_ALIGN double is_rare[kLanes];
    hn::Store(hn::IfThenElseZero(rare, hn::Set(d, 1.0)), d, is_rare);
    for (int32_t j = 0; j < kLanes; ++j) {
      if (is_rare[j] == 0) continue;
      const double at = all->doubtful_k[i + j];
      all->verdict[i + j] =
          target.Accepts(at, all->doubtful_w[i + j]) ? static_cast<int32_t>(at) : kNone;
    }
  }
  for (int32_t j = 0; j < n; ++j) all->k[all->place[j]] = all->verdict[j];
}

HWY_INLINE int32_t Pack(int32_t m, int32_t* k, Reflection reflected, int32_t* r) {
  int32_t count = 0;
  for (int32_t i = 0; i < m; ++i) {
    const int32_t x = k[i];
    k[count] = x;
    count += x != kNone;
  }
  for (int32_t i = 0; i < count; ++i) Put(r + i, reflected(k[i]));
  return count;
}

template <int kCells>
HWY_INLINE int32_t Sieve(const Target<kCells>& target, int32_t m, double* u, int32_t* r) {
  Candidates all;
  // The last vector is filled up with candidates that are rejected.
  for (int32_t i = m; i % kLanes != 0; ++i) u[2 * i] = u[2 * i + 1] = 0;
  Propose(target, m, u, &all);
  ListDoubtful(m, &all);
  Test(target, &all);
  return Pack(m, all.k, target.reflected, r);
}

int32_t Sieve2(const Target<2>& target, int32_t m, double* u, int32_t* r) {
  return Sieve(target, m, u, r);
}
int32_t Sieve4(const Target<4>& target, int32_t m, double* u, int32_t* r) {
  return Sieve(target, m, u, r);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {

HWY_EXPORT(Sieve2);
HWY_EXPORT(Sieve4);

template <int kCells>
Peak PeakOf(const Cells<kCells>& law) {
  Peak peak = {law.Log(law.mode), 0};
  for (int i = 0; i < kCells; ++i) {
    const double x = law.X(i, law.mode);
    peak.height +=
        StirlingError(x) + Deviance(x, law.mean[i], kSteps[i] * (law.mode - law.mean[0]));
  }
  return peak;
}
template Peak PeakOf(const Cells<2>&);
template Peak PeakOf(const Cells<4>&);

int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<2>& law,
                        const Peak& peak, Reflection reflected) {
  const Target<2> target(law, peak, reflected);
  return Reject<2, kBlock>(stream, n, r, [&](int32_t m, double* u, int32_t* to) {
    return HWY_DYNAMIC_DISPATCH(Sieve2)(target, m, u, to);
  });
}

int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<4>& law,
                        const Peak& peak, Reflection reflected) {
  const Target<4> target(law, peak, reflected);
  return Reject<2, kBlock>(stream, n, r, [&](int32_t m, double* u, int32_t* to) {
    return HWY_DYNAMIC_DISPATCH(Sieve4)(target, m, u, to);
  });
}

}  // namespace quo
#endif
