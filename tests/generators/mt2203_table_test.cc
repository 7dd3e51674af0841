// The members of MT2203: what is promised of every row, and the arithmetic that finds and checks
// the rows against plain definitions.
#include <bitset>
#include <iterator>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "tests/generators/mt2203_rows.h"

namespace quo::mt2203 {

namespace {

constexpr int kGiven[] = {0, 1, 2, 511, 1023};
// The words of a member, by the definition.
struct Words {
  explicit Words(const Member& row) : row(row), mt(kWords) {}

  uint32_t Raw() {
    const uint32_t y = (mt[k] & 0xFFFFFFE0) | (mt[(k + 1) % kWords] & 0x1F);
    mt[k] = mt[(k + kMiddle) % kWords] ^ y >> 1 ^ (y & 1 ? row.a : 0);
    const uint32_t word = mt[k];
    k = (k + 1) % kWords;
    return word;
  }
  uint32_t Next() {
    uint32_t y = Raw();
    y ^= y >> 12;
    y ^= y << 7 & row.b;
    y ^= y << 15 & row.c;
    return y ^ y >> 18;
  }

  Member row;
  std::vector<uint32_t> mt;
  int k = 0;
};

// Whether the first v bits of k consecutive words are linearly independent functions of the state.
bool Independent(const Member& row, int v, int k) {
  using Bits = std::bitset<kDegree + 32>;
  if (v * k > kDegree) return false;
  std::vector<Bits> images;  // of the bits of the state
  for (int bit = 0; bit < kDegree; ++bit) {
    Words words(row);
    const int place = bit + kLowerBits;  // the lower bits of the first word do not count
    words.mt[place / 32] = uint32_t{1} << place % 32;
    Bits image;
    for (int i = 0; i < k; ++i) {
      const uint32_t word = words.Next();
      for (int j = 0; j < v; ++j) image[i * v + j] = word >> (31 - j) & 1;
    }
    images.push_back(image);
  }
  for (int column = 0; column < v * k; ++column) {
    size_t pivot = column;
    while (pivot < images.size() && !images[pivot][column]) ++pivot;
    if (pivot == images.size()) return false;
    std::swap(images[pivot], images[column]);
    for (size_t i = column + 1; i < images.size(); ++i) {
      if (images[i][column]) images[i] ^= images[column];
    }
  }
  return true;
}

TEST(Mt2203Table, GivenRows) {
  for (int member : kGiven) EXPECT_EQ(RowOf(member), Given(member));
}

TEST(Mt2203Table, FormOfTheRows) {
  std::set<uint32_t> identifiers;
  std::set<Poly> polynomials;
  for (int member = 0; member < kMembers; ++member) {
    const Member row = RowOf(member);
    const uint32_t id = row.a & 0xFFFF;
    EXPECT_TRUE(id % 2 == 1 && id < 4096) << "member " << member;
    EXPECT_TRUE(identifiers.insert(id).second) << "member " << member;
    EXPECT_TRUE(polynomials.insert(MakeTwister(row.a).characteristic).second) << member;
    EXPECT_EQ(row.a >> 31, 1u) << "member " << member;
    EXPECT_EQ(row.b & 0x7F, 0u) << "member " << member;
    EXPECT_EQ(row.c & 0x7FFF, 0u) << "member " << member;
  }
}

TEST(Mt2203Table, SomeRows) {
  for (int member : kGiven) ExpectGoodRow(member);
  for (int member = 3; member < kMembers; member += 85) ExpectGoodRow(member);
}

TEST(Mt2203Table, RowsFollowFromTheirNumbers) {
  for (int member : {4, 60}) EXPECT_EQ(RowOf(member), FindMember(member)) << member;
}

TEST(Mt2203Search, DimensionsAreThoseOfTheDefinition) {
  const Member row = *Given(511);
  const Dimensions k = ComputeDimensions(row.a, {row.b, row.c});
  for (int v : {1, 3, 5, 11, 17, 25, 32}) {
    EXPECT_TRUE(Independent(row, v, k[v - 1])) << v << " bits";
    EXPECT_FALSE(Independent(row, v, k[v - 1] + 1)) << v << " bits";
  }
}

TEST(Mt2203Search, CharacteristicPolynomialAnnihilatesTheBits) {
  std::mt19937 random(5);
  for (int member : {1, 700}) {
    Words words(RowOf(member));
    for (uint32_t& word : words.mt) word = random();
    const Poly p = MakeTwister(words.row.a).characteristic;
    ASSERT_EQ(Degree(p), kDegree);
    uint32_t sum[10] = {};
    std::vector<uint32_t> raw(kDegree + std::size(sum));
    for (uint32_t& word : raw) word = words.Raw();
    for (size_t shift = 0; shift < std::size(sum); ++shift) {
      for (int i = 0; i <= kDegree; ++i) sum[shift] ^= Coefficient(p, i) ? raw[i + shift] : 0;
      EXPECT_EQ(sum[shift], 0u) << "member " << member << ", word " << shift;
    }
  }
}

Poly Trinomial(int degree, int middle) {
  Poly p = {1};
  AddShifted({1}, middle, &p);
  AddShifted({1}, degree, &p);
  return p;
}

TEST(Mt2203Search, ReduciblePolynomials) {
  // No trinomial of this degree is irreducible but perhaps with t^2 (R. G. Swan, Pacific J. Math.
  // 12, 1962).
  for (int middle = 3; middle < 40; ++middle) {
    EXPECT_FALSE(IsIrreducible(Trinomial(kDegree, middle))) << "t^" << middle;
  }
  // Irreducible factors, none of a degree that the search for small factors reaches.
  const int factors[][2] = {{1279, 216}, {607, 105}, {127, 1}, {127, 7}, {63, 1}};
  Poly product = {1};
  for (const auto& [degree, middle] : factors) {
    Poly next = product;
    AddShifted(product, middle, &next);
    AddShifted(product, degree, &next);
    product = next;
  }
  ASSERT_EQ(Degree(product), kDegree);
  EXPECT_FALSE(IsIrreducible(product));
}

TEST(Mt2203Search, PortableProduct) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 100; ++round) {
    Poly p;
    for (uint64_t& limb : p) limb = random();
    const uint64_t q = round < 64 ? uint64_t{1} << round : random();
    std::vector<uint64_t> portable(kLimbs + 2), fast(kLimbs + 2);
    AddMultiplePortably(p.data(), kLimbs, q, portable.data());
    AddMultiple(p.data(), kLimbs, q, fast.data());
    EXPECT_EQ(portable, fast) << "q = " << q;
  }
}

}  // namespace
}  // namespace quo::mt2203
