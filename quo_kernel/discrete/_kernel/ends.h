// Integers below b and successes of probability 1, without fail. The entries take uniforms as they
// are rounded, now and then to the upper bound: on [2^31 - 2, 2^31 - 1) one of 2^23, floats on [0,
// 1) one of 2^25, of MCG59 those of words next to 2^59, whatever the bounds.
#ifndef QUO_KERNEL_DISCRETE__KERNEL_ENDS_H_
#define QUO_KERNEL_DISCRETE__KERNEL_ENDS_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "pexquo/quo.h"
#include "quo_kernel/_kernel/unaligned.h"

namespace quo {

// Whether uniforms of the stream on [a, b) may round to b. Words of up to 32 bits leave (b - a)
// 2^-32 below it, which the roundings, to 53 bits, keep unless b - a is small beside a and b.
// Generators of more bits and the caller's own come as near as can be.
inline bool MayRoundUp(const StreamState* stream, int64_t a, int64_t b) {
  BrngProperties brng;
  if (__quoGetBrngProperties(stream->id, &brng) != QUO_OK) return false;
  const bool has_words = stream->id < QUO_BRNG_IABSTRACT && brng.WordBytes == 4;
  return !has_words || (b - a) << 18 < std::max(std::abs(a), std::abs(b));
}

// _quoiRngUniform for a < b, with b - 1 in place of b.
inline int32_t DrawIntegers(uint32_t method, StreamState* stream, int32_t n, int32_t* r, int32_t a,
                            int32_t b) {
  if (a >= b || !MayRoundUp(stream, a, b)) return _quoiRngUniform(method, stream, n, r, a, b);
  constexpr int32_t kBlock = 1024;  // which it draws whole or, after a negative status, not at all
  int32_t status = QUO_OK;
  for (int32_t done = 0; done < n && status >= 0;) {
    const int32_t count = std::min(kBlock, n - done);
    status = _quoiRngUniform(method, stream, count, r + done, a, b);
    for (const int32_t end = status < 0 ? done : done + count; done < end; ++done) {
      Put(r + done, std::min(Get(r + done), b - 1));
    }
  }
  return status;
}

// _quoiRngBernoulli, with successes alone where p is 1 in single precision: all uniforms, rounded
// to 1 or not, are below 2.
inline int32_t DrawBernoulli(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                             double p) {
  constexpr double kLeast = 1 - 0x1p-25;
  return _quoiRngBernoulli(method, stream, n, r, p >= kLeast ? 2 : p);
}

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE__KERNEL_ENDS_H_
