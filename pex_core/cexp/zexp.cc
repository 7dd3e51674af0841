// e^z of complex numbers in double precision: one kernel for all accuracies, at most 0.8 ulp.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cexp/zexp.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_exp-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

// e^z of one vector in three parts.
template <class D>
struct ExpInTurn {
  using V = VecOf<D>;
  ExpFactors<D> e[1];
  Sixteenth<D> u[1];
  V s[1], c[1];

  HWY_INLINE void Reduce(Complex<V> z) {
    const D d;
    const V x[] = {z.re}, y[] = {z.im};
    ReduceToSixteenth(d, y, u);
    ExpFactorsOf(d, x, e);
  }
  HWY_INLINE void Evaluate() { SmallSineCosine(D(), u, s, c); }
  HWY_INLINE Complex<V> Result(Complex<V>) const {
    return PolarProduct(D(), e[0], u[0], s[0], c[0]);
  }
};

// kWide: also zeros, and imaginary parts from 2^9 to 2^12.
template <bool kWide>
struct dComplexExp : ElementaryKernel<ComplexExp, double> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
  // By the high words of both parts: less the first of the 128 exponents below 2^9, they have only
  // the lower 7 bits, whatever the sign.
  template <class D, class V, size_t K>
  requires(!kWide) static HWY_INLINE bool AnyMayBeRare(D d, const Complex<V> (&z)[K]) {
    const hn::Repartition<int32_t, D> d32;
    const auto first = hn::Set(d32, (1023 + 9 - 128) << 20);
    auto joined = hn::Zero(d32);
    for (size_t k = 0; k < K; ++k) {
      const auto words = hn::BitCast(d32, HighWords(d, z[k].re, z[k].im));
      joined = hn::Or(joined, hn::Sub(words, first));
    }
    return HasAnyBit(joined, hn::Set(d32, 0x78000000));
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
#if HWY_TARGET != HWY_SSE4
    ExpInTurn<D> parts[K];
    InTurn(parts, r, z);
#else  // too few registers
    V x[K], y[K];
    for (size_t k = 0; k < K; ++k) {
      x[k] = z[k].re;
      y[k] = z[k].im;
    }
    PolarExp(d, x, y, r);
#endif
    if constexpr (kWide) {
      for (size_t k = 0; k < K; ++k) {
        const V y = z[k].im;
        r[k].im = hn::IfThenElse(hn::Eq(y, hn::Zero(d)), y, r[k].im);
      }
    }
  }
};

struct dExp : dComplexExp<false> {
  using Wide = dComplexExp<true>;
};

int zExp(int32_t n, const PexComplex16* a, PexComplex16* r) { return MapComplex<dExp>(n, a, r); }

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(zExp);
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_26)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_50)
PEX_EXPORT_COMPLEX_UNARY(PexComplex16, PexComplex16, ControlGuard, zExp, zExp_HA)
}  // namespace pex
#endif
