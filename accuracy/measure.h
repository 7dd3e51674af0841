// The largest error of an entry over its regimes.
#ifndef ACCURACY_MEASURE_H_
#define ACCURACY_MEASURE_H_

#include <functional>
#include <string>
#include <vector>

#include "accuracy/regimes.h"

namespace pex::accuracy {

// The point of the largest error. `error` is what the entry's bound limits: ulp, or for EP entries
// the relative error in units of 2^-precision. Negative: no point was measured.
struct Worst {
  double error = -1;
  double ulp = 0;
  double a = 0, b = 0;  // arguments
  double got = 0, wanted = 0;
};

struct RegimeResult {
  std::string name;
  uint64_t points = 0;
  Worst worst;
};

struct EntryResult {
  const Entry* entry = nullptr;
  std::vector<RegimeResult> regimes;
  // The regime with the largest error.
  const RegimeResult& worst() const;
  bool within_bound() const { return !(worst().worst.error > entry->ulp_bound()); }
};

struct Settings {
  uint64_t count = 2'000'000;  // points per regime
  uint64_t search = 0;         // points per round of the search; 0: none
  uint64_t seed = 1;
  int jobs = 1;                       // threads
  std::filesystem::path worst_cases;  // folder of the recorded worst cases
};

inline bool IsRelative(const Entry& entry) { return entry.tier == Tier::EP; }

// The error by the extended-precision value y, within kExtendedError of it relatively; NaN where
// only the exact way can tell (special values, overflow, sign of zero).
double EstimateError(long double y, double got, const Format& format, bool relative);

// Measures over RegimesOf(entry), by Search where settings ask for it and the function has one
// argument, and then around the worst points found. The same for any number of
// threads. Every error that is the largest of its regime and above 1/16 is decided by MPFR.
EntryResult Measure(const Entry& entry, const Oracle& oracle, const Settings& settings);

// One pass over given regimes.
std::vector<RegimeResult> MeasureRegimes(const Entry& entry, const Oracle& oracle,
                                         const std::vector<Regime>& regimes,
                                         const Settings& settings);

// The results of the entry for n points; b may be empty for functions of one argument, r2 for
// functions of one result.
void CallEntry(const Entry& entry, std::span<const double> a, std::span<const double> b,
               std::span<double> r, std::span<double> r2);

// Runs task(0) ... task(tasks - 1) on `jobs` threads.
void Parallel(uint64_t tasks, int jobs, const std::function<void(uint64_t)>& task);

}  // namespace pex::accuracy

#endif  // ACCURACY_MEASURE_H_
