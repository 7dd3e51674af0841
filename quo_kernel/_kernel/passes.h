// The cheap steps between the vector functions of a distribution, over arrays at any address, and
// the blocks in which all is done. max(a, x) is a > x ? a : x: what is not a number stays, and of
// two zeros the second.
#ifndef QUO_KERNEL__KERNEL_PASSES_H_
#define QUO_KERNEL__KERNEL_PASSES_H_

#include <algorithm>
#include <cstdint>

namespace quo {

// r = 0 - r
void Negate(int32_t n, double* r);
void Negate(int32_t n, float* r);
// r = r beta + a
void Displace(int32_t n, double* r, double a, double beta);
void Displace(int32_t n, float* r, float a, float beta);
// r = max(a, r beta + a)
void DisplaceUp(int32_t n, double* r, double a, double beta);
void DisplaceUp(int32_t n, float* r, float a, float beta);
// r = max(a, a - r beta)
void DisplaceDown(int32_t n, double* r, double a, double beta);
void DisplaceDown(int32_t n, float* r, float a, float beta);

// A parameter, not to be looked at before: scalar arithmetic on it comes after the control word of
// the call has been set.
template <typename T>
inline T AfterControl(T parameter) {
  __asm__ volatile("" : "+x"(parameter));
  return parameter;
}

// transform(count, first) for parts of r that fit into the first cache with room to spare. A part
// is a whole number of the groups of vectors that the vector functions work on, whatever the level.
template <typename T, class F>
void InBlocks(int32_t n, T* r, F transform) {
  constexpr int32_t kBlock = 1056;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    transform(std::min(left, kBlock), r);
  }
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_PASSES_H_
