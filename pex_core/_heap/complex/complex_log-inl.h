// The logarithm of complex numbers in double precision, both parts as pairs, and which lanes its
// kernels take.

#include "hwy/highway.h"
#include "pex_core/_heap/complex/complex_vector-inl.h"
#include "pex_core/_heap/real/atan2_domain-inl.h"
#include "pex_core/_heap/real/atan_octant-inl.h"

#if defined(PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_INL_H_
#undef PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_INL_H_
#else
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Common lanes of the function F. kWide: parts from 2^-400 to 2^400 and zeros instead of 2^-124 to
// 2^124.
template <class F, bool kWide>
struct ComplexLogKernel : ElementaryKernel<F, double> {
  using Domain = std::conditional_t<kWide, Atan2Outside<double, 0x26F00000, 0x58EFFFFF>,
                                    Atan2Outside<double, 0x38300000, 0x47AFFFFF>>;
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return Domain::MayBeRare(d, z.im, z.re);
  }
};

// The lesser of two keys; of doubles' keys at most its high word.
template <class D>
HWY_INLINE BitsOf<D> LesserKey(D d, BitsOf<D> a, BitsOf<D> b) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return hn::Min(a, b);
#else
  (void)d;
  const hn::Repartition<int32_t, D> d32;
  return hn::BitCast(hn::RebindToSigned<D>(), hn::Min(hn::BitCast(d32, a), hn::BitCast(d32, b)));
#endif
}

// Next to 1, from 1 - 2^-21 to 1 + 2^-20, only the exact sum of x^2 + y^2 - 1 will do.
using OffOne = RareOutside<double, 0x3FEFFFFF, 0x3FF00000>;

template <class Range, class D, class V, size_t K>
HWY_INLINE bool AnyWithin(D d, const V (&s)[K]) {
  auto key = Range::Key(d, s[0]);
  for (size_t k = 1; k < K; ++k) key = LesserKey(d, key, Range::Key(d, s[k]));
  return !hn::AllTrue(d, KeyAbove(d, key, Range::kLimit));
}
template <class Range, class D, class V>
HWY_INLINE MaskOf<D> LanesBeyond(D d, V s) {
  return LanesAbove(d, Range::Key(d, s), Range::kLimit);
}

// What s lacks of x^2 + y^2, or 0 where that counts for nothing: its quotient by s may underflow.
template <class D, class V>
HWY_INLINE V RestThatCounts(D d, V s, V rest) {
  return hn::IfThenZeroElse(hn::Lt(hn::Abs(rest), hn::Mul(s, hn::Set(d, 0x1p-200))), rest);
}

// ln(x^2 + y^2) and the angle of (x, |y|), within 2^-56 of themselves. kExact: the angle off by
// less than 2^-59, for parts within 2^120 and 2^-120.
template <bool kWide, bool kExact = false, class D, class V, size_t K>
HWY_INLINE void ComplexLogPairs(D d, const Complex<V> (&z)[K], Pair<V> (&size)[K],
                                Pair<V> (&angle)[K]) {
  V s[K];
  Pair<V> t[K];
  LogShort<D> u[K];
  FullAtanOctant<V> octant[K];
  for (size_t k = 0; k < K; ++k) {
    octant[k] = FullAtanOctantOf(d, z[k].im, z[k].re);
    if constexpr (kExact) {
      // The quotient's rest counts 1/(1 + q^2) times.
      const Pair<V> q = octant[k].q;
      octant[k].q.lo = hn::Sub(q.lo, hn::Mul(q.lo, hn::Mul(q.hi, q.hi)));
    }
  }
  for (size_t k = 0; k < K; ++k) {
    const V ax = hn::Abs(z[k].re), ay = hn::Abs(z[k].im);
    const V more = hn::Max(ax, ay), less = hn::Min(ax, ay);
    const Pair<V> x2 = TwoProduct(d, more, more), y2 = TwoProduct(d, less, less);
    const Pair<V> sum = FastTwoSum(x2.hi, y2.hi);
    s[k] = sum.hi;
    t[k].lo = hn::Add(sum.lo, hn::Add(x2.lo, y2.lo));
    if constexpr (kWide) t[k].lo = RestThatCounts(d, s[k], t[k].lo);
  }
  LogShortReduce(d, s, u);
  for (size_t k = 0; k < K; ++k) {
    const auto power =
        hn::Add(hn::Sub(Bits(d, u[k].m), Bits(d, s[k])), SetBits(d, BitsOfNumber(1.0)));
    const Pair<V> product = TwoProduct(d, u[k].m, u[k].c);
    const V rest = hn::Mul(hn::Mul(t[k].lo, u[k].c), FromBits(d, power));
    // The difference is 0, or as large as the rest but for a bit that counts for nothing.
    t[k] = FastTwoSum(hn::Sub(product.hi, hn::Set(d, 1.0)), hn::Add(product.lo, rest));
  }
  if (AnyWithin<OffOne>(d, s)) [[unlikely]] {
    for (size_t k = 0; k < K; ++k) {
      const V ax = hn::Abs(z[k].re), ay = hn::Abs(z[k].im);
      const Pair<V> exact =
          Normalized(d, SquaresLessOne<Pair<V>>(d, hn::Max(ax, ay), hn::Min(ax, ay)));
      t[k] = Select(d, LanesBeyond<OffOne>(d, s[k]), t[k], exact);
    }
  }
  LogShortPair<kWide>(d, u, t, size);
  if constexpr (kExact) {
    ExactAtanOctantSum(d, octant, angle);
  } else {
    FullAtanOctantSum<kWide>(d, octant, angle);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_LOG_INL_H_
