// Cube roots in double precision without division and without table: an estimate of 1/cbrt(|x|) by
// an integer division of the bit pattern by 3, refined once to 14 bits and cut short, so that its
// square is exact; the rest by a short polynomial of how far x z^3 is from 1. EP does it from the
// first estimate.

#include <type_traits>

#include "hwy/highway.h"
#include "pex_core/_heap/real/cbrt_polynomials.h"
#include "pex_core/_heap/real/cbrt_tables.h"
#include "pex_core/_kernel/bits-inl.h"
#include "pex_core/_kernel/elementwise-inl.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

#if defined(PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#undef PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#else
#define PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The upper 32 of the bits without sign, in low words; with what was above them in high words.
template <class D>
HWY_INLINE VecOf<hn::Repartition<uint32_t, D>> UpperBits(D, hn::Vec<D> x) {
  const hn::RebindToUnsigned<D> du;
  return hn::BitCast(hn::Repartition<uint32_t, D>(), hn::ShiftRight<31>(hn::BitCast(du, x)));
}

// A third of the high word of |x|, with the fraction below.
template <class D>
HWY_INLINE BitsOf<D> ThirdOfBits(D d, hn::Vec<D> x) {
  const hn::Repartition<uint32_t, D> d32;
  const auto third = hn::MulEven(UpperBits(d, x), hn::Set(d32, 0x2AAAAAAB));
  return hn::BitCast(hn::RebindToSigned<D>(), third);
}

// Whether one of several vectors has a lane whose magnitude is not a normal number, by the bits
// that the third begins with.
template <class D, class V, size_t K>
HWY_INLINE bool AnyNotNormal(D d, const V (&x)[K]) {
  const hn::Repartition<int32_t, D> d32;
  // The least normal number's bits become the least integer.
  constexpr uint32_t kShift = 0x80000000 - 0x00200000;
  constexpr int32_t kGreatest = static_cast<int32_t>(0xFFDFFFFF + kShift);
  const auto key = [&](auto upper) HWY_ATTR {
    return hn::Add(hn::BitCast(d32, upper), hn::Set(d32, static_cast<int32_t>(kShift)));
  };
#if HWY_TARGET == HWY_AVX3
  if constexpr (K % 2 == 0) {
    auto most = hn::Set(d32, INT32_MIN);
    for (size_t k = 0; k < K; k += 2) {
      const __m512i low = _mm512_castps_si512(
          _mm512_shuffle_ps(_mm512_castsi512_ps(UpperBits(d, x[k]).raw),
                            _mm512_castsi512_ps(UpperBits(d, x[k + 1]).raw), 0x88));
      most = k == 0 ? key(hn::Vec512<int32_t>{low}) : hn::Max(most, key(hn::Vec512<int32_t>{low}));
    }
    return !hn::AllFalse(d32, hn::Gt(most, hn::Set(d32, kGreatest)));
  }
#endif
  auto most = key(UpperBits(d, x[0]));
  for (size_t k = 1; k < K; ++k) most = hn::Max(most, key(UpperBits(d, x[k])));
  const auto above = hn::VecFromMask(d32, hn::Gt(most, hn::Set(d32, kGreatest)));
  const hn::RebindToSigned<D> di;
  return !hn::AllFalse(di, hn::Lt(hn::ShiftLeft<32>(hn::BitCast(di, above)), SetBits(d, 0)));
}

// An odd root gets its sign by that of z; an even one takes |x|.
template <class Form, class V>
HWY_INLINE V Radicand(V x) {
  return Form::kOdd ? x : hn::Abs(x);
}

template <class Form, class V>
HWY_INLINE V Signed(V z, V x) {
  return Form::kOdd ? hn::CopySignToAbs(z, x) : z;
}

// 1/cbrt(x) within 3.6 percent, from a third of x's bits.
template <class Form, class D, class V>
HWY_INLINE V EstimateInvCbrt(D d, BitsOf<D> third, V x) {
  return Signed<Form>(FromBits(d, hn::Sub(SetBits(d, kInvCbrtMagic), third)), x);
}

template <class Form, class D, class V, size_t K>
HWY_INLINE void EstimateInvCbrt(D d, const V (&x)[K], V (&m)[K], V (&z)[K]) {
  for (size_t k = 0; k < K; ++k) {
    m[k] = Radicand<Form>(x[k]);
    z[k] = EstimateInvCbrt<Form>(d, ThirdOfBits(d, x[k]), x[k]);
  }
}

// The estimate refined to 14 bits.
template <class D, class V, size_t K>
HWY_INLINE void RefineInvCbrt(D d, const V (&x)[K], V (&z)[K]) {
  V w[K], q[K];
  for (size_t k = 0; k < K; ++k) w[k] = hn::Mul(hn::Mul(x[k], z[k]), hn::Mul(z[k], z[k]));
  Horner(d, w, kCbrtStart, q);
  for (size_t k = 0; k < K; ++k) z[k] = hn::Mul(z[k], q[k]);
}

// The first kBits bits.
template <int kBits, class D, class V>
HWY_INLINE V Cut(D d, V z) {
  return FromBits(d, hn::And(Bits(d, z), SetBits(d, ~uint64_t{0} << (53 - kBits))));
}

// What cube root, reciprocal cube root and 2/3 power make of x and of z near 1/cbrt(x): a
// power a = x^i z^j near the result, and the polynomials of the factor that is missing, as a
// function of x z^3.
struct CbrtForm {
  static constexpr bool kOdd = true;
  static constexpr auto& kHA = pex::kCbrtHA;
  static constexpr auto& kLA = pex::kCbrtLA;
  static constexpr auto& kEP = pex::kCbrtEP;
  // x z^2 and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = hn::Mul(x, hn::Mul(z, z));
    w = hn::Mul(a, z);
  }
  // a (1 + c) rounded once, where z^2 is exact and c small
  template <class D, class V>
  static HWY_INLINE V Correct(D d, V x, V, V z2, V c) {
    const Pair<V> a = TwoProduct(d, x, z2);
    return hn::Add(a.hi, hn::Add(a.lo, hn::Mul(a.hi, c)));
  }
  // The result's exponent, from a third of the argument's.
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Add(y, third);
  }
};

struct InvCbrtForm {
  static constexpr bool kOdd = true;
  static constexpr auto& kHA = pex::kInvCbrtHA;
  static constexpr auto& kLA = pex::kInvCbrtLA;
  static constexpr auto& kEP = pex::kInvCbrtEP;
  // z and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = z;
    w = hn::Mul(hn::Mul(x, z), hn::Mul(z, z));
  }
  template <class D, class V>
  static HWY_INLINE V Correct(D, V, V z, V, V c) {
    return hn::Add(z, hn::Mul(z, c));
  }
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Sub(y, third);
  }
};

struct Pow2o3Form {
  static constexpr bool kOdd = false;
  static constexpr auto& kHA = pex::kInvCbrtHA;
  static constexpr auto& kLA = pex::kInvCbrtLA;
  static constexpr auto& kEP = pex::kInvCbrtEP;
  // x z and x z^3
  template <class V>
  static HWY_INLINE void Power(V x, V z, V& a, V& w) {
    a = hn::Mul(x, z);
    w = hn::Mul(a, hn::Mul(z, z));
  }
  template <class D, class V>
  static HWY_INLINE V Correct(D d, V x, V z, V, V c) {
    const Pair<V> a = TwoProduct(d, x, z);
    return hn::Add(a.hi, hn::Add(a.lo, hn::Mul(a.hi, c)));
  }
  template <class V>
  static HWY_INLINE V ScaleBits(V y, V third) {
    return hn::Add(hn::Add(y, third), third);
  }
};

// a (1 + e q(e)), e = x z^3 - 1. Largest errors: Cbrt 1.72 ulp, InvCbrt 1.23, Pow2o3 1.56.
template <class Form, class D, class V, size_t K>
HWY_INLINE void RootLA(D d, const V (&x)[K], V (&r)[K]) {
  V m[K], z[K], a[K], e[K], q[K];
  EstimateInvCbrt<Form>(d, x, m, z);
  RefineInvCbrt(d, m, z);
  for (size_t k = 0; k < K; ++k) {
    V w;
    Form::Power(m[k], Cut<18>(d, z[k]), a[k], w);
    e[k] = hn::Sub(w, hn::Set(d, 1.0));
  }
  Horner(d, e, Form::kLA, q);
  for (size_t k = 0; k < K; ++k) {
    r[k] = hn::Add(a[k], hn::Mul(a[k], hn::Mul(e[k], q[k])));
  }
}

// Rounded to 27 bits, for which the polynomials leave just a cut, so that most roots of so few bits
// come out exact. The cube root has an estimate of its own, whose sign is of no concern: the square
// has none. Cbrt 26.64 correct bits, InvCbrt 26.09, Pow2o3 26.03.
template <class Form, class D, class V, size_t K>
HWY_INLINE void RootEP(D d, const V (&x)[K], V (&r)[K]) {
  V a[K], w[K], q[K];
  if constexpr (std::is_same_v<Form, CbrtForm>) {
    for (size_t k = 0; k < K; ++k) {
      const V z = FromBits(d, hn::Sub(SetBits(d, kCbrtMagicEP), ThirdOfBits(d, x[k])));
      Form::Power(x[k], z, a[k], w[k]);
      w[k] = hn::Abs(w[k]);
    }
    AdaptedSextic(d, w, Form::kEP, q);
  } else {
    V m[K], z[K];
    EstimateInvCbrt<Form>(d, x, m, z);
    for (size_t k = 0; k < K; ++k) Form::Power(m[k], z[k], a[k], w[k]);
    Horner(d, w, Form::kEP, q);
  }
  for (size_t k = 0; k < K; ++k) {
    r[k] = Cut<27>(d, hn::Mul(a[k], q[k]));
  }
}

// In 17 bits, the cube of z is exact and e = x z^3 - 1 is rounded once. At most 0.501 ulp, from
// 2^-900 to 2^900. kWide: for all normal numbers, the same from x 2^(-3k) in [1, 8).
template <class Form, bool kWide, class D, class V, size_t K>
HWY_INLINE void RootHA(D d, const V (&x)[K], V (&r)[K]) {
  V m[K], z[K], z2[K], e[K], q[K];
  BitsOf<D> scale[K];
  if constexpr (kWide) {
    for (size_t k = 0; k < K; ++k) {
      const auto third = ThirdOfBits(d, x[k]);
      scale[k] =
          hn::Sub(hn::And(third, SetBits(d, 0xFFF0000000000000)), SetBits(d, uint64_t{341} << 52));
      const auto bits = Bits(d, Radicand<Form>(x[k]));
      m[k] = FromBits(d, hn::Sub(hn::Sub(bits, scale[k]), hn::Add(scale[k], scale[k])));
      z[k] = EstimateInvCbrt<Form>(d, hn::Sub(third, scale[k]), x[k]);
    }
  } else {
    EstimateInvCbrt<Form>(d, x, m, z);
  }
  RefineInvCbrt(d, m, z);
  for (size_t k = 0; k < K; ++k) {
    z[k] = Cut<17>(d, z[k]);
    z2[k] = hn::Mul(z[k], z[k]);
    e[k] = ProductLessOne(d, m[k], hn::Mul(z2[k], z[k]));
  }
  Horner(d, e, Form::kHA, q);
  for (size_t k = 0; k < K; ++k) {
    r[k] = Form::Correct(d, m[k], z[k], z2[k], hn::Mul(e[k], q[k]));
    if constexpr (kWide) r[k] = FromBits(d, Form::ScaleBits(Bits(d, r[k]), scale[k]));
  }
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__HEAP_REAL_CBRT_DOUBLE_INL_H_
