// The normal distribution against its definition: every method and type, every size and split, any
// address, special uniforms, failing generators, the pending pair.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "pexquo/kro.h"
#include "tests/gaussian/gaussian_reference.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/random.h"
#include "tests/uniform/levels.h"

namespace {

using namespace reference;

constexpr int32_t kSizes[] = {1,    2,    3,    4,    5,    7,    8,    15,   16,   17,
                              31,   32,   33,   63,   511,  512,  513,  1022, 1023, 1024,
                              1025, 1026, 1055, 2047, 2048, 2049, 3000, 5001};

template <class P>
class GaussianOf : public testing::Test {};
using Types = testing::Types<Double, Single>;
TYPED_TEST_SUITE(GaussianOf, Types);

// At an address that is no multiple of anything.
TYPED_TEST(GaussianOf, IsItsDefinitionAtEveryAddress) {
  using T = typename TypeParam::T;
  const T a = T(-1.3), sigma = T(2.7);
  for (const int32_t id : {QUO_BRNG_MCG31M1, QUO_BRNG_MCG59, QUO_BRNG_WH + 7, scripted::Id()}) {
    scripted::Script script;
    Random random(91);
    script.values.resize(997);
    for (double& u : script.values) u = random.Unit();
    for (uint32_t method = 0; method < 3; ++method) {
      for (const int32_t n : kSizes) {
        scripted::script = script;
        StreamState* stream = NewStream(id, 12345);
        const auto want = Values<TypeParam>(method, stream, n, a, sigma);
        T next;
        Uniform(stream, 1, &next, T(0), T(1));
        __quoDeleteStream(&stream);
        levels::ForEach([&] {
          for (const size_t offset : {0, 1, 3}) {
            stream = NewStream(id, 12345);
            std::vector<char> bytes((want.size() + 2) * sizeof(T), 'x');
            T* const r = reinterpret_cast<T*>(bytes.data() + offset);
            EXPECT_EQ(Gaussian(method, stream, n, r, a, sigma), 0);
            std::vector<T> got(want.size());
            std::memcpy(got.data(), bytes.data() + offset, want.size() * sizeof(T));
            EXPECT_EQ(FirstDifference(got.data(), want), -1)
                << "generator " << id << ", method " << method << ", n = " << n;
            for (size_t i = offset + want.size() * sizeof(T); i < bytes.size(); ++i) {
              EXPECT_EQ(bytes[i], 'x') << "written beyond the end";
            }
            T after;
            Uniform(stream, 1, &after, T(0), T(1));
            EXPECT_EQ(after, next) << "uniforms consumed by method " << method << ", n = " << n;
            __quoDeleteStream(&stream);
          }
        });
      }
    }
  }
}

// Pairs are held over from call to call.
TYPED_TEST(GaussianOf, ItsSequenceHasNoSplits) {
  using T = typename TypeParam::T;
  constexpr int32_t kTotal = 9000;
  for (const int32_t id : {QUO_BRNG_MCG59, scripted::Id()}) {
    scripted::Script script;
    script.values = {0.3, 0.9, 0.01, 0.45, 0.77, 0.123, 0.5};
    for (uint32_t method = 0; method < 3; ++method) {
      scripted::script = script;
      StreamState* stream = NewStream(id, 99);
      const auto want = Values<TypeParam>(method, stream, kTotal, T(5), T(0.5));
      __quoDeleteStream(&stream);
      levels::ForEach([&] {
        for (uint64_t seed = 1; seed <= 6; ++seed) {
          Random random(seed);
          stream = NewStream(id, 99);
          std::vector<T> got(kTotal);
          for (int32_t done = 0; done < kTotal;) {
            const uint32_t bound = random.Below(3) == 0 ? 2600 : random.Below(2) == 0 ? 40 : 3;
            const int32_t n = std::min<int32_t>(kTotal - done, 1 + random.Below(bound));
            ASSERT_EQ(Gaussian(method, stream, n, got.data() + done, T(5), T(0.5)), 0);
            done += n;
          }
          EXPECT_EQ(FirstDifference(got.data(), want), -1) << "seed " << seed;
          __quoDeleteStream(&stream);
        }
      });
    }
  }
}

// n numbers of the scripted uniforms are the definition's on every level.
template <class P>
void ExpectDefinition(const scripted::Script& script, uint32_t method, int32_t n,
                      typename P::T mean, typename P::T sigma) {
  StreamState* stream = scripted::Start(script);
  const auto want = Values<P>(method, stream, n, mean, sigma);
  __quoDeleteStream(&stream);
  levels::ForEach([&] {
    stream = scripted::Start(script);
    std::vector<typename P::T> got(want.size());
    EXPECT_EQ(Gaussian(method, stream, n, got.data(), mean, sigma), 0);
    EXPECT_EQ(FirstDifference(got.data(), want), -1) << "method " << method;
    __quoDeleteStream(&stream);
  });
}

// Exact zeros and ends of the interval, and what only a user's generator gives.
TYPED_TEST(GaussianOf, ReplacesSpecialElements) {
  using T = typename TypeParam::T;
  constexpr double kInf = std::numeric_limits<double>::infinity();
  const std::vector<double> special = {0.0,  0.25,    -0.0, 0.75,    1.0, 0.5,   0.5,      0.0,
                                       -1.0, 1e-300,  -0.5, 0.125,   1.5, 0.375, -kInf,    0.1,
                                       kInf, 0x1p-24, 2.0,  0x1p-53, 0.9, -1.0,  0x1p-149, 0.6};
  for (uint32_t method = 0; method < 3; ++method) {
    for (const size_t plain : {0, 5, 700, 1025}) {  // ordinary uniforms before
      scripted::Script script;
      script.values.assign(2 * plain, 0.625);
      for (const double u : special) script.values.push_back(u);
      const auto n = static_cast<int32_t>(2 * (plain + special.size()));
      SCOPED_TRACE(testing::Message() << "ordinary ones before " << plain);
      ExpectDefinition<TypeParam>(script, method, n, T(1), T(3));
    }
  }
}

// Each among ordinary ones, as its fast kernels meet it.
TYPED_TEST(GaussianOf, TakesUniformsOfEveryMagnitude) {
  using T = typename TypeParam::T;
  using Limits = std::numeric_limits<T>;
  constexpr uint64_t kSeed = 4711;
  Random random(kSeed);
  scripted::Script script;
  for (int e = Limits::min_exponent - Limits::digits; e < 0; ++e) {
    for (const double m : {1.0, 1.25, 1.4, 1.5, 1.75, 2 - 0x1p-23}) {
      const uint32_t before = random.Below(24), behind = 24 - before;
      for (uint32_t i = 0; i < before; ++i) script.values.push_back(random.Unit());
      script.values.push_back(std::ldexp(m, e));
      for (uint32_t i = 0; i < behind; ++i) script.values.push_back(random.Unit());
    }
  }
  for (uint32_t method = 0; method < 3; ++method) {
    const auto n = static_cast<int32_t>(2 * script.values.size());
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    ExpectDefinition<TypeParam>(script, method, n, T(0), T(1));
  }
}

TEST(Gaussian, KnownReplacements) {
  scripted::Script script;
  script.values = {0, 0.25};
  StreamState* stream = scripted::Start(script);
  double r;
  _quodRngGaussian(QUO_METHOD_GAUSSIAN_BOXMULLER, stream, 1, &r, 0, 1);
  EXPECT_NEAR(r, 38.5860, 1e-3);  // sqrt(2 744.44) sin(pi/2)
  script.values = {-1};
  scripted::script = script;
  _quodRngGaussian(QUO_METHOD_GAUSSIAN_ICDF, stream, 1, &r, 10, 2);
  EXPECT_EQ(r, -0.7670519064056041 * (2 * 1.4142135623730951) + 10);
  float s;
  _quosRngGaussian(QUO_METHOD_GAUSSIAN_ICDF, stream, 1, &s, 10, 2);
  EXPECT_EQ(s, -1.0837466f * (2 * 1.4142135f) + 10);
  __quoDeleteStream(&stream);
}

// What is asked of the generator, block by block.
TYPED_TEST(GaussianOf, RequestsAsDescribed) {
  using T = typename TypeParam::T;
  const struct {
    uint32_t method;
    int32_t n;
    std::vector<int32_t> requests;
  } cases[] = {{0, 1, {2}},
               {0, 2100, {2048, 2048, 104}},
               {1, 1, {2}},
               {1, 2, {2}},
               {1, 1024, {1024}},
               {1, 1025, {1024, 2}},
               {1, 2099, {1024, 1024, 50, 2}},
               {2, 5000, {5000}}};
  for (const auto& c : cases) {
    StreamState* stream = scripted::Start({});
    std::vector<T> r(static_cast<size_t>(c.n));
    EXPECT_EQ(Gaussian(c.method, stream, c.n, r.data(), T(0), T(1)), 0);
    std::vector<int32_t> requests;
    for (const auto& call : scripted::script.calls) {
      requests.push_back(call.n);
      EXPECT_EQ(call.a, c.method == 2 ? -1 : 0);
      EXPECT_EQ(call.b, 1);
    }
    EXPECT_EQ(requests, c.requests) << "method " << c.method << ", n = " << c.n;
    __quoDeleteStream(&stream);
  }
}

// A failure ends the call: earlier blocks are done, of the pairs' method without mean and
// deviation.
TYPED_TEST(GaussianOf, PassesFailuresOn) {
  using T = typename TypeParam::T;
  constexpr T kUntouched = T(-77);
  for (uint32_t method = 0; method < 3; ++method) {
    for (int32_t failing = 0; failing < 4; ++failing) {
      scripted::Script script;
      script.values = {0.3, 0.7, 0.6, 0.1, 0.9};
      script.status = 5;  // a status that is no error is passed on too
      constexpr int32_t n = 2099;
      StreamState* stream = scripted::Start(script);
      const bool bare = method == 1;
      const auto values =
          Values<TypeParam>(method, stream, n, bare ? T(-0.0) : T(4), bare ? T(1) : T(3));
      __quoDeleteStream(&stream);
      script.failing_call = failing;
      script.failure = -1121;
      stream = scripted::Start(script);
      std::vector<T> r(n, kUntouched);
      const int32_t status = Gaussian(method, stream, n, r.data(), T(4), T(3));
      constexpr int32_t kRequests[] = {3, 4, 1};
      __quoDeleteStream(&stream);
      if (failing >= kRequests[method]) {
        EXPECT_EQ(status, 5);
        continue;
      }
      EXPECT_EQ(status, -1121);
      const int32_t done = method == 2 ? 0 : failing == 3 ? n - 1 : 1024 * failing;
      for (int32_t i = 0; i < n; ++i) {
        const auto k = static_cast<size_t>(i);
        ASSERT_EQ(r[k], i < done ? values[k] : kUntouched) << method << ' ' << failing << ' ' << i;
      }
    }
  }
}

// A failed call leaves the pending pair as it was.
TEST(Gaussian, PendingPairSurvivesFailure) {
  scripted::Script script;
  script.values = {0.3, 0.7, 0.6, 0.1};
  script.failing_call = 1;
  StreamState* stream = scripted::Start(script);
  double want[4], r[4];
  scripted::script.failing_call = -1;
  const auto all = Values<Double>(1, stream, 4, 0, 1);
  std::copy(all.begin(), all.end(), want);
  __quoDeleteStream(&stream);
  stream = scripted::Start(script);
  EXPECT_EQ(_quodRngGaussian(1, stream, 1, r, 0, 1), 0);
  EXPECT_EQ(_quodRngGaussian(1, stream, 3, r + 1, 2, 5), -1);
  EXPECT_EQ(r[1], want[1]) << "without mean and deviation";
  EXPECT_EQ(_quodRngGaussian(1, stream, 3, r + 1, 0, 1), 0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(r[i], want[i]);
  __quoDeleteStream(&stream);
}

// Methods 0 and 2 and the other precision leave the pair alone; copies of the stream take it along.
TYPED_TEST(GaussianOf, PairWaitsForItsMethod) {
  using T = typename TypeParam::T;
  StreamState* stream = NewStream(QUO_BRNG_MCG59, 4);
  const auto want = Values<TypeParam>(1, stream, 2, T(0), T(1));
  __quoDeleteStream(&stream);
  stream = NewStream(QUO_BRNG_MCG59, 4);
  T r, s[3];
  EXPECT_EQ(__quoSearchChunk(stream, TypeParam::kKey), nullptr);
  Gaussian(1, stream, 1, &r, T(0), T(1));
  EXPECT_EQ(r, want[0]);
  EXPECT_EQ(__quoGetNumChunks(stream), 1);
  const auto* pair = static_cast<const T*>(__quoSearchChunk(stream, TypeParam::kKey));
  ASSERT_NE(pair, nullptr);
  EXPECT_EQ(stream->chunks->size, 2 * sizeof(T));
  EXPECT_NE(pair[0], T(-1));
  Gaussian(0, stream, 3, s, T(0), T(1));
  Gaussian(2, stream, 3, s, T(0), T(1));
  double d;
  float f;
  if (sizeof(T) == 4) _quodRngGaussian(1, stream, 1, &d, 0, 1);
  if (sizeof(T) == 8) _quosRngGaussian(1, stream, 1, &f, 0, 1);
  StreamState* copy = nullptr;
  EXPECT_EQ(__quoCopyStream(&copy, stream), 0);
  for (StreamState* s2 : {stream, copy}) {
    EXPECT_EQ(Gaussian(1, s2, 1, &r, T(0), T(1)), 0);
    EXPECT_EQ(r, want[1]);
    const auto* used = static_cast<const T*>(__quoSearchChunk(s2, TypeParam::kKey));
    EXPECT_EQ(used[0], T(-1));
    EXPECT_EQ(used[1], T(-1));
  }
  __quoDeleteStream(&stream);
  __quoDeleteStream(&copy);
}

// A file may bring any chunk: one of another size, or without data, is not read.
TYPED_TEST(GaussianOf, PassesOverMisshapenChunks) {
  using T = typename TypeParam::T;
  for (const uint32_t size : {0u, 1u, 4u, 8u, 12u, 16u, 17u, 4096u}) {
    if (size == 2 * sizeof(T)) continue;
    StreamState* stream = NewStream(QUO_BRNG_MCG59, 8);
    const auto want = Values<TypeParam>(1, stream, 5, T(0), T(1));
    __quoDeleteStream(&stream);
    stream = NewStream(QUO_BRNG_MCG59, 8);
    void* data = size == 0 ? nullptr : kro_serv_kro_malloc(size, 32);
    if (data != nullptr) std::memset(data, 0x11, size);
    ASSERT_EQ(__quoAddChunk(stream, TypeParam::kKey, data, size == 0 ? 2 * sizeof(T) : size), 0);
    T r[5];
    EXPECT_EQ(Gaussian(1, stream, 3, r, T(0), T(1)), 0);
    EXPECT_EQ(Gaussian(1, stream, 2, r + 3, T(0), T(1)), 0);
    for (size_t i = 0; i < 5; ++i) EXPECT_EQ(r[i], want[i]) << size;
    EXPECT_EQ(__quoGetNumChunks(stream), 2);
    if (data != nullptr) {
      const std::vector<unsigned char> kept(size, 0x11);
      EXPECT_EQ(std::memcmp(data, kept.data(), size), 0);
    }
    __quoDeleteStream(&stream);
  }
}

TYPED_TEST(GaussianOf, RefusesAndIgnores) {
  using T = typename TypeParam::T;
  StreamState* stream = NewStream(QUO_BRNG_MCG31M1, 1);
  T r[2] = {T(7), T(7)};
  for (const uint32_t method : {3u, 4u, QUO_METHOD_ACCURATE, 0xFFFFFFFFu}) {
    EXPECT_EQ(Gaussian(method, stream, 2, r, T(0), T(1)), QUO_BAD_METHOD);
  }
  for (uint32_t method = 0; method < 3; ++method) {
    EXPECT_EQ(Gaussian(method, stream, 0, r, T(0), T(1)), 0);
    EXPECT_EQ(Gaussian(method, stream, -5, r, T(0), T(1)), 0);
  }
  EXPECT_EQ(r[0], T(7));
  T got, want;
  Uniform(stream, 1, &got, T(0), T(1));
  __quoDeleteStream(&stream);
  stream = NewStream(QUO_BRNG_MCG31M1, 1);
  Uniform(stream, 1, &want, T(0), T(1));
  EXPECT_EQ(got, want) << "the stream has not moved";
  stream->id = -3;
  for (uint32_t method = 0; method < 3; ++method) {
    EXPECT_EQ(Gaussian(method, stream, 2, r, T(0), T(1)), QUO_INVALID_BRNG);
  }
  __quoDeleteStream(&stream);
}

}  // namespace
