// State and constants of MCG59.
#ifndef QUO_SUB_KERNEL_MCG59_MCG59_H_
#define QUO_SUB_KERNEL_MCG59_MCG59_H_

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

// The powers 0 .. kPowers59 of a multiplier.
inline constexpr size_t kPowers59 = 32;
struct Powers59 {
  uint64_t p[kPowers59 + 1];
  // The powers up to a^last, last >= 1, each from two of half its exponent.
  constexpr void Make(uint64_t a, size_t last) {
    p[0] = 1;
    p[1] = a & kMask59;
    for (size_t i = 2; i <= last; ++i) p[i] = MulMod2P59(p[i / 2], p[i - i / 2]);
  }
};
inline constexpr Powers59 kBasePowers59 = [] {
  Powers59 powers{};
  powers.Make(kMultiplier59, kPowers59);
  return powers;
}();

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MCG59_MCG59_H_
