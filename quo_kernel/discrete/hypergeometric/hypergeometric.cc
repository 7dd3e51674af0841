// Hypergeometric, the marked ones among s drawn without replacement from l of which m are marked:
// by inversion from a table where the variance is small, else by transformed rejection, for the
// smaller of s and l - s and the smaller of m and l - m.
#include <algorithm>
#include <cstdint>

#include "pexquo/quo.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/discrete/_kernel/indexed_search.h"
#include "quo_kernel/discrete/_kernel/transformed_rejection.h"

namespace quo {
namespace {

using Law = Cells<4>;

// s and m from 0 to l/2.
Law LawOf(double l, double s, double m) {
  const double most = std::min(s, m), mean = most > 0 ? s * m / l : 0;
  return {.start = {0, m, s, l - m - s},
          .mean = {mean, m - mean, s - mean, l - m - s + mean},
          .odds = 1,
          .margins = {m, l - m, s, l - s, l},
          .variance = most > 0 ? mean * (1 - m / l) * ((l - s) / (l - 1)) : 0,
          .mode = std::min(most, __quodFloor((s + 1) * (m + 1) / (l + 2))),
          .most = most};
}

}  // namespace

extern "C" QUO_API int32_t _quoiRngHypergeometric(uint32_t, StreamState* stream, int32_t n,
                                                  int32_t* r, int32_t l, int32_t s, int32_t m) {
  if (n < 1) return QUO_OK;
  const QuietCall quiet;
  l = std::max(l, 0);
  s = std::clamp(s, 0, l);
  m = std::clamp(m, 0, l);
  Reflection reflected;
  if (s > l - s) {  // those left behind have the rest of the marked ones
    reflected = {m, -1};
    s = l - s;
  }
  if (m > l - m) {  // of the s, all but those not marked
    reflected = {reflected(s), -reflected.sign};
    m = l - m;
  }
  const Law law = LawOf(l, s, m);
  if (law.variance > kMostVariance) {
    return DrawByRejection(stream, n, r, law, PeakOf(law), reflected);
  }
  return DrawByTable(stream, n, r, law, Tabulate(law), reflected);
}

}  // namespace quo
