// A block of candidates through a sieve, group after group of vectors.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "hwy/highway.h"

#if defined(QUO_KERNEL_CONTINUOUS_GAMMA_SIEVE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QUO_KERNEL_CONTINUOUS_GAMMA_SIEVE_INL_H_
#undef QUO_KERNEL_CONTINUOUS_GAMMA_SIEVE_INL_H_
#else
#define QUO_KERNEL_CONTINUOUS_GAMMA_SIEVE_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Of m candidates, kBlock at most, each of kUniforms uniforms in u, the accepted numbers: their
// count, after store(count, numbers). sieve(vectors, first, x) stores those of `vectors` vectors of
// candidates, whose uniforms begin at `first`, at x, and returns how many; x has room for all of
// them. Candidates of which all uniforms are 1/4 fill the last vector of u: they must be accepted.
template <size_t kUniforms, size_t kVectors, int32_t kBlock, class Sieve, class Store>
HWY_INLINE int32_t SieveBlock(int32_t m, double* HWY_RESTRICT u, Sieve sieve, Store store) {
  constexpr size_t kLanes = hn::MaxLanes(hn::ScalableTag<double>()), kGroup = kLanes * kVectors;
  static_assert(kBlock % kGroup == 0);
  alignas(64) double x[kBlock + kLanes];
  const size_t wanted = static_cast<size_t>(m);
  const size_t filled = (wanted + kLanes - 1) / kLanes * kLanes;
  std::fill(u + kUniforms * wanted, u + kUniforms * filled, 0.25);
  size_t count = 0, i = 0;
  for (; i + kGroup <= filled; i += kGroup) {
    count += sieve(std::integral_constant<size_t, kVectors>(), u + kUniforms * i, x + count);
  }
  for (; i < filled; i += kLanes) {
    count += sieve(std::integral_constant<size_t, 1>(), u + kUniforms * i, x + count);
  }
  count -= filled - wanted;
  store(count, x);
  return static_cast<int32_t>(count);
}

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
