// Inverse sine and cosine in double precision, HA: lead (1 + w + w q) with w = x^2/8 and lead = x
// for |x| up to 1/2, and for larger ones w = (1 - |x|)/16, lead = sqrt(2 (1 - |x|)). The product
// lead w is exact, in two parts; lead w q is at most 1/64 of the result or of the number that the
// result is taken from.

#include <cstddef>
#include <iterator>

#include "hwy/highway.h"
#include "pex_core/_heap/real/asin-inl.h"
#include "pex_core/_heap/real/asin_polynomials.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_ASIN_FULL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_ASIN_FULL_INL_H_
#undef PEX_CORE__HEAP_REAL_ASIN_FULL_INL_H_
#else
#define PEX_CORE__HEAP_REAL_ASIN_FULL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The coefficients of q = head[0] + w (head[1] + w (rest[0] + w rest[1] ...)): those of HA for w =
// u/32, the first one less 1.
struct AsinFullTerms {
  double head[2], rest[std::size(kAsinHA) - 2];
};
inline constexpr AsinFullTerms kAsinFull = [] {
  AsinFullTerms terms = {};
  double scale = 1;
  for (size_t i = 0; i < std::size(kAsinHA); ++i) {
    const double c = kAsinHA[i] * (scale *= 32);
    if (i < 2) {
      terms.head[i] = i == 0 ? c - 1.5 : c;
    } else {
      terms.rest[i - 2] = c;
    }
  }
  return terms;
}();

// What both functions are made of (Asin 0.5481 ulp seen, Acos 0.5385), in two parts; lead is -|x|
// for the smaller ones.
template <AsinDomain kDomain, class D>
struct FullAsinSum {
  using V = VecOf<D>;
  static constexpr size_t kSize = 1;
  static constexpr bool kRegister = HWY_TARGET == HWY_AVX3 && sizeof(V) == 64;
  static constexpr bool kMerged = kRegister && kDomain == AsinDomain::kCommon;
  MaskOf<D> large;
  V lead, square, root, w, w_rest, q;  // lead is the root, twice for large ones, but for roundings

  HWY_INLINE void Reduce(const V* x) {
    const D d;
    constexpr double kTiny = AboveOneOrTiny<double>::kTiny;
    const V minus = NegAbs(d, *x);
    large = hn::Lt(minus, Whole<-0.5>(d));
    if constexpr (kMerged) {
#if HWY_TARGET == HWY_AVX3
      const auto small = hn::Ge(minus, Whole<-0.5>(d));
      const V eighth = hn::Mul(minus, Whole<0.125>(d));
      const V sixteenth = Whole<0.0625>(d);
      square = AddExactProduct(minus, Whole<2>(d), Whole<2>(d));
      w = MulWhere(d, small, minus, eighth, AddExactProduct(minus, sixteenth, sixteenth));
      w_rest = V{_mm512_maskz_fmsub_pd(small.raw, minus.raw, eighth.raw, w.raw)};  // exact
      lead = SqrtWhere(d, large, square, minus);
#endif
    } else {
      const V half = Whole<0.5>(d);
      V quarter, small_square;
      if constexpr (kDomain == AsinDomain::kCommon) {
        quarter = AddExactProduct(minus, half, half);
        small_square = hn::Mul(minus, minus);
      } else {
        quarter = hn::Mul(hn::Add(minus, Whole<1>(d)), half);
        small_square = SquareWhere(d, hn::Le(minus, hn::Set(d, -kTiny)), minus);
      }
      square = hn::Min(quarter, small_square);  // both are equal at |x| = 1/2
      w = hn::Mul(square, Whole<0.125>(d));
      root = hn::Sqrt(square);  // of x^2 it is |x|
      if constexpr (kDomain == AsinDomain::kCommon) {
        lead = hn::Mul(root, OneOrMinusTwo<-1>(d, large));
      } else {
        lead = hn::IfThenElse(large, hn::Add(root, root), minus);
      }
    }
    V end[1] = {lead};
    EndPart(end);
    lead = end[0];
  }
  HWY_INLINE void Evaluate() {
    const D d;
    const V v[1] = {w}, v2[1] = {hn::Mul(w, w)};
    V p[1];
    SpreadEvenOdd<kAsinFull.rest>(d, v, v2, p);
    const V inner = hn::Add(hn::Mul(p[0], w), Whole<kAsinFull.head[1]>(d));
    q = hn::Mul(hn::Add(hn::Mul(inner, w), Whole<kAsinFull.head[0]>(d)), w);
    if constexpr (kMerged) {
      q = hn::Add(q, w_rest);
    } else {
      const V rest = Remainder(d, square, root, root);  // exact
      q = SubExactProduct(hn::IfThenZeroElse(large, rest), Whole<0.125>(d), q);
      square = hn::IfThenElseZero(large, rest);
    }
    V end[1] = {q};
    EndPart(end);
    q = end[0];
  }
  // What the root lacks, with the sign of l = +-lead; 0 where there is none. By its bits near is
  // 0.7656/l within 2 %; times kShare it stands for half of 1/l, and a part of what 1 + w + ...
  // makes of that next to |x| = 1/2, where most depends on it.
  template <double kShare>
  HWY_INLINE V LeadRest(V l) const {
    const D d;
    const V near = FromBits(d, hn::Sub(SetBits(d, 0x7FD8000000000000), Bits(d, l)));
    if constexpr (kMerged) {
      const V rest = Remainder(d, square, lead, lead);
      return MulWhere(d, large, hn::Mul(rest, Whole<kShare>(d)), near, hn::Zero(d));
    } else {
      return hn::Mul(hn::Mul(square, Whole<4 * kShare>(d)), near);
    }
  }
  // s + l (w + w/2 + q) + low for |s.hi| > |l w|.
  HWY_INLINE V Total(Pair<V> s, V l, V low) const {
    const D d;
    const V half = Whole<0.5>(d);
    const Pair<V> p = TwoProduct(d, l, w), h = FastTwoSum(s.hi, p.hi);
    const V rest = hn::Add(p.lo, AddExactProduct(p.lo, half, low));
    const V middle = AddExactProduct(p.hi, half, hn::Mul(l, q));
    return hn::Add(h.hi, hn::Add(middle, hn::Add(rest, hn::Add(s.lo, h.lo))));
  }
};

template <AsinDomain kDomain, class D>
struct FullAsinPart : FullAsinSum<kDomain, D> {
  using V = VecOf<D>;
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    const V lead = this->lead, half_pi = Whole<kPi / 2>(d), rest = Whole<kPiRest / 2>(d);
    Pair<V> s;
    V low = this->template LeadRest<0.694>(lead);
    if constexpr (FullAsinSum<kDomain, D>::kRegister) {
#if HWY_TARGET == HWY_AVX3
      s.hi = MergedSub(lead, this->large, lead, half_pi);
      s.lo = hn::Sub(lead, MergedAdd(s.hi, this->large, s.hi, half_pi));
      low = MergedSub(low, this->large, low, rest);
      *r = hn::IfVecThenElse(Whole<-0.0>(d), *x, this->Total(s, lead, low));
#endif
    } else {
      const V base = hn::IfThenElseZero(this->large, half_pi);
      s.hi = hn::Sub(lead, base);
      s.lo = hn::Sub(lead, hn::Add(s.hi, base));
      low = hn::Sub(low, hn::IfThenElseZero(this->large, rest));
      *r = hn::CopySign(this->Total(s, lead, low), *x);
    }
  }
};

template <AsinDomain kDomain, class D>
struct FullAcosPart : FullAsinSum<kDomain, D> {
  using V = VecOf<D>;
  HWY_INLINE void Result(const V* x, V* r) const {
    const D d;
    const V half_pi = Whole<kPi / 2>(d), sign = Whole<-0.0>(d);
    // 0 or pi for large x, pi/2 for others
    const V signed_half =
        this->kRegister ? hn::IfVecThenElse(sign, *x, half_pi) : hn::CopySignToAbs(half_pi, *x);
    const V base = SubWhere(d, this->large, half_pi, signed_half);
    const V base_rest = hn::Mul(base, Whole<kPiRest / kPi>(d));
    const V l = XorAnd(this->lead, *x, sign);
    const V low = hn::Add(this->template LeadRest<0.684>(l), base_rest);
    *r = this->Total(FastTwoSum(base, l), l, low);
  }
};

template <template <AsinDomain, class> class Part, AsinDomain kDomain, class D, class V, size_t K>
HWY_INLINE void FullInTurn(D, const V (&x)[K], V (&r)[K]) {
  Part<kDomain, D> parts[K];
  SomeInTurn(parts, x, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_ASIN_FULL_INL_H_
