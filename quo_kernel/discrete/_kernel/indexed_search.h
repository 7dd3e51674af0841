// Inversion: one uniform u for one number, the least k with u < F(k), for laws of few likely
// values. The search starts from an index by the first bits of u and ends, mostly, within two
// comparisons. (H.-C. Chen and Y. Asau, "On generating random variates from an empirical
// distribution", AIIE Transactions 6, 1974; L. Devroye, Non-Uniform Random Variate Generation,
// Springer 1986, section III.2.4.)
//
// Probabilities are summed from both ends towards the mode, so that either tail is as sharp as the
// middle; values beyond the table are found by sums of their own. u = 0, which from a generator of
// 32 bits means every number below 2^-32, counts as 2^-33.
#ifndef QUO_KERNEL_DISCRETE__KERNEL_INDEXED_SEARCH_H_
#define QUO_KERNEL_DISCRETE__KERNEL_INDEXED_SEARCH_H_

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "pexquo/pex.h"
#include "quo_kernel/_kernel/generate.h"
#include "quo_kernel/_kernel/unaligned.h"
#include "quo_kernel/discrete/_kernel/cells.h"

namespace quo {

// The largest variance of a law for the table, whose ends then are 4 deviations from the mean.
inline constexpr double kMostVariance = 60;

struct ValueTable {
  static constexpr int32_t kMost = 64;

  int32_t first, count;
  double below;        // P(k < first)
  double upto[kMost];  // P(k <= first + j), j below count

  // Whether all values are from 0 to `most`.
  bool Fits(double most) const {
    return count >= 1 && count <= kMost && first >= 0 && first + (count - 1.0) <= most;
  }
};

template <int kCells>
double Probability(const Cells<kCells>& law, double k) {
  double f = std::clamp(law.Total() + law.Log(k), -700.0, 0.0);
  _pexdExp_HA(1, &f, &f);
  return f;
}

// Leaves out the values of less than 2^-34 together at either end, and of more than kMost the
// farthest ones.
template <int kCells>
ValueTable Tabulate(const Cells<kCells>& law) {
  constexpr double kNothing = 0x1p-70, kFew = 0x1p-34;
  constexpr int kRoom = 128;  // to either side of the mode; the farthest mass is 88 from it
  double mass[2 * kRoom];
  double* const f = mass + kRoom;  // f[j] of mode + j
  int low = 0, high = 0;
  f[0] = law.most > 0 ? Probability(law, law.mode) : 1;
  while (high < kRoom - 1 && f[high] > kNothing && law.mode + high < law.most) {
    f[high + 1] = f[high] * law.Growth(law.mode + high);
    ++high;
  }
  while (low > 1 - kRoom && f[low] > kNothing && law.mode + low > 0) {
    f[low - 1] = f[low] / law.Growth(law.mode + low - 1);
    --low;
  }
  // Below the mode now P(k <= mode + j), above it P(k >= mode + j).
  for (int j = low + 1; j < 0; ++j) f[j] += f[j - 1];
  for (int j = high - 1; j > 0; --j) f[j] += f[j + 1];

  const auto tail = [&](int j) { return j == 0 ? 1.0 : f[j]; };
  int first = low, last = high;
  while (tail(first) < kFew) ++first;
  while (tail(last) < kFew) --last;
  while (last - first >= ValueTable::kMost) tail(first) < tail(last) ? ++first : --last;
  ValueTable table = {};
  table.first = static_cast<int32_t>(law.mode) + first;
  table.count = last - first + 1;
  table.below = first > low ? f[first - 1] : 0;
  for (int j = first; j <= last; ++j) {
    table.upto[j - first] = j < 0 ? f[j] : j < high ? 1 - f[j + 1] : 1;
  }
  return table;
}

// Of the values from `edge` on away from the mode, by steps of 1 or -1, the farthest that with all
// beyond it has a probability of t at least.
template <int kCells>
int32_t SearchBeyond(const Cells<kCells>& law, double edge, int step, double t) {
  constexpr double kNothing = 0x1p-110;
  const double end = step > 0 ? law.most : 0;
  if ((end - edge) * step < 0) return static_cast<int32_t>(end);
  const auto growth = [&](double k) { return step > 0 ? law.Growth(k) : 1 / law.Growth(k - 1); };
  double k = edge, f = Probability(law, k);
  for (; k != end && f > kNothing; k += step) f *= growth(k);
  for (double sum = 0; k != edge; f /= growth(k)) {
    sum += f;
    if (sum >= t) break;
    k -= step;
  }
  return static_cast<int32_t>(k);
}

// The table in the order of the search. A value is known by the number x of thresholds up to u: 0
// and count + 1 are beyond the table.
class ThresholdIndex {
 public:
  explicit ThresholdIndex(const ValueTable& table) : count_(static_cast<uint32_t>(table.count)) {
    threshold_[0] = table.below;
    std::copy_n(table.upto, count_, threshold_ + 1);
    threshold_[count_ + 1] = std::numeric_limits<double>::infinity();
  }

  // For At.
  void MakeCells() {
    uint32_t x = 0;
    for (int i = 0; i < kCells; ++i) {
      const uint32_t first = x;
      while (x <= count_ && threshold_[x] * kScale < i + 1) ++x;
      threshold_in_[i] = threshold_[first];
      first_[i] = static_cast<uint8_t>(x - first > 1 ? kSeveral : first);
    }
  }

  // In two comparisons: x, or something else beyond 1 to count for Search to tell. Anything where u
  // is not from [0, 1].
  uint32_t At(double u) const {
    const int cell = _mm_cvttsd_si32(_mm_set_sd(u * kScale)) & (kCells - 1);
    return first_[cell] + (threshold_in_[cell] <= u);
  }

  uint32_t Search(double u) const {
    return static_cast<uint32_t>(std::upper_bound(threshold_, threshold_ + count_ + 1, u) -
                                 threshold_);
  }

 private:
  static constexpr int kCells = 256;
  // A uniform that was rounded to 1 is in the last cell.
  static constexpr double kScale = kCells - 0x1p-45;
  static constexpr uint32_t kSeveral = 128;
  static_assert(kSeveral > ValueTable::kMost + 1);

  const uint32_t count_;
  double threshold_[ValueTable::kMost + 2];
  double threshold_in_[kCells];  // cell i of u, from i/kScale: the first threshold in it or above
  uint8_t first_[kCells];        // the number of the thresholds before that one
};

// n numbers. The table is one that fits the law.
template <int kCells>
int32_t DrawByTable(StreamState* stream, int32_t n, int32_t* r, const Cells<kCells>& law,
                    const ValueTable& table, Reflection reflected) {
  constexpr int32_t kBlock = 1024, kWorthCells = 32;
  const auto count = static_cast<uint32_t>(table.count);
  const int32_t before = table.first - 1;
  ThresholdIndex index(table);
  if (n >= kWorthCells) index.MakeCells();

  const auto search = [&](double u) {
    if (u == 0) u = 0x1p-33;
    const uint32_t x = index.Search(u);
    if (x == 0) return SearchBeyond(law, before, -1, u);
    if (x > count) return SearchBeyond(law, before + static_cast<double>(x), 1, 1 - u);
    return before + static_cast<int32_t>(x);
  };

  return GenerateInBlocks<kBlock>(
      stream, n, r, 0.0, 1.0, [&](int32_t m, const double* u, int32_t* to) {
        if (n < kWorthCells) {
          for (int32_t i = 0; i < m; ++i) Put(to + i, reflected(search(u[i])));
          return;
        }
        for (int32_t i = 0; i < m; ++i) {
          const uint32_t x = index.At(u[i]);
          const int32_t k = x - 1 < count ? before + static_cast<int32_t>(x) : search(u[i]);
          Put(to + i, reflected(k));
        }
      });
}

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE__KERNEL_INDEXED_SEARCH_H_
