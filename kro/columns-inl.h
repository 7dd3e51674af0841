// Lower triangular products of short vectors, many in a row: x = T z + a for vectors z of dimension
// 1 to 16 that follow one another. The numbers go by whole registers, whatever the dimension: in
// each lane the terms T[i][i - k] z[i - k] of its own row i, one distance k after the other, are
// loads of coefficients that repeat with the dimension and of numbers k places before. Where a row
// has no such term, -0 is added, which changes nothing. So every element is the sum of its terms in
// the order of the distances, each product and sum rounded, at every vector level.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "hwy/highway.h"

#ifndef KRO_COLUMNS_INL_H_ONCE_
#define KRO_COLUMNS_INL_H_ONCE_

namespace kro {

// The coefficients of a product of dimension m, by distance and place.
template <typename T>
struct Columns {
  static constexpr size_t kDimensions = 16;
  static constexpr size_t kLanes = 64 / sizeof(T);  // of the widest level
  static constexpr size_t kPlaces = kDimensions + kLanes;
  using Word = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

  size_t m;
  size_t order[kDimensions];            // the distances in the order of their terms
  T coefficient[kDimensions][kPlaces];  // [k][p]: T[i][i - k] for i = p mod m, or -0
  Word mask[kDimensions][kPlaces];      // all ones, or 0 where row i has no such term
  T shift[kPlaces];                     // a[p mod m]

  // entry(i, j) is T[i][j], j <= i; a is null for none.
  template <class Entry>
  Columns(size_t dimension, bool diagonal_first, const T* a, const Entry& entry) : m(dimension) {
    for (size_t k = 0; k < m; ++k) order[k] = diagonal_first ? (m - k) % m : m - 1 - k;
    for (size_t k = 0; k < m; ++k) {
      for (size_t i = 0; i < m; ++i) {
        coefficient[k][i] = i >= k ? entry(i, i - k) : T(-0.0);
        mask[k][i] = i >= k ? static_cast<Word>(-1) : 0;
      }
      for (size_t p = m; p < m + kLanes; ++p) {
        coefficient[k][p] = coefficient[k][p - m];
        mask[k][p] = mask[k][p - m];
      }
    }
    for (size_t p = 0; p < m + kLanes; ++p) {
      shift[p] = T(-0.0);
      if (a != nullptr) std::memcpy(&shift[p], a + p % m, sizeof(T));
    }
  }
};

// Room for numbers before and behind a block, which are read and count for nothing.
inline constexpr size_t kColumnsMargin = 16;

}  // namespace kro
#endif

#if defined(KRO_COLUMNS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef KRO_COLUMNS_INL_H_
#undef KRO_COLUMNS_INL_H_
#else
#define KRO_COLUMNS_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace kro::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Some vectors in a row from place 0 on, their elements `count` numbers at z, to x, which is not z
// and may stand at any address. kColumnsMargin numbers before z and behind its end can be read.
template <typename T>
HWY_INLINE void MultiplyColumns(const Columns<T>& t, size_t count, const T* HWY_RESTRICT z,
                                T* HWY_RESTRICT x) {
  const hn::ScalableTag<T> d;
  const hn::RebindToUnsigned<decltype(d)> bits;
  const size_t lanes = hn::Lanes(d);
  const size_t step = lanes % t.m;
  size_t place = 0;
  for (size_t p = 0; p < count; p += lanes) {
    auto sum = hn::Set(d, T(-0.0));
    for (size_t term = 0; term < t.m; ++term) {
      const size_t k = t.order[term];
      const auto mask = hn::BitCast(d, hn::LoadU(bits, &t.mask[k][place]));
      const auto value = hn::And(hn::LoadU(d, z + p - k), mask);
      sum = hn::Add(sum, hn::Mul(hn::LoadU(d, &t.coefficient[k][place]), value));
    }
    sum = hn::Add(sum, hn::LoadU(d, &t.shift[place]));
    if (p + lanes <= count) [[likely]] {
      hn::StoreU(sum, d, x + p);
    } else {
      HWY_ALIGN T last[hn::MaxLanes(d)];
      hn::Store(sum, d, last);
      std::memcpy(x + p, last, (count - p) * sizeof(T));
    }
    place += step;
    if (place >= t.m) place -= t.m;
  }
}

// The same in place, with room on the stack for some vectors at a time.
template <typename T>
HWY_INLINE void MultiplyColumnsInPlace(const Columns<T>& t, size_t count, T* x) {
  constexpr size_t kRoom = 1024;
  alignas(64) T z[kRoom + 2 * kColumnsMargin] = {};
  const size_t block = kRoom / t.m * t.m;
  for (size_t done = 0; done < count; done += block) {
    const size_t n = std::min(block, count - done);
    std::memcpy(z + kColumnsMargin, x + done, n * sizeof(T));
    MultiplyColumns(t, n, z + kColumnsMargin, x + done);
  }
}

}  // namespace kro::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // KRO_COLUMNS_INL_H_
