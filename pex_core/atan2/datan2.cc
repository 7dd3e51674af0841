// atan2(y, x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/atan2/datan2.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/atan-inl.h"
#include "pex_core/_heap/real/atan_scalar.h"
#include "pex_core/_kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAtan2";

// Common lanes have |x| and |y| from 2^-450 to 2^450, so that no product and no quotient overflows
// or underflows, one of them may be 0.
struct dAtan2Common : Kernel<double> {
  static constexpr int kArguments = 2;
  using Range = RareOutside<double, 0x23D00000, 0x5C0FFFFF>;

  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, V y, V x) {
    return KeyAbove(d, JoinKeys(d, Range::Key(d, hn::Abs(y)), Range::Key(d, hn::Abs(x))),
                    Range::kLimit);
  }
  // A zero stands for the other argument.
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V y, V x) {
    const auto zero_y = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(y)), SetBits(d, 0)));
    const auto zero_x = hn::RebindMask(d, hn::Eq(Bits(d, hn::Abs(x)), SetBits(d, 0)));
    const auto rare = MayBeRare(d, hn::IfThenElse(zero_y, x, y), hn::IfThenElse(zero_x, y, x));
    return hn::RebindMask(d, hn::Lt(Bits(d, hn::VecFromMask(d, rare)), SetBits(d, 0)));
  }
  static HWY_INLINE int Rare(double y, double x, double* r) { return dAtan2Scalar(y, x, r); }
};

struct dAtan2EP : dAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    PlainAtan2(d, y, x, kAtanEP, r);
  }
};

struct dAtan2LA : dAtan2Common {
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    PlainAtan2(d, y, x, kAtan2LA, r);
  }
};

struct dAtan2HA : dAtan2Common {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&y)[K], const V (&x)[K], V (&r)[K]) {
    FullAtan2(d, y, x, r);
  }
};

PEX_BINARY(double, dAtan2_26, dAtan2EP)
PEX_BINARY(double, dAtan2_50, dAtan2LA)
PEX_BINARY(double, dAtan2_HA, dAtan2HA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_BINARY(double, dAtan2_26)
PEX_EXPORT_BINARY(double, dAtan2_50)
PEX_EXPORT_BINARY(double, dAtan2_HA)
}  // namespace pex
#endif
