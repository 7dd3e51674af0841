// The loops of the congruential generators: blocks of outputs from independent chains of vectors.
//
// A generator's source holds kChains vectors of `Lanes` consecutive states, one behind the other: a
// block. It offers
//   kScale        what scales a state to [0, 1);
//   Value(u)      the states of chain u as doubles;
//   Unit(u)       Value(u) times kScale;
//   Advance(u)    moves chain u on by one block.
// A block that is not used up stays as it is, and the caller takes the next state out of it. Fewer
// than kFew outputs are made one by one. The result array need not be aligned.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hwy/highway.h"

#if defined(QUO_SUB_KERNEL__MATH_FILL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_SUB_KERNEL__MATH_FILL_INL_H_
#undef QUO_SUB_KERNEL__MATH_FILL_INL_H_
#else
#define QUO_SUB_KERNEL__MATH_FILL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DoubleTag = hn::ScalableTag<double>;
using FloatTag = hn::ScalableTag<float>;
using U64Tag = hn::ScalableTag<uint64_t>;
using U32Tag = hn::ScalableTag<uint32_t>;
using DoubleVec = hn::Vec<DoubleTag>;
using U64Vec = hn::Vec<U64Tag>;
using U32Vec = hn::Vec<U32Tag>;
inline constexpr size_t kLanes = hn::MaxLanes(DoubleTag());
inline constexpr size_t kFew = 4;

// What one output group is: the chains that it takes and how they become one vector of outputs.
// kUnit: on [0, 1), where the product with b - a = 1 and the sum with a = 0 change nothing.
template <class Source, bool kUnit>
struct DoubleOutput {
  using T = double;
  static constexpr size_t kChainsPerGroup = 1;
  static HWY_INLINE DoubleVec Group(const Source& s, size_t u, DoubleVec scale, DoubleVec a) {
    return kUnit ? s.Unit(u) : hn::Add(hn::Mul(s.Value(u), scale), a);
  }
  static HWY_INLINE void One(double value, double* r, double scale, double a) {
    const double y = value * scale + a;
    std::memcpy(r, &y, sizeof(y));
  }
  static HWY_INLINE DoubleTag Tag() { return DoubleTag(); }
};

// Computed in double and rounded to single at the end.
template <class Source, bool kUnit>
struct FloatOutput {
  using T = float;
  static constexpr size_t kChainsPerGroup = 2;
  static HWY_INLINE hn::Vec<FloatTag> Group(const Source& s, size_t u, DoubleVec scale,
                                            DoubleVec a) {
    using Doubles = DoubleOutput<Source, kUnit>;
    const hn::Rebind<float, DoubleTag> half;
    const auto lower = hn::DemoteTo(half, Doubles::Group(s, u, scale, a));
    const auto upper = hn::DemoteTo(half, Doubles::Group(s, u + 1, scale, a));
    return hn::Combine(FloatTag(), upper, lower);
  }
  static HWY_INLINE void One(double value, float* r, double scale, double a) {
    const float y = static_cast<float>(value * scale + a);
    std::memcpy(r, &y, sizeof(y));
  }
  static HWY_INLINE FloatTag Tag() { return FloatTag(); }
};

// The states themselves; each generator has its own layout, and the bounds stand idle.
template <class Source, bool kUnit>
struct WordOutput;

// Writes n outputs; returns how many states of the current block are used up.
template <class Output, class Source>
HWY_INLINE size_t FillGroups(Source& source, size_t n, typename Output::T* r, double scale,
                             double a) {
  constexpr size_t kStep = Output::kChainsPerGroup;
  constexpr size_t kGroup = kStep * kLanes;
  constexpr size_t kBlock = Source::kChains * kLanes;
  const auto d = Output::Tag();
  const DoubleVec vscale = hn::Set(DoubleTag(), scale);
  const DoubleVec va = hn::Set(DoubleTag(), a);
  for (; n >= kBlock; n -= kBlock) {
    for (size_t u = 0; u < Source::kChains; u += kStep, r += kGroup) {
      hn::StoreU(Output::Group(source, u, vscale, va), d, r);
      for (size_t k = 0; k < kStep; ++k) source.Advance(u + k);
    }
  }
  size_t left = n;
  for (size_t u = 0; u < Source::kChains && left != 0; u += kStep, r += kGroup) {
    const auto group = Output::Group(source, u, vscale, va);
    if (left < kGroup) {
      hn::BlendedStore(group, hn::FirstN(d, left), d, r);
      break;
    }
    hn::StoreU(group, d, r);
    left -= kGroup;
  }
  return n;
}

// n uniforms on [a, b), or n states.
template <template <class, bool> class Output, class Source, typename T>
HWY_INLINE size_t Fill(Source& source, size_t n, T* r, double a, double b) {
  if (a == 0 && b == 1) {
    return FillGroups<Output<Source, true>>(source, n, r, Source::kScale, a);
  }
  return FillGroups<Output<Source, false>>(source, n, r, (b - a) * Source::kScale, a);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_FILL_INL_H_
