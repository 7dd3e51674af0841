// The passes over candidates of the negative binomial generator. Arrays are aligned and padded to
// whole vectors.
#if defined(QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_INL_H_
#undef QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_INL_H_
#else
#define QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_INL_H_
#endif

#include "hwy/highway.h"
#include "quo_kernel/_kernel/counts-inl.h"
#include "quo_kernel/_kernel/stirling-inl.h"
#include "quo_kernel/discrete/negbinomial/hats.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;

HWY_INLINE V Set(double x) { return hn::Set(D(), x); }

constexpr int32_t kLanes = static_cast<int32_t>(hn::MaxLanes(D()));

// ---- ln f. ----

// The arguments of the two log1p.
template <bool kConcave>
HWY_INLINE void LogArguments(const NbLogRatio& f, V k, V& arg1, V& arg2) {
  if constexpr (kConcave) {
    const V j = hn::Sub(k, Set(f.origin));
    arg1 = hn::Mul(j, Set(f.over_w0));
    arg2 = hn::Mul(j, Set(f.over_z0));
  } else {
    const V z = hn::Add(k, Set(0.5));
    arg1 = hn::Div(Set(f.a - 1), z);
    arg2 = hn::Sub(k, Set(0.5));
  }
}

template <bool kConcave>
HWY_INLINE V LogRatio(const NbLogRatio& f, V k, V log1, V log2) {
  const D d;
  const V z = hn::Add(k, Set(0.5)), w = hn::Add(k, Set(f.a - 0.5));
  V sum;
  if constexpr (kConcave) {
    sum = hn::Sub(hn::Mul(w, log1), hn::Mul(z, log2));
    sum = hn::Add(sum, hn::Mul(hn::Sub(k, Set(f.origin)), Set(f.drift)));
  } else {
    sum = hn::Add(hn::Mul(w, log1), hn::Mul(Set(f.a - 1), log2));
    sum = hn::Add(sum, hn::Mul(k, Set(f.drift)));
  }
  const V corrections = hn::Sub(StirlingCorrection(d, z), StirlingCorrection(d, w));
  const V ratio = hn::Add(sum, hn::Sub(corrections, Set(f.norm)));
  const auto is_small = hn::Lt(k, Set(kNbFewest));
  if (hn::AllFalse(d, is_small)) [[likely]]
    return ratio;
  const auto index =
      hn::ConvertTo(hn::RebindToSigned<D>(), hn::Max(hn::IfThenElseZero(is_small, k), hn::Zero(d)));
  return hn::IfThenElse(is_small, hn::GatherIndex(d, f.small, index), ratio);
}

template <bool kConcave>
void LogArgumentsOf(int32_t n, const NbLogRatio& f, const double* k, double* arg1, double* arg2) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    V a1, a2;
    LogArguments<kConcave>(f, hn::Load(d, k + i), a1, a2);
    hn::Store(a1, d, arg1 + i);
    hn::Store(a2, d, arg2 + i);
  }
}

template <bool kConcave>
void LogRatios(int32_t n, const NbLogRatio& f, const double* k, const double* log1,
               const double* log2, double* r) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V l1 = hn::Load(d, log1 + i), l2 = hn::Load(d, log2 + i);
    hn::Store(LogRatio<kConcave>(f, hn::Load(d, k + i), l1, l2), d, r + i);
  }
}

// Of ln v, ln hat and the logarithms: the counts of accepted candidates, saturated, -1 in place of
// the others.
template <bool kConcave>
void DecideNb(int32_t n, const NbLogRatio& f, NbAside* aside) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V k = hn::Load(d, aside->place + i);
    const V ratio =
        LogRatio<kConcave>(f, k, hn::Load(d, aside->log1 + i), hn::Load(d, aside->log2 + i));
    const V height = hn::Add(hn::Load(d, aside->v + i), hn::Load(d, aside->t + i));
    const auto accepted = hn::And(hn::Le(height, ratio), hn::Ge(k, hn::Zero(d)));
    hn::Store(hn::IfThenElse(accepted, Saturated(d, k), Set(-1)), d, aside->place + i);
  }
}

// ---- Candidates. ----

// of(place, v, &count) is the mask of what is accepted at sight; the rest goes aside. Returns how
// many do.
template <class Of>
HWY_INLINE int32_t SortBy(int32_t m, const double* u, double total, int32_t* counts, NbAside* aside,
                          Of of) {
  const D d;
  V index = hn::Iota(d, 0.0);
  size_t n = 0;
  for (int32_t i = 0; i < m; i += kLanes) {
    V place, v, count;
    hn::LoadInterleaved2(d, u + 2 * i, place, v);
    place = hn::Mul(place, Set(total));
    const auto accepted = of(place, v, count);
    hn::StoreU(SaturatedFloor(d, count), hn::Rebind<int32_t, D>(), counts + i);
    const Selection others(hn::AndNot(accepted, hn::Lt(index, Set(m))));
    others.Store(index, aside->index + n);
    others.Store(place, aside->place + n);
    others.Store(v, aside->v + n);
    n += others.Count();
    index = hn::Add(index, Set(kLanes));
  }
  return static_cast<int32_t>(n);
}

int32_t SortConcave(int32_t m, const double* u, const NbConcave& hat, int32_t* counts,
                    NbAside* aside) {
  const D d;
  return SortBy(m, u, hat.total, counts, aside, [&](V place, V v, V& count) HWY_ATTR {
    count = hn::Add(Set(hat.first), hn::Floor(place));
    const V right = hn::Sub(count, Set(hat.mode));
    const V fall =
        hn::IfThenElse(hn::Lt(right, hn::Zero(d)), Set(-hat.fall_left), Set(hat.fall_right));
    const auto below = hn::Le(v, hn::Sub(Set(1.0), hn::Mul(right, fall)));
    return hn::And(below, hn::Lt(place, Set(hat.width)));
  });
}

int32_t SortConvex(int32_t m, const double* u, const NbConvex& hat, int32_t* counts,
                   NbAside* aside) {
  const D d;
  return SortBy(m, u, hat.total, counts, aside, [&](V place, V, V& count) HWY_ATTR {
    count = hn::Zero(d);
    for (int k = 0; k < kNbFewest - 1; ++k) {
      const auto above = hn::Ge(place, Set(hat.head[k]));
      count = hn::Add(count, hn::IfThenElseZero(above, Set(1.0)));
    }
    return hn::Lt(place, Set(hat.head[kNbFewest - 1]));
  });
}

// t, uniform on [0, 1), of places in the tails; 1 in the centre.
void SplitConcave(int32_t n, const NbConcave& hat, NbAside* aside) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V place = hn::Load(d, aside->place + i);
    const V left = hn::Mul(hn::Sub(place, Set(hat.width)), Set(hat.over_left));
    const V right = hn::Mul(hn::Sub(place, Set(hat.end_left)), Set(hat.over_right));
    const V t = hn::IfThenElse(hn::Ge(place, Set(hat.end_left)), right, left);
    hn::Store(hn::IfThenElse(hn::Lt(place, Set(hat.width)), Set(1.0), t), d, aside->t + i);
  }
}

// Of places and ln t: counts, ln hat, the arguments of the logarithms.
void PlaceConcave(int32_t n, const NbConcave& hat, NbAside* aside) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V place = hn::Load(d, aside->place + i), log = hn::Load(d, aside->t + i);
    const auto in_tail = hn::Ge(place, Set(hat.width));
    const auto in_right = hn::Ge(place, Set(hat.end_left));
    const V decay = hn::IfThenElse(in_right, Set(hat.decay_right), Set(hat.decay_left));
    const V steps = hn::Floor(hn::Div(hn::Neg(log), decay));
    const V tail = hn::IfThenElse(in_right, hn::Add(Set(hat.begin_right), steps),
                                  hn::Sub(Set(hat.begin_left), steps));
    const V top = hn::IfThenElse(in_right, Set(hat.top_right), Set(hat.top_left));
    const V k = hn::IfThenElse(in_tail, tail, hn::Add(Set(hat.first), hn::Floor(place)));
    V arg1, arg2;
    LogArguments<true>(hat.f, hn::Max(k, hn::Zero(d)), arg1, arg2);
    hn::Store(k, d, aside->place + i);
    hn::Store(hn::IfThenElseZero(in_tail, hn::Sub(top, hn::Mul(steps, decay))), d, aside->t + i);
    hn::Store(arg1, d, aside->log1 + i);
    hn::Store(arg2, d, aside->log2 + i);
  }
}

// The argument of the log1p that gives the count: t growth up to the bend, t - 1 beyond.
void SplitConvex(int32_t n, const NbConvex& hat, NbAside* aside) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V place = hn::Load(d, aside->place + i);
    const V power = hn::Mul(hn::Sub(place, Set(hat.head[kNbFewest - 1])), Set(hat.over_power));
    const V tail = hn::Mul(hn::Sub(place, Set(hat.end_power)), Set(hat.over_tail));
    const auto in_tail = hn::Ge(place, Set(hat.end_power));
    const V argument =
        hn::IfThenElse(in_tail, hn::Sub(tail, Set(1.0)), hn::Mul(power, Set(hat.growth)));
    hn::Store(argument, d, aside->t + i);
  }
}

// Of its value, ln of x + a/2 up to the bend, where exp is to come.
void LogPlaceConvex(int32_t n, const NbConvex& hat, NbAside* aside) {
  const D d;
  for (int32_t i = 0; i < n; i += kLanes) {
    const V log = hn::Load(d, aside->t + i);
    const auto in_tail = hn::Ge(hn::Load(d, aside->place + i), Set(hat.end_power));
    const V power = hn::Add(hn::Mul(log, Set(hat.over_a)), Set(hat.log_begin));
    hn::Store(hn::IfThenZeroElse(in_tail, power), d, aside->log1 + i);
  }
}

// Of that and x + a/2: counts, ln hat, the arguments of the logarithms.
void PlaceConvex(int32_t n, const NbConvex& hat, NbAside* aside) {
  const D d;
  const V theta = Set(hat.theta), slope = Set(hat.f.a - 1);
  for (int32_t i = 0; i < n; i += kLanes) {
    const auto in_tail = hn::Ge(hn::Load(d, aside->place + i), Set(hat.end_power));
    const V log = hn::Load(d, aside->t + i);
    const V log_power = hn::Add(hn::Mul(log, Set(hat.over_a)), Set(hat.log_begin));
    const V beyond = hn::Sub(Set(hat.bend), hn::Div(log, theta));
    const V x =
        hn::IfThenElse(in_tail, beyond, hn::Sub(hn::Load(d, aside->log1 + i), Set(0.5 * hat.f.a)));
    const V k = hn::Add(hn::Floor(hn::Max(x, Set(kNbFewest - 1))), Set(1.0));
    const V hat_power = hn::Add(hn::Mul(slope, log_power), Set(hat.log_top));
    const V hat_beyond = hn::Sub(Set(hat.log_bend), hn::Mul(theta, x));
    V arg1, arg2;
    LogArguments<false>(hat.f, k, arg1, arg2);
    hn::Store(k, d, aside->place + i);
    hn::Store(hn::IfThenElse(in_tail, hat_beyond, hat_power), d, aside->t + i);
    hn::Store(arg1, d, aside->log1 + i);
    hn::Store(arg2, d, aside->log2 + i);
  }
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
