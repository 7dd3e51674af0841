// State and parameters of MT19937.
#ifndef QUO_SUB_KERNEL_MT19937_MT19937_H_
#define QUO_SUB_KERNEL_MT19937_MT19937_H_

#include <cstddef>
#include <cstdint>

#include "quo_sub_kernel/_math/mersenne.h"

namespace quo {

// Behind the stream's head.
struct StateMT19937 {
  static constexpr size_t kN = 624, kM = 397;
  static constexpr uint32_t kUpper = 0x80000000;
  static constexpr int kU = 11;
  static constexpr TwisterWords words() { return {0x9908B0DF, 0x9D2C5680, 0xEFC60000}; }

  uint32_t mt[kN];
  int32_t mti;  // index of the next word to deliver; kN: the block is used up
  uint32_t reserved;
};
static_assert(sizeof(StateMT19937) == 2520 - 16);

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MT19937_MT19937_H_
