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
  // For n numbers to come: few are searched for by halves, without the guide.
  InversionTable(const double* cdf, int32_t size, int32_t n)
      : cdf_(cdf), last_(size - 1), guided_(n >= kFewest) {
    for (int32_t k = 0, cell = 0; guided_ && k < size; ++k) {
      const int32_t end = CellOf(std::min(cdf[k], 1.0));
      if (end < cell) {  // as those before
        Cell& shared = guide_[cell - 1];
        if (shared.count >= 0) shared = {kNever, ~shared.count};
      }
      while (cell <= end && cell < kCells) guide_[cell++] = {cdf[k], k};
    }
  }

  // r[i] = least + the least k with F(k) > u[i], for n uniforms.
  // What a user's generator may give outside [0, 1) counts as the nearest uniform, NaN as the last.
  void Search(int32_t n, const double* u, int32_t* r, int32_t least) const {
    if (!guided_) {
      for (int32_t i = 0; i < n; ++i) {
        const double* end = std::upper_bound(cdf_, cdf_ + last_, BelowOne(u[i]));
        Put(r + i, least + static_cast<int32_t>(end - cdf_));
      }
      return;
    }
    for (int32_t i = 0; i < n; ++i) {
      const double x = BelowOne(u[i]);
      const Cell& guide = guide_[CellOf(x)];
      int64_t k = guide.count + (x >= guide.end);
      if (k < 0) [[unlikely]] {
        for (k = ~guide.count; cdf_[k] <= x;) ++k;
      }
      Put(r + i, least + static_cast<int32_t>(k));
    }
  }

 private:
  static constexpr int32_t kCells = 256, kFewest = 24;
  static constexpr double kNever = 2;  // above all uniforms

  // The first count k in the cell and cdf[k]; ~k and kNever where more than one other is in it.
  struct Cell {
    double end;
    int64_t count;
  };

  static double BelowOne(double x) { return x < 1 - 0x1p-53 ? x : 1 - 0x1p-53; }
  static int32_t CellOf(double x) { return static_cast<int32_t>((x > 0 ? x : 0) * kCells); }

  const double* const cdf_;
  const int32_t last_;
  const bool guided_;
  alignas(64) Cell guide_[kCells];
};

// n numbers at r, each `least` more than what the table gives for one uniform.
inline int32_t DrawByTable(StreamState* stream, int32_t n, int32_t* r, const double* cdf,
                           int32_t size, int32_t least = 0) {
  const InversionTable table(cdf, size, n);
  return GenerateInBlocks<1024>(
      stream, n, r, 0.0, 1.0,
      [&](int32_t m, const double* u, int32_t* x) { table.Search(m, u, x, least); });
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_INVERSION_TABLE_H_
