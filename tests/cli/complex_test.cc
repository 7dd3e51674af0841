// Complex numbers in the command eval: text, .npy, the choice between real and complex functions.
#include <algorithm>
#include <complex>
#include <random>

#include "tests/cli/program.h"

namespace cli_test {
namespace {

class ComplexTest : public ProgramTest {
 protected:
  template <typename T>
  std::string NpyOf(const std::vector<T>& x) {
    const std::string width = std::to_string(sizeof(T));
    return Npy("{'descr': '<c" + width + "', 'fortran_order': False, 'shape': (" +
                   std::to_string(x.size()) + ",), }",
               Bytes(x));
  }
};

// Parts are small integers, so that sums and products are exact and a result is one value only.
template <typename T>
std::vector<std::complex<T>> Integers(std::mt19937& random, size_t count) {
  std::vector<std::complex<T>> x(count);
  std::uniform_int_distribution<int> value(-1000, 1000);
  for (auto& z : x) z = {static_cast<T>(value(random)), static_cast<T>(value(random))};
  return x;
}

TEST_F(ComplexTest, ArithmeticIsThatOfTheStandardLibrary) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto check = [&]<typename T>(T) {
    using Complex = std::complex<T>;
    const auto a = Integers<T>(random, 70000), b = Integers<T>(random, 70000);
    WriteFile("a.npy", NpyOf(a));
    WriteFile("b.npy", NpyOf(b));
    const std::string header = std::string("{'descr': '<c") + (sizeof(T) == 8 ? "16" : "8") +
                               "', 'fortran_order': False, 'shape': (70000,), }";
    const struct {
      const char* arguments;
      Complex (*value)(Complex, Complex);
    } kCases[] = {
        {"add a.npy b.npy", [](Complex x, Complex y) { return x + y; }},
        {"sub a.npy b.npy", [](Complex x, Complex y) { return x - y; }},
        {"mul a.npy b.npy", [](Complex x, Complex y) { return x * y; }},
        {"mul a.npy --tier ep --b -2,0.5", [](Complex x, Complex) { return x * Complex(-2, 0.5); }},
        {"mulbyconj a.npy b.npy --tier la", [](Complex x, Complex y) { return x * std::conj(y); }},
        {"conj a.npy", [](Complex x, Complex) { return std::conj(x); }},
    };
    for (const auto& c : kCases) {
      SCOPED_TRACE(c.arguments);
      std::vector<Complex> expected(a.size());
      for (size_t i = 0; i < a.size(); ++i) expected[i] = c.value(a[i], b[i]);
      const Outcome outcome = Run(std::string("eval ") + c.arguments + " -o r.npy");
      EXPECT_EQ(outcome.status, 0) << outcome.err;
      EXPECT_EQ(Values<Complex>(NpyData(ReadFile("r.npy"), header)), expected);
    }
  };
  check(double());
  check(float());
}

// Pythagorean triples have exact moduli; the result of abs and arg is real.
TEST_F(ComplexTest, RealResults) {
  WriteFile("z.npy",
            NpyOf<std::complex<double>>({{3, -4}, {-5, 12}, {-0x8p1000, -0xFp1000}, {0, 7}}));
  EXPECT_EQ(Run("eval abs z.npy").out, "5\n13\n1.8215646322166544e+302\n7\n");
  EXPECT_EQ(NpyData(Run("eval abs z.npy --format npy").out,
                    "{'descr': '<f8', 'fortran_order': False, 'shape': (4,), }"),
            Bytes<double>({5, 13, 0x11p1000, 7}));
  WriteFile("c.npy", NpyOf<std::complex<float>>({{1, 0}, {-2, 0}, {-0.0f, -3}}));
  EXPECT_EQ(Run("eval arg c.npy").out, "0\n3.1415927\n-1.5707964\n");
}

// No element is an error, and the status says so.
TEST_F(ComplexTest, SpecialElementsAreNotReported) {
  const Outcome outcome = Run("eval ln --type z", "0 0\n-inf 0\n1 0\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "-inf\t0\ninf\t3.141592653589793\n0\t0\n");
}

TEST_F(ComplexTest, TextForms) {
  WriteFile("two.csv", "1,-2\n 3 ,\t4\n");
  WriteFile("head.csv", "re,t,im\n1,9,-2\n\n# note\n\"3\",9,4\n");
  WriteFile("semicolon.txt", "x;y\n1;-2\n3;4\n");
  WriteFile("mixed.txt", "# re im\n1 -2 # first\n3\t 4\n");
  const struct {
    const char *arguments, *written;
  } kCases[] = {
      {"two.csv", "1\t2\n3\t-4\n"},
      {"two.csv --column 2,1", "-2\t-1\n4\t-3\n"},
      {"two.csv --column 1,1", "1\t-1\n3\t-3\n"},
      {"head.csv --column re,im", "1\t2\n3\t-4\n"},
      {"head.csv --column 1,3", "1\t2\n3\t-4\n"},
      {"head.csv --column im,1", "-2\t-1\n4\t-3\n"},
      {"semicolon.txt --column x,y --delimiter ;", "1\t2\n3\t-4\n"},
      {"mixed.txt", "1\t2\n3\t-4\n"},
      {"mixed.txt --type c", "1\t2\n3\t-4\n"},
      {"mixed.txt --column 1,2 --delimiter space", "1\t2\n3\t-4\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments);
    const Outcome outcome = Run(std::string("eval conj ") + c.arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, c.written);
  }
  EXPECT_EQ(Run("eval sub head.csv --type z --column re,im --with head.csv --with-column t,t").out,
            "-8\t-11\n-6\t-5\n");
  EXPECT_EQ(Run("eval sub two.csv mixed.txt --type z").out, "0\t0\n0\t0\n");
  EXPECT_EQ(Run("eval conj", "").out, "");
}

// What is written reads back to the same bits.
TEST_F(ComplexTest, TextReadsBack) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1, 1);
  std::vector<std::complex<double>> z(3000);
  for (auto& x : z) x = {std::ldexp(value(random), static_cast<int>(random() % 2000) - 1000), -0.0};
  WriteFile("z.npy", NpyOf(z));
  ASSERT_EQ(Run("eval conj z.npy -o z.txt").status, 0);
  ASSERT_EQ(Run("eval conj z.txt -o back.npy").status, 0);
  EXPECT_EQ(NpyData(ReadFile("back.npy"),
                    "{'descr': '<c16', 'fortran_order': False, 'shape': (3000,), }"),
            Bytes(z));
}

TEST_F(ComplexTest, NpyKeepsShapeOrderAndPrecision) {
  const std::vector<double> d = {1, -2, 3, 4, -5, 0x1p100};
  const std::vector<float> s = {1, -2, 3, 4, -5, 0x1p100f};
  const auto swapped = [](std::string bytes, size_t width) {
    for (auto i = bytes.begin(); i != bytes.end(); i += static_cast<long>(width)) {
      std::reverse(i, i + static_cast<long>(width));
    }
    return bytes;
  };
  const struct {
    const char *arguments, *header, *written;
    std::string data;
  } kCases[] = {
      {"conj", "{'descr': '<c16', 'fortran_order': False, 'shape': (3, 1), }",
       "{'descr': '<c16', 'fortran_order': False, 'shape': (3, 1), }", Bytes(d)},
      {"conj", "{'descr': '>c16', 'fortran_order': True, 'shape': (1, 3)}",
       "{'descr': '<c16', 'fortran_order': True, 'shape': (1, 3), }", swapped(Bytes(d), 8)},
      {"conj", "{'descr': '=c8', 'fortran_order': False, 'shape': (3,)}",
       "{'descr': '<c8', 'fortran_order': False, 'shape': (3,), }", Bytes(s)},
      {"conj", "{'descr': '>c8', 'fortran_order': False, 'shape': (3,)}",
       "{'descr': '<c8', 'fortran_order': False, 'shape': (3,), }", swapped(Bytes(s), 4)},
      {"conj --type z", "{'descr': '<c8', 'fortran_order': False, 'shape': (3,)}",
       "{'descr': '<c16', 'fortran_order': False, 'shape': (3,), }", Bytes(s)},
      {"conj --type c", "{'descr': '<c16', 'fortran_order': False, 'shape': (3,)}",
       "{'descr': '<c8', 'fortran_order': False, 'shape': (3,), }", Bytes(d)},
      {"conj", "{'descr': '<c8', 'fortran_order': False, 'shape': (2, 0)}",
       "{'descr': '<c8', 'fortran_order': False, 'shape': (2, 0), }", ""},
      {"cis", "{'descr': '<f4', 'fortran_order': True, 'shape': (2, 2)}",
       "{'descr': '<c8', 'fortran_order': True, 'shape': (2, 2), }", std::string(16, '\0')},
      {"cis", "{'descr': '<i4', 'fortran_order': False, 'shape': ()}",
       "{'descr': '<c16', 'fortran_order': False, 'shape': (), }", std::string(4, '\0')},
      {"cis --type c", "{'descr': '<f8', 'fortran_order': False, 'shape': (1,)}",
       "{'descr': '<c8', 'fortran_order': False, 'shape': (1,), }", std::string(8, '\0')},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.arguments + std::string(" ") + c.header);
    WriteFile("in.npy", Npy(c.header, c.data));
    const Outcome outcome = Run(std::string("eval ") + c.arguments + " in.npy -o out.npy");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::string data = NpyData(ReadFile("out.npy"), c.written);
    const bool single = std::string(c.written).find("c8") != std::string::npos;
    const auto check = [&]<typename T>(std::vector<T> expected) {
      for (size_t i = 1; i < expected.size(); i += 2) expected[i] = -expected[i];
      if (std::string(c.arguments).starts_with("cis")) {
        expected.clear();  // e^(0 i) = 1
        while (expected.size() < data.size() / sizeof(T)) {
          expected.push_back(1);
          expected.push_back(0);
        }
        EXPECT_FALSE(expected.empty());
      }
      EXPECT_EQ(Values<T>(data), c.data.empty() ? std::vector<T>() : expected);
    };
    single ? check(s) : check(d);
  }
}

// The type of the input chooses between the functions of one name.
TEST_F(ComplexTest, ChoosesTheFunctionByTheInput) {
  WriteFile("z.npy", NpyOf<std::complex<double>>({{-4, 0}, {0, 2}}));
  EXPECT_EQ(Run("eval sqrt z.npy").out, "0\t2\n1\t1\n");
  EXPECT_EQ(Run("eval sqrt", "4\n").out, "2\n");
  EXPECT_EQ(Run("eval sqrt --type z", "-4 -0\n").out, "0\t-2\n");
  EXPECT_EQ(Run("eval powx --type z --b 3,0", "2 0\n").out, "8\t0\n");
  EXPECT_EQ(Run("eval powx --b 3", "2\n").out, "8\n");
  // Made by the square root, which knows of no second argument.
  EXPECT_EQ(Run("eval powx --b 0.5", "-2\n").err,
            "pexquo: standard input: line 1, element 0: powx(-2, 0.5) = nan: argument outside the "
            "domain\n");
  EXPECT_EQ(Run("eval cis", "0\n").out, "1\t0\n");
}

}  // namespace
}  // namespace cli_test
