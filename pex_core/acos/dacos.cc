// acos(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/acos/dacos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_full-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAcos";

template <AsinDomain kDomain, class Groups = AsinGroups<double>>
struct dAcosCommon : AsinRareGroups<double, kDomain, Groups> {
  static HWY_INLINE int Rare(double x, double* r) { return AsinRare(x, r); }
};

template <AsinDomain kDomain>
struct dAcosForEP : dAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAcos, kAsinEP, kDomain, 1>(d, x, r);
  }
};
using dAcosEP = AsinKernel<dAcosForEP>;

template <AsinDomain kDomain>
struct dAcosForLA : dAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAcos, kAcosLA, kDomain, dAcosCommon<kDomain>::kTogether>(d, x, r);
  }
};
using dAcosLA = AsinKernel<dAcosForLA>;

template <AsinDomain kDomain>
struct dAcosForHA : dAcosCommon<kDomain> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    FullInTurn<FullAcosPart, kDomain>(d, x, r);
  }
};
using dAcosHA = AsinKernel<dAcosForHA>;

PEX_UNARY(double, dAcos_26, dAcosEP)
PEX_UNARY(double, dAcos_50, dAcosLA)
PEX_UNARY(double, dAcos_HA, dAcosHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAcos_26)
PEX_EXPORT_UNARY(double, dAcos_50)
PEX_EXPORT_UNARY(double, dAcos_HA)
}  // namespace pex
#endif
