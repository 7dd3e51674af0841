// The parameters of InitStream's methods.
#ifndef QUO_SUB_KERNEL__MATH_PARAMS_H_
#define QUO_SUB_KERNEL__MATH_PARAMS_H_

#include <cstdint>
#include <cstring>

namespace quo {

// Skip-ahead: the 64-bit count at params, which may be aligned for 32 bits only.
inline uint64_t SkipCount(const uint32_t* params) {
  uint64_t count;
  std::memcpy(&count, params, sizeof(count));
  return count;
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__MATH_PARAMS_H_
