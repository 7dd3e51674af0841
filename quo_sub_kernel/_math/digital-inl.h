// The outputs of digital sequences: runs through the table of a block, xored with its base.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "quo_sub_kernel/_math/digital.h"
#include "quo_sub_kernel/_math/words-inl.h"

#if defined(QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_
#undef QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_
#else
#define QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Moves the base of at least kWrap coordinates on to block `next`, which is not 0, and shows
// visit(k, x) its vectors before that. The last of them runs over the base's end.
template <class Visit>
HWY_INLINE void StepBase(DigitalState& s, uint32_t next, Visit visit) {
  const WordTag d;
  static_assert(kWrap % kWordLanes == 0);
  uint32_t* const base = s.Base();
  const uint32_t* const step = s.Step(static_cast<size_t>(std::countr_zero(next)));
  HWY_UNROLL(4)
  for (size_t k = 0; k < s.dimension; k += kWordLanes) {
    const WordVec x = hn::LoadU(d, base + k);
    visit(k, x);
    hn::StoreU(hn::Xor(x, hn::LoadU(d, step + k)), d, base + k);
  }
}

// The base of the next block, or of the first one behind the last.
HWY_INLINE void NextBlock(DigitalState& s) {
  uint32_t* const base = s.Base();
  const uint32_t next = (s.index >> s.log_block) + 1;
  s.index = next << s.log_block;
  s.place = 0;
  if (s.index == 0) return SeekDigital(s, 1, 0);  // point 0 is passed over
  if (s.dimension < kWrap) {
    const uint32_t* const step = s.Step(static_cast<size_t>(std::countr_zero(next)));
    for (size_t k = 0; k < s.dimension; ++k) base[k] ^= step[k];
  } else {
    StepBase(s, next, [](size_t, WordVec) HWY_ATTR {});
  }
  WrapBase(base, s.dimension);
}

inline constexpr size_t kFewOutputs = 3;
inline constexpr size_t kRound = 4;  // vectors

// The first `count` of a vector; the others too where `room` allows.
template <class Output>
HWY_INLINE void PutFirst(WordVec words, size_t count, size_t room, typename Output::T* r,
                         const Output& output) {
  if (room >= kWordLanes) return output.Put(words, r);
  typename Output::T all[kWordLanes];
  output.Put(words, all);
  std::memcpy(r, all, count * sizeof(*all));
}

// `count` outputs from word p of the block on, of which `room` may be written: beyond the count
// stands anything. Where the block is one point there is no table.
template <bool kTable, class Output>
HWY_INLINE void Run(DigitalState& s, size_t p, size_t count, size_t room, typename Output::T* r,
                    const Output& output) {
  const WordTag tag;
  const size_t d = s.dimension;
  const uint32_t* const base = s.Base();
  const uint32_t* table = s.Table() + p;
  if (count < kFewOutputs) {
    size_t o = s.place;
    for (size_t i = 0; i < count; ++i) {
      output.One(kTable ? base[o] ^ table[i] : base[o], r + i);
      o = o + 1 == d ? 0 : o + 1;
    }
    return;
  }
  const auto wrapped = [d](size_t o) HWY_ATTR { return std::min(o, o - d); };
  const auto words = [&](const uint32_t* from, size_t o) HWY_ATTR {
    const WordVec x = hn::LoadU(tag, base + o);
    return kTable ? hn::Xor(x, hn::LoadU(tag, from)) : x;
  };
  if (count <= kWordLanes) return PutFirst(words(table, s.place), count, room, r, output);
  // Places in the point are modulo the dimension; from each, kWrap words can be read on.
  constexpr size_t kPerWrap = kWrap / kWordLanes;
  constexpr size_t kGroups = kRound / kPerWrap;
  static_assert(kGroups * kPerWrap == kRound);
  size_t steps[kGroups + 1] = {};
  const size_t wrap = kWrap % s.dimension;
  for (size_t g = 0; g < kGroups; ++g) steps[g + 1] = wrapped(steps[g] + wrap);
  size_t o = s.place;
  size_t vectors = std::min((count + kWordLanes - 1) / kWordLanes, room / kWordLanes);
  const size_t left = count - std::min(count, vectors * kWordLanes);
  for (; vectors >= kRound; vectors -= kRound) {
    for (size_t k = 0; k < kRound; ++k) {
      const size_t at = wrapped(o + steps[k / kPerWrap]) + k % kPerWrap * kWordLanes;
      output.Put(words(table + k * kWordLanes, at), r + k * kWordLanes);
    }
    o = wrapped(o + steps[kGroups]);
    table += kRound * kWordLanes;
    r += kRound * kWordLanes;
  }
  const size_t step = kWordLanes % s.dimension;
  for (; vectors != 0; --vectors) {
    output.Put(words(table, o), r);
    o = wrapped(o + step);
    table += kWordLanes;
    r += kWordLanes;
  }
  if (left != 0) PutFirst(words(table, o), left, left, r, output);
}

// The outputs of as many whole points as n has where a block is one point and this is its start:
// each is put while the base moves on. Returns their number.
template <class Output>
HWY_INLINE size_t WholePoints(DigitalState& s, size_t n, typename Output::T* r,
                              const Output& output) {
  const size_t d = s.dimension;
  if (s.log_block != 0 || s.place != 0 || d < kWrap) return 0;
  const size_t written = (d + kWordLanes - 1) / kWordLanes * kWordLanes;
  size_t done = 0;
  for (; n - done >= written && s.index != 0xFFFFFFFF; done += d) {
    StepBase(s, ++s.index, [&](size_t k, WordVec x) HWY_ATTR { output.Put(x, r + done + k); });
  }
  if (done != 0) WrapBase(s.Base(), s.dimension);
  return done;
}

// n outputs, n at least 1.
template <class Output>
HWY_INLINE void GenerateDigital(DigitalState& s, size_t n, typename Output::T* r,
                                const Output& output) {
  const uint32_t d = s.dimension;
  const size_t block = size_t{d} << s.log_block;
  while (n != 0) {
    const size_t whole = WholePoints(s, n, r, output);
    n -= whole;
    r += whole;
    if (n == 0) return;
    const uint32_t point = s.index & ((1u << s.log_block) - 1);
    const size_t p = size_t{point} * d + s.place;
    const size_t count = std::min(n, block - p);
    if (s.log_block != 0) {
      Run<true>(s, p, count, n, r, output);
    } else {
      Run<false>(s, p, count, n, r, output);
    }
    n -= count;
    r += count;
    if (p + count == block) {
      NextBlock(s);
    } else {
      const uint32_t end = s.place + static_cast<uint32_t>(count);
      s.index += end < d ? 0 : end / d;
      s.place = end < d ? end : end % d;
    }
  }
}

// On [0, 1): exact, so nothing depends on the control word and no flag rises.
inline void DigitalUnits(DigitalState& s, size_t n, double* r) {
  GenerateDigital(s, n, r, Fractions());
}

inline void DigitalDoubles(DigitalState& s, size_t n, double* r, double a, double b) {
  GenerateDigital(s, n, r, Doubles((b - a) * 0x1p-32, a));
}

inline void DigitalFloats(DigitalState& s, size_t n, float* r, double a, double b) {
  if (a == 0 && b == 1) {
    GenerateDigital(s, n, r, FloatFractions());
  } else {
    GenerateDigital(s, n, r, Floats(Doubles((b - a) * 0x1p-32, a)));
  }
}

inline void DigitalWords(DigitalState& s, size_t n, uint32_t* r) {
  GenerateDigital(s, n, r, Words());
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

// The bodies that QUO_EXPORT_DIGITAL of digital.h calls. Within quo::HWY_NAMESPACE.
#undef QUO_DIGITAL_BODIES
#define QUO_DIGITAL_BODIES(Name)                                                         \
  void u##Name(DigitalState* state, size_t n, double* r) { DigitalUnits(*state, n, r); } \
  void d##Name(DigitalState* state, size_t n, double* r, double a, double b) {           \
    DigitalDoubles(*state, n, r, a, b);                                                  \
  }                                                                                      \
  void s##Name(DigitalState* state, size_t n, float* r, double a, double b) {            \
    DigitalFloats(*state, n, r, a, b);                                                   \
  }                                                                                      \
  void i##Name(DigitalState* state, size_t n, uint32_t* r) { DigitalWords(*state, n, r); }

#endif  // QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_
