// Exponential, Laplace, Weibull, Cauchy, Rayleigh, Gumbel and lognormal against their definitions:
// special uniforms, requests, failures, splits, alignment, every vector level.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/continuous/distributions.h"
#include "tests/streams/scripted_generator.h"
#include "tests/uniform/levels.h"

namespace {

using continuous::All;
using continuous::Distribution;
using continuous::Draw;
using continuous::Name;
using continuous::Reference;
using scripted::script;
using scripted::Script;
using scripted::Stream;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Name kEvery[] = {Name::kExponential, Name::kLaplace, Name::kWeibull,  Name::kCauchy,
                           Name::kRayleigh,    Name::kGumbel,  Name::kLognormal};

std::string Print(const Distribution& d) {
  std::ostringstream out;
  out << "distribution " << static_cast<int>(d.name) << ", a " << d.a << ", beta " << d.beta << ", "
      << d.first << ", " << d.sigma;
  return out.str();
}

// Equal bits, or both not a number.
template <typename T>
bool Same(T x, T y) {
  return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y));
}

template <typename T>
void ExpectSame(const std::vector<T>& got, const std::vector<T>& want) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < want.size(); ++i) {
    ASSERT_TRUE(Same(got[i], want[i]))
        << "element " << i << " of " << want.size() << ": " << got[i] << ", not " << want[i];
  }
}

template <typename T>
std::vector<T> Drawn(const Distribution& d, StreamState* stream, int32_t n) {
  std::vector<T> r(static_cast<size_t>(n) + 1, T(-77));
  EXPECT_EQ(Draw(d, 0, stream, n, r.data()), QUO_OK);
  EXPECT_EQ(r.back(), T(-77)) << "behind the end";
  r.pop_back();
  return r;
}

// Uniforms that are special for some function of some distribution, between ordinary ones; an odd
// number, so that they come to every place of a vector and of a pair.
Script SpecialUniforms() {
  Script s;
  for (const double special : {0.0, 0.5, 1.0, 1 - 0x1p-53, 1 - 0x1p-24, 0x1p-53, 5e-324, 0x1p-149,
                               1e-40, -0.0, -0.25, 1.5707963267948966, -1.5707963267948966, 2.0,
                               1e300, -1e-320, kInfinity, -kInfinity, kNaN}) {
    s.values.insert(s.values.end(), {special, 0.3125, 0.8});
  }
  for (int i = 0; i < 100; ++i) s.values.push_back(0.005 + i * 0.00987);
  if (s.values.size() % 2 == 0) s.values.push_back(0.75);
  return s;
}

template <typename T>
class Continuous : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(Continuous, Types);

TYPED_TEST(Continuous, IsAsDefined) {
  using T = TypeParam;
  const Script special = SpecialUniforms();
  auto all = All();
  for (const Name name : kEvery) {
    all.insert(all.end(), {{name, kNaN, 1}, {name, 0, kNaN}, {name, 0, 1, kNaN}});
  }
  for (const Distribution& d : all) {
    SCOPED_TRACE(Print(d));
    const auto want_special = Reference<T>(d, Stream(special), 1500);
    const auto want = Reference<T>(d, Stream(QUO_BRNG_MCG59), 2500);
    levels::ForEach([&] {
      ExpectSame(Drawn<T>(d, Stream(special), 1500), want_special);
      ExpectSame(Drawn<T>(d, Stream(QUO_BRNG_MCG59), 2500), want);
    });
  }
}

TYPED_TEST(Continuous, TakesAnyLength) {
  using T = TypeParam;
  const Script special = SpecialUniforms();
  for (const Name name : kEvery) {
    const Distribution d = {name, 0.25, 3, 1.5, 2};
    SCOPED_TRACE(Print(d));
    std::vector<int32_t> lengths = {1023, 1024, 1025, 2047, 2048, 3073};
    for (int32_t n = 1; n <= 70; ++n) lengths.push_back(n);
    levels::ForEach([&] {
      for (const int32_t n : lengths) {
        ExpectSame(Drawn<T>(d, Stream(special), n), Reference<T>(d, Stream(special), n));
      }
    });
  }
}

TYPED_TEST(Continuous, IsFiniteForUniformsFromZero) {
  using T = TypeParam;
  const T most = -continuous::LnSmallest<T>();
  Script s;
  s.values = {0};
  const auto first = [&](const Distribution& d) { return Drawn<T>(d, Stream(s), 1)[0]; };
  EXPECT_EQ(first({Name::kExponential, 2, 0.5}), T(2) + most * T(0.5));
  EXPECT_EQ(first({Name::kLaplace, 0, 1}), most);
  EXPECT_EQ(first({Name::kWeibull, 0, 1, 1}), most);
  EXPECT_NEAR(first({Name::kRayleigh, 0, 1}), std::sqrt(most), 1e-5 * most);
  EXPECT_NEAR(first({Name::kGumbel, 0, 1}), std::log(most), 1e-5 * most);
  s.values = {0.5, 0.5};  // u2 = 1/2 is on the upper side
  EXPECT_NEAR(first({Name::kLaplace, 10, 1}), 10 + std::log(2.0), 1e-5);
  s.values = {0.5, std::nextafter(T(0.5), T(1))};
  EXPECT_NEAR(first({Name::kLaplace, 10, 1}), 10 - std::log(2.0), 1e-5);
}

// Each call of the generator, by its count and bounds.
TYPED_TEST(Continuous, DrawsWhatItNeeds) {
  using T = TypeParam;
  const double end = T(1.5707963267948966);
  for (const Name name : kEvery) {
    if (name == Name::kLognormal) continue;  // the normal numbers' business
    const bool cauchy = name == Name::kCauchy, laplace = name == Name::kLaplace;
    for (const int32_t n : {1, 1000, 1024, 2048, 2500, 0, -3}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(name) << ", n " << n);
      Script s;
      s.status = 6;
      const Stream stream(s);
      std::vector<T> r(2501, T(-77));
      const int32_t status = Draw({name}, 0xFFFFFFFF, stream, n, r.data());
      std::vector<int32_t> counts;
      if (!laplace) counts = {n};
      for (int32_t left = n; laplace && left > 0; left -= 1024) {
        counts.push_back(2 * std::min(left, 1024));
      }
      EXPECT_EQ(status, counts.empty() ? 0 : 6) << "a positive status is no error";
      ASSERT_EQ(script.calls.size(), counts.size());
      for (size_t k = 0; k < counts.size(); ++k) {
        EXPECT_EQ(script.calls[k].n, counts[k]);
        EXPECT_EQ(script.calls[k].a, cauchy ? -end : 0);
        EXPECT_EQ(script.calls[k].b, cauchy ? end : 1);
      }
      for (auto i = static_cast<size_t>(std::max(n, 0)); i < r.size(); ++i) {
        ASSERT_EQ(r[i], T(-77)) << i;
      }
    }
  }
}

TYPED_TEST(Continuous, TransformsNothingAfterAnError) {
  using T = TypeParam;
  constexpr int32_t n = 2 * 1024 + 100;
  for (const Name name : kEvery) {
    for (int32_t failing = 0; failing < (name == Name::kLaplace ? 3 : 1); ++failing) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(name) << ", call " << failing);
      Script s;
      s.failing_call = failing;
      s.failure = -1121;
      const Stream stream(s);
      std::vector<T> r(n, T(0.25));
      EXPECT_EQ(Draw({name}, 0, stream, n, r.data()), -1121);
      EXPECT_EQ(script.calls.size(), static_cast<size_t>(failing + 1));
      for (size_t i = 0; i < r.size(); ++i) {
        const bool finished = i < 1024 * static_cast<size_t>(failing);
        ASSERT_EQ(r[i] != T(0.25), finished) << i;
      }
    }
    StreamState none = {-5, 1, nullptr};
    T r = 0.25;
    EXPECT_EQ(Draw({name}, 0, &none, 1, &r), QUO_INVALID_BRNG);
    EXPECT_EQ(r, T(0.25));
    __quoDeleteChunks(&none);
  }
}

TYPED_TEST(Continuous, DoesNotDependOnTheSplitOfRequests) {
  using T = TypeParam;
  for (const int32_t id : {QUO_BRNG_MCG59, QUO_BRNG_WH + 3, QUO_BRNG_MT19937}) {
    for (const Name name : kEvery) {
      const Distribution d = {name, -1, 2, 0.75, 1.5};
      SCOPED_TRACE(Print(d));
      const auto want = Drawn<T>(d, Stream(id), 5000);
      const Stream stream(id);
      std::vector<T> got;
      for (const int32_t n : {1, 2, 1023, 7, 1, 1025, 2048, 393, 500}) {
        const auto part = Drawn<T>(d, stream, n);
        got.insert(got.end(), part.begin(), part.end());
      }
      ExpectSame(got, want);
    }
  }
}

TYPED_TEST(Continuous, TakesArraysAtAnyAddress) {
  using T = TypeParam;
  constexpr size_t kMargin = 64;
  const Script special = SpecialUniforms();
  for (const Name name : kEvery) {
    const Distribution d = {name, 0.5, 2, 1.5, 0.5};
    SCOPED_TRACE(Print(d));
    levels::ForEach([&] {
      for (const size_t n : {1, 3, 8, 37, 1100}) {
        const auto want = Reference<T>(d, Stream(special), static_cast<int32_t>(n));
        for (size_t offset = 0; offset < (n > 100 ? 3 : 64); ++offset) {
          std::vector<unsigned char> bytes(n * sizeof(T) + 2 * kMargin + 64, 0xA5);
          const auto untouched = bytes;
          unsigned char* at = bytes.data() + kMargin + offset;
          Draw(d, 0, Stream(special), static_cast<int32_t>(n), reinterpret_cast<T*>(at));
          std::vector<T> got(n);
          std::memcpy(got.data(), at, n * sizeof(T));
          ExpectSame(got, want);
          std::memset(at, 0xA5, n * sizeof(T));
          ASSERT_EQ(bytes, untouched) << n << " at " << offset;
        }
      }
    });
  }
}

TYPED_TEST(Continuous, WeibullOfShapeOneIsExponential) {
  using T = TypeParam;
  ExpectSame(Drawn<T>({Name::kWeibull, 2, 3, 1}, Stream(QUO_BRNG_WH), 5000),
             Drawn<T>({Name::kExponential, 2, 3}, Stream(QUO_BRNG_WH), 5000));
}

}  // namespace
