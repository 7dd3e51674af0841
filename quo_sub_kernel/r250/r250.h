// State and constants of R250.
#ifndef QUO_SUB_KERNEL_R250_R250_H_
#define QUO_SUB_KERNEL_R250_R250_H_

#include <cstddef>
#include <cstdint>

namespace quo {

// The trinomial x^250 + x^103 + 1.
inline constexpr size_t kLag250 = 250;
inline constexpr size_t kPartner250 = 103;

// Behind the stream's head.
struct StateR250 {
  uint32_t x[kLag250];  // circular: the last 250 outputs, the oldest at i
  int32_t i;            // the word to replace next
  int32_t j;            // its partner, 103 further on
};

}  // namespace quo

#endif  // QUO_SUB_KERNEL_R250_R250_H_
