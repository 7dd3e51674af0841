// asin(x) in single precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/asin/sasin.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_short-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/asin/asin_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsAsin";

template <AsinDomain kDomain>
struct sAsinCommon : AsinRareGroups<float, kDomain, AsinGroups<float>> {
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
};

// asin(x)/x as a polynomial in w = sqrt(1 - |x|): with w^2 = 1 - |x| little of it waits for the
// root. It is exactly 1 for tiny x, the nearest float to pi/2 for 1. On AVX-512, where the
// processor's roots take longer than all the rest, one of four vectors goes without.
struct sAsinEP : LargeGroups<float> {
  using Rarity = AboveOne<float>;
  static HWY_INLINE int Rare(float x, float* r) { return AsinRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    const auto c = [d](size_t i) HWY_ATTR { return hn::Set(d, kAsinOfRootSingleEP[i]); };
    V t[K], w[K];
    for (size_t k = 0; k < K; ++k) {
      t[k] = hn::Sub(hn::Set(d, 1.0f), hn::Abs(x[k]));
      w[k] = k % 4 == 1 ? RootByEstimateOrZero(d, t[k]) : hn::Sqrt(t[k]);
    }
    for (size_t k = 0; k < K; ++k) {
      const V line = hn::Add(hn::Mul(t[k], c(2)), c(1));
      const V sum = hn::Add(hn::Add(hn::Mul(t[k], c(4)), c(3)), w[k]);
      r[k] = hn::Mul(x[k], hn::Add(hn::Mul(line, sum), c(0)));
    }
  }
};

template <AsinDomain kDomain>
struct sAsinForLA : sAsinCommon<kDomain> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&r)[K]) {
    PlainInTurn<PlainAsin, kAsinSingleLA, kDomain, sAsinCommon<kDomain>::kTogether>(d, x, r);
  }
};
using sAsinLA = AsinKernel<sAsinForLA>;

// Correctly rounded for all floats.
struct sAsinPaths {
  template <auto& c, AsinDomain kDomain, class D, size_t kVectors>
  using Part = PlainAsin<c, kDomain, D, kVectors>;
#if HWY_TARGET == HWY_AVX3
  template <class D, class V>
  static HWY_INLINE V Short(D d, V x, BitsOf<D>& doubt) {
    return sAsinShort(d, x, doubt);
  }
#endif
};
using sAsinHA = sAsinHAKernel<sAsinPaths>;

PEX_UNARY(float, sAsin_11, sAsinEP)
PEX_UNARY(float, sAsin_21, sAsinLA)
PEX_UNARY(float, sAsin_HA, sAsinHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sAsin_11)
PEX_EXPORT_UNARY(float, sAsin_21)
PEX_EXPORT_UNARY(float, sAsin_HA)
}  // namespace pex
#endif
