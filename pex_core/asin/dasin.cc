// asin(x) in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/asin/dasin.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_full-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdAsin";

template <AsinDomain kDomain, class Groups = AsinGroups<double>>
struct dAsinCommon : AsinRareGroups<double, kDomain, Groups> {
  static HWY_INLINE int Rare(double x, double* r) { return AsinRare(x, r); }
};

template <AsinDomain kDomain>
struct dAsinForEP : dAsinCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAsin, kAsinEP, kDomain, 1>(d, x, r);
  }
};
using dAsinEP = AsinKernel<dAsinForEP>;

template <AsinDomain kDomain>
struct dAsinForLA : dAsinCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAsin, kAsinLA, kDomain, dAsinCommon<kDomain>::kTogether>(d, x, r);
  }
};
using dAsinLA = AsinKernel<dAsinForLA>;

template <AsinDomain kDomain>
struct dAsinForHA : dAsinCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    FullInTurn<FullAsinPart, kDomain>(d, x, r);
  }
};
using dAsinHA = AsinKernel<dAsinForHA>;

PEX_UNARY(double, dAsin_26, dAsinEP)
PEX_UNARY(double, dAsin_50, dAsinLA)
PEX_UNARY(double, dAsin_HA, dAsinHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dAsin_26)
PEX_EXPORT_UNARY(double, dAsin_50)
PEX_EXPORT_UNARY(double, dAsin_HA)
}  // namespace pex
#endif
