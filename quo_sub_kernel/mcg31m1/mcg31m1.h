// State and constants of MCG31M1.
#ifndef QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_
#define QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "quo_sub_kernel/_math/modular.h"

namespace quo {

// Behind the stream's head.
struct StateMCG31M1 {
  uint32_t x;  // the next output
  uint32_t a;  // the current multiplier
};

inline constexpr uint32_t kMultiplier31 = 1132489760;
inline constexpr double kInv2P31M1 = 0x1.00000002p-31;  // 1/(2^31 - 1)

// The powers 0 .. 32 of the multiplier.
inline constexpr size_t kPowers31 = 32;
alignas(64) inline constexpr auto kBasePowers31 = [] {
  std::array<uint32_t, kPowers31 + 1> powers{1};
  for (size_t i = 1; i <= kPowers31; ++i) powers[i] = MulMod2P31M1(powers[i - 1], kMultiplier31);
  return powers;
}();

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_
