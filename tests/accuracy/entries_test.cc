// Every tiered entry is within its bound over all regimes, and exact where the result is obvious.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "accuracy/measure.h"
#include "accuracy/report.h"

namespace pex::accuracy {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

class EveryEntry : public testing::TestWithParam<const Entry*> {};

TEST_P(EveryEntry, IsWithinItsBound) {
  const Entry& entry = *GetParam();
  Settings settings;
  settings.count = 60'000;
  settings.worst_cases = PEXQUO_ACCURACY_DIR "/worst";
  const EntryResult result = Measure(entry, OracleOf(*entry.function), settings);
  for (const RegimeResult& regime : result.regimes) {
    EXPECT_LE(regime.worst.error, entry.ulp_bound())
        << regime.name << ", seed " << settings.seed << ": " << ErrorText(entry, regime.worst)
        << " at " << Hex(regime.worst.a) << ", got " << Hex(regime.worst.got) << ", wanted "
        << Hex(regime.worst.wanted);
  }
}

std::vector<const Entry*> TieredEntries() {
  std::vector<const Entry*> entries;
  for (const Entry& e : Entries()) {
    if (e.function->tiered) entries.push_back(&e);
  }
  return entries;
}

std::string SymbolOf(const testing::TestParamInfo<const Entry*>& info) {
  return std::string(info.param->symbol.substr(1));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryEntry, testing::ValuesIn(TieredEntries()), SymbolOf);

double Apply(const Entry& entry, double x) {
  double r = 0, r2 = 0;
  CallEntry(entry, {&x, 1}, {}, {&r, 1}, {&r2, 1});
  return r;
}

void ExpectExactly(const Entry& entry, double x, double y) {
  const double got = Apply(entry, x);
  EXPECT_EQ(std::bit_cast<uint64_t>(got), std::bit_cast<uint64_t>(y))
      << entry.symbol << "(" << x << ") = " << Hex(got) << ", not " << Hex(y);
}

// Pairs at which an entry has erred most: just above pi/4 half of pi without its rest made up
// to 2.06 ulp of it.
TEST(WorstPairs, Atan2) {
  const Entry& entry = *FindEntry("_pexdAtan2_50");
  constexpr double kPairs[][2] = {{0x1.5df5b146d3da6p+0, 0x1.54368c1767e5dp+0},
                                  {0x1.51cec0cbc1bdbp+0, 0x1.47e5955075b73p+0},
                                  {0x1.59ac5ab6be694p+0, 0x1.4cfe8f712af1cp+0}};
  for (const auto& [y, x] : kPairs) {
    double r = 0;
    CallEntry(entry, {&y, 1}, {&x, 1}, {&r, 1}, {});
    const long double wanted = std::atan2(static_cast<long double>(y), x);
    EXPECT_LE(std::fabs(r - wanted), 1.8L * 0x1p-53L) << Hex(y) << ", " << Hex(x);
  }
}

TEST(ObviousValues, AreExactInEveryTier) {
  const struct {
    std::string_view function;
    double x, y;
  } cases[] = {
      {"Exp", 0.0, 1},      {"Exp", -0.0, 1},      {"Exp", -kInf, 0},    {"Exp", kInf, kInf},
      {"Expm1", 0.0, 0.0},  {"Expm1", -0.0, -0.0}, {"Expm1", -kInf, -1}, {"Expm1", kInf, kInf},
      {"Ln", 1, 0},         {"Ln", 0, -kInf},      {"Ln", kInf, kInf},   {"Log10", 1, 0},
      {"Log10", 0, -kInf},  {"Log10", kInf, kInf}, {"Log1p", 0.0, 0.0},  {"Log1p", -0.0, -0.0},
      {"Log1p", -1, -kInf}, {"Log1p", kInf, kInf},
  };
  for (const auto& c : cases) {
    for (const Entry* entry : TieredEntries()) {
      if (entry->function->name == c.function) ExpectExactly(*entry, c.x, c.y);
    }
  }
}

TEST(ObviousValues, Log10OfPowersOfTen) {
  for (const Entry* entry : TieredEntries()) {
    if (entry->function->name != "Log10" || entry->tier != Tier::HA) continue;
    double power = 1;
    for (int e = 0; e <= (entry->is_double() ? 22 : 10); ++e, power *= 10) {
      ExpectExactly(*entry, power, e);
    }
  }
}

}  // namespace
}  // namespace pex::accuracy
