// Binomial, the successes of ntrial trials: by inversion from a table where the variance is small,
// else by transformed rejection, for the less likely of success and failure. The set-up is kept in
// a chunk of the stream for as long as the parameters stay.
#include <algorithm>
#include <bit>
#include <cstdint>

#include "pexquo/quo.h"
#include "quo_kernel/_kernel/borrow.h"
#include "quo_kernel/_kernel/chunk.h"
#include "quo_kernel/_kernel/passes.h"
#include "quo_kernel/discrete/_kernel/indexed_search.h"
#include "quo_kernel/discrete/_kernel/transformed_rejection.h"

namespace quo {
namespace {

constexpr uint32_t kChunkKey = 5;

using Law = Cells<2>;

// p from 0 to 1/2.
Law LawOf(double ntrial, double p) {
  const double q = 1 - p, mean = ntrial * p;
  return {.start = {0, ntrial},
          .mean = {mean, ntrial * q},
          .odds = p / q,
          .margins = {ntrial},
          .variance = mean * q,
          .mode = std::min(ntrial, __quodFloor((ntrial + 1) * p)),
          .most = p > 0 ? ntrial : 0};
}

struct Constants {
  double p;  // from 0 to 1
  int32_t ntrial;
  int32_t reserved;
  union {
    ValueTable table;
    Peak peak;
  };

  bool Match(int32_t n, double probability) const {
    return ntrial == n && std::bit_cast<uint64_t>(p) == std::bit_cast<uint64_t>(probability);
  }
};
static_assert(sizeof(Constants) == 544);

// Those of the stream, or `own` where there is no memory for them. New ones match nothing.
Constants* FindOrAddConstants(StreamState* stream, Constants* own) {
  if (auto* found = FindChunk<Constants>(stream, kChunkKey)) return found;
  auto* const added = AddChunk<Constants>(stream, kChunkKey);
  Constants* const fresh = added != nullptr ? added : own;
  *fresh = {};
  fresh->ntrial = -1;
  return fresh;
}

}  // namespace

extern "C" QUO_API int32_t _quoiRngBinomial(uint32_t, StreamState* stream, int32_t n, int32_t* r,
                                            int32_t ntrial, double p) {
  if (n < 1) return QUO_OK;
  if (FindBrng(stream->id) == nullptr) return QUO_INVALID_BRNG;
  const QuietCall quiet;
  p = AfterControl(p);
  p = p > 0 ? std::min(p, 1.0) : 0;
  ntrial = std::max(ntrial, 0);
  const bool failures = p > 0.5;
  const Reflection reflected = failures ? Reflection{ntrial, -1} : Reflection{};

  Constants own;
  Constants* constants = FindOrAddConstants(stream, &own);
  const bool known = constants->Match(ntrial, p);
  const Law law = LawOf(ntrial, failures ? 1 - p : p);
  if (law.variance > kMostVariance) {
    if (!known) *constants = {.p = p, .ntrial = ntrial, .reserved = 0, .peak = PeakOf(law)};
    return DrawByRejection(stream, n, r, law, constants->peak, reflected);
  }
  if (!known || !constants->table.Fits(law.most)) {
    *constants = {.p = p, .ntrial = ntrial, .reserved = 0, .table = Tabulate(law)};
  }
  return DrawByTable(stream, n, r, law, constants->table, reflected);
}

}  // namespace quo
