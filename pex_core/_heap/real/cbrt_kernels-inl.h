// The tiers of a cube root's kernel, and its rare lanes: zeros, subnormal numbers, infinities, NaN.

#include <cmath>

#include "hwy/highway.h"
#include "pex_core/_heap/real/cbrt_double-inl.h"
#include "pex_core/_heap/real/cbrt_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

#if defined(PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_
#undef PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: |x| is not a normal number.
template <typename T>
using RareUnlessNormal =
    RareByMagnitude<std::conditional_t<sizeof(T) == 8, RareOutside<T, 0x00100000, 0x7FEFFFFF>,
                                       RareOutside<T, 0x00800000, 0x7F7FFFFF>>>;

inline constexpr int kRootUnroll = 8;

// f of a group's vectors, G together: their chains of dependent operations overlap, and the
// registers hold them. One by one where G together would leave some.
template <size_t G, class V, size_t K, class F>
HWY_INLINE void Together(const V (&x)[K], V (&r)[K], const F& f) {
  if constexpr (K <= G) {
    f(x, r);
  } else {
    constexpr size_t kEach = K % G == 0 ? G : 1;
#pragma GCC unroll 8
    for (size_t j = 0; j < K; j += kEach) {
      V in[kEach], out[kEach];
      for (size_t k = 0; k < kEach; ++k) in[k] = x[j + k];
      f(in, out);
      for (size_t k = 0; k < kEach; ++k) r[j + k] = out[k];
    }
  }
}

// The root of a normal number by the kernel.
template <class Form>
HWY_INLINE double NormalRoot(double x) {
  const hn::CappedTag<double, 1> d;
  VecOf<decltype(d)> v[1] = {hn::Set(d, x)};
  RootHA<Form, true>(d, v, v);
  return hn::GetLane(v[0]);
}

template <class Form>
HWY_INLINE float NormalRoot(float x) {
  const hn::ScalableTag<float> d;
  VecOf<decltype(d)> v[1] = {hn::Set(d, x)};
  sRootHA<Form>(d, v, v);
  return hn::GetLane(v[0]);
}

PEX_EXCEPTIONS_COUNT
// The root of a rare element; its status code. Subnormal numbers are raised by a cube of 2^18 or
// 2^8 to normal ones.
template <class Form, typename T>
HWY_NOINLINE int RareRoot(T x, T* r) {
  constexpr bool kReciprocal = std::is_same_v<Form, InvCbrtForm>;
  if (x != x) {
    *r = x + x;
  } else if (x == 0 || std::isinf(x)) {
    // One division: its flag is the pole's.
    const T power = kReciprocal ? 1 / x : x;
    *r = Form::kOdd ? power : std::abs(power);
    if (kReciprocal && x == 0) return PEX_STATUS_SINGULARITY;
  } else {
    constexpr bool kDouble = sizeof(T) == 8;
    constexpr T kRaise = kDouble ? T(0x1p54) : T(0x1p24), kCubeRoot = kDouble ? T(0x1p18) : T(256);
    const T root = NormalRoot<Form>(x * kRaise);
    *r = kReciprocal  ? root * kCubeRoot
         : Form::kOdd ? root / kCubeRoot
                      : root / (kCubeRoot * kCubeRoot);
  }
  return PEX_STATUS_OK;
}
PEX_EXCEPTIONS_COUNT_END

template <class Form, typename T>
struct RootKernel : Kernel<T> {
  static constexpr int kUnroll = kRootUnroll;
  using Rarity = RareUnlessNormal<T>;
  static HWY_INLINE int Rare(T x, T* r) { return RareRoot<Form>(x, r); }
};

// Double precision's kernels for all normal numbers test a group by the bits that they start from.
template <class Form>
struct dRootKernel : RootKernel<Form, double> {
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&x)[K]) {
    return AnyNotNormal(d, x);
  }
};

template <class Form>
struct dRootEP : dRootKernel<Form> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    constexpr size_t kFew = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 2 : 4;
    constexpr size_t kVectors = std::is_same_v<Form, CbrtForm> ? kFew : 4;
    Together<kVectors>(x, r, [&](const auto& in, auto& out) HWY_ATTR { RootEP<Form>(d, in, out); });
  }
};

template <class Form>
struct dRootLA : dRootKernel<Form> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<4>(x, r, [&](const auto& in, auto& out) HWY_ATTR { RootLA<Form>(d, in, out); });
  }
};

template <class Form>
struct dRootWideHA : RootKernel<Form, double> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<4>(x, r, [&](const auto& in, auto& out) HWY_ATTR { RootHA<Form, true>(d, in, out); });
  }
};

// Common from 2^-900 to 2^900.
template <class Form>
struct dRootHA : RootKernel<Form, double> {
  using Wide = dRootWideHA<Form>;
  using Rarity = RareByMagnitude<RareOutside<double, 0x07B00000, 0x782FFFFF>>;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<4>(x, r, [&](const auto& in, auto& out) HWY_ATTR { RootHA<Form, false>(d, in, out); });
  }
};

template <class Form>
struct sRootKernelEP : RootKernel<Form, float> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<4>(x, r, [&](const auto& in, auto& out) HWY_ATTR { sRootEP<Form>(d, in, out); });
  }
};

template <class Form>
struct sRootKernelLA : RootKernel<Form, float> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<HWY_TARGET == HWY_SSE4 ? 1 : 4>(
        x, r, [&](const auto& in, auto& out) HWY_ATTR { sRootLA<Form>(d, in, out); });
  }
};

template <class Form>
struct sRootKernelHA : RootKernel<Form, float> {
  static constexpr int kUnroll = 4;  // twice as many vectors of doubles
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    Together<4>(x, r, [&](const auto& in, auto& out) HWY_ATTR { sRootHA<Form>(d, in, out); });
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_
