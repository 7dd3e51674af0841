// Gamma and beta against their methods written plainly; the same sequence whatever the split into
// calls, the address and the vector level; the constants kept with a stream; extreme shapes and
// generators; failures.
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "pexquo/pex.h"
#include "tests/continuous/gamma_beta.h"
#include "tests/streams/counted_memory.h"
#include "tests/streams/files.h"
#include "tests/streams/scripted_generator.h"
#include "tests/streams/streams.h"
#include "tests/support/control.h"
#include "tests/uniform/levels.h"

namespace {

using gamma_beta::Draw;
using gamma_beta::Ordinary;
using gamma_beta::Shape;
using streams::Owned;

constexpr double kMost = std::numeric_limits<double>::max();

template <typename T>
std::vector<T> Drawn(const Shape& shape, StreamState* stream, int32_t n, double a = 0,
                     double beta = 1) {
  std::vector<T> r(static_cast<size_t>(n));
  EXPECT_EQ(Draw(shape, stream, n, r.data(), a, beta), QUO_OK) << shape;
  return r;
}

// ---- The methods, one candidate at a time. ----

// The normal number below which the chance is u, by bisection.
double InverseOfCdfNorm(double u) {
  double low = -9, high = 9;
  while (true) {
    const double middle = (low + high) / 2;
    if (middle <= low || middle >= high) return middle;
    (std::erfc(-middle / std::sqrt(2.0)) / 2 < u ? low : high) = middle;
  }
}

// Of a normal number x: d w^3, and the chance with which it is accepted.
struct Candidate {
  double number, chance;
};
Candidate MarsagliaTsang(double alpha, double x) {
  const double d = (alpha < 1 ? alpha + 1 : alpha) - 1.0 / 3, w = 1 + x / std::sqrt(9 * d);
  if (w <= 0) return {0, 0};
  const double v = w * w * w;
  return {d * v, std::exp(x * x / 2 + d * (1 - v + std::log(v)))};
}

// R. C. H. Cheng's algorithm BB, as published.
std::optional<double> Cheng(const Shape& s, const double* u) {
  const double a = std::min(s.p, s.q), b = std::max(s.p, s.q), alpha = a + b;
  const double beta = std::sqrt((alpha - 2) / (2 * a * b - alpha)), gamma = a + 1 / beta;
  const double v = beta * std::log(u[0] / (1 - u[0])), w = a * std::exp(v);
  const double r = gamma * v - std::log(4.0);
  if (r + alpha * std::log(alpha / (b + w)) < std::log(u[0] * u[0] * u[1])) return {};
  return (s.p == a ? w : b) / (b + w);
}

// A candidate from its uniforms.
std::optional<double> PlainCandidate(const Shape& s, const double* u) {
  if (s.IsGamma()) {
    if (s.p == 1) return -std::log(1 - u[0]);
    const auto [x, chance] = MarsagliaTsang(s.p, InverseOfCdfNorm(u[0]));
    if (u[1] >= chance) return {};
    return s.p < 1 ? x * std::pow(u[2], 1 / s.p) : x;
  }
  if (s.p == 1) return 1 - std::pow(1 - u[0], 1 / s.q);
  if (s.q == 1) return std::pow(1 - u[0], 1 / s.p);
  if (s.p < 1 && s.q < 1) {
    const double x = std::pow(u[0], 1 / s.p), y = std::pow(u[1], 1 / s.q);
    if (x + y > 1) return {};
    return x / (x + y);
  }
  const double least = std::min(s.p, s.q);
  if (least > 1 && std::max(s.p, s.q) <= 256) return Cheng(s, u);
  const auto [g, chance] = MarsagliaTsang(least, InverseOfCdfNorm(u[0]));
  const auto [h, other] = MarsagliaTsang(std::max(s.p, s.q), InverseOfCdfNorm(u[1]));
  if (u[2] >= chance * other) return {};
  const double part = least < 1 ? g * std::pow(u[3], 1 / least) : g;
  return (s.p <= s.q ? part : h) / (part + h);
}

int32_t UniformsOf(const Shape& s) {
  if (s.p == 1 || s.q == 1) return 1;
  if (s.IsGamma()) return s.p < 1 ? 3 : 2;
  if (s.p < 1 || s.q < 1) return s.p < 1 && s.q < 1 ? 2 : 4;
  return std::max(s.p, s.q) <= 256 ? 2 : 3;
}

TEST(GammaBeta, AreTheirMethods) {
  constexpr int32_t kCount = 3000;
  for (const Shape& shape : Ordinary()) {
    SCOPED_TRACE(testing::Message() << shape);
    const Owned stream(QUO_BRNG_MT19937), uniforms(QUO_BRNG_MT19937);
    const auto r = Drawn<double>(shape, stream, kCount);
    // A logarithm has 26 bits, and a power 1/p divides it by p.
    const double tolerance = 1e-6 / std::min({1.0, shape.p, shape.IsGamma() ? 1 : shape.q});
    for (int32_t i = 0; i < kCount;) {
      const auto u = streams::Draw(uniforms, UniformsOf(shape));
      const auto x = PlainCandidate(shape, u.data());
      if (!x) continue;
      ASSERT_NEAR(r[static_cast<size_t>(i)], *x, tolerance * *x) << i;
      ++i;
    }
    EXPECT_EQ(streams::Draw(stream, 1), streams::Draw(uniforms, 1));  // nothing drawn beyond
  }
}

TEST(GammaBeta, AreScaledAndDisplaced) {
  for (const Shape& shape : Ordinary()) {
    for (const auto& [a, beta] : {std::pair{-3.0, 0.125}, {1e6, 3.0}, {0.0, 1e-30}, {-7.0, 1e30}}) {
      SCOPED_TRACE(testing::Message() << shape << " times " << beta << " plus " << a);
      const Owned first(QUO_BRNG_MT19937), second(QUO_BRNG_MT19937), third(QUO_BRNG_MT19937);
      const auto x = Drawn<double>(shape, first, 700);
      const auto r = Drawn<double>(shape, second, 700, a, beta);
      const auto single = Drawn<float>(shape, third, 700, a, beta);
      for (size_t i = 0; i < x.size(); ++i) {
        ASSERT_EQ(r[i], std::max(a, x[i] * beta + a));
        const double single_a = static_cast<float>(a), single_beta = static_cast<float>(beta);
        ASSERT_EQ(single[i], static_cast<float>(std::max(single_a, x[i] * single_beta + single_a)));
      }
    }
  }
}

// ---- The same sequence however it is asked for. ----

template <typename T>
void ExpectSplitsAgree(const Shape& shape, int32_t id) {
  SCOPED_TRACE(testing::Message() << shape << " from " << std::hex << id);
  constexpr int32_t kCount = 3000;
  const Owned whole(id), split(id);
  const auto want = Drawn<T>(shape, whole, kCount);
  constexpr int32_t kParts[] = {1, 2, 0, 7, 511, -3, 512, 513, 64, 1};
  std::vector<T> got;
  for (size_t k = 0; static_cast<int32_t>(got.size()) < kCount; ++k) {
    const int32_t n =
        std::min(kParts[k % std::size(kParts)], kCount - static_cast<int32_t>(got.size()));
    std::vector<T> r(static_cast<size_t>(std::max(n, 0)));
    ASSERT_EQ(Draw(shape, split, n, r.data()), QUO_OK);
    got.insert(got.end(), r.begin(), r.end());
  }
  EXPECT_EQ(std::memcmp(got.data(), want.data(), sizeof(T) * want.size()), 0);
}

TEST(GammaBeta, DoNotDependOnTheSplit) {
  for (const Shape& shape : Ordinary()) {
    ExpectSplitsAgree<double>(shape, QUO_BRNG_MT19937);
    ExpectSplitsAgree<float>(shape, QUO_BRNG_MCG31M1);
    ExpectSplitsAgree<double>(shape, QUO_BRNG_MCG59);
  }
}

// Bits of numbers at an address `offset` bytes beyond an aligned one, with what lies around.
template <typename T>
std::vector<unsigned char> BytesAt(const Shape& shape, size_t offset, int32_t n) {
  const Owned stream(QUO_BRNG_MRG32K3A);
  const size_t size = static_cast<size_t>(n) * sizeof(T);
  std::vector<unsigned char> memory(size + 192, 0xA5);
  unsigned char* const base =
      memory.data() + 64 - reinterpret_cast<uintptr_t>(memory.data()) % 64 + offset;
  EXPECT_EQ(Draw(shape, stream, n, reinterpret_cast<T*>(base)), QUO_OK);
  EXPECT_EQ(base[-1], 0xA5);
  EXPECT_EQ(std::count(base + size, base + size + 32, 0xA5), 32);
  return {base, base + size};
}

TEST(GammaBeta, AreTheSameBitsOnEachLevelAtEachAddress) {
  const std::vector<Shape> extreme = {{1e-300},  {1e15},        {kMost},        {1e-300, 1e-300},
                                      {1e8, .5}, {1e-3, 1e300}, {kMost, kMost}, {1e-9, 0.75}};
  for (const auto& shapes : {Ordinary(), extreme}) {
    for (const Shape& shape : shapes) {
      SCOPED_TRACE(testing::Message() << shape);
      const auto doubles = BytesAt<double>(shape, 0, 1111);
      const auto singles = BytesAt<float>(shape, 0, 1111);
      levels::ForEach([&] {
        for (const size_t offset : {0u, 1u, 4u, 24u}) {
          EXPECT_EQ(BytesAt<double>(shape, offset, 1111), doubles);
          EXPECT_EQ(BytesAt<float>(shape, offset, 1111), singles);
        }
      });
    }
  }
}

// ---- Extremes of shapes and of generators. ----

TEST(GammaBeta, StayWithinTheirBoundsForEveryShape) {
  constexpr double kShapes[] = {5e-324,      1e-310, 1e-300, 1e-20, 1e-3, 0.3,   1 - 0x1p-53, 1,
                                1 + 0x1p-52, 7,      1e8,    1e15,  1e30, 1e300, kMost};
  constexpr int32_t kCount = 600;
  const Owned stream(QUO_BRNG_MT19937);
  for (const double p : kShapes) {
    for (const double x : Drawn<double>({p}, stream, kCount)) {
      ASSERT_TRUE(x >= 0 && x <= kMost) << p;
      ASSERT_TRUE(p < 1e30 || std::fabs(x / p - 1) < 1e-12) << p;
      ASSERT_TRUE(p > 1e-20 || x == 0) << p;
    }
    for (const float x : Drawn<float>({p}, stream, kCount, -2.5)) ASSERT_GE(x, -2.5f) << p;
    for (const double q : kShapes) {
      double sum = 0;
      for (const double x : Drawn<double>({p, q}, stream, kCount)) {
        ASSERT_TRUE(x >= 0 && x <= 1) << p << ", " << q;
        sum += x;
      }
      // The mean has the deviation sqrt(p q/(p + q + 1))/(p + q) of one number, divided.
      const double largest = std::max(p, q), ratio = std::min(p, q) / largest;
      const double mean = (p == largest ? 1 : ratio) / (1 + ratio);
      const double deviation = std::sqrt(ratio / (1 + largest * (1 + ratio))) / (1 + ratio);
      EXPECT_NEAR(sum / kCount, mean, 5 * deviation / std::sqrt(kCount) + 1e-12) << p << ", " << q;
      for (const float x : Drawn<float>({p, q}, stream, kCount, 3, 0.1)) {
        ASSERT_TRUE(x >= 3 && x <= 3 + 0.1f) << p << ", " << q;
      }
    }
  }
}

// Zeros, uniforms next to 1 and, as a user's generator may give them, what is no uniform at all.
TEST(GammaBeta, AreNumbersWhateverTheGeneratorGives) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  // Shapes that are none, too.
  const std::vector<std::vector<double>> scripts = {
      {0},
      {0.5},
      {0, 1 - 0x1p-53, 0.5, 0x1p-1074, 0x1p-53},
      {kNaN},
      {0.25, -1, 2, kInfinity, -kInfinity, kNaN, 1e300, -1e300, 1, 0.5, 1e-310}};
  std::vector<Shape> shapes = Ordinary();
  shapes.insert(shapes.end(), {{1e-300}, {kMost}, {1e-300, 1e-305}, {kMost, kMost}, {1e8, 0.5}});
  shapes.insert(shapes.end(),
                {{-1}, {0}, {kNaN}, {kInfinity}, {-1, -2}, {kNaN, 0.5}, {kInfinity, 2}});
  for (const Shape& shape : shapes) {
    for (const auto& values : scripts) {
      SCOPED_TRACE(testing::Message() << shape << ", first uniform " << values[0]);
      scripted::Script script;
      script.values = values;
      StreamState* stream = scripted::Start(script);
      for (const double x : Drawn<double>(shape, stream, 700)) {
        ASSERT_TRUE(x >= 0 && x <= (shape.IsGamma() ? kMost : 1)) << x;
      }
      __quoDeleteStream(&stream);
    }
  }
}

TEST(GammaBeta, HandUpTheStatus) {
  for (const Shape& shape : Ordinary()) {
    scripted::Script script;
    script.failing_call = 1;
    script.failure = -77;
    StreamState* stream = scripted::Start(script);
    std::vector<double> r(1500, -1.0);
    EXPECT_EQ(Draw(shape, stream, 1500, r.data()), -77) << shape;
    EXPECT_EQ(std::count(r.begin(), r.end(), -1.0), 1500 - 512) << "u = 1/2 is accepted";
    scripted::script.status = 5;
    EXPECT_EQ(Draw(shape, stream, 10, r.data()), 5);
    stream->id = 0x7FFFFFFF;
    EXPECT_EQ(Draw(shape, stream, 10, r.data()), QUO_INVALID_BRNG);
    stream->id = scripted::Id();
    __quoDeleteStream(&stream);
  }
}

TEST(GammaBeta, AskedForNothingDoNothing) {
  for (const Shape& shape : Ordinary()) {
    StreamState* stream = scripted::Start({});
    for (const int32_t n : {0, -1, std::numeric_limits<int32_t>::min()}) {
      EXPECT_EQ(Draw(shape, stream, n, static_cast<double*>(nullptr)), QUO_OK);
      EXPECT_EQ(Draw(shape, stream, n, static_cast<float*>(nullptr)), QUO_OK);
    }
    EXPECT_TRUE(scripted::script.calls.empty());
    EXPECT_EQ(stream->chunks, nullptr);
    __quoDeleteStream(&stream);
  }
}

// ---- What is kept with the stream. ----

constexpr uint32_t kDoubleKey = 0x47414D08, kSingleKey = 0x47414D04;

TEST(GammaChunk, IsOneForEachPrecision) {
  const Owned stream(QUO_BRNG_MT19937), fresh(QUO_BRNG_MT19937);
  for (const double alpha : {2.5, 0.25, 2.5, 1.0, 70.0, 70.0}) {
    Drawn<double>({alpha}, stream, 40);
    Drawn<float>({alpha}, stream, 40);
  }
  EXPECT_EQ(streams::Keys(stream), (std::vector<uint32_t>{kSingleKey, kDoubleKey}));
  for (const double alpha : {2.5, 0.25, 2.5, 1.0, 70.0, 70.0}) {
    const Owned own(QUO_BRNG_MT19937);
    EXPECT_EQ(__quoCopyStreamState(own, fresh), QUO_OK);
    EXPECT_EQ(Drawn<double>({alpha}, fresh, 40), Drawn<double>({alpha}, own, 40));
  }
}

TEST(GammaChunk, GoesIntoCopiesAndFiles) {
  const Owned stream(QUO_BRNG_MT19937);
  Drawn<double>({2.5}, stream, 40);
  Owned copy, loaded, state(QUO_BRNG_MT19937);
  ASSERT_EQ(__quoCopyStream(&copy.p, stream), QUO_OK);
  ASSERT_EQ(__quoCopyStreamState(state, stream), QUO_OK);
  const files::TemporaryFile file;
  const auto length = static_cast<int32_t>(std::strlen(file.path()));
  ASSERT_EQ(__quoSaveStreamF(stream, file.path(), length), QUO_OK);
  ASSERT_EQ(__quoLoadStreamF(&loaded.p, file.path(), length), QUO_OK);
  const auto want = Drawn<double>({2.5}, stream, 1000);
  for (StreamState* other : {copy.p, loaded.p, state.p}) {
    EXPECT_EQ(streams::Keys(other), std::vector<uint32_t>{kDoubleKey});
    EXPECT_EQ(Drawn<double>({2.5}, other, 1000), want);
    EXPECT_EQ(__quoGetNumChunks(other), 1);
  }
}

// Such as a file may bring: of another size, or with constants with which nothing would ever be
// accepted, or all.
TEST(GammaChunk, OfAnotherIsNotTrusted) {
  for (const double alpha : {2.5, 0.25}) {
    const Owned fresh(QUO_BRNG_MT19937);
    const auto want = Drawn<double>({alpha}, fresh, 1000);
    const auto good =
        *static_cast<const std::array<double, 6>*>(__quoSearchChunk(fresh, kDoubleKey));
    ASSERT_EQ(good[0], alpha);
    for (const uint32_t size : {0u, 8u, 47u, 49u, 1000u}) {
      const Owned stream(QUO_BRNG_MT19937);
      streams::AddChunk(stream, kDoubleKey, size, 0xFF);
      EXPECT_EQ(Drawn<double>({alpha}, stream, 1000), want);
      EXPECT_EQ(__quoGetNumChunks(stream), 2);
    }
    for (size_t field = 0; field < good.size(); ++field) {
      for (const double wrong : {0.0, -1.0, 0.3, 1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        const Owned stream(QUO_BRNG_MT19937);
        streams::AddChunk(stream, kDoubleKey, sizeof good, 0);
        auto* constants = static_cast<double*>(__quoSearchChunk(stream, kDoubleKey));
        std::memcpy(constants, good.data(), sizeof good);
        constants[field] = wrong;
        EXPECT_EQ(Drawn<double>({alpha}, stream, 1000), want) << field << " is " << wrong;
        EXPECT_EQ(__quoGetNumChunks(stream), 1);
      }
    }
  }
}

TEST(GammaChunk, WithoutMemoryIsAnError) {
  const Owned stream(QUO_BRNG_MT19937);
  double r = -1;
  for (const int allocation : {1, 2}) {
    const size_t blocks = memory.live.size();
    memory.countdown = allocation;
    EXPECT_EQ(Draw({2.5}, stream, 1, &r), QUO_NO_MEMORY);
    EXPECT_EQ(memory.live.size(), blocks);
    EXPECT_EQ(r, -1);
    EXPECT_EQ(stream.p->chunks, nullptr);
  }
  memory.countdown = 1;
  EXPECT_EQ(Draw({2.5, 3.5}, stream, 1, &r), QUO_OK) << "beta takes none";
  memory.countdown = 0;
}

// ---- The caller's environment. ----

int Callback(PexErrorContext*) {
  ADD_FAILURE() << "called back";
  return 0;
}

TEST(GammaBeta, LeaveNoTraceAndSeeNothingOfTheCaller) {
  constexpr uint32_t kHidden = kMxcsrFlags & ~uint32_t{kInexact};
  std::vector<Shape> shapes = Ordinary();
  shapes.insert(shapes.end(), {{1e-3}, {1e-300}, {kMost}, {1e-300, 1e-305}, {1e-3, 1e300}});
  _pexSetErrorCallBack(Callback);
  _pexSetMode(0x1A02);
  const uint32_t mode = _pexGetMode();
  for (const Shape& shape : shapes) {
    SCOPED_TRACE(testing::Message() << shape);
    const Owned plain(QUO_BRNG_MT19937);
    const auto want = Drawn<double>(shape, plain, 500, 0.5, 3);
    for (const Control& control : kControls) {
      const Owned stream(QUO_BRNG_MT19937);
      std::vector<double> r(500);
      _pexSetErrStatus(77);
      errno = 4711;
      UseControl use(control, kOverflow);
      const int32_t status = Draw(shape, stream, 500, r.data(), 0.5, 3);
      use.Finish();
      EXPECT_EQ(errno, 4711);
      EXPECT_EQ(status, QUO_OK);
      EXPECT_EQ(r, want) << control.name;
      EXPECT_TRUE(use.kept()) << control.name;
      EXPECT_EQ(use.flags() & kHidden, kOverflow) << control.name;
      EXPECT_EQ(_pexGetErrStatus(), 77);
      EXPECT_EQ(_pexGetMode(), mode);
      EXPECT_EQ(_pexGetErrorCallBack(), Callback);
    }
  }
  _pexClearErrorCallBack();
  _pexSetMode(PEX_MODE_DEFAULT);
  _pexClearErrStatus();
}

}  // namespace
