// Bernoulli and geometric against their definitions, and their statistics.
#include <gtest/gtest.h>

#include <bit>
#include <boost/math/distributions/geometric.hpp>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "pexquo/pex.h"
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/scalar.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/statistics.h"
#include "tests/uniform/levels.h"

namespace {

using scripted::script;
using scripted::Script;
using scripted::Stream;

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Entry = int32_t (*)(uint32_t, StreamState*, int32_t, int32_t*, double);

int32_t Bernoulli(float u, double p) {
  return std::bit_cast<int32_t>(static_cast<float>(p)) > std::bit_cast<int32_t>(u) ? 1 : 0;
}

// What a conversion cannot hold: the nearest end, the upper one for NaN.
int32_t Truncated(float x) {
  if (!(x < 0x1p31f)) return kHighest;
  return x < -0x1p31f ? kLowest : static_cast<int32_t>(x);
}

int32_t Geometric(float u, double p) {
  const auto c = static_cast<float>(1.0 / quo::__quodLn(1.0 - p));
  const uint32_t mode = _pexSetMode(PEX_ERRMODE_IGNORE);
  _pexClearErrStatus();
  float log;
  _pexsLn_21(1, &u, &log);
  if (_pexClearErrStatus() != 0) log = std::bit_cast<float>(0xC2CE8ED0u);
  _pexSetMode(mode);
  float x = log * c;
  const auto t = static_cast<float>(Truncated(x));
  if (x < t) x = x - 1.0f;
  return Truncated(x);
}

struct Discrete {
  const char* name;
  Entry draw;
  int32_t (*from)(float, double);
};
constexpr Discrete kBoth[] = {{"bernoulli", _quoiRngBernoulli, Bernoulli},
                              {"geometric", _quoiRngGeometric, Geometric}};
constexpr double kProbabilities[] = {0,
                                     1,
                                     0.5,
                                     0.25,
                                     0.1,
                                     1e-3,
                                     1e-6,
                                     1e-9,
                                     1e-12,
                                     1e-17,
                                     1e-50,
                                     0.9999,
                                     0.75,
                                     -0.,
                                     -0.5,
                                     1.5,
                                     2,
                                     1 - 0x1p-25,
                                     1 - 0x1p-26,
                                     1 - 1e-12,
                                     1e300,
                                     kNaN,
                                     0x1p-149,
                                     0x1p-151,
                                     0.3,
                                     0.125 + 0x1p-28,
                                     0.125 + 0x1p-27,
                                     0.125 + 0x1p-30};

Script SpecialUniforms() {
  Script s;
  for (const double special :
       {0.0, 0.125, 0.125 - 0x1p-27, 0.125 + 0x1p-26, 1 - 0x1p-24, 1.0, 0x1p-149, -0.0, -0.5,
        0x1p-24, 1.25, 1e30, kNaN, -kNaN, std::numeric_limits<double>::infinity()}) {
    s.values.insert(s.values.end(), {special, 0.3125, 0.9});
  }
  for (int i = 0; i < 100; ++i) s.values.push_back(0.003 + i * 0.0099);
  return s;
}

TEST(Discrete, IsAsDefined) {
  const Script special = SpecialUniforms();
  std::vector<int32_t> lengths = {1023, 1024, 1025, 2048, 3000};
  for (int32_t n = 1; n <= 70; ++n) lengths.push_back(n);
  for (const Discrete& d : kBoth) {
    for (const double p : kProbabilities) {
      SCOPED_TRACE(testing::Message() << d.name << ", p = " << p);
      std::vector<float> u(3000), v(3000);
      _quosRngUniform(0, Stream(special), 3000, u.data(), 0, 1);
      _quosRngUniform(0, Stream(QUO_BRNG_MCG31M1), 3000, v.data(), 0, 1);
      levels::ForEach([&] {
        for (const int32_t n : lengths) {
          const auto size = static_cast<size_t>(n);
          std::vector<int32_t> r(size + 1, 77), q(size + 1, 77);
          ASSERT_EQ(d.draw(~0u, Stream(special), n, r.data(), p), QUO_OK);
          ASSERT_EQ(d.draw(0, Stream(QUO_BRNG_MCG31M1), n, q.data(), p), QUO_OK);
          for (size_t i = n < 100 ? 0 : size - 70; i < size; ++i) {
            ASSERT_EQ(r[i], d.from(u[i], p)) << u[i] << " at " << i << " of " << n;
            ASSERT_EQ(q[i], d.from(v[i], p)) << v[i] << " at " << i << " of " << n;
          }
          ASSERT_TRUE(r.back() == 77 && q.back() == 77) << n;
        }
      });
    }
  }
}

TEST(Discrete, AtTheEndsOfTheProbability) {
  const auto all = [](Entry draw, double p, const Script& s) {
    std::vector<int32_t> r(200);
    draw(0, Stream(s), 200, r.data(), p);
    EXPECT_EQ(r, std::vector<int32_t>(200, r[0])) << p;
    return r[0];
  };
  Script s;
  s.values = {0, 0x1p-149, 0.5, 1 - 0x1p-24};
  EXPECT_EQ(all(_quoiRngBernoulli, 0, s), 0);
  EXPECT_EQ(all(_quoiRngBernoulli, -0.0, s), 0);
  EXPECT_EQ(all(_quoiRngBernoulli, 1, s), 1);
  EXPECT_EQ(all(_quoiRngGeometric, 1, s), 0);
  s.values = {0.5};
  EXPECT_EQ(all(_quoiRngGeometric, 1e-12, s), kHighest) << "a count of 7e11";
  EXPECT_NEAR(all(_quoiRngGeometric, 1e-9, s), 693147181, 128) << "a float";
  EXPECT_EQ(all(_quoiRngGeometric, 0, s), kLowest) << "there is no success";
  s.values = {0};
  EXPECT_EQ(all(_quoiRngGeometric, 0.5, s), 149) << "log(2^-149)/log(1/2)";
}

TEST(Discrete, DrawsWhatItNeedsAndEndsAtTheFirstError) {
  for (const Discrete& d : kBoth) {
    const bool blocks = d.draw == _quoiRngGeometric;
    for (const int32_t n : {1, 1024, 1025, 2500, 0, -3, kLowest}) {
      for (int32_t failing = -1; failing < 3; ++failing) {
        SCOPED_TRACE(testing::Message() << d.name << ", n " << n << ", failing " << failing);
        std::vector<int32_t> counts;
        if (!blocks) counts = {n};
        for (int32_t left = n; blocks && left > 0; left -= 1024) {
          counts.push_back(std::min(left, 1024));
        }
        const bool fails = failing >= 0 && failing < static_cast<int32_t>(counts.size());
        if (fails) counts.resize(static_cast<size_t>(failing) + 1);
        Script s;
        s.status = 6;
        s.failing_call = failing;
        s.failure = -1120;
        const Stream stream(s);
        std::vector<int32_t> r(2501, 77);
        EXPECT_EQ(d.draw(0, stream, n, r.data(), 0.5), fails ? -1120 : counts.empty() ? 0 : 6);
        ASSERT_EQ(script.calls.size(), counts.size());
        for (size_t k = 0; k < counts.size(); ++k) {
          EXPECT_EQ(script.calls[k].n, counts[k]);
          EXPECT_EQ(script.calls[k].a, 0);
          EXPECT_EQ(script.calls[k].b, 1);
        }
        const size_t written =
            fails ? static_cast<size_t>(failing) * 1024 : static_cast<size_t>(std::max(n, 0));
        for (size_t i = 0; i < r.size(); ++i) ASSERT_EQ(r[i] == 77, i >= written) << i;
      }
    }
    StreamState none = {-5, 1, nullptr};
    int32_t r = 77;
    EXPECT_EQ(d.draw(0, &none, 1, &r, 0.5), QUO_INVALID_BRNG);
    EXPECT_EQ(r, 77);
  }
}

TEST(Discrete, TakesArraysAtAnyAddressAndAnySplit) {
  for (const Discrete& d : kBoth) {
    std::vector<int32_t> want(3000), got;
    d.draw(0, Stream(QUO_BRNG_WH), 3000, want.data(), 0.2);
    const Stream stream(QUO_BRNG_WH);
    std::vector<unsigned char> bytes(4 * 3000 + 64);
    size_t offset = 0;
    for (const int32_t n : {1, 2, 3, 500, 17, 1024, 7, 1025, 421}) {
      unsigned char* at = bytes.data() + offset++ % 64;
      d.draw(0, stream, n, reinterpret_cast<int32_t*>(at), 0.2);
      got.resize(got.size() + static_cast<size_t>(n));
      std::memcpy(&*got.end() - n, at, 4 * static_cast<size_t>(n));
    }
    EXPECT_EQ(got, want) << d.name;
  }
}

constexpr double kLevel = 1e-4;
constexpr int32_t kDraws = 1000000;
constexpr int32_t kGenerators[] = {QUO_BRNG_MT19937, QUO_BRNG_MCG59, QUO_BRNG_WH + 100};

TEST(Bernoulli, HasItsProbability) {
  for (const int32_t id : kGenerators) {
    for (const double p : {1e-4, 0.01, 0.3, 0.5, 0.999}) {
      SCOPED_TRACE(testing::Message() << id << ", p = " << p);
      std::vector<int32_t> r(kDraws);
      _quoiRngBernoulli(0, Stream(id), kDraws, r.data(), p);
      EXPECT_GT(statistics::ChiSquareOfIntegersP(
                    r, 0, 1, [&](double x) { return x == 0 ? 1 - p : p; }, 0, 0),
                kLevel);
      EXPECT_GT(statistics::SerialCorrelationP(r, 1), kLevel);
    }
  }
}

TEST(Geometric, IsDistributedSo) {
  for (const int32_t id : kGenerators) {
    for (const double p : {0.003, 0.05, 0.3, 0.5, 0.9, 0.9999}) {
      SCOPED_TRACE(testing::Message() << id << ", p = " << p);
      std::vector<int32_t> r(kDraws);
      _quoiRngGeometric(0, Stream(id), kDraws, r.data(), p);
      const boost::math::geometric_distribution<double> exact(p);
      const auto most = static_cast<int64_t>(20 / p);
      EXPECT_GT(statistics::ChiSquareOfIntegersP(
                    r, 0, most, [&](double x) { return pdf(exact, x); }, 0,
                    cdf(complement(exact, static_cast<double>(most)))),
                kLevel);
      EXPECT_GT(statistics::SerialCorrelationP(r, 1), kLevel);
    }
    // So rare that the counts are as good as continuous.
    for (const double p : {1e-5, 1e-7}) {
      std::vector<int32_t> r(kDraws);
      _quoiRngGeometric(0, Stream(id), kDraws, r.data(), p);
      const auto upto = [&](double x) { return -std::expm1((x + 0.5) * std::log1p(-p)); };
      EXPECT_GT(statistics::KolmogorovSmirnovP(r, upto), kLevel) << id << ", p = " << p;
    }
  }
}

}  // namespace
