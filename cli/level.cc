#include "cli/level.h"

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/numbers.h"
#include "hwy/highway.h"

namespace cli {
namespace {

struct Target {
  std::string_view name, what;
  int64_t bit;
};

constexpr Target kTargets[] = {
    {"sse4", "128 bits", HWY_SSE4},
    {"avx2", "256 bits", HWY_AVX2},
    {"avx512", "512 bits", HWY_AVX3},
};

}  // namespace

std::vector<Level> Levels() {
  static const int64_t supported = hwy::SupportedTargets();
  std::vector<Level> levels;
  for (const Target& t : kTargets) levels.push_back({t.name, t.what, (supported & t.bit) != 0});
  return levels;
}

std::string_view LevelInUse() {
  std::string_view best = "none";
  for (const Target& t : kTargets) {
    if ((hwy::SupportedTargets() & t.bit) != 0) best = t.name;
  }
  return best;
}

void UseLevel(const std::string& name) {
  const std::vector<Level> levels = Levels();
  int64_t mask = 0;
  std::vector<std::string> known;
  std::string available;
  for (size_t i = 0; i < levels.size(); ++i) {
    mask |= kTargets[i].bit;
    if (levels[i].name == name) {
      if (levels[i].available) {
        hwy::SetSupportedTargetsForTest(mask);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        return;
      }
      Fail("this processor lacks the vector level ", name, "; it has", available);
    }
    known.emplace_back(levels[i].name);
    if (levels[i].available) available += " " + known.back();
  }
  Fail("unknown vector level ", Quoted(name),
       Suggestion(name, known, "; the levels are " + Enumeration(known)));
}

}  // namespace cli
