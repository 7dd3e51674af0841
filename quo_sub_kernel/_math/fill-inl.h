// The loops of the congruential generators: blocks of outputs from independent chains of vectors.
//
// A generator's source holds kChains vectors of kLanes consecutive states, one behind the other: a
// block. It offers
//   State             the state, or a view of it, between calls;
//   IsReduced(state)  whether the state is one that the recurrence leaves behind. Others come from
//                     copies between streams; their first output is made by the scalar definition;
//   ToDouble(state)   the number that scaling takes, as a double;
//   Step(state)       one step of the recurrence, by its definition, from any state;
//   Source(state)     the first block from a reduced state;
//   kScale            what scales a state to [0, 1);
//   Value(u)          the states of chain u as doubles;
//   Unit(u)           Value(u) times kScale;
//   Advance(u)        moves chain u on by one block;
//   Take(i, state)    state i of the block becomes the state.
// Fewer than kFew outputs are made one by one. The result array need not be aligned.

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

// Output elements of one vector per group of kSteps chains.
template <typename Element, size_t kSteps>
struct VectorOutput {
  using T = Element;
  using Tag = hn::ScalableTag<T>;
  static constexpr size_t kWords = 1;  // elements of T per output
  static constexpr size_t kChainsPerGroup = kSteps;
  static HWY_INLINE void Write(hn::Vec<Tag> group, T* r) { hn::StoreU(group, Tag(), r); }
  static HWY_INLINE void WriteFirst(hn::Vec<Tag> group, T* r, size_t count) {
#if HWY_TARGET == HWY_SSE4  // without masked stores
    HWY_ALIGN T elements[hn::MaxLanes(Tag())];
    hn::Store(group, Tag(), elements);
    std::memcpy(r, elements, count * sizeof(T));
#else
    hn::BlendedStore(group, hn::FirstN(Tag(), count), Tag(), r);
#endif
  }
};

// Uniforms on [a, b). kUnit: on [0, 1), where the product with b - a = 1 and the sum with a = 0
// change nothing.
template <class Source, bool kUnit>
struct DoubleOutput : VectorOutput<double, 1> {
  static HWY_INLINE DoubleVec Group(const Source& s, size_t u, DoubleVec scale, DoubleVec a) {
    return kUnit ? s.Unit(u) : hn::Add(hn::Mul(s.Value(u), scale), a);
  }
  static HWY_INLINE void One(const typename Source::State& s, double* r, double scale, double a) {
    const double y = Source::ToDouble(s) * scale + a;
    std::memcpy(r, &y, sizeof(y));
  }
};

// Computed in double and rounded to single at the end.
template <class Source, bool kUnit>
struct FloatOutput : VectorOutput<float, 2> {
  static HWY_INLINE hn::Vec<FloatTag> Group(const Source& s, size_t u, DoubleVec scale,
                                            DoubleVec a) {
    using Doubles = DoubleOutput<Source, kUnit>;
    const hn::Rebind<float, DoubleTag> half;
    const auto lower = hn::DemoteTo(half, Doubles::Group(s, u, scale, a));
    const auto upper = hn::DemoteTo(half, Doubles::Group(s, u + 1, scale, a));
    return hn::Combine(FloatTag(), upper, lower);
  }
  static HWY_INLINE void One(const typename Source::State& s, float* r, double scale, double a) {
    const float y = static_cast<float>(Source::ToDouble(s) * scale + a);
    std::memcpy(r, &y, sizeof(y));
  }
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
  const DoubleVec vscale = hn::Set(DoubleTag(), scale);
  const DoubleVec va = hn::Set(DoubleTag(), a);
  for (; n >= kBlock; n -= kBlock) {
    for (size_t u = 0; u < Source::kChains; u += kStep, r += kGroup * Output::kWords) {
      Output::Write(Output::Group(source, u, vscale, va), r);
      for (size_t k = 0; k < kStep; ++k) source.Advance(u + k);
    }
  }
  size_t left = n;
  for (size_t u = 0; u < Source::kChains && left != 0; u += kStep) {
    const auto group = Output::Group(source, u, vscale, va);
    if (left < kGroup) {
      Output::WriteFirst(group, r, left);
      break;
    }
    Output::Write(group, r);
    r += kGroup * Output::kWords;
    left -= kGroup;
  }
  return n;
}

// n uniforms on [a, b), or n states; n is at least 1.
template <template <class, bool> class Output, class Source, typename T>
HWY_INLINE void Generate(typename Source::State& state, size_t n, T* r, double a, double b) {
  const double scale = (b - a) * Source::kScale;
  if (n < kFew || !Source::IsReduced(state)) {
    const size_t singly = n < kFew ? n : 1;
    for (size_t i = 0; i < singly; ++i, r += Output<Source, false>::kWords) {
      Output<Source, false>::One(state, r, scale, a);
      Source::Step(state);
    }
    n -= singly;
    if (n == 0) return;
  }
  Source source(state);
  const size_t used = a == 0 && b == 1 ? FillGroups<Output<Source, true>>(source, n, r, scale, a)
                                       : FillGroups<Output<Source, false>>(source, n, r, scale, a);
  source.Take(used, state);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_FILL_INL_H_
