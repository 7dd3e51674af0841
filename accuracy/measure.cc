#include "accuracy/measure.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

#include "accuracy/search.h"
#include "pexquo/pex.h"

namespace pex::accuracy {
namespace {

constexpr uint64_t kChunk = 4096;
// Errors below this are left to the extended-precision reference.
constexpr double kSmallError = 0x1p-4;
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

// 2^e, -16382 <= e <= 16383.
long double PowerOfTwo(int e) {
  const uint64_t mantissa = uint64_t{1} << 63;
  const auto exponent = static_cast<uint16_t>(e + 16383);
  long double x = 0;
  std::memcpy(&x, &mantissa, sizeof(mantissa));
  std::memcpy(reinterpret_cast<char*>(&x) + 8, &exponent, sizeof(exponent));
  return x;
}

// floor(log2|x|); below -16382 for zero and subnormal numbers.
int Exponent(long double x) {
  uint16_t word = 0;
  std::memcpy(&word, reinterpret_cast<const char*>(&x) + 8, sizeof(word));
  return (word & 0x7FFF) - 16383;
}

// How far EstimateError may be off, in its unit.
double Margin(const Format& format) { return std::ldexp(kExtendedError, format.precision + 1); }

// A strict order, so that the worst of all does not depend on the order of measuring.
bool IsWorse(const Worst& x, const Worst& y) {
  if (x.error != y.error) return x.error > y.error;
  if (x.a != y.a) return std::fabs(x.a) < std::fabs(y.a) || (x.a == -y.a && x.a > y.a);
  return x.b < y.b;
}

// One chunk of one regime.
class ChunkMeasurer {
 public:
  ChunkMeasurer(const Entry& entry, const Oracle& oracle)
      : entry_(entry),
        oracle_(oracle),
        format_(FormatOf(entry)),
        relative_(IsRelative(entry)),
        margin_(Margin(format_)) {}

  // `best` is the largest error of the regime known so far.
  Worst Run(std::span<const double> a, std::span<const double> b, double best) {
    double r[2][kChunk];
    const int results = ResultCount(entry_.function->shape);
    CallEntry(entry_, a, b, {r[0], a.size()}, {r[1], a.size()});
    Worst worst;
    for (int result = 0; result < results; ++result) {
      double estimates[kChunk];
      for (size_t i = 0; i < a.size(); ++i) {
        estimates[i] = EstimateError(oracle_.extended(result, a[i], Second(b, i)), r[result][i],
                                     format_, relative_);
        if (estimates[i] > best) best = estimates[i];
      }
      for (size_t i = 0; i < a.size(); ++i) {
        if (estimates[i] + 2 * margin_ < best) continue;
        const Worst point = Decide(result, a[i], Second(b, i), r[result][i], estimates[i]);
        if (worst.error < 0 || IsWorse(point, worst)) worst = point;
      }
    }
    return worst;
  }

 private:
  double Second(std::span<const double> b, size_t i) const {
    return b.empty() ? 0 : b[entry_.function->shape == Shape::UnaryScalar ? 0 : i];
  }

  Worst Decide(int result, double a, double b, double got, double estimate) const {
    if (estimate < kSmallError) {
      const long double y = oracle_.extended(result, a, b);
      const double wanted =
          format_.precision == 24 ? static_cast<float>(y) : static_cast<double>(y);
      return {estimate, estimate, a, b, got, wanted};
    }
    const Error error = ExactError(oracle_, result, a, b, got, format_);
    return {relative_ ? error.relative : error.ulp, error.ulp, a, b, got, error.wanted};
  }

  const Entry& entry_;
  const Oracle& oracle_;
  const Format format_;
  const bool relative_;
  const double margin_;
};

uint64_t Seed(uint64_t seed, const Entry& entry, uint64_t regime, uint64_t chunk) {
  uint64_t h = 0xcbf29ce484222325;  // FNV-1a over the function's name, then over the numbers
  const auto mix = [&](uint64_t x) { h = (h ^ x) * 0x100000001b3; };
  for (const char c : entry.function->name) mix(static_cast<unsigned char>(c));
  mix(static_cast<uint64_t>(entry.type));
  mix(regime);
  mix(chunk);
  return h ^ seed * 0x9e3779b97f4a7c15;
}

}  // namespace

double EstimateError(long double y, double got, const Format& format, bool relative) {
  if (std::isnan(y) && std::isnan(got)) return 0;
  if (!std::isfinite(y) || !std::isfinite(got)) {
    const bool beyond = std::fabs(y) > 1.01L * PowerOfTwo(format.highest);
    return std::isinf(got) && beyond && std::signbit(got) == std::signbit(y) ? 0 : kUnknown;
  }
  if (y == got && std::signbit(y) == std::signbit(got)) return 0;
  if (got == 0 && std::signbit(got) != std::signbit(y)) return kUnknown;
  const int exponent = Exponent(y);
  if (y == 0 || exponent >= format.highest - 1) return kUnknown;
  const long double distance = std::fabs(y - got);
  if (!relative) {
    const int unit = std::max(exponent - format.precision + 1, format.lowest);
    return static_cast<double>(distance * PowerOfTwo(-unit));
  }
  const long double smallest_normal = PowerOfTwo(format.lowest + format.precision - 1);
  return static_cast<double>(distance / std::max(std::fabs(y), smallest_normal) *
                             PowerOfTwo(format.precision));
}

void CallEntry(const Entry& entry, std::span<const double> a, std::span<const double> b,
               std::span<double> r, std::span<double> r2) {
  const auto n = static_cast<int32_t>(a.size());
  const uint32_t mode = _pexSetMode(PEX_ERRMODE_IGNORE);
  if (entry.is_double()) {
    entry.Call(n, a.data(), b.data(), r.data(), r2.data());
  } else {
    // A signalling NaN may become quiet here; the measure does not tell NaNs apart.
    std::vector<float> in(a.begin(), a.end()), in2(b.begin(), b.end());
    std::vector<float> out(a.size()), out2(a.size());
    entry.Call(n, in.data(), in2.data(), out.data(), out2.data());
    std::ranges::copy(out, r.begin());
    if (!r2.empty()) std::ranges::copy(out2, r2.begin());
  }
  _pexSetMode(mode);
}

void Parallel(uint64_t tasks, int jobs, const std::function<void(uint64_t)>& task) {
  std::atomic<uint64_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  {
    std::vector<std::jthread> threads;
    for (int j = 0; j < std::max(1, jobs); ++j) {
      threads.emplace_back([&] {
        try {
          for (uint64_t i = next++; i < tasks; i = next++) task(i);
        } catch (...) {
          const std::lock_guard lock(mutex);
          failure = std::current_exception();
          next = tasks;
        }
        mpfr_free_cache();
      });
    }
  }
  if (failure) std::rethrow_exception(failure);
}

std::vector<RegimeResult> MeasureRegimes(const Entry& entry, const Oracle& oracle,
                                         const std::vector<Regime>& regimes,
                                         const Settings& settings) {
  struct Task {
    size_t regime;
    uint64_t first;
  };
  std::vector<Task> tasks;
  std::vector<RegimeResult> results;
  for (size_t i = 0; i < regimes.size(); ++i) {
    results.push_back({regimes[i].name, regimes[i].points, {}});
    for (uint64_t first = 0; first < regimes[i].points; first += kChunk)
      tasks.push_back({i, first});
  }
  const bool two_arguments = ArgumentCount(entry.function->shape) == 2;
  std::mutex mutex;
  Parallel(tasks.size(), settings.jobs, [&](uint64_t t) {
    const auto [i, first] = tasks[t];
    Random random(Seed(settings.seed, entry, i, first / kChunk));
    std::vector<double> a(std::min(kChunk, regimes[i].points - first));
    std::vector<double> b(two_arguments ? a.size() : 0);
    regimes[i].fill(first, random, a);
    if (two_arguments) SecondArguments(entry, regimes[i].name, random, a, b);
    double best = 0;
    {
      const std::lock_guard lock(mutex);
      best = results[i].worst.error;
    }
    const Worst worst = ChunkMeasurer(entry, oracle).Run(a, b, best);
    const std::lock_guard lock(mutex);
    if (IsWorse(worst, results[i].worst)) results[i].worst = worst;
  });
  return results;
}

EntryResult Measure(const Entry& entry, const Oracle& oracle, const Settings& settings) {
  const auto file = RecordFile(settings.worst_cases, *entry.function);
  const auto regimes = RegimesOf(entry, oracle, settings.count, ReadRecord(file));
  EntryResult result{&entry, MeasureRegimes(entry, oracle, regimes, settings)};
  if (settings.search > 0 && ArgumentCount(entry.function->shape) == 1) {
    result.regimes.push_back(Search(entry, oracle, settings));
  }
  std::vector<double> witnesses;
  for (const RegimeResult& r : result.regimes) {
    if (r.worst.error >= 0 && std::isfinite(r.worst.a)) witnesses.push_back(r.worst.a);
  }
  const Regime around = Around("near worst", witnesses, !entry.is_double(), settings.count);
  result.regimes.push_back(MeasureRegimes(entry, oracle, {around}, settings).front());
  return result;
}

const RegimeResult& EntryResult::worst() const {
  return *std::ranges::max_element(regimes, {},
                                   [](const RegimeResult& r) { return r.worst.error; });
}

}  // namespace pex::accuracy
