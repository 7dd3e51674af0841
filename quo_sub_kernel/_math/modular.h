// Products modulo 2^31 - 1, 2^59 and any m below 2^32.
#ifndef QUO_SUB_KERNEL__MATH_MODULAR_H_
#define QUO_SUB_KERNEL__MATH_MODULAR_H_

#include <cstdint>

namespace quo {

inline constexpr uint32_t kM31 = 0x7FFFFFFF;            // 2^31 - 1
inline constexpr uint64_t kMask59 = 0x7FFFFFFFFFFFFFF;  // 2^59 - 1

// x y mod 2^31 - 1 for x, y below 2^31: 2^31 is 1 modulo 2^31 - 1, so the halves of the product
// add.
constexpr uint32_t MulMod2P31M1(uint32_t x, uint32_t y) {
  const uint64_t p = static_cast<uint64_t>(x) * y;
  const uint32_t t = static_cast<uint32_t>(p & kM31) + static_cast<uint32_t>(p >> 31);
  return t >= kM31 ? t - kM31 : t;
}

constexpr uint64_t MulMod2P59(uint64_t x, uint64_t y) { return (x * y) & kMask59; }

constexpr uint32_t MulMod(uint32_t x, uint32_t y, uint32_t m) {
  return static_cast<uint32_t>(static_cast<uint64_t>(x) * y % m);
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_MODULAR_H_
