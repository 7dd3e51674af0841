// acos(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/acos/sacos.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAcos";

template <AsinDomain kDomain>
struct sAcosCommon : AsinRareGroups<float, kDomain, AsinGroups<float>> {
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
};

template <AsinDomain kDomain>
struct sAcosForEP : sAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAcos, kAsinSingleEP, kDomain, sAcosCommon<kDomain>::kTogether>(d, x, r);
  }
};
using sAcosEP = AsinKernel<sAcosForEP>;

template <AsinDomain kDomain>
struct sAcosForLA : sAcosCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAcos, kAsinSingleLA, kDomain, sAcosCommon<kDomain>::kTogether>(d, x, r);
  }
};
using sAcosLA = AsinKernel<sAcosForLA>;

// In double precision, to 2^-52 or better, where no float is tiny. Correctly rounded for all
// floats.
struct sAcosHA : LargeGroups<float, double> {
  using Rarity = AboveOne<float>;
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
  // The double above pi/2 instead of the one below, which is nearer: with that one 0x1.110b46p-26
  // and 0x1.04c444p-12 come out in the middle of two floats and go to the even one, the wrong one.
  template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
  struct PlainHA : PlainAcosTo<c, kDomain, D, kVectors, kPi / 2 + 0x1p-52> {};
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const hn::Rebind<double, D> wide;
    VecOf<decltype(wide)> v[K], w[K];
    for (size_t k = 0; k < K; ++k) v[k] = hn::PromoteTo(wide, x[k]);
    PlainInTurn<PlainHA, kAsinHA, AsinDomain::kCommon, 1>(wide, v, w);
    for (size_t k = 0; k < K; ++k) r[k] = hn::DemoteTo(d, w[k]);
  }
};

PEX_UNARY(float, sAcos_11, sAcosEP)
PEX_UNARY(float, sAcos_21, sAcosLA)
PEX_UNARY(float, sAcos_HA, sAcosHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAcos_11)
PEX_EXPORT_UNARY(float, sAcos_21)
PEX_EXPORT_UNARY(float, sAcos_HA)
}  // namespace pex
#endif
