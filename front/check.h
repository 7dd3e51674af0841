// Conditions on arguments of streams and distributions: each gives QUO_OK or the status of its
// refusal, and First the first refusal of several.
#ifndef FRONT_CHECK_H_
#define FRONT_CHECK_H_

#include <xmmintrin.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>

#include "pexquo/pexquo.h"

namespace pexquo_front {

constexpr int32_t Unless(bool holds, int32_t status) { return holds ? QUO_OK : status; }

constexpr int32_t First(std::initializer_list<int32_t> statuses) {
  for (const int32_t status : statuses) {
    if (status != QUO_OK) return status;
  }
  return QUO_OK;
}

constexpr int32_t kStreamHeader = 1;

// Not null, with the head that every stream has.
int32_t LiveStream(const QuoStream* stream);

// The same, in place for the rows of the new scheme that are in use: a part of every drawing call.
[[gnu::always_inline]] inline bool IsLive(const QuoStream* stream) {
  if (stream == nullptr || stream->header != kStreamHeader) [[unlikely]]
    return false;
  const auto id = static_cast<uint32_t>(stream->id);
  const uint32_t row = (id >> 20) - 1, member = id & 0xFFFFF;
  if (row < static_cast<uint32_t>(NRegBrngsNew) && row < QUO_REGISTRY_ROWS &&
      member < static_cast<uint32_t>(NumOffsets[row])) [[likely]] {
    return true;
  }
  return LiveStream(stream) == QUO_OK;
}

template <typename T>
int32_t AllFinite(std::span<const T> numbers) {
  for (const T x : numbers) {
    if (!std::isfinite(x)) return QUO_NOT_FINITE;
  }
  return QUO_OK;
}

// Comparisons with a NaN are false, so Finite comes first where there is a status for it.
template <typename... T>
int32_t Finite(T... x) {
  return Unless((std::isfinite(x) && ...), QUO_NOT_FINITE);
}

// The generators compute b - a, and some (a + b)/2, to nearest and without flushing: so does this,
// whatever the caller has set.
template <typename T>
[[gnu::noinline, gnu::cold]] int32_t RangeToNearest(T a, T b) {
  constexpr unsigned kStandard = 0x1F80;
  const unsigned control = _mm_getcsr();
  _mm_setcsr(kStandard);
  asm volatile("" : "+x"(a), "+x"(b));  // what follows stays between the two settings
  int32_t status = First({Finite(a, b), Unless(a < b, QUO_EMPTY_RANGE),
                          Unless(std::isfinite(b - a) && std::isfinite(a + b), QUO_WIDE_RANGE)});
  asm volatile("" : "+r"(status));
  _mm_setcsr(control);
  return status;
}

template <typename T>
int32_t Range(T a, T b) {
  constexpr T kPlain = std::numeric_limits<T>::max() / 4;
  if (a < b && a > -kPlain && b < kPlain) [[likely]]
    return QUO_OK;
  return RangeToNearest(a, b);
}

// Displacements come with scales: a is finite, and so is beta, above 0.
template <typename T>
int32_t Scaled(T a, T beta) {
  if (beta > 0 && std::isfinite(a) && std::isfinite(beta)) [[likely]]
    return QUO_OK;
  return First({Finite(a, beta), Unless(beta > 0, QUO_BAD_SCALE)});
}

template <typename... T>
int32_t Shapes(T... shape) {
  return First({Finite(shape...), Unless(((shape > 0) && ...), QUO_BAD_SHAPE)});
}

inline int32_t Probability(double p) {
  if (p >= 0 && p <= 1) [[likely]]
    return QUO_OK;
  return First({Finite(p), QUO_BAD_PROBABILITY});
}

// Of waiting for successes: in (0, 1], and not so small that 1 - p, to nearest, is 1.
inline int32_t ProbabilityOfSuccess(double p) {
  return First({Probability(p), Unless(p > 0x1p-54, QUO_BAD_PROBABILITY)});
}

}  // namespace pexquo_front

#endif  // FRONT_CHECK_H_
