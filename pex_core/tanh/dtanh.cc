// The hyperbolic tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tanh/dtanh.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/erf_rows-inl.h"
#include "pex_core/_heap/real/hyperbolic-inl.h"
#include "pex_core/_heap/real/tanh_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"
#include "pex_core/tanh/tanh_rare.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTanh";

template <class Groups = LargeGroups<double>>
struct dTanhCommon : Groups {
  using Rarity = RareAbove<double, 0x7FEFFFFF>;  // infinities and NaN
  static HWY_INLINE int Rare(double x, double* r) { return TanhRare(x, r); }
};

// Points and h in one part: the offsets of the points are below 2^-34.
struct dTanhEP : dTanhCommon<> {
  static constexpr HalfVectors kHalfVectors = HalfVectors::kAtEnd;
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    V half_power[K], h[K];
    for (size_t k = 0; k < K; ++k) {
      const V m = TanhMagnitude(d, x[k]);
      const auto [step, number] = ToNearestStep(d, m, 0x1.71547652b82fep+4);
      const auto power = EighthLookup<D>(step).template Pattern<dHyperbolicTangentGrow>();
      half_power[k] = FromBits(d, hn::Add(power, hn::ShiftLeft<49>(step)));
      h[k] = hn::Sub(m, hn::Mul(number, hn::Set(d, 0x1.62e42fefa39efp-5)));
    }
    for (size_t k = 0; k < K; ++k) {
      const V half = hn::Set(d, 0.5), cubic = hn::Set(d, dTanhEPPolynomial[0]);
      const V t = hn::Add(hn::Mul(h[k], hn::Mul(hn::Mul(h[k], h[k]), cubic)), h[k]);
      const V a = hn::Sub(half_power[k], half), b = hn::Add(half_power[k], half);
      const V y = hn::Div(hn::Add(a, hn::Mul(b, t)), hn::Add(b, hn::Mul(a, t)));
      out[k] = TanhResult(y, x[k]);
    }
  }
};

// With the row of a point c next to |x|, T = tanh(c), S = 1 - T^2 and t = tanh(|x| - c)
//   tanh |x| = T + S t/(1 + T t),
// where T is good to 2^-64 and the other term at most a 127th of it; for |x| < 2^-6 T is 0 and S 1.
// Tiny arguments are their own results, and their products must not underflow.
template <class D>
struct TanhRows {
  using V = VecOf<D>;
  static constexpr double kEnd = 0x1.31p+4;   // from here on the result is 1
  static constexpr double kNone = 0x1.fcp-7;  // of the last 64th of an octave before the rows
  static constexpr size_t kFirst = BitsOfNumber(kNone) >> 46 << 5;
  V magnitude;
  RowOffsets<32, D, kFirst> at;

  HWY_INLINE void Find(D d, V x) {
    magnitude = hn::Min(hn::Abs(x), hn::Set(d, kEnd));
    if constexpr (!kHasSilentMul<V>) magnitude = hn::Max(magnitude, hn::Set(d, 0x1p-100));
    const V key = hn::Max(magnitude, hn::Set(d, kNone));
    at.SetBytes(hn::And(ShiftBitsRight<41>(d, key), SetBits(d, ~uint64_t{31})));
  }
};

// The quotient as t (1 - u)/(1 - u^2), u = T t, with a series that ends with u^6 or, in full, u^10.
template <bool kFull>
struct dTanhByRows : dTanhCommon<> {
  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&x)[K], V (&out)[K]) {
    TanhRows<D> rows[K];
    V u[K], s[K], value[K];
    const V one = hn::Set(d, 1.0);
    for (size_t k = 0; k < K; ++k) rows[k].Find(d, x[k]);
    for (size_t k = 0; k < K; ++k) {
      const auto row = LoadRows4(d, kTanhRows[0], rows[k].at);
      const V h = hn::Sub(rows[k].magnitude, row.a);
      const V h2 = SilentMul(h, h);
      const V cubic = SilentMul(h, SilentMul(h2, SilentHorner(d, h2, dTanhRowPolynomial)));
      const V t = hn::Add(h, cubic);
      value[k] = row.b;
      u[k] = SilentMul(row.b, t);
      s[k] = SilentMul(row.c, t);
    }
    for (size_t k = 0; k < K; ++k) {
      const V u2 = hn::Mul(u[k], u[k]), u4 = hn::Mul(u2, u2);
      const V even = hn::Add(one, kFull ? hn::Mul(u4, hn::Add(one, u4)) : u4);
      const V factor = hn::Mul(hn::Sub(one, u[k]), hn::Mul(hn::Add(one, u2), even));
      const V y = hn::Add(value[k], SilentMul(s[k], factor));
      if constexpr (kHasSilentMul<V>) {
        out[k] = hn::CopySignToAbs(y, x[k]);
      } else {
        out[k] = TanhResult(y, x[k]);
      }
    }
  }
};

using dTanhLA = dTanhByRows<false>;
using dTanhHA = dTanhByRows<true>;

PEX_UNARY(double, dTanh_26, dTanhEP)
PEX_UNARY(double, dTanh_50, dTanhLA)
PEX_UNARY(double, dTanh_HA, dTanhHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dTanh_26)
PEX_EXPORT_UNARY(double, dTanh_50)
PEX_EXPORT_UNARY(double, dTanh_HA)
}  // namespace pex
#endif
