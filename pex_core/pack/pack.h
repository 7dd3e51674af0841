// What the pack and unpack entries share: the width flag, overlapping ranges, element loops.
//
// The element loops are the meaning of the entries: elements are moved one by one in ascending
// order, so that a result that overlaps an argument is seen by the elements after it. Everything
// faster is taken only where no one can tell. Elements move through loads and stores alone, which
// change no bit of a NaN and raise no flag.
#ifndef PEX_CORE_PACK_PACK_H_
#define PEX_CORE_PACK_PACK_H_

#include <cstddef>
#include <cstdint>

namespace pex {

// Width 1 says that counts and increments are the low halves of their registers.
constexpr int32_t kWidth32 = 1;

inline int64_t Narrowed(int64_t value, int32_t width) {
  return width == kWidth32 ? static_cast<int32_t>(value) : value;
}

// Whether the ranges of `n` objects at p and `m` objects at q have a byte in common.
template <typename P, typename Q>
bool Overlap(const P* p, size_t n, const Q* q, size_t m) {
  const auto at_p = reinterpret_cast<uintptr_t>(p), at_q = reinterpret_cast<uintptr_t>(q);
  return at_q - at_p < n * sizeof(P) || at_p - at_q < m * sizeof(Q);
}

template <typename T, typename Index>
void PackMaskedLoop(int64_t n, const T* a, const Index* mask, T* y) {
  int64_t k = 0;
  for (int64_t i = 0; i < n; ++i) {
    if (mask[i] != 0) y[k++] = a[i];
  }
}

template <typename T, typename Index>
void UnpackMaskedLoop(int64_t n, const T* a, T* y, const Index* mask) {
  int64_t k = 0;
  for (int64_t i = 0; i < n; ++i) {
    if (mask[i] != 0) y[i] = a[k++];
  }
}

}  // namespace pex

#endif  // PEX_CORE_PACK_PACK_H_
