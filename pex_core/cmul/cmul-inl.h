// Products of complex numbers with every product and every sum rounded.

#include "pex_core/_kernel/complex-inl.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE_CMUL_CMUL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_CMUL_CMUL_INL_H_
#undef PEX_CORE_CMUL_CMUL_INL_H_
#else
#define PEX_CORE_CMUL_CMUL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// a b, or a conj(b). Of two NaNs the first one's bits come out.
template <bool kConjugate, class V>
HWY_INLINE Complex<V> PlainProduct(Complex<V> a, Complex<V> b) {
  const V rr = HardwareMul(a.re, b.re), ii = HardwareMul(a.im, b.im);
  const V ri = HardwareMul(a.re, b.im), ir = HardwareMul(a.im, b.re);
  if constexpr (kConjugate) {
    return {HardwareAdd(rr, ii), HardwareSub(ir, ri)};
  } else {
    return {HardwareSub(rr, ii), HardwareAdd(ri, ir)};
  }
}

template <typename T, bool kConjugate>
struct PlainMul : ComplexKernel<T> {
  template <class D, class V>
  static HWY_INLINE void Main(D, Complex<V> a, Complex<V> b, Complex<V>& r) {
    r = PlainProduct<kConjugate>(a, b);
  }
};

#if HWY_TARGET != HWY_SSE4

// Numbers as they lie in memory, real parts in even lanes and imaginary ones in odd lanes.
//
// Doubles of a 256-bit vector move by the shuffles of integers, for which there are two ports.
template <class V>
HWY_INLINE V OddLanes(V v) {
  return hn::DupOdd(v);
}
template <class V>
HWY_INLINE V SwapLanes(V v) {
  return hn::Reverse2(hn::DFromV<V>(), v);
}
HWY_INLINE hn::Vec256<double> OddLanes(hn::Vec256<double> v) {
  return {_mm256_castsi256_pd(_mm256_shuffle_epi32(_mm256_castpd_si256(v.raw), 0xEE))};
}
HWY_INLINE hn::Vec256<double> SwapLanes(hn::Vec256<double> v) {
  return {_mm256_castsi256_pd(_mm256_shuffle_epi32(_mm256_castpd_si256(v.raw), 0x4E))};
}

#if HWY_TARGET == HWY_AVX3
HWY_INLINE hn::Vec512<double> OddLanes(hn::Vec512<double> v) {
  return {_mm512_permute_pd(v.raw, 0xFF)};
}
#endif

// A vector for more than one operation, which would be loaded for each of them otherwise.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> LoadOnce(D d, const T* from) {
  VecOf<D> v = hn::LoadU(d, from);
  __asm__("" : "+v"(v.raw));
  return v;
}

// Even lanes twice from memory, at any address: a load alone, as are odd lanes of floats. Compilers
// would load once and shuffle.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> EvenLanesFrom(D d, const T* from) {
  using Bytes = const char[hn::MaxLanes(D()) * sizeof(T)];
  VecOf<D> v = hn::Undefined(d);
  if constexpr (sizeof(T) == 4) {
    __asm__("vmovsldup %1, %0" : "=v"(v.raw) : "m"(*reinterpret_cast<Bytes*>(from)));
  } else {
    __asm__("vmovddup %1, %0" : "=v"(v.raw) : "m"(*reinterpret_cast<Bytes*>(from)));
  }
  return v;
}
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE VecOf<D> OddLanesFrom(D d, const T* from) {
  if constexpr (sizeof(T) == 4) {
    using Bytes = const char[hn::MaxLanes(D()) * sizeof(T)];
    VecOf<D> v = hn::Undefined(d);
    __asm__("vmovshdup %1, %0" : "=v"(v.raw) : "m"(*reinterpret_cast<Bytes*>(from)));
    return v;
  } else {
    return OddLanes(hn::LoadU(d, from));
  }
}

// a - b in even lanes and a + b in odd lanes, or the other way round; of two NaNs the first. Fused
// operations with 1, by which a product is exact, give what plain ones would.
template <bool kOther, class V>
HWY_INLINE V AlternateSum(V a, V b) {
  const hn::DFromV<V> d;
  using T = hn::TFromV<V>;
  const V one = hn::Set(d, T(1));
  if constexpr (kOther && sizeof(T) == 4) {
    __asm__("vfmsubadd213ps %2, %1, %0" : "+v"(a.raw) : "v"(one.raw), "v"(b.raw));
  } else if constexpr (kOther) {
    __asm__("vfmsubadd213pd %2, %1, %0" : "+v"(a.raw) : "v"(one.raw), "v"(b.raw));
  } else if constexpr (sizeof(V) < 64 && sizeof(T) == 4) {
    __asm__("vaddsubps %2, %1, %0" : "=x"(a.raw) : "x"(a.raw), "x"(b.raw));
  } else if constexpr (sizeof(V) < 64) {
    __asm__("vaddsubpd %2, %1, %0" : "=x"(a.raw) : "x"(a.raw), "x"(b.raw));
  } else if constexpr (sizeof(T) == 4) {
    __asm__("vfmaddsub213ps %2, %1, %0" : "+v"(a.raw) : "v"(one.raw), "v"(b.raw));
  } else {
    __asm__("vfmaddsub213pd %2, %1, %0" : "+v"(a.raw) : "v"(one.raw), "v"(b.raw));
  }
  return a;
}

// The products and sums of PlainProduct in the lanes of memory: of one factor each part twice, the
// other as it is and with its parts swapped. That takes 5 operations a vector, in single precision
// 4, and 6 with the parts apart.
template <typename Element, bool kConjugate>
struct InterleavedMul : PlainKernel<Element, 2> {
  using T = Element;
  static constexpr bool kMemoryBound = sizeof(T) == 8;
  static constexpr size_t kTogether = 2;
  template <class D, class V>
  static HWY_INLINE V Main(D, V a, V b) {
    if constexpr (hn::MaxLanes(D()) == 1) {
      return a;  // there are no half numbers
    } else if constexpr (kConjugate) {
      return Sum(HardwareMul(a, hn::DupEven(b)), HardwareMul(SwapLanes(a), OddLanes(b)));
    } else {
      return Sum(HardwareMul(hn::DupEven(a), b), HardwareMul(OddLanes(a), SwapLanes(b)));
    }
  }
  template <class D>
  static HWY_INLINE VecOf<D> MainFrom(D d, const T* from_a, const T* from_b) {
    if constexpr (kConjugate) {
      const VecOf<D> a = LoadOnce(d, from_a);
      return Sum(HardwareMul(a, EvenLanesFrom(d, from_b)),
                 HardwareMul(SwapLanes(a), OddLanesFrom(d, from_b)));
    } else {
      const VecOf<D> b = LoadOnce(d, from_b);
      return Sum(HardwareMul(EvenLanesFrom(d, from_a), b),
                 HardwareMul(OddLanesFrom(d, from_a), SwapLanes(b)));
    }
  }
  template <class V>
  static HWY_INLINE V Sum(V first, V second) {
    return AlternateSum<kConjugate>(first, second);
  }
};

#endif  // HWY_TARGET != HWY_SSE4

// a b, or a conj(b), for whole arrays.
template <typename T, bool kConjugate, class C>
HWY_INLINE int MapPlainMul(int32_t n, const C* a, const C* b, C* r) {
#if HWY_TARGET == HWY_SSE4
  return MapComplex<PlainMul<T, kConjugate>>(n, a, b, r);
#else
  return MapParts<InterleavedMul<T, kConjugate>>(n, a, b, r);
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_CMUL_CMUL_INL_H_
