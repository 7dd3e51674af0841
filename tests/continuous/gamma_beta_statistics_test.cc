// Samples of 2 10^5 numbers; gamma_beta_long_statistics_test.cc has 10^7.
#include "tests/continuous/gamma_beta_statistics.h"

namespace {

using gamma_beta::ExpectDistributed;
using gamma_beta::Ordinary;
using gamma_beta::Shape;

constexpr size_t kDraws = 200000;

TEST(Statistics, OfDoubles) {
  for (const Shape& s : Ordinary()) ExpectDistributed<double>(s, QUO_BRNG_MT19937, kDraws);
}

TEST(Statistics, OfSingles) {
  for (const Shape& s : Ordinary()) ExpectDistributed<float>(s, QUO_BRNG_MCG31M1, kDraws);
}

TEST(Statistics, OfExtremeShapes) {
  for (const Shape& s : {Shape{1e-3},
                         {1 - 1e-9},
                         {1 + 1e-9},
                         {9999},
                         {10001},
                         {1e7},
                         {1e-3, 1e-3},
                         {1 - 1e-9, 1 - 1e-9},
                         {1e-3, 0.9},
                         {1e-3, 700},
                         {1 + 1e-9, 0.01},
                         {1e5, 1e5},
                         {1, 1e9},
                         {1e-3, 1},
                         {1e6, 2},
                         {1 + 1e-9, 1 + 1e-9},
                         {1 + 1e-5, 1 + 1e-5},
                         {256, 256},
                         {257, 256}}) {
    ExpectDistributed<double>(s, QUO_BRNG_MRG32K3A, kDraws);
  }
}

}  // namespace
