// Constants of the square-root family (root_square-inl.h), double and single precision.
#ifndef PEX_CORE__HEAP_REAL_ROOT_CONSTANTS_H_
#define PEX_CORE__HEAP_REAL_ROOT_CONSTANTS_H_

#include <cstdint>

#include "pex_core/_heap/real/root_polynomials.h"

namespace pex {

template <typename T>
struct RootConstants;

template <>
struct RootConstants<double> {
  // y = kInverseRoot - (bits of t >> 1), read as a number, is a straight line between powers of
  // two; here 3/2 <= t y^2 <= 27/16, the narrowest interval of all such constants.
  static constexpr uint64_t kInverseRoot = 0x5FEC000000000000;
  // z = kInverse - bits of s: 0.694 <= s z <= 0.72, so that 2 s z (kInverseSum - s z) = 1 within
  // 2^-11.
  static constexpr uint64_t kInverse = 0x7FD6426000000000;
  static constexpr double kInverseSum = 0x1.6a16p+0;
  static constexpr uint64_t kOne = 0x3FF0000000000000;
  static constexpr uint64_t kEvenExponent = 0xFFE0000000000000;
  static constexpr auto& kStart = dRootStart;
  static constexpr auto& kStepStart = dRootStepStart;
  static constexpr double kStep = dRootStep;
};

template <>
struct RootConstants<float> {
  static constexpr uint32_t kInverseRoot = 0x5F600000;
  static constexpr uint32_t kInverse = 0x7EB21300;
  static constexpr float kInverseSum = 0x1.6a16p+0f;
  static constexpr uint32_t kOne = 0x3F800000;
  static constexpr uint32_t kEvenExponent = 0xFF000000;
  static constexpr auto& kStart = sRootStart;
  static constexpr auto& kStepStart = sRootStart;
};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ROOT_CONSTANTS_H_
