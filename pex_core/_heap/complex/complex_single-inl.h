// Complex elementary functions in float arithmetic, beside kernels in double, HA's. Lanes outside
// the range of the float formula, and those that it finds delicate, are computed like HA's; what HA
// leaves to the scalar routine goes there too.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// A vector of floats that is read back as doubles, half by half: from memory a conversion takes no
// shuffle, which is one operation in place of two, and in place of three for the upper half.
template <class D>
struct StoredHalves {
  using Wide = hn::Rebind<double, hn::Half<D>>;
  HWY_ALIGN float lane[hn::MaxLanes(D())];
  HWY_INLINE void Store(VecOf<D> x) {
    hn::Store(x, D(), lane);
    asm("" : "+m"(lane));  // else the compiler takes the halves out of the register
  }
  HWY_INLINE void Widen(VecOf<Wide> (&x)[2]) const {
    const hn::Half<D> half;
    x[0] = hn::PromoteTo(Wide(), hn::Load(half, lane));
    x[1] = hn::PromoteTo(Wide(), hn::Load(half, lane + hn::Lanes(half)));
  }
};

// The doubles of both halves of vectors of floats, and back.
template <class D, class V, class Wide = hn::Rebind<double, hn::Half<D>>>
HWY_INLINE void WidenHalves(D, V x, VecOf<Wide>& lower, VecOf<Wide>& upper) {
#if HWY_TARGET == HWY_AVX2
  StoredHalves<D> stored;
  VecOf<Wide> halves[2];
  stored.Store(x);
  stored.Widen(halves);
  lower = halves[0];
  upper = halves[1];
#else  // AVX-512 does not gain by it
  const hn::Half<D> half;
  lower = hn::PromoteTo(Wide(), hn::LowerHalf(half, x));
  upper = hn::PromoteTo(Wide(), hn::UpperHalf(half, x));
#endif
}
template <class D, class W>
HWY_INLINE VecOf<D> NarrowHalves(D d, W lower, W upper) {
  const hn::Half<D> half;
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(W) == 64) {  // Combine would clear what it inserts into
    const __m512 low = _mm512_castps256_ps512(hn::DemoteTo(half, lower).raw);
    return VecOf<D>{_mm512_insertf32x8(low, hn::DemoteTo(half, upper).raw, 1)};
  }
#endif
  return hn::Combine(d, hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
}

// One vector's results of a kernel of groups.
template <class K, class D, class V>
HWY_INLINE Complex<V> ResultOf(D d, Complex<V> z) {
  const Complex<V> zs[1] = {z};
  Complex<V> rs[1];
  K::MainGroup(d, zs, rs);
  return rs[0];
}

// HA's results for the lanes of the mask, which are common ones of HA's.
template <class HA, class D, class V>
HWY_NOINLINE Complex<V> InDoubleWhere(D d, MaskOf<D> mask, Complex<V> z, Complex<V> otherwise) {
  const auto r = ResultOf<HA>(d, Replace(d, hn::Not(mask), z, HA::kHarmless));
  return {hn::IfThenElse(mask, r.re, otherwise.re), hn::IfThenElse(mask, r.im, otherwise.im)};
}

// Formula has IsRare, a mask of what it does not cover, perhaps MayBeRare (complex-inl.h), kUnroll
// and MainGroup.
template <class HA, class Formula>
struct SingleKernel : ComplexKernel<float>, Formula {
  static constexpr int kUnroll = Formula::kUnroll;
  static Complex<float> Rare(Complex<float> z) { return HA::Rare(z); }

  struct Wide : ComplexKernel<float> {
    static constexpr int kUnroll = 1;
    template <class D, class V>
    static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
      return hn::And(Formula::IsRare(d, z), HA::IsRare(d, z));
    }
    template <class D, class V>
    static HWY_INLINE void Main(D d, Complex<V> z, Complex<V>& r) {
      const auto rare = Formula::IsRare(d, z);
      const auto common =
          ResultOf<Formula>(d, Replace(d, rare, z, ComplexKernel<float>::kHarmless));
      r = hn::AllFalse(d, rare) ? common : InDoubleWhere<HA>(d, rare, z, common);
    }
    static Complex<float> Rare(Complex<float> z) { return SingleKernel::Rare(z); }
  };
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_SINGLE_INL_H_
