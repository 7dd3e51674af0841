// The HA kernel of Atan in double precision: atan(a) = angle + atan(t), t = (a - c)/(1 + c a),
// angle = atan(c), with breakpoints c so near to each other that t is at most 1/64 of a, and the
// roundings of 1 + c a and of the quotient count for little.

#include "hwy/highway.h"
#include "pex_core/_heap/real/atan_polynomials.h"
#include "pex_core/_heap/real/atan_tables.h"
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/atan/atan_plain-inl.h"

#if defined(PEX_CORE_ATAN_ATAN_FINE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_ATAN_ATAN_FINE_INL_H_
#undef PEX_CORE_ATAN_ATAN_FINE_INL_H_
#else
#define PEX_CORE_ATAN_ATAN_FINE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// In three parts: below 0.55 ulp (0.5305 seen).
template <class D, size_t kVectors>
struct AtanFinePart {
  using V = VecOf<D>;
  static constexpr size_t kSize = kVectors;
  V t[kVectors], angle[kVectors];

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    // From the row below 2^-7 to the one of 2^6.
    constexpr double kFirst = 0x1.f8p-8, kLast = 0x1p6;
    constexpr size_t kFirstByte = static_cast<size_t>(BitsOfNumber(kFirst) >> 43);
    for (size_t k = 0; k < kVectors; ++k) {
      const V a = hn::Abs(x[k]);
      const V within = hn::Min(hn::Max(a, hn::Set(d, kFirst)), hn::Set(d, kLast));
      RowOffsets<16, D, kFirstByte> offsets;
      offsets.SetBytes(hn::And(ShiftBitsRight<43>(d, within), SetBits(d, ~uint64_t{15})));
      const Row2<V> row = LoadRows2(d, kAtanFineRows[0], offsets);
      // The difference is exact.
      t[k] = hn::Div(hn::Sub(a, row.a), hn::Add(hn::Mul(row.a, a), hn::Set(d, 1.0)));
      angle[k] = row.b;
    }
    EndPart(t);
  }
  HWY_INLINE void Evaluate() { AtanSeries<kAtanFineHA>(D(), t); }
  HWY_INLINE void Result(const V* x, V* r) const {
    for (size_t k = 0; k < kVectors; ++k) {
      r[k] = hn::CopySignToAbs(hn::Add(angle[k], t[k]), x[k]);
    }
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_ATAN_ATAN_FINE_INL_H_
