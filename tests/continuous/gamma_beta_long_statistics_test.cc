// Samples of 10^7 numbers: ordinary, extreme and boundary shapes, both precisions.
#include "tests/continuous/gamma_beta_statistics.h"

namespace {

using gamma_beta::ExpectDistributed;
using gamma_beta::Shape;

constexpr size_t kDraws = 10000000;

TEST(LongStatistics, OfGamma) {
  for (const double alpha : {0.01, 0.5, 0.999, 1.0, 1.001, 2.5, 30.0, 9990.0, 1e6}) {
    ExpectDistributed<double>({alpha}, QUO_BRNG_MT19937, kDraws);
  }
  for (const double alpha : {0.5, 1.0, 2.5}) {
    ExpectDistributed<float>({alpha}, QUO_BRNG_MT19937, kDraws);
  }
}

TEST(LongStatistics, OfBeta) {
  for (const Shape& s : {Shape{0.01, 0.02},
                         {0.5, 0.5},
                         {0.99, 0.98},
                         {1, 1},
                         {1, 40},
                         {0.3, 1},
                         {1.01, 1.01},
                         {2.5, 1.5},
                         {50, 3},
                         {0.3, 2},
                         {1e8, 0.5}}) {
    ExpectDistributed<double>(s, QUO_BRNG_MT19937, kDraws);
  }
  for (const Shape& s : {Shape{0.5, 0.5}, {1, 3}, {2.5, 1.5}, {6, 0.5}}) {
    ExpectDistributed<float>(s, QUO_BRNG_MT19937, kDraws);
  }
}

}  // namespace
