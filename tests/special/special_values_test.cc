// The directed tables *.tsv of this folder, line by line. Their format stands in exp-log.tsv.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/pex.h"
#include "tests/support/control.h"

namespace {

constexpr int kUntouched = 4711;

struct Line {
  std::string place;  // file and number
  std::string function, types, tiers, arguments, results, error, flags;
  int code = 0;
};

std::vector<Line> ReadTables() {
  std::vector<Line> lines;
  for (const auto& file : std::filesystem::directory_iterator(TABLES_FOLDER)) {
    const std::string name = file.path().filename().string();
    if (!name.ends_with(".tsv") || name.ends_with(".ranges.tsv")) continue;
    std::ifstream in(file.path());
    int number = 0;
    for (std::string text; std::getline(in, text);) {
      ++number;
      if (text.empty() || text[0] == '#') continue;
      Line line;
      line.place = name + ":" + std::to_string(number);
      std::istringstream fields(text);
      if (!(fields >> line.function >> line.types >> line.tiers >> line.arguments >> line.results >>
            line.code >> line.error >> line.flags) ||
          pex::FindFunction(line.function) == nullptr) {
        ADD_FAILURE() << "bad line " << line.place;
        continue;
      }
      lines.push_back(line);
    }
  }
  return lines;
}

const std::vector<Line>& Lines() {
  static const std::vector<Line> lines = ReadTables();
  return lines;
}

bool HasTier(const Line& line, pex::Tier tier) {
  if (line.tiers == "*") return true;
  std::string wanted(pex::TierName(tier));
  std::string list = "," + line.tiers + ",";
  std::ranges::transform(list, list.begin(), [](unsigned char c) { return std::tolower(c); });
  return list.find("," + wanted + ",") != std::string::npos;
}

template <typename T>
struct Type {
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  static Bits BitsOf(T x) { return std::bit_cast<Bits>(x); }

  static T Parse(const std::string& text) {
    if (text[0] == '#') {
      return std::bit_cast<T>(static_cast<Bits>(std::stoull(text.substr(1), nullptr, 16)));
    }
    char* end = nullptr;
    const T x = sizeof(T) == 8 ? static_cast<T>(std::strtod(text.c_str(), &end))
                               : static_cast<T>(std::strtof(text.c_str(), &end));
    EXPECT_EQ(*end, '\0') << "not a number: " << text;
    return x;
  }

  // "" if the result is the one the table says.
  static std::string Check(T got, const std::string& wanted, double bound) {
    char text[200];
    if (wanted == "nan") {
      if (got != got) return "";
    } else if (wanted[0] == '~') {
      const long double value = std::strtold(wanted.c_str() + 1, nullptr);
      constexpr int kDigits = std::numeric_limits<T>::digits;
      const int exponent =
          std::max(std::ilogb(value), std::numeric_limits<T>::min_exponent - 1) - kDigits + 1;
      const long double error = std::fabs(got - value) / std::ldexp(1.0L, exponent);
      if (error <= bound + 0.001) return "";  // the reference is good to a thousandth of an ulp
      std::snprintf(text, sizeof(text), "%a for %Lg: %.4Lg ulp, bound %g", double{got}, value,
                    error, bound);
      return text;
    } else if (BitsOf(got) == BitsOf(Parse(wanted))) {
      return "";
    }
    std::snprintf(text, sizeof(text), "%a (%#llx) for %s", double{got},
                  static_cast<unsigned long long>(BitsOf(got)), wanted.c_str());
    return text;
  }
};

uint32_t FlagsOf(const std::string& letters) {
  uint32_t flags = 0;
  for (const char c : letters) {
    flags |= c == 'v' ? kInvalid : c == 'z' ? kDivByZero : c == 'o' ? kOverflow : SseFlag(0);
    if (c == 'u') flags |= kUnderflow;
  }
  return flags;
}

std::pair<std::string, std::string> Split(const std::string& text) {
  const size_t at = text.find(';');
  if (at == std::string::npos) return {text, text};
  return {text.substr(0, at), text.substr(at + 1)};
}

int calls = 0;
int reported_index = -1;
int CountCalls(PexErrorContext* record) {
  ++calls;
  reported_index = record->index;
  return 0;
}

// One line on one entry: alone, among others, and with errors ignored.
template <typename T>
void RunLine(const pex::Entry& entry, const Line& line) {
  SCOPED_TRACE(line.place + ": " + line.function + " " + line.arguments);
  const auto [first, second] = Split(line.arguments);
  const auto [result, result2] = Split(line.results);
  const bool two_results = pex::ResultCount(entry.function->shape) == 2;
  const T x = Type<T>::Parse(first), y = Type<T>::Parse(second);
  for (const size_t n : {1, 7}) {
    const size_t at = n == 7 ? 5 : 0;
    // No function reports 1/2 but the inverse hyperbolic cosine, and that does not report 1.
    const T neighbour = line.function == "Acosh" ? T(1) : T(0.5);
    std::vector<T> a(n, neighbour), b(n, neighbour), r(n), r2(n);
    a[at] = x;
    b[at] = y;
    if (entry.function->shape == pex::Shape::UnaryScalar) {
      if (n > 1) continue;
      b[0] = y;
    }
    for (const uint32_t mode :
         {PEX_ERRMODE_ERRNO | PEX_ERRMODE_EXCEPT, PEX_ERRMODE_CALLBACK, PEX_ERRMODE_IGNORE}) {
      _pexSetErrorCallBack(mode == PEX_ERRMODE_CALLBACK ? CountCalls : nullptr);
      _pexSetMode(mode);
      _pexClearErrStatus();
      calls = 0;
      errno = kUntouched;
      UseControl control(kDefaultControl);
      entry.Call(static_cast<int32_t>(n), a.data(), b.data(), r.data(), r2.data());
      control.Finish();
      const int error = errno;
      EXPECT_EQ(Type<T>::Check(r[at], result, entry.ulp_bound()), "");
      if (two_results) {
        EXPECT_EQ(Type<T>::Check(r2[at], result2, entry.ulp_bound()), "");
      }
      EXPECT_EQ(_pexGetErrStatus(), line.code);
      const bool sets_errno = (mode & PEX_ERRMODE_ERRNO) && line.error != "-";
      EXPECT_EQ(error, !sets_errno ? kUntouched : line.error == "EDOM" ? EDOM : ERANGE);
      if (line.flags != "*" && (mode & PEX_ERRMODE_EXCEPT)) {
        EXPECT_EQ((control.flags() | control.x87_flags()) & ~(kInexact | kDenormal),
                  FlagsOf(line.flags));
      }
      if (mode == PEX_ERRMODE_CALLBACK) {
        EXPECT_EQ(calls, line.code != 0 ? 1 : 0);
        if (line.code != 0) {
          EXPECT_EQ(reported_index, static_cast<int>(at));
        }
      }
    }
  }
  _pexSetErrorCallBack(nullptr);
  _pexSetMode(PEX_MODE_DEFAULT);
}

class SpecialValues : public testing::TestWithParam<size_t> {};

TEST_P(SpecialValues, AreThoseOfTheTables) {
  const pex::Entry& entry = pex::Entries()[GetParam()];
  int count = 0;
  for (const Line& line : Lines()) {
    if (line.function != entry.function->name || line.types.find(entry.type) == std::string::npos ||
        !HasTier(line, entry.tier)) {
      continue;
    }
    ++count;
    if (entry.is_double()) {
      RunLine<double>(entry, line);
    } else {
      RunLine<float>(entry, line);
    }
  }
  EXPECT_GT(count, 0) << "no directed case for " << entry.symbol;
}

std::vector<size_t> Indices() {
  std::vector<size_t> all(pex::Entries().size());
  for (size_t i = 0; i < all.size(); ++i) all[i] = i;
  return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, SpecialValues, testing::ValuesIn(Indices()),
                         [](const auto& info) {
                           return std::string(pex::Entries()[info.param].symbol.substr(1));
                         });

}  // namespace
