// The complementary error function and the normal distribution in float. LA from the nearest point
// c = j/128 of a table: with d = z - c, |d| <= 1/256,
//   erfc(z) = erfc(c) - s d F(2 q),  Q(z) = Q(c) - s/2 d 2 F(q),
// Q(z) the distribution at -z, s the slope at c, F(w) = (1 - e^-w)/w and q = d (c + d/3). The table
// is scaled by 2^40, so that nothing underflows on the way. EP by lines of the distance from where
// the function is flat.
// Largest errors seen: Erfc 1.82, CdfNorm 1.56 ulp; EP 11.48 and 12.29 bits.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_fine-inl.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The tables serve arguments from kFlat, up or down, for a distance below kFar (bits), that of a
// Wide kernel from kWideFlat.
struct sErfcTail {
  static constexpr auto& kRows = kErfcSingleRows;
  static constexpr auto& kLines = kErfcLinearRows;
  static constexpr int kFirst = kErfcSingleFirst;
  static constexpr float kMean[] = {1, 2.0f / 3, 1.0f / 3};  // F(2 q) = .. - q (1 - q (.. - q ..))
  static constexpr float kFlat = -4, kWideFlat = -245;
  static constexpr bool kUp = true;
  static constexpr int32_t kFar = 0x4152E148, kWideFar = 0x437E3000;  // 13.18 and 254.1875
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Max(x, hn::Set(d, kFlat));
  }
};

struct sCdfNormTail {
  static constexpr auto& kRows = kCdfNormSingleRows;
  static constexpr auto& kLines = kCdfNormLinearRows;
  static constexpr int kFirst = kCdfNormSingleFirst;
  static constexpr float kMean[] = {2, 1.0f / 3, 1.0f / 12};
  static constexpr float kFlat = 6, kWideFlat = 242;
  static constexpr bool kUp = false;
  static constexpr int32_t kFar = 0x4197851F, kWideFar = 0x437EF1EC;  // 18.94 and 254.945
  template <class D, class V>
  static HWY_INLINE V Clamped(D d, V x) {
    return hn::Min(x, hn::Set(d, kFlat));
  }
};

template <class Tail, bool kBeyond>
using sErfcRarity = RareByDistance<float, kBeyond ? Tail::kWideFlat : Tail::kFlat, Tail::kUp,
                                   kBeyond ? Tail::kWideFar : Tail::kFar>;

template <class Tail, class D, class V, size_t K>
HWY_INLINE void sErfcByLines(D d, const V (&x)[K], V (&y)[K]) {
  SingleRows<D> rows[K];
  V t[K];
  for (size_t k = 0; k < K; ++k) {
    t[k] = sErfcRarity<Tail, false>::Distance(d, x[k]);
    // The sum ends in the number of 256ths.
    rows[k].Set(d, Bits(d, hn::Add(t[k], hn::Set(d, 0x1.8p15f))));
  }
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    const auto row = rows[k].Load(&Tail::kLines[0].value);
    y[k] = hn::Sub(row.a, hn::Mul(row.b, t[k]));
  }
}

// To add 2^-30 keeps the products of tiny numbers from underflow.
template <class Tail, class D, class V, size_t K>
HWY_INLINE void sErfcFromTable(D d, const V (&x)[K], V (&y)[K]) {
  const V one = hn::Set(d, 1.0f), most = hn::Set(d, Tail::kMean[0]);
  const V least = hn::Set(d, 0x1p-30f);
  SingleRows<D> rows[K];
  V z[K], c[K];
  for (size_t k = 0; k < K; ++k) {
    z[k] = Tail::kUp ? hn::Add(x[k], least) : hn::Sub(least, x[k]);
    // The sum ends in the number of the row.
    const V shifter = hn::Set(d, 0x1.8p16f + Tail::kFirst / 128.0f);
    const V sum = hn::Add(z[k], shifter);
    rows[k].Set(d, Bits(d, sum));
    c[k] = hn::Sub(sum, shifter);
  }
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    const auto row = rows[k].Load(&Tail::kRows[0].value);
    const V dz = hn::Sub(z[k], c[k]);
    const V q = hn::Mul(dz, hn::Add(c[k], hn::Mul(dz, hn::Set(d, 1.0f / 3))));
    const V high = hn::Sub(hn::Set(d, Tail::kMean[1]), hn::Mul(q, hn::Set(d, Tail::kMean[2])));
    const V mean = hn::Sub(most, hn::Mul(q, hn::Sub(one, hn::Mul(q, high))));
    const V tail = hn::Sub(row.a, hn::Mul(hn::Mul(row.b, dz), mean));
    y[k] = hn::Mul(tail, hn::Set(d, 0x1p-40f));
  }
}

// The kernels of LA and EP; where the function is flat (Wide) its arguments are clamped.
template <class Tail, bool kLA, int (*kRare)(float, float*), bool kBeyond = false>
struct sErfcShort : Kernel<float> {
  static constexpr int kUnroll = kLA && HWY_TARGET == HWY_AVX3 ? 6 : 8;
  using Rarity = sErfcRarity<Tail, kBeyond>;
  static HWY_INLINE int Rare(float x, float* r) { return kRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V inner[K];
    for (size_t k = 0; k < K; ++k) inner[k] = kBeyond ? Tail::Clamped(d, x[k]) : x[k];
    if constexpr (kLA) {
      sErfcFromTable<Tail>(d, inner, out);
    } else {
      sErfcByLines<Tail>(d, inner, out);
    }
  }
};

template <class Tail, bool kLA, int (*kRare)(float, float*)>
struct sErfcKernel : sErfcShort<Tail, kLA, kRare> {
  using Wide = sErfcShort<Tail, kLA, kRare, true>;
};

// Correctly rounded for all floats: within 2^-40 from the rows in double precision, by Full::Of
// where that leaves the rounding open.
template <class Tail, class Fine, int (*kRare)(float, float*), class Full, bool kBeyond = false>
struct sErfcAccurate : Kernel<float, double> {
  static constexpr int kUnroll = HWY_TARGET == HWY_AVX3 ? 4 : 6;
  using Rarity = sErfcRarity<Tail, kBeyond>;
  static HWY_INLINE int Rare(float x, float* r) { return kRare(x, r); }
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    const hn::Rebind<double, D> dd;
    V a[K];
    VecOf<hn::Rebind<double, D>> wide[K], y[K];
    for (size_t k = 0; k < K; ++k) {
      a[k] = x[k];
      wide[k] = hn::PromoteTo(dd, kBeyond ? Tail::Clamped(d, x[k]) : x[k]);
    }
    FromFineRowsShort<Fine>(dd, wide, y);
    const bool open = AnyRoundingInDoubt<14>(dd, y);
    for (size_t k = 0; k < K; ++k) out[k] = hn::DemoteTo(d, y[k]);
    if (open) [[unlikely]] {
      for (size_t k = 0; k < K; ++k) out[k] = Full::Of(d, a[k]);
    }
  }
};

template <class Tail, class Fine, int (*kRare)(float, float*), class Full>
struct sErfcAccurateKernel : sErfcAccurate<Tail, Fine, kRare, Full> {
  using Wide = sErfcAccurate<Tail, Fine, kRare, Full, true>;
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
