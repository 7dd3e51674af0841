// MCG31M1, MCG59 and WH against their definitions: values, states, seeds, partitions.
#include <gtest/gtest.h>

#include <random>

#include "tests/generators/reference.h"

namespace quo::test {
namespace {

class Congruential : public testing::TestWithParam<Generator> {};
INSTANTIATE_TEST_SUITE_P(Generators, Congruential, testing::ValuesIn(Generators()),
                         [](const auto& info) {
                           return std::string(info.param.name) + "_" +
                                  std::to_string(info.param.id);
                         });

const std::vector<uint32_t> kSeed = {3141592653, 2718281828, 1414213562, 1732050807};

// Both streams after the same moves: seeded, leapfrogged, skipped.
struct Pair {
  Stream stream;
  Reference reference;
  explicit Pair(const Generator& g, const std::vector<uint32_t>& seed = kSeed)
      : stream(g, seed), reference(g, seed) {}
  void Leapfrog(int32_t streams, uint32_t k) {
    EXPECT_EQ(stream.Leapfrog(streams, k), QUO_OK);
    reference.Leapfrog(streams, k);
  }
  void SkipAhead(uint64_t count) {
    EXPECT_EQ(stream.SkipAhead(count), QUO_OK);
    reference.SkipAhead(count);
  }
  void ExpectSameState() {
    EXPECT_EQ(stream.State(), reference.State());
    EXPECT_TRUE(stream.RestUntouched());
  }
};

void ExpectAllOutputs(const Generator& g, Pair pair, int n, size_t shift, double a, double b) {
  StreamState* const s = pair.stream.get();
  ExpectDraw(pair.reference.Words(n), shift, [&](uint32_t* r) { return g.ibrng(s, n, r); });
  pair.ExpectSameState();
  ExpectDraw(pair.reference.Doubles(n), shift, [&](double* r) { return g.dbrng(s, n, r, 0, 1); });
  ExpectDraw(pair.reference.Doubles(n, a, b), shift,
             [&](double* r) { return g.dbrng(s, n, r, a, b); });
  pair.ExpectSameState();
  const float fa = static_cast<float>(a), fb = static_cast<float>(b);
  ExpectDraw(pair.reference.Floats(n), shift, [&](float* r) { return g.sbrng(s, n, r, 0, 1); });
  ExpectDraw(pair.reference.Floats(n, fa, fb), shift,
             [&](float* r) { return g.sbrng(s, n, r, fa, fb); });
  pair.ExpectSameState();
}

TEST_P(Congruential, EveryLengthAndPlace) {
  const Generator& g = GetParam();
  OnEveryLevel([&] {
    Pair plain(g), leapt(g);
    leapt.Leapfrog(7, 3);
    for (int n = 1; n <= 200; ++n) {
      ExpectAllOutputs(g, plain, n, n * 4 % 64, -3, 5);
      ExpectAllOutputs(g, leapt, n, n * 20 % 64, 1e10, -1e-3);
      if (HasFailure()) return;
    }
    ExpectAllOutputs(g, plain, 1000, 4, 0, 2);
    ExpectAllOutputs(g, leapt, 4099, 1, -1, 1);  // no element aligned
    ExpectAllOutputs(g, plain, 3, 1, -1, 1);
  });
}

TEST_P(Congruential, CountsOfZeroOrLess) {
  const Generator& g = GetParam();
  OnEveryLevel([&] {
    for (int32_t n : {0, -1, -5, INT32_MIN}) {
      Pair pair(g);
      StreamState* const s = pair.stream.get();
      const int written = g.writes_first ? 1 : 0;
      ExpectDraw(pair.reference.Words(written), 0, [&](uint32_t* r) { return g.ibrng(s, n, r); });
      pair.ExpectSameState();
      ExpectDraw(pair.reference.Doubles(written, 2, 3), 0,
                 [&](double* r) { return g.dbrng(s, n, r, 2, 3); });
      ExpectDraw(pair.reference.Floats(written, 2, 3), 0,
                 [&](float* r) { return g.sbrng(s, n, r, 2, 3); });
      pair.ExpectSameState();
    }
  });
}

TEST_P(Congruential, RandomSplits) {
  const Generator& g = GetParam();
  const uint32_t seed = std::random_device()();
  SCOPED_TRACE("random seed " + std::to_string(seed));
  std::mt19937 random(seed);
  OnEveryLevel([&] {
    for (int round = 0; round < 20; ++round) {
      Pair pair(g, {static_cast<uint32_t>(random()), static_cast<uint32_t>(random())});
      if (round % 2 == 1) pair.Leapfrog(random() % 1000, random());
      const int most = 1 << (random() % 9);
      for (int drawn = 0; drawn < 1000;) {
        const int n = 1 + random() % most;
        ASSERT_EQ(pair.stream.Words(n), pair.reference.Words(n)) << n;
        ASSERT_EQ(pair.stream.Doubles(n), pair.reference.Doubles(n)) << n;
        ASSERT_EQ(pair.stream.Floats(n, -1), pair.reference.Floats(n, -1)) << n;
        drawn += 3 * n;
      }
      pair.ExpectSameState();
    }
  });
}

// Interleaved, the s streams of a leapfrog are the single stream; so are those of a leapfrog of one
// of them.
TEST_P(Congruential, LeapfrogInterleaves) {
  const Generator& g = GetParam();
  for (int32_t streams : {1, 2, 3, 8, 33}) {
    std::vector<double> whole = Stream(g, kSeed).Doubles(40 * streams);
    for (int32_t k = 0; k < streams; ++k) {
      Stream part(g, kSeed);
      ASSERT_EQ(part.Leapfrog(streams, k), QUO_OK);
      Stream again = part;
      ASSERT_EQ(again.Leapfrog(5, 2), QUO_OK);
      const std::vector<double> r = part.Doubles(40), nested = again.Doubles(8);
      for (int i = 0; i < 40; ++i) {
        ASSERT_EQ(r[i], whole[i * streams + k]);
        if (i % 5 == 2) {
          ASSERT_EQ(nested[i / 5], r[i]);
        }
      }
    }
  }
  Stream stream(g, kSeed);
  const std::string before = stream.State();
  stream.Leapfrog(1, 0);
  EXPECT_EQ(stream.State(), before);
}

// Leapfrog takes any index, and large powers stay exact; the reference reduces by division.
TEST_P(Congruential, PartitionsMatchDefinition) {
  const Generator& g = GetParam();
  Pair pair(g);
  for (const auto& [streams, k] : {std::pair{2, 5u}, {INT32_MAX, UINT32_MAX}, {1000003, 0u}}) {
    pair.Leapfrog(streams, k);
    pair.ExpectSameState();
    for (uint64_t count : {uint64_t{0}, uint64_t{1}, uint64_t{1} << 32, UINT64_MAX}) {
      EXPECT_EQ(pair.stream.SkipAhead(count), QUO_OK);
      pair.reference.SkipAhead(count);
      pair.ExpectSameState();
    }
  }
}

TEST_P(Congruential, SkipAheadLaws) {
  const Generator& g = GetParam();
  for (bool leapt : {false, true}) {
    Stream base(g, kSeed);
    if (leapt) base.Leapfrog(6, 4);
    Stream none = base;
    none.SkipAhead(0);
    EXPECT_EQ(none.State(), base.State());
    for (int count : {1, 2, 31, 32, 33, 1000}) {
      Stream skipped = base, drawn = base;
      skipped.SkipAhead(count);
      drawn.Doubles(count);
      EXPECT_EQ(skipped.State(), drawn.State()) << count;
    }
    Stream at_once = base, in_parts = base;
    at_once.SkipAhead(UINT64_MAX);
    in_parts.SkipAhead(UINT64_MAX - 12345678901234567);
    in_parts.SkipAhead(12345678901234567);
    EXPECT_EQ(at_once.State(), in_parts.State());
  }
}

TEST_P(Congruential, Seeds) {
  const Generator& g = GetParam();
  const uint32_t m = static_cast<uint32_t>(g.start[0].m);
  const std::vector<std::vector<uint32_t>> seeds = {{},
                                                    {0},
                                                    {1},
                                                    {m},
                                                    {2 * m},
                                                    {m - 1},
                                                    {m + 1},
                                                    {UINT32_MAX},
                                                    {0, 0},
                                                    {5, UINT32_MAX},
                                                    {0, 0xF8000000},
                                                    {7, 0, 9},
                                                    {1, 2, 3, 4},
                                                    {1, 2, 3, 4, 5},
                                                    {1, 2, 3, 4, 5, 6, 7}};
  for (const auto& seed : seeds) {
    Pair pair(g, seed);
    pair.ExpectSameState();
  }
  // The moduli as seeds, each for its own component.
  std::vector<uint32_t> moduli;
  for (const Component& c : g.start) moduli.push_back(static_cast<uint32_t>(c.m));
  if (g.words != 2) {
    EXPECT_EQ(Pair(g, moduli).stream.State(), Pair(g, {1, 1, 1, 1}).stream.State());
  }
  // A negative number of seed words is none, but four for WH.
  Stream negative(g, {});
  EXPECT_EQ(negative.Init(QUO_INIT_STANDARD, -3, kSeed.data()), QUO_OK);
  EXPECT_EQ(negative.State(), (g.words == 4 ? Stream(g, kSeed) : Stream(g, {})).State());
}

TEST_P(Congruential, UnknownMethods) {
  Stream stream(GetParam(), kSeed);
  const std::string before = stream.State();
  for (int32_t method : {-1, 3, 4, INT32_MAX}) {
    EXPECT_EQ(stream.Init(method, 2, kSeed.data()), QUO_BAD_METHOD);
  }
  EXPECT_EQ(stream.State(), before);
}

// A copy between streams of different members or generators can leave any bits: the first output is
// what stands there, the others are residues of it.
TEST_P(Congruential, ForeignStates) {
  const Generator& g = GetParam();
  const uint32_t m = static_cast<uint32_t>(g.start[0].m);
  std::vector<std::pair<uint32_t, uint32_t>> words;  // low and high
  for (uint32_t x : {0u, 1u, m - 1, m, m + 1, 2 * m, ~0u - 1000, UINT32_MAX})
    words.push_back({x, x});
  words.push_back({0, 1u << 27});  // 2^59
  for (const auto& [x, high] : words) {
    for (uint32_t a : {0u, 1u, 1132489760u, m, m + 125, UINT32_MAX}) {
      std::string state(g.state_bytes, 0);
      for (size_t i = 0; i < g.state_bytes; i += 4) {
        std::memcpy(&state[i], i >= g.state_bytes / 2 ? &a : i % 8 == 4 ? &high : &x, 4);
      }
      for (uint32_t k = 0; k < 8; ++k) {
        Pair moved(g);
        moved.stream.SetState(state);
        moved.reference.SetState(state);
        moved.Leapfrog(3, k);
        moved.ExpectSameState();
        moved.stream.SetState(state);
        moved.reference.SetState(state);
        moved.SkipAhead(k);
        moved.ExpectSameState();
      }
      OnEveryLevel([&] {
        for (int n : {1, 2, 4, 100}) {
          Pair pair(g);
          pair.stream.SetState(state);
          pair.reference.SetState(state);
          EXPECT_EQ(Bits(pair.stream.Doubles(n)), Bits(pair.reference.Doubles(n)));
          pair.stream.SetState(state);
          pair.reference.SetState(state);
          EXPECT_EQ(pair.stream.Words(n), pair.reference.Words(n)) << x << " " << a << " " << n;
        }
      });
    }
  }
}

TEST(CongruentialPowers, MatchDivision) {
  const uint64_t exponents[] = {0, 1, 2, 3, 59, 65537, uint64_t{1} << 63, UINT64_MAX};
  for (uint64_t e : exponents) {
    for (uint32_t base : {0u, 1u, 2u, 1132489760u, 0x7FFFFFFEu, 0x7FFFFFFFu, 0x80000000u, ~0u}) {
      EXPECT_EQ(__quoiPowMod2P31M1(base, e), PowMod(base, e, 0x7FFFFFFF)) << base << "^" << e;
      for (uint32_t m : {2u, 3u, 16776971u, 4294967291u, ~0u}) {
        EXPECT_EQ(__quoiPowMod(base, e, m), PowMod(base % m, e, m)) << base << "^" << e;
      }
    }
    for (uint64_t base : {uint64_t{0}, uint64_t{2}, uint64_t{302875106592253}, UINT64_MAX}) {
      const uint64_t m = uint64_t{1} << 59;
      EXPECT_EQ(__quoiPowMod2P59(base, e), PowMod(base % m, e, m)) << base << "^" << e;
    }
  }
}

// 0 and 1 are out of reach: states run from 1 to m - 1.
TEST(CongruentialRange, Mcg31m1Ends) {
  const Generator g = Mcg31m1();
  EXPECT_EQ(Stream(g, {1}).Doubles(1)[0], 0x1.00000002p-31);
  EXPECT_EQ(Stream(g, {0x7FFFFFFE}).Doubles(5)[0], 1 - 0x1.00000002p-31);
  EXPECT_EQ(Stream(g, {1}).Words(3),
            (std::vector<uint32_t>{1, 1132489760,
                                   static_cast<uint32_t>(PowMod(1132489760, 2, 0x7FFFFFFF))}));
}

}  // namespace
}  // namespace quo::test
