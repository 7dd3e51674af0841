// Poisson and negative binomial counts against their distributions, some 10^5 of each.
#include "tests/discrete/count_draws.h"

namespace count_draws {
namespace {

constexpr int32_t kDraws = 400000;
constexpr uint32_t kSeed = 20240611;

TEST(Poisson, IsDistributedSo) {
  for (const int32_t id : {QUO_BRNG_MT19937, QUO_BRNG_WH + 3}) ExpectAllPoisson(id, kSeed, kDraws);
}
TEST(PoissonV, IsDistributedSo) { ExpectAllVarying(QUO_BRNG_MT19937, kSeed, 7 * kDraws); }
TEST(Negbinomial, IsDistributedSo) { ExpectAllNegbinomial(QUO_BRNG_MT19937, kSeed, kDraws); }

}  // namespace
}  // namespace count_draws
