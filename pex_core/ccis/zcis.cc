// (cos x, sin x) in double precision, one computation for all tiers: at most 0.55 ulp of each part.
// The values are those of SinCos's HA tier.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/ccis/zcis.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/ccis/cis-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// Common lanes have |x| from 2^-20 below 2^12.
struct zCISKernel : ComplexKernel<double> {
  static constexpr bool kRealArgument = true;
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX2 ? 8 : 6;
  static constexpr int kRestUnroll = HWY_TARGET == HWY_AVX2 ? 4 : 6;
  using Wide = WideCIS<double>;
  using Range = RareOutside<double, 0x3EB00000, 0x40AFFFFF>;
  using Usual = UsualExponents<-20, 5>;  // the same
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return KeyAbove(d, Range::Key(d, hn::Abs(x)), Range::kLimit);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE bool AnyMayBeRare(D d, const V (&x)[K]) {
    return !Usual::All(d, x);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], Complex<V> (&r)[K]) {
    V sin[K], cos[K];
    if (!SineCosineHA::Group(d, x, sin, cos)) [[unlikely]]
      NearZeros(d, x, sin, cos);
    for (size_t k = 0; k < K; ++k) r[k] = {cos[k], sin[k]};
  }

 private:
  template <class D, class V, size_t K>
  static HWY_NOINLINE void NearZeros(D d, const V (&x)[K], V (&sin)[K], V (&cos)[K]) {
    SineCosineHA::Wide(d, x, sin, cos);
  }
};

int zCIS(int32_t n, const double* x, PexComplex16* r) { return MapComplex<zCISKernel>(n, x, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zCIS);
PEX_EXPORT_COMPLEX_UNARY(double, PexComplex16, ControlGuard, zCIS, zCIS_26)
PEX_EXPORT_COMPLEX_UNARY(double, PexComplex16, ControlGuard, zCIS, zCIS_50)
PEX_EXPORT_COMPLEX_UNARY(double, PexComplex16, ControlGuard, zCIS, zCIS_HA)
}  // namespace pex
#endif
