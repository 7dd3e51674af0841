// The kernels of the inverse error functions: what Function (of erfinv-inl.h) is the inverse of,
// and the tier. HA is correctly rounded in single precision and errs by at most 0.55 ulp in double,
// LA in double by 1.5 ulp.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/erfinv-inl.h"
#include "pex_core/_heap/real/slog-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFINV_KERNELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFINV_KERNELS_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFINV_KERNELS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFINV_KERNELS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In y[k].hi, with a rest in y[k].lo, of kShort within 2^-30 without one. kWhole: also where q is
// too small for the tables.
template <class Function, ErfInvTier kTier, bool kWhole, class D, class V, size_t K>
HWY_INLINE void ErfInvNear(D d, const V (&x)[K], Pair<V> (&y)[K]) {
  if constexpr (kTier != ErfInvTier::kShort) {
    ErfInvPoint<V> u[K];
    for (size_t k = 0; k < K; ++k) {
      u[k] = Function::Point(d, x[k]);
      if constexpr (kWhole) u[k].q = hn::Max(u[k].q, hn::Set(d, kErfInvLeast * Function::kUnit));
    }
    ErfInvFine<Function, kTier>(d, u, y);
  } else {
    ErfInvArgument<V> u[K];
    for (size_t k = 0; k < K; ++k) {
      u[k] = Function::Split(d, x[k]);
      if constexpr (kWhole) u[k].q = hn::Max(u[k].q, hn::Set(d, kErfInvLeast));
    }
    V r[K];
    ErfInvCubic<Function, kErfInvOctaves, kErfInvShortBits>(d, kErfInvShort, u, r);
    for (size_t k = 0; k < K; ++k) y[k].hi = r[k];
  }
}

// Likewise, of the whole domain.
template <class Function, ErfInvTier kTier, class D, class V, size_t K>
HWY_INLINE void ErfInvAll(D d, const V (&x)[K], Pair<V> (&y)[K]) {
  ErfInvArgument<V> u[K];
  for (size_t k = 0; k < K; ++k) u[k] = Function::Split(d, x[k]);
  ErfInvNear<Function, kTier, true>(d, x, y);
  if (AnyTail(d, u)) [[unlikely]] {
    for (size_t k = 0; k < K; ++k) {
      if constexpr (kTier == ErfInvTier::kShort) y[k].lo = hn::Zero(d);
      y[k] = ErfInvTail<Function>(d, u[k], y[k]);
    }
  }
}

template <class Function, ErfInvTier kTier, bool kWhole, int (*kRare)(const double*, double*)>
struct dErfInvPart : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  static constexpr int kUnroll = kWhole ? 2 : HWY_TARGET == HWY_SSE4 ? 4 : 8;
  static constexpr int kRestUnroll = kWhole ? 2 : 4;
  static constexpr double kHarmless = 0.5;
  using Rarity = std::conditional_t<kWhole, typename Function::template Rarity<double>,
                                    typename Function::NearRarity>;
  static HWY_INLINE int Rare(double x, double* r) { return kRare(&x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    Pair<V> y[K];
    if constexpr (kWhole) {
      ErfInvAll<Function, kTier>(d, x, y);
    } else {
      ErfInvNear<Function, kTier, false>(d, x, y);
    }
    for (size_t k = 0; k < K; ++k) {
      out[k] = kTier == ErfInvTier::kShort ? y[k].hi : hn::Add(y[k].hi, y[k].lo);
    }
  }
};

template <class Function, ErfInvTier kTier, int (*kRare)(const double*, double*)>
struct dErfInvKernel : dErfInvPart<Function, kTier, false, kRare> {
  using Wide = dErfInvPart<Function, kTier, true, kRare>;
};

template <class Function, int (*kRare)(const float*, float*)>
struct sErfInvInFull : Kernel<float, double> {
  static constexpr int kUnroll = 4;
  static constexpr float kHarmless = 0.5f;
  using Rarity = Function::template Rarity<float>;
  static HWY_INLINE int Rare(float x, float* r) { return kRare(&x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> wide;
    using W = VecOf<hn::Rebind<double, D>>;
    W a[K];
    Pair<W> y[K];
    for (size_t k = 0; k < K; ++k) a[k] = hn::PromoteTo(wide, x[k]);
    ErfInvAll<Function, ErfInvTier::kHA>(wide, a, y);
    for (size_t k = 0; k < K; ++k) {
      const Pair<W> sum = FastTwoSum(y[k].hi, y[k].lo);
      out[k] = RoundPair(d, wide, sum.hi, sum.lo);
    }
  }
};

// Floats as doubles by way of memory, from where a conversion takes no shuffle.
template <class D, class V>
HWY_INLINE VecOf<D> PromoteByMemory(D d, V x) {
#if HWY_TARGET == HWY_SSE4
  return hn::PromoteTo(d, x);
#else
  const hn::Rebind<float, D> singles;
  HWY_ALIGN float memory[hn::MaxLanes(D())];
  hn::Store(x, singles, memory);
  asm("" : "+m"(memory));
  return hn::PromoteTo(d, hn::Load(singles, memory));
#endif
}

// By cubics within 2^-38, in full where that leaves the rounding open.
template <class Function, int (*kRare)(const float*, float*)>
struct sErfInvHAKernel : Kernel<float, double> {
  using Wide = sErfInvInFull<Function, kRare>;
  static constexpr int kUnroll = 8;
  static constexpr float kHarmless = 0.5f;
  using Rarity = Function::FineRarity;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> wide;
    using W = VecOf<hn::Rebind<double, D>>;
    ErfInvArgument<W> u[K];
    W y[K];
    V a[K];
    for (size_t k = 0; k < K; ++k) {
      a[k] = x[k];
      u[k] = Function::SplitFine(wide,
                                 K > 2 ? PromoteByMemory(wide, x[k]) : hn::PromoteTo(wide, x[k]));
    }
    ErfInvCubic<Function, kErfInvFineOctaves, kErfInvFineBits, true>(wide, kErfInvFine, u, y);
    const bool open = AnyRoundingInDoubt<15>(wide, y);
    for (size_t k = 0; k < K; ++k) out[k] = hn::DemoteTo(d, y[k]);
    if (open) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) out[k] = InFull(d, a[k]);
    }
  }

  // Of the vectors of a group few are in doubt, mostly one.
  template <class D, class V>
  static HWY_NOINLINE V InFull(D d, V x) {
    const hn::Rebind<double, D> wide;
    const ErfInvArgument<VecOf<hn::Rebind<double, D>>> u[1] = {
        Function::SplitFine(wide, hn::PromoteTo(wide, x))};
    VecOf<hn::Rebind<double, D>> y[1];
    ErfInvCubic<Function, kErfInvFineOctaves, kErfInvFineBits, true>(wide, kErfInvFine, u, y);
    if (!AnyRoundingInDoubt<15>(wide, y)) return hn::DemoteTo(d, y[0]);
    const V in[1] = {x};
    V out[1];
    Wide::MainGroup(d, in, out);
    return out[0];
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFINV_KERNELS_INL_H_
