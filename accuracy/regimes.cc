#include "accuracy/regimes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <utility>

namespace pex::accuracy {
namespace {

double Between(Random& random, double lo, double hi) { return lo + (hi - lo) * Unit(random); }

// A magnitude with a uniform exponent in [lo, hi) and a uniform mantissa, with a random sign.
double LogUniform(Random& random, int lo, int hi) {
  const int exponent = lo + static_cast<int>(random() % static_cast<uint64_t>(hi - lo));
  const double m = std::ldexp(1 + Unit(random), exponent);
  return random() & 1 ? -m : m;
}

double AnyPattern(Random& random, bool single) {
  if (single) return std::bit_cast<float>(static_cast<uint32_t>(random() >> 32));
  return std::bit_cast<double>(random());
}

Regime Typical(Range range, std::string name, bool single, uint64_t count) {
  return {std::move(name), count, [=](uint64_t, Random& random, std::span<double> out) {
            for (double& x : out) x = ToType(Between(random, range.lo, range.hi), single);
          }};
}

Regime Whole(bool single, uint64_t count) {
  return {"whole", count, [=](uint64_t first, Random& random, std::span<double> out) {
            for (double& x : out) {
              x = first++ % 2 ? AnyPattern(random, single)
                              : ToType(LogUniform(random, -64, 64), single);
            }
          }};
}

// Subnormal arguments; where those do not have the smallest results, every third point has a
// subnormal result, and every third one of the least normal results.
Regime Subnormals(const Oracle::Small& small, bool single, uint64_t count) {
  return {"subnormals", count, [=](uint64_t first, Random& random, std::span<double> out) {
            const int lowest = single ? kSingle.lowest : kDouble.lowest;
            const int normal = lowest + (single ? kSingle : kDouble).precision - 1;
            const bool elsewhere = small.subnormal.lo != small.subnormal.hi;
            for (double& x : out) {
              const uint64_t kind = elsewhere ? first++ % 3 : 0;
              const Range range = kind == 1 ? small.subnormal : small.least_normal;
              x = kind == 0 ? LogUniform(random, lowest, normal + 2)
                            : Between(random, range.lo, range.hi);
              x = ToType(x, single);
            }
          }};
}

Regime List(std::string name, std::vector<double> list) {
  const uint64_t size = list.size();
  return {std::move(name), size,
          [list = std::move(list)](uint64_t first, Random&, std::span<double> out) {
            std::copy_n(list.begin() + static_cast<std::ptrdiff_t>(first), out.size(), out.begin());
          }};
}

std::vector<double> Integers(bool single) {
  std::vector<double> list;
  const auto add = [&](double x) {
    for (const int k : {-1, 0, 1}) {
      const double y = Neighbour(ToType(x, single), k, single);
      list.push_back(y);
      list.push_back(-y);
    }
  };
  for (int i = 0; i <= 2200; ++i) add(i * 0.5);
  const Format& format = single ? kSingle : kDouble;
  for (int e = format.lowest; e < format.highest; ++e) add(std::ldexp(1.0, e));
  for (int e = -45; e <= 38; ++e) add(std::strtod(("1e" + std::to_string(e)).c_str(), nullptr));
  for (int e = -323; e <= 308 && !single; ++e) {
    add(std::strtod(("1e" + std::to_string(e)).c_str(), nullptr));
  }
  for (double x = 1; x <= (1 << 24); x = x * 1.01 + 1) add(std::floor(x));
  return list;
}

// Numbers in order of value as integers: 0 for both zeros.
template <typename I>
I Ordered(I bits) {
  return bits < 0 ? static_cast<I>(std::numeric_limits<I>::min() - bits) : bits;
}

template <typename T, typename I>
T Step(T c, int64_t k) {
  const int64_t end = std::bit_cast<I>(std::numeric_limits<T>::infinity());
  int64_t at = 0;
  if (__builtin_add_overflow(int64_t{Ordered(std::bit_cast<I>(c))}, k, &at))
    at = k < 0 ? -end : end;
  return std::bit_cast<T>(Ordered(static_cast<I>(std::clamp(at, -end, end))));
}

// b such that a^b is anywhere in the type's range, or next to its ends or to 1.
double BesidePower(Random& random, double a, bool single) {
  const double top = single ? 128 : 1024, bottom = single ? -149 : -1074;
  const double ends[] = {top, bottom + (single ? 23 : 52), bottom - 1, 0};
  const double log2 = random() % 2 ? Between(random, bottom - 2, top + 1)
                                   : ends[random() % 4] + LogUniform(random, -60, 2);
  return log2 / std::log2(std::fabs(a));
}

// a times a power of two, more often a small one, and a factor next to 1 or in [1, 2).
double BesideFirst(Random& random, double a) {
  const int size = random() % 4 == 0 ? 120 : 4;
  const int exponent = static_cast<int>(random() % static_cast<uint64_t>(2 * size + 1)) - size;
  const double factor = random() % 2 ? 1 + Unit(random) : 1 + LogUniform(random, -55, -1);
  return std::ldexp(random() % 2 ? -a * factor : a * factor, exponent);
}

std::string Trimmed(const std::string& line) {
  const std::string text = line.substr(0, line.find('#'));
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

// Through memory: GCC 12 leaves the conversions of two neighbours to float and back out.
double ToType(double x, bool single) {
  const volatile float rounded = static_cast<float>(x);
  return single ? rounded : x;
}

double Neighbour(double c, int64_t k, bool single) {
  if (k == 0) return c;
  return single ? Step<float, int32_t>(static_cast<float>(c), k) : Step<double, int64_t>(c, k);
}

std::string Hex(double x) {
  char text[40];
  std::snprintf(text, sizeof(text), "%a", x);
  return text;
}

Regime Around(std::string name, const std::vector<double>& points, bool single, uint64_t count) {
  const auto fill = [=](uint64_t first, Random& random, std::span<double> out) {
    const Format& format = single ? kSingle : kDouble;
    for (double& x : out) {
      const uint64_t i = first++;
      const double c = ToType(points[i % points.size()], single);
      const auto round = static_cast<int64_t>(i / points.size());
      if (round % 2 == 0) {  // 0, +1, -1, +2, ...
        const int64_t k = round / 2;
        x = Neighbour(c, k % 2 ? (k + 1) / 2 : -k / 2, single);
        continue;
      }
      const int size = c == 0 || std::isinf(c) ? 1 : std::ilogb(c) + 1;
      const int nearest =
          std::max(c == 0 ? -64 : std::min(size - format.precision, -64), format.lowest);
      x = ToType(c + LogUniform(random, nearest, std::max(size, nearest + 1)), single);
    }
  };
  return {std::move(name), points.empty() ? 0 : count, fill};
}

void SecondArguments(const Entry& entry, std::string_view regime, Random& random,
                     std::span<const double> a, std::span<double> b) {
  const Precision& p = entry.precision();
  const Range range = p.typical2.lo == p.typical2.hi ? p.typical : p.typical2;
  const bool single = !entry.is_double();
  const bool power = entry.function->name.starts_with("Pow");
  for (size_t i = 0; i < b.size(); ++i) {
    switch (regime == "typical" ? 0 : random() % 4) {
      case 0:
        b[i] = Between(random, range.lo, range.hi);
        break;
      case 1:
        b[i] = random() % 2 ? AnyPattern(random, single) : LogUniform(random, -64, 64);
        break;
      case 2:
        b[i] = static_cast<double>(static_cast<int64_t>(random() % 129) - 64) /
               static_cast<double>(1 + random() % 3);
        break;
      default:
        b[i] = power ? BesidePower(random, a[i], single) : BesideFirst(random, a[i]);
    }
    b[i] = ToType(b[i], single);
  }
}

std::vector<Regime> RegimesOf(const Entry& entry, const Oracle& oracle, uint64_t count,
                              const std::vector<double>& recorded) {
  const bool single = !entry.is_double();
  const Precision& precision = entry.precision();
  // The list of marks ends where zeros fill it up; one zero may be a mark.
  std::vector<double> marks(precision.marks.begin(), precision.marks.end());
  while (marks.size() > 1 && marks.back() == 0) marks.pop_back();
  std::vector<double> near(oracle.near.begin(), oracle.near.end());
  near.push_back(-0.0);
  std::vector<double> representable;
  for (const double x : recorded) {
    if (ToType(x, single) == x) representable.push_back(x);
  }
  return {Typical(precision.typical, "typical", single, count),
          Whole(single, count),
          Around("marks", marks, single, count),
          Around("zeros-ones", near, single, count),
          Subnormals(single ? oracle.small_s : oracle.small_d, single, count),
          List("integers", Integers(single)),
          List("recorded", representable)};
}

std::filesystem::path RecordFile(const std::filesystem::path& directory, const Function& function) {
  return directory / (std::string(function.name) + ".txt");
}

std::vector<double> ReadRecord(const std::filesystem::path& file) {
  std::vector<double> cases;
  std::ifstream in(file);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    const std::string text = Trimmed(line);
    if (text.empty()) continue;
    char* end = nullptr;
    cases.push_back(std::strtod(text.c_str(), &end));
    if (*end != '\0') {
      throw std::runtime_error(file.string() + ":" + std::to_string(number) +
                               ": not a number: " + text);
    }
  }
  return cases;
}

int AppendRecord(const std::filesystem::path& file, const std::string& comment,
                 const std::vector<double>& cases) {
  std::vector<double> known = ReadRecord(file);
  std::vector<double> fresh;
  for (const double x : cases) {
    if (!std::isfinite(x) || std::ranges::find(known, x) != known.end()) continue;
    known.push_back(x);
    fresh.push_back(x);
  }
  if (fresh.empty()) return 0;
  std::ofstream out(file, std::ios::app);
  out << "# " << comment << "\n";
  for (const double x : fresh) out << Hex(x) << "\n";
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
  return static_cast<int>(fresh.size());
}

}  // namespace pex::accuracy
