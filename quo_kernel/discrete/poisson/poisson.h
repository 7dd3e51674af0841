// What the Poisson generators share: the ranges of the mean and the replacements in vector math.
#ifndef QUO_KERNEL_DISCRETE_POISSON_POISSON_H_
#define QUO_KERNEL_DISCRETE_POISSON_POISSON_H_

#include "pexquo/pex.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_sub_kernel/_math/scalar.h"

namespace quo {

// From this mean on counts are made of normal numbers, below by inversion.
inline constexpr double kNormalFrom = 27;

// What is not above 0 counts as 0. Beyond 2^32, as there, every count is at least 2^31 - 1.
inline double SoundMean(double lambda) {
  return lambda > 0 ? (lambda < 0x1p32 ? lambda : 0x1p32) : 0;
}

// The logarithm of 0 and the inverse error function at and beyond its poles stay finite.
inline int ReplaceForPoisson(PexErrorContext* record) {
  constexpr double kLargestErfInv = 0x1.7744f8f74e94ap+2;  // erfinv(1 - 2^-53)
  const double x = record->arg1;
  return ReplaceBy(record, x == 0 ? kLnSmallest : x < 0 ? -kLargestErfInv : kLargestErfInv);
}

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE_POISSON_POISSON_H_
