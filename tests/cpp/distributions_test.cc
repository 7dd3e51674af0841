// Distributions give what the C calls give, in every type, and pass their parameters on in order.
#include <gtest/gtest.h>

#include <array>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "pexquo/pexquo.hpp"

namespace {

using pexquo::normal_method;
using pexquo::stream;

constexpr std::size_t kCount = 1500;

// d's numbers against those of a C call from the same stream.
template <typename T, typename D, typename Call>
void Compare(const D& d, Call call) {
  stream s("mrg32k3a", 5), same(s);
  std::vector<T> expected(kCount);
  ASSERT_EQ(call(same.handle(), static_cast<int64_t>(kCount), expected.data()), 0) << D::kName;
  EXPECT_EQ(d.template sample<T>(s, kCount), expected) << D::kName;
  EXPECT_EQ(pexquo::uniform{}(s), pexquo::uniform{}(same));
}

#define COMPARE_REAL(object, entry, method, ...)                   \
  Compare<double>(object, [](QuoStream* s, int64_t n, double* r) { \
    return quodRng##entry(method, s, n, r, __VA_ARGS__);           \
  });                                                              \
  Compare<float>(object, [](QuoStream* s, int64_t n, float* r) {   \
    return quosRng##entry(method, s, n, r, __VA_ARGS__);           \
  })
#define COMPARE_INTEGER(object, entry, ...)                                    \
  Compare<std::int32_t>(object, [](QuoStream* s, int64_t n, std::int32_t* r) { \
    return quoiRng##entry(0, s, n, r, __VA_ARGS__);                            \
  })

// All parameters differ from each other and from the standard ones; they are floats, too.
TEST(Distributions, GiveWhatTheCCallsGive) {
  COMPARE_REAL((pexquo::uniform{-1.5, 2.25}), Uniform, 0, -1.5f, 2.25f);
  COMPARE_REAL((pexquo::uniform{-1.5, 2.25, true}), Uniform,
               static_cast<int32_t>(QUO_METHOD_ACCURATE), -1.5f, 2.25f);
  COMPARE_REAL((pexquo::normal{3, 0.5, normal_method::boxmuller}), Gaussian, 0, 3, 0.5f);
  COMPARE_REAL((pexquo::normal{3, 0.5, normal_method::boxmuller2}), Gaussian, 1, 3, 0.5f);
  COMPARE_REAL((pexquo::normal{3, 0.5}), Gaussian, 2, 3, 0.5f);
  COMPARE_REAL((pexquo::exponential{3, 0.5}), Exponential, 0, 3, 0.5f);
  COMPARE_REAL((pexquo::laplace{3, 0.5}), Laplace, 0, 3, 0.5f);
  COMPARE_REAL((pexquo::weibull{1.5, 3, 0.5}), Weibull, 0, 1.5f, 3, 0.5f);
  COMPARE_REAL((pexquo::cauchy{3, 0.5}), Cauchy, 0, 3, 0.5f);
  COMPARE_REAL((pexquo::rayleigh{3, 0.5}), Rayleigh, 0, 3, 0.5f);
  COMPARE_REAL((pexquo::lognormal{0.25, 0.5, 3, 2}), Lognormal, 0, 0.25f, 0.5f, 3, 2);
  COMPARE_REAL((pexquo::gumbel{3, 0.5}), Gumbel, 0, 3, 0.5f);
  COMPARE_INTEGER((pexquo::uniform_int{-3, 17}), Uniform, -3, 17);
  COMPARE_INTEGER((pexquo::bernoulli{0.25}), Bernoulli, 0.25);
  COMPARE_INTEGER((pexquo::geometric{0.25}), Geometric, 0.25);
#ifdef PEXQUO_HAS_GAMMA
  COMPARE_REAL((pexquo::gamma{1.5, 3, 0.5}), Gamma, 0, 1.5f, 3, 0.5f);
  COMPARE_REAL((pexquo::beta{1.5, 2.5, 3, 0.5}), Beta, 0, 1.5f, 2.5f, 3, 0.5f);
#endif
#ifdef PEXQUO_HAS_BINOMIAL
  COMPARE_INTEGER((pexquo::binomial{40, 0.25}), Binomial, 40, 0.25);
  COMPARE_INTEGER((pexquo::hypergeometric{50, 20, 10}), Hypergeometric, 50, 20, 10);
#endif
#ifdef PEXQUO_HAS_POISSON
  COMPARE_INTEGER((pexquo::poisson{3.5}), Poisson, 3.5);
  COMPARE_INTEGER((pexquo::negative_binomial{2.5, 0.25}), Negbinomial, 2.5, 0.25);
#endif
}

TEST(Distributions, FloatsDoNotDependOnTheRoundingMode) {
  const stream start("mt19937", 1);
  const pexquo::normal numbers{0.3, 0.1};
  const pexquo::normal_mv vectors({0.3, 0.7}, {0.1, 0, 0.6, 0.9});
  const auto both = [&] {
    stream s(start);
    auto all = numbers.sample<float>(s, 100);
    for (const float x : vectors.sample<float>(s, 100)) all.push_back(x);
    return all;
  };
  const auto expected = both();
  for (const int mode : {FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    const auto got = both();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(got, expected) << mode;
  }
}

TEST(Distributions, ParametersAreRoundedToTheNearestFloat) {
  using pexquo::detail::F;
  constexpr double kMost = std::numeric_limits<float>::max();
  for (const double x : {0.0,
                         0.1,
                         1.0,
                         1 + 0x1p-24,
                         1 + 0x3p-24,
                         1 - 0x1p-25,
                         0x1.fffffffp127,
                         kMost,
                         1e300,
                         kMost + 0x1p102,
                         kMost + 0x1p103,
                         1e39,
                         0x1p-126,
                         0x1.fffffffp-127,
                         0x1p-149,
                         0x3p-150,
                         0x1p-150,
                         0x1.1p-150,
                         0x1p-151,
                         1e-310,
                         std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(F(x), static_cast<float>(x)) << x;
    EXPECT_EQ(F(-x), static_cast<float>(-x)) << -x;
  }
  EXPECT_TRUE(std::signbit(F(-0.0)));
  EXPECT_TRUE(std::isnan(F(std::numeric_limits<double>::quiet_NaN())));
  const std::uint32_t seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937_64 random(seed);
  for (int i = 0; i < 1000000; ++i) {
    const double x = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                                static_cast<int>(random() % 300) - 220);
    ASSERT_EQ(F(x), static_cast<float>(x)) << x;
  }
}

#ifdef PEXQUO_HAS_POISSON
TEST(Distributions, PoissonOfManyMeans) {
  std::vector<double> means(kCount);
  for (std::size_t i = 0; i < kCount; ++i) means[i] = 0.5 + static_cast<double>(i);
  stream s("mt19937", 5), same(s);
  std::vector<std::int32_t> expected(kCount);
  ASSERT_EQ(quoiRngPoissonV(0, same.handle(), kCount, expected.data(), means.data()), 0);
  EXPECT_EQ(pexquo::poisson_v(means).sample(s), expected);
  EXPECT_THROW(pexquo::poisson_v(means).fill(s, std::span(expected).first(3)),
               pexquo::argument_error);
  means[7] = -1;
  EXPECT_THROW((void)pexquo::poisson_v(means).sample(s), pexquo::argument_error);
}
#endif

TEST(Distributions, BitsInWordsOfTheGenerator) {
  for (const auto& [name, words] :
       {std::pair("mt19937", 1u), std::pair("mcg59", 2u), std::pair("wh", 4u)}) {
    stream s(name, 5), same(s);
    std::vector<std::uint32_t> expected(12);
    ASSERT_EQ(quoiRngUniformBits(0, same.handle(), 12 / words, expected.data()), 0);
    EXPECT_EQ(pexquo::uniform_bits{}.sample(s, 12), expected) << name;
    if (words > 1) {
      EXPECT_THROW((void)pexquo::uniform_bits{}.sample(s, 13), pexquo::argument_error);
    }
  }
}

TEST(Distributions, MultivariateInEveryStorage) {
  using pexquo::normal_mv;
  using pexquo::storage;
  const std::vector<double> mean = {1, 2, 3};
  const std::vector<double> full = {2, 9, 9, 0.5, 1, 9, 0.25, 0.75, 4};
  const std::vector<double> packed = {2, 0.5, 0.25, 1, 0.75, 4};
  const stream start("mt19937", 5);
  const auto draw = [&](const normal_mv& d) {
    stream s(start);
    return d.sample(s, 300);
  };
  stream same(start);
  std::vector<double> expected(300);
  ASSERT_EQ(quodRngGaussianMV(1, same.handle(), 100, expected.data(), 3, QUO_STORAGE_PACKED,
                              mean.data(), packed.data()),
            0);
  EXPECT_EQ(draw({mean, packed, storage::packed, normal_method::boxmuller2}), expected);
  const auto by_rows = draw({mean, full, storage::full, normal_method::boxmuller2});
  for (std::size_t i = 0; i < 300; ++i) EXPECT_NEAR(by_rows[i], expected[i], 1e-14);
  const std::vector<double> diagonal = {2, 1, 4};
  stream s(start), floats(start);
  const auto single = normal_mv(mean, diagonal, storage::diagonal).sample<float>(floats, 300);
  const auto z = pexquo::normal{}.sample<float>(s, 300);
  for (std::size_t i = 0; i < 300; ++i) {
    EXPECT_NEAR(single[i], z[i] * diagonal[i % 3] + mean[i % 3], 1e-5);
  }
  EXPECT_THROW(normal_mv({}, {}), pexquo::argument_error);
  EXPECT_THROW(normal_mv(mean, packed), pexquo::argument_error);
  EXPECT_THROW((void)normal_mv(mean, full).sample(s, 100), pexquo::argument_error);
}

TEST(Distributions, WaysToDraw) {
  stream a("mrg32k3a", 1), b(a), c(a);
  std::array<float, 4> array;
  double numbers[4];
  const pexquo::exponential d;
  d.fill(a, array);
  d.fill(b, numbers);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(d(c), numbers[i]);
    EXPECT_NEAR(array[static_cast<std::size_t>(i)], numbers[i], 1e-5 * numbers[i]);
  }
  d.fill(a, std::span<double>());
  const std::int32_t heads = pexquo::bernoulli{1}(a);
  EXPECT_EQ(heads, 1);
}

// Some generators, and a pending normal number, would give one to a request for none.
TEST(Distributions, EmptyRangesDrawNothing) {
  const pexquo::normal pairs(0, 1, normal_method::boxmuller2);
  for (const char* generator :
       {"mcg31m1", "mcg59", "wh", "r250", "mrg32k3a", "mt19937", "mt2203"}) {
    stream s(generator, 1);
    (void)pairs.sample(s, 1);
    stream untouched(s);
    (void)pexquo::uniform{}.sample(s, 0);
    (void)pexquo::uniform{}.sample<float>(s, 0);
    (void)pexquo::exponential{}.sample(s, 0);
    (void)pexquo::bernoulli{}.sample(s, 0);
    (void)pexquo::uniform_bits{}.sample(s, 0);
    (void)pairs.sample(s, 0);
    EXPECT_EQ(pairs.sample(s, 5), pairs.sample(untouched, 5)) << generator;
  }
}

// Wrong parameters, by status, before the stream moves.
template <typename T, typename D>
void ExpectRefusal(const D& d, std::int32_t status) {
  stream s("mrg32k3a", 1), untouched(s);
  std::vector<T> r(10, 3);
  try {
    d.fill(s, r);
    ADD_FAILURE() << D::kName;
  } catch (const pexquo::argument_error& e) {
    EXPECT_EQ(e.status(), status) << e.what();
    const std::string start =
        "distributions_test.cc:" + std::to_string(e.where().line()) + ": " + std::string(D::kName);
    EXPECT_TRUE(std::string(e.what()).starts_with(start)) << e.what();
  }
  EXPECT_EQ(r, std::vector<T>(10, 3));
  EXPECT_EQ(pexquo::uniform{}(s), pexquo::uniform{}(untouched));
}

TEST(Distributions, WrongParametersAreRefused) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ExpectRefusal<double>(pexquo::uniform{1, 1}, QUO_EMPTY_RANGE);
  ExpectRefusal<double>(pexquo::uniform{nan, 1}, QUO_NOT_FINITE);
  ExpectRefusal<float>(pexquo::uniform{0, 1e300}, QUO_NOT_FINITE);  // infinite in single precision
  ExpectRefusal<double>(pexquo::normal{0, -1}, QUO_BAD_SCALE);
  ExpectRefusal<float>(pexquo::normal{0, 1e-300}, QUO_BAD_SCALE);
  ExpectRefusal<double>(pexquo::normal{0, 1, static_cast<normal_method>(3)}, QUO_UNKNOWN_METHOD);
  ExpectRefusal<double>(pexquo::weibull{0}, QUO_BAD_SHAPE);
  ExpectRefusal<std::int32_t>(pexquo::bernoulli{1.5}, QUO_BAD_PROBABILITY);
  ExpectRefusal<std::int32_t>(pexquo::uniform_int{3, 3}, QUO_EMPTY_RANGE);
}

}  // namespace
