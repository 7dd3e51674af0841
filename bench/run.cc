#include "bench/run.h"

#include <cstdio>
#include <optional>
#include <vector>

#include "hwy/targets.h"

namespace bench {
namespace {

constexpr Level kLevels[] = {
    {"avx512", "AVX-512", HWY_AVX3}, {"avx2", "AVX2", HWY_AVX2}, {"sse4", "SSE4", HWY_SSE4}};

// The level of NAME, or the best of the processor for an empty one; null after a complaint.
const Level* ChooseLevel(std::string_view program, std::optional<std::string> name) {
  for (const Level& level : kLevels) {
    if (name && *name != level.name) continue;
    if (ProcessorHas(level)) return &level;
    if (!name) continue;
    std::fprintf(stderr, "%s: this processor lacks %s\n", program.data(), level.title);
    return nullptr;
  }
  if (name) {
    std::fprintf(stderr, "%s: unknown level '%s': avx512, avx2 or sse4\n", program.data(),
                 name->c_str());
  } else {
    std::fprintf(stderr, "%s: this processor lacks SSE4\n", program.data());
  }
  return nullptr;
}

}  // namespace

std::span<const Level> Levels() { return kLevels; }

bool ProcessorHas(const Level& level) {
  hwy::SetSupportedTargetsForTest(0);
  return (hwy::SupportedTargets() & level.target) != 0;
}

void UseLevel(const Level& level) {
  int64_t mask = 0;
  for (const Level* l = &level; l != std::end(kLevels); ++l) mask |= l->target;
  hwy::SetSupportedTargetsForTest(mask);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

int Main(int argc, char** argv, std::string_view program, bool (*add)(const Level&)) {
  std::string defaults[] = {"--benchmark_repetitions=60", "--benchmark_min_time=0.001",
                            "--benchmark_enable_random_interleaving=true",
                            "--benchmark_report_aggregates_only=true",
                            "--benchmark_counters_tabular=true"};
  std::vector<char*> arguments = {argv[0]};
  for (std::string& option : defaults) arguments.push_back(option.data());
  std::optional<std::string> name;
  constexpr std::string_view kLevelOption = "--level=";
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with(kLevelOption)) {
      name = argument.substr(kLevelOption.size());
    } else {
      arguments.push_back(argv[i]);
    }
  }
  const Level* level = ChooseLevel(program, name);
  if (level == nullptr) return 2;

  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (count > 1) {
    std::fprintf(stderr, "%s: unknown option '%s'\n", program.data(), arguments[1]);
    return 2;
  }
  benchmark::AddCustomContext("level", level->name);
  benchmark::AddCustomContext("compiler", PEXQUO_COMPILER);
  UseLevel(*level);
  if (!add(*level)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench
