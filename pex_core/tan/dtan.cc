// The tangent in double precision.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pex_core/tan/dtan.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pex_core/_heap/real/trig_fine-inl.h"
#include "pex_core/_heap/real/trig_quarter-inl.h"
#include "pex_core/_heap/real/trig_turn-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

static char _PEX_THISFUNC_NAME[] = "vdTan";

// tan(y), |y| <= pi/4, or in odd quadrants -cot(y).
template <class Formula>
struct dTanQuarter {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = Formula::kUnroll;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D d, const V (&x)[K], V (&r)[K]) {
    Quarters<D, K> u;
    Formula::Quarter::Reduce(d, x, u);
    Finish(d, u, r);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    Quarters<D, K> u;
    ReduceQuarters<typename Formula::Quarter>(d, lanes, x, u);
    Finish(d, u, r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::IfThenElse(lanes.tiny[k], x[k], r[k]);
  }

 private:
  template <class D, class V, size_t K>
  static HWY_INLINE void Finish(D d, const Quarters<D, K>& u, V (&r)[K]) {
    Formula::Tangent(d, u, r);
  }
};

// y N/D, turned over in odd quadrants. N and D are good to 2^-26.07.
struct dTanFormulaEP {
  using Quarter = QuarterTanEP;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX3 ? 6 : 4;
  template <class D, class V, size_t K>
  static HWY_INLINE void Tangent(D d, const Quarters<D, K>& u, V (&r)[K]) {
    V y2[K], above[K], below[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(u.y[k], u.y[k]);
    Horner(d, y2, kTanEPNumerator, above);
    for (size_t k = 0; k < K; ++k) above[k] = hn::Mul(u.y[k], above[k]);
    for (size_t k = 0; k < K; ++k) below[k] = hn::Add(y2[k], hn::Set(d, kTanEPDenominator[1]));
    for (size_t k = 0; k < K; ++k) below[k] = hn::Mul(y2[k], below[k]);
    for (size_t k = 0; k < K; ++k) {
      below[k] = hn::Add(below[k], hn::Set(d, kTanEPDenominator[0]));
    }
    TangentQuotients(d, u.quadrant, above, below, r);
  }
};

struct dTanEP : dTanQuarter<dTanFormulaEP> {};

// Tangents of some vectors about the next multiples a of pi/16, x = a + y, in parts:
//   tan(x) = tan(a) + y/(cos(a)^2 y cot(y) - sin(a) cos(a) y),
// in which the divisor, the quotient and the sum are rounded by much. The poles are in the table.
template <class D, size_t K>
struct TangentPart {
  static constexpr size_t kSize = K;
  using V = VecOf<D>;
  V y[K], w[K];  // w = 1 - y cot(y)
#if HWY_TARGET == HWY_AVX2
  HWY_ALIGN uint8_t row[K][32];  // in each lane's first byte sixteen times the row
#else
  BitsOf<D> row[K];  // in the low four bits
#endif

  // Usual arguments.
  HWY_INLINE void Reduce(const V* arguments) {
    V x[K], n[K];
    for (size_t k = 0; k < K; ++k) x[k] = arguments[k];
    Nearest(x, n);
    SetRows(n);
    SubtractFirst(x, n);
    SubtractLast(n);
  }

  // Lanes of every kind. Of a large one first the quadrants are taken off, each eight steps.
  HWY_INLINE void ReduceWide(const TrigLanes<D, K>& lanes, const V (&x)[K]) {
    const D d;
    V x1[K], n[K], low[K], last[K];
    BitsOf<D> steps[K];
    for (size_t k = 0; k < K; ++k) {
      const auto large = ReduceLargeLanes(d, lanes.large[k], x[k]);
      x1[k] = hn::IfThenElse(lanes.large[k], large.r.hi, lanes.x[k]);
      low[k] = large.r.lo;
      steps[k] = hn::ShiftLeft<3>(
          Bits(d, hn::IfThenElseZero(lanes.large[k], FromBits(d, large.quadrant))));
    }
    Nearest(x1, n);
    V rows[K];
    for (size_t k = 0; k < K; ++k) rows[k] = FromBits(d, hn::Add(Bits(d, n[k]), steps[k]));
    SetRows(rows);
    SubtractFirst(x1, n);
    for (size_t k = 0; k < K; ++k) {
      last[k] = hn::Add(y[k], SubExactProduct(n[k], hn::Set(d, kPart2Upper), low[k]));
    }
    SubtractLast(n);
    for (size_t k = 0; k < K; ++k) y[k] = hn::IfThenElse(lanes.large[k], last[k], y[k]);
  }

  HWY_INLINE void Evaluate() {
    constexpr size_t kTop = sizeof(kTanLA) / sizeof(kTanLA[0]) - 1;
    const D d;
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = hn::Mul(y[k], y[k]);
    EndPart(y2);
    for (size_t k = 0; k < K; ++k) w[k] = hn::Mul(y2[k], hn::Set(d, kTanLA[kTop]));
    EndPart(w);
    for (size_t i = kTop; i-- > 0;) {
      for (size_t k = 0; k < K; ++k) w[k] = hn::Add(w[k], hn::Set(d, kTanLA[i]));
      EndPart(w);
      for (size_t k = 0; k < K; ++k) w[k] = hn::Mul(w[k], y2[k]);
      EndPart(w);
    }
  }

  HWY_INLINE void Result(const V*, V* r) {
    for (size_t k = 0; k < K; ++k) {
      V tan, cos2, sin_cos, infinite;
      Row(k, tan, cos2, sin_cos, infinite);
      const V below = hn::Sub(cos2, hn::Add(hn::Mul(cos2, w[k]), hn::Mul(sin_cos, y[k])));
      const V above = SubExactProduct(infinite, w[k], hn::Add(infinite, y[k]));
      V quotient[1] = {hn::Div(above, below)};
      EndPart(quotient);
      r[k] = hn::Add(tan, quotient[0]);
    }
  }

 private:
  // The second part of pi/16, and what of it the number of a step may be multiplied with exactly;
  // the products with the other are multiples of 2^-109 up to 2^-56.
  static constexpr double kPart2 = 0x1.1a62633145c07p-57, kPart2Upper = 0x1.1a6263314p-57;

  // The steps of pi/16 in the low bits; n is their numbers after SetRows.
  HWY_INLINE void Nearest(const V (&x)[K], V (&n)[K]) {
    const D d;
    for (size_t k = 0; k < K; ++k) n[k] = hn::Mul(x[k], hn::Set(d, 0x1.45f306dc9c883p+2));
    EndPart(n);
    for (size_t k = 0; k < K; ++k) n[k] = hn::Add(n[k], hn::Set(d, kShifter + 8));
    EndPart(n);  // the table begins at -8
  }

  HWY_INLINE void SetRows(const V (&n)[K]) {
    const D d;
#if HWY_TARGET == HWY_AVX2
    const hn::Repartition<uint8_t, D> d8;
    for (size_t k = 0; k < K; ++k) {
      hn::Store(hn::BitCast(d8, hn::ShiftLeft<4>(Bits(d, n[k]))), d8, row[k]);
    }
    asm volatile("" : "+m"(row));  // else GCC takes the lanes out one by one
#else
    for (size_t k = 0; k < K; ++k) row[k] = Bits(d, n[k]);
#endif
  }

  // y = x - n pi/16, with pi/16 in three parts, for |x| < 2^12. What the first leaves is exact, a
  // multiple of 2^-56 below 1/8. The second takes it to 2^-110, with one rounding: n times the
  // last, which is exact too, shows only below 2^-39, next to a pole, where the tangent has the
  // relative error of y twice over if that were rounded twice.
  HWY_INLINE void SubtractFirst(const V (&x)[K], V (&n)[K]) {
    const D d;
    for (size_t k = 0; k < K; ++k) n[k] = hn::Sub(n[k], hn::Set(d, kShifter + 8));
    EndPart(n);
    SubProductsExactly(d, x, n, 0x1.921fb54442d18p-3, 0x1.921fb5444p-3, y);
    EndPart(y);
  }
  HWY_INLINE void SubtractLast(const V (&n)[K]) {
    const D d;
    for (size_t k = 0; k < K; ++k) y[k] = PartsNegMulAdd(d, n[k], kPart2, kPart2Upper, y[k]);
    EndPart(y);
    SubExactProducts(y, n, hn::Set(d, -0x1.f1976b7edp-113), y);
    EndPart(y);
  }

  HWY_INLINE void Row(size_t k, V& tan, V& cos2, V& sin_cos, V& infinite) {
#if HWY_TARGET == HWY_AVX3
    const auto column = [this, k](const double* c) HWY_ATTR {
      return V{_mm512_permutex2var_pd(_mm512_load_pd(c), row[k].raw, _mm512_load_pd(c + 8))};
    };
    tan = column(kTangentTable.tan);
    cos2 = column(kTangentTable.cos2);
    sin_cos = column(kTangentTable.sin_cos);
    infinite = column(kTangentTable.infinite);
#elif HWY_TARGET == HWY_AVX2
    const auto halves = [this, k](int lane, int column) HWY_ATTR {
      const auto half = [this, k, column](int lane) HWY_ATTR {
        const auto* first = reinterpret_cast<const char*>(kTangentRows.row[0] + column);
        return _mm_load_pd(reinterpret_cast<const double*>(first + 2 * size_t{row[k][8 * lane]}));
      };
      return _mm256_insertf128_pd(_mm256_castpd128_pd256(half(lane)), half(lane + 2), 1);
    };
    const __m256d low02 = halves(0, 0), low13 = halves(1, 0);
    const __m256d high02 = halves(0, 2), high13 = halves(1, 2);
    tan = V{_mm256_unpacklo_pd(low02, low13)};
    cos2 = V{_mm256_unpackhi_pd(low02, low13)};
    sin_cos = V{_mm256_unpacklo_pd(high02, high13)};
    infinite = V{_mm256_unpackhi_pd(high02, high13)};
#else
    const auto i = hn::And(row[k], SetBits(D(), 15));
    const double* r0 = kTangentRows.row[_mm_cvtsi128_si64(i.raw)];
    const double* r1 = kTangentRows.row[_mm_extract_epi64(i.raw, 1)];
    const __m128d low0 = _mm_load_pd(r0), low1 = _mm_load_pd(r1);
    const __m128d high0 = _mm_load_pd(r0 + 2), high1 = _mm_load_pd(r1 + 2);
    tan = V{_mm_unpacklo_pd(low0, low1)};
    cos2 = V{_mm_unpackhi_pd(low0, low1)};
    sin_cos = V{_mm_unpacklo_pd(high0, high1)};
    infinite = V{_mm_unpackhi_pd(high0, high1)};
#endif
  }
};

// Largest error seen: 1.997 ulp, for tangents just below a power of two.
struct dTanLA {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = HWY_TARGET == HWY_AVX2 ? 16 : 8;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE void Group(D, const V (&x)[K], V (&r)[K]) {
    constexpr size_t kSize = HWY_TARGET == HWY_AVX2 && K % 2 == 0 ? 2 : 1;
    constexpr size_t kLag = K <= 2 ? 1 : HWY_TARGET == HWY_AVX2 ? 7 : 2;
    TangentPart<D, kSize> parts[K / kSize];
    SomeInTurn<kLag>(parts, x, r);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, Usual::kLimit);
    TangentPart<D, K> part;
    if (lanes.any_large) {
      part.ReduceWide(lanes, x);
    } else {
      part.Reduce(lanes.x);
    }
    part.Evaluate();
    part.Result(x, r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::IfThenElse(lanes.tiny[k], x[k], r[k]);
  }
};

// About points near multiples of pi/16.
template <class D, size_t K>
struct TangentAngles {
  VecOf<D> high[K], low[K], y[K], tan[K];
  BitsOf<D> index[K];
  HWY_INLINE void Rows() {
#if HWY_TARGET == HWY_AVX2
    RowPlaces<2, K> places(index);
#endif
    for (size_t k = 0; k < K; ++k) {
#if HWY_TARGET == HWY_AVX3
      const auto column = [this, k](const double* c) HWY_ATTR {
        return VecOf<D>{
            _mm512_permutex2var_pd(_mm512_load_pd(c), index[k].raw, _mm512_load_pd(c + 8))};
      };
      low[k] = column(kTangentPointTable.offset);
      tan[k] = column(kTangentPointTable.tan);
#elif HWY_TARGET == HWY_AVX2
      places.Columns(kTangentPointRows.row[0], k, low[k], tan[k]);
#else
      const auto i = hn::And(index[k], SetBits(D(), 15));
      const __m128d r0 = _mm_load_pd(kTangentPointRows.row[_mm_cvtsi128_si64(i.raw)]);
      const __m128d r1 = _mm_load_pd(kTangentPointRows.row[_mm_extract_epi64(i.raw, 1)]);
      low[k] = VecOf<D>{_mm_unpacklo_pd(r0, r1)};
      tan[k] = VecOf<D>{_mm_unpackhi_pd(r0, r1)};
#endif
    }
  }
};

// With t = tan(a) and w = 1 - y cot(y)
//   tan(a + y) = (t + y - t w)/(1 - t y - w),
// both as unevaluated sums: the quotient is corrected by what it leaves of them.
template <class D, size_t K>
struct TangentFinePart {
  static constexpr size_t kSize = K;
  using V = VecOf<D>;
  TangentAngles<D, K> u;
  V y2[K], w[K], below[K], below_more[K], inverse[K];

  HWY_INLINE void Reduce(const V* x) { ReduceFinePart(D(), x, u, y2); }
  HWY_INLINE void Evaluate() {
    const D d;
    const V one = hn::Set(d, 1.0);
    Horner(d, y2, kTanFine, w);
    V product[K];
    for (size_t k = 0; k < K; ++k) w[k] = hn::Mul(w[k], y2[k]);
    for (size_t k = 0; k < K; ++k) product[k] = hn::Mul(u.tan[k], u.y[k]);
    for (size_t k = 0; k < K; ++k) below[k] = hn::Sub(one, product[k]);
    for (size_t k = 0; k < K; ++k) {
      below_more[k] = Remainder(d, hn::Sub(one, below[k]), u.tan[k], u.high[k]);
    }
    for (size_t k = 0; k < K; ++k) {
      below_more[k] = hn::Sub(hn::Add(below_more[k], hn::Mul(u.tan[k], u.low[k])), w[k]);
    }
    EndPart(below_more);
    for (size_t k = 0; k < K; ++k) inverse[k] = hn::Div(one, hn::Add(below[k], below_more[k]));
    EndPart(inverse);
  }
  HWY_INLINE void Result(const V*, V* r) {
    const D d;
    V above[K], above_less[K];
    for (size_t k = 0; k < K; ++k) above[k] = hn::Add(u.tan[k], u.y[k]);
    for (size_t k = 0; k < K; ++k) {
      const V less = hn::Add(hn::Sub(hn::Sub(above[k], u.tan[k]), u.high[k]), u.low[k]);
      above_less[k] = hn::Add(less, hn::Mul(u.tan[k], w[k]));
    }
    EndPart(above_less);
    for (size_t k = 0; k < K; ++k) {
      const V q = hn::Mul(hn::Sub(above[k], above_less[k]), inverse[k]);
      const V rest = hn::Sub(Remainder(d, above[k], q, below[k]),
                             hn::Add(above_less[k], hn::Mul(q, below_more[k])));
      r[k] = hn::Add(q, hn::Mul(rest, inverse[k]));
    }
  }
};

struct dTanHA {
  static constexpr int kResults = 1;
  static constexpr size_t kUnroll = 8;
  using Usual = UsualExponents<-20, 5>;

  template <class D, class V, size_t K>
  static HWY_INLINE bool Group(D d, const V (&x)[K], V (&r)[K]) {
    TangentFinePart<D, 1> parts[K];
    SomeInTurn<HWY_MIN(K, 5)>(parts, x, r);
    V y2[K];
    for (size_t k = 0; k < K; ++k) y2[k] = parts[k].y2[0];
    return !AnyNear(d, y2);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void Wide(D d, const V (&x)[K], V (&r)[K]) {
    const auto lanes = SortLanes(d, x, 0x1p-27, kFineLimit);
    TangentFinePart<D, K> part;
    ReduceFineWide(d, lanes, x, part.u, part.y2);
    part.Evaluate();
    part.Result(x, r);
    for (size_t k = 0; k < K; ++k) r[k] = hn::IfThenElse(lanes.tiny[k], x[k], r[k]);
  }
};

PEX_TRIG(dTan_26, dTanEP)
PEX_TRIG(dTan_50, dTanLA)
PEX_TRIG(dTan_HA, dTanHA)

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
PEX_EXPORT_UNARY(double, dTan_26)
PEX_EXPORT_UNARY(double, dTan_50)
PEX_EXPORT_UNARY(double, dTan_HA)
}  // namespace pex
#endif
