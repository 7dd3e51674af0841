// The natural logarithm of complex numbers in single precision. LA and EP compute in floats.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/cln/cln.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/complex/complex_log_single-inl.h"
#include "pex_core/_heap/real/slog-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

using SingleLnHA = LogInDouble<ComplexLn>;

// less/more, and its square without underflow.
template <class D, class V>
HWY_INLINE void TangentOf(D d, Complex<V> z, V& t, V& square) {
  const BySize<V> part = SortedBySize(d, z);
  t = hn::Div(part.less, part.more);
  const V tame = hn::Max(t, hn::Set(d, 0x1p-30f));
  square = hn::Mul(tame, tame);
}

// arg z from the angle of less/more.
template <class D, class V>
HWY_INLINE V TurnedAngle(D d, Complex<V> z, V angle) {
  const AngleTurn<V> turn = TurnOf(d, z);
  const V from = hn::Mul(turn.quarters, hn::Set(d, 0x1.921fb6p+0f));
  return hn::CopySignToAbs(hn::Add(from, hn::Xor(angle, turn.sign)), z.im);
}

// Magnitudes from 2^-51 below 2^51, of which one may be 0: no square leaves the normal numbers, nor
// does the rest of one the subnormal ones.
struct SingleLnRange {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> MayBeRare(D d, Complex<V> z) {
    return KeyAbove(d, Key(d, SortedBySize(d, z)), kHigh);
  }
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, Complex<V> z) {
    BySize<V> part = SortedBySize(d, z);
    const auto zero = hn::RebindMask(d, hn::Eq(Bits(d, part.less), SetBits(d, 0)));
    part.less = hn::IfThenElse(zero, part.more, part.less);
    return LanesAbove(d, Key(d, part), kHigh);
  }

 private:
  static constexpr int32_t kLow = BitsOfNumber(0x1p-51f), kHigh = BitsOfNumber(0x1p51f) - 1;
  template <class D, class V>
  static HWY_INLINE BitsOf<D> Key(D d, BySize<V> part) {
    return hn::Max(Bits(d, part.more), hn::Sub(SetBits(d, kLow + kHigh), Bits(d, part.less)));
  }
};

// The real part from x^2 + y^2 with what its roundings leave, good to 2^-48 where it is near 1;
// where too little of the logarithm would be correct, both parts are computed like HA's. Largest
// error seen 2.35 ulp.
struct SingleLnLA : SingleLnRange {
  static constexpr int kUnroll = 4;
  // A step at a time for all vectors.
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    V size[K], angle[K];
    LogSquare(d, z, size);
    Angle(d, z, angle);
    auto delicate = MagnitudeBelow(d, size[0], kDelicate);
    for (size_t i = 1; i < K; ++i) {
      delicate = hn::Or(delicate, MagnitudeBelow(d, size[i], kDelicate));
    }
    for (size_t i = 0; i < K; ++i) {
      r[i] = {hn::Mul(size[i], hn::Set(d, 0.5f)), TurnedAngle(d, z[i], angle[i])};
    }
    if (!hn::AllFalse(d, delicate)) [[unlikely]] {
      for (size_t i = 0; i < K; ++i) {
        r[i] = InDoubleWhere<SingleLnHA>(d, MagnitudeBelow(d, size[i], kDelicate), z[i], r[i]);
      }
    }
  }

 private:
  static constexpr float kDelicate = 0x1p-25f;

  // 0 in place of a rest below s 2^-60: neither its quotient by s nor the square of that
  // underflows.
  template <class D, class V>
  static HWY_INLINE V Tamed(D d, V rest, V s) {
    const auto raised = hn::Add(Bits(d, hn::Abs(rest)), SetBits(d, 60 << 23));
    return hn::IfThenZeroElse(hn::RebindMask(d, hn::Lt(raised, Bits(d, s))), rest);
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void LogSquare(D d, const Complex<V> (&z)[K], V (&size)[K]) {
    V s[K], rest[K];
    for (size_t i = 0; i < K; ++i) {
      const BySize<V> part = SortedBySize(d, z[i]);
      const Pair<V> more = TwoProduct(d, part.more, part.more);
      const Pair<V> less = TwoProduct(d, part.less, part.less);
      const Pair<V> sum = FastTwoSum(more.hi, less.hi);
      s[i] = sum.hi;
      rest[i] = Tamed(d, hn::Add(sum.lo, hn::Add(more.lo, less.lo)), sum.hi);
    }
    for (size_t i = 0; i < K; ++i) {
      const auto u = sLogReduce(d, s[i]);
      const auto point = sLogNextPoint(d, u.m);
      const V scale = FromBits(d, hn::Sub(SetBits(d, BitsOfNumber(1.0f)), u.exponent_bits));
      const V t = hn::Add(hn::Sub(u.m, point.a), hn::Mul(rest[i], scale));
      size[i] = sLogLASum<sNaturalLog>(d, u.scaled, t, point.row);
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void Angle(D d, const Complex<V> (&z)[K], V (&angle)[K]) {
    V t[K], square[K], p[K];
    for (size_t i = 0; i < K; ++i) {
      TangentOf(d, z[i], t[i], square[i]);
    }
    Horner(d, square, kAtanUnitSingleLA, p);
    for (size_t i = 0; i < K; ++i) p[i] = hn::Add(hn::Mul(p[i], square[i]), hn::Set(d, 1.0f));
    for (size_t i = 0; i < K; ++i) angle[i] = hn::Mul(t[i], p[i]);
  }
};

// Better than 2^-11 of the modulus. ln z is small near 1 alone, where the real part of z alone is
// near 1: there x^2 - 1 is formed of factors, and the error is that of (x - 1, y) in floats.
struct SingleLnEP : SingleLnRange {
  static constexpr int kUnroll = 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const Complex<V> (&z)[K], Complex<V> (&r)[K]) {
    const V one = hn::Set(d, 1.0f);
    V size[K], t[K], square[K], p[K];
    for (size_t i = 0; i < K; ++i) {
      const BySize<V> part = SortedBySize(d, z[i]);
      const V less2 = hn::Mul(part.less, part.less);
      const auto u = sLogReduce(d, hn::Add(hn::Mul(part.more, part.more), less2));
      const V factors = hn::Mul(hn::Sub(part.more, one), hn::Add(part.more, one));
      // Cut off at 2^-43, for no square of it shall underflow.
      const V cut = hn::Set(d, 0x1p-20f);
      const V sum = hn::Sub(hn::Add(hn::Add(factors, less2), cut), cut);
      const auto near = hn::RebindMask(d, hn::Eq(u.exponent_bits, SetBits(d, 0)));
      const V above_one = hn::IfThenElse(near, sum, hn::Sub(u.m, one));
      size[i] = sLogEPSum<sNaturalLog>(d, u.scaled, above_one);
    }
    for (size_t i = 0; i < K; ++i) {
      TangentOf(d, z[i], t[i], square[i]);
    }
    Horner(d, square, kAtanUnitSingleEP, p);
    for (size_t i = 0; i < K; ++i) {
      r[i] = {hn::Mul(size[i], hn::Set(d, 0.5f)), TurnedAngle(d, z[i], hn::Mul(t[i], p[i]))};
    }
  }
};

int cLn_HA(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleLnHA>(n, a, r);
}
int cLn_11(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleKernel<SingleLnHA, SingleLnEP>>(n, a, r);
}
int cLn_21(int32_t n, const PexComplex8* a, PexComplex8* r) {
  return MapComplex<SingleKernel<SingleLnHA, SingleLnLA>>(n, a, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(cLn_11);
HWY_EXPORT(cLn_21);
HWY_EXPORT(cLn_HA);
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn_11, cLn_11)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn_21, cLn_21)
PEX_EXPORT_COMPLEX_UNARY(PexComplex8, PexComplex8, ControlGuard, cLn_HA, cLn_HA)
}  // namespace pex
#endif
