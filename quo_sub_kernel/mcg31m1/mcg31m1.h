// State and constants of MCG31M1.
#ifndef QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_
#define QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_

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

// The powers 0 .. kPowers31 of a multiplier.
inline constexpr size_t kPowers31 = 32;
struct Powers31 {
  uint32_t p[kPowers31 + 1];
  // The powers up to a^last, last >= 1, each from two of half its exponent.
  constexpr void Make(uint32_t a, size_t last) {
    p[0] = 1;
    p[1] = a % kM31;
    for (size_t i = 2; i <= last; ++i) p[i] = MulMod2P31M1(p[i / 2], p[i - i / 2]);
  }
};
inline constexpr Powers31 kBasePowers31 = [] {
  Powers31 powers{};
  powers.Make(kMultiplier31, kPowers31);
  return powers;
}();

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MCG31M1_MCG31M1_H_
