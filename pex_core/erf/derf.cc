// The error function in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/erf/derf.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf-inl.h"
#include "pex_core/_heap/real/erf_series.h"
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

// (2/sqrt(pi))/s - 1 for the double s next to it.
constexpr double kErfSlopeRest = 0x1.f568818f505f6p-57;

// Zeros, numbers below 2^-256, whose powers can underflow, infinities and NaN, in one comparison. A
// group with such a lane is computed one vector at a time.
using TinyOrLarge = RareByMagnitude<RareOutside<double, 0x2FF00000, 0x7FEFFFFF>>;
constexpr bool kErfTinyIsRare = HWY_TARGET != HWY_AVX3;

struct dErfCommon : Kernel<double> {
  static constexpr int kUnroll = 6;
#if HWY_TARGET != HWY_AVX3
  using Rarity = TinyOrLarge;
#endif
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    return NotOrdinary(d, x);
  }
  static HWY_INLINE int Rare(double x, double* r) { return dErfRare(x, r); }
};

// EP and LA take c = j/128 next to |x|, so that a row is erf(c) and s alone, and the sum of b_n d^n
// in order of u = c d and v = d^2: A(u) + v B(u) + b v^2 + ..., A(u) = -u + 2/3 u^2 - 1/3 u^3 +
// 2/15 u^4, B(u) = -1/3 + 1/2 u - 2/5 u^2, b = 1/10.
template <class D>
using ErfRowOffsets = RowOffsets<16, D>;

// A step at a time where the registers are few and a computation waits for its own results.
template <class V, size_t K>
HWY_INLINE void EndStepOfFew([[maybe_unused]] V (&v)[K]) {
#if HWY_TARGET == HWY_AVX2
  EndStep(v);
#endif
}

template <class D, class V, size_t K, size_t N>
HWY_INLINE void HornerOfFew(D d, const V (&x)[K], const double (&c)[N], V (&p)[K]) {
#if HWY_TARGET == HWY_AVX2
  HornerInSteps(d, x, c, p);
#else
  Horner(d, x, c, p);
#endif
}

// For any x but infinities and NaN.
template <class D, class V, size_t K>
HWY_INLINE void Split(D d, const V (&x)[K], V (&c)[K], V (&dx)[K], ErfRowOffsets<D> (&row)[K]) {
  const V shifter = hn::Set(d, 0x1.8p45);  // the sum ends in the number of 128ths
  for (size_t k = 0; k < K; ++k) {
    dx[k] = hn::Min(hn::Abs(x[k]), hn::Set(d, (kErfRowCount - 1) / 128.0));
  }
  EndStepOfFew(dx);
  for (size_t k = 0; k < K; ++k) c[k] = hn::Add(dx[k], shifter);
  EndStepOfFew(c);
  for (size_t k = 0; k < K; ++k) row[k].Set(d, Bits(d, c[k]));
  for (size_t k = 0; k < K; ++k) c[k] = hn::Sub(c[k], shifter);
  EndStepOfFew(c);
  for (size_t k = 0; k < K; ++k) dx[k] = hn::Sub(dx[k], c[k]);
  EndStepOfFew(dx);
}

// d, or next to it a number whose powers do not underflow; d s is not made of it.
template <size_t K, class D, class V>
HWY_INLINE V Safe(D d, V dx) {
  constexpr bool kFit = kErfTinyIsRare && K > 1;
  return kFit ? dx : hn::Add(dx, hn::Set(d, 0x1p-300));
}

// erf(c) + d (s + s g).
template <class D, class V, size_t K>
HWY_INLINE void Assemble(D d, const ErfcRow* rows, const ErfRowOffsets<D> (&at)[K],
                         const V (&dx)[K], const V (&g)[K], const V (&x)[K], V (&out)[K]) {
  Row2<V> row[K];
  V y[K];
  for (size_t k = 0; k < K; ++k) row[k] = LoadRows2(d, &rows[0].value, at[k]);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(row[k].b, hn::Mul(row[k].b, g[k]));
  EndStepOfFew(y);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(row[k].a, hn::Mul(dx[k], y[k]));
  EndStepOfFew(y);
  for (size_t k = 0; k < K; ++k) out[k] = WithSign(d, y[k], x[k]);
}

// g = -u - v/3: at least 27.5 correct bits.
struct dErfEP : dErfCommon {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 8 : HWY_TARGET == HWY_AVX2 ? 2 : 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfRowOffsets<D> row[K];
    V c[K], dx[K], g[K];
    Split(d, x, c, dx, row);
    for (size_t k = 0; k < K; ++k) g[k] = hn::Mul(Safe<K>(d, dx[k]), hn::Set(d, -1.0 / 3));
    EndStepOfFew(g);
    for (size_t k = 0; k < K; ++k) g[k] = hn::Sub(g[k], c[k]);
    EndStepOfFew(g);
    for (size_t k = 0; k < K; ++k) g[k] = hn::Mul(g[k], Safe<K>(d, dx[k]));
    EndStepOfFew(g);
    Assemble(d, kErfShortRows, row, dx, g, x, out);
  }
};

// The series to the fourth power, economised: to within 2^-54 of the result.
struct dErfLA : dErfCommon {
  static constexpr double kA[] = {-0x1.ffffffffeacf6p-1, 0x1.5555555555555p-1,
                                  -0x1.5554d1eafd8f3p-2, 0x1.1110de800bc54p-3};
  static constexpr double kB[] = {-0x1.5555555555555p-2, 0x1.ffff3e7a892fbp-2,
                                  -0x1.999962543ab78p-2};
  static constexpr double kSquare = 0x1.999979c92a81p-4;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    ErfRowOffsets<D> row[K];
    V c[K], dx[K], u[K], v[K], a[K], b[K];
    Split(d, x, c, dx, row);
    for (size_t k = 0; k < K; ++k) u[k] = hn::Mul(c[k], Safe<K>(d, dx[k]));
    EndStepOfFew(u);
    for (size_t k = 0; k < K; ++k) v[k] = hn::Mul(Safe<K>(d, dx[k]), Safe<K>(d, dx[k]));
    EndStepOfFew(v);
    HornerOfFew(d, u, kA, a);
    HornerOfFew(d, u, kB, b);
    for (size_t k = 0; k < K; ++k) a[k] = hn::Mul(a[k], u[k]);
    EndStepOfFew(a);
    for (size_t k = 0; k < K; ++k) b[k] = hn::Add(b[k], hn::Mul(v[k], hn::Set(d, kSquare)));
    EndStepOfFew(b);
    for (size_t k = 0; k < K; ++k) a[k] = hn::Add(a[k], hn::Mul(b[k], v[k]));
    EndStepOfFew(a);
    Assemble(d, kErfPlainRows, row, dx, a, x, out);
  }
};

// From a point c of a table next to |x|: erf(c) + s d (1 + g). The sum of erf(c) and s d is kept
// with what its roundings leave, so that the result has one rounding; where c is 0, so is erf(c).
// g is a sum of Hermite polynomials by u = c d and y = 2 u^2 - d^2: -u + y/3 + u (2/3 u^2 - y/2) +
// y^2/10 - 4/15 u^4, economised, and the part of s that the table leaves out. What is neglected
// weighs less than a hundredth of an ulp; the largest error is 0.52 ulp.
//
// kWide: for any x but infinities, NaN and numbers, not zero, so small that the error of a product
// underflows; otherwise for |x| from 2^-256 to 6.
template <bool kWide>
struct dErfFine : Kernel<double> {
  static constexpr int kUnroll = 16;
  static constexpr int kRestUnroll = 4;
  template <class D>
  using Offsets = RowOffsets<sizeof(ErfPoint), D>;
  static HWY_INLINE int Rare(double x, double* r) { return dErfRare(x, r); }

  // The rows of all vectors are found first: they arrive while others' results are computed.
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    constexpr size_t kMost = HWY_TARGET == HWY_AVX2 ? 2 : 4;
    constexpr size_t kBlock = K < kMost ? K : K % kMost == 0 ? kMost : 1;
    static_assert(K % kBlock == 0);
    Offsets<D> at[K];
    V ax[K / kBlock][kBlock];
#pragma GCC unroll 16
    for (size_t k = 0; k < K; ++k) {
      V z = hn::Abs(x[k]);
      if constexpr (kWide) z = hn::Min(z, hn::Set(d, (kErfPointCount - 1) / 256.0));
      ax[k / kBlock][k % kBlock] = z;
      at[k].Set(d, Bits(d, hn::Add(z, hn::Set(d, 0x1.8p44))));  // ends in the number of 256ths
    }
#pragma GCC unroll 16
    for (size_t b = 0; b < K / kBlock; ++b) {
      FromRows(d, ax[b], at + b * kBlock, x + b * kBlock, out + b * kBlock);
    }
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void FromRows(D d, const V (&ax)[K], const Offsets<D>* at, const V* x, V* out) {
    const auto c = [&](int i) HWY_ATTR { return hn::Set(d, kErfFine[i]); };
    V value[K], slope[K], dx[K], u[K], u2[K], y[K], g[K];
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) {
      const auto row = LoadRows4(d, &kErfPoints[0].c, at[k]);
      value[k] = row.b;
      slope[k] = row.c;
      dx[k] = hn::Sub(ax[k], row.a);
      // d, or next to it a number whose powers do not underflow
      const V safe = kWide ? hn::Add(dx[k], hn::Set(d, 0x1p-300)) : dx[k];
      u[k] = hn::Mul(row.a, safe);
      y[k] = hn::Mul(safe, safe);
    }
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) u2[k] = hn::Mul(u[k], u[k]);
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) y[k] = hn::Sub(hn::Add(u2[k], u2[k]), y[k]);
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) {
      const V odd = hn::Add(c(0), hn::Mul(u2[k], hn::Add(c(4), hn::Mul(c(5), u[k]))));
      const V even = hn::Add(hn::Add(c(1), hn::Mul(c(2), u[k])), hn::Mul(c(3), y[k]));
      g[k] = hn::Add(hn::Mul(u[k], odd), hn::Add(hn::Mul(y[k], even), hn::Set(d, kErfSlopeRest)));
    }
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) {
      const V p = hn::Mul(slope[k], dx[k]);
      const V hi = hn::Add(value[k], p);
      const V over = Remainder(d, hn::Sub(hi, value[k]), slope[k], dx[k]);
      out[k] = WithSign(d, hn::Add(hi, hn::Sub(hn::Mul(p, g[k]), over)), x[k]);
    }
  }
};

struct dErfWide : dErfFine<true> {
  template <class D, class V>
  static HWY_INLINE MaskOf<D> IsRare(D d, V x) {
    const auto magnitude = Bits(d, hn::Abs(x));
    const auto least = SetBits(d, BitsOfNumber(0x1p-900));
    const auto tiny = hn::AndNot(hn::Eq(magnitude, SetBits(d, 0)), hn::Lt(magnitude, least));
    const auto special = hn::Gt(magnitude, SetBits(d, 0x7FEFFFFFFFFFFFFF));
    return hn::RebindMask(d, hn::Or(tiny, special));
  }
};

struct dErfHA : dErfFine<false> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  using Rarity = RareByMagnitude<RareOutside<double, 0x2FF00000, 0x4017FFFF>>;
  using Wide = dErfWide;
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
