// The complementary error function and the normal distribution function in double, up to LA, from
// the nearest point c = j/256 of a table of the function f and its derivative s:
//   f(x) = f(c) + s d T,  d = x - c,
// T that of erfc-inl.h, by polynomials in w = d (x + c) and v = d^2: for the normal distribution,
// of their halves.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_heap/real/erfc-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERF_FINE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERF_FINE_INL_H_
#undef PEX_CORE__HEAP_REAL_ERF_FINE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERF_FINE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// What the table serves, and a part of it that ends beyond `kFlat`, where the function is flat.
struct ErfcFine {
  static constexpr auto& kRows = kErfcFineRows;
  static constexpr int kFirst = kErfcFineFirst;
  static constexpr auto& kMean = kErfcFineMean;
  static constexpr auto& kMeanShort = kErfcFineMeanShort;
  static constexpr auto& kMeanEP = kErfcFineMeanEP;
  static constexpr auto& kRatio = kErfcFineRatio;
  static constexpr double kSquare = 1.0 / 6, kFourth = 1.0 / 60;
  // From -6 to 25.9. Beyond, the result is 2 (Wide) or less than 2^-973 (rare): 4094.9 and 31.9.
  template <bool kBeyond>
  using Rarity =
      RareByDistance<double, kBeyond ? -4069.0 : -6.0, true, kBeyond ? 0x40AFFDCE : 0x403FE666>;
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Max(x, hn::Set(d, -6.0));
  }
};

struct CdfNormFine {
  static constexpr auto& kRows = kCdfNormRows;
  static constexpr int kFirst = kCdfNormFirst;
  static constexpr auto& kMean = kCdfNormMean;
  static constexpr auto& kMeanShort = kCdfNormMeanShort;
  static constexpr auto& kMeanEP = kCdfNormMeanEP;
  static constexpr auto& kRatio = kCdfNormRatio;
  static constexpr double kSquare = 1.0 / 12, kFourth = 1.0 / 240;
  // From -36.65 to 8.65. Beyond, the result is 1 (Wide) or less than 2^-978 (rare): 8189.65
  // and 45.3.
  template <bool kBeyond>
  using Rarity =
      RareByDistance<double, kBeyond ? 8153.0 : 8.65, false, kBeyond ? 0x40BFFDA6 : 0x4046A666>;
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Min(x, hn::Set(d, 8.5));
  }
};

// For x within the table. To add 2^-150 keeps the products of tiny numbers from underflow and
// changes nothing else. The sum is 0 or no less than 2^-203, next to -2^-150, and has four powers.
template <class Function, ErfcTier kTier, class D, class V, size_t K>
HWY_INLINE void FromFineRows(D d, const V (&x)[K], V (&y)[K]) {
  V safe[K], c[K], w[K], w2[K], v[K], t[K];
  Row2<V> row[K];
  RowOffsets<sizeof(ErfcRow), D> at[K];
  for (size_t k = 0; k < K; ++k) {
    safe[k] = hn::Add(x[k], hn::Set(d, 0x1p-150));
    // The sum ends in the number of the row.
    const V shifter = hn::Set(d, 0x1.8p44 + Function::kFirst / 256.0);
    const V sum = hn::Add(safe[k], shifter);
    at[k].Set(d, Bits(d, sum));
    c[k] = hn::Sub(sum, shifter);
  }
  for (size_t k = 0; k < K; ++k) row[k] = LoadRows2(d, &Function::kRows[0].value, at[k]);
  for (size_t k = 0; k < K; ++k) {
    const V dx = hn::Sub(safe[k], c[k]);
    w[k] = hn::Mul(dx, hn::Add(safe[k], c[k]));
    if constexpr (kTier != ErfcTier::kShort) w2[k] = hn::Mul(w[k], w[k]);
    v[k] = hn::Mul(dx, dx);
    row[k].b = hn::Mul(row[k].b, dx);
  }
  if constexpr (kTier == ErfcTier::kShort) {
    // Its results are tried for a rounding in doubt.
    constexpr auto& kMean = Function::kMeanShort;
    for (size_t k = 0; k < K; ++k) {
      V p = hn::Set(d, kMean[3]);
      for (size_t i = 3; i-- > 0;) p = HiddenMulAdd(w[k], p, hn::Set(d, kMean[i]));
      const V mean = HiddenMulAdd(w[k], p, hn::Set(d, 1.0));
      t[k] = HiddenMulAdd(mean, hn::Mul(v[k], hn::Set(d, Function::kSquare)), mean);
      y[k] = HiddenMulAdd(row[k].b, t[k], row[k].a);
    }
    return;
  }
  if constexpr (kTier == ErfcTier::kLA) {
    EvenOdd(d, w, w2, Function::kMean, t);
  } else {
    EvenOdd(d, w, w2, Function::kMeanEP, t);
  }
  for (size_t k = 0; k < K; ++k) {
    V ratio = hn::Set(d, Function::kSquare);
    if constexpr (kTier == ErfcTier::kLA) {
      ratio =
          hn::Add(Horner(d, w2[k], Function::kRatio), hn::Mul(v[k], hn::Set(d, Function::kFourth)));
    }
    const V mean = hn::Add(hn::Set(d, 1.0), hn::Mul(w[k], t[k]));
    t[k] = hn::Add(mean, hn::Mul(mean, hn::Mul(v[k], ratio)));
    y[k] = hn::Add(row[k].a, hn::Mul(row[k].b, t[k]));
  }
}

// The kernels of EP and LA in double precision; where the function is flat (Wide) its arguments are
// clamped.
template <class Function, ErfcTier kTier, int (*kRare)(double, double*), bool kBeyond = false>
struct FineShort : Kernel<double> {
  static constexpr int kUnroll = 6;
  using Rarity = typename Function::template Rarity<kBeyond>;
  static HWY_INLINE int Rare(double x, double* r) { return kRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    if constexpr (kBeyond) {
      V inner[K];
      for (size_t k = 0; k < K; ++k) inner[k] = Function::Clamped(d, x[k]);
      FromFineRows<Function, kTier>(d, inner, out);
    } else {
      FromFineRows<Function, kTier>(d, x, out);
    }
  }
};

template <class Function, ErfcTier kTier, int (*kRare)(double, double*)>
struct FineKernel : FineShort<Function, kTier, kRare> {
  using Wide = FineShort<Function, kTier, kRare, true>;
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERF_FINE_INL_H_
