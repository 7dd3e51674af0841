// The kernels of x^y in single precision, for an array of exponents as for one exponent.

#include <cmath>
#include <cstdint>
#include <limits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/pow_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exceptions.h"
#include "pexquo/pex.h"

#if defined(PEX_CORE__HEAP_REAL_POW_SINGLE_KERNELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_POW_SINGLE_KERNELS_INL_H_
#undef PEX_CORE__HEAP_REAL_POW_SINGLE_KERNELS_INL_H_
#else
#define PEX_CORE__HEAP_REAL_POW_SINGLE_KERNELS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

PEX_EXCEPTIONS_COUNT
// The power of positive finite numbers. Subnormal x is raised by 2^24.
HWY_INLINE float PowOfPositive(float x, float y) {
  const bool subnormal = x < 0x1p-126f;
  const hn::ScalableTag<double> wide;
  const hn::Rebind<float, decltype(wide)> d;
  const auto log2 = PowWideLog2(d, hn::Set(d, subnormal ? x * 0x1p24f : x));
  const auto z = hn::Mul(hn::Set(wide, y), hn::Sub(log2, hn::Set(wide, subnormal ? 24.0 : 0.0)));
  return hn::GetLane(PowWideExp2(d, z));
}

// x^y for rare elements; returns the status code. Poles have the domain code too.
static HWY_NOINLINE int sPowRare(float x, float y, float* r) {
  const bool whole = y == std::rint(y);  // infinities too
  const bool odd = whole && std::fabs(y) < 0x1p24f && (static_cast<int32_t>(y) & 1) != 0;
  const float sign = std::signbit(x) && odd ? -1.0f : 1.0f;
  const float magnitude = std::fabs(x);
  int code = PEX_STATUS_OK;
  if (x != x || y != y) {
    // A signalling NaN raises invalid in the sum.
    const volatile float sum = x + y;
    (void)sum;
    // The first of two, in whichever order they are added.
    *r = x == 1 || y == 0 ? 1.0f : x != x ? x + x : y + y;
  } else if (x == 1 || y == 0) {
    *r = 1;
  } else if (y == 1) {
    *r = x;
  } else if (x == 0) {
    *r = y > 0 ? sign * 0.0f : sign / 0.0f;
    if (y < 0) code = PEX_STATUS_DOMAIN;
  } else if (std::isinf(x) || std::isinf(y)) {
    const bool grows = (magnitude > 1) == (y > 0);
    *r = magnitude == 1 ? 1.0f : sign * (grows ? std::numeric_limits<float>::infinity() : 0.0f);
  } else if (x < 0 && !whole) {
    const volatile float zero = 0;
    *r = zero / zero;
    code = PEX_STATUS_DOMAIN;
  } else {
    *r = sign * PowOfPositive(magnitude, y);
  }
  return code;
}
PEX_EXCEPTIONS_COUNT_END

// kLeast and kMost bound |y|: patterns of floats.
template <typename Compute, int32_t kLeast, int32_t kMost>
struct sPowKernel : Kernel<float, Compute> {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 4;
  // x is not normal, y is beyond its bounds, or x is negative and y has a fraction. A shorter test
  // that takes negative x and y = 0 for rare too goes before.
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x, V y) {
    using Normal = RareOutside<float, 0x00800000, 0x7F7FFFFF>;
    using Within = RareOutside<float, kLeast, kMost>;
    const auto above = [d](auto key, int64_t limit) HWY_ATTR {
      return hn::RebindMask(d, hn::Gt(key, SetBits(d, static_cast<uint32_t>(limit))));
    };
    const V size = hn::Abs(y);
    const auto y_beyond = above(Within::Key(d, size), Within::kLimit);
    const auto doubtful = hn::Or(above(Normal::Key(d, x), Normal::kLimit), y_beyond);
    if (hn::AllFalse(d, doubtful)) [[likely]]
      return doubtful;

    const auto fraction = hn::Xor(Bits(d, y), Bits(d, hn::Round(y)));  // or a zero
    const auto outside = hn::And(fraction, hn::BroadcastSignBit(Bits(d, x)));
    const auto y_rare = hn::AndNot(hn::Eq(Bits(d, size), SetBits(d, 0)),
                                   hn::RebindMask(hn::RebindToSigned<D>(), y_beyond));
    return hn::Or(
        hn::Or(above(Normal::Key(d, hn::Abs(x)), Normal::kLimit), hn::RebindMask(d, y_rare)),
        hn::RebindMask(d, hn::Ne(outside, SetBits(d, 0))));
  }
  static HWY_INLINE int Rare(float x, float y, float* r) { return sPowRare(x, y, r); }

  // The power with the sign of x where y is odd.
  template <class D, class V>
  static HWY_INLINE V Signed(D d, V power, V x, V y) {
    const auto negative = hn::BroadcastSignBit(Bits(d, x));
    if (hn::AllFalse(d, hn::MaskFromVec(FromBits(d, negative)))) [[likely]]
      return power;
    // Even from 2^24 on.
    const auto integer =
        hn::ConvertTo(hn::RebindToSigned<D>(), hn::Min(hn::Abs(y), hn::Set(d, 0x1p24f)));
    const auto odd = FromBits(d, hn::ShiftLeft<31>(integer));
    return hn::Or(power, hn::And(odd, x));
  }
};

struct sPowNarrowKernel : sPowKernel<float, BitsOfNumber(0x1p-40f), BitsOfNumber(0x1p33f)> {
  static constexpr int kRestUnroll = HWY_TARGET == HWY_AVX3 ? 1 : 2;

  // The powers by kPower, of the sizes and with the signs put on where some x is negative; x^1 is
  // x.
  template <auto kPower, class D, class V, size_t K>
  static HWY_INLINE void SignedPowers(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    const auto is_first = [d](V exponent) HWY_ATTR {
      return hn::RebindMask(d, hn::Eq(Bits(d, exponent), SetBits(d, BitsOfNumber(1.0f))));
    };
    // The sign tells of y = 1 or of negative x.
    auto either = hn::Or(hn::VecFromMask(d, is_first(y[0])), x[0]);
    for (size_t k = 1; k < K; ++k) {
      either = hn::Or(either, hn::Or(hn::VecFromMask(d, is_first(y[k])), x[k]));
    }
    const bool special = !hn::AllFalse(d, hn::MaskFromVec(either));
    V size[K], exponent[K], power[K];
    for (size_t k = 0; k < K; ++k) {
      size[k] = x[k];
      exponent[k] = y[k];
    }
    if (special) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) {
        size[k] = hn::Abs(x[k]);
        exponent[k] = Selected(hn::IfThenZeroElse(is_first(y[k]), y[k]));
      }
    }
    kPower(d, size, exponent, power);
    if (special) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) {
        power[k] = hn::IfThenElse(is_first(y[k]), x[k], Signed(d, power[k], x[k], y[k]));
      }
    }
    for (size_t k = 0; k < K; ++k) r[k] = power[k];
  }
};

// In float. 15.7 correct bits.
struct sPowEP : sPowNarrowKernel {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    SignedPowers<sPowShort<D, V, K>>(d, x, y, r);
  }
};

// In pairs of floats. Largest error 1.27 ulp.
struct sPowLA : sPowNarrowKernel {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], const V (&y)[K], V (&r)[K]) {
    SignedPowers<sPowPairs<D, V, K>>(d, x, y, r);
  }
};

// In double. At most 0.5005 ulp.
struct sPowHA : sPowKernel<double, 1, 0x7F7FFFFF> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  template <class D, class V>
  static HWY_INLINE V Main(D d, V x, V y) {
    return Signed(d, PowWide(d, hn::Abs(x), y), x, y);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_POW_SINGLE_KERNELS_INL_H_
