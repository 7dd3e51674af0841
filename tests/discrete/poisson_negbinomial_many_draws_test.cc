// Poisson and negative binomial counts against their distributions, 10^7 of each.
#include "tests/discrete/count_draws.h"

namespace count_draws {
namespace {

constexpr int32_t kDraws = 10000000;
constexpr uint32_t kSeed = 20240612;

TEST(PoissonManyDraws, AreDistributedSo) { ExpectAllPoisson(QUO_BRNG_MT19937, kSeed, kDraws); }
TEST(PoissonVManyDraws, AreDistributedSo) { ExpectAllVarying(QUO_BRNG_MT19937, kSeed, 7 * kDraws); }
TEST(NegbinomialManyDraws, AreDistributedSo) {
  ExpectAllNegbinomial(QUO_BRNG_MT19937, kSeed, kDraws);
}

}  // namespace
}  // namespace count_draws
