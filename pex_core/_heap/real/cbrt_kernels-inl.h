// The tiers of a cube root's kernel, and its rare lanes: zeros, subnormal numbers, infinities, NaN.

#include <cmath>
#include <limits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/cbrt_double-inl.h"
#include "pex_core/_heap/real/cbrt_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
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
struct RareUnlessNormal {
  using Outside = std::conditional_t<sizeof(T) == 8, RareOutside<T, 0x00100000, 0x7FEFFFFF>,
                                     RareOutside<T, 0x00800000, 0x7F7FFFFF>>;
  static constexpr int64_t kLimit = Outside::kLimit;
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, hn::Vec<D> x) {
    return Outside::Key(d, hn::Abs(x));
  }
};

// The root of a normal number by the kernel of one lane.
template <class Form>
HWY_INLINE double NormalRoot(double x) {
  const hn::CappedTag<double, 1> d;
  return hn::GetLane(RootHA<Form>(d, hn::Set(d, x)));
}

template <class Form>
HWY_INLINE float NormalRoot(float x) {
  const hn::CappedTag<float, 1> d;
  return hn::GetLane(sRootHA<Form>(d, hn::Set(d, x)));
}

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

template <class Form, typename T, typename Compute = T>
struct RootKernel : Kernel<T, Compute> {
  using Rarity = RareUnlessNormal<T>;
  static HWY_INLINE int Rare(T x, T* r) { return RareRoot<Form>(x, r); }
};

template <class Form>
struct dRootEP : RootKernel<Form, double> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return RootEP<Form>(d, x);
  }
};

template <class Form>
struct dRootLA : RootKernel<Form, double> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return RootLA<Form>(d, x);
  }
};

template <class Form>
struct dRootHA : RootKernel<Form, double> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return RootHA<Form>(d, x);
  }
};

template <class Form>
struct sRootKernelEP : RootKernel<Form, float> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sRootEP<Form>(d, x);
  }
};

template <class Form>
struct sRootKernelLA : RootKernel<Form, float> {
  static constexpr int kUnroll = 8;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sRootLA<Form>(d, x);
  }
};

template <class Form>
struct sRootKernelHA : RootKernel<Form, float, double> {
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x) {
    return sRootHA<Form>(d, x);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_KERNELS_INL_H_
