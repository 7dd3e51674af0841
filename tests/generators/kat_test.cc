// Known answers: the first outputs of streams, and digests of the first million, on every level.
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

#include "tests/generators/reference.h"

namespace quo::test {
namespace {

// CRC-32 as in zlib: polynomial 0xEDB88320 with the bits reversed.
uint32_t Crc32(const std::string& bytes) {
  static const auto table = [] {
    std::vector<uint32_t> t(256);
    for (uint32_t i = 0; i < 256; ++i) {
      t[i] = i;
      for (int k = 0; k < 8; ++k) t[i] = t[i] >> 1 ^ (t[i] & 1 ? 0xEDB88320 : 0);
    }
    return t;
  }();
  uint32_t crc = ~0u;
  for (unsigned char c : bytes) crc = table[(crc ^ c) & 0xFF] ^ crc >> 8;
  return ~crc;
}

double Number(std::istream& in) {
  std::string text;
  in >> text;
  return std::strtod(text.c_str(), nullptr);
}

template <typename T>
std::vector<T> Numbers(std::istream& in) {
  std::vector<T> r;
  for (std::string text; in >> text;)
    r.push_back(static_cast<T>(std::strtod(text.c_str(), nullptr)));
  return r;
}

void Check(const std::string& file, const Generator& generator) {
  SCOPED_TRACE(file);
  std::ifstream in(std::string(KAT_FOLDER) + "/" + file);
  ASSERT_TRUE(in) << "no such file";
  Generator g;
  std::unique_ptr<Stream> start;
  int checks = 0;
  for (std::string line; std::getline(in, line);) {
    SCOPED_TRACE(line.substr(0, 60));
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key == "stream") {
      int32_t id;
      words >> std::hex >> id >> std::dec;
      std::vector<uint32_t> seed;
      for (uint32_t s; words >> s;) seed.push_back(s);
      g = generator;
      g.id = id;
      start = std::make_unique<Stream>(g, seed);
    } else if (key == "leapfrog") {
      int32_t streams;
      uint32_t k;
      words >> streams >> k;
      start->Leapfrog(streams, k);
    } else if (key == "skip") {
      uint64_t count;
      words >> count;
      start->SkipAhead(count);
    } else if (key == "drawn") {
      int32_t count;
      words >> count;
      start->Words(count);
    } else if (key == "words") {
      std::vector<uint32_t> expected;
      for (uint64_t w; words >> w;) {
        expected.push_back(static_cast<uint32_t>(w));
        if (g.words == 2) expected.push_back(static_cast<uint32_t>(w >> 32));
      }
      OnEveryLevel([&] { EXPECT_EQ(Stream(*start).Words(10), expected); });
      ++checks;
    } else if (key == "doubles") {
      const double a = Number(words), b = Number(words);
      const auto expected = Numbers<double>(words);
      OnEveryLevel([&] { EXPECT_EQ(Stream(*start).Doubles(10, a, b), expected); });
      ++checks;
    } else if (key == "floats") {
      const float a = static_cast<float>(Number(words)), b = static_cast<float>(Number(words));
      const auto expected = Numbers<float>(words);
      OnEveryLevel([&] { EXPECT_EQ(Stream(*start).Floats(10, a, b), expected); });
      ++checks;
    } else if (key == "crc32") {
      std::string kind;
      int32_t n;
      uint32_t expected;
      words >> kind >> n >> std::hex >> expected;
      OnEveryLevel([&] {
        Stream s(*start);
        EXPECT_EQ(Crc32(kind == "words"     ? Bits(s.Words(n))
                        : kind == "doubles" ? Bits(s.Doubles(n))
                                            : Bits(s.Floats(n))),
                  expected);
      });
      ++checks;
    } else {
      EXPECT_TRUE(key.empty() || key == "#");
    }
  }
  EXPECT_GE(checks, 4 * 8);
}

TEST(KnownAnswers, Mcg31m1) { Check("mcg31m1.kat", Mcg31m1()); }
TEST(KnownAnswers, R250) { Check("r250.kat", R250()); }
TEST(KnownAnswers, Mrg32k3a) { Check("mrg32k3a.kat", Mrg32k3a()); }
TEST(KnownAnswers, Mcg59) { Check("mcg59.kat", Mcg59()); }
TEST(KnownAnswers, Wh) { Check("wh.kat", Wh(0)); }
TEST(KnownAnswers, Mt19937) { Check("mt19937.kat", Mt19937()); }
TEST(KnownAnswers, Mt2203) { Check("mt2203.kat", Mt2203(0)); }

}  // namespace
}  // namespace quo::test
