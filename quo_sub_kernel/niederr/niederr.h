// The state of Niederreiter sequences.
#ifndef QUO_SUB_KERNEL_NIEDERR_NIEDERR_H_
#define QUO_SUB_KERNEL_NIEDERR_NIEDERR_H_

#include <cstdint>

#include "quo_sub_kernel/_math/digital.h"

namespace quo {

inline constexpr DigitalShape kNiederrShape = {318, 10498, (43280 - 16) / 4, 10};

// InitStream's method 0.
int32_t SeedNiederr(StreamState* stream, int32_t n, const uint32_t* params);

}  // namespace quo

#endif  // QUO_SUB_KERNEL_NIEDERR_NIEDERR_H_
