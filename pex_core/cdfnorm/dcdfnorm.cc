// The standard normal distribution function in double precision, from tables of its own.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cdfnorm/dcdfnorm.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/cdfnorm-inl.h"
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erfc/erfc_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdCdfNorm";

template <class Part, bool kBeyond>
struct dCdfNormAccurate : Part {
  static constexpr int kUnroll = 16;
  static constexpr int kRestUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    CdfNormHA<kBeyond>(d, x, out);
  }
};

// From -37.5097, inside the common part, to 8.5097.
struct dCdfNormCurve : Kernel<double> {
  using Rarity = RareByDistance<double, 8.5097, false, 0x4047027B>;  // 46.0194
  static HWY_INLINE int Rare(double x, double* r) { return dCdfNormRare(x, r); }
};

struct dCdfNormCommon : Kernel<double> {
  // Common from -37.509 to 8153; below, the result comes close to the subnormal numbers.
  struct Rarity : RareAbove<double, 0x40AFFF04> {  // |x - 4058| > 4095.51
    template <class D>
    static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
      return Bits(d, hn::Abs(hn::Sub(x, hn::Set(d, 4058.0))));
    }
  };
  static HWY_INLINE int Rare(double x, double* r) { return dCdfNormRare(x, r); }
};

struct dCdfNormHA : dCdfNormAccurate<dCdfNormCurve, false> {
  using Wide = dCdfNormAccurate<dCdfNormCommon, true>;
};

using dCdfNormEP = FineKernel<CdfNormFine, ErfcTier::kEP, dCdfNormRare>;
using dCdfNormLA = FineKernel<CdfNormFine, ErfcTier::kLA, dCdfNormRare>;

PEX_UNARY(double, dCdfNorm_26, dCdfNormEP)
PEX_UNARY(double, dCdfNorm_50, dCdfNormLA)
PEX_UNARY(double, dCdfNorm_HA, dCdfNormHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dCdfNorm_26)
PEX_EXPORT_UNARY(double, dCdfNorm_50)
PEX_EXPORT_UNARY(double, dCdfNorm_HA)
}  // namespace pex
#endif
