// Every tiered complex entry is within its bound over all regimes.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "accuracy/complex.h"
#include "pexquo/pex.h"

namespace pex::accuracy {
namespace {

class EveryComplexEntry : public testing::TestWithParam<const Entry*> {};

TEST_P(EveryComplexEntry, IsWithinItsBound) {
  constexpr uint64_t kSeed = 3, kPoints = 1500;
  for (const ComplexRegimeResult& regime : MeasureComplex(*GetParam(), kPoints, kSeed)) {
    EXPECT_EQ(regime.points, kPoints);
    EXPECT_LE(regime.worst.error, GetParam()->ulp_bound()) << Text(regime) << ", seed " << kSeed;
  }
}

std::vector<const Entry*> TieredEntries() {
  std::vector<const Entry*> entries;
  for (const Entry& e : ComplexEntries()) {
    if (e.function->tiered) entries.push_back(&e);
  }
  return entries;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryComplexEntry, testing::ValuesIn(TieredEntries()),
                         [](const auto& info) {
                           return std::string(info.param->symbol.substr(1));
                         });

// The measurer sees a part that is off by one unit, and the larger part's unit where it is asked
// to.
int OffByOne(int32_t n, const PexComplex16* a, const PexComplex16* b, PexComplex16* r) {
  _pexzMul_HA(n, a, b, r);
  for (int i = 0; i < n; ++i) r[i].im = std::nextafter(r[i].im, HUGE_VAL);
  return 0;
}

TEST(Measurer, SeesAnErrorOfOneUnit) {
  Entry fake = *FindEntry("_pexzMul_HA");
  fake.address = reinterpret_cast<const void*>(&OffByOne);
  for (const ComplexRegimeResult& regime : MeasureComplex(fake, 2000, 1)) {
    EXPECT_GT(regime.worst.error, 0.9) << regime.name;
  }
  Function by_modulus = *fake.function;
  by_modulus.measures = {Measure::Modulus, Measure::Modulus, Measure::Modulus, Measure::Modulus};
  fake.function = &by_modulus;
  for (const ComplexRegimeResult& regime : MeasureComplex(fake, 2000, 1)) {
    EXPECT_GT(regime.worst.error, 0.9) << regime.name;
    EXPECT_LT(regime.worst.error, 1.6) << regime.name;
  }
}

}  // namespace
}  // namespace pex::accuracy
