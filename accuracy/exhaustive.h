// Long runs of single-precision entries: all 2^32 arguments of those of one, very many pairs of
// those of two.
#ifndef ACCURACY_EXHAUSTIVE_H_
#define ACCURACY_EXHAUSTIVE_H_

#include <optional>
#include <string>
#include <vector>

#include "accuracy/measure.h"

namespace pex::accuracy {

inline constexpr uint64_t kAllSingles = uint64_t{1} << 32;

struct ExhaustiveResult {
  const Entry* entry = nullptr;
  uint64_t inputs = 0;   // arguments or pairs
  uint64_t wrong = 0;    // results that are not the correctly rounded ones
  uint64_t decided = 0;  // results that MPFR decided
  Worst worst;
};

// Single-precision results against the function in double arithmetic by the C library. A result
// passes as correctly rounded when the double value, moved by kQuickError either way, rounds to it.
// Where the two ways round differently, MPFR decides; for an entry held to 0.5 ulp it decides every
// mismatch, up to kMostDecided for each block of 2^20 arguments. The largest error is MPFR's.
// The entries share the function and so the reference. `first` and `inputs`, a multiple
// of 4096, choose the bit patterns; progress(part) is called with the part done, 0 to 1, from any
// thread but one at a time.
std::vector<ExhaustiveResult> Exhaust(const std::vector<const Entry*>& entries,
                                      const Oracle& oracle, int jobs,
                                      const std::function<void(double)>& progress = {},
                                      uint64_t first = 0, uint64_t inputs = kAllSingles);

inline constexpr uint64_t kMostDecided = 10'000;

// The same for `pairs` pairs, rounded up to blocks of 2^20, from the endless regimes of regimes.h
// in turn: random ones and those beside thresholds, zeros and each other. They depend on the seed
// alone.
std::vector<ExhaustiveResult> ExhaustPairs(const std::vector<const Entry*>& entries,
                                           const Oracle& oracle, int jobs, uint64_t pairs,
                                           uint64_t seed,
                                           const std::function<void(double)>& progress = {});

// The `most` single-precision arguments whose exact values lie nearest to the middle between two
// singles, hardest first: an approximation has to be that good to round them correctly.
struct HardCase {
  double a = 0;
  double distance = 0;  // from the middle, ulp
};
std::vector<HardCase> HardestSingles(const Oracle& oracle, size_t most, int jobs,
                                     const std::function<void(double)>& progress = {},
                                     uint64_t first = 0, uint64_t inputs = kAllSingles);

// One line of accuracy/records/exhaustive.tsv.
struct ExhaustiveRecord {
  std::string symbol;
  uint64_t inputs = 0, wrong = 0;
  double ulp = 0, bits = 0;           // largest error; correct bits
  double a = 0, got = 0, wanted = 0;  // where
  std::string date;
  std::optional<double> b = {};  // of a run over pairs
};

ExhaustiveRecord RecordOf(const ExhaustiveResult& result, const std::string& date);
// Throws std::runtime_error that names file and line for a malformed one. No file: no records.
std::vector<ExhaustiveRecord> ReadExhaustive(const std::filesystem::path& file);
// Puts the new records in the place of the old ones of the same entries, in order of symbols.
void MergeExhaustive(const std::filesystem::path& file, const std::vector<ExhaustiveRecord>& fresh);

}  // namespace pex::accuracy

#endif  // ACCURACY_EXHAUSTIVE_H_
