// The LA sine and cosine have the bits of their scalar formula wherever it holds: |x| <= 2^23 for
// the sine, |x + pi/2| <= 2^23 for the cosine, tiny arguments apart.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/random.h"

namespace trigonometric_test {
namespace {

constexpr double kShifter = 6755399441055744.0;

double Formula(double x, bool cosine) {
  const double shifted = cosine ? x + 1.5707963267948966 : x;
  const double kf = shifted * 0.3183098861837907 + kShifter;
  const double n = cosine ? kf - kShifter - 0.5 : kf - kShifter;
  double y = x - n * 3.141592502593994;
  y -= n * 1.5099578831723193e-7;
  y -= n * 1.078060505991553e-14;
  y -= n * 6.564007085747001e-22;
  const double s = y * y;
  double q = -7.373344533110665e-13;
  for (const double c : {1.6048095404959637e-10, -2.505188027386288e-08, 2.7557316600552628e-06,
                         -0.00019841269825056256, 0.008333333333285542, -0.16666666666666186}) {
    q = q * s + c;
  }
  const double p = y + y * s * q;
  return std::bit_cast<double>(std::bit_cast<uint64_t>(p) ^ std::bit_cast<uint64_t>(kf) << 63);
}

class Formulas : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Functions, Formulas, testing::Bool(),
                         [](const auto& info) { return info.param ? "Cos" : "Sin"; });

TEST_P(Formulas, HaveTheBitsOfTheScalarComputation) {
  constexpr uint64_t kSeed = 40;
  std::printf("seed %d\n", static_cast<int>(kSeed));
  const bool cosine = GetParam();
  Random random(kSeed);
  const auto sign = [&random] { return random.Below(2) ? 1.0 : -1.0; };
  std::vector<double> x = {0x1p-27, -0x1p-27, 0x1.fffffffffffffp22};
  // At the edge the sine's formula holds for 2^23 itself, the cosine's up to pi/2 below -2^23.
  x.push_back(cosine ? -0x1p23 - 1.5 : 0x1p23);
  x.push_back(-0x1p23);
  while (x.size() < 200000) {
    x.push_back(sign() * std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(49)) - 27));
    x.push_back(sign() * 1000 * random.Unit());
    if (x.size() % 4096 == 0) x.push_back(1e300);  // neighbours that take the other way
    if (x.size() % 5000 == 0) x.push_back(0);
  }
  std::vector<double> r(x.size());
  (cosine ? _pexdCos_50 : _pexdSin_50)(static_cast<int32_t>(x.size()), x.data(), r.data());
  for (size_t i = 0; i < x.size(); ++i) {
    if (std::fabs(x[i]) > 0x1p24 || std::fabs(x[i]) < 0x1p-27) continue;
    ASSERT_EQ(std::bit_cast<uint64_t>(r[i]), std::bit_cast<uint64_t>(Formula(x[i], cosine)))
        << std::hexfloat << x[i];
  }
}

}  // namespace
}  // namespace trigonometric_test
