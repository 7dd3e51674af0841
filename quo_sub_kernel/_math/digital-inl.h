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

// The base of the next block, or of the first one behind the last.
HWY_INLINE void NextBlock(DigitalState& s) {
  const WordTag d;
  static_assert(kWrap % kWordLanes == 0);
  uint32_t* const base = s.Base();
  const uint32_t next = (s.index >> s.log_block) + 1;
  s.index = next << s.log_block;
  if (s.index == 0) return SeekDigital(s, 1, 0);  // point 0 is passed over
  const uint32_t* const step = s.Step(static_cast<size_t>(std::countr_zero(next)));
  if (s.dimension < kWrap) {
    for (size_t k = 0; k < s.dimension; ++k) base[k] ^= step[k];
  } else {
    // What is written behind the base is mended below.
    for (size_t k = 0; k < s.dimension; k += kWordLanes) {
      hn::StoreU(hn::Xor(hn::LoadU(d, base + k), hn::LoadU(d, step + k)), d, base + k);
    }
  }
  WrapBase(base, s.dimension);
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
  const auto wrapped = [d](size_t o) HWY_ATTR { return std::min(o, o - d); };
  const auto words = [&](const uint32_t* from, size_t o) HWY_ATTR {
    const WordVec x = hn::LoadU(tag, base + o);
    return kTable ? hn::Xor(x, hn::LoadU(tag, from)) : x;
  };
  // Into the point, modulo the dimension.
  const size_t step1 = kWordLanes % d;
  const size_t step2 = wrapped(step1 + step1), step3 = wrapped(step2 + step1);
  const size_t step4 = wrapped(step3 + step1);
  size_t o = s.place;
  size_t vectors = std::min((count + kWordLanes - 1) / kWordLanes, room / kWordLanes);
  size_t left = count - std::min(count, vectors * kWordLanes);
  for (; vectors >= 4; vectors -= 4) {
    const size_t o1 = wrapped(o + step1), o2 = wrapped(o + step2), o3 = wrapped(o + step3);
    output.Put(words(table, o), r);
    output.Put(words(table + kWordLanes, o1), r + kWordLanes);
    output.Put(words(table + 2 * kWordLanes, o2), r + 2 * kWordLanes);
    output.Put(words(table + 3 * kWordLanes, o3), r + 3 * kWordLanes);
    o = wrapped(o + step4);
    table += 4 * kWordLanes;
    r += 4 * kWordLanes;
  }
  for (; vectors != 0; --vectors) {
    output.Put(words(table, o), r);
    o = wrapped(o + step1);
    table += kWordLanes;
    r += kWordLanes;
  }
  if (left == 0) return;
  typename Output::T last[kWordLanes];
  output.Put(words(table, o), last);
  std::memcpy(r, last, left * sizeof(*last));
}

// n outputs, n at least 1.
template <class Output>
HWY_INLINE void GenerateDigital(DigitalState& s, size_t n, typename Output::T* r,
                                const Output& output) {
  const uint32_t d = s.dimension;
  const size_t block = size_t{d} << s.log_block;
  while (n != 0) {
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
      s.place = 0;
      NextBlock(s);
    } else {
      const uint32_t end = s.place + static_cast<uint32_t>(count);
      s.index += end / d;
      s.place = end % d;
    }
  }
}

inline void DigitalDoubles(DigitalState& s, size_t n, double* r, double a, double b) {
  if (a == 0 && b == 1) {
    GenerateDigital(s, n, r, Fractions());
  } else {
    GenerateDigital(s, n, r, Doubles((b - a) * 0x1p-32, a));
  }
}

inline void DigitalFloats(DigitalState& s, size_t n, float* r, double a, double b) {
  if (a == 0 && b == 1) {
    GenerateDigital(s, n, r, Floats(Fractions()));
  } else {
    GenerateDigital(s, n, r, Floats(Doubles((b - a) * 0x1p-32, a)));
  }
}

inline void DigitalWords(DigitalState& s, size_t n, uint32_t* r) {
  GenerateDigital(s, n, r, Words());
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // QUO_SUB_KERNEL__MATH_DIGITAL_INL_H_
