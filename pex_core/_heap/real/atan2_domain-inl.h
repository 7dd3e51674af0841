// Which lanes of atan2 are common, for the entries of two real arguments and of one complex one,
// and the single-precision HA kernel of both.

#include "pex_core/_heap/real/atan-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#undef PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rare: |x| or |y| outside the range of patterns (high words of doubles), or both 0. A zero stands
// for the other argument.
template <typename T, int32_t kLow, int32_t kHigh>
struct Atan2Outside {
  using Range = RareOutside<T, kLow, kHigh>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, V y, V x) {
    return KeyAbove(d, JoinedKey(d, y, x), Range::kLimit);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V y, V x) {
    const auto zero_y = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(y)), SetBits(d, 0)));
    const auto zero_x = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(x)), SetBits(d, 0)));
    const auto key = JoinedKey(d, hn::IfThenElse(zero_y, x, y), hn::IfThenElse(zero_x, y, x));
    return LanesAbove(d, key, Range::kLimit);
  }

 private:
  template <class D, class V>
  static HWY_INLINE BitsOf<D> JoinedKey(D d, V y, V x) {
    return JoinKeys(d, Range::Key(d, hn::Abs(y)), Range::Key(d, hn::Abs(x)));
  }
};

// Common lanes have |x| and |y| from 2^-450 to 2^450, single from 2^-60 to 2^60, so that no product
// and no quotient overflows or underflows; one of them may be 0.
using Atan2Domain = Atan2Outside<double, 0x23D00000, 0x5C0FFFFF>;
using Atan2NarrowDomain = Atan2Outside<double, 0x30500000, 0x4F8FFFFF>;  // 2^-250 to 2^250
using sAtan2Domain = Atan2Outside<float, 0x21800000, 0x5D7FFFFF>;
using sAtan2WideDomain = Atan2Outside<float, 0x00000001, 0x7F7FFFFF>;  // all finite numbers

// atan2(y, x) of floats in double precision, for all finite numbers: below 0.50001 ulp.
template <class D, class V, size_t K>
HWY_INLINE void Atan2InDouble(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
  const hn::Rebind<double, D> wide;
  VecOf<decltype(wide)> u[K], v[K], w[K];
  for (size_t k = 0; k < K; ++k) {
    u[k] = hn::PromoteTo(wide, y[k]);
    v[k] = hn::PromoteTo(wide, x[k]);
  }
  PlainAtan2(wide, u, v, kAtan2LA, w);
  for (size_t k = 0; k < K; ++k) r[k] = hn::DemoteTo(d, w[k]);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ATAN2_DOMAIN_INL_H_
