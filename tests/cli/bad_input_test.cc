// Bad input ends with one clear line, status 2, and nothing under the output's name.
#include <unistd.h>

#include <random>

#include "tests/cli/program.h"

namespace cli_test {
namespace {

class BadInputTest : public ProgramTest {
 protected:
  // Runs with -o result, which stood there before or did not; it must be as it was.
  void Check(const std::string& arguments, const std::string& part, std::string_view input = {}) {
    SCOPED_TRACE(arguments);
    const auto before = Files();
    ExpectFailure(Run(arguments + " -o result", input), part);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(ReadFile("result"), result_);
  }
  std::string result_;
};

TEST_F(BadInputTest, CommandsAndOptions) {
  const struct {
    const char *arguments, *part;
  } kCases[] = {
      {"evla ln", "unknown command \"evla\"; did you mean eval?"},
      {"eval ln --tire ha", "\"--tire\"; did you mean --tier?"},
      {"--level sse4 eval ln", "\"--level\"; options come after the command"},
      {"--level=sse4 eval ln", "\"--level=sse4\"; options come after the command"},
      {"eval ln a b", "ln takes one argument"},
      {"eval add a b c", "unexpected \"c\""},
      {"eval", "function is required"},
      {"eval lnn", "unknown function \"lnn\"; did you mean ln?"},
      {"eval qqqqq", "unknown function \"qqqqq\"; pexquo list functions shows them\n"},
      {"frobnicate", "unknown command \"frobnicate\"; the commands are list, eval and draw\n"},
      {"eval ln -x", "unexpected \"-x\"\n"},
      {"eval ln --tier ha --tier la", "--tier is given more than once\n"},
      {"eval add a b --b 2", "the second argument is given twice"},
      {"eval ln --tier xa", "unknown tier \"xa\"; the tiers are ha, la and ep"},
      {"eval ln --type q", "unknown type \"q\"; the types are d, s, z and c"},
      {"eval ln --type dz", "unknown type \"dz\""},
      {"eval erf --type z", "erf does not exist in type z; its types are d and s"},
      {"eval conj --type s", "conj does not exist in type s; its types are z and c"},
      {"eval cis --type d", "cis does not exist in type d"},
      {"eval conjj", "did you mean conj?"},
      {"eval mul --type z --with-value 2", "--b \"2\" is not RE,IM"},
      {"eval mul --type z --with-value 2,3,4", "--b \"2,3,4\" is not RE,IM"},
      {"eval mul --type z --with-value 2,i", "--b \"i\" is not a number"},
      {"eval mul --type c --with-value 2,1e39", "\"1e39\" is beyond the range of single"},
      {"eval mul --with-value 2,3", "--b \"2,3\" is not a number"},
      {"eval ln --type z --column 1", "--column \"1\" is not RE,IM"},
      {"eval ln --type z --column 1,2,3", "--column \"1,2,3\" is not RE,IM"},
      {"eval ln --type z --column 1,0", "there is no column 0"},
      {"eval ln --type z --column 1,im", "no header with a column \"im\""},
      {"eval ln --format raw", "unknown format \"raw\""},
      {"eval ln --format nyp", "did you mean npy?"},
      {"eval ln --format csv", "unknown format \"csv\"; the formats are text and npy\n"},
      {"eval ln --level avx3", "unknown vector level \"avx3\"; did you mean avx2?"},
      {"eval ln --max-reports -1", "--max-reports"},
      {"eval add", "ln takes"},
      {"eval ln --with-value 2", "ln takes one argument"},
      {"eval add --with x --with-value 2", "the second argument is given twice"},
      {"eval add --with-value 2 --with-column 2", "--with"},
      {"eval add --with -", "standard input can be read once only"},
      {"eval add --with-value two", "--b \"two\" is not a number"},
      {"eval add --with-value 1e999", "beyond the range of double"},
      {"draw uniform", "--count is required"},
      {"draw unifrom --count 1", "did you mean uniform?"},
      {"draw uniform --count -3", "the count -3 is negative"},
      {"draw uniform --count 1e16", "too large"},
      {"draw uniform --count 1000000000000001", "too large; at most 1e15"},
      {"draw uniform --count 99999999999999999999999", "too large"},
      {"draw uniform --count 1e99999999999999999999999", "too large"},
      {"draw uniform --count 1.5", "is no count"},
      {"draw uniform --count 1e", "is no count"},
      {"draw uniform --count 1 --generator mgc59", "did you mean mcg59?"},
      {"draw uniform --count 1 --generator 279", "no generator with the identifier 279"},
      {"draw uniform --count 1 --generator 0xD00000", "no generator with the identifier"},
      {"draw uniform --count 1 --generator 0xB00000", "generator 0xB00000"},
      {"draw uniform --count 1 --generator -1", "no generator with the identifier \"-1\""},
      {"draw uniform --count 1 --generator 0x500111", "no generator with the identifier"},
      {"draw uniform --count 1 --generator wh:273", "there is no member 273 of wh; it has 273"},
      {"draw uniform --count 1 --generator wh:-1", "there is no member -1"},
      {"draw uniform --count 1 --generator wh:x", "the member \"x\" is not a number"},
      {"draw uniform --count 1 --generator wh:", "the member \"\" is not a number"},
      {"draw uniform --count 1 --generator mcg59:1", "it has 1"},
      {"draw uniform --count 1 --generator wh:1 --member 2", "given twice"},
      {"draw uniform --count 1 --generator 5 --member 2", "names a member already"},
      {"draw uniform --count 1 --generator 0x500001 --member 2", "names a member already"},
      {"draw uniform --count 1 --seed 4294967296", "not between 0 and 4294967295"},
      {"draw uniform --count 1 --seed -1", "not between 0 and 4294967295"},
      {"draw uniform --count 1 --seed 1 99999999999999999999", "not between 0 and 4294967295"},
      {"draw uniform --count 1 --seed 1,,2", "the seed word \"\""},
      {"draw uniform --count 1 --seed 1x", "the seed word \"1x\""},
      {"draw uniform --count 1 --a 1", "b = 1 is not above a = 1"},
      {"draw uniform --count 1 --a 2 --b 1", "b = 1 is not above a = 2"},
      {"draw uniform --count 1 --a nan", "--a nan is not finite"},
      {"draw uniform --count 1 --b inf", "--b inf is not finite"},
      {"draw uniform --count 1 --b 1e999", "--b 1e999 is not finite"},
      {"draw uniform --count 1 --a -1e308 --b 1e308", "b - a overflows"},
      {"draw uniform --count 1 --a 1.2e308 --b 1.7e308", "a + b overflows"},
      {"draw uniform --count 1 --b 1e39 --type s", "--b 1e39 is not finite"},
      {"draw uniform --count 1 --a 1 --b 1.00000000001 --type s", "is not above"},
      {"draw uniform --count 1 --b one", "--b \"one\" is not a number"},
      {"draw uniform --count 1 --type i", "give --b"},
      {"draw uniform --count 1 --type i --b 2.5", "--b \"2.5\" is not an integer"},
      {"draw uniform --count 1 --type i --b 2147483648", "no 32-bit integer"},
      {"draw uniform --count 1 --type i --b 18446744073709551615", "no 32-bit integer"},
      {"draw uniform --count 1 --type i --b 7 --a -18446744073709551615", "no 32-bit integer"},
      {"draw uniform --count 1 --type i --b 2 --accurate", "--accurate is for"},
      {"draw uniform --count 1 --type q", "unknown type \"q\""},
      {"draw uniformbits --count 1 --type d", "uniformbits has no type"},
      {"draw uniformbits --count 1 --a 0", "uniformbits has no parameter a"},
      {"draw gaussian --count 1 --sigma 0", "--sigma 0 is not positive"},
      {"draw gaussian --count 1 --sigma nan", "--sigma nan is not finite"},
      {"draw gaussian --count 1 --beta 1", "gaussian has no parameter beta"},
      {"draw gaussian --count 1 --method polar", "gaussian has no method \"polar\""},
      {"draw gaussian --count 1 --type i", "unknown type \"i\"; of gaussian there is d, s"},
      {"draw exponential --count 1 --method icdf", "exponential has one method only"},
      {"draw weibull --count 1 --alpha -1 --type s", "--alpha -1 is not positive"},
      {"draw bernoulli --count 1 --p 1.5", "--p 1.5 is not a probability"},
      {"draw geometric --count 1 --p -0.1", "--p -0.1 is not a probability"},
      {"draw geometric --count 1 --p 0", "--p 0 is too small"},
      {"draw geometric --count 1 --p 1e-17", "--p 1e-17 is too small"},
      {"draw negbinomial --count 1 --p 0", "--p 0 is not positive"},
      {"draw poisson --count 1 --lambda 2147483648", "--lambda 2147483648 is above 2147483647"},
      {"draw poissonv --count 1 --mean 1,1e300", "--mean 1e+300 is above 2147483647"},
      {"draw bernoulli --count 1 --type d", "of bernoulli there is i"},
      {"draw gaussian --count 1 --accurate", "--accurate is for uniform"},
      {"draw gaussian --count 1 --mean 0", "gaussian has no parameter mean"},
      {"draw gaussianmv --count 1 --mean 0,x", "--mean \"x\" is not a number"},
      {"draw gaussianmv --count 1 --mean 0,0 --factor 1,0,1", "--factor has 3 numbers; a full one"},
      {"draw gaussianmv --count 1 --mean 0,0 --factor 1,0 --storage packed", "has 3"},
      {"draw gaussianmv --count 1 --factor 1 --storage rows", "unknown storage \"rows\""},
      {"draw gaussianmv --count 1 --storage full", "give --factor"},
      {"draw binomial --count 1 --ntrial 2.5", "--ntrial 2.5 is not an integer from 0"},
      {"draw hypergeometric --count 1 --l 10 --s 11 --m 3", "at most l = 10"},
      {"draw hypergeometric --count 1 --l 10 --s 3 --m 11", "at most l = 10"},
      {"draw poissonv --count 1 --mean 1,-2", "--mean has -2, which is below 0"},
      {"draw poissonv --count 1 --type d", "of poissonv there is i"},
      {"draw sobol --count 1 --dimension 41", "--dimension \"41\" is no number of coordinates"},
      {"draw sobol --count 1 --dimension 0", "sobol has from 1 to 40"},
      {"draw niederr --count 1 --dimension 319", "niederr has from 1 to 318"},
      {"draw sobol --count 1 --dimension many", "--dimension \"many\" is no number"},
      {"draw uniform --count 1 --dimension 2", "mcg59 has no points of a dimension"},
      {"draw sobol --count 1 --dimension 2 --seed 2", "give --dimension or --seed"},
      {"draw sobol --count 1 --seed 2,7,1,2", "the seed words are no sound set (status -3)"},
      {"draw sobol --count 1 --generator mt19937", "sobol is a generator itself"},
      {"draw sobl --count 1", "did you mean sobol?"},
      {"draw sobol --count 1 --dimension 3 --leapfrog 0/2", "the generator cannot leapfrog"},
      {"draw sobol --count 1 --sigma 2", "uniform has no parameter sigma"},
      {"draw uniform --count 1 --load nowhere", "--load \"nowhere\": the file could not be opened"},
      {"draw uniform --count 1 --load nowhere --seed 1",
       "leave --generator, --member and --seed out"},
      {"draw uniform --count 1 --generator r250 --skip 1", "the generator cannot skip ahead"},
      {"draw uniform --count 1 --generator mt19937 --leapfrog 0/2",
       "the generator cannot leapfrog"},
      {"draw uniform --count 1 --save result", "--save and --output are the same file"},
      {"draw uniform --load  --count 1", "--load: is empty"},  // two blanks, an empty value
      {"draw uniform --seed  --count 1", "--seed: is empty"},
      {"eval exp --type  x", "--type: is empty"},
      {"draw uniform --count 1 --leapfrog 3/3", "--leapfrog \"3/3\" is not K/S"},
      {"draw uniform --count 1 --leapfrog 3", "is not K/S"},
      {"draw uniform --count 1 --leapfrog 0/0", "is not K/S"},
      {"draw uniform --count 1 --skip -1", "--skip \"-1\" is not a count"},
      {"draw uniform --count 1 --skip 18446744073709551616", "is not a count"},
  };
  for (const auto& c : kCases) {
    const std::string part = c.part == std::string("ln takes") ? "add takes two arguments" : c.part;
    Check(c.arguments, part);
  }
  ExpectFailure(Run(""), "no command");
  ExpectFailure(Run("list level"), "did you mean levels?");
  ExpectFailure(Run("list all"),
                "under \"all\"; the topics are functions, generators, distributions and levels\n");
  ExpectFailure(Run("eval ln --tier"), "--tier needs a value\n");
}

TEST_F(BadInputTest, TextNamesItsLine) {
  const struct {
    const char *arguments, *input, *part;
  } kCases[] = {
      {"eval ln", "1\n\n# 2\n1,5\n", "standard input: line 4: \"1,5\" is not a number; --column"},
      {"eval ln", "1\n0x\n", "line 2: \"0x\" is not a number\n"},
      {"eval ln", "1\n2 3\n", "line 2: \"2 3\" is not a number; --column"},
      {"eval ln", "1\nprice\n", "line 2: \"price\""},
      {"eval ln", "--5\n", "line 1: \"--5\""},
      {"eval ln", "1\n1e999\n", "line 2: \"1e999\" is beyond the range of double precision"},
      {"eval ln --type s", "1e39\n", "line 1: \"1e39\" is beyond the range of single precision"},
      {"eval ln", "1\n\x01\x02\xFF\n", "line 2: \"\\x01\\x02"},
      {"eval ln --column 2", "1,2\n3\n", "line 2: there is no column 2, the line has 1"},
      {"eval ln --column 2", "1,2\n3,\n", "line 2: \"\" is not a number"},
      {"eval ln --column 2", "1,2\n3,\"4\n", "line 2: a quoted field has no end"},
      {"eval ln --column 2", "1,2\n3,\"4\"5\n", "line 2: text follows a quoted field"},
      {"eval ln --column 1", "12x,2\n", "line 1: \"12x\""},
      {"eval ln --column 0", "1,2\n", "there is no column 0; the first is 1"},
      {"eval ln --column 99999999999999999999", "1,2\n", "there is no column 99999999999999999999"},
      {"eval ln --column prize", "day,price\n1,2\n", "no column \"prize\"; did you mean price?"},
      {"eval ln --column c", "a,b\n1,2\n", "no column \"c\"; there is \"a\" and \"b\"\n"},
      {"eval ln --column a", "a,b,a\n1,2,3\n", "several columns are named \"a\""},
      {"eval ln --column price", "", "no header with a column \"price\""},
      {"eval ln --column 1 --delimiter ab", "1\n", "the delimiter \"ab\""},
      {"eval ln --type z", "1 2\n3\n", "line 2: \"3\" is one number, a complex one takes two"},
      {"eval ln --type z", "1 2\n3,\n", "line 2: \"\" is not a number"},
      {"eval ln --type c", "1 2\n3 4 5\n", "line 2: \"4 5\" is not a number; --column chooses two"},
      {"eval ln --type c", "1 1e39\n", "line 1: \"1e39\" is beyond the range of single precision"},
      {"eval conj", "1\n", "line 1: \"1\" is one number"},
      {"eval cis", "1 2\n", "line 1: \"1 2\" is not a number; --column chooses a column"},
      {"eval ln --type z --column 1,3", "1,2,3\n4,5\n", "line 2: there is no column 3"},
      {"eval ln --type z --column re,mi", "re,im\n1,2\n", "no column \"mi\"; did you mean im?"},
      {"eval mul --type z --with b", "1 2\n", "b: line 1: \"1\" is one number"},
      {"eval add --with b", "1\n2\n3\n", "b has 2 numbers, standard input has more"},
      {"eval add --with b", "1\n", "standard input has 1 numbers, b has more"},
      {"eval add --with bad", "1\n2\n", "bad: line 2: \"x\" is not a number"},
  };
  WriteFile("b", "1\n2\n");
  WriteFile("bad", "1\nx\n");
  for (const auto& c : kCases) Check(c.arguments, c.part, c.input);
  Check("eval ln", "line 70001: \"oops\"", [] {
    std::string text;
    for (int i = 0; i < 70000; ++i) text += "1\n";
    return text + "oops\n";
  }());
  Check("eval ln", "a line is longer than", std::string(3 << 20, '1'));
  Check("eval ln", "is not a number",
        std::string("1\n2\0"
                    "3\n",
                    6));
}

TEST_F(BadInputTest, FilesThatCannotBeRead) {
  Check("eval ln absent.txt", "absent.txt: No such file or directory");
  Check("eval ln .", ".: Is a directory");
  Check("eval add --with absent --with-column 2", "absent: No such file or directory", "1\n");
}

TEST_F(BadInputTest, NpyTruncatedAnywhere) {
  const std::string whole = Npy("{'descr': '<f8', 'fortran_order': False, 'shape': (3,), }   \n",
                                Bytes<double>({1, 2, 3}));
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    WriteFile("in.npy", whole.substr(0, length));
    const Outcome outcome = Run("eval ln in.npy -o result.npy");
    ExpectFailure(outcome, "in.npy: the .npy ");
    EXPECT_NE(outcome.err.find("cut short"), std::string::npos) << outcome.err;
    EXPECT_EQ(Files(), std::vector<std::string>{"in.npy"});
    // On standard input, what is shorter than the magic is text.
    const Outcome piped = Run("eval ln -o result.npy", whole.substr(0, length));
    if (length > 0) {
      ExpectFailure(piped, "standard input: ");
    }
    EXPECT_EQ(Files().size(), length > 0 ? 1u : 2u);
    if (length == 0) unlink((folder_ + "/result.npy").c_str());
  }
  ExpectFailure(Run("eval ln -o result", whole + "x"), "bytes follow the .npy array");
  EXPECT_EQ(Run("eval ln in.npy", "").status, 2);
}

// Whatever a header says, the program answers with numbers or with one line.
TEST_F(BadInputTest, NpyWithRandomDamage) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const std::string whole = Npy("{'descr': '<f8', 'fortran_order': False, 'shape': (3,), }   \n",
                                Bytes<double>({1, 2, 3}));
  constexpr std::string_view kBytes("\0\n '\"(),:<>[]{}-0189adefilLx\x7F\xFF", 30);
  for (int i = 0; i < 60; ++i) {
    std::string file = whole;
    for (int damage = 0; damage < 1 + i % 3; ++damage) {
      file[random() % 76] = kBytes[random() % kBytes.size()];
    }
    const Outcome outcome = Run("eval abs -o result", file);
    if (outcome.status == 0) {
      EXPECT_EQ(Files(), std::vector<std::string>{"result"});
      unlink((folder_ + "/result").c_str());
    } else {
      ExpectFailure(outcome, "standard input: ");
      EXPECT_EQ(Files(), std::vector<std::string>{});
    }
  }
}

TEST_F(BadInputTest, NpyHeaders) {
  const std::string data = Bytes<double>({1, 2, 3});
  const struct {
    const char *dictionary, *part;
  } kCases[] = {
      {"{'descr': '<c16', 'fortran_order': False, 'shape': (3,)}", "1 of 3 elements"},
      {"{'descr': '<c8', 'fortran_order': False, 'shape': (2,)}", "bytes follow"},
      {"{'descr': '<c4', 'fortran_order': False, 'shape': (6,)}", "elements of type \"<c4\""},
      {"{'descr': '|c8', 'fortran_order': False, 'shape': (3,)}", "elements of type \"|c8\""},
      {"{'descr': '|b1', 'fortran_order': False, 'shape': (24,)}", "elements of type \"|b1\""},
      {"{'descr': '<f2', 'fortran_order': False, 'shape': (12,)}", "elements of type \"<f2\""},
      {"{'descr': '<U2', 'fortran_order': False, 'shape': (3,)}", "elements of type"},
      {"{'descr': [('x', '<f8')], 'fortran_order': False, 'shape': (3,)}", "records"},
      {"{'descr': '<f8', 'fortran_order': False}", "damaged"},
      {"{'descr': '<f8', 'shape': (3,)}", "damaged"},
      {"{'fortran_order': False, 'shape': (3,)}", "damaged"},
      {"{'descr': '<f8', 'descr': '<f8', 'fortran_order': False, 'shape': (3,)}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': Maybe, 'shape': (3,)}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (3)}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': 3}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (-3,)}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (3,)", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (3,", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (3,)} junk", "damaged"},
      {"{'descr': '<f8, 'fortran_order': False, 'shape': (3,)}", "elements of type"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (3,), 'more': 1}", "damaged"},
      {"", "damaged"},
      {"{", "damaged"},
      {"{}", "damaged"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (99999999999999999999,)}", "too large"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (4294967296, 4294967296)}", "too large"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (9007199254740992,)}", "3 of"},
      {"{'descr': '<f8', 'fortran_order': False, 'shape': (0,)}", "bytes follow"},
  };
  for (const auto& c : kCases) Check("eval ln", c.part, Npy(c.dictionary, data));
  const std::string good = "{'descr': '<f8', 'fortran_order': False, 'shape': (3,)}";
  Check("eval ln", ".npy version 4.0", Npy(good, data, 4));
  std::string minor = Npy(good, data);
  minor[7] = '\1';
  Check("eval ln", ".npy version 1.1", minor);
  std::string long_header = Npy(good, data, 2);
  long_header[11] = '\x7F';  // a header of two gigabytes
  Check("eval ln", "damaged", long_header);
  WriteFile("text.npy", "1.5\n2.5\n3.5\n");
  Check("eval ln text.npy", "text.npy: not an .npy file");
  Check("eval ln --column 1", "--column is for text", Npy(good, data));
  Check("eval ln --type s", "element 1: 1e+300 is beyond the range of single precision",
        Npy(good, Bytes<double>({1, 1e300, 2})));
  Check("eval conj", "standard input has real numbers; conj in type z takes complex ones",
        Npy(good, data));
  Check("eval ln --type z", "has real numbers; ln in type z takes complex", Npy(good, data));
  const std::string complex = "{'descr': '<c16', 'fortran_order': False, 'shape': (1,)}";
  const std::string one = Npy(complex, Bytes<double>({1, 1e300}));
  Check("eval erf", "erf does not exist in type z", one);
  Check("eval ln --type d", "has complex numbers; ln in type d takes real ones", one);
  Check("eval cis", "has complex numbers; cis in type z takes real ones", one);
  Check("eval ln --type c", "element 0: 1e+300 is beyond the range of single precision", one);
  WriteFile("real.npy", Npy(good, data));
  Check("eval mul --with real.npy", "real.npy has real numbers; mul in type z takes complex", one);
  Check("eval modf --format npy", "Fortran order",
        Npy("{'descr': '<f8', 'fortran_order': True, 'shape': (1, 3)}", data));
}

TEST_F(BadInputTest, AnOlderResultStays) {
  result_ = "precious\n";
  WriteFile("result", result_);
  Check("eval ln", "line 3", "1\n2\nx\n");
  Check("draw uniform --count 5 --a 3", "is not above");
}

}  // namespace
}  // namespace cli_test
