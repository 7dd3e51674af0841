// Every tiered complex entry is within its bound over all regimes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "accuracy/complex.h"
#include "pexquo/pex.h"

namespace pex::accuracy {
namespace {

using Tiers = std::vector<const Entry*>;  // of one function, type and measure

class EveryComplexEntry : public testing::TestWithParam<Tiers> {};

TEST_P(EveryComplexEntry, IsWithinItsBound) {
  constexpr uint64_t kSeed = 3, kPoints = 1500;
  const Tiers& entries = GetParam();
  const auto results = MeasureComplexTiers(entries, kPoints, kSeed);
  for (size_t i = 0; i < entries.size(); ++i) {
    for (const ComplexRegimeResult& regime : results[i]) {
      EXPECT_EQ(regime.points, kPoints);
      EXPECT_LE(regime.worst.error, entries[i]->ulp_bound())
          << entries[i]->symbol << " " << Text(regime) << ", seed " << kSeed;
    }
  }
}

std::vector<Tiers> TieredEntries() {
  std::vector<Tiers> all;
  for (const Entry& e : ComplexEntries()) {
    if (!e.function->tiered) continue;
    const auto has_it = [&](const Tiers& tiers) {
      return tiers[0]->function == e.function && tiers[0]->is_double() == e.is_double() &&
             tiers[0]->measure() == e.measure();
    };
    const auto tiers = std::ranges::find_if(all, has_it);
    tiers == all.end() ? all.push_back({&e}) : tiers->push_back(&e);
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryComplexEntry, testing::ValuesIn(TieredEntries()),
                         [](const auto& info) {
                           return std::string(info.param[0]->symbol.substr(1));
                         });

TEST(ComplexEntries, AreAllMeasured) {
  size_t tiered = 0, measured = 0;
  for (const Entry& e : ComplexEntries()) tiered += e.function->tiered;
  for (const Tiers& tiers : TieredEntries()) measured += tiers.size();
  EXPECT_EQ(measured, tiered);
  EXPECT_GT(measured, 100u);
}

// The exact functions that are not MPC's own against those.
TEST(ComplexOracle, IsMPCsWhereItIsAnother) {
  constexpr uint64_t kSeed = 7;
  constexpr struct {
    std::string_view name;
    int (*own)(mpc_ptr, mpc_srcptr, mpc_rnd_t);
  } kFunctions[] = {{"Tan", mpc_tan},     {"Tanh", mpc_tanh}, {"Atan", mpc_atan},
                    {"Atanh", mpc_atanh}, {"Cos", mpc_cos},   {"Cosh", mpc_cosh}};
  std::mt19937_64 random(kSeed);
  const auto part = [&](int magnitudes) {
    const double unit = static_cast<double>(random() >> 11) * 0x1p-53;
    const int exponent = static_cast<int>(random() % (2 * magnitudes)) - magnitudes;
    const double x = random() % 3 == 0 ? 1 + std::ldexp(unit - 0.5, -static_cast<int>(unit * 53))
                                       : std::ldexp(1 + unit, exponent);
    return random() % 2 ? x : -x;
  };
  mpc_t a, r, wanted;
  mpc_init2(a, 53);
  mpc_init2(r, 240);
  mpc_init2(wanted, 240);
  mpfr_t off;
  mpfr_init2(off, 240);
  for (const auto& [name, own] : kFunctions) {
    const auto function = std::ranges::find_if(
        ComplexEntries(), [&](const Entry& e) { return e.function->name == name; });
    ASSERT_NE(function, ComplexEntries().end());
    for (int i = 0; i < 300; ++i) {
      const int magnitudes = i % 2 ? 6 : name[0] == 'A' ? 400 : 9;
      const double x = part(magnitudes), y = part(magnitudes);
      mpc_set_d_d(a, x, y, MPC_RNDNN);
      ComplexOracleOf(*function->function).exact(r, a, a);
      own(wanted, a, MPC_RNDNN);
      const mpfr_srcptr got[] = {mpc_realref(r), mpc_imagref(r)};
      const mpfr_srcptr exact[] = {mpc_realref(wanted), mpc_imagref(wanted)};
      for (int k = 0; k < 2; ++k) {
        mpfr_reldiff(off, exact[k], got[k], MPFR_RNDN);
        EXPECT_LE(std::fabs(mpfr_get_d(off, MPFR_RNDA)), 0x1p-225)
            << name << (k ? ", imaginary part of " : ", real part of ") << std::hexfloat << x
            << ", " << y << ", seed " << kSeed;
      }
    }
  }
  mpc_clear(a);
  mpc_clear(r);
  mpc_clear(wanted);
  mpfr_clear(off);
}

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
