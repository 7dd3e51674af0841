// The candidates, their squeeze and the exact test, in vectors.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_kernel/discrete/_kernel/transformed_rejection.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "quo_kernel/discrete/_kernel/transformed_rejection.h"

#include <bit>
#include <cstdint>

#include "hwy/highway.h"
#include "quo_kernel/_kernel/rejection.h"
#include "quo_kernel/_kernel/unaligned.h"

#ifndef QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_CC_
#define QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_CC_
namespace quo {

constexpr int32_t kBlock = 512;  // candidates, a whole number of vectors

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

  // v alpha/(a r^2 + b) <= f(k)/f(mode), by the full sums.
  bool Accepts(double k, double r, double v) const {
    const double w = v * hat.alpha / (hat.a * r * r + hat.b);
    return w == 0 || __quodLn(w) <= law.Log(k) - peak.log;
  }
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
template <int kTerms>
HWY_INLINE V AtanhSeries(V z) {
  const D d;
  V w = hn::Mul(hn::Set(d, kAtanh[kTerms - 1]), z);
  for (int i = kTerms - 2; i >= 0; --i) w = hn::Mul(hn::Add(w, hn::Set(d, kAtanh[i])), z);
  return w;
}

// ln y, y positive and normal: y = 2^e m, m next to 1, by atanh((m - 1)/(m + 1)). Within 5e-13.
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
  const V log = hn::Add(s, hn::Mul(s, AtanhSeries<6>(hn::Mul(s, s))));
  return hn::Add(hn::Mul(e, hn::Set(d, 0x1.62e42fefa39efp-1)), hn::Add(log, log));
}

// The product of all x but x[i].
template <int kCells>
HWY_INLINE V Others(const V (&x)[kCells], int i) {
  const V partner = x[i ^ 1];
  if constexpr (kCells == 2) return partner;
  const int pair = i < 2 ? 2 : 0;
  return hn::Mul(partner, hn::Mul(x[pair % kCells], x[(pair + 1) % kCells]));
}

// v alpha/(a r^2 + b) <= f(k)/f(mode), as the logarithm of the squares:
//   ln((v alpha/(a r^2 + b))^2 prod x_i/prod x_i(mode)) <= 2 height - 2 sum (D(x_i) + delta(x_i))
// All denominators share one division. With seven terms of the series and three of delta,
// f(k)/f(mode) has a relative error below 1e-9 down to 1e-5, and of 3e-9 further out. `rare`: where
// the series do not reach at all.
template <int kCells>
HWY_INLINE M Accepts(const Target<kCells>& target, V k, V r, V v, M* rare) {
  const D d;
  const V distance = hn::Sub(k, hn::Set(d, target.law.mean[0]));
  const V stretch =
      hn::Add(hn::Mul(hn::Mul(hn::Set(d, target.hat.a), r), r), hn::Set(d, target.hat.b));
  V x[kCells], s[kCells];  // s: x + mean
  for (int i = 0; i < kCells; ++i) {
    const V start = hn::Set(d, target.law.start[i]);
    x[i] = kSteps[i] > 0 ? hn::Add(start, k) : hn::Sub(start, k);
    s[i] = hn::Add(x[i], hn::Set(d, target.law.mean[i]));
  }
  const V all_x = hn::Mul(Others(x, 0), x[0]), all_s = hn::Mul(Others(s, 0), s[0]);
  const V both = hn::Mul(all_x, all_s);
  const V inverse = hn::Div(hn::Set(d, 1.0), hn::Mul(both, stretch));
  const V by_both = hn::Mul(inverse, stretch);
  const V by_x = hn::Mul(by_both, all_s), by_s = hn::Mul(by_both, all_x);

  V sum = hn::Zero(d), least = hn::Set(d, kStirlingFrom), most = hn::Zero(d);
  for (int i = 0; i < kCells; ++i) {
    const V off = kSteps[i] > 0 ? distance : hn::Neg(distance);
    const V t = hn::Mul(off, hn::Mul(by_s, Others(s, i)));
    const V series = AtanhSeries<7>(hn::Mul(t, t));
    sum = hn::Add(sum, hn::Mul(t, hn::Add(off, hn::Mul(hn::Add(x[i], x[i]), series))));
    const V q = hn::Mul(by_x, Others(x, i)), y = hn::Mul(q, q);
    V delta = hn::Sub(hn::Set(d, kStirling[1]), hn::Mul(hn::Set(d, kStirling[2]), y));
    delta = hn::Sub(hn::Set(d, kStirling[0]), hn::Mul(delta, y));
    sum = hn::Add(sum, hn::Mul(delta, q));
    least = hn::Min(least, x[i]);
    most = hn::Max(most, hn::Abs(t));
  }
  *rare =
      hn::Or(hn::Lt(least, hn::Set(d, kStirlingFrom)), hn::Gt(most, hn::Set(d, kMostForSeries)));
  const V w = hn::Mul(hn::Mul(v, hn::Set(d, target.hat.alpha)), hn::Mul(inverse, both));
  const V cells = hn::Mul(all_x, hn::Set(d, target.per_mode));
  const V squares = hn::Max(hn::Mul(hn::Mul(w, w), cells), hn::Set(d, 0x1p-1000));
  const V room = hn::Sub(hn::Set(d, target.peak.height), sum);
  return hn::Le(Ln(squares), hn::Add(room, room));
}

constexpr int32_t kNone = -1;

// The counts of m candidates, kNone for those rejected, and the 1/edge of those that are doubtful,
// 0 for the others. Then the doubtful ones. The lists are made one by one, without a branch: to
// compress vectors takes no less.
struct Candidates {
  HWY_ALIGN int32_t k[kBlock];
  HWY_ALIGN double r[kBlock];
  int32_t doubtful = 0;
  int32_t place[kBlock];
  HWY_ALIGN double doubtful_k[kBlock + kLanes], doubtful_r[kBlock + kLanes],
      doubtful_v[kBlock + kLanes];
  HWY_ALIGN int32_t verdict[kBlock + kLanes];
};

HWY_INLINE void Propose(const TableMountain& hat, double most, int32_t m, const double* u,
                        Candidates* all) {
  const D d;
  const hn::Rebind<int32_t, D> di;
  const V half = hn::Set(d, 0.5), b = hn::Set(d, hat.b), c = hn::Set(d, hat.c);
  const V twice_a = hn::Set(d, hat.a + hat.a), v_sure = hn::Set(d, hat.v_sure);
  const V inside = hn::Set(d, TableMountain::kInside), rim = hn::Set(d, TableMountain::kRim);
  const V none = hn::Set(d, double{kNone}), one = hn::Set(d, 1.0), highest = hn::Set(d, most);
  for (int32_t i = 0; i < m; i += kLanes) {
    V first, v;
    hn::LoadInterleaved2(d, u + 2 * i, first, v);
    const V x = hn::Sub(first, half), edge = hn::Sub(half, hn::Abs(x));
    const V r = hn::Div(one, edge);
    const V k = hn::Floor(hn::Add(hn::Mul(hn::Add(hn::Mul(twice_a, r), b), x), c));
    const M sure = hn::And(hn::Ge(edge, inside), hn::Le(v, v_sure));
    const M lost = hn::And(hn::Lt(edge, rim), hn::Gt(v, edge));
    const M within = hn::AndNot(lost, hn::And(hn::Ge(k, hn::Zero(d)), hn::Le(k, highest)));
    hn::Store(hn::DemoteTo(di, hn::IfThenElse(within, k, none)), di, all->k + i);
    hn::Store(hn::IfThenElseZero(hn::AndNot(sure, within), r), d, all->r + i);
  }
}

HWY_INLINE void ListDoubtful(int32_t m, const double* u, Candidates* all) {
  int32_t n = 0;
  for (int32_t i = 0; i < m; ++i) {
    all->place[n] = i;
    n += std::bit_cast<uint64_t>(all->r[i]) != 0;
  }
  all->doubtful = n;
  for (int32_t j = 0; j < n; ++j) {
    const int32_t i = all->place[j];
    all->doubtful_k[j] = all->k[i];
    all->doubtful_r[j] = all->r[i];
    all->doubtful_v[j] = u[2 * i + 1];
  }
}

template <int kCells>
HWY_INLINE void Test(const Target<kCells>& target, Candidates* all) {
  const D d;
  const hn::Rebind<int32_t, D> di;
  const int32_t n = all->doubtful;
  // The rest of the last vector.
  hn::StoreU(hn::Set(d, target.law.mode), d, all->doubtful_k + n);
  hn::StoreU(hn::Set(d, 2.0), d, all->doubtful_r + n);
  hn::StoreU(hn::Zero(d), d, all->doubtful_v + n);
  for (int32_t i = 0; i < n; i += kLanes) {
    const V k = hn::Load(d, all->doubtful_k + i), r = hn::Load(d, all->doubtful_r + i);
    M rare;
    const M accepted = Accepts(target, k, r, hn::Load(d, all->doubtful_v + i), &rare);
    const V verdict = hn::IfThenElse(accepted, k, hn::Set(d, double{kNone}));
    hn::Store(hn::DemoteTo(di, verdict), di, all->verdict + i);
    if (HWY_LIKELY(hn::AllFalse(d, rare))) continue;
    HWY_ALIGN double is_rare[kLanes];
    hn::Store(hn::IfThenElseZero(rare, hn::Set(d, 1.0)), d, is_rare);
    for (int32_t j = 0; j < kLanes; ++j) {
      if (is_rare[j] == 0) continue;
      const double at = all->doubtful_k[i + j];
      const bool passes = target.Accepts(at, all->doubtful_r[i + j], all->doubtful_v[i + j]);
      all->verdict[i + j] = passes ? static_cast<int32_t>(at) : kNone;
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
  Propose(target.hat, target.law.most, m, u, &all);
  ListDoubtful(m, u, &all);
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
