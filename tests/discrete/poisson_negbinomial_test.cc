// Poisson and negative binomial: inversion against the distribution functions, the same counts
// whatever the split, the level and the address, constants kept in chunks, strange parameters,
// generators and chunks.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/math/distributions/negative_binomial.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "pexquo/kro.h"
#include "pexquo/pex.h"
#include "pexquo/quo.h"
#include "quo_kernel/_kernel/set_up.h"
#include "tests/streams/files.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/control.h"
#include "tests/support/guarded.h"
#include "tests/support/random.h"
#include "tests/uniform/levels.h"

namespace {

using scripted::script;
using scripted::Script;

constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr uint32_t kSeed = 20240613;

struct Stream {
  StreamState* p = nullptr;
  explicit Stream(const Script& s) : p(scripted::Start(s)) {}
  explicit Stream(int32_t id, uint32_t seed = kSeed) { __quoNewStreamEx(&p, id, 1, &seed); }
  ~Stream() { __quoDeleteStream(&p); }
  Stream(const Stream&) = delete;
  operator StreamState*() const { return p; }
};

// An entry with its parameters, one for each way in which counts are made.
struct Way {
  const char* name;
  std::function<int32_t(StreamState*, int32_t, int32_t*)> draw;
};

// Means of every kind for _quoiRngPoissonV.
const std::vector<double>& Means() {
  static const std::vector<double> means = [] {
    std::vector<double> m;
    Random random(kSeed);
    for (int i = 0; i < 5000; ++i) m.push_back(std::exp(random.Unit() * 25 - 4));
    return m;
  }();
  return means;
}

Way Poisson(const char* name, uint32_t method, double mean) {
  return {name, [=](StreamState* s, int32_t n, int32_t* r) {
            return _quoiRngPoisson(method, s, n, r, mean);
          }};
}
Way Negbinomial(const char* name, double a, double p) {
  return {name, [=](StreamState* s, int32_t n, int32_t* r) {
            return _quoiRngNegbinomial(0, s, n, r, a, p);
          }};
}

// With one chunk each, and constants that depend on the parameters.
const std::vector<Way>& WaysWithChunks() {
  static const std::vector<Way> ways = {
      Poisson("poisson by table", QUO_METHOD_POISSON_PTPE, 26.5),
      Poisson("poisson by rejection, small", QUO_METHOD_POISSON_PTPE, 27),
      Poisson("poisson by rejection", QUO_METHOD_POISSON_PTPE, 1234.5),
      Poisson("poisson normal, by table", QUO_METHOD_POISSON_NORMAL, 3),
      Negbinomial("negative binomial by table", 2.5, 0.3),
      Negbinomial("negative binomial from tangents", 2.5, 1e-3),
      Negbinomial("negative binomial from one tangent", 1, 1e-4),
      Negbinomial("negative binomial from power pieces", 0.3, 1e-3),
  };
  return ways;
}

std::vector<Way> AllWays() {
  std::vector<Way> ways = WaysWithChunks();
  ways.push_back(Poisson("poisson normal", QUO_METHOD_POISSON_NORMAL, 27));
  ways.push_back(Poisson("poisson saturated", QUO_METHOD_POISSON_PTPE, 0x1p31));
  ways.push_back(Negbinomial("negative binomial saturated", 1e6, 1e-9));
  ways.push_back({"poisson with varying means", [](StreamState* s, int32_t n, int32_t* r) {
                    return _quoiRngPoissonV(0, s, n, r, Means().data());
                  }});
  return ways;
}

std::vector<int32_t> Drawn(const Way& way, StreamState* stream, int32_t n) {
  std::vector<int32_t> r(static_cast<size_t>(n), 77);
  EXPECT_EQ(way.draw(stream, n, r.data()), QUO_OK);
  return r;
}

// ---- Values. ----

// The least k with F(k) > u, up to the rounding of F.
template <class Exact>
void ExpectInverted(const Way& way, const Exact& exact, const std::vector<double>& u) {
  Script s;
  s.values = u;
  const auto n = static_cast<int32_t>(u.size());
  const std::vector<int32_t> r = Drawn(way, Stream(s), n);
  for (size_t i = 0; i < u.size(); ++i) {
    // The distance of u from 1 in place of u where that tells more.
    const double k = r[i], rest = 1 - u[i];
    ASSERT_LE(cdf(complement(exact, k)), rest * (1 + 1e-9) + 1e-15) << u[i] << " gives " << k;
    if (k == 0) continue;
    ASSERT_GE(cdf(complement(exact, k - 1)), rest * (1 - 1e-9) - 1e-15) << u[i] << " gives " << k;
  }
}

TEST(CountInversion, IsOfTheDistributionFunction) {
  std::vector<double> u = {0, 0x1p-53, 0.5, 1 - 0x1p-32, 1 - 0x1p-45};
  Random random(kSeed);
  for (int i = 0; i < 2000; ++i) u.push_back(random.Unit());
  for (int i = 1; i < 40; ++i) u.push_back(std::exp2(-i)), u.push_back(1 - std::exp2(-i));
  for (const double mean : {1e-9, 0.1, 1.0, 3.0, 17.3, 26.999}) {
    SCOPED_TRACE(mean);
    const boost::math::poisson exact(mean);
    ExpectInverted(Poisson("", QUO_METHOD_POISSON_PTPE, mean), exact, u);
    const std::vector<double> means(u.size(), mean);
    ExpectInverted({"", [&](StreamState* s, int32_t n,
                            int32_t* r) { return _quoiRngPoissonV(0, s, n, r, means.data()); }},
                   exact, u);
  }
  const double successes[][2] = {{1, 0.5}, {0.1, 0.5}, {2.5, 0.3}, {1e6, 1 - 1e-6}, {20, 0.2}};
  for (const auto& [a, p] : successes) {
    SCOPED_TRACE(testing::Message() << a << " " << p);
    ExpectInverted(Negbinomial("", a, p), boost::math::negative_binomial(a, p), u);
  }
}

// The largest uniform below 1 gives a count of the far tail, not the end of an array.
TEST(CountInversion, EndsWithTheLastUniform) {
  Script s;
  s.values = {1 - 0x1p-53};
  int32_t r = 77;
  const double means[] = {26.999};
  _quoiRngPoisson(0, Stream(s), 1, &r, means[0]);
  EXPECT_TRUE(r > 75 && r < 85) << r;
  _quoiRngPoissonV(0, Stream(s), 1, &r, means);
  EXPECT_TRUE(r > 65 && r < 85) << r;
  _quoiRngNegbinomial(0, Stream(s), 1, &r, 1, 0.5);
  EXPECT_TRUE(r >= 52 && r < 56) << r;
}

double NormalExpansion(double lambda, double z) {
  const double root = std::sqrt(lambda), z2 = z * z;
  return lambda + root * z + z2 / 6 + 1.0 / 3 - (z / 36 + z * z2 / 72) / root +
         (-8.0 / 405 + 7 * z2 / 810 + z2 * z2 / 270) / lambda;
}

TEST(PoissonNormal, IsTheFloorOfItsExpansion) {
  const double normal[] = {-5.1, -2.3, -1, -0.37, 0, 0.1, 0.8, 1.7, 3.3, 4.9};
  Script s;
  s.values.clear();
  for (const double z : normal) s.values.push_back(std::erf(z / std::sqrt(2)));
  for (const double lambda : {27.0, 41.7, 300.3, 1e4 + 0.2, 1e8}) {
    const auto n = static_cast<int32_t>(std::size(normal));
    const std::vector<int32_t> r =
        Drawn(Poisson("", QUO_METHOD_POISSON_NORMAL, lambda), Stream(s), n);
    for (size_t i = 0; i < r.size(); ++i) {
      const double x = NormalExpansion(lambda, normal[i]);
      // 26 bits of z
      EXPECT_NEAR(r[i] + 0.5, x, 0.5 + 1e-6 * std::sqrt(lambda)) << lambda << ", z " << normal[i];
    }
  }
}

TEST(PoissonNormal, DistanceFromPoissonIsAsDocumented) {
  const double known[][2] = {{27, 1.7e-5}, {50, 4.9e-6}, {100, 1.2e-6}, {1000, 1.2e-8}};
  for (const auto& [lambda, bound] : known) {
    const boost::math::poisson exact(lambda);
    double distance = 0, before = 0;
    const double last = std::floor(lambda + 10 * std::sqrt(lambda));
    for (double k = std::max(0.0, std::floor(lambda - 8 * std::sqrt(lambda))); k < last; ++k) {
      double low = -8.5, high = 12;
      for (int i = 0; i < 70; ++i) {
        const double z = (low + high) / 2;
        (NormalExpansion(lambda, z) < k + 1 ? low : high) = z;
      }
      const double upto = 0.5 * std::erfc(-low / std::sqrt(2));
      distance += std::abs(upto - before - pdf(exact, k)) / 2;
      before = upto;
    }
    EXPECT_LT(distance, bound * 1.03) << lambda;
    EXPECT_GT(distance, bound * 0.9) << lambda;
  }
}

TEST(PoissonV, DrawsAsPoissonOfEqualMeans) {
  for (const double mean : {1e-3, 0.5, 3.0, 26.0, 27.0, 200.5, 1e7, 3e9}) {
    const std::vector<double> means(3000, mean);
    std::vector<int32_t> r(3000);
    EXPECT_EQ(_quoiRngPoissonV(5, Stream(QUO_BRNG_MT19937), 3000, r.data(), means.data()), 0);
    EXPECT_EQ(r,
              Drawn(Poisson("", QUO_METHOD_POISSON_NORMAL, mean), Stream(QUO_BRNG_MT19937), 3000))
        << mean;
  }
}

// The floors of points under the hat are drawn with their probabilities if the triangle lies below
// the histogram and the hat above.
TEST(PoissonRejection, HatLiesAboveAndTriangleBelow) {
  std::vector<double> means = {27, 27.5, 28 - 1e-9, 1e5, 1e6};
  for (double mean = 27.1; mean < 1100; mean *= 1.013) means.push_back(mean);
  for (const double mean : means) {
    SCOPED_TRACE(mean);
    const double mode = std::floor(mean), centre = mode + 0.5;
    const double p1 = std::floor(2.195 * std::sqrt(mode) - 2.2) + 0.5;
    const double lift = 0.133 + 8.56 / (6.83 + mode), lift_left = 0.109 + 8.25 / (10.86 + mode);
    const double left = centre - p1, right = centre + p1;
    const double a = (mean - left) / mean, b = (right - mean) / right;
    const double decay_left = a * (1 + a / 2), decay_right = b * (1 + b / 2);
    for (double k = std::max(0.0, std::floor(mode - 12 * std::sqrt(mean)));
         k < mode + 14 * std::sqrt(mean); ++k) {
      const double f =
          std::exp((k - mode) * std::log(mean) - std::lgamma(k + 1) + std::lgamma(mode + 1));
      for (const double x : {k, k + 0.5, k + 1 - 1e-9}) {
        const double triangle = 1 - std::abs(x - centre) / p1;
        const double hat = x < left    ? lift_left * std::exp(decay_left * (x - left))
                           : x > right ? lift * std::exp(decay_right * (right - x))
                                       : triangle + lift;
        ASSERT_LE(triangle, f * (1 + 1e-7)) << x;
        ASSERT_GE(hat, f * (1 - 1e-7)) << x;
      }
    }
  }
}

// The largest second uniform with which a candidate of first uniform u becomes the count k; from
// there on the next candidate is taken, which becomes another.
double LargestAccepted(const Way& way, double u, int32_t k, double other) {
  double low = 0, high = 1;
  for (int i = 0; i < 60; ++i) {
    Script s;
    s.values = {u, (low + high) / 2, other, 0};
    (Drawn(way, Stream(s), 1)[0] == k ? low : high) = (low + high) / 2;
  }
  return low;
}

// ln of the product of ratio(j), j from `from` to k - 1, or of its inverse downward.
template <class Ratio>
long double LogProduct(double from, double k, const Ratio& ratio) {
  long double sum = 0;
  for (double j = from; j < k; ++j) sum += std::log(static_cast<long double>(ratio(j)));
  for (double j = k; j < from; ++j) sum -= std::log(static_cast<long double>(ratio(j)));
  return sum;
}

TEST(PoissonRejection, AcceptsWithTheExactProbability) {
  for (const double mean : {27.0, 30.5, 47.25, 300.1, 1e4 + 0.3, 1e6 + 0.9, 1e9}) {
    const Way way = Poisson("", QUO_METHOD_POISSON_PTPE, mean);
    const double mode = std::floor(mean), centre = mode + 0.5;
    const double p1 = std::floor(2.195 * std::sqrt(mode) - 2.2) + 0.5;
    const double lift = 0.133 + 8.56 / (6.83 + mode), lift_left = 0.109 + 8.25 / (10.86 + mode);
    const double a = p1 + mean - centre, b = centre + p1 - mean;
    const double decay_left = a / mean * (1 + a / mean / 2);
    const double decay_right = b / (centre + p1) * (1 + b / (centre + p1) / 2);
    const double p4 = p1 * (1 + 2 * lift) + lift_left / decay_left + lift / decay_right;
    for (const double place : {-0.97, -0.8, -0.4, -0.1, 0.15, 0.5, 0.85, 0.98}) {
      const double x = centre + place * p1, u = (p1 + (x - centre + p1) * lift) / p4;
      const double k = std::floor(x), triangle = 1 - std::abs(x - centre) / p1;
      if (std::abs(x - std::round(x)) < 1e-3) continue;
      const long double log = LogProduct(
          mode, k, [mean](double j) { return static_cast<long double>(mean) / (j + 1); });
      const double exact = static_cast<double>((std::exp(log) - triangle) / lift);
      if (exact >= 1) continue;  // all are accepted
      const double seen = LargestAccepted(way, u, static_cast<int32_t>(k), 0);
      EXPECT_NEAR(seen, exact, 1e-11 + 2e-15 * std::abs(k - mean)) << mean << ", " << k;
    }
  }
}

// In the centre of the hat, where it is the probability of the mode.
TEST(NegbinomialRejection, AcceptsWithTheExactProbability) {
  const double successes[][2] = {{1.5, 0.004}, {2.5, 1e-3}, {50.5, 0.05}, {1e3, 0.5},
                                 {1e6, 0.5},   {1e9, 0.99}, {3.3, 1e-6},  {1e12, 1 - 1e-6}};
  for (const auto& [a, p] : successes) {
    const Way way = Negbinomial("", a, p);
    const long double q = 1 - static_cast<long double>(p);
    const double mode = std::floor(static_cast<double>((a - 1) * q / p));
    for (const double u : {0.0, 0.003, 0.01, 0.02, 0.07, 0.13, 0.2, 0.28}) {
      Script s;
      s.values = {u, 0};
      const int32_t k = Drawn(way, Stream(s), 1)[0];
      const long double log = LogProduct(mode, k, [&, a = a](double j) {
        return (static_cast<long double>(a) + j) * q / (j + 1);
      });
      const double seen = LargestAccepted(way, u, k, 0.4);
      EXPECT_NEAR(seen, static_cast<double>(std::exp(log)), 1e-11 + 2e-15 * std::abs(k - mode))
          << a << " " << p << ", " << k;
    }
  }
}

// The masses of the counts below 16 for a < 1, from the uniforms at which the count changes.
TEST(NegbinomialRejection, HeadHasTheExactMasses) {
  const double successes[][2] = {{0.9, 1e-3}, {0.5, 1e-4}, {0.1, 1e-6}};
  for (const auto& [a, p] : successes) {
    const Way way = Negbinomial("", a, p);
    double before = 0, first = 0, exact = 1;
    for (int32_t k = 0; k < 16; ++k) {
      double low = 0, high = 1;
      for (int i = 0; i < 60; ++i) {
        Script s;
        s.values = {(low + high) / 2, 0};
        (Drawn(way, Stream(s), 1)[0] <= k ? low : high) = (low + high) / 2;
      }
      if (k == 0) first = low;
      EXPECT_NEAR((low - before) / first, exact, 1e-11) << a << " " << p << ", " << k;
      before = low;
      exact *= (a + k) * (1 - p) / (k + 1);
    }
  }
}

// ---- Parameters. ----

TEST(Counts, OfParametersAtAndBeyondTheEnds) {
  const auto all = [](const Way& way, int32_t value) {
    const std::vector<int32_t> r = Drawn(way, Stream(QUO_BRNG_MCG59), 700);
    EXPECT_EQ(r, std::vector<int32_t>(700, value)) << way.name;
  };
  for (const uint32_t method : {0u, 1u}) {
    for (const double mean : {0.0, -0.0, -1.0, -kInfinity, kNaN, 1e-300}) {
      all(Poisson("no mean", method, mean), 0);
    }
    for (const double mean : {2.2e9, 1e12, 1e300, kInfinity}) {
      all(Poisson("large mean", method, mean), kHighest);
    }
    const Way middle = Poisson("2^31", method, 0x1p31);
    const std::vector<int32_t> r = Drawn(middle, Stream(QUO_BRNG_MT19937), 2000);
    const auto saturated = std::count(r.begin(), r.end(), kHighest);
    EXPECT_TRUE(saturated > 850 && saturated < 1150) << saturated;
    EXPECT_GT(*std::min_element(r.begin(), r.end()), kHighest - 6 * 46341);
    int32_t one = 77;
    EXPECT_EQ(_quoiRngPoisson(method + 2, Stream(QUO_BRNG_MCG59), 1, &one, 3), QUO_BAD_METHOD);
    EXPECT_EQ(one, 77);
  }
  std::vector<double> means;
  std::vector<int32_t> want, r;
  for (int i = 0; i < 90; ++i) {
    for (const double mean : {0.0, -1.0, kNaN, -kInfinity})
      means.push_back(mean), want.push_back(0);
    for (const double mean : {1e300, kInfinity, 3e9}) {
      means.push_back(mean), want.push_back(kHighest);
    }
  }
  r.resize(means.size());
  const auto n = static_cast<int32_t>(r.size());
  EXPECT_EQ(_quoiRngPoissonV(0, Stream(QUO_BRNG_MCG59), n, r.data(), means.data()), QUO_OK);
  EXPECT_EQ(r, want);

  for (const double p : {1.0, 1.5, kInfinity, kNaN}) all(Negbinomial("sure success", 2, p), 0);
  for (const double a : {0.0, -1.0, kNaN, -kInfinity}) all(Negbinomial("none wanted", a, 0.5), 0);
  all(Negbinomial("hardly any wanted", 1e-300, 0.5), 0);
  all(Negbinomial("too many", 1e300, 0.5), kHighest);
  all(Negbinomial("too many", kInfinity, 0.5), kHighest);
  for (const double p : {1e-20, 1e-200, 5e-324, 0.0, -1.0, -kInfinity}) {
    all(Negbinomial("rare", 2.5, p), kHighest);
    all(Negbinomial("rare", 1, p), kHighest);
    all(Negbinomial("rare", 1e5, p), kHighest);
  }
  // P(X <= 2^31 - 2) = (2^31 p)^a/Gamma(a + 1), all but.
  for (const double p : {1e-12, 1e-100}) {
    const double a = 0.01;
    const std::vector<int32_t> counts =
        Drawn(Negbinomial("", a, p), Stream(QUO_BRNG_MT19937), 100000);
    const double share =
        static_cast<double>(std::count(counts.begin(), counts.end(), kHighest)) / 1e5;
    EXPECT_NEAR(share, 1 - std::pow(0x1p31 * p, a) / std::tgamma(a + 1), 0.008) << p;
  }
}

// ---- The same counts, however they are asked for. ----

TEST(Counts, DoNotDependOnSplitLevelOrAddress) {
  constexpr int32_t kCount = 4000;
  for (const Way& way : AllWays()) {
    const bool varying = way.name == AllWays().back().name;
    SCOPED_TRACE(way.name);
    const std::vector<int32_t> want = Drawn(way, Stream(QUO_BRNG_MT19937), kCount);
    levels::ForEach([&] {
      EXPECT_EQ(Drawn(way, Stream(QUO_BRNG_MT19937), kCount), want);
      const Stream stream(QUO_BRNG_MT19937);
      std::vector<unsigned char> bytes(4 * kCount + 64);
      std::vector<int32_t> got;
      size_t offset = 1;
      for (const int32_t n : {1, 2, 3, 500, 17, 1024, 7, 1025, 421, 1, 999}) {
        unsigned char* at = bytes.data() + offset++ % 7;
        if (varying) {
          std::vector<char> means(8 * static_cast<size_t>(n) + 1);
          std::memcpy(&means[1], &Means()[got.size()], 8 * static_cast<size_t>(n));
          ASSERT_EQ(_quoiRngPoissonV(0, stream, n, reinterpret_cast<int32_t*>(at),
                                     reinterpret_cast<const double*>(&means[1])),
                    QUO_OK);
        } else {
          ASSERT_EQ(way.draw(stream, n, reinterpret_cast<int32_t*>(at)), QUO_OK);
        }
        got.resize(got.size() + static_cast<size_t>(n));
        std::memcpy(&*got.end() - n, at, 4 * static_cast<size_t>(n));
      }
      ASSERT_EQ(got.size(), want.size());
      EXPECT_EQ(got, want);
    });
  }
}

TEST(Counts, StayInsideTheirArrays) {
  Guarded<int32_t> memory(2000);
  Guarded<double> means(2000);
  for (const Way& way : AllWays()) {
    SCOPED_TRACE(way.name);
    levels::ForEach([&] {
      for (const int32_t n : {1, 2, 5, 13, 64, 511, 513, 1100}) {
        EXPECT_EQ(way.draw(Stream(QUO_BRNG_WH), n, memory.AtEnd(static_cast<size_t>(n))), QUO_OK);
        EXPECT_EQ(way.draw(Stream(QUO_BRNG_WH), n, memory.AtStart()), QUO_OK);
      }
    });
  }
  levels::ForEach([&] {
    for (const size_t n : {1, 5, 13, 511, 513}) {
      double* at_end = means.AtEnd(n);
      std::copy_n(Means().data(), n, at_end);
      std::vector<int32_t> r(n);
      EXPECT_EQ(_quoiRngPoissonV(0, Stream(QUO_BRNG_WH), static_cast<int32_t>(n), r.data(), at_end),
                0);
    }
  });
}

// ---- Constants that are kept. ----

uint32_t KeyOf(const Way& way) { return std::strncmp(way.name, "poisson", 7) == 0 ? 3 : 4; }

void AddChunk(StreamState* stream, uint32_t key, uint32_t size, const void* from) {
  void* data = kro_serv_kro_malloc(size, 32);
  std::memcpy(data, from, size);
  ASSERT_EQ(__quoAddChunk(stream, key, data, size), QUO_OK);
}

TEST(CountConstants, AreKeptWithTheStream) {
  for (const Way& way : WaysWithChunks()) {
    SCOPED_TRACE(way.name);
    const std::vector<int32_t> want = Drawn(way, Stream(QUO_BRNG_MT19937), 900);
    const Stream stream(QUO_BRNG_MT19937);
    std::vector<int32_t> got = Drawn(way, stream, 300);
    ASSERT_EQ(__quoGetNumChunks(stream), 1);
    ASSERT_EQ(stream.p->chunks->key, KeyOf(way));
    if (KeyOf(way) == 3) {
      ASSERT_EQ(stream.p->chunks->size, 696u);
    }
    std::vector<char> kept(stream.p->chunks->size);
    std::memcpy(kept.data(), stream.p->chunks->data, kept.size());

    // A copy and a file go on with them.
    Stream copy(QUO_BRNG_MCG59), loaded(QUO_BRNG_MCG59);
    __quoDeleteStream(&copy.p);
    __quoDeleteStream(&loaded.p);
    ASSERT_EQ(__quoCopyStream(&copy.p, stream), QUO_OK);
    const files::TemporaryFile file;
    const auto length = static_cast<int32_t>(std::strlen(file.path()));
    ASSERT_EQ(__quoSaveStreamF(stream, file.path(), length), QUO_OK);
    ASSERT_EQ(__quoLoadStreamF(&loaded.p, file.path(), length), QUO_OK);
    for (StreamState* s : {copy.p, loaded.p, stream.p}) {
      std::vector<int32_t> all = got;
      const std::vector<int32_t> rest = Drawn(way, s, 600);
      all.insert(all.end(), rest.begin(), rest.end());
      EXPECT_EQ(all, want);
      ASSERT_EQ(__quoGetNumChunks(s), 1);
      EXPECT_EQ(std::memcmp(s->chunks->data, kept.data(), kept.size()), 0);
    }
  }
}

TEST(CountConstants, FollowTheParameters) {
  const std::vector<Way>& ways = WaysWithChunks();
  const Stream stream(QUO_BRNG_MT19937);
  Random random(kSeed);
  for (int i = 0; i < 100; ++i) {
    const Way& way = ways[random.Below(static_cast<uint32_t>(ways.size()))];
    Stream fresh(QUO_BRNG_MCG59);
    __quoDeleteStream(&fresh.p);
    ASSERT_EQ(__quoCopyStream(&fresh.p, stream), QUO_OK);
    __quoDeleteChunks(fresh);
    EXPECT_EQ(Drawn(way, stream, 50), Drawn(way, fresh, 50)) << way.name << " at " << i;
  }
  EXPECT_EQ(__quoGetNumChunks(stream), 2);
}

TEST(CountConstants, ThatAreNotSoundArePassedOver) {
  for (const Way& way : WaysWithChunks()) {
    SCOPED_TRACE(way.name);
    const std::vector<int32_t> want = Drawn(way, Stream(QUO_BRNG_MT19937), 700);
    const Stream good(QUO_BRNG_MT19937);
    Drawn(way, good, 1);
    const uint32_t size = good.p->chunks->size;
    const auto* kept = static_cast<const unsigned char*>(good.p->chunks->data);
    std::vector<unsigned char> bytes(size + 8);
    for (const uint32_t other : {0u, 8u, size - 8, size + 8}) {
      const Stream stream(QUO_BRNG_MT19937);
      AddChunk(stream, KeyOf(way), other, bytes.data());
      EXPECT_EQ(Drawn(way, stream, 700), want) << other;
      EXPECT_EQ(__quoGetNumChunks(stream), 2);
    }
    Random random(kSeed);
    for (int i = 0; i < 400; ++i) {
      std::memcpy(bytes.data(), kept, size);
      uint64_t used;
      std::memcpy(&used, &bytes[8], 8);
      ASSERT_LE(used, size);
      if (i < 5) {
        std::fill(bytes.begin(), bytes.end(), static_cast<unsigned char>(0x55 * i));
      } else if (i < 10) {
        for (auto& byte : bytes) byte = static_cast<unsigned char>(random.Bits());
      } else {  // one bit
        const uint32_t at = i < 40 ? random.Below(16) : random.Below(static_cast<uint32_t>(used));
        bytes[at] = static_cast<unsigned char>(bytes[at] ^ (1 << random.Below(8)));
      }
      const Stream stream(QUO_BRNG_MT19937);
      AddChunk(stream, KeyOf(way), size, bytes.data());
      ASSERT_EQ(Drawn(way, stream, 700), want) << i;
      EXPECT_EQ(__quoGetNumChunks(stream), 1);
    }
  }
}

// A record of constants as the generators keep it, and the seal that makes it pass for sound.
template <size_t kSize>
struct Record {
  quo::SetUpHead head;
  double x[kSize / 8 - 2];
};
template <size_t kSize>
void Seal(void* data) {
  Record<kSize> record;
  std::memcpy(&record, data, kSize);
  record.head.seal = quo::SealOf(record);
  std::memcpy(data, &record, kSize);
}

TEST(CountConstants, AreNotComputedAgain) {
  const Way way = Poisson("", QUO_METHOD_POISSON_PTPE, 3);
  const Stream stream(QUO_BRNG_MT19937);
  Drawn(way, stream, 1);
  auto* record = static_cast<Record<696>*>(stream.p->chunks->data);
  ASSERT_EQ(record->x[0], 3);
  const size_t table = (record->head.used - 24) / 8;
  std::fill_n(record->x + 1, table - 1, 0.0);  // all counts but the last are impossible
  Seal<696>(record);
  EXPECT_EQ(Drawn(way, stream, 100), std::vector<int32_t>(100, static_cast<int32_t>(table) - 1));
  EXPECT_NE(Drawn(Poisson("", QUO_METHOD_POISSON_PTPE, 3.5), stream, 100)[0], table - 1);
}

// Forged constants give senseless counts, but an end to each call, within its arrays.
TEST(CountConstants, ForgedOnesDoNoHarm) {
  Random random(kSeed);
  const double strange[] = {0,   -0.0, -1,  1,         2,          kNaN, 1e300, -1e300,
                            0.5, 1e-9, 1e9, kInfinity, -kInfinity, 700,  -3,    0x1p-1074};
  for (const Way& way : WaysWithChunks()) {
    SCOPED_TRACE(way.name);
    for (int i = 0; i < 300; ++i) {
      const Stream stream(QUO_BRNG_MT19937);
      Drawn(way, stream, 1);
      auto* words = static_cast<uint64_t*>(stream.p->chunks->data);
      const size_t size = stream.p->chunks->size;
      const size_t used = words[1] / 8, first = KeyOf(way) == 3 ? 3 : 4;
      if (i % 10 == 0) words[1] = random.Bits() >> random.Below(64);
      for (uint32_t changes = i < 100 ? 1 : 1 + random.Below(30); changes > 0; --changes) {
        const size_t at = first + random.Below(static_cast<uint32_t>(used - first));
        const double value = strange[random.Below(std::size(strange))];
        if (random.Below(4) == 0) {
          words[at] = random.Bits();
        } else {
          std::memcpy(&words[at], &value, 8);
        }
      }
      if (size == 696) {
        Seal<696>(words);
      } else {
        ASSERT_EQ(size, 4136u);
        Seal<4136>(words);
      }
      const std::vector<int32_t> r = Drawn(way, stream, 600);
      EXPECT_GE(*std::min_element(r.begin(), r.end()), 0);
    }
  }
}

// ---- Generators that fail or give strange uniforms. ----

TEST(Counts, HandUpTheStatusAndKeepEarlierBlocks) {
  for (const Way& way : AllWays()) {
    SCOPED_TRACE(way.name);
    for (const int32_t n : {0, -1, std::numeric_limits<int32_t>::min()}) {
      Script s;
      s.status = 6;
      const Stream stream(s);
      EXPECT_EQ(way.draw(stream, n, nullptr), QUO_OK);
      EXPECT_TRUE(script.calls.empty());
    }
    for (const int32_t failing : {0, 1, 2}) {
      Script s;
      Random random(kSeed);
      s.values.clear();
      for (int i = 0; i < 4001; ++i) s.values.push_back(random.Unit());
      s.status = 6;
      s.failing_call = failing;
      s.failure = -1120;
      const Stream stream(s);
      std::vector<int32_t> r(3000, -77);
      EXPECT_EQ(way.draw(stream, 3000, r.data()), -1120);
      EXPECT_EQ(script.calls.size(), static_cast<size_t>(failing) + 1);
      const auto end = std::find(r.begin(), r.end(), -77);
      EXPECT_EQ(std::count(end, r.end(), -77), r.end() - end) << "no gap";
      EXPECT_EQ(end == r.begin(), failing == 0);
      s.failing_call = -1;
      const Stream sound(s);
      std::vector<int32_t> all(3000);
      EXPECT_EQ(way.draw(sound, 3000, all.data()), 6);
      EXPECT_TRUE(std::equal(r.begin(), end, all.begin()));
    }
    StreamState none = {-5, 1, nullptr};
    int32_t one = 77;
    EXPECT_EQ(way.draw(&none, 1, &one), QUO_INVALID_BRNG);
    EXPECT_EQ(one, 77);
    __quoDeleteChunks(&none);
  }
}

TEST(Counts, OfStrangeUniformsAreTheSameOnEachLevel) {
  Script s;
  s.values.clear();
  Random random(kSeed);
  for (int i = 0; i < 40; ++i) {
    for (const double u : {0.0, 1 - 0x1p-53, 1.0, -0.0, -0.5, 1.25, 1e30, -1e300, kNaN, kInfinity,
                           0x1p-1074, 0x1p-53, 0.5}) {
      s.values.push_back(u);
      for (uint32_t k = random.Below(4); k > 0; --k) s.values.push_back(random.Unit());
    }
  }
  for (const Way& way : AllWays()) {
    SCOPED_TRACE(way.name);
    std::vector<int32_t> want;
    levels::ForEach([&] {
      const std::vector<int32_t> r = Drawn(way, Stream(s), 3000);
      EXPECT_GE(*std::min_element(r.begin(), r.end()), 0);
      if (want.empty()) want = r;
      EXPECT_EQ(r, want);
    });
  }
}

// A generator that always gives the same: every call ends.
TEST(Counts, OfAStuckGeneratorEnd) {
  for (const Way& way : AllWays()) {
    SCOPED_TRACE(way.name);
    for (const double u : {0.0, 0.2, 0.93, 0.985, 1 - 0x1p-32, 1 - 0x1p-53, 1.0, 7.0, -1.0, kNaN}) {
      Script s;
      s.values = {u};
      const std::vector<int32_t> r = Drawn(way, Stream(s), 700);
      EXPECT_GE(*std::min_element(r.begin(), r.end()), 0) << u;
    }
  }
}

// ---- No trace. ----

int calls_back = 0;
int CountCalls(PexErrorContext*) { return ++calls_back; }

TEST(Counts, LeaveNoTraceInTheThread) {
  Script special;
  special.values = {0, 0.999, 0, 0, 0.97, 0, 0.5, 0.25, 0.99, 0.1, 1 - 0x1p-53, 0.7};
  special.raise = kInvalid | kOverflow | kDivByZero;
  for (const Way& way : AllWays()) {
    SCOPED_TRACE(way.name);
    const std::vector<int32_t> want = Drawn(way, Stream(special), 400);
    for (const Control& control : kControls) {
      SCOPED_TRACE(control.name);
      const Stream stream(special);
      script.raise = (control.mxcsr & 0x1F80) == 0 ? 0 : special.raise;  // else it would trap
      const uint32_t mode = _pexSetMode(PEX_ERRMODE_CALLBACK);
      const uint32_t set = _pexSetMode(PEX_ERRMODE_CALLBACK);
      const PexErrorCallBack callback = _pexSetErrorCallBack(CountCalls);
      _pexClearErrStatus();
      calls_back = 0;
      errno = 4711;
      std::vector<int32_t> r(400);
      UseControl use(control);
      const int32_t status = way.draw(stream, 400, r.data());
      use.Finish();
      EXPECT_EQ(status, QUO_OK);
      EXPECT_EQ(errno, 4711);
      EXPECT_TRUE(use.kept());
      EXPECT_EQ(use.flags() & ~kInexact, 0u);
      EXPECT_EQ(use.x87_flags(), 0u);
      EXPECT_EQ(calls_back, 0);
      EXPECT_EQ(_pexClearErrStatus(), 0);
      EXPECT_EQ(_pexSetErrorCallBack(callback), CountCalls);
      EXPECT_EQ(_pexSetMode(mode), set);
      EXPECT_EQ(r, want);
    }
  }
}

}  // namespace
