// Numbers in and out: text, columns, .npy.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "pexquo/pex.h"
#include "tests/cli/program.h"

namespace cli_test {
namespace {

class FormatTest : public ProgramTest {};

// Abs is exact, so what comes out is what was read.
TEST_F(FormatTest, ReadsTheFormsOfANumber) {
  const struct {
    const char *text, *written;
  } kCases[] = {
      {"1", "1"},
      {"+2.5", "2.5"},
      {"  3e2\t", "300"},
      {"4 # four", "4"},
      {"5#", "5"},
      {"0x1.8p1", "3"},
      {"inf", "inf"},
      {"-Infinity", "inf"},
      {"NaN", "nan"},
      {"-nan", "nan"},
      {".1", "0.1"},
      {"-0", "0"},
      {"4.9e-324", "5e-324"},
      {"1e-400", "0"},
      {"1.7976931348623157e308", "1.7976931348623157e+308"},
      {"9007199254740993", "9007199254740992"},
      {"0.1000000000000000055511151231257827021181583404541015625", "0.1"},
  };
  std::string input = "\xEF\xBB\xBF# numbers\r\n\n   \n", expected;
  for (const auto& c : kCases) {
    input += std::string(c.text) + (input.size() % 2 == 0 ? "\n" : "\r\n");
    expected += std::string(c.written) + "\n";
  }
  const Outcome outcome = Run("eval abs", input + "6");  // the last line has no end
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, expected + "6\n");
}

TEST_F(FormatTest, TextReadsBackToTheSameBits) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  std::vector<double> d(3000);
  std::vector<float> s(3000);
  for (double& x : d) x = std::abs(std::bit_cast<double>(random()));
  for (float& x : s) x = std::abs(std::bit_cast<float>(static_cast<uint32_t>(random())));
  for (double& x : d) x = std::isnan(x) ? 1 : x;
  for (float& x : s) x = std::isnan(x) ? 1 : x;
  WriteFile("d.npy", Npy("{'descr': '<f8', 'fortran_order': False, 'shape': (3000,), }", Bytes(d)));
  WriteFile("s.npy", Npy("{'descr': '<f4', 'fortran_order': False, 'shape': (3000,), }", Bytes(s)));
  ASSERT_EQ(Run("eval abs d.npy -o d.txt").status, 0);
  ASSERT_EQ(Run("eval abs d.txt -o d2.npy").status, 0);
  EXPECT_EQ(
      NpyData(ReadFile("d2.npy"), "{'descr': '<f8', 'fortran_order': False, 'shape': (3000,), }"),
      Bytes(d));
  ASSERT_EQ(Run("eval abs s.npy -o s.txt").status, 0);
  ASSERT_EQ(Run("eval abs s.txt --type s -o s2.npy").status, 0);
  EXPECT_EQ(
      NpyData(ReadFile("s2.npy"), "{'descr': '<f4', 'fortran_order': False, 'shape': (3000,), }"),
      Bytes(s));
}

// A decimal is rounded once to single precision, not by way of double.
TEST_F(FormatTest, SinglePrecisionTextIsRoundedOnce) {
  EXPECT_EQ(Run("eval abs --type s", "1.00000017881393432617187499\n").out, "1.0000001\n");
}

TEST_F(FormatTest, ReadsEveryNpyElementType) {
  const auto swapped = [](std::string bytes, size_t width) {
    for (size_t i = 0; i < bytes.size(); i += width) {
      std::reverse(bytes.begin() + static_cast<long>(i),
                   bytes.begin() + static_cast<long>(i + width));
    }
    return bytes;
  };
  const std::string f8 = Bytes<double>({1.5, -2, 1e300}), f4 = Bytes<float>({1.5, -2, 1e30f});
  const std::string i8 = Bytes<int64_t>({3, -4, INT64_MIN}),
                    i4 = Bytes<int32_t>({3, -4, INT32_MIN});
  const struct {
    const char* descr;
    std::string data;
    const char* written;
  } kCases[] = {
      {"<f8", f8, "1.5\n2\n1e+300\n"},
      {"=f8", f8, "1.5\n2\n1e+300\n"},
      {">f8", swapped(f8, 8), "1.5\n2\n1e+300\n"},
      {"<f4", f4, "1.5\n2\n1e+30\n"},
      {">f4", swapped(f4, 4), "1.5\n2\n1e+30\n"},
      {"<i8", i8, "3\n4\n9223372036854775808\n"},
      {">i8", swapped(i8, 8), "3\n4\n9223372036854775808\n"},
      {"<i4", i4, "3\n4\n2147483648\n"},
      {">i4", swapped(i4, 4), "3\n4\n2147483648\n"},
  };
  for (const auto& c : kCases) {
    for (const int version : {1, 2, 3}) {
      SCOPED_TRACE(std::string(c.descr) + " version " + std::to_string(version));
      const std::string file = Npy(
          "{'descr': '" + std::string(c.descr) + "', 'fortran_order': False, 'shape': (3,), }  \n",
          c.data, version);
      const Outcome outcome = Run("eval abs", file);  // recognised by its magic
      EXPECT_EQ(outcome.status, 0) << outcome.err;
      // Large integers print in the shortest form, which may be scientific.
      const auto got = Lines(outcome.out), expected = Lines(c.written);
      ASSERT_EQ(got.size(), expected.size());
      for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(std::stod(got[i]), std::stod(expected[i]));
    }
  }
}

// What is infinite in double precision is so in single, and no overflow.
TEST_F(FormatTest, SinglePrecisionTakesInfinities) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  const std::string file = Npy("{'descr': '<f8', 'fortran_order': False, 'shape': (3,), }",
                               Bytes<double>({kInf, -kInf, 3e38}));
  EXPECT_EQ(Run("eval abs --type s", file).out, "inf\ninf\n3e+38\n");
}

TEST_F(FormatTest, NpyKeepsShapeOrderAndPrecision) {
  constexpr char kManyDimensions[] =
      "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, "
      "1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, "
      "1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1), }";
  const std::string padded =  // as wide as other writers make it
      "{'descr': '<f8', 'fortran_order': False, 'shape': (2,), }" + std::string(300, ' ') + "\n";
  const struct {
    const char *function, *header, *written;
    size_t values;
  } kCases[] = {
      {"abs", padded.c_str(), "{'descr': '<f8', 'fortran_order': False, 'shape': (2,), }", 2},
      {"abs", "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 3), }",
       "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 3), }", 6},
      {"abs", "{'fortran_order':True,'shape':(2,3),'descr':\"<f4\"}",
       "{'descr': '<f4', 'fortran_order': True, 'shape': (2, 3), }", 6},
      {"abs", "{'descr': '<i4', 'fortran_order': False, 'shape': (2, 0, 3)}",
       "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 0, 3), }", 0},
      {"abs", "{'descr': '<f8', 'fortran_order': False, 'shape': ()}",
       "{'descr': '<f8', 'fortran_order': False, 'shape': (), }", 1},
      {"modf", "{'descr': '<f8', 'fortran_order': False, 'shape': (3,)}",
       "{'descr': '<f8', 'fortran_order': False, 'shape': (3, 2), }", 6},
      {"abs", kManyDimensions, kManyDimensions, 2},  // a header of more than 255 bytes
      {"modf", "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 2)}",
       "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 2, 2), }", 8},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.header);
    const bool single = std::string(c.header).find("<f4") != std::string::npos;
    const bool integer = std::string(c.header).find("<i4") != std::string::npos;
    const size_t elements = std::string(c.function) == "modf" ? c.values / 2 : c.values;
    WriteFile("in.npy", Npy(c.header, std::string(elements * (single || integer ? 4 : 8), '\0')));
    const Outcome outcome = Run(std::string("eval ") + c.function + " in.npy -o out.npy");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(NpyData(ReadFile("out.npy"), c.written),
              std::string(c.values * (single ? 4 : 8), '\0'));
  }
}

// The count of text is unknown until its end; a pipe cannot be patched.
TEST_F(FormatTest, TextToNpyOnStandardOutput) {
  const Outcome outcome = Run("eval modf --format npy", "2.5\n-3\n");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(NpyData(outcome.out, "{'descr': '<f8', 'fortran_order': False, 'shape': (2, 2), }"),
            Bytes<double>({2, 0.5, -3, -0.0}));
  EXPECT_EQ(NpyData(Run("eval abs --format npy", "# none\n").out,
                    "{'descr': '<f8', 'fortran_order': False, 'shape': (0,), }"),
            "");
  EXPECT_EQ(Run("eval modf", "2.5\n-3\n").out, "2\t0.5\n-3\t-0\n");
  EXPECT_EQ(Run("eval abs", "").out, "");
}

TEST_F(FormatTest, TakesAColumn) {
  WriteFile("plain.csv", "1,10\n2, 20 \n\n# note\n\"3\",\"30\"\n");
  WriteFile("head.csv", "day, \"price, \"\"ask\"\"\" ,price\nmon,1.5,2.5\ntue,3.5,4.5\n");
  WriteFile("tabs.txt", "t\tv\n1\t\t\n");
  WriteFile("gaps.txt", "t\tv\n\t5\n \t 6\n");
  WriteFile("signs.csv", "x#1,7\na,8 \n\"#\",9\n");
  WriteFile("blanks.txt", "  7   8 \n 9\t10\n");
  const struct {
    const char *arguments, *written;
  } kCases[] = {
      {"plain.csv --column 1", "1\n2\n3\n"},
      {"plain.csv --column 2", "10\n20\n30\n"},
      {"head.csv --column price", "2.5\n4.5\n"},
      {"head.csv --column 2", "1.5\n3.5\n"},
      {"tabs.txt --column t --delimiter tab", "1\n"},
      {"gaps.txt --column v --delimiter tab", "5\n6\n"},  // an empty field is one
      {"signs.csv --column 2", "7\n8\n9\n"},              // no comments behind a field
      {"blanks.txt --column 2 --delimiter space", "8\n10\n"},
      {"blanks.txt --column 1 --delimiter space", "7\n9\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments);
    const Outcome outcome = Run(std::string("eval abs ") + c.arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, c.written);
  }
}

}  // namespace
}  // namespace cli_test
