// sqrt(a^2 + b^2) without overflow or underflow on the way. Groups whose numbers are all of moderate
// size go straight ahead; the others are scaled lane by lane, which changes no bit of the former's
// lanes: scaling by powers of two is exact.

#include <algorithm>

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
  static constexpr Word kExponents = sizeof(T) == 8 ? 0x7FF : 0xFF;
  // Moderate: the exponent in the middle quarter of all, |x| from 2^-256 up to 2^256 (double), from
  // 2^-32 up to 2^32 (single). Moved to the upper end, it begins with two ones.
  static constexpr Word kTopTwo = Word{3} << (sizeof(T) * 8 - 3);
  static constexpr Word kShift = (sizeof(T) == 8 ? Word{769} : Word{97}) << kFraction;
  // b^2 below 2^-120 a^2 (2^-60) changes no result.
  static constexpr Word kNegligible = (sizeof(T) == 8 ? Word{60} : Word{30}) << kFraction;
};

template <class D, class V>
HWY_INLINE V Squares(V a, V b) {
  return hn::Add(hn::Mul(a, a), hn::Mul(b, b));
}

// The tiers: a root as the pair (main part, correction to be added at last).
struct HypotEP {
  static constexpr bool kCorrected = false;
  template <class D, class V>
  static HWY_INLINE Pair<V> Root(D d, V a, V b) {
    return {RootEP(d, Squares<D>(a, b)), hn::Zero(d)};
  }
};

struct HypotLA {
  static constexpr bool kCorrected = false;
  template <class D, class V>
  static HWY_INLINE Pair<V> Root(D d, V a, V b) {
    return {RootLA(d, Squares<D>(a, b)), hn::Zero(d)};
  }
};

// The squares in full, t + rest; s the rounded root of t; the remainder t + rest - s^2 over 2 s.
struct HypotHA {
  static constexpr bool kCorrected = true;
  template <class D, class V>
  static HWY_INLINE Pair<V> Root(D d, V a, V b) {
    using C = RootConstantsOf<D>;
    const Pair<V> a2 = TwoProduct(d, a, a), b2 = TwoProduct(d, b, b);
    const Pair<V> t = FastTwoSum(hn::Max(a2.hi, b2.hi), hn::Min(a2.hi, b2.hi));
    const V rest = hn::Add(t.lo, hn::Add(a2.lo, b2.lo));
    const V s = hn::Sqrt(t.hi);
    const Pair<V> s2 = TwoProduct(d, s, s);
    const V remainder = hn::Add(hn::Sub(hn::Sub(t.hi, s2.hi), s2.lo), rest);
    const V z = FromBits(d, hn::Sub(SetBits(d, C::kInverse), Bits(d, s)));
    const V half_inverse = hn::Mul(z, hn::Sub(hn::Set(d, C::kInverseSum), hn::Mul(s, z)));
    return {s, hn::Mul(remainder, half_inverse)};
  }
};

template <typename Element, class Tier>
struct HypotKernel : PlainKernel<Element, 2> {
  using T = Element;
  using C = HypotConstants<T>;

  template <class D, class V, size_t K>
  static HWY_INLINE void MainGroup(D d, const V (&a)[K], const V (&b)[K], V (&r)[K]) {
    const auto shift = SetBits(d, C::kShift), top = SetBits(d, C::kTopTwo);
    auto all = top;
    for (size_t k = 0; k < K; ++k) {
      all = hn::And(all, hn::And(hn::Add(Bits(d, a[k]), shift), hn::Add(Bits(d, b[k]), shift)));
    }
    if (hn::AllTrue(hn::RebindToSigned<D>(), hn::Eq(all, top))) [[likely]] {
      for (size_t k = 0; k < K; ++k) {
        const Pair<V> s = Tier::Root(d, a[k], b[k]);
        r[k] = Tier::kCorrected ? hn::Add(s.hi, s.lo) : s.hi;
      }
    } else {
      for (size_t k = 0; k < K; ++k) r[k] = Wide(d, a[k], b[k]);
    }
  }

  template <class D, class V>
  static HWY_INLINE V Main(D d, V a, V b) {
    const V in1[1] = {a}, in2[1] = {b};
    V r[1];
    MainGroup(d, in1, in2, r);
    return r[0];
  }

  // Any a and b.
  template <class D, class V>
  static HWY_NOINLINE V Wide(D d, V a, V b) {
    const hn::RebindToSigned<D> di;
    const auto infinity = SetBits(d, C::kExponents << C::kFraction);
    const auto abs_a = Bits(d, hn::Abs(a)), abs_b = Bits(d, hn::Abs(b));
    const auto order = hn::Gt(abs_b, abs_a);
    const auto most = hn::IfThenElse(order, abs_b, abs_a);
    const auto special = hn::Not(hn::Lt(most, infinity));
    const auto one = SetBits(d, RootConstants<T>::kOne);
    const auto m = hn::IfThenElse(special, one, most);
    const auto n = hn::IfThenElse(special, one, hn::IfThenElse(order, abs_a, abs_b));

    // The larger one goes to [2, 4), subnormal ones up to 2. A power of two is its exponent field.
    const auto field = hn::And(m, infinity);
    const auto subnormal = hn::Eq(field, hn::Zero(di));
    const auto power =
        hn::IfThenElse(subnormal, SetBits(d, typename C::Word{1} << C::kFraction), field);
    const V up = FromBits(d, hn::Sub(infinity, power));
    const auto negligible = hn::Lt(n, hn::Sub(m, SetBits(d, C::kNegligible)));
    const V scaled_m = hn::Mul(FromBits(d, m), up);
    const V scaled_n = hn::Mul(FromBits(d, hn::IfThenElse(negligible, hn::Zero(di), n)), up);
    const Pair<V> root = Tier::Root(d, scaled_m, scaled_n);

    V s = root.hi;
    if constexpr (Tier::kCorrected) {
      // Subnormal results are rounded once: a sum of at least 2 has their ulp.
      const V two = hn::Set(d, T(2));
      const auto small = hn::And(hn::RebindMask(d, subnormal), hn::Lt(root.hi, two));
      const V big = hn::IfThenElse(small, two, hn::Zero(d));
      const Pair<V> sum = FastTwoSum(big, root.hi);
      s = hn::Sub(hn::Add(sum.hi, hn::Add(sum.lo, root.lo)), big);
    }
    V r = hn::Mul(hn::Mul(s, hn::Set(d, T(0.5))), FromBits(d, power));
    r = hn::IfThenElse(hn::RebindMask(d, hn::Eq(n, hn::Zero(di))), FromBits(d, m), r);
    if (hn::AllFalse(di, special)) return r;
    return hn::IfThenElse(hn::RebindMask(d, special), Special(d, a, b), r);
  }

  // Infinity, and otherwise a NaN, where there is one: the second, or the first, quiet; in single
  // precision without its sign.
  template <class D, class V>
  static HWY_INLINE V Special(D d, V a, V b) {
    const hn::RebindToSigned<D> di;
    const auto infinity = SetBits(d, C::kExponents << C::kFraction);
    const auto abs_a = Bits(d, hn::Abs(a)), abs_b = Bits(d, hn::Abs(b));
    const auto is_infinite = hn::Or(hn::Eq(abs_a, infinity), hn::Eq(abs_b, infinity));
    const auto second = hn::RebindMask(d, hn::Gt(abs_b, infinity));
    V nan = hn::IfThenElse(second, b, a);
    if constexpr (sizeof(T) == 4) nan = hn::Abs(nan);
    const auto quiet = Bits(d, HardwareMul(nan, hn::Set(d, T(1))));
    (void)di;
    return FromBits(d, hn::IfThenElse(is_infinite, infinity, quiet));
  }
};

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE_HYPOT_HYPOT_INL_H_
