// The state of Sobol sequences.
#ifndef QUO_SUB_KERNEL_SOBOL_SOBOL_H_
#define QUO_SUB_KERNEL_SOBOL_SOBOL_H_

#include "quo_sub_kernel/_math/digital.h"

namespace quo {

inline constexpr DigitalShape kSobolShape = {40, 2604, (10592 - 16) / 4, 9};

}  // namespace quo

#endif  // QUO_SUB_KERNEL_SOBOL_SOBOL_H_
