// Short polynomials of floats by fused steps, the same without fused operations: in double
// precision a product of floats is exact.

#include "hwy/highway.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__KERNEL_FUSED_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_FUSED_SINGLE_INL_H_
#undef PEX_CORE__KERNEL_FUSED_SINGLE_INL_H_
#else
#define PEX_CORE__KERNEL_FUSED_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SSE4
// p + c rounded to a float, for a sum that keeps the binade of c: by a sum with a large number.
HWY_INLINE hn::Vec128<double> SumInBinade(hn::Vec128<double> p, float c) {
  using W = hn::Vec128<double>;
  // 2^52 last places of the sum
  const double large =
      0x1.8p52 * __builtin_bit_cast(float, (BitsOfNumber(c) & 0x7F800000) - (23 << 23));
  return hn::Sub(hn::Add(p, W{_mm_set1_pd(c + large)}), W{_mm_set1_pd(large)});
}
#endif

// p = c0 + x (c1 + x (c2 + x c3)), each step rounded once, for partial sums that keep the binades
// of c0, c1 and c2: without fused operations double precision rounds them by sums with large
// numbers. Then p factor + addend rounded once; where double precision rounds twice no result shows
// it: every argument has been tried.
template <class D, class V, size_t K>
HWY_INLINE void FusedCubic([[maybe_unused]] D d, const V (&x)[K], const float (&c)[4],
                           const V (&factor)[K], const V (&addend)[K], V (&r)[K]) {
#if HWY_TARGET == HWY_SSE4
  const hn::Repartition<double, D> wide;
  using W = VecOf<decltype(wide)>;
  const auto cubic = [&](W y, W by, W last) HWY_ATTR {
    W p = hn::Set(wide, double{c[3]});
    for (size_t i = 3; i-- > 0;) p = SumInBinade(hn::Mul(p, y), c[i]);
    return hn::Add(hn::Mul(p, by), last);
  };
  for (size_t k = 0; k < K; ++k) {
    r[k] = ByHalves(cubic, InHalves(x[k]), InHalves(factor[k]), InHalves(addend[k]));
  }
#else
  V p[K];
  for (size_t k = 0; k < K; ++k) p[k] = HiddenMulAdd(x[k], hn::Set(d, c[3]), hn::Set(d, c[2]));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = HiddenMulAdd(p[k], x[k], hn::Set(d, c[1]));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = HiddenMulAdd(p[k], x[k], hn::Set(d, c[0]));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) r[k] = HiddenMulAdd(p[k], factor[k], addend[k]);
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_FUSED_SINGLE_INL_H_
