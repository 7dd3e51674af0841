// The uniform distributions: clamp, floor, blocks, statuses, alignment, every vector level.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "pexquo/quo.h"
#include "tests/streams/scripted_generator.h"
#include "tests/uniform/levels.h"

namespace {

using scripted::script;
using scripted::Script;
using scripted::Stream;

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int32_t kGenerators[] = {0x100000, 0x400000, 0x500000, 0x500000 + 200};
constexpr int32_t kWordGenerators[] = {QUO_BRNG_R250,    QUO_BRNG_MRG32K3A, QUO_BRNG_SOBOL,
                                       QUO_BRNG_NIEDERR, QUO_BRNG_MT19937,  QUO_BRNG_MT2203 + 1023};

int32_t Uniform(uint32_t method, StreamState* s, int32_t n, double* r, double a, double b) {
  return _quodRngUniform(method, s, n, r, a, b);
}
int32_t Uniform(uint32_t method, StreamState* s, int32_t n, float* r, float a, float b) {
  return _quosRngUniform(method, s, n, r, a, b);
}

template <typename T>
using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

// ---- Continuous. ----

template <typename T>
class Continuous : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(Continuous, Types);

// In every place of a call of every length, next to any neighbour.
TYPED_TEST(Continuous, ClampsWithTheLowerBoundFirst) {
  using T = TypeParam;
  struct Case {
    double a, b, r, want;
  };
  const Case cases[] = {
      {0, 1, 0.5, 0.5},     {0, 1, 1.25, 1},       {0, 1, -1e-30, 0},
      {0, 1, kInfinity, 1}, {0, 1, -kInfinity, 0}, {0, 1, kNaN, kNaN},
      {0, 1, 1e-42, 1e-42},  // subnormal in single precision
      {0.0, 1, -0.0, -0.0}, {-0.0, 1, 0.0, 0.0},   {-1, -0.0, 0.0, 0.0},
      {2, 1, 0, 1},  // bounds the wrong way round: the upper one comes last
      {2, 1, 3, 1},         {kNaN, 1, -5, -5},     {kNaN, 1, 5, 1},
      {0, kNaN, -5, 0},     {0, kNaN, 5, 5},       {-kInfinity, kInfinity, -5, -5},
  };
  levels::ForEach([&] {
    for (const Case& c : cases) {
      for (int32_t n = 1; n <= 70; ++n) {
        Script s;
        s.values = {c.r, 0.25, -9, 9, c.r};
        const Stream stream(s);
        std::vector<T> r(static_cast<size_t>(n) + 1, T(-77));
        ASSERT_EQ(Uniform(QUO_METHOD_ACCURATE, stream, n, r.data(), T(c.a), T(c.b)), QUO_OK);
        for (size_t i = 0; i < static_cast<size_t>(n); i += 5) {
          ASSERT_EQ(std::bit_cast<Bits<T>>(r[i]), std::bit_cast<Bits<T>>(T(c.want)))
              << "n = " << n << ", i = " << i << ": clamp of " << c.r << " into [" << c.a << ", "
              << c.b << "] gives " << r[i];
        }
        ASSERT_EQ(r.back(), T(-77)) << "n = " << n;
      }
    }
  });
}

TYPED_TEST(Continuous, HandsOnTheGeneratorsOutputAndStatus) {
  using T = TypeParam;
  struct Case {
    uint32_t method;
    int32_t n, status;
    bool clamped;
  };
  const Case cases[] = {
      {0, 3, 0, false},
      {0x3FFFFFFF, 3, 0, false},  // other bits of the method mean nothing
      {QUO_METHOD_ACCURATE, 3, 0, true},
      {0xFFFFFFFF, 3, 5, true},  // a positive status is no error
      {QUO_METHOD_ACCURATE, 3, -1121, false},
      {QUO_METHOD_ACCURATE, 0, 0, false},
      {QUO_METHOD_ACCURATE, -4, 3, false},
  };
  for (const Case& c : cases) {
    Script s;
    s.values = {-3, 0.5, 3};
    s.status = c.status;
    const Stream stream(s);
    T r[] = {-77, -77, -77, -77};
    EXPECT_EQ(Uniform(c.method, stream, c.n, r, T(-1), T(2)), c.status);
    ASSERT_EQ(script.calls.size(), 1u) << "one call, whatever the count";
    EXPECT_EQ(script.calls[0].n, c.n);
    EXPECT_EQ(script.calls[0].a, -1);
    EXPECT_EQ(script.calls[0].b, 2);
    const T first = c.n < 1 ? T(-77) : c.clamped ? T(-1) : T(-3);
    const T last = c.n < 1 ? T(-77) : c.clamped ? T(2) : T(3);
    EXPECT_EQ(r[0], first);
    EXPECT_EQ(r[2], last);
    EXPECT_EQ(r[3], T(-77));
  }
}

TYPED_TEST(Continuous, StaysWithinTheBoundsWhenAccurate) {
  using T = TypeParam;
  const T one = 1, next = std::nextafter(one, T(2));
  const T bounds[][2] = {{one, next}, {T(-3.3), T(1e7)}, {T(0.1), T(0.3)}, {T(-1e30), T(1e-30)}};
  for (const int32_t id : kGenerators) {
    for (const auto& [a, b] : bounds) {
      const Stream plain(id), accurate(id);
      std::vector<T> x(5000), y(5000);
      Uniform(0, plain, 5000, x.data(), a, b);
      Uniform(QUO_METHOD_ACCURATE, accurate, 5000, y.data(), a, b);
      for (size_t i = 0; i < x.size(); ++i) {
        ASSERT_EQ(y[i], std::min(b, std::max(a, x[i]))) << i;
      }
    }
  }
}

// ---- Integers. ----

// n integers from a to b of one stream are the floors of another's doubles, and no more is written.
void ExpectFloors(const Stream& integers, const Stream& doubles, int32_t n, int32_t a, int32_t b) {
  std::vector<int32_t> r(static_cast<size_t>(n) + 1, 77);
  std::vector<double> x(static_cast<size_t>(n));
  ASSERT_EQ(_quoiRngUniform(0, integers, n, r.data(), a, b), QUO_OK);
  ASSERT_EQ(_quodRngUniform(0, doubles, n, x.data(), a, b), QUO_OK);
  for (size_t i = 0; i < x.size(); ++i) {
    ASSERT_EQ(r[i], static_cast<int32_t>(std::floor(x[i]))) << i;
    ASSERT_GE(r[i], a);
    ASSERT_LE(r[i], b);
  }
  ASSERT_EQ(r.back(), 77);
}

TEST(Integers, AreFloorsOfDoublesAcrossBlocks) {
  const int32_t bounds[][2] = {{0, 1000}, {-7, 5}, {kLowest, kHighest}, {41, 42}, {-3, -1}};
  levels::ForEach([&] {
    for (const int32_t id : kGenerators) {
      for (const auto& [a, b] : bounds) {
        for (const int32_t n : {1, 2, 15, 16, 17, 1023, 1024, 1025, 2048, 5000}) {
          SCOPED_TRACE(n);
          const Stream integers(id), doubles(id);
          ASSERT_NO_FATAL_FAILURE(ExpectFloors(integers, doubles, n, a, b));
          double u, v;  // both streams stand at the same place
          _quodRngUniform(0, integers, 1, &u, 0, 1);
          _quodRngUniform(0, doubles, 1, &v, 0, 1);
          ASSERT_EQ(u, v);
        }
      }
    }
  });
}

// At the ends of the bounds for which generators of words need no doubles, and beyond them.
TEST(Integers, AreFloorsOfDoublesWhateverTheBounds) {
  constexpr int32_t kEnd = 1 << 21;
  std::vector<std::pair<int32_t, int32_t>> bounds = {{0, 1},
                                                     {-1, 0},
                                                     {0, 100},
                                                     {-7, 5},
                                                     {0, kEnd},
                                                     {-kEnd, 0},
                                                     {0, kEnd + 1},
                                                     {-kEnd - 1, 0},
                                                     {-kEnd, kEnd},
                                                     {kEnd - 1, kEnd},
                                                     {1 - kEnd, 1},
                                                     {kEnd, kEnd + 7},
                                                     {-kEnd, 1 - kEnd},
                                                     {kLowest, kHighest},
                                                     {-kEnd / 2, kEnd / 2}};
  const uint32_t seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 30; ++i) {
    const int32_t a = static_cast<int32_t>(random() >> 10) - kEnd;
    bounds.push_back({a, a + 1 + static_cast<int32_t>(random() >> (11 + i % 20))});
  }
  levels::ForEach([&] {
    for (const int32_t id : kWordGenerators) {
      for (const auto& [a, b] : bounds) {
        SCOPED_TRACE(testing::Message() << std::hex << id << std::dec << ", " << a << " to " << b);
        const Stream integers(id, seed), doubles(id, seed);
        for (const int32_t n : {3, 4096, 1, 40, 5003, 17}) {
          ASSERT_NO_FATAL_FAILURE(ExpectFloors(integers, doubles, n, a, b));
        }
      }
    }
  });
}

TEST(Integers, RoundDownAndSaturate) {
  struct Case {
    double x;
    int32_t want;
  };
  const Case cases[] = {
      {-2.5, -3},
      {-3, -3},
      {std::nextafter(-3.0, 0.0), -3},
      {std::nextafter(-3.0, -4.0), -4},
      {-0.0, 0},
      {-1e-300, -1},
      {-5e-324, -1},
      {1 - 0x1p-53, 0},
      {2147483646.9999998, 2147483646},
      {2147483647.0, kHighest},
      {2147483647.5, kHighest},
      {2147483648.0, kHighest},
      {1e300, kHighest},
      {kInfinity, kHighest},
      {-2147483647.5, kLowest},
      {-2147483648.0, kLowest},
      {-2147483648.5, kLowest},
      {-1e300, kLowest},
      {-kInfinity, kLowest},
      {kNaN, kHighest},
      {-kNaN, kHighest},
  };
  levels::ForEach([&] {
    for (const Case& c : cases) {
      for (int32_t n = 1; n <= 70; ++n) {
        Script s;
        s.values = {c.x, 1.5, 1e200, c.x, kNaN};
        const Stream stream(s);
        std::vector<int32_t> r(static_cast<size_t>(n) + 1, 77);
        ASSERT_EQ(_quoiRngUniform(0, stream, n, r.data(), 0, 1), QUO_OK);
        for (size_t i = 0; i < static_cast<size_t>(n); i += 5) {
          ASSERT_EQ(r[i], c.want) << "floor of " << c.x << ", n = " << n << ", i = " << i;
        }
        ASSERT_EQ(r.back(), 77) << n;
      }
    }
  });
}

TEST(Integers, DrawBlocksAndEndAtTheFirstError) {
  for (const int32_t n : {0, -1, kLowest}) {
    Script s;
    s.failing_call = 0;
    const Stream stream(s);
    EXPECT_EQ(_quoiRngUniform(0, stream, n, nullptr, 0, 9), QUO_OK) << "nothing is touched";
    EXPECT_TRUE(script.calls.empty());
  }

  constexpr int32_t n = 2 * 1024 + 300;
  for (int32_t failing = 0; failing <= 3; ++failing) {
    SCOPED_TRACE(failing);
    Script s;
    s.values = {4.5};
    s.status = 6;
    s.failing_call = failing;
    s.failure = -1120 - failing;
    const Stream stream(s);
    std::vector<int32_t> r(n, 77);
    // All method bits are set, and neither does the clamp come into play nor the status change.
    const int32_t status = _quoiRngUniform(0xFFFFFFFF, stream, n, r.data(), -2, 3);
    EXPECT_EQ(status, failing < 3 ? s.failure : 6);
    ASSERT_EQ(script.calls.size(), static_cast<size_t>(std::min(failing + 1, 3)));
    const int32_t counts[] = {1024, 1024, 300};
    for (size_t k = 0; k < script.calls.size(); ++k) {
      EXPECT_EQ(script.calls[k].n, counts[k]);
      EXPECT_EQ(script.calls[k].a, -2.0);
      EXPECT_EQ(script.calls[k].b, 3.0);
    }
    const int32_t written = std::min(failing * 1024, n);
    for (int32_t i = 0; i < n; ++i) {
      ASSERT_EQ(r[static_cast<size_t>(i)], i < written ? 4 : 77) << i;
    }
  }
}

TEST(Bits, AreTheGeneratorsWords) {
  Script s;
  s.values = {7, 4294967295.0, 0};
  s.status = 4;
  const Stream stream(s);
  uint32_t r[] = {1, 1, 1, 1, 77};
  EXPECT_EQ(_quoiRngUniformBits(0xFFFFFFFF, stream, 4, r), 4);
  EXPECT_TRUE(r[0] == 7 && r[1] == 0xFFFFFFFF && r[2] == 0 && r[3] == 7 && r[4] == 77);
  EXPECT_EQ(_quoiRngUniformBits(0, stream, -3, r), 4);
  EXPECT_EQ(script.calls[1].n, -3) << "the count is the generator's to judge";

  const Stream by_call(0x400000), by_slot(0x400000);  // two words an element
  uint32_t x[20], y[20];
  EXPECT_EQ(_quoiRngUniformBits(0, by_call, 10, x), QUO_OK);
  EXPECT_EQ(__RegBrngsNew[3].iBRng(by_slot, 10, y), QUO_OK);
  EXPECT_EQ(std::memcmp(x, y, sizeof x), 0);
}

// ---- Everything: the address of r does not matter, and nothing around it is written. ----

template <typename T, typename Draw>
void ExpectAnyAlignment(Draw&& draw) {
  constexpr size_t kMargin = 64;
  std::mt19937_64 random(5);
  Script s;
  for (int i = 0; i < 97; ++i) s.values.push_back(std::ldexp(double(random() >> 11), -51) - 1);
  levels::ForEach([&] {
    for (size_t n : {1, 2, 3, 7, 8, 9, 16, 31, 33, 70, 1030}) {
      std::vector<T> want(n);
      const std::vector<unsigned char> untouched(n * sizeof(T) + 2 * kMargin + 64, 0xA5);
      draw(Stream(s), static_cast<int32_t>(n), want.data());
      for (size_t offset = 0; offset < 64; ++offset) {
        std::vector<unsigned char> bytes = untouched;
        unsigned char* at = bytes.data() + kMargin + offset;
        draw(Stream(s), static_cast<int32_t>(n), reinterpret_cast<T*>(at));
        ASSERT_EQ(std::memcmp(at, want.data(), n * sizeof(T)), 0) << n << " at " << offset;
        std::memset(at, 0xA5, n * sizeof(T));
        ASSERT_EQ(bytes, untouched) << n << " at " << offset;
      }
    }
  });
}

TEST(Alignment, DoesNotMatter) {
  ExpectAnyAlignment<double>([](StreamState* s, int32_t n, double* r) {
    _quodRngUniform(QUO_METHOD_ACCURATE, s, n, r, 0, 1);
  });
  ExpectAnyAlignment<float>([](StreamState* s, int32_t n, float* r) {
    _quosRngUniform(QUO_METHOD_ACCURATE, s, n, r, 0, 1);
  });
  ExpectAnyAlignment<int32_t>(
      [](StreamState* s, int32_t n, int32_t* r) { _quoiRngUniform(0, s, n, r, 0, 1); });
}

// ---- Integers are uniform: chi-square between its quantiles at 1e-6 and 1 - 1e-6. ----

// Wilson and Hilferty, Proc. Natl. Acad. Sci. 17 (1931): the cube root of chi-square over its
// degrees of freedom is nearly normal. 4.753 is the normal quantile.
double ChiSquareQuantile(double df, double normal) {
  const double v = 2 / (9 * df);
  return df * std::pow(std::max(0.0, 1 - v + normal * std::sqrt(v)), 3);
}

TEST(Integers, FillTheirRangeEvenly) {
  constexpr int32_t n = 200000;
  const int32_t bounds[][3] = {
      {0, 2, 2}, {-3, 7, 10}, {1000, 2000, 1000}, {kLowest, kHighest, 256}};  // and cells
  for (const int32_t id : kGenerators) {
    for (const auto& [a, b, cells] : bounds) {
      SCOPED_TRACE(testing::Message() << std::hex << id << std::dec << ", " << a << " to " << b);
      const Stream stream(id);
      std::vector<int32_t> r(n);
      _quoiRngUniform(0, stream, n, r.data(), a, b);
      std::vector<int32_t> count(static_cast<size_t>(cells));
      const double width = (double(b) - a) / cells;
      for (const int32_t x : r) ++count[static_cast<size_t>((double(x) - a) / width)];
      const double expected = double(n) / cells;
      double chi_square = 0;
      for (const int32_t c : count) chi_square += (c - expected) * (c - expected) / expected;
      EXPECT_LT(chi_square, ChiSquareQuantile(cells - 1, 4.753));
      EXPECT_GE(chi_square, ChiSquareQuantile(cells - 1, -4.753));
    }
  }
}

}  // namespace
