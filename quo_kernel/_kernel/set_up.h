// The constants that a distribution computes of its parameters, kept in a chunk of the stream until
// the parameters change.
//
// A chunk goes with its stream into copies and files, so what comes back may be anything: a chunk
// of another size is passed over, and constants that do not carry the seal of their bytes, or are
// not sound, are computed again in place. Where there is no memory for a chunk, the constants are
// computed for the call alone. So neither changes a number that is drawn.
#ifndef QUO_KERNEL__KERNEL_SET_UP_H_
#define QUO_KERNEL__KERNEL_SET_UP_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "pexquo/quo.h"
#include "quo_kernel/_kernel/chunk.h"

namespace quo {

// At the head of a record of constants, which has
//   bool IsFor(parameters...) const   whether they are of these parameters, and such that drawing
//                                     by them ends and stays inside its arrays, whatever they are;
//   void Compute(parameters...)       sets them, and `used`.
struct SetUpHead {
  uint64_t seal;
  uint64_t used;  // bytes of the record that matter, a multiple of 8
};

// What tells a record from one that was changed: a mixture of its words in four strands.
template <class C>
uint64_t SealOf(const C& constants) {
  static_assert(std::is_trivially_copyable_v<C> && sizeof(C) % 8 == 0);
  constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
  const auto* bytes = reinterpret_cast<const unsigned char*>(&constants);
  const size_t end = std::min<size_t>(constants.head.used, sizeof(C));
  uint64_t strand[4] = {1, 2, 3, 4};
  size_t i = offsetof(SetUpHead, used);
  const auto mix = [&](uint64_t& h) {
    uint64_t word;
    std::memcpy(&word, bytes + i, 8);
    h = (h ^ word) * kOdd;
    h ^= h >> 29;
    i += 8;
  };
  while (i + 32 <= end) {
    for (uint64_t& h : strand) mix(h);
  }
  while (i + 8 <= end) mix(strand[0]);
  uint64_t seal = 0;
  for (const uint64_t h : strand) seal = (seal ^ h) * kOdd;
  return seal;
}

// The constants for the parameters, from the stream's chunk or computed into it; into `own` where
// it cannot be had.
template <class C, class... Parameters>
const C& SetUp(StreamState* stream, uint32_t key, C& own, Parameters... parameters) {
  C* kept = FindChunk<C>(stream, key);
  if (kept != nullptr) {
    if (kept->head.seal == SealOf(*kept) && kept->IsFor(parameters...)) return *kept;
  } else if ((kept = AddChunk<C>(stream, key)) == nullptr) {
    kept = &own;
  }
  std::memset(static_cast<void*>(kept), 0, sizeof(C));
  kept->Compute(parameters...);
  kept->head.seal = SealOf(*kept);
  return *kept;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_SET_UP_H_
