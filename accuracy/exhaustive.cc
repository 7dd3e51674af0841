#include "accuracy/exhaustive.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>

#include "pexquo/pex.h"

namespace pex::accuracy {
namespace {

constexpr size_t kBatch = 4096;
constexpr uint64_t kBlock = 1 << 20;
// The C library's double functions err by 2 units of 2^-52 at most by their documentation; the
// largest error is looked for among the estimates within 2^-50 of the largest estimate.
constexpr double kMargin = 0x1p-50 * 0x1p25;
// Errors below this are left to the double reference.
constexpr double kSmallError = 0x1p-4;

// The reference of one batch: the function in double, and the two nearest ways to round it.
struct Batch {
  float a[kBatch], b[kBatch];
  double y[kBatch];
  float low[kBatch], high[kBatch];
  float r[2][kBatch];
};

void RoundReference(Batch& batch) {
  for (size_t i = 0; i < kBatch; ++i) {
    batch.low[i] = static_cast<float>(batch.y[i] * (1 - kQuickError));
    batch.high[i] = static_cast<float>(batch.y[i] * (1 + kQuickError));
  }
}

void Fill(Batch& batch, uint64_t first, const Oracle& oracle, int result = 0) {
  const auto quick = result == 0 ? oracle.quick : oracle.quick_second;
  for (size_t i = 0; i < kBatch; ++i) {
    batch.a[i] = std::bit_cast<float>(static_cast<uint32_t>(first + i));
  }
  for (size_t i = 0; i < kBatch; ++i) batch.y[i] = quick(batch.a[i]);
  RoundReference(batch);
}

void FillPairs(Batch& batch, const Entry& entry, const Regime& regime, uint64_t first,
               Random& random, const Oracle& oracle) {
  double a[kBatch], b[kBatch];
  regime.fill(first, random, a);
  SecondArguments(entry, regime.name, random, a, b);
  for (size_t i = 0; i < kBatch; ++i) {
    batch.a[i] = static_cast<float>(a[i]);
    batch.b[i] = static_cast<float>(b[i]);
  }
  for (size_t i = 0; i < kBatch; ++i) batch.y[i] = oracle.quick_pair(a[i], b[i]);
  RoundReference(batch);
}

bool SameBits(float x, float y) {
  return std::bit_cast<uint32_t>(x) == std::bit_cast<uint32_t>(y) ||
         (std::isnan(x) && std::isnan(y));
}

// EstimateError in double, for finite values: y is normal in double.
double EstimateQuick(double y, float got, bool relative) {
  const double distance = std::fabs(y - got);
  if (relative) return distance / std::max(std::fabs(y), 0x1p-126) * 0x1p24;
  const int64_t biased = (std::bit_cast<int64_t>(y) >> 52) & 0x7FF;
  const int64_t unit = std::max<int64_t>(biased - 1023 - 23, kSingle.lowest);
  return distance * std::bit_cast<double>((1023 - unit) << 52);
}

struct Tally {
  uint64_t wrong = 0, decided = 0;
  Worst worst;
  // The last decided input's double reference and result. Where a function is flat, as acos next to
  // 0, billions of inputs share both, and one decision serves: their errors agree to the
  // reference's resolution.
  double decided_y = std::numeric_limits<double>::quiet_NaN();
  float decided_got = 0;
};

// The errors of one batch by the double reference; infinite where only the exact way can tell.
double EstimateBatch(const Batch& batch, int result, bool relative, double* estimates) {
  double largest = 0;
  for (size_t i = 0; i < kBatch; ++i) {
    const float got = batch.r[result][i];
    // Special values, overflow, and zeros, whose sign counts.
    if (!std::isfinite(got) || !std::isfinite(batch.high[i]) || got == 0) {
      const bool right = SameBits(batch.low[i], got) && SameBits(batch.high[i], got);
      estimates[i] = right ? 0 : std::numeric_limits<double>::infinity();
      continue;
    }
    estimates[i] = EstimateQuick(batch.y[i], got, relative);
    largest = std::max(largest, estimates[i]);
  }
  return largest;
}

void Compare(const Batch& batch, const Entry& entry, const Oracle& oracle, int result, double best,
             Tally& tally) {
  const bool pairs = oracle.quick_pair != nullptr;
  const bool relative = IsRelative(entry);
  const bool held_to_half = entry.ulp_bound() <= 0.5;
  double estimates[kBatch];
  const double largest = EstimateBatch(batch, result, relative, estimates);
  const double candidate = std::max({best, tally.worst.error, largest}) - kMargin;
  for (size_t i = 0; i < kBatch; ++i) {
    const float got = batch.r[result][i], rounded = batch.low[i];
    const double b = pairs ? batch.b[i] : 0;
    const bool same = SameBits(rounded, got);
    const bool certain = SameBits(rounded, batch.high[i]);
    const bool largest_yet = estimates[i] >= candidate;
    if (certain && estimates[i] < kSmallError) {
      tally.wrong += !same;
      if (largest_yet && estimates[i] > tally.worst.error) {
        tally.worst = {estimates[i], estimates[i], batch.a[i], b, got, rounded};
      }
      continue;
    }
    const bool doubtful = !certain || (!same && held_to_half && tally.decided < kMostDecided);
    const bool as_before = batch.y[i] == tally.decided_y && SameBits(got, tally.decided_got);
    if (!doubtful && (!largest_yet || as_before)) {
      tally.wrong += !same;
      continue;
    }
    ++tally.decided;
    tally.decided_y = batch.y[i];
    tally.decided_got = got;
    const Error error = ExactError(oracle, result, batch.a[i], b, got, kSingle);
    tally.wrong += error.from_half > 0;
    const double value = relative ? error.relative : error.ulp;
    if (value > tally.worst.error) {
      tally.worst = {value, error.ulp, batch.a[i], b, got, error.wanted};
    }
  }
}

// Blocks of kBlock inputs on `jobs` threads. fill(batch, at, result) makes the batch of inputs from
// `at` on, in one thread for a block.
template <typename MakeFill>
std::vector<ExhaustiveResult> RunBlocks(const std::vector<const Entry*>& entries,
                                        const Oracle& oracle, int jobs, uint64_t inputs,
                                        const std::function<void(double)>& progress,
                                        const MakeFill& fill_of_block) {
  const int results_of_each = oracle.quick_second != nullptr ? 2 : 1;
  std::vector<ExhaustiveResult> results;
  for (const Entry* entry : entries) results.push_back({entry, inputs, 0, 0, {}});
  std::mutex mutex;
  uint64_t done = 0;
  const uint64_t blocks = (inputs + kBlock - 1) / kBlock;
  Parallel(blocks, jobs, [&](uint64_t block) {
    const uint32_t mode = _pexSetMode(PEX_ERRMODE_IGNORE);
    std::vector<Tally> tallies(entries.size());
    std::vector<double> best;
    {
      const std::lock_guard lock(mutex);
      for (const ExhaustiveResult& r : results) best.push_back(r.worst.error);
    }
    static thread_local Batch batch;
    auto fill = fill_of_block(block);
    const uint64_t end = std::min((block + 1) * kBlock, inputs);
    for (uint64_t at = block * kBlock; at < end; at += kBatch) {
      for (int result = 0; result < results_of_each; ++result) {
        fill(batch, at, result);
        for (size_t e = 0; e < entries.size(); ++e) {
          entries[e]->Call(kBatch, batch.a, batch.b, batch.r[0], batch.r[1]);
          Compare(batch, *entries[e], oracle, result, best[e], tallies[e]);
        }
      }
    }
    _pexSetMode(mode);
    const std::lock_guard lock(mutex);
    for (size_t e = 0; e < entries.size(); ++e) {
      results[e].wrong += tallies[e].wrong;
      results[e].decided += tallies[e].decided;
      const Worst& worst = tallies[e].worst;
      const Worst& old = results[e].worst;
      if (worst.error > old.error || (worst.error == old.error && worst.a < old.a)) {
        results[e].worst = worst;
      }
    }
    if (progress) progress(static_cast<double>(++done) / static_cast<double>(blocks));
  });
  return results;
}

}  // namespace

std::vector<ExhaustiveResult> Exhaust(const std::vector<const Entry*>& entries,
                                      const Oracle& oracle, int jobs,
                                      const std::function<void(double)>& progress, uint64_t first,
                                      uint64_t inputs) {
  if (oracle.quick == nullptr) {
    throw std::runtime_error("no double-precision reference for " + std::string(oracle.function));
  }
  return RunBlocks(entries, oracle, jobs, inputs, progress, [&](uint64_t) {
    return [&](Batch& batch, uint64_t at, int result) { Fill(batch, first + at, oracle, result); };
  });
}

std::vector<ExhaustiveResult> ExhaustPairs(const std::vector<const Entry*>& entries,
                                           const Oracle& oracle, int jobs, uint64_t pairs,
                                           uint64_t seed,
                                           const std::function<void(double)>& progress) {
  if (oracle.quick_pair == nullptr) {
    throw std::runtime_error("no double-precision reference for pairs of " +
                             std::string(oracle.function));
  }
  const uint64_t blocks = (pairs + kBlock - 1) / kBlock;
  const Entry& entry = *entries.at(0);
  std::vector<Regime> regimes = RegimesOf(entry, oracle, blocks * kBlock, {});
  std::erase_if(regimes, [&](const Regime& r) { return r.points != blocks * kBlock; });
  return RunBlocks(entries, oracle, jobs, blocks * kBlock, progress, [&](uint64_t block) {
    const uint64_t before = block / regimes.size() * kBlock;  // points of the regime
    return [&, before, begin = block * kBlock, random = Random(seed * 0x9e3779b97f4a7c15 + block),
            &regime = regimes[block % regimes.size()]](Batch& batch, uint64_t at, int) mutable {
      FillPairs(batch, entry, regime, before + at - begin, random, oracle);
    };
  });
}

std::vector<HardCase> HardestSingles(const Oracle& oracle, size_t most, int jobs,
                                     const std::function<void(double)>& progress, uint64_t first,
                                     uint64_t inputs) {
  std::vector<HardCase> hardest;
  std::mutex mutex;
  uint64_t done = 0;
  const uint64_t blocks = (inputs + kBlock - 1) / kBlock;
  const auto order = [](const HardCase& x, const HardCase& y) {
    return x.distance != y.distance ? x.distance < y.distance : x.a < y.a;
  };
  Parallel(blocks, jobs, [&](uint64_t block) {
    static thread_local Batch batch;
    std::vector<HardCase> found;
    const uint64_t end = std::min((block + 1) * kBlock, inputs);
    for (uint64_t at = block * kBlock; at < end; at += kBatch) {
      Fill(batch, first + at, oracle);
      for (size_t i = 0; i < kBatch; ++i) {
        if (SameBits(batch.low[i], batch.high[i])) continue;
        const Error error = ExactError(oracle, 0, batch.a[i], 0, batch.low[i], kSingle);
        found.push_back({batch.a[i], std::fabs(error.from_half)});
      }
    }
    const std::lock_guard lock(mutex);
    hardest.insert(hardest.end(), found.begin(), found.end());
    std::ranges::sort(hardest, order);
    hardest.resize(std::min(hardest.size(), most));
    if (progress) progress(static_cast<double>(++done) / static_cast<double>(blocks));
  });
  return hardest;
}

ExhaustiveRecord RecordOf(const ExhaustiveResult& result, const std::string& date) {
  const Worst& w = result.worst;
  const double bits =
      IsRelative(*result.entry) ? CorrectBits(w.error, kSingle) : CorrectBits(w.ulp, kSingle);
  ExhaustiveRecord record{std::string(result.entry->symbol),
                          result.inputs,
                          result.wrong,
                          w.ulp,
                          bits,
                          w.a,
                          w.got,
                          w.wanted,
                          date};
  if (result.entry->function->shape == Shape::Binary) record.b = w.b;
  return record;
}

std::vector<ExhaustiveRecord> ReadExhaustive(const std::filesystem::path& file) {
  std::vector<ExhaustiveRecord> records;
  std::ifstream in(file);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    ExhaustiveRecord r;
    std::string numbers[5];
    fields >> r.symbol >> r.inputs >> r.wrong;
    for (std::string& field : numbers) fields >> field;  // strings: a stream reads no infinity
    if (!(fields >> r.date)) {
      throw std::runtime_error(file.string() + ":" + std::to_string(number) +
                               ": not a record of an exhaustive run");
    }
    double* const values[] = {&r.ulp, &r.bits, &r.a, &r.got, &r.wanted};
    char* end = nullptr;
    for (int i = 0; i < 5; ++i) {
      *values[i] = std::strtod(numbers[i].c_str(), &end);
      if (values[i] == &r.a && *end == ',') r.b = std::strtod(end + 1, nullptr);
    }
    records.push_back(r);
  }
  return records;
}

void MergeExhaustive(const std::filesystem::path& file,
                     const std::vector<ExhaustiveRecord>& fresh) {
  std::vector<ExhaustiveRecord> records = ReadExhaustive(file);
  for (const ExhaustiveRecord& r : fresh) {
    std::erase_if(records, [&](const ExhaustiveRecord& old) { return old.symbol == r.symbol; });
    records.push_back(r);
  }
  std::ranges::sort(records, {}, &ExhaustiveRecord::symbol);
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file);
  out << "# Written by pexquo_accuracy --exhaustive.\n"
         "# entry\tinputs\twrong_roundings\tmax_ulp\tcorrect_bits\tinput\tgot\twanted\tdate\n";
  out.precision(10);
  for (const ExhaustiveRecord& r : records) {
    out << r.symbol << '\t' << r.inputs << '\t' << r.wrong << '\t' << r.ulp << '\t' << r.bits
        << '\t' << Hex(r.a) << (r.b ? "," + Hex(*r.b) : "") << '\t' << Hex(r.got) << '\t'
        << Hex(r.wanted) << '\t' << r.date << '\n';
  }
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace pex::accuracy
