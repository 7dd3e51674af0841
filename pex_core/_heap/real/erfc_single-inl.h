// The complementary error function and the normal distribution function in float, LA and EP:
//   s(x) = e^(-x^2) h(x)  or  e^(-x^2/2) h(x),
// h by polynomials on intervals of a x + 1, two to an octave, the square in two parts.
// Largest errors: Erfc 1.86, CdfNorm 1.80 ulp; EP 11.83 bits.

#include "hwy/highway.h"
#include "pex_core/_heap/real/erfc_single_tables.h"
#include "pex_core/_heap/real/exp_single-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#undef PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// -z^2, or half of it, as n ln2/8 + r, |r| < ln2/16 or a little more; n in the low bits.
template <bool kLA, bool kHalf, class D, class V>
HWY_INLINE V sErfcExponent(D d, V z, BitsOf<D>& n) {
  const V shifter = hn::Set(d, 0x1.8p23f);
  const V factor = kHalf ? hn::Mul(z, hn::Set(d, 0.5f)) : z;
  const auto eighths_of = [&](V square) HWY_ATTR {
    const V shifted = hn::Sub(shifter, hn::Mul(square, hn::Set(d, 0x1.715476p+3f)));  // 8/ln2
    n = Bits(d, shifted);
    return hn::Sub(shifter, shifted);
  };
  if constexpr (kLA) {
    const Pair<V> square = TwoProduct(d, z, factor);
    const V eighths = eighths_of(square.hi);
    // ln2/8 in two parts, the first of 12 bits: its product is exact.
    const V head = hn::Sub(hn::Mul(eighths, hn::Set(d, 0x1.62ep-4f)), square.hi);
    return hn::Add(head, hn::Sub(hn::Mul(eighths, hn::Set(d, 0x1.0bfbe8p-18f)), square.lo));
  } else {
    const V square = hn::Mul(z, factor);
    return hn::Sub(hn::Mul(eighths_of(square), hn::Set(d, 0x1.62e43p-4f)), square);
  }
}

// s(z) for z from 2^-30 to the end of the table; kHalf: of half the square. In
//   s(z) = p (h(c) + (h(z) - h(c) + h(z) (e^r - 1))),
// p a power of 2^(1/8), the outer sum and product are the roundings that count, and only the
// product can come near the subnormal numbers.
template <const auto& kTable, bool kLA, bool kHalf, class D, class V, size_t K>
HWY_INLINE void sErfcTail(D d, const V (&z)[K], V (&s)[K]) {
  constexpr size_t kTop = sizeof(kTable) / sizeof(kTable[0]) - 1;
  constexpr float kStretch = kHalf ? kCdfNormStretch : kErfcStretch;
  BitsOf<D> j[K], n[K];
  V h[K], dz[K], r[K];
  for (size_t k = 0; k < K; ++k) {
    const V place = hn::Add(hn::Mul(z[k], hn::Set(d, kStretch)), hn::Set(d, 1.0f));
    j[k] = hn::ShiftRight<22>(Bits(d, place));
    dz[k] = hn::Sub(z[k], LookupEighth(d, kTable[0], j[k]));
    h[k] = LookupEighth(d, kTable[kTop], j[k]);
  }
  for (size_t i = kTop - 1; i > 1; --i) {
    for (size_t k = 0; k < K; ++k) {
      h[k] = hn::Mul(h[k], dz[k]);
      LookUpAfter(h[k], j[k]);
      h[k] = hn::Add(h[k], LookupEighth(d, kTable[i], j[k]));
    }
  }
  for (size_t k = 0; k < K; ++k) h[k] = hn::Mul(h[k], dz[k]);
  for (size_t k = 0; k < K; ++k) r[k] = sErfcExponent<kLA, kHalf>(d, z[k], n[k]);
  for (size_t k = 0; k < K; ++k) {
    const V r2 = hn::Mul(r[k], r[k]);
    V less_one;
    if constexpr (kLA) {
      const V high = hn::Add(hn::Set(d, kErfcExp[1]), hn::Mul(r[k], hn::Set(d, kErfcExp[2])));
      const V c = hn::Add(hn::Set(d, kErfcExp[0]), hn::Mul(r[k], high));
      const V rest = hn::Add(hn::Mul(r2, c), LookupEighth(d, kErfcEighthRests, n[k]));
      less_one = hn::Add(r[k], rest);
    } else {
      less_one = hn::Add(r[k], hn::Mul(r2, hn::Set(d, 0.5f)));
    }
    const V first = LookupEighth(d, kTable[1], j[k]);
    const V whole = hn::Add(first, h[k]);
    const V sum = kLA ? hn::Add(first, hn::Add(h[k], hn::Mul(whole, less_one)))
                      : hn::Add(whole, hn::Mul(whole, less_one));
    const V eighth = LookupEighth(d, kErfcEighths, n[k]);
    const auto octaves = hn::ShiftLeft<23>(hn::ShiftRight<3>(n[k]));
    s[k] = hn::Mul(FromBits(d, hn::Add(Bits(d, eighth), octaves)), sum);
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ERFC_SINGLE_INL_H_
