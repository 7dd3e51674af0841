// Binomial and hypergeometric against plain forms of their methods in long double, which know no
// table, no squeeze and no series; their set-up in the stream; what callers see of them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "pexquo/pex.h"
#include "pexquo/quo.h"
#include "quo_kernel/discrete/_kernel/indexed_search.h"
#include "quo_kernel/discrete/_kernel/transformed_rejection.h"
#include "tests/discrete/counts.h"
#include "tests/streams/counted_memory.h"
#include "tests/streams/scripted_generator.h"
#include "tests/support/control.h"
#include "tests/support/random.h"
#include "tests/uniform/levels.h"

namespace {

using counts::Law;
using counts::Real;
using counts::Stream;
using scripted::script;
using scripted::Script;

constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kLastUniform = 1 - 0x1p-53;

constexpr auto B = Law::Binomial;
constexpr auto H = Law::Hypergeometric;

// By table, then by rejection.
const Law kLaws[] = {B(1, 0.5),
                     B(20, 0.3),
                     B(20, 0.7),
                     B(1000, 1e-12),
                     B(kHighest, 1e-12),
                     B(kHighest, 1 - 0x1p-40),
                     B(100, 0.1),
                     B(240, 0.5),
                     B(600000, 1e-4),
                     B(kHighest, 2.7e-8),
                     H(2, 1, 1),
                     H(100, 20, 30),
                     H(100, 20, 70),
                     H(100, 80, 30),
                     H(100, 80, 70),
                     H(960, 480, 480),
                     H(kHighest, 40000, 1000000),
                     H(kHighest, 2, kHighest - 1),
                     B(242, 0.5),
                     B(1000, 0.4),
                     B(1000, 0.6),
                     B(620000, 1e-4),
                     B(kHighest, 3e-8),
                     B(kHighest, 0.25),
                     B(kHighest, 0.5),
                     H(1000, 500, 500),
                     H(10000, 2000, 3000),
                     H(10000, 8000, 3000),
                     H(10000, 2000, 7000),
                     H(10000, 8000, 7000),
                     H(kHighest, 100000, 10000000),
                     H(kHighest, kHighest / 2, kHighest / 2 + 1)};

// The likelier of the two sides is counted from the other end.
Law Reduced(const Law& law, bool* complement, bool* of_marked) {
  *complement = law.l == 0 ? law.p > 0.5 : law.s > law.l - law.s;
  *of_marked = law.l != 0 && law.m > law.l - law.m;
  if (law.l == 0) return B(law.s, *complement ? 1 - law.p : law.p);
  return H(law.l, *complement ? law.l - law.s : law.s, *of_marked ? law.l - law.m : law.m);
}
int64_t Restored(const Law& law, const Law& reduced, bool complement, bool of_marked, int64_t k) {
  if (law.l == 0) return complement ? law.s - k : k;
  if (of_marked) k = reduced.s - k;
  return complement ? law.m - k : k;
}

// The distribution function of a reduced law, from f(k + 1)/f(k), as far as it grows.
std::vector<Real> DistributionFunction(const Law& law) {
  std::vector<Real> sums = {1};
  Real f = 1;
  for (Real k = 0; k < static_cast<Real>(law.Most()) && f > 1e-30L * sums.back(); ++k) {
    f *= law.l == 0
             ? (law.s - k) * law.p / ((k + 1) * (1 - Real{law.p}))
             : (law.s - k) * (law.m - k) / ((k + 1) * (Real{1} * law.l - law.s - law.m + k + 1));
    sums.push_back(sums.back() + f);
  }
  const Real whole = sums.back();
  for (Real& sum : sums) sum /= whole;
  return sums;
}

// Whether u and v give a number.
bool Accept(const Law& law, double u, double v, int64_t* k) {
  const Real mean = law.Mean(), deviation = std::sqrt(law.Variance());
  const Real b = 1.15L + 2.53L * deviation, p = law.l == 0 ? law.p : 0;
  const Real a = -0.0873L + 0.0248L * b + 0.01L * p, alpha = (2.83L + 5.1L / b) * deviation;
  const Real x = u - 0.5L, edge = 0.5L - std::fabs(x);
  const Real at = std::floor((2 * a / edge + b) * x + mean + 0.5L);
  if (!(at >= 0 && at <= static_cast<Real>(law.Most()))) return false;
  *k = static_cast<int64_t>(at);
  const auto mode =
      static_cast<int64_t>(law.l == 0 ? (law.s + Real{1}) * p
                                      : (law.s + Real{1}) * (law.m + Real{1}) / (law.l + Real{2}));
  return std::log(v * alpha / (a / (edge * edge) + b)) <=
         law.LogProbability(*k) - law.LogProbability(mode);
}

// 1/2 - |u - 1/2| where the candidate, before its floor is taken, is k.
double EdgeOf(const quo::TableMountain& hat, double k) {
  const double h = std::fabs(k - hat.c) + 2 * hat.a - hat.b / 2;
  return (std::sqrt(h * h + 4 * hat.a * hat.b) - h) / (2 * hat.b);
}

std::vector<int32_t> Defined(const Law& law, StreamState* stream, int32_t n) {
  bool complement, of_marked;
  const Law reduced = Reduced(law, &complement, &of_marked);
  const bool rejection = reduced.Variance() > 60;
  const auto upto = rejection ? std::vector<Real>() : DistributionFunction(reduced);
  std::vector<int32_t> r;
  while (static_cast<int32_t>(r.size()) < n) {
    double u[2];
    int64_t k = 0;
    if (!rejection) {  // the least k with u < F(k)
      _quodRngUniform(0, stream, 1, u, 0, 1);
      const Real at = u[0] == 0 ? 0x1p-33 : u[0];
      k = std::upper_bound(upto.begin(), upto.end() - 1, at) - upto.begin();
    } else {
      _quodRngUniform(0, stream, 2, u, 0, 1);
      if (!Accept(reduced, u[0], u[1], &k)) continue;
    }
    r.push_back(static_cast<int32_t>(Restored(law, reduced, complement, of_marked, k)));
  }
  return r;
}

TEST(Counts, AreAsDefinedHoweverTheRequestIsSplit) {
  for (const int32_t id : {QUO_BRNG_MT19937, QUO_BRNG_MCG59}) {
    for (const Law& law : kLaws) {
      SCOPED_TRACE(testing::PrintToString(law));
      const Stream plain(id);
      const auto want = Defined(law, plain, 3000);
      levels::ForEach([&] {
        const Stream whole(id), parts(id);
        ASSERT_EQ(law.Draw(whole, 3000), want);
        std::vector<unsigned char> bytes(4 * 3000 + 64);
        size_t done = 0, offset = 0;
        for (const int32_t n : {1, 2, 3, 7, 8, 31, 32, 33, 500, 17, 1024, 1, 256, 1085}) {
          unsigned char* at = bytes.data() + offset++;
          ASSERT_EQ(law.Draw(parts, n, reinterpret_cast<int32_t*>(at)), QUO_OK);
          ASSERT_EQ(std::memcmp(at, &want[done], 4 * static_cast<size_t>(n)), 0) << done;
          done += static_cast<size_t>(n);
        }
        ASSERT_EQ(done, want.size());
        double next[3];
        for (int i = 0; i < 2; ++i) _quodRngUniform(0, i == 0 ? whole : parts, 1, next + i, 0, 1);
        EXPECT_EQ(next[0], next[1]);
      });
      double next[2];
      const Stream again(id);
      law.Draw(again, 3000);
      _quodRngUniform(0, again, 1, next, 0, 1);
      _quodRngUniform(0, plain, 1, next + 1, 0, 1);
      EXPECT_EQ(next[0], next[1]) << "the uniforms taken";
    }
  }
}

// Laws with other parameters, by a random walk through their space.
TEST(Counts, AreAsDefinedAnywhere) {
  const uint64_t seed = 6;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Random random(seed);
  const auto size = [&] { return static_cast<int32_t>(std::exp2(31 * random.Unit()) - 0.5); };
  for (int i = 0; i < 400; ++i) {
    Law law = B(size(), std::exp2(-40 * random.Unit() * random.Unit()));
    if (i % 2 != 0) {
      const int32_t l = std::max(2, size());
      law = H(l, 1 + static_cast<int32_t>((l - 1.0) * std::exp2(-20 * random.Unit())),
              1 + static_cast<int32_t>((l - 1.0) * std::exp2(-20 * random.Unit())));
    } else if (random.Below(2) != 0) {
      law.p = 1 - law.p;
    }
    if (law.p == 0 && law.l == 0) continue;
    if (law.p == 1) continue;
    const uint32_t stream_seed = random.Below(1u << 31);
    const Stream plain(QUO_BRNG_MCG59, stream_seed), drawn(QUO_BRNG_MCG59, stream_seed);
    ASSERT_EQ(law.Draw(drawn, 40), Defined(law, plain, 40)) << testing::PrintToString(law);
  }
}

TEST(Counts, AtTheEndsOfTheParameters) {
  const struct {
    Law law;
    int32_t value;
  } kConstant[] = {{B(0, 0.5), 0},
                   {B(-7, 0.5), 0},
                   {B(std::numeric_limits<int32_t>::min(), 1), 0},
                   {B(kHighest, 0), 0},
                   {B(kHighest, -0.0), 0},
                   {B(kHighest, -1), 0},
                   {B(kHighest, kNaN), 0},
                   {B(kHighest, 5e-324), 0},
                   {B(kHighest, 1e-300), 0},
                   {B(kHighest, 1), kHighest},
                   {B(kHighest, 1.5), kHighest},
                   {B(kHighest, std::numeric_limits<double>::infinity()), kHighest},
                   {H(1, 0, 0), 0},
                   {H(1, 1, 0), 0},
                   {H(1, 0, 1), 0},
                   {H(1, 1, 1), 1},
                   {H(-5, 3, 3), 0},
                   {H(kHighest, 0, 77), 0},
                   {H(kHighest, 77, 0), 0},
                   {H(kHighest, kHighest, 77), 77},
                   {H(kHighest, 77, kHighest), 77},
                   {H(kHighest, kHighest, kHighest), kHighest},
                   {H(50, 60, 20), 20},
                   {H(50, 20, 60), 20},
                   {H(50, -1, 20), 0},
                   {H(50, 20, -1), 0},
                   {H(50, std::numeric_limits<int32_t>::min(), kHighest), 0}};
  for (const auto& c : kConstant) {
    SCOPED_TRACE(testing::PrintToString(c.law));
    const Stream stream(QUO_BRNG_MT19937), uniforms(QUO_BRNG_MT19937);
    EXPECT_EQ(c.law.Draw(stream, 100), std::vector<int32_t>(100, c.value));
    double u[101], next;
    _quodRngUniform(0, uniforms, 101, u, 0, 1);
    _quodRngUniform(0, stream, 1, &next, 0, 1);
    EXPECT_EQ(next, u[100]) << "one uniform each";
  }
}

TEST(Counts, OfTheLeastAndTheLargestUniforms) {
  Script s;
  s.values = {0,       0x1p-60,     0x1p-53,     0x1p-40,     0x1p-33,
              0x1p-32, 1 - 0x1p-32, 1 - 0x1p-40, 1 - 0x1p-50, kLastUniform};
  for (const Law& law : kLaws) {
    SCOPED_TRACE(testing::PrintToString(law));
    if (law.Variance() > 60) continue;
    const auto got = law.Draw(Stream(scripted::Start(s)), 50);
    const auto want = Defined(law, Stream(scripted::Start(s)), 10);
    for (size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i], want[i % 10]) << s.values[i % 10];
    }
  }
  // Pairs from the rim of the hat among others.
  s.values.insert(s.values.end(), {0.5, 0.5, 0.07, 0.93, 0.013, 0.0129, 0.987, 0.001, 0.3});
  for (const Law& law : kLaws) {
    SCOPED_TRACE(testing::PrintToString(law));
    if (law.Variance() <= 60) continue;
    const auto want = Defined(law, Stream(scripted::Start(s)), 300);
    levels::ForEach([&] { EXPECT_EQ(law.Draw(Stream(scripted::Start(s)), 300), want); });
  }
}

// Words next to 2^59 make MCG59's uniform 1.
TEST(Counts, OfUniformsRoundedToOneDoNotDependOnTheRequest) {
  Script ones, last;
  ones.values = {1};
  last.values = {kLastUniform};
  for (const Law& law : kLaws) {
    SCOPED_TRACE(testing::PrintToString(law));
    if (law.Variance() > 60) continue;
    const int32_t one = law.Draw(Stream(scripted::Start(ones)), 1)[0];
    EXPECT_EQ(law.Draw(Stream(scripted::Start(ones)), 100), std::vector<int32_t>(100, one));
    const bool mirrored =
        law.l == 0 ? law.p > 0.5 : (law.s > law.l - law.s) != (law.m > law.l - law.m);
    const int32_t before = law.Draw(Stream(scripted::Start(last)), 1)[0];
    EXPECT_GE(mirrored ? before : one, mirrored ? one : before);
  }
}

// So far out that no other test comes here: v next to its bound, for some k of the whole range.
TEST(Counts, AreTestedExactlyFarOut) {
  for (const Law& law :
       {B(242, 0.5), B(1000, 0.07), B(100000, 1e-3), H(1000, 500, 500), H(100000, 300, 30000)}) {
    SCOPED_TRACE(testing::PrintToString(law));
    const auto mean = static_cast<double>(law.Mean());
    const quo::TableMountain hat(mean, static_cast<double>(law.Variance()), law.p);
    Script s;
    s.values.clear();
    for (int64_t k = 0; k <= law.Most(); k += k < 20 ? 1 : 7) {
      if (std::fabs(static_cast<double>(k) - mean) < 60) continue;
      const double e = EdgeOf(hat, static_cast<double>(k) + 0.5);
      const double u = static_cast<double>(k) < mean ? e : 1 - e;
      const Real log_f = law.LogProbability(k) - law.LogProbability(std::lround(mean));
      const Real bound = std::exp(log_f) * (hat.a / (Real{e} * e) + hat.b) / hat.alpha;
      if (bound < 1e-300L) continue;
      for (const double side : {1 - 1e-3, 1 + 1e-3, 1 - 1e-6, 1 + 1e-6}) {
        s.values.insert(s.values.end(), {u, static_cast<double>(bound) * side, 0.5, 0.25});
      }
    }
    ASSERT_GT(s.values.size(), 100u);
    const auto n = static_cast<int32_t>(s.values.size() / 4);
    const auto want = Defined(law, Stream(scripted::Start(s)), n);
    EXPECT_GT(std::count_if(want.begin(), want.end(),
                            [&](int32_t k) { return std::fabs(k - mean) >= 60; }),
              n / 4);
    levels::ForEach([&] { EXPECT_EQ(law.Draw(Stream(scripted::Start(s)), n), want); });
  }
}

TEST(Counts, StayInTheirRangeWhateverAUsersGeneratorGives) {
  Script s;
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double odd : {-0.0, -0.5, 1.0, 1.25, 1e300, -1e300, infinity, -infinity, kNaN}) {
    s.values.insert(s.values.end(), {odd, 0.3125, odd, odd, 0.5, 0.25, 0.6});
  }
  for (const Law& law : kLaws) {
    SCOPED_TRACE(testing::PrintToString(law));
    std::vector<int32_t> want;
    levels::ForEach([&] {
      const auto r = law.Draw(Stream(scripted::Start(s)), 500);
      for (const int32_t x : r) ASSERT_TRUE(x >= law.Least() && x <= law.Most()) << x;
      if (want.empty()) want = r;
      EXPECT_EQ(r, want);
    });
  }
}

TEST(Counts, EndAtTheFirstError) {
  for (const Law& law : {B(20, 0.3), B(1000, 0.4), H(100, 20, 30), H(10000, 2000, 3000)}) {
    SCOPED_TRACE(testing::PrintToString(law));
    Script s;
    s.values.clear();
    Random random(1);
    for (int i = 0; i < 9001; ++i) s.values.push_back(random.Unit());
    const auto want = law.Draw(Stream(scripted::Start(s)), 2500);
    const auto calls = static_cast<int32_t>(script.calls.size());
    s.failure = -1120;
    for (s.failing_call = 0; s.failing_call < calls; ++s.failing_call) {
      std::vector<int32_t> r(2501, -77);
      EXPECT_EQ(law.Draw(Stream(scripted::Start(s)), 2500, r.data()), -1120);
      EXPECT_EQ(static_cast<int32_t>(script.calls.size()), s.failing_call + 1);
      size_t written = 0;
      while (r[written] != -77) ++written;
      EXPECT_EQ(written > 0, s.failing_call > 0);
      for (size_t i = 0; i < r.size(); ++i) {
        ASSERT_EQ(r[i], i < written ? want[i] : -77) << i << " of " << written;
      }
    }
    for (const int32_t n : {0, -1, std::numeric_limits<int32_t>::min()}) {
      int32_t r = 77;
      const Stream stream(scripted::Start(s));
      EXPECT_EQ(law.Draw(stream, n, &r), QUO_OK);
      EXPECT_TRUE(r == 77 && script.calls.empty() && stream.p->chunks == nullptr);
    }
    StreamState none = {-5, 1, nullptr};
    int32_t r = 77;
    EXPECT_EQ(law.Draw(&none, 1, &r), QUO_INVALID_BRNG);
    EXPECT_TRUE(r == 77 && none.chunks == nullptr);
  }
}

// ---- The set-up in the stream. ----

constexpr uint32_t kKey = 5, kSize = 544;

std::vector<char> Chunk(const StreamState* stream) {
  const auto* data = static_cast<const char*>(__quoSearchChunk(stream, kKey));
  return data == nullptr ? std::vector<char>() : std::vector<char>(data, data + kSize);
}

TEST(BinomialChunk, HoldsTheSetUpOfTheLastParameters) {
  for (const Law& first : {B(20, 0.3), B(1000, 0.4)}) {
    const Stream stream(QUO_BRNG_MCG59), other(QUO_BRNG_MCG59);
    first.Draw(stream, 10);
    ASSERT_EQ(__quoGetNumChunks(stream), 1);
    EXPECT_EQ(stream.p->chunks->key, kKey);
    EXPECT_EQ(stream.p->chunks->size, kSize);
    const auto made = Chunk(stream);
    first.Draw(stream, 10);
    EXPECT_EQ(Chunk(stream), made);
    for (const Law& next : {B(21, 0.3), B(21, 0.300001), B(1000, 0.6), B(1000, 0.4), B(0, 0.4),
                            B(20, 0.3), B(20, 0.7), first}) {
      SCOPED_TRACE(testing::PrintToString(next));
      const Stream fresh(QUO_BRNG_MCG59), used(QUO_BRNG_MCG59);
      __quoCopyStreamState(used, fresh);
      first.Draw(used, 10);
      __quoCopyStreamState(fresh, used);
      __quoDeleteChunks(fresh);
      EXPECT_EQ(next.Draw(used, 100), next.Draw(fresh, 100));
      EXPECT_EQ(Chunk(used), Chunk(fresh));
      EXPECT_EQ(__quoGetNumChunks(used), 1);
    }
  }
}

// The thresholds of the search, in both tails: those above the mode are 1 less a sum.
TEST(BinomialChunk, TabulatesTheDistributionFunction) {
  for (const Law& law : kLaws) {
    if (law.l != 0 || law.p > 0.5 || law.Variance() > 60) continue;
    SCOPED_TRACE(testing::PrintToString(law));
    const Stream stream(QUO_BRNG_MCG59);
    law.Draw(stream, 1);
    const auto chunk = Chunk(stream);
    quo::ValueTable table;
    std::memcpy(&table, &chunk[16], sizeof(table));
    const auto want = DistributionFunction(law);
    const auto at = [&](int32_t k) { return want[static_cast<size_t>(k)]; };
    if (table.first > 0) {
      EXPECT_NEAR(static_cast<double>(table.below / at(table.first - 1)), 1, 1e-13);
    }
    const Real mode = std::floor((law.s + Real{1}) * law.p);
    for (int32_t j = 0; j < table.count; ++j) {
      const int32_t k = table.first + j;
      if (k < mode) {
        EXPECT_NEAR(static_cast<double>(table.upto[j] / at(k)), 1, 1e-13) << k;
      } else {
        EXPECT_NEAR(static_cast<double>(table.upto[j] - at(k)), 0, 1e-14) << k;
      }
    }
  }
}

TEST(BinomialChunk, GoesWithTheStream) {
  const std::string name = testing::TempDir() + "binomial_chunk_" + std::to_string(getpid());
  for (const Law& law : {B(20, 0.3), B(kHighest, 0.4)}) {
    const Stream stream(QUO_BRNG_MT19937);
    law.Draw(stream, 10);
    StreamState *copied = nullptr, *loaded = nullptr;
    ASSERT_EQ(__quoCopyStream(&copied, stream), QUO_OK);
    ASSERT_EQ(__quoSaveStreamF(stream, name.c_str(), static_cast<int32_t>(name.size())), QUO_OK);
    ASSERT_EQ(__quoLoadStreamF(&loaded, name.c_str(), static_cast<int32_t>(name.size())), QUO_OK);
    std::remove(name.c_str());
    const Stream copy(copied), load(loaded);
    const auto made = Chunk(stream);
    const auto want = law.Draw(stream, 1000);
    for (StreamState* s : {copied, loaded}) {
      EXPECT_EQ(Chunk(s), made);
      EXPECT_EQ(law.Draw(s, 1000), want);
      EXPECT_EQ(__quoGetNumChunks(s), 1);
    }
  }
}

void AddChunk(StreamState* stream, uint32_t size, const char* bytes) {
  void* data = bytes == nullptr ? nullptr : kro_serv_kro_malloc(size, 32);
  if (data != nullptr) std::memcpy(data, bytes, size);
  ASSERT_EQ(__quoAddChunk(stream, kKey, data, size), QUO_OK);
}

TEST(BinomialChunk, OfAnotherSizeIsPassedOver) {
  const std::vector<char> bytes(5000, 0x11);
  for (const Law& law : {B(20, 0.3), B(1000, 0.4)}) {
    const auto want = law.Draw(Stream(QUO_BRNG_MCG59), 100);
    for (const uint32_t size : {0u, 1u, 8u, 543u, 545u, 4096u, kSize}) {
      const Stream stream(QUO_BRNG_MCG59);
      AddChunk(stream, size, size == kSize ? nullptr : bytes.data());
      EXPECT_EQ(law.Draw(stream, 100), want) << size;
      EXPECT_EQ(__quoGetNumChunks(stream), 2);
      EXPECT_EQ(law.Draw(stream, 100).size(), 100u);
      EXPECT_EQ(__quoGetNumChunks(stream), 2);
    }
  }
}

// The right parameters before anything at all.
TEST(BinomialChunk, OfAnyContentGivesNumbersInRange) {
  const uint64_t seed = 11;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Random random(seed);
  for (const Law& law :
       {B(20, 0.3), B(20, 0.7), B(300, 0.2), B(kHighest, 2e-8), B(1000, 0.4), B(kHighest, 0.5)}) {
    SCOPED_TRACE(testing::PrintToString(law));
    const Stream made(QUO_BRNG_MCG59);
    law.Draw(made, 1);
    const auto good = Chunk(made);
    for (int round = 0; round < 300; ++round) {
      auto bytes = good;
      if (round < 100) {  // all but the parameters, zeros and ones among it
        for (size_t i = 16; i < bytes.size(); ++i) {
          bytes[i] = static_cast<char>(round == 0 ? 0 : round == 1 ? -1 : random.Bits());
        }
      } else {  // words that matter: first and count, then doubles
        for (int k = 0; k < 3; ++k) {
          const size_t at = 16 + 4 * (k == 0 ? random.Below(2) : random.Below(132));
          const int32_t value[] = {0,
                                   1,
                                   -1,
                                   64,
                                   65,
                                   kHighest,
                                   static_cast<int32_t>(random.Bits()),
                                   static_cast<int32_t>(random.Below(70))};
          std::memcpy(&bytes[at], &value[random.Below(8)], 4);
        }
      }
      const Stream stream(QUO_BRNG_MCG59);
      AddChunk(stream, kSize, bytes.data());
      for (const int32_t n : {1, 500}) {
        for (const int32_t x : law.Draw(stream, n)) {
          ASSERT_TRUE(x >= 0 && x <= law.s) << x << " in round " << round;
        }
      }
    }
  }
}

TEST(BinomialChunk, IsNotNeeded) {
  for (const Law& law : {B(20, 0.3), B(1000, 0.4)}) {
    const auto want = law.Draw(Stream(QUO_BRNG_MCG59), 100);
    for (const int failing : {1, 2}) {  // the data, the node
      const size_t before = memory.live.size();
      const Stream stream(QUO_BRNG_MCG59);
      memory.countdown = failing;
      memory.failed = false;
      EXPECT_EQ(law.Draw(stream, 100), want);
      EXPECT_TRUE(memory.failed);
      EXPECT_EQ(__quoGetNumChunks(stream), 0);
      EXPECT_EQ(memory.live.size(), before + 1) << "the stream alone";
    }
  }
}

// ---- The caller's surroundings. ----

int callback_calls = 0;
int Callback(PexErrorContext*) {
  ++callback_calls;
  return 0;
}

TEST(Counts, LeaveNoTraceAndSeeNone) {
  std::vector<Law> laws(std::begin(kLaws), std::end(kLaws));
  laws.insert(laws.end(), {B(1000, 5e-324), B(1000, 1e-310), B(kHighest, 1e-300), B(5, kNaN),
                           B(5, std::numeric_limits<double>::signaling_NaN()), H(0, 0, 0)});
  _pexSetErrorCallBack(Callback);
  _pexSetMode(PEX_ERRMODE_CALLBACK | PEX_ERRMODE_ERRNO);
  const uint32_t mode = _pexGetMode();
  for (const Law& law : laws) {
    SCOPED_TRACE(testing::PrintToString(law));
    const auto want = law.Draw(Stream(QUO_BRNG_MCG59), 600);
    for (const Control& control : kControls) {
      SCOPED_TRACE(control.name);
      const Stream stream(QUO_BRNG_MCG59);
      std::vector<int32_t> r(600);
      errno = 4711;
      _pexSetErrStatus(3);
      UseControl use(control);
      law.Draw(stream, 600, r.data());
      use.Finish();
      EXPECT_EQ(use.flags() & ~uint32_t{kInexact}, 0u);
      EXPECT_TRUE(use.kept());
      EXPECT_EQ(r, want);
      EXPECT_EQ(errno, 4711);
      EXPECT_EQ(_pexClearErrStatus(), 3);
    }
  }
  EXPECT_EQ(callback_calls, 0);
  EXPECT_EQ(_pexGetMode(), mode);
  EXPECT_EQ(_pexClearErrorCallBack(), Callback);
  _pexSetMode(PEX_MODE_DEFAULT);
}

// ---- The hat. ----

// That the hat holds, that no number taken at once would fail the test, and none dropped at the rim
// would pass it. For each k the extremes over the u that give it are at its ends.
TEST(TableMountain, CoversBothLaws) {
  std::vector<Law> laws;
  for (const double variance : {20., 25., 40., 61., 100., 400., 1e4, 1e6, 1e8}) {
    for (const double p : {1e-7, 1e-4, 0.01, 0.1, 0.2, 0.35, 0.5}) {
      const double n = variance / p / (1 - p);
      for (const double more : {0.0, 0.4 / p}) {
        if (n + more < kHighest) laws.push_back(B(static_cast<int32_t>(n + more + 1), p));
      }
      for (const double q : {1e-3, 0.01, 0.1, 0.2, 0.35, 0.5}) {
        const double l = variance / (p * q * (1 - p) * (1 - q)) + 2;
        if (l >= kHighest || l * p * 0.9 < 1 || l * q < 1) continue;
        laws.push_back(
            H(static_cast<int32_t>(l), static_cast<int32_t>(l * p), static_cast<int32_t>(l * q)));
      }
    }
  }
  for (const Law& law : laws) {
    SCOPED_TRACE(testing::PrintToString(law));
    const auto mean = static_cast<double>(law.Mean());
    const auto variance = static_cast<double>(law.Variance());
    if (variance < 20) continue;
    const quo::TableMountain hat(mean, variance, law.p);
    const double deviation = std::sqrt(variance);
    const auto first = std::max<int64_t>(law.Least(), std::lround(mean - 10 * deviation));
    const auto last = std::min<int64_t>(law.Most(), std::lround(mean + 10 * deviation));
    Real peak = -1e30L;
    for (auto k = static_cast<int64_t>(mean) - 2; k <= mean + 2; ++k) {
      peak = std::max(peak, law.LogProbability(std::clamp(k, law.Least(), law.Most())));
    }
    double highest = 0, least_room = 1;
    for (int64_t k = first; k <= last; k += std::max<int64_t>(1, (last - first) / 400)) {
      const auto f = static_cast<double>(std::exp(law.LogProbability(k) - peak));
      const double at = EdgeOf(hat, static_cast<double>(k));
      const double to = EdgeOf(hat, static_cast<double>(k) + 1);
      const double inner = k < hat.c && hat.c < k + 1 ? 0.5 : std::max(at, to);
      const double outer = std::min(at, to);
      const auto passes = [&](double e) { return f * (hat.a / (e * e) + hat.b) / hat.alpha; };
      highest = std::max(highest, passes(outer));
      if (inner >= hat.kInside) least_room = std::min(least_room, passes(inner) - hat.v_sure);
      if (outer < hat.kRim) {
        ASSERT_LT(passes(outer), outer) << k;
        ASSERT_LT(passes(std::min(inner, hat.kRim)), std::min(inner, hat.kRim)) << k;
      }
    }
    EXPECT_LT(highest, 1);
    EXPECT_GT(highest, 0.9);
    EXPECT_GT(least_room, 0);
  }
}

}  // namespace
