// The error function in single precision: polynomials on 8 intervals; HA by the table of double
// precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erf/serf.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf-inl.h"
#include "pex_core/_heap/real/erf_single_polynomials.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/erf/erf_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vsErf";

template <typename Compute = float>
struct sErfCommon : Kernel<float, Compute> {
#if HWY_TARGET != HWY_AVX3
  using Rarity = NotOrdinaryOrZero<float>;
#endif
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return NotOrdinary(d, x);
  }
  static HWY_INLINE int Rare(float x, float* r) { return sErfRare(x, r); }
};

// erf(c) + (|x| - c) Q(|x| - c), c and the coefficients those of the interval about k 8/15 next to
// |x|. In Q the difference is raised by 2^-60, which keeps the products of tiny numbers from
// underflow. Row 0 of the table has the points, row i + 1 the coefficients of degree i.
template <const auto& kTable, bool kRest>
struct sErfPolynomial : sErfCommon<> {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr int kTop = sizeof(kTable) / sizeof(kTable[0]) - 1;
    BitsOf<D> at[K];
    V dx[K], safe[K], q[K];
    for (size_t k = 0; k < K; ++k) {
      const V ax = hn::Min(hn::Abs(x[k]), hn::Set(d, 3.95f));
      const V kf = hn::Add(hn::Mul(ax, hn::Set(d, 1.875f)), hn::Set(d, 0x1.8p23f));
      at[k] = Bits(d, kf);
      dx[k] = hn::Sub(ax, LookupEighth(d, kTable[0], at[k]));
      safe[k] = hn::Add(dx[k], hn::Set(d, 0x1p-60f));
      q[k] = LookupEighth(d, kTable[kTop], at[k]);
    }
    for (int i = kTop - 1; i > (kRest ? 2 : 1); --i) {
      for (size_t k = 0; k < K; ++k) {
        q[k] = hn::Mul(q[k], safe[k]);
        LookUpAfter(q[k], at[k]);
        q[k] = hn::Add(q[k], LookupEighth(d, kTable[i], at[k]));
      }
    }
    for (size_t k = 0; k < K; ++k) {
      V y = hn::Mul(dx[k], q[k]);
      if constexpr (kRest) {
        // The coefficient of degree 1 in two parts, for the sake of small numbers.
        const V rest = hn::Add(hn::Mul(q[k], safe[k]), hn::Set(d, kErfSingleRest));
        y = hn::Mul(dx[k], hn::Add(LookupEighth(d, kTable[2], at[k]), rest));
      }
      y = hn::Add(LookupEighth(d, kTable[1], at[k]), y);
      out[k] = hn::Or(y, hn::And(x[k], hn::SignBit(d)));
    }
  }
};

using sErfEP = sErfPolynomial<kErfSingleEP, false>;
using sErfLA = sErfPolynomial<kErfSingleLA, true>;

struct sErfHA : sErfCommon<double> {
  static constexpr int kUnroll = 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    using Wide = hn::Rebind<double, D>;
    const Wide dd;
    using W = VecOf<Wide>;
    ErfReduced<Wide> u[K];
    W wide[K], g[K];
    for (size_t k = 0; k < K; ++k) wide[k] = hn::PromoteTo(dd, x[k]);
    ErfReduce(dd, wide, u);
    ErfSum(dd, u, g);
    for (size_t k = 0; k < K; ++k) {
      const W slope = hn::Add(u[k].slope, hn::Mul(u[k].slope, g[k]));
      const W y = hn::Add(u[k].value, hn::Mul(u[k].d, slope));
      out[k] = hn::Or(hn::DemoteTo(d, y), hn::And(x[k], hn::SignBit(d)));
    }
  }
};

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
