// State and parameters of MT2203.
#ifndef QUO_SUB_KERNEL_MT2203_MT2203_H_
#define QUO_SUB_KERNEL_MT2203_MT2203_H_

#include <cstddef>
#include <cstdint>

#include "quo_sub_kernel/_math/mersenne.h"
#include "quo_sub_kernel/mt2203/mt2203_table.h"

namespace quo {

// Behind the stream's head.
struct StateMT2203 {
  static constexpr size_t kN = 69, kM = 34;
  static constexpr uint32_t kUpper = 0xFFFFFFE0;
  static constexpr int kU = 12;
  TwisterWords words() const { return {a, b, c}; }

  uint32_t mt[kN];
  int32_t mti;       // index of the next word to deliver; kN: the block is used up
  uint32_t a, b, c;  // of the member
  uint32_t reserved;
};
static_assert(sizeof(StateMT2203) == 312 - 16);

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MT2203_MT2203_H_
