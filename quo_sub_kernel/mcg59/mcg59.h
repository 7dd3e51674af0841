// State and constants of MCG59.
#ifndef QUO_SUB_KERNEL_MCG59_MCG59_H_
#define QUO_SUB_KERNEL_MCG59_MCG59_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "quo_sub_kernel/_math/modular.h"

namespace quo {

// Behind the stream's head.
struct StateMCG59 {
  uint64_t x;  // the next output
  uint64_t a;  // the current multiplier
};

inline constexpr uint64_t kMultiplier59 = 302875106592253;  // 13^13
inline constexpr double kInv2P59 = 0x1p-59;

// The powers 0 .. 32 of the multiplier.
inline constexpr size_t kPowers59 = 32;
alignas(64) inline constexpr auto kBasePowers59 = [] {
  std::array<uint64_t, kPowers59 + 1> powers{1};
  for (size_t i = 1; i <= kPowers59; ++i) powers[i] = MulMod2P59(powers[i - 1], kMultiplier59);
  return powers;
}();

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MCG59_MCG59_H_
