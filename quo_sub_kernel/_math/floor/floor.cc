// The floor by rounding to nearest, which adding 1.5 2^52 does to all below 2^51 in size.
#include <bit>
#include <cmath>
#include <cstdint>

#include "quo_sub_kernel/_math/scalar.h"

namespace quo {

double __quodFloor(double x) {
  constexpr double kShift = 6755399441055744.0;  // 1.5 2^52
  const double size = std::fabs(x);
  if (size < 1) return x < 0 ? -1.0 : x == 0 ? x : 0.0;
  if (size < 0x1p51) {
    const double nearest = (x + kShift) - kShift;
    return x < nearest ? nearest - 1 : nearest;
  }
  if (size < 0x1p52 && (std::bit_cast<uint64_t>(x) & 1) != 0) return x - 0.5;
  return x != x ? x + x : x;
}

}  // namespace quo
