// atan2(y, x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan2/satan2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAtan2";

// Rare: |x| or |y| outside the range of patterns, or both 0. A zero stands for the other argument.
template <int32_t kLow, int32_t kHigh>
struct sAtan2Domain {
  using Range = RareOutside<float, kLow, kHigh>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, V y, V x) {
    return KeyAbove(d, JoinKeys(d, Range::Key(d, hn::Abs(y)), Range::Key(d, hn::Abs(x))),
                    Range::kLimit);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V y, V x) {
    const auto zero_y = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(y)), SetBits(d, 0)));
    const auto zero_x = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(x)), SetBits(d, 0)));
    return MayBeRare(d, hn::IfThenElse(zero_y, x, y), hn::IfThenElse(zero_x, y, x));
  }
  static HWY_INLINE int Rare(float y, float x, float* r) {
    *r = _pexsatan2_scalar(y, x);
    return PEX_STATUS_OK;
  }
};

// Common lanes have |x| and |y| from 2^-60 to 2^60, so that no product and no quotient overflows or
// underflows.
struct sAtan2Common : Kernel<float>, sAtan2Domain<0x21800000, 0x5D7FFFFF> {
  static constexpr int kArguments = 2;
};

struct sAtan2EP : sAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    PlainAtan2(d, y, x, kAtanSingleEP, r);
  }
};

struct sAtan2LA : sAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    PlainAtan2(d, y, x, kAtanSingleLA, r);
  }
};

// In double precision, for all finite numbers: below 0.50001 ulp.
struct sAtan2HA : Kernel<float, double>, sAtan2Domain<0x00000001, 0x7F7FFFFF> {
  static constexpr int kArguments = 2;
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> u[K], v[K], w[K];
    for (size_t k = 0; k < K; ++k) {
      u[k] = hn::PromoteTo(wide, y[k]);
      v[k] = hn::PromoteTo(wide, x[k]);
    }
    PlainAtan2(wide, u, v, kAtan2LA, w);
    for (size_t k = 0; k < K; ++k) r[k] = hn::DemoteTo(d, w[k]);
  }
};

PEX_BINARY(float, sAtan2_11, sAtan2EP)
PEX_BINARY(float, sAtan2_21, sAtan2LA)
PEX_BINARY(float, sAtan2_HA, sAtan2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(float, sAtan2_11)
PEX_EXPORT_BINARY(float, sAtan2_21)
PEX_EXPORT_BINARY(float, sAtan2_HA)
}  // namespace pex
#endif
