// R250 and MRG32K3A against their definitions: values, states, seeds, skips, foreign states.
#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <limits>
#include <memory>
#include <random>

#include "quo_sub_kernel/_math/powmod.h"
#include "tests/generators/reference.h"

namespace quo::test {
namespace {

constexpr int64_t kModuli[2] = {4294967087, 4294944443};

// One output after the other by the definition.
class Plain {
 public:
  virtual ~Plain() = default;
  virtual uint32_t Next() = 0;
  virtual double Inverse() const = 0;
  std::vector<uint32_t> Words(int n) {
    std::vector<uint32_t> r(n);
    for (uint32_t& w : r) w = Next();
    return r;
  }
  std::vector<double> Doubles(int n, double a = 0, double b = 1) {
    const double scale = (b - a) * Inverse();
    std::vector<double> r(n);
    for (double& u : r) {
      const double product = Next() * scale;
      u = product + a;
    }
    return r;
  }
  std::vector<float> Floats(int n, float a = 0, float b = 1) {
    const std::vector<double> wide = Doubles(n, a, b);
    return {wide.begin(), wide.end()};
  }
};

struct PlainR250 : Plain {
  std::array<uint32_t, 250> x;
  size_t i = 0, j = 103;
  explicit PlainR250(const std::vector<uint32_t>& seed) {
    uint32_t s = seed.empty() || seed[0] == 0 ? 1 : seed[0];
    for (uint32_t& w : x) w = s = s * 69069;
    for (int t = 0; t < 32; ++t) {
      x[3 + 7 * t] &= 0xFFFFFFFF >> t;
      x[3 + 7 * t] |= 0x80000000 >> t;
    }
    if (seed.size() >= 250) std::copy_n(seed.begin(), 250, x.begin());
  }
  uint32_t Next() override {
    const uint32_t w = x[i] = x[i] ^ x[j];
    i = (i + 1) % 250;
    j = (j + 1) % 250;
    return w;
  }
  double Inverse() const override { return 2.3283064365386963e-10; }
};

struct PlainMrg : Plain {
  int64_t x[3] = {1, 1, 1}, y[3] = {1, 1, 1};
  explicit PlainMrg(const std::vector<uint32_t>& seed) {
    for (size_t k = 0; k < 6 && k < seed.size(); ++k) {
      int64_t& w = k < 3 ? x[k] : y[k - 3];
      const int64_t m = kModuli[k / 3];
      w = seed[k] >= m ? seed[k] - m : seed[k];
    }
    if (x[0] == 0 && x[1] == 0 && x[2] == 0) x[0] = 1;
    if (y[0] == 0 && y[1] == 0 && y[2] == 0) y[0] = 1;
  }
  static int64_t Mod(int64_t p, int64_t m) { return (p % m + m) % m; }
  uint32_t Next() override {
    const int64_t p1 = Mod(1403580 * x[1] - 810728 * x[0], kModuli[0]);
    const int64_t p2 = Mod(527612 * y[2] - 1370589 * y[0], kModuli[1]);
    x[0] = x[1], x[1] = x[2], x[2] = p1;
    y[0] = y[1], y[1] = y[2], y[2] = p2;
    return static_cast<uint32_t>(p1 >= p2 ? p1 - p2 : p1 - p2 + kModuli[0]);
  }
  double Inverse() const override { return 2.328306549837829e-10; }
  std::vector<uint32_t> State() const {
    return {uint32_t(x[0]), uint32_t(x[1]), uint32_t(x[2]),
            uint32_t(y[0]), uint32_t(y[1]), uint32_t(y[2])};
  }
};

std::vector<uint32_t> StateWords(const Stream& stream) {
  const std::string bytes = stream.State();
  std::vector<uint32_t> words(bytes.size() / 4);
  std::memcpy(words.data(), bytes.data(), bytes.size());
  return words;
}

void SetWords(Stream& stream, const std::vector<uint32_t>& words) { stream.SetState(Bits(words)); }

// The generator and its definition side by side.
struct Pair {
  const Generator* g;
  Stream stream;
  std::unique_ptr<Plain> plain;
  Pair(const Generator& generator, const std::vector<uint32_t>& seed)
      : g(&generator), stream(generator, seed) {
    if (generator.id == QUO_BRNG_R250) {
      plain = std::make_unique<PlainR250>(seed);
    } else {
      plain = std::make_unique<PlainMrg>(seed);
    }
  }
  // Of R250 the words from the oldest on: long requests are free to begin the circle anew.
  void ExpectSameState() {
    EXPECT_TRUE(stream.RestUntouched());
    std::vector<uint32_t> words = StateWords(stream);
    if (auto* mrg = dynamic_cast<PlainMrg*>(plain.get())) {
      EXPECT_EQ(words, mrg->State());
      return;
    }
    auto& r250 = dynamic_cast<PlainR250&>(*plain);
    const size_t i = words[250], j = words[251];
    ASSERT_LT(i, 250u);
    ASSERT_LT(j, 250u);
    EXPECT_EQ((j + 250 - i) % 250, (r250.j + 250 - r250.i) % 250);
    for (size_t k = 0; k < 250; ++k) {
      ASSERT_EQ(words[(i + k) % 250], r250.x[(r250.i + k) % 250]) << k;
    }
  }
  void ExpectAllOutputs(int n, size_t shift, double a, double b) {
    StreamState* const s = stream.get();
    const float fa = static_cast<float>(a), fb = static_cast<float>(b);
    ExpectDraw(plain->Words(n), shift, [&](uint32_t* r) { return g->ibrng(s, n, r); });
    ExpectDraw(plain->Doubles(n), shift, [&](double* r) { return g->dbrng(s, n, r, 0, 1); });
    ExpectDraw(plain->Doubles(n, a, b), shift, [&](double* r) { return g->dbrng(s, n, r, a, b); });
    ExpectDraw(plain->Floats(n), shift, [&](float* r) { return g->sbrng(s, n, r, 0, 1); });
    ExpectDraw(plain->Floats(n, fa, fb), shift,
               [&](float* r) { return g->sbrng(s, n, r, fa, fb); });
    ExpectSameState();
  }
};

class Recursive : public testing::TestWithParam<Generator> {};
INSTANTIATE_TEST_SUITE_P(Generators, Recursive, testing::Values(R250(), Mrg32k3a()),
                         [](const auto& info) { return std::string(info.param.name); });

const std::vector<uint32_t> kSeed = {3141592653, 2718281828, 1414213562,
                                     1732050807, 2236067977, 1618033988};

TEST_P(Recursive, EveryLengthAndPlace) {
  OnEveryLevel([&] {
    Pair pair(GetParam(), kSeed);
    for (int n = 1; n <= 600 && !HasFailure(); n += n < 140 ? 1 : 3) {
      pair.ExpectAllOutputs(n, n * 4 % 64, -3, 5);
    }
    for (int n : {1000, 1023, 1024, 1025, 1027, 1039, 1040, 1041, 1055, 2049, 2064, 2081, 4099}) {
      pair.ExpectAllOutputs(n, n % 3, 1e10, -1e-3);  // no element aligned
    }
  });
}

// Scales that underflow, overflow or meet 0 times infinity.
TEST_P(Recursive, AnyBounds) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::pair<double, double> bounds[] = {
      {-0.0, 1},      {7, 7},    {0.3, -0.1}, {0, 0x1p-1074},      {0, 0x1p-1000},
      {0x1p-1070, 1}, {0, 1e39}, {0, 0x1p31}, {-DBL_MAX, DBL_MAX}, {0, infinity}};
  OnEveryLevel([&] {
    for (const auto& [a, b] : bounds) {
      Pair pair(GetParam(), kSeed);
      for (int n : {1, 300}) {
        EXPECT_EQ(Bits(pair.stream.Doubles(n, a, b)), Bits(pair.plain->Doubles(n, a, b))) << b;
        const float fa = static_cast<float>(a), fb = static_cast<float>(b);
        EXPECT_EQ(Bits(pair.stream.Floats(n, fa, fb)), Bits(pair.plain->Floats(n, fa, fb))) << b;
      }
    }
  });
}

TEST_P(Recursive, RandomSplits) {
  const uint32_t seed = std::random_device()();
  SCOPED_TRACE("random seed " + std::to_string(seed));
  std::mt19937 random(seed);
  OnEveryLevel([&] {
    for (int round = 0; round < 40; ++round) {
      Pair pair(GetParam(), {uint32_t(random()), uint32_t(random()), uint32_t(random()),
                             uint32_t(random()), uint32_t(random()), uint32_t(random())});
      const int most = 1 << (random() % 12);
      for (int drawn = 0; drawn < 4000;) {
        const int n = 1 + random() % most;
        switch (random() % 3) {
          case 0:
            ASSERT_EQ(pair.stream.Words(n), pair.plain->Words(n)) << n;
            break;
          case 1:
            ASSERT_EQ(pair.stream.Doubles(n), pair.plain->Doubles(n)) << n;
            break;
          default:
            ASSERT_EQ(pair.stream.Floats(n, -1), pair.plain->Floats(n, -1)) << n;
        }
        drawn += n;
      }
      pair.ExpectSameState();
    }
  });
}

TEST_P(Recursive, NothingForCountsOfZeroOrLess) {
  const Generator& g = GetParam();
  OnEveryLevel([&] {
    Stream stream(g, kSeed);
    const std::string before = stream.State();
    for (int32_t n : {0, -1, INT32_MIN}) {
      ExpectDraw<uint32_t>({}, 0, [&](auto* r) { return g.ibrng(stream.get(), n, r); });
      ExpectDraw<double>({}, 0, [&](auto* r) { return g.dbrng(stream.get(), n, r, 0, 1); });
      ExpectDraw<float>({}, 0, [&](auto* r) { return g.sbrng(stream.get(), n, r, 0, 1); });
    }
    EXPECT_EQ(stream.State(), before);
  });
}

TEST_P(Recursive, Refusals) {
  const Generator& g = GetParam();
  Stream stream(g, kSeed);
  const std::string before = stream.State();
  EXPECT_EQ(stream.Leapfrog(2, 1), QUO_LEAPFROG_UNSUPPORTED);
  for (int32_t method : {-1, 3, INT32_MAX}) {
    EXPECT_EQ(stream.Init(method, 2, kSeed.data()), QUO_BAD_METHOD);
  }
  if (g.id == QUO_BRNG_R250) {
    EXPECT_EQ(stream.SkipAhead(5), QUO_SKIPAHEAD_UNSUPPORTED);
  }
  EXPECT_EQ(stream.State(), before);
}

// A registered row: created by identifier, old and new, and copied.
TEST_P(Recursive, ThroughTheRegistry) {
  const Generator& g = GetParam();
  for (int32_t id : {g.id, (g.id >> 20) - 1}) {
    StreamState* stream = nullptr;
    StreamState* copy = nullptr;
    ASSERT_EQ(__quoNewStreamEx(&stream, id, 6, kSeed.data()), QUO_OK);
    Pair pair(g, kSeed);
    uint32_t w[300];
    ASSERT_EQ(g.ibrng(stream, 300, w), QUO_OK);
    EXPECT_EQ(std::vector<uint32_t>(w, w + 300), pair.plain->Words(300));
    ASSERT_EQ(__quoNewStreamEx(&copy, id, 0, nullptr), QUO_OK);
    ASSERT_EQ(__quoCopyStreamState(copy, stream), QUO_OK);
    ASSERT_EQ(g.ibrng(copy, 300, w), QUO_OK);
    EXPECT_EQ(std::vector<uint32_t>(w, w + 300), pair.plain->Words(300));
    __quoDeleteStream(&stream);
    __quoDeleteStream(&copy);
  }
}

// ---- R250. ----

TEST(R250Seeds, OneWordOr250) {
  const Generator g = R250();
  std::vector<uint32_t> words(251);
  std::mt19937 random(1);
  for (uint32_t& w : words) w = static_cast<uint32_t>(random());
  const auto first = [&](size_t n) {
    return std::vector<uint32_t>(words.begin(), words.begin() + n);
  };
  for (size_t n : {0, 1, 2, 249, 250, 251}) {
    SCOPED_TRACE(n);
    Pair(g, first(n)).ExpectSameState();
    EXPECT_EQ(StateWords(Stream(g, first(n)))[250], 0u);
    EXPECT_EQ(StateWords(Stream(g, first(n)))[251], 103u);
  }
  EXPECT_EQ(Stream(g, first(249)).State(), Stream(g, first(1)).State());
  EXPECT_EQ(Stream(g, first(251)).State(), Stream(g, first(250)).State());
  EXPECT_EQ(Stream(g, {0}).State(), Stream(g, {1}).State());
  EXPECT_EQ(Stream(g, {}).State(), Stream(g, {1}).State());
  Stream negative(g, {7});
  negative.Init(QUO_INIT_STANDARD, INT32_MIN, words.data());
  EXPECT_EQ(negative.State(), Stream(g, {1}).State());
  // No word is conditioned, not even when all are zero: then the sequence is zero.
  EXPECT_EQ(Stream(g, std::vector<uint32_t>(250)).Words(600), std::vector<uint32_t>(600));
}

// The words of the diagonal make the bits of a word independent.
TEST(R250Seeds, FullRank) {
  for (uint32_t s : {1u, 2u, 0x80000000u, 12345u}) {
    const std::vector<uint32_t> x = StateWords(Stream(R250(), {s}));
    uint32_t basis[32] = {};
    int rank = 0;
    for (int t = 0; t < 32; ++t) {
      uint32_t w = x[3 + 7 * t];
      for (int bit = 31; bit >= 0 && w != 0; --bit) {
        if (!(w >> bit & 1)) continue;
        if (basis[bit] == 0) {
          basis[bit] = w;
          ++rank;
          break;
        }
        w ^= basis[bit];
      }
    }
    EXPECT_EQ(rank, 32);
  }
}

// Requests below 250 leave words and indices as single steps do: a file of the stream holds them.
TEST(R250States, AfterShortRequests) {
  const Generator g = R250();
  OnEveryLevel([&] {
    Stream stream(g, kSeed);
    PlainR250 plain(kSeed);
    for (int n : {1, 15, 16, 17, 47, 100, 53, 1, 146, 147, 148, 249, 248, 2, 200}) {
      for (int output = 0; output < 3; ++output) {
        if (output == 0) stream.Words(n);
        if (output == 1) stream.Doubles(n);
        if (output == 2) stream.Floats(n);
        plain.Words(n);
        const std::vector<uint32_t> words = StateWords(stream);
        ASSERT_EQ(words[250], plain.i) << n;
        ASSERT_EQ(words[251], plain.j) << n;
        ASSERT_TRUE(std::equal(plain.x.begin(), plain.x.end(), words.begin())) << n;
      }
    }
  });
}

// The indices come with the state from files and copies; whatever they are counts modulo 250.
TEST(R250ForeignStates, AnyIndices) {
  const Generator g = R250();
  OnEveryLevel([&] {
    for (int64_t i :
         {int64_t{0}, int64_t{1}, int64_t{146}, int64_t{147}, int64_t{249}, int64_t{250},
          int64_t{1000}, int64_t{-1}, int64_t{-250}, int64_t{INT32_MAX}, int64_t{INT32_MIN}}) {
      for (int64_t j : {i + 103, i + 103 - 250, i + 353, i, i + 1, int64_t{0}, int64_t{102},
                        int64_t{-1}, int64_t{INT32_MAX}, int64_t{INT32_MIN}}) {
        if (j != static_cast<int32_t>(j)) continue;
        for (int n : {1, 20, 300, 1100}) {
          Pair pair(g, kSeed);
          std::vector<uint32_t> words = StateWords(pair.stream);
          words[250] = static_cast<uint32_t>(i);
          words[251] = static_cast<uint32_t>(j);
          SetWords(pair.stream, words);
          auto& plain = dynamic_cast<PlainR250&>(*pair.plain);
          plain.i = static_cast<size_t>((i % 250 + 250) % 250);
          plain.j = static_cast<size_t>((j % 250 + 250) % 250);
          SCOPED_TRACE(std::to_string(i) + " " + std::to_string(j) + " " + std::to_string(n));
          ASSERT_EQ(pair.stream.Words(n), plain.Words(n));
          ASSERT_EQ(pair.stream.Doubles(n), plain.Doubles(n));
          ASSERT_EQ(pair.stream.Floats(n, 1, 2), plain.Floats(n, 1, 2));
          pair.ExpectSameState();
        }
      }
    }
  });
}

// ---- MRG32K3A. ----

// The example of the published RngStreams package, P. L'Ecuyer, R. Simard, E. J. Chen, W. D. Kelton
// (2002): from 12345 six times the first uniforms, there z/(m1 + 1), and the state 2^76 steps on.
TEST(Mrg32k3aPublished, FirstUniformsAndSubstream) {
  const Generator g = Mrg32k3a();
  const std::vector<uint32_t> seed(6, 12345);
  const double published[] = {0.127011, 0.318528, 0.309186, 0.825847, 0.221630, 0.533395};
  OnEveryLevel([&] {
    const std::vector<uint32_t> words = Stream(g, seed).Words(100);
    for (int k = 0; k < 6; ++k) EXPECT_NEAR(words[k] / 4294967088.0, published[k], 5e-7);
  });
  Stream stream(g, seed);
  for (int k = 0; k < 1 << 12; ++k) {
    stream.SkipAhead(UINT64_MAX);
    stream.SkipAhead(1);
  }
  EXPECT_EQ(StateWords(stream), (std::vector<uint32_t>{870504860, 2641697727, 884013853, 339352413,
                                                       2374306706, 3651603887}));
}

TEST(Mrg32k3aSeeds, EveryCountAndRange) {
  const Generator g = Mrg32k3a();
  std::vector<uint32_t> seed;
  for (uint32_t k = 0; k < 8; seed.push_back(1000 + k++)) {
    Pair pair(g, seed);
    pair.ExpectSameState();
  }
  const auto state = [&](const std::vector<uint32_t>& s) { return StateWords(Stream(g, s)); };
  const uint32_t m1 = 4294967087, m2 = 4294944443;
  using W = std::vector<uint32_t>;
  EXPECT_EQ(state({}), (W{1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(state({7, 8}), (W{7, 8, 1, 1, 1, 1}));
  EXPECT_EQ(state({0, 0, 0, 0, 0, 0}), (W{1, 0, 0, 1, 0, 0}));
  EXPECT_EQ(state({m1, m1, m1, m2, m2, m2}), (W{1, 0, 0, 1, 0, 0}));
  EXPECT_EQ(state({m1, m1 + 1, m1 - 1, m2, m2 + 1, m2 - 1}), (W{0, 1, m1 - 1, 0, 1, m2 - 1}));
  EXPECT_EQ(state({m2, 0, 0, m1, 0, 0}), (W{m2, 0, 0, m1 - m2, 0, 0}));
  EXPECT_EQ(state(W(6, UINT32_MAX)), (W{208, 208, 208, 22852, 22852, 22852}));
  Stream negative(g, {7});
  negative.Init(QUO_INIT_STANDARD, INT32_MIN, kSeed.data());
  EXPECT_EQ(StateWords(negative), (W{1, 1, 1, 1, 1, 1}));
}

// Components at the ends of their ranges, where quotients are nearest to ties and differences
// change sign.
TEST(Mrg32k3aRange, ExtremeStates) {
  const Generator g = Mrg32k3a();
  const uint32_t m1 = 4294967087, m2 = 4294944443;
  const uint32_t xs[] = {0, 1, m1 / 2, m1 / 2 + 1, m1 - 1},
                 ys[] = {0, 1, m2 / 2, m2 / 2 + 1, m2 - 1};
  OnEveryLevel([&] {
    for (int code = 0; code < 5 * 5 * 5 * 5; ++code) {
      const uint32_t x0 = xs[code % 5], x1 = xs[code / 5 % 5];
      const uint32_t y0 = ys[code / 25 % 5], y2 = ys[code / 125];
      Pair pair(g, {x0, x1, 1, y0, 1, y2});
      ASSERT_EQ(pair.stream.Words(60), pair.plain->Words(60)) << code;
      ASSERT_EQ(pair.stream.Doubles(60), pair.plain->Doubles(60)) << code;
      pair.ExpectSameState();
    }
    // p1 = p2 = 0, and p1 = 0 with p2 = 1: the least output and the greatest.
    EXPECT_EQ(Stream(g, {0, 0, 1, 0, 1, 0}).Doubles(60)[0], 0);
    const uint32_t inverse = static_cast<uint32_t>(PowMod(527612, m2 - 2, m2));
    EXPECT_EQ(Stream(g, {0, 0, 1, 0, 1, inverse}).Words(60)[0], m1 - 1);
    EXPECT_LT(Stream(g, {0, 0, 1, 0, 1, inverse}).Doubles(60)[0], 1);
  });
}

// Words at or above the moduli, from a file or a copy, are their residues.
TEST(Mrg32k3aForeignStates, WordsAboveTheModuli) {
  const Generator g = Mrg32k3a();
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    std::vector<uint32_t> words(6), residues(6);
    for (size_t k = 0; k < 6; ++k) {
      const uint32_t m = static_cast<uint32_t>(kModuli[k / 3]);
      words[k] = random() % 3 == 0 ? static_cast<uint32_t>(random()) : m + random() % (0 - m);
      residues[k] = words[k] % m;
    }
    OnEveryLevel([&] {
      for (int n : {1, 2, 3, 23, 24, 100}) {
        Stream raw(g, {}), reduced(g, {});
        SetWords(raw, words);
        SetWords(reduced, residues);
        ASSERT_EQ(raw.Words(n), reduced.Words(n)) << n;
        ASSERT_EQ(raw.Words(60), reduced.Words(60)) << n;
        ASSERT_EQ(raw.State(), reduced.State());
        SetWords(raw, words);
        SetWords(reduced, residues);
        raw.SkipAhead(n);
        reduced.SkipAhead(n);
        ASSERT_EQ(raw.State(), reduced.State());
      }
    });
  }
}

TEST(Mrg32k3aSkipAhead, EqualsDiscarding) {
  const Generator g = Mrg32k3a();
  for (int count : {0, 1, 2, 3, 4, 31, 32, 1000, 99999}) {
    Stream skipped(g, kSeed);
    Pair drawn(g, kSeed);
    EXPECT_EQ(skipped.SkipAhead(count), QUO_OK);
    drawn.plain->Words(count);
    EXPECT_EQ(StateWords(skipped), dynamic_cast<PlainMrg&>(*drawn.plain).State()) << count;
    EXPECT_EQ(skipped.Words(100), drawn.plain->Words(100)) << count;
  }
}

TEST(Mrg32k3aSkipAhead, Composes) {
  const Generator g = Mrg32k3a();
  std::mt19937_64 random(5);
  for (uint64_t count : {UINT64_MAX, UINT64_MAX - 1, uint64_t{1} << 63, uint64_t{1} << 32,
                         uint64_t{random()}, uint64_t{random()}}) {
    Stream at_once(g, kSeed), in_parts(g, kSeed);
    const uint64_t part = random() % (count - 100);
    at_once.SkipAhead(count);
    in_parts.SkipAhead(part);
    in_parts.Words(100);
    in_parts.SkipAhead(count - part - 100);
    EXPECT_EQ(at_once.State(), in_parts.State()) << count << " " << part;
  }
}

using Matrix = std::array<std::array<uint64_t, 3>, 3>;
Matrix Times(const Matrix& a, const Matrix& b, uint64_t m) {
  Matrix c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      Wide sum = 0;
      for (int k = 0; k < 3; ++k) sum += Wide{a[i][k]} * b[k][j];
      c[i][j] = static_cast<uint64_t>(sum % m);
    }
  }
  return c;
}

// The vector power against square and multiply on whole matrices.
TEST(Vect3PowMod, MatchesMatrices) {
  std::mt19937 random(7);
  const uint64_t exponents[] = {0, 1, 2, 3, 64, 65537, 0xFEDCBA9876543210, UINT64_MAX};
  for (uint32_t m : {1u, 2u, 3u, 65536u, 0x80000000u, 4294967087u, 4294944443u, UINT32_MAX}) {
    for (uint64_t e : exponents) {
      uint32_t row[3], w[3];
      for (uint32_t& c : row) c = static_cast<uint32_t>(random() % m);
      for (uint32_t& v : w) v = static_cast<uint32_t>(random());
      const Matrix step = {{{0, 1, 0}, {0, 0, 1}, {row[2], row[1], row[0]}}};
      Matrix power = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
      for (int bit = 63; bit >= 0; --bit) {
        power = Times(power, power, m);
        if (e >> bit & 1) power = Times(power, step, m);
      }
      uint32_t expected[3];
      for (int i = 0; i < 3; ++i) {
        Wide sum = 0;
        for (int k = 0; k < 3; ++k) sum += Wide{power[i][k]} * w[k];
        expected[i] = static_cast<uint32_t>(sum % m);
      }
      __quoiVect3PowMod(w, row, e, m);
      for (int i = 0; i < 3; ++i) EXPECT_EQ(w[i], expected[i]) << m << " " << e;
    }
  }
}

}  // namespace
}  // namespace quo::test
