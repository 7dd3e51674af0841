// The error function in single precision, computed in double.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erf/serf.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erf/erf_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErf";

struct sErfCommon : Kernel<float, double> {
  static constexpr int kUnroll = 6;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return NotOrdinary(d, x);
  }
  static HWY_INLINE int Rare(float x, float* r) { return sErfRare(x, r); }
};

// How many terms of the series: the line, the square, all.
template <int kTerms>
struct sErfKernel : sErfCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    using W = VecOf<Wide>;
    ErfReduced<Wide> u[K];
    W wide[K], g[K];
    for (size_t k = 0; k < K; ++k) wide[k] = hn::PromoteTo(dd, x[k]);
    ErfReduce(dd, wide, u);
    if constexpr (kTerms == 3) {
      ErfSum<true>(dd, u, g);
    } else {
      for (size_t k = 0; k < K; ++k) {
        const W odd = kTerms == 1 ? hn::Neg(u[k].c) : hn::Sub(hn::Mul(u[k].d, u[k].q), u[k].c);
        g[k] = hn::Mul(odd, u[k].d);
      }
    }
    for (size_t k = 0; k < K; ++k) {
      const W slope = hn::Add(u[k].slope, hn::Mul(u[k].slope, g[k]));
      const W y = hn::Add(u[k].value, hn::Mul(u[k].d, slope));
      out[k] = hn::Or(hn::DemoteTo(d, y), hn::And(x[k], hn::SignBit(d)));
    }
  }
};

using sErfEP = sErfKernel<1>;
using sErfLA = sErfKernel<2>;
using sErfHA = sErfKernel<3>;

PEX_UNARY(float, sErf_11, sErfEP)
PEX_UNARY(float, sErf_21, sErfLA)
PEX_UNARY(float, sErf_HA, sErfHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(float, sErf_11)
PEX_EXPORT_UNARY(float, sErf_21)
PEX_EXPORT_UNARY(float, sErf_HA)
}  // namespace pex
#endif
