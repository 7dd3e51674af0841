// Inversion of a distribution on 0, 1, 2 ... by the table of its distribution function: the result
// for a uniform u on [0, 1) is the least k with F(k) > u.
//
// H.-C. Chen, Y. Asau, "On generating random variates from an empirical distribution", AIIE
// Transactions 6 (1974): a guide tells for each of equal cells of [0, 1) where the search begins,
// so that it mostly ends at once.
#ifndef QUO_KERNEL__KERNEL_INVERSION_TABLE_H_
#define QUO_KERNEL__KERNEL_INVERSION_TABLE_H_

#include <algorithm>
#include <cstdint>

#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"

namespace quo {

// cdf[k] = F(k), of the ratios f(k + 1)/f(k) = ratio(k) of probabilities, up to the k beyond which
// less than 2^-55 is left: its cdf is 1. Every cdf is 1 minus the sum of what is above, so the
// upper tail keeps its relative accuracy as far as doubles below 1 go. From where they fall below
// 1, no later ratio may be above max(this one, last_ratio). Returns the length of the table, 0 if
// it would be more than `room`.
template <class Ratio>
int32_t TabulateDistribution(int32_t room, double* cdf, double last_ratio, Ratio ratio) {
  double f = 1, sum = 1;
  int32_t size = 1;
  cdf[0] = f;
  for (;; ++size) {
    const double next = ratio(static_cast<double>(size - 1)), most = std::max(next, last_ratio);
    if (most < 1 && f * most < (1 - most) * (0x1p-55 * sum)) break;
    if (size == room) return 0;
    f *= next;
    sum += f;
    cdf[size] = f;
  }
  double total = 0, above = 0;
  for (int32_t k = size; k-- > 0;) total += cdf[k];
  for (int32_t k = size; k-- > 0;) {
    f = cdf[k];
    cdf[k] = 1 - above / total;
    above += f;
  }
  return size;
}

// A table to be searched, cdf[size - 1] = 1. Whatever the other values are, results are at least 0
// and below `size`.
class InversionTable {
 public:
  // `n` numbers are expected to be asked for.
  InversionTable(const double* cdf, int32_t size, int32_t n)
      : cdf_(cdf), cells_(n < kFewest ? 1 : kCells) {
    int32_t k = 0;
    for (int32_t cell = 0; cell < cells_; ++cell) {
      while (k < size - 1 && cdf[k] <= cell * (1.0 / cells_)) ++k;
      guide_[cell] = static_cast<uint16_t>(k);
    }
  }

  int32_t operator()(double u) const {
    constexpr double kBelowOne = 1 - 0x1p-53;
    u = u > 0 ? u : 0;  // also of what a user's generator may give
    u = u < kBelowOne ? u : kBelowOne;
    int32_t k = guide_[static_cast<int32_t>(u * cells_)];
    k += cdf_[k] <= u;
    while (cdf_[k] <= u) [[unlikely]]++ k;
    return k;
  }

 private:
  static constexpr int32_t kCells = 256, kFewest = 48;
  const double* const cdf_;
  const int32_t cells_;
  uint16_t guide_[kCells];
};

// n numbers at r, each `least` more than what the table gives for one uniform.
inline int32_t DrawByTable(StreamState* stream, int32_t n, int32_t* r, const double* cdf,
                           int32_t size, int32_t least = 0) {
  constexpr int32_t kBlock = 1024;
  const InversionTable table(cdf, size, n);
  alignas(64) double u[kBlock];
  int32_t status = QUO_OK;
  for (int32_t left = n; left > 0; left -= kBlock, r += kBlock) {
    const int32_t m = std::min(left, kBlock);
    status = Generate(stream, m, u, 0.0, 1.0);
    if (status < 0) break;
    for (int32_t i = 0; i < m; ++i) Put(r + i, least + table(u[i]));
  }
  return status;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_INVERSION_TABLE_H_
