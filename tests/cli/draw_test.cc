// The command draw, against the recurrences of the generators written out.
#include <cmath>
#include <cstdint>

#include "catalogue/catalogue.h"
#include "pexquo/quo.h"
#include "tests/cli/program.h"

namespace cli_test {
namespace {

class DrawTest : public ProgramTest {
 protected:
  std::string Drawn(const std::string& arguments) {
    const Outcome outcome = Run("draw " + arguments);
    EXPECT_EQ(outcome.status, 0) << arguments << ": " << outcome.err;
    EXPECT_EQ(outcome.err, "") << arguments;
    return outcome.out;
  }
};

std::vector<uint32_t> Mcg31m1(uint32_t seed, size_t n) {
  std::vector<uint32_t> x = {seed};
  while (x.size() < n)
    x.push_back(static_cast<uint32_t>(uint64_t{1132489760} * x.back() % 2147483647));
  return x;
}
std::vector<uint64_t> Mcg59(uint64_t seed, size_t n) {
  std::vector<uint64_t> x = {seed};
  while (x.size() < n) x.push_back(x.back() * 302875106592253 & ((uint64_t{1} << 59) - 1));
  return x;
}

// 70000 numbers are more than one block.
constexpr size_t kMany = 70000;

TEST_F(DrawTest, RawBitsAreTheGeneratorsWords) {
  EXPECT_EQ(Drawn("uniformbits --generator mcg31m1 --seed 7 --count 70000 --format raw"),
            Bytes(Mcg31m1(7, kMany)));
  EXPECT_EQ(Drawn("uniformbits --generator mcg59 --seed 5 3 --count 7e4 --format raw"),
            Bytes(Mcg59(5 + (uint64_t{3} << 32), kMany)));
  // Without a seed the generator's own start.
  EXPECT_EQ(Drawn("uniformbits --generator MCG31M1 --count 3"), "1\n1132489760\n826537482\n");
  EXPECT_EQ(Drawn("uniformbits --generator mcg59 --count 2 --seed 0"), "1\n302875106592253\n");
  EXPECT_EQ(Drawn("uniformbits --generator wh --seed 1,2,3,4 --count 2"),
            "1\t2\t3\t4\n125\t234\t381\t504\n");
  EXPECT_EQ(NpyData(Drawn("uniformbits --generator wh --seed 1 2 --count 2 --format npy"),
                    "{'descr': '<u4', 'fortran_order': False, 'shape': (2, 4), }"),
            Bytes<uint32_t>({1, 2, 1, 1, 125, 234, 127, 126}));
  EXPECT_EQ(NpyData(Drawn("uniformbits --count 1 --seed 9 --format npy"),
                    "{'descr': '<u8', 'fortran_order': False, 'shape': (1,), }"),
            Bytes<uint64_t>({9}));
}

TEST_F(DrawTest, UniformsOfEveryType) {
  std::vector<double> d;
  std::vector<float> s;
  std::vector<int32_t> i;
  for (const uint64_t x : Mcg59(42, kMany)) {
    d.push_back(static_cast<double>(x) * (0x1p-59 * 3.5) - 1.5);
    s.push_back(static_cast<float>(d.back()));
    i.push_back(static_cast<int32_t>(std::floor(static_cast<double>(x) * (0x1p-59 * 13) - 3)));
  }
  const std::string start = "uniform --generator mcg59 --seed 42 --count 70000 --format ";
  EXPECT_EQ(Drawn(start + "raw --a -1.5 --b 2"), Bytes(d));
  EXPECT_EQ(Drawn(start + "raw --a -1.5 --b 2 --type s"), Bytes(s));
  EXPECT_EQ(Drawn(start + "raw --a -3 --b 10 --type i"), Bytes(i));
  EXPECT_EQ(NpyData(Drawn(start + "npy --a -3 --b 10 --type i"),
                    "{'descr': '<i4', 'fortran_order': False, 'shape': (70000,), }"),
            Bytes(i));
  std::vector<double> text;
  for (const std::string& line : Lines(Drawn(start + "text --a -1.5 --b 2"))) {
    text.push_back(std::stod(line));
  }
  EXPECT_EQ(text, d);
  // To a file, named so: .npy.
  EXPECT_EQ(Drawn("uniform --generator mcg59 --seed 42 --count 70000 --a -1.5 --b 2 -o u.npy"), "");
  EXPECT_EQ(
      NpyData(ReadFile("u.npy"), "{'descr': '<f8', 'fortran_order': False, 'shape': (70000,), }"),
      Bytes(d));
  EXPECT_EQ(Drawn("uniform --count 0"), "");
}

// The largest state, 2^59 - 1, counts as u = 1, and then (b - a) + a rounds to more than b.
TEST_F(DrawTest, AccurateKeepsTheBounds) {
  const std::string command =
      "uniform --generator mcg59 --seed 4294967295 134217727 --count 1 --a -0.84 --b 0.43";
  EXPECT_EQ(Drawn(command), "0.43000000000000005\n");
  EXPECT_EQ(Drawn(command + " --accurate"), "0.43\n");
}

TEST_F(DrawTest, IntegersEndBelowTheUpperBound) {
  EXPECT_EQ(Drawn("uniform --generator mcg59 --seed 4294967295 134217727 --count 1 --a 1 --b 7 "
                  "--type i"),
            "6\n");
}

TEST_F(DrawTest, SkipAndLeapfrogPickFromTheSameSequence) {
  for (const char* generator : {"mcg31m1", "mcg59", "wh:136"}) {
    SCOPED_TRACE(generator);
    const std::string start =
        std::string("uniform --seed 11 12 --generator ") + generator + " --count ";
    const auto all = Lines(Drawn(start + "60"));
    for (const int skip : {0, 1, 25}) {
      const auto rest = Lines(Drawn(start + "30 --skip " + std::to_string(skip)));
      EXPECT_EQ(rest, std::vector(all.begin() + skip, all.begin() + skip + 30));
    }
    for (const size_t k : {0, 1, 2}) {
      const std::string leapfrog = " --leapfrog " + std::to_string(k) + "/3";
      std::vector<std::string> every_third;
      for (size_t i = k; i < all.size(); i += 3) every_third.push_back(all[i]);
      EXPECT_EQ(Lines(Drawn(start + "20" + leapfrog)), every_third);
      // A skip counts the numbers of the part.
      every_third.erase(every_third.begin(), every_third.begin() + 4);
      EXPECT_EQ(Lines(Drawn(start + "16 --skip 4" + leapfrog)), every_third);
    }
  }
}

// A generator of points: one a row, of as many coordinates as asked for.
TEST_F(DrawTest, QuasiRandomPoints) {
  EXPECT_EQ(Drawn("sobol --dimension 3 --count 4"),
            "0.5\t0.5\t0.5\n0.75\t0.25\t0.25\n0.25\t0.75\t0.75\n0.375\t0.375\t0.625\n");
  EXPECT_EQ(Drawn("niederr --dimension 2 --count 2"), "0.5\t0.5\n0.75\t0.25\n");
  EXPECT_EQ(Drawn("Sobol --count 3"), "0.5\n0.75\n0.25\n");
  EXPECT_EQ(Drawn("sobol --dimension 2 --count 2 --a -1 --b 3 --type s"), "1\t1\n2\t0\n");
  EXPECT_EQ(Drawn("sobol --seed 1,0x3,1 --count 2"), "0.5\n0.25\n") << "a set of one's own";
  // 70000 points are several blocks.
  const std::string all = Drawn("niederr --dimension 318 --count 70000 --type s --format raw");
  EXPECT_EQ(all.size(), size_t{70000} * 318 * sizeof(float));
  EXPECT_EQ(Drawn("uniform --generator niederr --dimension 318 --count 3 --skip 69997 --type s "
                  "--format raw"),
            all.substr(all.size() - size_t{3} * 318 * sizeof(float)));
  EXPECT_EQ(NpyData(Drawn("uniformbits --generator 278 --dimension 2 --count 2 --format npy"),
                    "{'descr': '<u4', 'fortran_order': False, 'shape': (2, 2), }"),
            Bytes<uint32_t>({0x80000000, 0x80000000, 0xC0000000, 0x40000000}));
  // Coordinate 1 alone, and its numbers skipped.
  EXPECT_EQ(Drawn("sobol --dimension 3 --leapfrog 1/3 --skip 1 --count 3"), "0.25\n0.75\n0.375\n");
  // Saved and gone on with: the dimension comes with the state.
  Drawn("sobol --dimension 3 --count 2 --save points.quo");
  EXPECT_EQ(Drawn("sobol --load points.quo --count 1"), "0.25\t0.75\t0.75\n");
  EXPECT_EQ(Drawn("gaussian --load points.quo --count 1"),
            Drawn("gaussian --generator sobol --dimension 3 --skip 2 --count 1"));
  EXPECT_NE(Run("draw niederr --load points.quo --count 1").err.find("another generator"),
            std::string::npos);
  EXPECT_NE(Run("draw sobol --load points.quo --dimension 3 --count 1").err.find("--dimension out"),
            std::string::npos);
  // 2^64 - 1 points are more than any count of numbers, and a whole number of passages.
  EXPECT_EQ(Drawn("sobol --dimension 40 --count 2 --skip 18446744073709551615"),
            Drawn("sobol --dimension 40 --count 2"));
}

TEST_F(DrawTest, GeneratorsByNameNumberAndMember) {
  const std::vector<std::vector<std::string>> kSame = {
      {"mcg31m1", "MCG31M1", "0", "0x100000", "1048576", "mcg31m1:0"},
      {"mcg59", "mcg-59", "3", "0x400000"},
      {"wh", "wh:0", "4", "0x500000", "wh --member 0"},
      {"wh:17", "WH:0x11", "21", "0x500011", "wh --member 17", "0x500000:17"},
      {"wh:272", "276", "0x500110"},
  };
  std::vector<std::string> distinct;
  for (const auto& names : kSame) {
    const std::string first = Drawn("uniform --count 5 --seed 99 --generator " + names[0]);
    for (const std::string& name : names) {
      EXPECT_EQ(Drawn("uniform --count 5 --seed 99 --generator " + name), first) << name;
    }
    for (const std::string& other : distinct) EXPECT_NE(first, other);
    distinct.push_back(first);
  }
}

// Every catalogued distribution can be drawn from every catalogued generator, at every level.
TEST_F(DrawTest, EverythingListedCanBeDrawn) {
  for (const quo::Distribution& d : quo::Distributions()) {
    for (const quo::Generator& g : quo::Generators()) {
      const std::string command = std::string(d.name) + " --generator " + std::string(g.name) +
                                  " --seed 1 --count 1001 --format raw";
      const std::string first = Drawn(command);
      EXPECT_GE(first.size(), 1001 * sizeof(float));
      for (const std::string& line : Lines(Run("list levels").out)) {
        if (line.find(" yes") == std::string::npos) continue;
        EXPECT_EQ(Drawn(command + " --level " + line.substr(0, line.find(' '))), first) << line;
      }
    }
  }
}

// A saved stream goes on where it stood: the Box-Muller pair of an odd count is kept with it.
TEST_F(DrawTest, SavedStreamsGoOn) {
  for (const char* what : {"gaussian --method boxmuller2 --a 3 --sigma 0.5", "uniformbits",
                           "gaussianmv --mean 1,2,3 --factor 1,2,3,4,5,6 --storage packed",
                           "laplace --type s", "geometric --p 0.1", "gamma --alpha 0.3",
                           "poisson --lambda 50", "poissonv --mean 0.5,40,3000"}) {
    for (const char* generator : {"mt19937", "mt2203:7", "r250", "mcg59"}) {
      const std::string draw = std::string(what) + " --format raw --count ";
      const std::string start = std::string(" --seed 5 --generator ") + generator;
      const std::string all = Drawn(draw + "1001" + start);
      const std::string first = Drawn(draw + "77" + start + " --save s.quo");
      EXPECT_TRUE(first + Drawn(draw + "924 --load s.quo") == all) << what << " " << generator;
    }
  }
}

// The methods are the library's; the standard one takes one generator output for a number.
TEST_F(DrawTest, MethodsByName) {
  const std::string start = "gaussian --generator mcg59 --seed 9 --count 6 --method ";
  const std::string inverted = Drawn("gaussian --generator mcg59 --seed 9 --count 6");
  EXPECT_EQ(Drawn(start + "ICDF"), inverted);
  EXPECT_NE(Drawn(start + "boxmuller"), inverted);
  EXPECT_NE(Drawn(start + "boxmuller2"), Drawn(start + "boxmuller"));
  const auto lines = Lines(inverted);
  EXPECT_EQ(Lines(Drawn("gaussian --generator mcg59 --seed 9 --count 4 --skip 2")),
            std::vector(lines.begin() + 2, lines.end()));
}

TEST_F(DrawTest, SeedWordsEndWhereAnythingElseBegins) {
  const std::string expected = Drawn("uniform --seed 1,2 --count 2");
  EXPECT_EQ(Drawn("--seed 1 2 uniform --count 2"), expected);
  EXPECT_EQ(Drawn("--count 2 --seed 0x1 0x2 uniform"), expected);
  EXPECT_EQ(Drawn("uniform --count 2 --seed=1,2"), expected);
  WriteFile("words.sh", std::string(PEXQUO_PROGRAM) + " draw uniform --count 2 --seed ' 1 , 2'");
  FILE* const shell = popen(("sh " + folder_ + "/words.sh").c_str(), "r");
  ASSERT_NE(shell, nullptr);
  std::string out(expected.size() + 1, '\0');
  out.resize(fread(out.data(), 1, out.size(), shell));
  EXPECT_EQ(pclose(shell), 0);
  EXPECT_EQ(out, expected);
}

}  // namespace
}  // namespace cli_test
