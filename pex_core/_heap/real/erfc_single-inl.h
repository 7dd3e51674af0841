// The complementary error function and the normal distribution's tail in float, LA and EP, from the
// nearest point c = j/128 of a table, for z >= 0: with d = z - c, |d| <= 1/256,
//   erfc(z) = erfc(c) - s d F(2 q),  Q(z) = Q(c) - s/2 d 2 F(q),
// s the slope at c, F(w) = (1 - e^-w)/w and q = d (c + d/3). The table is scaled by 2^40, so that
// nothing underflows on the way.
// Largest errors: Erfc 1.82, CdfNorm 1.52 ulp; EP 13.9 and 15.4 bits.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/erf_tables.h"
#include "pex_core/_kernel/bits-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Vectors per group: EP has fewer values to keep.
template <bool kLA>
inline constexpr int kErfcSingleUnroll = kLA&& HWY_TARGET == HWY_AVX3 ? 6 : 8;

struct sErfcTail {
  static constexpr auto& kRows = kErfcSingleRows;
  static constexpr float kMean[] = {1, 2.0f / 3, 1.0f / 3};  // F(2 q) = .. - q (1 - q (.. - q ..))
};

struct sCdfNormTail {
  static constexpr auto& kRows = kCdfNormSingleRows;
  static constexpr float kMean[] = {2, 1.0f / 3, 1.0f / 12};
};

// The function of z from 2^-30 to the end of the table: to add 2^-30 keeps the products of tiny
// numbers from underflow.
template <class Tail, bool kLA, class D, class V, size_t K>
HWY_INLINE void sErfcFromTable(D d, const V (&z)[K], V (&s)[K]) {
  const V one = hn::Set(d, 1.0f), most = hn::Set(d, Tail::kMean[0]);
  SingleRows<D> rows[K];
  V c[K];
  for (size_t k = 0; k < K; ++k) {
    const V shifter = hn::Set(d, 0x1.8p16f);  // the sum ends in the number of 128ths
    const V sum = hn::Add(z[k], shifter);
    rows[k].Set(d, Bits(d, sum));
    c[k] = hn::Sub(sum, shifter);
  }
#pragma GCC unroll 8
  for (size_t k = 0; k < K; ++k) {
    const auto row = rows[k].Load(&Tail::kRows[0].value);
    const V dz = hn::Sub(z[k], c[k]);
    V mean;
    if constexpr (kLA) {
      const V q = hn::Mul(dz, hn::Add(c[k], hn::Mul(dz, hn::Set(d, 1.0f / 3))));
      const V high = hn::Sub(hn::Set(d, Tail::kMean[1]), hn::Mul(q, hn::Set(d, Tail::kMean[2])));
      mean = hn::Sub(most, hn::Mul(q, hn::Sub(one, hn::Mul(q, high))));
    } else {
      mean = hn::Sub(most, hn::Mul(dz, c[k]));
    }
    const V tail = hn::Sub(row.a, hn::Mul(hn::Mul(row.b, dz), mean));
    s[k] = hn::Mul(tail, hn::Set(d, 0x1p-40f));
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
