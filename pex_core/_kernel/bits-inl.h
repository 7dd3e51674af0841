// Tests and assembly of floating-point numbers by their bits. No test here raises a flag.

#include <cstdint>

#include "hwy/highway.h"

#if defined(PEX_CORE__KERNEL_BITS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_BITS_INL_H_
#undef PEX_CORE__KERNEL_BITS_INL_H_
#else
#define PEX_CORE__KERNEL_BITS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class D>
using VecOf = hn::Vec<D>;
template <class D>
using MaskOf = hn::Mask<D>;
template <class D>
using BitsOf = hn::Vec<hn::RebindToSigned<D>>;  // the lanes' bit patterns as signed integers

template <class D>
HWY_INLINE BitsOf<D> Bits(D, hn::Vec<D> x) {
  return hn::BitCast(hn::RebindToSigned<D>(), x);
}

template <class D>
HWY_INLINE hn::Vec<D> FromBits(D d, BitsOf<D> bits) {
  return hn::BitCast(d, bits);
}

// The bits moved to the right, zeros after them: AVX2 has no such shift of 64 bits with the sign.
template <int kShift, class D>
HWY_INLINE BitsOf<D> ShiftBitsRight(D, hn::Vec<D> x) {
  const hn::RebindToUnsigned<D> du;
  return hn::BitCast(hn::RebindToSigned<D>(), hn::ShiftRight<kShift>(hn::BitCast(du, x)));
}

template <class D>
HWY_INLINE BitsOf<D> SetBits(D, uint64_t bits) {
  const hn::RebindToSigned<D> di;
  return hn::Set(di, static_cast<hn::TFromD<decltype(di)>>(bits));
}

// The bit pattern of a number, at compile time.
constexpr int64_t BitsOfNumber(double x) { return __builtin_bit_cast(int64_t, x); }
constexpr int32_t BitsOfNumber(float x) { return __builtin_bit_cast(int32_t, x); }

// |x| < limit, for positive limits.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE hn::Mask<D> MagnitudeBelow(D d, hn::Vec<D> x, T limit) {
  return hn::RebindMask(d, hn::Lt(Bits(d, hn::Abs(x)), SetBits(d, BitsOfNumber(limit))));
}

// What a selection leaves, for operations that the other numbers would raise flags in. Clang takes
// operations for free of side effects and would compute them on both sides of the selection.
template <class V>
HWY_INLINE V Selected(V x) {
#if defined(__clang__) && HWY_TARGET == HWY_SSE4
  __asm__("" : "+x"(x.raw));
#elif defined(__clang__)
  __asm__("" : "+v"(x.raw));
#endif
  return x;
}

// A number that is computed with alone: no operation on it is carried out for its neighbours in an
// array, whose flags it might raise, or before it is asked for.
HWY_INLINE double Single(double x) {
  __asm__("" : "+x"(x));
  return x;
}
HWY_INLINE float Single(float x) {
  __asm__("" : "+x"(x));
  return x;
}

#if HWY_TARGET == HWY_AVX3
// Operations of whole registers that leave `other` in the lanes without the mask.
#if defined(__clang__)  // which would make an operation of all lanes and a selection of it
#define PEX_MERGED(Name, operation)                                                      \
  HWY_INLINE hn::Vec512<float> Name(hn::Vec512<float> other, hn::Mask512<float> mask,    \
                                    hn::Vec512<float> x, hn::Vec512<float> y) {          \
    __asm__("v" #operation "ps %3, %2, %0 %{%1%}"                                        \
            : "+v"(other.raw)                                                            \
            : "Yk"(mask.raw), "v"(x.raw), "v"(y.raw));                                   \
    return other;                                                                        \
  }                                                                                      \
  HWY_INLINE hn::Vec512<double> Name(hn::Vec512<double> other, hn::Mask512<double> mask, \
                                     hn::Vec512<double> x, hn::Vec512<double> y) {       \
    __asm__("v" #operation "pd %3, %2, %0 %{%1%}"                                        \
            : "+v"(other.raw)                                                            \
            : "Yk"(mask.raw), "v"(x.raw), "v"(y.raw));                                   \
    return other;                                                                        \
  }
#define PEX_MERGED_ROOT(suffix, T)                                                                 \
  HWY_INLINE hn::Vec512<T> MergedSqrt(hn::Vec512<T> other, hn::Mask512<T> mask, hn::Vec512<T> x) { \
    __asm__("vsqrt" #suffix " %2, %0 %{%1%}" : "+v"(other.raw) : "Yk"(mask.raw), "v"(x.raw));      \
    return other;                                                                                  \
  }
#else
#define PEX_MERGED(Name, operation)                                                      \
  HWY_INLINE hn::Vec512<float> Name(hn::Vec512<float> other, hn::Mask512<float> mask,    \
                                    hn::Vec512<float> x, hn::Vec512<float> y) {          \
    return {_mm512_mask_##operation##_ps(other.raw, mask.raw, x.raw, y.raw)};            \
  }                                                                                      \
  HWY_INLINE hn::Vec512<double> Name(hn::Vec512<double> other, hn::Mask512<double> mask, \
                                     hn::Vec512<double> x, hn::Vec512<double> y) {       \
    return {_mm512_mask_##operation##_pd(other.raw, mask.raw, x.raw, y.raw)};            \
  }
#define PEX_MERGED_ROOT(suffix, T)                                                                 \
  HWY_INLINE hn::Vec512<T> MergedSqrt(hn::Vec512<T> other, hn::Mask512<T> mask, hn::Vec512<T> x) { \
    return {_mm512_mask_sqrt_##suffix(other.raw, mask.raw, x.raw)};                                \
  }
#endif
PEX_MERGED(MergedAdd, add)
PEX_MERGED(MergedSub, sub)
PEX_MERGED(MergedMul, mul)
PEX_MERGED_ROOT(ps, float)
PEX_MERGED_ROOT(pd, double)
#undef PEX_MERGED
#undef PEX_MERGED_ROOT
#define PEX_ONE_INSTRUCTION(call) \
  if constexpr (sizeof(x) == 64) return call
#else
#define PEX_ONE_INSTRUCTION(call)
#endif

// x^2 for the lanes of the mask; the others are 0 and raise no flag.
template <class D>
HWY_INLINE VecOf<D> SquareWhere([[maybe_unused]] D d, MaskOf<D> mask, VecOf<D> x) {
  PEX_ONE_INSTRUCTION(MergedMul(hn::Zero(d), mask, x, x));
  const VecOf<D> y = Selected(hn::IfThenElseZero(mask, x));
  return hn::Mul(y, y);
}

// x - y for the lanes of the mask; the others are x - 0.
template <class D>
HWY_INLINE VecOf<D> SubWhere(D, MaskOf<D> mask, VecOf<D> x, VecOf<D> y) {
  PEX_ONE_INSTRUCTION(MergedSub(x, mask, x, y));
  return hn::Sub(x, Selected(hn::IfThenElseZero(mask, y)));
}

// x - y for the lanes of the mask; the others are y, with any sign.
template <class D>
HWY_INLINE VecOf<D> SubFromWhere(D, MaskOf<D> mask, VecOf<D> x, VecOf<D> y) {
  PEX_ONE_INSTRUCTION(MergedSub(y, mask, x, y));
  return hn::Sub(Selected(hn::IfThenElseZero(mask, x)), y);
}

// x * y for the lanes of the mask; the others are other.
template <class D>
HWY_INLINE VecOf<D> MulWhere(D, MaskOf<D> mask, VecOf<D> x, VecOf<D> y, VecOf<D> other) {
  PEX_ONE_INSTRUCTION(MergedMul(other, mask, x, y));
  return hn::IfThenElse(mask, hn::Mul(x, y), other);
}

// The root of x for the lanes of the mask; the others are other.
template <class D>
HWY_INLINE VecOf<D> SqrtWhere(D, MaskOf<D> mask, VecOf<D> x, VecOf<D> other) {
  PEX_ONE_INSTRUCTION(MergedSqrt(other, mask, x));
  return hn::IfThenElse(mask, hn::Sqrt(x), other);
}

#undef PEX_ONE_INSTRUCTION

// Rare lanes by one signed integer comparison, key(x) > kLimit. Keys of several vectors are joined
// by their maxima, so that a group costs one comparison. Limits of doubles end in 32 ones: the
// levels without a 64-bit maximum compare high words alone.

// Rare: high word of |x| above kHighWord (double), |x| above kHighWord (single): large numbers,
// infinities, NaN.
template <typename T, int32_t kHighWord>
struct RareAbove {
  static constexpr int64_t kLimit =
      sizeof(T) == 8 ? (static_cast<int64_t>(kHighWord) << 32 | 0xFFFFFFFF) : kHighWord;
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, hn::Vec<D> x) {
    return Bits(d, hn::Abs(x));
  }
};

// Rare: not kLow <= (high word of) x <= kHigh, 0 <= kLow: negative numbers, zero, NaN too. The
// pattern of kLow is moved to the least integer, so that what is below it wraps round to the top.
template <typename T, int32_t kLow, int32_t kHigh>
struct RareOutside {
  static constexpr uint32_t kShift = 0x80000000u - static_cast<uint32_t>(kLow);
  static constexpr int32_t kTop = static_cast<int32_t>(static_cast<uint32_t>(kHigh) + kShift);
  static constexpr int64_t kLimit =
      sizeof(T) == 8 ? static_cast<int64_t>(
                           static_cast<uint64_t>(static_cast<uint32_t>(kTop)) << 32 | 0xFFFFFFFF)
                     : kTop;
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, hn::Vec<D> x) {
    return hn::Add(Bits(d, x),
                   SetBits(d, sizeof(T) == 8 ? static_cast<uint64_t>(kShift) << 32 : kShift));
  }
};

// Rare by |x|.
template <class Outside>
struct RareByMagnitude : Outside {
  template <class D>
  static HWY_INLINE BitsOf<D> Key(D d, VecOf<D> x) {
    return Outside::Key(d, hn::Abs(x));
  }
};

// What a rarity of doubles says of their high words, as of floats; void where that is not all it
// asks for.
template <class Rarity>
struct OfHighWords {
  using Type = void;
};
template <int32_t kHighWord>
struct OfHighWords<RareAbove<double, kHighWord>> {
  using Type = RareAbove<float, kHighWord>;
};
template <int32_t kLow, int32_t kHigh>
struct OfHighWords<RareOutside<double, kLow, kHigh>> {
  using Type = RareOutside<float, kLow, kHigh>;
};
template <int32_t kLow, int32_t kHigh>
struct OfHighWords<RareByMagnitude<RareOutside<double, kLow, kHigh>>> {
  using Type = RareByMagnitude<RareOutside<float, kLow, kHigh>>;
};

// The high words of two vectors of doubles, in an order of no concern.
template <class D, class V = VecOf<D>>
HWY_INLINE VecOf<hn::Repartition<float, D>> HighWords(D, V x, V y) {
  const hn::Repartition<float, D> d32;
  const auto a = hn::BitCast(d32, x), b = hn::BitCast(d32, y);
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(x) == 64) return {_mm512_shuffle_ps(a.raw, b.raw, 0xDD)};
#endif
#if HWY_TARGET != HWY_SSE4
  if constexpr (sizeof(x) == 32) return {_mm256_shuffle_ps(a.raw, b.raw, 0xDD)};
#endif
  if constexpr (sizeof(x) == 16) return {_mm_shuffle_ps(a.raw, b.raw, 0xDD)};
}

// Rare: outside of an interval from kEnd on, up or down: the distance from kEnd is above kHighWord
// (double, with 32 ones below; single: kHighWord alone), where negative distances and NaN, as
// unsigned integers, are above all others. It joins keys and tells lanes its own way.
template <typename T, T kEnd, bool kUp, int32_t kHighWord>
struct RareByDistance {
  template <class D>
  using Keys = hn::Vec<hn::RebindToUnsigned<D>>;
#if HWY_TARGET == HWY_AVX3
  template <class D>
  using Words = hn::RebindToUnsigned<D>;
#else
  template <class D>
  using Words = hn::Repartition<uint32_t, D>;
#endif
  template <class D>
  static HWY_INLINE VecOf<D> Distance(D d, VecOf<D> x) {
    return kUp ? hn::Sub(x, hn::Set(d, kEnd)) : hn::Sub(hn::Set(d, kEnd), x);
  }
  template <class D>
  static HWY_INLINE Keys<D> Key(D d, VecOf<D> x) {
    return hn::BitCast(hn::RebindToUnsigned<D>(), Distance(d, x));
  }
  template <class D>
  static HWY_INLINE Keys<D> Joined(D d, Keys<D> key, VecOf<D> x) {
    const Words<D> words;
    const auto most = hn::Max(hn::BitCast(words, key), hn::BitCast(words, Key(d, x)));
    return hn::BitCast(hn::RebindToUnsigned<D>(), most);
  }
  // By the sign of a lane.
  template <class D>
  static HWY_INLINE MaskOf<D> Above(D d, Keys<D> key) {
    const Words<D> words;
    using W = hn::TFromD<Words<D>>;
    constexpr W kLimit = sizeof(W) == 8
                             ? static_cast<W>(static_cast<uint64_t>(kHighWord) << 32 | 0xFFFFFFFF)
                             : static_cast<W>(kHighWord);
    const auto above = hn::Gt(hn::BitCast(words, key), hn::Set(words, kLimit));
#if HWY_TARGET == HWY_AVX3
    return hn::RebindMask(d, above);
#else
    return hn::MaskFromVec(hn::BitCast(d, hn::VecFromMask(words, above)));
#endif
  }
  template <class D>
  static HWY_INLINE bool Any(D d, Keys<D> key) {
    return !hn::AllFalse(d, Above(d, key));
  }
  template <class D>
  static HWY_INLINE MaskOf<D> Lanes(D d, VecOf<D> x) {
    const auto above = hn::VecFromMask(d, Above(d, Key(d, x)));
    return hn::RebindMask(d, hn::Lt(Bits(d, above), SetBits(d, 0)));
  }
};

// The larger of two keys; of doubles' keys at least its high word.
template <class D>
HWY_INLINE BitsOf<D> JoinKeys(D d, BitsOf<D> a, BitsOf<D> b) {
#if HWY_TARGET == HWY_AVX3
  (void)d;
  return hn::Max(a, b);
#else
  (void)d;
  const hn::Repartition<int32_t, D> d32;
  return hn::BitCast(hn::RebindToSigned<D>(), hn::Max(hn::BitCast(d32, a), hn::BitCast(d32, b)));
#endif
}

template <class D>
HWY_INLINE hn::Mask<D> KeyAbove(D d, BitsOf<D> key, int64_t limit) {
#if HWY_TARGET == HWY_AVX3
  return hn::RebindMask(d, hn::Gt(key, SetBits(d, static_cast<uint64_t>(limit))));
#else
  // The sign of the high word is the lane's.
  const hn::Repartition<int32_t, D> d32;
  const auto limit32 =
      hn::Set(d32, static_cast<int32_t>(sizeof(hn::TFromD<D>) == 8 ? limit >> 32 : limit));
  const auto above = hn::VecFromMask(d32, hn::Gt(hn::BitCast(d32, key), limit32));
  return hn::MaskFromVec(hn::BitCast(d, above));
#endif
}

// The same with whole lanes of ones, as selections ask for.
template <class D>
HWY_INLINE hn::Mask<D> LanesAbove(D d, BitsOf<D> key, int64_t limit) {
  const auto above = hn::VecFromMask(d, KeyAbove(d, key, limit));
  return hn::RebindMask(d, hn::Lt(Bits(d, above), SetBits(d, 0)));
}

// Whether an integer register, lanes beyond a short vector included, has any of the bits of
// another.
template <class V>
HWY_INLINE bool HasAnyBit(V v, V bits) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (sizeof(V) == 64) return _mm512_test_epi32_mask(v.raw, bits.raw) != 0;
#endif
#if HWY_TARGET != HWY_SSE4
  if constexpr (sizeof(V) == 32) return _mm256_testz_si256(v.raw, bits.raw) == 0;
#endif
  if constexpr (sizeof(V) == 16) return _mm_testz_si128(v.raw, bits.raw) == 0;
}

// Whether of any of several vectors the key, key(x), has a bit of `mask`.
template <class D, size_t K, class Key>
HWY_INLINE bool AnyKeyHas(D d, const VecOf<D> (&x)[K], uint64_t mask, Key key) {
  auto joined = key(x[0]);
  if constexpr (K % 2 == 0) joined = hn::Or(joined, key(x[1]));
  for (size_t k = 2 - K % 2; k < K; k += 2) joined = hn::Or3(joined, key(x[k]), key(x[k + 1]));
  return HasAnyBit(joined, SetBits(d, mask));
}

inline constexpr uint64_t kDoubtHalf = uint64_t{1} << 28;
template <int kError>
inline constexpr uint64_t kDoubtNear = 2 * kDoubtHalf - (uint64_t{2} << kError);

// Whether another float than that next to y may be next to a number that y is known to be within
// 2^kError - 1 units in its last place of.
template <int kError, class D, class V>
HWY_INLINE MaskOf<D> RoundingInDoubt(D d, V y) {
  const auto shifted = hn::Add(Bits(d, y), SetBits(d, kDoubtHalf + (uint64_t{1} << kError)));
#if HWY_TARGET == HWY_AVX3
  return MaskOf<D>{_mm512_testn_epi64_mask(shifted.raw, SetBits(d, kDoubtNear<kError>).raw)};
#else
  return hn::RebindMask(d, hn::Eq(hn::And(shifted, SetBits(d, kDoubtNear<kError>)), SetBits(d, 0)));
#endif
}

// The same of any lane of several vectors.
template <int kError, class D, class V, size_t K>
HWY_INLINE bool AnyRoundingInDoubt(D d, const V (&y)[K]) {
#if HWY_TARGET == HWY_AVX3
  auto open = RoundingInDoubt<kError>(d, y[0]);
  for (size_t k = 1; k < K; ++k) open = hn::Or(open, RoundingInDoubt<kError>(d, y[k]));
  return !hn::AllFalse(d, open);
#else
  // The least distance, in the low words: the others are 0.
  const hn::Repartition<uint32_t, D> d32;
  const auto distance = [&](size_t k) HWY_ATTR {
    const auto shifted = hn::Add(Bits(d, y[k]), SetBits(d, kDoubtHalf + (uint64_t{1} << kError)));
    return hn::BitCast(d32, hn::And(shifted, SetBits(d, kDoubtNear<kError>)));
  };
  auto least = distance(0);
  for (size_t k = 1; k < K; ++k) least = hn::Min(least, distance(k));
  const hn::RebindToSigned<D> di;
  return !hn::AllFalse(di, hn::Eq(hn::BitCast(di, least), SetBits(d, 0)));
#endif
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_BITS_INL_H_
