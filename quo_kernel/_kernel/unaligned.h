// Elements at any address.
#ifndef QUO_KERNEL__KERNEL_UNALIGNED_H_
#define QUO_KERNEL__KERNEL_UNALIGNED_H_

#include <cstring>

namespace quo {

template <typename T>
inline T Get(const T* p) {
  T x;
  std::memcpy(&x, p, sizeof(T));
  return x;
}

template <typename T>
inline void Put(T* p, T x) {
  std::memcpy(p, &x, sizeof(T));
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_UNALIGNED_H_
