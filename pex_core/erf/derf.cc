// The error function in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erf/derf.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf-inl.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/erf/erf_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdErf";

template <class D, class V>
HWY_INLINE V WithSign(D d, V y, V x) {
  return hn::Or(y, hn::And(x, hn::SignBit(d)));
}

constexpr double kTwoOverRootPi = 0x1.20dd750429b6dp+0, kTwoOverRootPiRest = 0x1.1ae3a914fed8p-56;

struct dErfCommon : Kernel<double> {
  static constexpr int kUnroll = 6;
#if HWY_TARGET != HWY_AVX3
  using Rarity = NotOrdinaryOrZero<double>;
#endif
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return NotOrdinary(d, x);
  }
  static HWY_INLINE int Rare(double x, double* r) { return dErfRare(x, r); }
};

// erf(c) + d (s + s g).
template <class D, class V, size_t K>
HWY_INLINE void Assemble(D d, const ErfReduced<D> (&u)[K], const V (&g)[K], const V (&x)[K],
                         V (&out)[K]) {
  for (size_t k = 0; k < K; ++k) {
    const V slope = hn::Add(u[k].slope, hn::Mul(u[k].slope, g[k]));
    out[k] = WithSign(d, hn::Add(u[k].value, hn::Mul(u[k].d, slope)), x[k]);
  }
}

// The series to the square.
struct dErfEP : dErfCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfReduced<D> u[K];
    V g[K];
    ErfReduce(d, x, u);
    for (size_t k = 0; k < K; ++k) {
      g[k] = hn::Mul(hn::Sub(hn::Mul(u[k].safe, u[k].q), u[k].c), u[k].safe);
    }
    Assemble(d, u, g, x, out);
  }
};

struct dErfLA : dErfCommon {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfReduced<D> u[K];
    V g[K];
    ErfReduce(d, x, u);
    ErfSum<false>(d, u, g);
    Assemble(d, u, g, x, out);
  }
};

// Below 1/4 x (2/sqrt(pi) + x^2 P(x^2)), the first product in full; beyond, the table, where d s is
// less than a 64th of the result.
struct dErfHA : Kernel<double> {
  static constexpr int kUnroll = 6;
  // Not zero and so small that the error of a product underflows; infinities, NaN.
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    const auto magnitude = Bits(d, hn::Abs(x));
    const auto least = SetBits(d, BitsOfNumber(0x1p-900));
    const auto tiny = hn::AndNot(hn::Eq(magnitude, SetBits(d, 0)), hn::Lt(magnitude, least));
    const auto special = hn::Gt(magnitude, SetBits(d, 0x7FEFFFFFFFFFFFFF));
    return hn::RebindMask(d, hn::Or(tiny, special));
  }
  static HWY_INLINE int Rare(double x, double* r) { return dErfRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfReduced<D> u[K];
    V z[K], z2[K], z4[K], p[K], g[K];
    ErfReduce(d, x, u);
    for (size_t k = 0; k < K; ++k) {
      z[k] = hn::Min(hn::Abs(x[k]), hn::Set(d, 0.25));
      const V safe = hn::Max(z[k], hn::Set(d, 0x1p-200));
      z2[k] = hn::Mul(safe, safe);
      z4[k] = hn::Mul(z2[k], z2[k]);
    }
    EvenOdd(d, z2, z4, kErfNear, p);
    ErfSum<true>(d, u, g);
    for (size_t k = 0; k < K; ++k) {
      const V t = hn::Mul(u[k].slope, u[k].safe);
      const V far = hn::Add(u[k].value, hn::Add(t, hn::Mul(t, g[k])));
      const Pair<V> product = TwoProduct(d, z[k], hn::Set(d, kTwoOverRootPi));
      const V rest = hn::Add(hn::Mul(z2[k], p[k]), hn::Set(d, kTwoOverRootPiRest));
      const V near = hn::Add(product.hi, hn::Add(product.lo, hn::Mul(z[k], rest)));
      out[k] = WithSign(d, hn::IfThenElse(MagnitudeBelow(d, x[k], 0.25), near, far), x[k]);
    }
  }
};

PEX_UNARY(double, dErf_26, dErfEP)
PEX_UNARY(double, dErf_50, dErfLA)
PEX_UNARY(double, dErf_HA, dErfHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dErf_26)
PEX_EXPORT_UNARY(double, dErf_50)
PEX_EXPORT_UNARY(double, dErf_HA)
}  // namespace pex
#endif
