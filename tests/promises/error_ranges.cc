#include "tests/promises/error_ranges.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

Interval ParseInterval(std::string text) {
  Interval interval{};
  interval.fractions_only = text.ends_with("\\Z");
  if (interval.fractions_only) text.resize(text.size() - 2);
  const size_t comma = text.find(',');
  const char open = text.front(), close = text.back();
  if (comma == std::string::npos || (open != '(' && open != '[') ||
      (close != ')' && close != ']')) {
    throw std::runtime_error("not an interval: " + text);
  }
  char* end = nullptr;
  interval.lo = std::strtod(text.c_str() + 1, &end);
  if (end != text.c_str() + comma) throw std::runtime_error("not a number: " + text);
  interval.hi = std::strtod(text.c_str() + comma + 1, &end);
  if (end != text.c_str() + text.size() - 1) throw std::runtime_error("not a number: " + text);
  interval.open_lo = open == '(';
  interval.open_hi = close == ')';
  return interval;
}

ErrorRange ParseLine(const std::string& line) {
  std::istringstream fields(line);
  ErrorRange range;
  std::string code, interval;
  if (!(fields >> range.function >> range.types >> code)) throw std::runtime_error("too short");
  if (pex::FindFunction(range.function) == nullptr) {
    throw std::runtime_error("no function " + range.function);
  }
  if (code == "none") return range;
  range.code = std::atoi(code.c_str());
  while (fields >> interval) range.arguments.push_back(ParseInterval(interval));
  if (range.arguments.empty()) throw std::runtime_error("no interval");
  return range;
}

}  // namespace

std::vector<ErrorRange> ReadErrorRanges(const std::string& folder) {
  std::vector<ErrorRange> all;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string path = entry.path().string();
    if (!path.ends_with(".ranges.tsv")) continue;
    std::ifstream file(path);
    int number = 0;
    for (std::string line; std::getline(file, line);) {
      ++number;
      if (line.empty() || line[0] == '#') continue;
      try {
        all.push_back(ParseLine(line));
      } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ":" + std::to_string(number) + ": " + error.what());
      }
    }
  }
  return all;
}

std::string ReportingFunction(const pex::Entry& entry, double b) {
  if (entry.function->name != "Powx") return std::string(entry.function->name);
  const auto is = [&](double exponent) {
    return b == (entry.is_double() ? exponent : static_cast<float>(exponent));
  };
  if (is(0.5)) return "Sqrt";
  if (is(-0.5)) return "InvSqrt";
  if (is(1.0 / 3)) return "Cbrt";
  if (is(-1.0 / 3)) return "InvCbrt";
  if (is(2.0 / 3)) return "Pow2o3";
  if (is(1.5)) return "Pow3o2";
  if (is(-1)) return "Inv";
  return "Powx";
}

std::vector<ErrorRange> RangesOf(const std::vector<ErrorRange>& all, const std::string& function,
                                 char type) {
  std::vector<ErrorRange> lines;
  for (const ErrorRange& range : all) {
    if (range.function == function && range.types.find(type) != std::string::npos) {
      lines.push_back(range);
    }
  }
  return lines;
}

// The closed line from -inf to inf stands for any argument, NaNs included.
static bool Fits(const Interval& interval, double x) {
  const bool any =
      interval.lo == -HUGE_VAL && interval.hi == HUGE_VAL && !interval.open_lo && !interval.open_hi;
  return interval.Has(x) || (any && std::isnan(x));
}

int ExpectedCode(const std::vector<ErrorRange>& lines, double a, double b) {
  for (const ErrorRange& line : lines) {
    if (line.arguments.empty()) continue;
    if (!Fits(line.arguments[0], a)) continue;
    if (line.arguments.size() > 1 && !Fits(line.arguments[1], b)) continue;
    return line.code;
  }
  return 0;
}
