// Streams as values, their places and files, families, and streams as bit generators.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <ranges>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "pexquo/pexquo.hpp"

namespace {

using pexquo::family;
using pexquo::generator;
using pexquo::member;
using pexquo::stream;

static_assert(std::is_nothrow_move_constructible_v<stream> && std::copyable<stream>);
static_assert(!std::is_default_constructible_v<stream>);

std::vector<double> Draw(stream& s, std::size_t n) { return pexquo::uniform{}.sample(s, n); }

// What a C stream of the same seed words gives.
std::vector<double> DrawC(int32_t id, std::vector<std::uint32_t> words, int64_t n) {
  QuoStream* s = nullptr;
  EXPECT_EQ(quoNewStreamEx(&s, id, static_cast<int64_t>(words.size()), words.data()), 0);
  std::vector<double> r(static_cast<std::size_t>(n));
  EXPECT_EQ(quodRngUniform(0, s, n, r.data(), 0, 1), 0);
  quoDeleteStream(&s);
  return r;
}

TEST(Stream, GeneratorsMembersAndSeeds) {
  struct Case {
    stream s;
    int32_t id;
    std::vector<std::uint32_t> words;
  };
  std::vector<std::uint32_t> many(300);
  std::iota(many.begin(), many.end(), 1u);
  Case cases[] = {
      {{generator::mt19937, 7}, QUO_BRNG_MT19937, {7}},
      {{"MT19937", 7}, QUO_BRNG_MT19937, {7}},
      {{generator::mrg32k3a, {1, 2, 3, 4}}, QUO_BRNG_MRG32K3A, {1, 2, 3, 4}},
      {{generator::mrg32k3a, {}}, QUO_BRNG_MRG32K3A, {}},
      {{generator::mcg59, 0x300000002}, QUO_BRNG_MCG59, {2, 3}},
      {{generator::mcg31m1, std::uint64_t{5}}, QUO_BRNG_MCG31M1, {5}},
      {{generator::r250, many}, QUO_BRNG_R250, many},
      {{"wh", member{272}, 9}, QUO_BRNG_WH + 272, {9}},
      {{generator::mt2203, member{7}, {1, 2}}, QUO_BRNG_MT2203 + 7, {1, 2}},
  };
  for (Case& c : cases) EXPECT_EQ(Draw(c.s, 1000), DrawC(c.id, c.words, 1000)) << c.id;
  // Words in any range.
  std::uint32_t words[] = {1, 2};
  const std::array<std::uint32_t, 2> array = {1, 2};
  stream from_ranges[] = {{"mt2203", member{7}, words},
                          {"mt2203", member{7}, array},
                          {"mt2203", member{7}, std::span(words)},
                          {"mt2203", member{7}, std::span<std::uint32_t>(words)},
                          {"mt2203", member{7}, std::views::iota(1u, 3u)}};
  for (stream& s : from_ranges) EXPECT_EQ(Draw(s, 10), DrawC(cases[8].id, {1, 2}, 10));
  EXPECT_EQ(cases[8].s.kind(), generator::mt2203);
  EXPECT_EQ(cases[8].s.member_number(), 7);
  EXPECT_EQ(name(cases[7].s.kind()), "wh");
}

TEST(Stream, WhatDoesNotExistIsRefused) {
  EXPECT_THROW(stream("mt19938", 1), pexquo::argument_error);
  EXPECT_THROW(stream(generator::mt2203, member{1024}, 1), pexquo::argument_error);
  EXPECT_THROW(stream(generator::wh, member{-1}, 1), pexquo::argument_error);
  EXPECT_THROW(stream(generator::wh, member{1 << 20}, 1), pexquo::argument_error);
  EXPECT_THROW(stream(generator{0x7F00000}, 1), pexquo::argument_error);
  EXPECT_THROW(stream(generator::mt19937, -1), pexquo::argument_error);
  try {
    stream(generator::mt2203, member{1024}, 1);
  } catch (const pexquo::error& e) {
    EXPECT_EQ(e.where().line(), __LINE__ - 2);
    EXPECT_EQ(e.status(), QUO_INVALID_BRNG);
  }
}

TEST(Stream, CopiesGoOnAloneWithTheirPendingNumber) {
  const pexquo::normal pairs(0, 1, pexquo::normal_method::boxmuller2);
  stream a("mt19937", 1);
  (void)pairs.sample(a, 3);
  stream b = a;
  stream c("mcg59", 1);
  c = a;
  const auto expected = pairs.sample(a, 9);
  EXPECT_EQ(pairs.sample(b, 9), expected);
  EXPECT_EQ(pairs.sample(c, 9), expected);
  c = static_cast<const stream&>(c);
  EXPECT_EQ(Draw(c, 5), Draw(a, 5));
}

TEST(Stream, MovesLeaveNothing) {
  stream a("mrg32k3a", 1), same("mrg32k3a", 1);
  stream b = std::move(a);
  EXPECT_EQ(Draw(b, 10), Draw(same, 10));
  EXPECT_EQ(a.handle(), nullptr);                      // NOLINT
  EXPECT_THROW(Draw(a, 1), pexquo::stream_error);      // NOLINT
  EXPECT_THROW(stream copy(a), pexquo::stream_error);  // NOLINT
  std::vector<std::uint32_t> words(8);
  for (const unsigned threads : {1, 2}) {
    const pexquo::parallel cores(threads, 1);
    EXPECT_THROW(cores.fill(pexquo::uniform_bits{}, a, words), pexquo::stream_error);  // NOLINT
  }
  EXPECT_THROW(a.skip(1), pexquo::stream_error);            // NOLINT
  EXPECT_THROW(a.save("/dev/null"), pexquo::stream_error);  // NOLINT
  a = std::move(b);
  EXPECT_EQ(Draw(a, 10), Draw(same, 10));
  stream adopted = stream::adopt(a.release());
  EXPECT_EQ(Draw(adopted, 10), Draw(same, 10));
  stream other("wh", 1);
  other = std::move(adopted);                            // the old one of `other` is gone
  EXPECT_EQ(adopted.handle(), nullptr);                  // NOLINT
  EXPECT_THROW(Draw(adopted, 1), pexquo::stream_error);  // NOLINT
  stream& itself = other;
  other = std::move(itself);
  EXPECT_EQ(Draw(other, 10), Draw(same, 10));
}

// Of either numbering: files and C code may bring the older one.
TEST(Stream, KindAndMemberOfEveryIdentifier) {
  const struct {
    int32_t id;
    generator kind;
    int32_t member;
  } kCases[] = {
      {0, generator::mcg31m1, 0},
      {1, generator::r250, 0},
      {2, generator::mrg32k3a, 0},
      {3, generator::mcg59, 0},
      {4, generator::wh, 0},
      {5, generator::wh, 1},
      {276, generator::wh, 272},
      {277, generator::sobol, 0},
      {278, generator::niederr, 0},
      {QUO_BRNG_MCG31M1, generator::mcg31m1, 0},
      {QUO_BRNG_WH + 272, generator::wh, 272},
      {QUO_BRNG_MT2203 + 1023, generator::mt2203, 1023},
  };
  for (const auto& c : kCases) {
    QuoStream* handle = nullptr;
    ASSERT_EQ(quoNewStream(&handle, c.id, 1), 0) << c.id;
    const stream s = stream::adopt(handle);
    EXPECT_EQ(s.kind(), c.kind) << c.id;
    EXPECT_EQ(s.member_number(), c.member) << c.id;
  }
}

TEST(Stream, SkipAndLeapfrog) {
  stream whole("mcg31m1", 1), skipped(whole), even(whole), odd(whole);
  const auto x = Draw(whole, 1000);
  skipped.skip(990);
  EXPECT_EQ(Draw(skipped, 10), std::vector<double>(x.end() - 10, x.end()));
  even.leapfrog(0, 2);
  odd.leapfrog(1, 2);
  for (std::size_t i = 0; i < x.size(); ++i) {
    ASSERT_EQ(pexquo::uniform{}(i % 2 == 0 ? even : odd), x[i]);
  }
  EXPECT_TRUE(whole.can_skip());
  stream twister("mt19937", 1), untouched(twister);
  EXPECT_FALSE(twister.can_skip());
  EXPECT_THROW(twister.skip(1), pexquo::stream_error);
  EXPECT_THROW(twister.leapfrog(0, 2), pexquo::stream_error);
  EXPECT_THROW(whole.leapfrog(2, 2), pexquo::argument_error);
  EXPECT_THROW(whole.leapfrog(0, -1), pexquo::argument_error);
  EXPECT_EQ(Draw(twister, 10), Draw(untouched, 10));
}

TEST(Stream, FilesGoOnWhereTheStreamStood) {
  const auto path = std::filesystem::path(testing::TempDir()) / "cpp_stream_test.stream";
  const pexquo::normal pairs(0, 1, pexquo::normal_method::boxmuller2);
  stream s(generator::mt2203, member{3}, 1);
  (void)pairs.sample(s, 5);
  s.save(path);
  stream loaded = stream::load(path);
  EXPECT_EQ(loaded.member_number(), 3);
  EXPECT_EQ(pairs.sample(loaded, 100), pairs.sample(s, 100));
  std::ofstream(path) << "not a stream at all, and long enough";
  try {
    (void)stream::load(path);
    FAIL();
  } catch (const pexquo::file_error& e) {
    EXPECT_EQ(e.status(), QUO_BAD_FILE);
    EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos);
  }
  std::filesystem::remove(path);
  EXPECT_THROW((void)stream::load(path), pexquo::file_error);
  EXPECT_THROW(s.save(path / "no" / "folder"), pexquo::file_error);
}

TEST(Family, MembersAreTheStreamsOfTheirNumbers) {
  const family twisters(generator::mt2203, {4, 5});
  EXPECT_EQ(twisters.size(), 1024u);
  EXPECT_EQ(family("wh", 1).size(), 273u);
  EXPECT_EQ(family("mt19937", 1).size(), 1u);
  stream seventh = twisters[7], same(generator::mt2203, member{7}, {4, 5}), eighth = twisters[8];
  const auto x = Draw(seventh, 10);
  EXPECT_EQ(x, Draw(same, 10));
  EXPECT_NE(x, Draw(eighth, 10));
  EXPECT_THROW((void)twisters[1024], pexquo::argument_error);
}

// ---- Bit generators. ----

template <typename G>
class BitGenerator : public testing::Test {};
template <generator G>
using On = std::integral_constant<generator, G>;
using Generators = testing::Types<On<generator::mcg31m1>, On<generator::r250>,
                                  On<generator::mrg32k3a>, On<generator::mcg59>, On<generator::wh>,
                                  On<generator::mt19937>, On<generator::mt2203>>;
TYPED_TEST_SUITE(BitGenerator, Generators);

TYPED_TEST(BitGenerator, WordsAreThoseOfTheUniformsAndServeTheStandardLibrary) {
  constexpr generator kG = TypeParam::value;
  using Bits = pexquo::bit_generator<kG>;
  static_assert(std::uniform_random_bit_generator<Bits> && Bits::min() < Bits::max());
  Bits bits(3);
  stream s(kG, 3);
  // The uniforms of the stream are its words over their range, up to rounding and the word's width.
  const double range = static_cast<double>(Bits::max()) + 1;
  for (const double u : Draw(s, 1000)) {
    const std::uint32_t word = bits();
    ASSERT_TRUE(word >= Bits::min() && word <= Bits::max());
    ASSERT_NEAR(word / range, u, 1.001 / range);
  }
  std::vector<int> deck(52);
  std::iota(deck.begin(), deck.end(), 0);
  std::shuffle(deck.begin(), deck.end(), bits);
  EXPECT_FALSE(std::is_sorted(deck.begin(), deck.end()));
  EXPECT_EQ(std::accumulate(deck.begin(), deck.end(), 0), 51 * 52 / 2);
  std::normal_distribution<> normal;
  double sum = 0, squares = 0;
  for (int i = 0; i < 10000; ++i) {
    const double x = normal(bits);
    sum += x;
    squares += x * x;
  }
  EXPECT_LT(std::abs(sum), 4 * 100);
  EXPECT_NEAR(squares / 10000, 1, 4 * 0.0142);
}

// The words that there are, from the least to the greatest: a standard distribution divides by
// their number.
static_assert(pexquo::bit_generator<generator::mcg31m1>::min() == 1 &&
              pexquo::bit_generator<generator::mcg31m1>::max() == 2147483646);
static_assert(pexquo::bit_generator<generator::mrg32k3a>::min() == 0 &&
              pexquo::bit_generator<generator::mrg32k3a>::max() == 4294967087 - 1);
static_assert(pexquo::bit_generator<generator::wh>::max() == 0xFFFFFF);
static_assert(pexquo::bit_generator<generator::mcg59>::max() == 0xFFFFFFFF);

TYPED_TEST(BitGenerator, CopiesAndDiscards) {
  using Bits = pexquo::bit_generator<TypeParam::value>;
  Bits a(3);
  for (const unsigned long long n : {0, 1, 255, 256, 257, 300, 2000}) {
    Bits b(a), c(a);
    for (unsigned long long i = 0; i < n; ++i) (void)b();
    c.discard(n);
    for (int i = 0; i < 600; ++i) ASSERT_EQ(b(), c()) << n;
    (void)a();
  }
}

TEST(BitGeneratorOf, StreamsOfAnotherGeneratorAreRefused) {
  const stream s(generator::mt2203, member{5}, 1);
  pexquo::bit_generator<generator::mt2203> bits(s);
  EXPECT_THROW(pexquo::bit_generator<generator::mt19937>{s}, pexquo::argument_error);
}

}  // namespace
