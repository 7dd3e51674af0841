// pexquo_accuracy: the errors of the catalogued functions against MPFR.
//
// Exit status: 0 when every entry is within its bound, 1 when one is not, 2 when the arguments are
// bad or the run cannot be done.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "accuracy/exhaustive.h"
#include "accuracy/measure.h"
#include "accuracy/report.h"
#include "hwy/targets.h"

namespace {

using namespace pex::accuracy;
using pex::Entry;

struct Options {
  std::vector<std::string> entries, functions, tiers, types;
  Settings settings;
  std::string level, markdown, plot;
  std::string records = PEXQUO_ACCURACY_DIR "/records/exhaustive.tsv";
  size_t hardest = 0;
  uint64_t pairs = 0;
  bool exhaustive = false, record = false, details = false;
};

struct Level {
  const char* name;
  int64_t target;
};
constexpr Level kLevels[] = {{"sse4", HWY_SSE4}, {"avx2", HWY_AVX2}, {"avx512", HWY_AVX3}};

// Lowers the vector level to the named one, or finds the best; returns its name.
std::string UseLevel(const std::string& name) {
  const int64_t supported = hwy::SupportedTargets();
  std::string best;
  for (const Level& level : kLevels) {
    if (supported & level.target) best = level.name;
  }
  if (name.empty()) return best;
  const auto* wanted = std::ranges::find(kLevels, name, &Level::name);
  if (!(supported & wanted->target)) {
    throw std::runtime_error("this processor has no " + name + "; its best level is " + best);
  }
  hwy::SetSupportedTargetsForTest(wanted->target);
  hwy::GetChosenTarget().DeInit();
  return name;
}

// Case makes no difference in names.
bool Names(const std::vector<std::string>& list, std::string_view name) {
  return list.empty() || std::ranges::any_of(list, [&](const std::string& wanted) {
           return CLI::detail::to_lower(wanted) == CLI::detail::to_lower(std::string(name));
         });
}

// A filter that names nothing catalogued is a mistake of the caller.
template <typename Range, typename Name>
void RequireKnown(const std::vector<std::string>& list, const char* what, const Range& range,
                  Name name) {
  for (const std::string& wanted : list) {
    if (std::ranges::none_of(range, [&](const auto& x) { return Names({wanted}, name(x)); })) {
      throw std::runtime_error(std::string("unknown ") + what + ": " + wanted);
    }
  }
}

std::vector<const Entry*> Selected(const Options& options) {
  RequireKnown(options.entries, "entry", pex::Entries(), [](const Entry& e) { return e.symbol; });
  RequireKnown(options.functions, "function", pex::Functions(),
               [](const pex::Function& f) { return f.name; });
  std::vector<const Entry*> selected;
  for (const Entry& e : pex::Entries()) {
    if (!e.function->tiered) continue;
    if (Names(options.entries, e.symbol) && Names(options.functions, e.function->name) &&
        Names(options.tiers, pex::TierName(e.tier)) &&
        Names(options.types, std::string_view(&e.type, 1))) {
      if ((options.exhaustive || options.pairs > 0) && e.is_double()) continue;
      if (options.pairs > 0 && e.function->shape != pex::Shape::Binary) continue;
      selected.push_back(&e);
    }
  }
  if (selected.empty()) throw std::runtime_error("no entry matches");
  for (const Entry* e : selected) OracleOf(*e->function);  // throws where there is none
  return selected;
}

using ByFunction = std::map<const pex::Function*, std::vector<const Entry*>>;
ByFunction Grouped(const std::vector<const Entry*>& entries) {
  ByFunction groups;
  for (const Entry* e : entries) groups[e->function].push_back(e);
  return groups;
}

std::function<void(double)> ProgressBar(const std::string& what) {
  if (!isatty(STDERR_FILENO)) return {};
  return [what, shown = -1](double part) mutable {
    const int percent = static_cast<int>(part * 100);
    if (percent == shown) return;
    shown = percent;
    const std::string bar(static_cast<size_t>(percent / 2), '#');
    std::fprintf(stderr, "\r%-8s [%-50s] %3d %%%s", what.c_str(), bar.c_str(), percent,
                 part >= 1 ? "\n" : "");
  };
}

// All arguments, or pairs of them.
bool RunLong(const std::vector<const Entry*>& entries, const Options& options) {
  bool within = true;
  for (const auto& [function, list] : Grouped(entries)) {
    const auto progress = ProgressBar(std::string(function->name));
    const Oracle& oracle = OracleOf(*function);
    const Settings& settings = options.settings;
    const auto results = options.pairs > 0 ? ExhaustPairs(list, oracle, settings.jobs,
                                                          options.pairs, settings.seed, progress)
                                           : Exhaust(list, oracle, settings.jobs, progress);
    std::vector<ExhaustiveRecord> records;
    for (const ExhaustiveResult& r : results) {
      Print(r);
      records.push_back(RecordOf(r, Today()));
      within &= !(r.worst.error > r.entry->ulp_bound());
    }
    if (options.record) MergeExhaustive(options.records, records);
  }
  return within;
}

void RunHardest(const Options& options) {
  RequireKnown(options.functions, "function", Oracles(),
               [](const Oracle& o) { return o.function; });
  for (const Oracle& oracle : Oracles()) {
    if (!Names(options.functions, oracle.function)) continue;
    std::vector<double> cases;
    for (const HardCase& c : HardestSingles(oracle, options.hardest, options.settings.jobs,
                                            ProgressBar(std::string(oracle.function)))) {
      std::printf("%.*s(%s): %.3g ulp from the middle\n", static_cast<int>(oracle.function.size()),
                  oracle.function.data(), Hex(c.a).c_str(), c.distance);
      cases.push_back(c.a);
    }
    if (!options.record) continue;
    AppendRecord(RecordFile(options.settings.worst_cases, *pex::FindFunction(oracle.function)),
                 "Single precision: of all arguments the hardest to round (--hardest " +
                     std::to_string(options.hardest) + "), hardest first",
                 cases);
  }
}

void RecordWorst(const std::vector<EntryResult>& results, const Settings& settings) {
  for (const EntryResult& r : results) {
    std::vector<double> cases;
    for (const RegimeResult& regime : r.regimes) {
      if (regime.worst.error > 0.5 * r.worst().worst.error) cases.push_back(regime.worst.a);
    }
    AppendRecord(RecordFile(settings.worst_cases, *r.entry->function),
                 std::string(r.entry->symbol) + ": the largest errors found, up to " +
                     ErrorText(*r.entry, r.worst().worst),
                 cases);
  }
}

bool RunRegimes(const std::vector<const Entry*>& entries, const Options& options,
                const std::string& level) {
  std::printf("seed %llu, %llu points a regime, vector level %s\n",
              static_cast<unsigned long long>(options.settings.seed),
              static_cast<unsigned long long>(options.settings.count), level.c_str());
  PrintHead();
  std::vector<EntryResult> results;
  for (const Entry* e : entries) {
    results.push_back(Measure(*e, OracleOf(*e->function), options.settings));
    Print(results.back(), options.details);
  }
  if (options.record) RecordWorst(results, options.settings);
  if (!options.plot.empty()) {
    for (const auto& [function, list] : Grouped(entries)) {
      Plot(options.plot, *function, list, options.settings);
    }
  }
  if (!options.markdown.empty()) {
    WriteMarkdown(options.markdown, results, ReadExhaustive(options.records), options.settings,
                  MachineLine(level));
  }
  return std::ranges::all_of(results, &EntryResult::within_bound);
}

void Declare(CLI::App& app, Options& o) {
  app.add_option("--entry", o.entries, "Entries to measure, as _pexdExp_HA; all by default");
  app.add_option("--function", o.functions, "Functions, as Exp");
  app.add_option("--tier", o.tiers, "Tiers")
      ->check(CLI::IsMember({"ep", "la", "ha"}, CLI::ignore_case));
  app.add_option("--type", o.types, "Types: d double, s single")
      ->check(CLI::IsMember({"d", "s"}, CLI::ignore_case));
  app.add_option("--count", o.settings.count, "Points for each regime")
      ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 40))
      ->capture_default_str();
  auto* search = app.add_option("--search", o.settings.search,
                                "Points for each of five rounds that narrow in on large errors")
                     ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 40));
  app.add_option("--seed", o.settings.seed, "Seed of the random points")->capture_default_str();
  app.add_option("--jobs", o.settings.jobs, "Threads")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  app.add_option("--level", o.level, "Vector level; the best by default, with the same results")
      ->check(CLI::IsMember({"sse4", "avx2", "avx512"}));
  app.add_option("--worst", o.settings.worst_cases, "Folder of the recorded worst cases")
      ->check(CLI::ExistingDirectory)
      ->capture_default_str();
  app.add_option("--records", o.records, "Table of the runs over all arguments and over pairs")
      ->capture_default_str();
  auto* exhaustive = app.add_flag("--exhaustive", o.exhaustive,
                                  "All 2^32 arguments of the single-precision entries");
  auto* pairs = app.add_option("--pairs", o.pairs,
                               "So many pairs of arguments of the single-precision entries of two")
                    ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 40))
                    ->excludes(exhaustive);
  app.add_option("--hardest", o.hardest,
                 "List the N single-precision arguments that are hardest to round, by function")
      ->check(CLI::Range(1, 100000))
      ->excludes(exhaustive)
      ->excludes(pairs);
  app.add_flag("--record", o.record,
               "Add the worst points found to the recorded ones, or the long runs to theirs");
  app.add_flag("--details", o.details, "A line for each regime");
  app.add_option("--markdown", o.markdown, "Write the document to this file")
      ->excludes(search)
      ->excludes(exhaustive)
      ->excludes(pairs);
  app.add_option("--plot", o.plot, "Write a plot for each function to this folder")
      ->check(CLI::ExistingDirectory)
      ->excludes(exhaustive)
      ->excludes(pairs);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  options.settings.jobs = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
  options.settings.worst_cases = PEXQUO_ACCURACY_DIR "/worst";
  CLI::App app("The errors of the catalogued functions against MPFR.", "pexquo_accuracy");
  Declare(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "pexquo_accuracy: %s\n", e.what());
    return 2;
  }
  try {
    const std::string level = UseLevel(options.level);
    if (options.hardest > 0) {
      RunHardest(options);
      return 0;
    }
    const auto entries = Selected(options);
    const bool within = options.exhaustive || options.pairs > 0
                            ? RunLong(entries, options)
                            : RunRegimes(entries, options, level);
    return within ? 0 : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "pexquo_accuracy: %s\n", e.what());
    return 2;
  }
}
