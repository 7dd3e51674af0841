// acosh(x) = ln(x + sqrt(x^2 - 1)) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/acosh/dacosh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/inverse_hyperbolic-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/acosh/acosh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAcosh";

struct dAcoshCommon : Kernel<double> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kNever;
  using Rarity = RareOutside<double, 0x3FF00000, 0x7FEFFFFF>;  // below 1, infinite, NaN
  static HWY_INLINE int Rare(double x, double* r) { return AcoshRare(x, r); }
};

struct dAcoshWideEP : dAcoshCommon {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseEP<AcoshSum, true>(d, x, r);
  }
};

struct dAcoshEP : dAcoshCommon {
  using Rarity = RareOutside<double, 0x3FF00000, 0x5EEFFFFF>;
  using Wide = dAcoshWideEP;
  static constexpr int kUnroll = 8;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    InverseEP<AcoshSum, false>(d, x, r);
  }
};

template <bool kFull>
struct dAcoshInFull : InverseFull<AcoshRootSum<kFull, false>, dAcoshCommon> {
  using Rarity = RareOutside<double, 0x3FF00000, 0x418FFFFF>;  // up to 2^26
  using Wide = InverseFull<AcoshRootSum<kFull, true>, dAcoshCommon>;
};

using dAcoshLA = dAcoshInFull<false>;
using dAcoshHA = dAcoshInFull<true>;

PEX_UNARY(double, dAcosh_26, dAcoshEP)
PEX_UNARY(double, dAcosh_50, dAcoshLA)
PEX_UNARY(double, dAcosh_HA, dAcoshHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAcosh_26)
PEX_EXPORT_UNARY(double, dAcosh_50)
PEX_EXPORT_UNARY(double, dAcosh_HA)
}  // namespace pex
#endif
