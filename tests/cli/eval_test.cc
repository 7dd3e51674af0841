// The commands eval and list: results, reports of special elements, tiers, levels.
#include <cmath>
#include <random>

#include "catalogue/catalogue.h"
#include "pexquo/pex.h"
#include "tests/cli/program.h"

namespace cli_test {
namespace {

class EvalTest : public ProgramTest {
 protected:
  void WriteNumbers(const std::string& name, const std::vector<double>& x) {
    WriteFile(name, Npy("{'descr': '<f8', 'fortran_order': False, 'shape': (" +
                            std::to_string(x.size()) + ",), }",
                        Bytes(x)));
  }
  std::vector<std::string> Levels() {
    std::vector<std::string> levels;
    for (const std::string& line : Lines(Run("list levels").out)) {
      if (line.find(" yes") != std::string::npos) levels.push_back(line.substr(0, line.find(' ')));
    }
    return levels;
  }
};

// Every entry of the catalogue gives what a direct call gives, over more than one block.
TEST_F(EvalTest, EveryEntryGivesTheLibrarysBits) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  constexpr size_t kCount = 70000, kNumbers = 2 * kCount;  // of complex elements; half are enough
  std::uniform_real_distribution<double> value(0.5, 3);
  std::vector<double> a(kNumbers), b(kNumbers);
  std::vector<float> as(kNumbers), bs(kNumbers);
  for (size_t i = 0; i < kNumbers; ++i) {
    as[i] = static_cast<float>(a[i] = static_cast<float>(value(random)));
    bs[i] = static_cast<float>(b[i] = static_cast<float>(value(random)));
  }
  for (const auto& [name, x] : {std::pair{'a', &a}, {'b', &b}}) {
    WriteNumbers(name + std::string("1.npy"), {x->begin(), x->begin() + kCount});
    WriteFile(name + std::string("2.npy"),
              Npy("{'descr': '<c16', 'fortran_order': False, 'shape': (70000,), }", Bytes(*x)));
  }
  std::vector<pex::Entry> entries(pex::Entries().begin(), pex::Entries().end());
  entries.insert(entries.end(), pex::ComplexEntries().begin(), pex::ComplexEntries().end());
  for (const pex::Entry& e : entries) {
    SCOPED_TRACE(e.symbol);
    const pex::Function& f = *e.function;
    const bool two = pex::ResultCount(f.shape) == 2;
    const std::string parts = std::to_string(e.argument_parts());
    std::string arguments =
        "eval " + std::string(f.name) + " a" + parts + ".npy -o r.npy --type " + e.type;
    if (f.tiered) arguments += " --tier " + std::string(pex::TierName(e.tier));
    if (f.shape == pex::Shape::Binary) arguments += " --with b" + parts + ".npy";
    if (f.shape == pex::Shape::UnaryScalar) {
      arguments += parts == "2" ? " --with-value 1.5,-0.5" : " --with-value 1.5";
    }
    const Outcome outcome = Run(arguments);
    ASSERT_LE(outcome.status, 1) << outcome.err;
    const auto compare = [&]<typename T>(const std::vector<T>& x, std::vector<T> y) {
      if (f.shape == pex::Shape::UnaryScalar) y[0] = T(1.5), y[1] = T(-0.5);
      const size_t count = kCount * static_cast<size_t>(e.result_parts());
      std::vector<T> r(count), r2(count), rows;
      _pexSetMode(PEX_ERRMODE_IGNORE);
      _pexClearErrStatus();
      e.Call(kCount, x.data(), y.data(), r.data(), r2.data());
      EXPECT_EQ(outcome.status, _pexGetErrStatus() != 0 ? 1 : 0) << outcome.err;
      _pexSetMode(PEX_MODE_DEFAULT);
      for (size_t i = 0; i < count; ++i) {
        rows.push_back(r[i]);
        if (two) rows.push_back(r2[i]);
      }
      const std::string header = std::string("{'descr': '<") + (e.result_parts() == 2 ? "c" : "f") +
                                 std::to_string(sizeof(T) * static_cast<size_t>(e.result_parts())) +
                                 "', 'fortran_order': False, 'shape': (70000," +
                                 (two ? " 2)" : ")") + ", }";
      EXPECT_EQ(NpyData(ReadFile("r.npy"), header), Bytes(rows));
    };
    e.is_double() ? compare(a, b) : compare(as, bs);
  }
}

TEST_F(EvalTest, ReportsEachSpecialElement) {
  const Outcome outcome = Run("eval ln --tier ha --type d", "# speeds\n1\n0\n\n-2.5\n1\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "0\n-inf\nnan\n0\n");
  EXPECT_EQ(outcome.err,
            "pexquo: standard input: line 3, element 1: ln(0) = -inf: pole\n"
            "pexquo: standard input: line 5, element 2: ln(-2.5) = nan: argument outside the "
            "domain\n");
  EXPECT_EQ(Run("eval exp --type s", "1000\n-1000\n0.1\n").err,
            "pexquo: standard input: line 1, element 0: exp(1000) = inf: overflow\n"
            "pexquo: standard input: line 2, element 1: exp(-1000) = 0: underflow\n");
  // Two arguments, one of them for all, and two results.
  WriteFile("y", "0\n0\n");
  EXPECT_EQ(Run("eval div --with y", "1\n-2.5\n").err,
            "pexquo: standard input: line 1, element 0: div(1, 0) = inf: pole\n"
            "pexquo: standard input: line 2, element 1: div(-2.5, 0) = -inf: pole\n");
  EXPECT_EQ(Run("eval powx --b 0.5", "-4\n").err,
            "pexquo: standard input: line 1, element 0: powx(-4, 0.5) = nan: argument outside the "
            "domain\n");
  EXPECT_EQ(
      Run("eval sincos", "0\ninf\n").err,
      "pexquo: standard input: line 2, element 1: sincos(inf) = nan, nan: argument outside the "
      "domain\n");
  // Single-precision arguments are shown as such.
  EXPECT_NE(Run("eval ln --type s", "-0.1\n").err.find("ln(-0.1) = nan"), std::string::npos);
  // Infinities and NaNs that are no error are not reported.
  EXPECT_EQ(Run("eval ln", "inf\nnan\n").status, 0);
}

TEST_F(EvalTest, ReportsAreTheSameInEveryTierTypeAndLevel) {
  const Outcome first = Run("eval ln", "0\n-1\n4\n");
  for (const std::string& level : Levels()) {
    for (const char* rest : {" --tier ha --type d", " --tier la --type s", " --tier ep --type d"}) {
      SCOPED_TRACE(level + rest);
      const Outcome outcome = Run("eval ln --level " + level + rest, "0\n-1\n4\n");
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.err, first.err);
    }
  }
}

// Blocks of the program are no part of what it reports.
TEST_F(EvalTest, PositionsAreThoseOfTheWholeInput) {
  constexpr size_t kCount = 150000;
  const std::vector<size_t> special = {0, 65535, 65536, 65537, 131071, 131072, kCount - 1};
  std::vector<double> x(kCount, 1.0);
  for (const size_t i : special) x[i] = -2;
  WriteNumbers("x.npy", x);
  std::string text, npy_reports, text_reports;
  size_t line = 0, next = 0;
  for (size_t i = 0; i < kCount; ++i) {
    if (i % 1000 == 7) {
      text += "# a comment\n\n";
      line += 2;
    }
    text += x[i] == 1 ? "1\n" : "-2\n";
    ++line;
    if (next == special.size() || special[next] != i) continue;
    ++next;
    const std::string rest =
        "element " + std::to_string(i) + ": ln(-2) = nan: argument outside the domain\n";
    npy_reports += "pexquo: x.npy: " + rest;
    text_reports += "pexquo: x.txt: line " + std::to_string(line) + ", " + rest;
  }
  WriteFile("x.txt", text);
  const Outcome from_npy = Run("eval ln x.npy -o r.npy"), from_text = Run("eval ln x.txt -o r.txt");
  EXPECT_EQ(from_npy.status, 1);
  EXPECT_EQ(from_npy.err, npy_reports);
  EXPECT_EQ(from_text.status, 1);
  EXPECT_EQ(from_text.err, text_reports);
  EXPECT_EQ(Lines(ReadFile("r.txt")).size(), kCount);
  EXPECT_EQ(Run("eval ln x.npy -o r.npy --type s").err, npy_reports);

  const Outcome limited = Run("eval ln x.npy -o r.npy --max-reports 2");
  EXPECT_EQ(limited.status, 1);
  const auto lines = Lines(limited.err);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0] + "\n" + lines[1] + "\n",
            npy_reports.substr(0, lines[0].size() + lines[1].size() + 2));
  EXPECT_EQ(lines[2], "pexquo: x.npy: 7 special elements in all, 5 not shown");
  EXPECT_EQ(Lines(Run("eval ln x.npy -o r.npy --max-reports 0").err).size(), 1u);
}

TEST_F(EvalTest, SecondArguments) {
  WriteFile("t.csv", "a,b\n1,10\n2,20\n");
  EXPECT_EQ(Run("eval sub t.csv --column a --with t.csv --with-column b").out, "-9\n-18\n");
  EXPECT_EQ(Run("eval sub t.csv --column a --with t.csv").out, "0\n0\n");
  EXPECT_EQ(Run("eval add t.csv --column b --with-value -0x1p-1").out, "9.5\n19.5\n");
  WriteNumbers("b.npy", {5, 7});
  EXPECT_EQ(Run("eval add t.csv --column a --with b.npy").out, "6\n9\n");
  WriteNumbers("a.npy", {1, 2});
  EXPECT_EQ(Run("eval sub a.npy b.npy").out, "-4\n-5\n");
  EXPECT_EQ(Run("eval sub a.npy --b 3").out, "-2\n-1\n");
  EXPECT_EQ(Run("eval mul t.csv --column b --with -", "3\n4\n").status, 2);  // a has no column "b"
}

TEST_F(EvalTest, LevelsGiveTheSameBytes) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> value(-800, 800);
  std::vector<double> x(1003);
  for (double& v : x) v = value(random);
  WriteNumbers("x.npy", x);
  const std::vector<std::string> levels = Levels();
  ASSERT_FALSE(levels.empty());
  for (const char* function : {"exp", "ln", "modf"}) {
    for (const char* type : {"d", "s"}) {
      const std::string command = std::string("eval ") + function + " x.npy --type " + type;
      const Outcome plain = Run(command + " --format npy");
      for (const std::string& level : levels) {
        SCOPED_TRACE(command + level);
        const Outcome outcome = Run(command + " --format npy --level " + level);
        EXPECT_EQ(outcome.status, plain.status);
        EXPECT_EQ(outcome.out, plain.out);
        EXPECT_EQ(outcome.err, plain.err);
      }
    }
  }
}

TEST_F(EvalTest, ListShowsTheCatalogueAndTheLevelInUse) {
  const Outcome all = Run("list");
  EXPECT_EQ(all.status, 0);
  for (const char* word : {"\nexp ", "\nmcg59 ", "\nuniformbits ", "ha", "avx512", "in use"}) {
    EXPECT_NE(all.out.find(word), std::string::npos) << word;
  }
  EXPECT_EQ(Lines(Run("list generators").out).size(), quo::Generators().size() + 1);
  const std::string functions = Run("list functions").out;
  EXPECT_EQ(Lines(functions).size(), pex::Functions().size() + pex::ComplexFunctions().size() + 1);
  for (const char* row : {"\nabs         -         d s ", "\nabs         ep la ha  z c ",
                          "\nconj        -         z c ", "\ncis         ep la ha  z c "}) {
    EXPECT_NE(functions.find(row), std::string::npos) << row;
  }
  for (const std::string& level : Levels()) {
    const Outcome outcome = Run("list levels --level " + level);
    EXPECT_EQ(outcome.status, 0);
    size_t in_use = 0;
    for (const std::string& line : Lines(outcome.out)) {
      if (!line.ends_with("in use")) continue;
      ++in_use;
      EXPECT_TRUE(line.starts_with(level + " ")) << line;
    }
    EXPECT_EQ(in_use, 1u);
  }
}

}  // namespace
}  // namespace cli_test
