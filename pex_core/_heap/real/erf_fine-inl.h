// The complementary error function and the normal distribution function in double, up to LA, from
// the nearest point c = j/256 of a table of the function f and its derivative s:
//   f(x) = f(c) + s d T,  d = x - c,
// T that of erfc-inl.h, in w = d (x + c) and v = d^2: for the normal distribution, in their halves.
// LA by the quotient of erf_quotient-inl.h.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_polynomials.h"
#include "pex_core/_heap/real/erf_quotient-inl.h"
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
  static constexpr auto& kMeanShort = kErfcFineMeanShort;
  static constexpr auto& kMeanEP = kErfcFineMeanEP;
  static constexpr auto& kRatio = kErfcFineRatio;
  static constexpr double kSquare = 1.0 / 6;
  static constexpr double kWhole = 2, kFourth = 1.0 / 120;
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
  static constexpr auto& kMeanShort = kCdfNormMeanShort;
  static constexpr auto& kMeanEP = kCdfNormMeanEP;
  static constexpr auto& kRatio = kCdfNormRatio;
  static constexpr double kSquare = 1.0 / 12;
  static constexpr double kWhole = 4, kFourth = 1.0 / 960;
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

// Of x within the table: c and the offset of its row. To add 2^-150 keeps the products of tiny
// numbers from underflow and changes nothing else. The sum is 0 or no less than 2^-203, next to
// -2^-150, and has four powers.
template <class Function, class D, class V>
HWY_INLINE void FinePoint(D d, V x, V& safe, V& c, RowOffsets<sizeof(ErfcRow), D>& at) {
  safe = hn::Add(x, hn::Set(d, 0x1p-150));
  // The sum ends in the number of the row.
  const V shifter = hn::Set(d, 0x1.8p44 + Function::kFirst / 256.0);
  const V sum = hn::Add(safe, shifter);
  at.Set(d, Bits(d, sum));
  c = hn::Sub(sum, shifter);
}

// Results within 2^-40, which are tried for a rounding in doubt.
template <class Function, class D, class V, size_t K>
HWY_INLINE void FromFineRowsShort(D d, const V (&x)[K], V (&y)[K]) {
  constexpr auto& kMean = Function::kMeanShort;
  V safe[K], c[K], w[K], v[K];
  Row2<V> row[K];
  RowOffsets<sizeof(ErfcRow), D> at[K];
  for (size_t k = 0; k < K; ++k) FinePoint<Function>(d, x[k], safe[k], c[k], at[k]);
  for (size_t k = 0; k < K; ++k) row[k] = LoadRows2(d, &Function::kRows[0].value, at[k]);
  for (size_t k = 0; k < K; ++k) {
    const V dx = hn::Sub(safe[k], c[k]);
    w[k] = hn::Mul(dx, hn::Add(safe[k], c[k]));
    v[k] = hn::Mul(dx, dx);
    row[k].b = hn::Mul(row[k].b, dx);
  }
  for (size_t k = 0; k < K; ++k) {
    V p = hn::Set(d, kMean[3]);
    for (size_t i = 3; i-- > 0;) p = HiddenMulAdd(w[k], p, hn::Set(d, kMean[i]));
    const V mean = HiddenMulAdd(w[k], p, hn::Set(d, 1.0));
    const V t = HiddenMulAdd(mean, hn::Mul(v[k], hn::Set(d, Function::kSquare)), mean);
    y[k] = HiddenMulAdd(row[k].b, t, row[k].a);
  }
}

// EP's and LA's results of some vectors, in the parts of SomeInTurn.
template <class Function, ErfcTier kTier, class D, size_t K>
struct FineResults {
  using V = VecOf<D>;
  static constexpr size_t kSize = K;
  const RowOffsets<sizeof(ErfcRow), D>* at;
  V c[K], value[K], w[K], v[K], t[K];  // t: s d, then s d T

  static HWY_INLINE V Set(double z) { return hn::Set(D(), z); }

  HWY_INLINE void Reduce(const V* x) {
    for (size_t k = 0; k < K; ++k) {
      const auto row = LoadRows2(D(), &Function::kRows[0].value, at[k]);
      const V dx = hn::Sub(x[k], c[k]);
      w[k] = hn::Mul(dx, hn::Add(x[k], c[k]));
      const double factor = kTier == ErfcTier::kLA ? Function::kWhole : Function::kSquare;
      v[k] = hn::Mul(dx, hn::Mul(dx, Set(factor)));
      value[k] = row.a;
      t[k] = hn::Mul(row.b, dx);
    }
    EndStep(w);
    EndStep(v);
    EndStep(t);
  }

  HWY_INLINE void Evaluate() {
    if constexpr (kTier == ErfcTier::kLA) {
      AddendsOfQuotient<Function>(D(), w, v);
      for (size_t k = 0; k < K; ++k) {
        const V whole = Set(Function::kWhole);
        t[k] = hn::Div(hn::Mul(t[k], hn::Add(v[k], whole)), hn::Add(w[k], whole));
      }
    } else {
      V r[K];
      // The mean and the ratio's small part, without their product: 2^-28 of the result.
      HornerInSteps(D(), w, Function::kMeanEP, r);
      for (size_t k = 0; k < K; ++k) t[k] = hn::Mul(t[k], hn::Add(r[k], v[k]));
    }
    EndPart(t);
  }

  HWY_INLINE void Result(const V*, V* y) const {
    for (size_t k = 0; k < K; ++k) y[k] = hn::Add(value[k], t[k]);
  }
};

// The rows of all vectors are found first: they arrive while others' results are computed.
template <class Function, ErfcTier kTier, class D, class V, size_t K>
HWY_INLINE void FromFineRows(D d, const V (&x)[K], V (&y)[K]) {
  constexpr size_t kBlock = K < 4 ? K : 1;
  RowOffsets<sizeof(ErfcRow), D> at[K];
  FineResults<Function, kTier, D, kBlock> parts[K / kBlock];
  V safe[K];
#pragma GCC unroll 16
  for (size_t k = 0; k < K; ++k) {
    auto& part = parts[k / kBlock];
    FinePoint<Function>(d, x[k], safe[k], part.c[k % kBlock], at[k]);
    if (k % kBlock == 0) part.at = at + k;
  }
  SomeInTurn(parts, safe, y);
}

// The kernels of EP and LA in double precision; where the function is flat (Wide) its arguments are
// clamped.
template <class Function, ErfcTier kTier, int (*kRare)(double, double*), bool kBeyond = false>
struct FineShort : Kernel<double> {
  static constexpr int kUnroll = 8;
  static constexpr int kRestUnroll = 4;
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
