// sqrt(a^2 + b^2) without overflow or underflow on the way. Groups whose numbers are all of
// moderate size go straight ahead; the others are scaled lane by lane, which changes no bit of the
// former's lanes: scaling by powers of two is exact.

#include "pex_core/_heap/real/root_correct-inl.h"
#include "pex_core/_heap/real/root_square-inl.h"
#include "pex_core/_kernel/plain-inl.h"

#if defined(PEX_CORE_HYPOT_HYPOT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE_HYPOT_HYPOT_INL_H_
#undef PEX_CORE_HYPOT_HYPOT_INL_H_
#else
#define PEX_CORE_HYPOT_HYPOT_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <typename T>
struct HypotConstants {
  using Word = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  static constexpr int kFraction = sizeof(T) == 8 ? 52 : 23;
  static constexpr int kExponentBits = sizeof(T) == 8 ? 11 : 8;
  static constexpr Word kExponents = (Word{1} << kExponentBits) - 1;
  // Moderate: one of the 2^j exponents in the middle of all. Adding the shift moves these to the
  // upper end, where the upper bits are ones.
  static constexpr Word Shift(int j) {
    return ((kExponents >> 1) + 2 - (Word{1} << (j - 1))) << kFraction;
  }
  static constexpr Word UpperBits(int j) {
    return ((Word{1} << (kExponentBits - j)) - 1) << (kFraction + j);
  }
  // b^2 below 2^-120 a^2 (2^-60) changes no result.
  static constexpr Word kNegligible = (sizeof(T) == 8 ? Word{60} : Word{30}) << kFraction;
};

// The tiers: roots of a^2 + b^2 as main parts and corrections to be added at last, for moderate
// numbers. RootOfSum is for sums with one of the 2^kModerateSum exponents in the middle.

// The root of the rounded sum: below 1.3 ulp. In single precision no shorter one is faster.
template <typename T>
struct HypotPlain {
  static constexpr bool kCorrected = false;
  static constexpr int kModerate = sizeof(T) == 8 ? 9 : 6;  // 2^-256 to 2^256 (2^-32 to 2^32)
  static constexpr int kModerateSum = sizeof(T) == 8 ? 10 : 7;
  template <class D, class V, size_t K>
  static HWY_INLINE void Root(D d, const V (&a)[K], const V (&b)[K], V (&s)[K], V (&)[K]) {
    for (size_t k = 0; k < K; ++k) s[k] = hn::Add(hn::Mul(a[k], a[k]), hn::Mul(b[k], b[k]));
    RootOfSum(d, s);
  }
  template <class D, class V, size_t K>
  static HWY_INLINE void RootOfSum(D d, V (&s)[K]) {
    Roots(d, s);
  }
};

// 27.6 correct bits: the root s as a float, plus the remainder a^2 + b^2 - s^2, whose product is
// exact, times 1/(2 s) within 5.1 percent, a straight line through the bits.
struct HypotEP {
  static constexpr bool kCorrected = false;
  static constexpr int kModerate = 6;  // the squares are floats
  static constexpr int kModerateSum = 7;
  static constexpr uint64_t kHalfInverse = 0x7FCE620000000000;
  template <class D, class V, size_t K>
  static HWY_INLINE void Root(D d, const V (&a)[K], const V (&b)[K], V (&s)[K], V (&)[K]) {
    for (size_t k = 0; k < K; ++k) s[k] = hn::Add(hn::Mul(a[k], a[k]), hn::Mul(b[k], b[k]));
    RootOfSum(d, s);
  }

  // The same for 2^-256 to 2^256, where the squares are not all floats.
  static constexpr int kWide = 9;
  template <class D, class V, size_t K>
  static HWY_INLINE void RootWide(D d, const V (&a)[K], const V (&b)[K], V (&s)[K]) {
    BitsOf<D> exponent[K];
    for (size_t k = 0; k < K; ++k) {
      const auto t = RootReduce(d, hn::Add(hn::Mul(a[k], a[k]), hn::Mul(b[k], b[k])));
      s[k] = t.m;
      exponent[k] = t.exponent;
    }
    RootOfSum(d, s);
    for (size_t k = 0; k < K; ++k) {
      s[k] = FromBits(d, hn::Add(Bits(d, s[k]), hn::ShiftRight<1>(exponent[k])));
    }
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void RootOfSum(D d, V (&s)[K]) {
    const hn::Rebind<float, D> df;
    for (size_t k = 0; k < K; ++k) {
      const V f = hn::PromoteTo(d, hn::Sqrt(hn::DemoteTo(df, s[k])));
      const V half_inverse = FromBits(d, hn::Sub(SetBits(d, kHalfInverse), Bits(d, f)));
      s[k] = hn::Add(f, hn::Mul(SubExactProduct(f, f, s[k]), half_inverse));
    }
  }
};

// The squares in full, t + rest; s the rounded root of t; the remainder t + rest - s^2 over 2 s.
template <typename T>
struct HypotHA {
  static constexpr bool kCorrected = true;
  static constexpr int kModerate = sizeof(T) == 8 ? 9 : 6;
  template <class D, class V, size_t K>
  static HWY_INLINE void Root(D d, const V (&a)[K], const V (&b)[K], V (&s)[K], V (&c)[K]) {
    using C = RootConstantsOf<D>;
    for (size_t k = 0; k < K; ++k) {
      const Pair<V> a2 = TwoProduct(d, a[k], a[k]), b2 = TwoProduct(d, b[k], b[k]);
      const Pair<V> t = FastTwoSum(hn::Max(a2.hi, b2.hi), hn::Min(a2.hi, b2.hi));
      s[k] = hn::Sqrt(t.hi);
      const Pair<V> s2 = TwoProduct(d, s[k], s[k]);
      const V rest = hn::Add(t.lo, hn::Add(a2.lo, b2.lo));
      const V remainder = hn::Add(hn::Sub(hn::Sub(t.hi, s2.hi), s2.lo), rest);
      const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s[k])));
      const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s[k], z)));
      c[k] = hn::Mul(remainder, half_inverse);
    }
  }
};

template <typename Element, class Tier>
struct HypotKernel : PlainKernel<Element, 2> {
  static constexpr bool kHalfTail = true;
  using T = Element;
  using C = HypotConstants<T>;
  static constexpr T kBeyond = T(1);  // moderate

  // Whether all numbers have one of the 2^kBits exponents in the middle.
  template <int kBits, class D, class V, size_t K>
  static HWY_INLINE bool AllModerate(D d, const V (&a)[K], const V (&b)[K]) {
    const auto shift = SetBits(d, C::Shift(kBits)), top = SetBits(d, C::UpperBits(kBits));
    auto all = top;
    for (size_t k = 0; k < K; ++k) {
      all = hn::And(all, hn::And(hn::Add(Bits(d, a[k]), shift), hn::Add(Bits(d, b[k]), shift)));
    }
    return hn::AllTrue(hn::RebindToSigned<D>(), hn::Eq(all, top));
  }

  // Whether all of these, sums of squares, have one of the 2^kBits exponents in the middle.
  template <int kBits, class D, class V, size_t K>
  static HWY_INLINE bool AllModerateSums(D, const V (&t)[K]) {
    constexpr auto kSign = typename C::Word{1} << (C::kFraction + C::kExponentBits);
    const hn::RebindToUnsigned<D> du;
    const auto shift = hn::Set(du, C::Shift(kBits) + kSign);
    auto all = hn::Add(hn::BitCast(du, t[0]), shift);
    for (size_t k = 1; k < K; ++k) all = hn::And(all, hn::Add(hn::BitCast(du, t[k]), shift));
    return hn::AllFalse(du, hn::Gt(hn::Set(du, C::UpperBits(kBits) + kSign), all));
  }

  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&a)[K], const V (&b)[K], V (&r)[K]) {
    V c[K];
    if constexpr (kHasSilentMul<V> && requires { Tier::kModerateSum; }) {
      // Sums are fewer than numbers; a square that is lost beside a moderate one raises nothing.
      for (size_t k = 0; k < K; ++k) {
        c[k] = SilentAdd(SilentMul(a[k], a[k]), SilentMul(b[k], b[k]));
      }
      if (!AllModerateSums<Tier::kModerateSum>(d, c)) [[unlikely]]
        return OtherGroup(d, a, b, r);
      Tier::RootOfSum(d, c);
      for (size_t k = 0; k < K; ++k) r[k] = c[k];
      return;
    }
    if (AllModerate<Tier::kModerate>(d, a, b)) [[likely]] {
      Tier::Root(d, a, b, r, c);
      if constexpr (Tier::kCorrected) {
        for (size_t k = 0; k < K; ++k) r[k] = hn::Add(r[k], c[k]);
      }
    } else {
      OtherGroup(d, a, b, r);
    }
  }

  // The same where some number is not moderate.
  template <class D, class V, size_t K>
  static HWY_INLINE void OtherGroup(D d, const V (&a)[K], const V (&b)[K], V (&r)[K]) {
    if constexpr (requires { Tier::kWide; }) {
      if (AllModerate<Tier::kWide>(d, a, b)) return Tier::RootWide(d, a, b, r);
    }
    V c[K];
    Scaled<D> x[K];
    V m[K], n[K], s[K];
    auto special = hn::Zero(hn::RebindToSigned<D>());
    for (size_t k = 0; k < K; ++k) x[k] = ScaleDown(d, a[k], b[k], m[k], n[k], special);
    Tier::Root(d, m, n, s, c);
    const bool any =
        !hn::AllTrue(hn::RebindToSigned<D>(), hn::Eq(special, hn::Zero(hn::RebindToSigned<D>())));
    for (size_t k = 0; k < K; ++k) {
      const V up = ScaleUp(d, x[k], s[k], c[k]);
      // Shorter vectors in place: GCC takes a call with such for one that leaves the upper halves
      // of the registers free, and the caller would find them in use.
      if constexpr (hn::MaxLanes(D()) == hn::MaxLanes(hn::ScalableTag<T>())) {
        r[k] = any ? SpecialApart(d, a[k], b[k], up) : up;
      } else {
        r[k] = any ? Special(d, a[k], b[k], up) : up;
      }
    }
  }

  template <class D, class V>
  static HWY_INLINE V Main(D d, V a, V b) {
    const V in1[1] = {a}, in2[1] = {b};
    V r[1];
    MainGroup(d, in1, in2, r);
    return r[0];
  }

  // What leads back from scaled numbers.
  template <class D>
  struct Scaled {
    BitsOf<D> m, n;   // larger and smaller magnitude; 1 where one is not finite
    BitsOf<D> power;  // the exponent field of m, at least 1
  };

  // Any a and b; the larger one goes to [2, 4), subnormal ones up to 2. Bits stay in `special`
  // where one is not finite.
  template <class D, class V>
  static HWY_INLINE Scaled<D> ScaleDown(D d, V a, V b, V& scaled_m, V& scaled_n,
                                        BitsOf<D>& special) {
    const hn::RebindToSigned<D> di;
    const auto infinity = SetBits(d, C::kExponents << C::kFraction);
    const auto one = SetBits(d, RootConstants<T>::kOne);
    const auto least = SetBits(d, typename C::Word{1} << C::kFraction);
    const auto abs_a = Bits(d, hn::Abs(a)), abs_b = Bits(d, hn::Abs(b));
    const auto most = hn::IfThenElse(hn::Gt(abs_b, abs_a), abs_b, abs_a);
    const auto not_finite = hn::VecFromMask(di, hn::Gt(most, hn::Sub(infinity, hn::Set(di, 1))));
    special = hn::Or(special, not_finite);
    Scaled<D> x;
    x.m = hn::IfVecThenElse(not_finite, one, most);
    x.n = hn::IfVecThenElse(not_finite, one, hn::Xor(hn::Xor(abs_a, abs_b), most));
    const auto field = hn::And(x.m, infinity);
    x.power = hn::IfThenElse(hn::Eq(field, hn::Zero(di)), least, field);
    const V up = FromBits(d, hn::Sub(infinity, x.power));
    const auto negligible = hn::Gt(hn::Sub(x.m, SetBits(d, C::kNegligible)), x.n);
    // Zero counts as 2: the root raises no flag, nor does its way back, and no subnormal number
    // holds up the lanes beyond the end.
    const auto is_zero = hn::RebindMask(d, hn::Eq(x.m, hn::Zero(di)));
    scaled_m = hn::IfThenElse(is_zero, hn::Set(d, T(2)), hn::Mul(FromBits(d, x.m), up));
    scaled_n = hn::Mul(Selected(FromBits(d, hn::IfThenZeroElse(negligible, x.n))), up);
    return x;
  }

  template <class D, class V>
  static HWY_INLINE V ScaleUp(D d, const Scaled<D>& x, V s, V c) {
    const hn::RebindToSigned<D> di;
    if constexpr (Tier::kCorrected) {
      // Subnormal results are rounded once: a sum of at least 2 has their ulp.
      const V two = hn::Set(d, T(2));
      const auto least = SetBits(d, typename C::Word{1} << C::kFraction);
      const auto small = hn::And(hn::RebindMask(d, hn::Gt(least, x.m)), hn::Lt(s, two));
      const V big = hn::IfThenElseZero(small, two);
      const Pair<V> sum = FastTwoSum(big, s);
      s = hn::Sub(hn::Add(sum.hi, hn::Add(sum.lo, c)), big);
    }
    // As a number, power is 2 to its exponent.
    const V up = hn::Mul(hn::Mul(s, hn::Set(d, T(0.5))), FromBits(d, x.power));
    return hn::IfThenZeroElse(hn::RebindMask(d, hn::Eq(x.m, hn::Zero(di))), up);
  }

  // Infinity, or otherwise a NaN, where there is one: the second, or the first, quiet; in single
  // precision without its sign. r in the other lanes.
  template <class D, class V>
  static HWY_INLINE V Special(D d, V a, V b, V r) {
    const auto infinity = SetBits(d, C::kExponents << C::kFraction);
    const auto abs_a = Bits(d, hn::Abs(a)), abs_b = Bits(d, hn::Abs(b));
    const auto is_infinite = hn::Or(hn::Eq(abs_a, infinity), hn::Eq(abs_b, infinity));
    const auto second = hn::Gt(abs_b, infinity);
    V nan = hn::IfThenElse(hn::RebindMask(d, second), b, a);
    if constexpr (sizeof(T) == 4) nan = hn::Abs(nan);
    const auto is_nan = hn::Or(second, hn::Gt(abs_a, infinity));
    r = hn::IfThenElse(hn::RebindMask(d, is_nan), HardwareMul(nan, hn::Set(d, T(1))), r);
    return FromBits(d, hn::IfThenElse(is_infinite, infinity, Bits(d, r)));
  }
  template <class D, class V>
  static HWY_NOINLINE V SpecialApart(D d, V a, V b, V r) {
    return Special(d, a, b, r);
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_HYPOT_HYPOT_INL_H_
