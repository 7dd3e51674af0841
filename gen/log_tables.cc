// Writes pex_core/_heap/real/log_tables.h: for each sixteenth from 12/16 to 25/16 a point a near
// it, at which log(a) is almost a multiple of 2^-42 and 1/a (times log10(e) for the decimal table)
// almost a double. So one double for each is as good as two (the accurate tables of S. Gal, 1986).
#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <vector>

namespace {

constexpr double kGrid = 0x1p42;

struct Row {
  double a, c, c_rest, log;
};

// log(a), natural or decimal, to 200 bits.
void Log(mpfr_t r, double a, bool decimal) {
  mpfr_set_d(r, a, MPFR_RNDN);
  decimal ? mpfr_log10(r, r, MPFR_RNDN) : mpfr_log(r, r, MPFR_RNDN);
}

constexpr double kLogE = 0x1.bcb7b1526e50ep-2;  // log10(e)

// 1/a or log10(e)/a, or for fine tables kLogE/a, as a double and the rest.
void Factor(double a, bool decimal, bool fine, double* c, double* rest) {
  mpfr_t x;
  mpfr_init2(x, 200);
  mpfr_set_d(x, decimal && fine ? kLogE : 1, MPFR_RNDN);
  if (decimal && !fine) {
    mpfr_exp(x, x, MPFR_RNDN);
    mpfr_log10(x, x, MPFR_RNDN);
  }
  mpfr_div_d(x, x, a, MPFR_RNDN);
  *c = mpfr_get_d(x, MPFR_RNDN);
  mpfr_sub_d(x, x, *c, MPFR_RNDN);
  *rest = mpfr_get_d(x, MPFR_RNDN);
  mpfr_clear(x);
}

// The least x >= 0 with low <= a x mod m <= high, -1 if there is none; 0 < low <= high < m.
using Wide = __int128;
Wide FirstWithin(Wide a, Wide m, Wide low, Wide high) {
  if (low == 0) return 0;
  if (a == 0) return -1;
  if (2 * a > m) return FirstWithin(m - a, m, m - high, m - low);
  const Wide x = (low + a - 1) / a;
  if (x * a <= high) return x;
  // No multiple of a is between: m y has to lie there, modulo a.
  const Wide y = FirstWithin(m % a, a, (a - high % a) % a, (a - low % a) % a);
  return y < 0 ? -1 : (low + m * y + a - 1) / a;
}

constexpr int64_t kBlock = int64_t{1} << 18;

// The i < kBlock for which begin + i step is within `close` of a multiple of 2^64.
std::vector<int64_t> Within(uint64_t begin, uint64_t step, uint64_t close) {
  std::vector<int64_t> all;
  for (int64_t i = 0; i < kBlock; ++i) {
    const uint64_t from = begin + static_cast<uint64_t>(i) * step;
    if (from + close > 2 * close) {
      const Wide low = uint64_t{0} - close - from;
      const Wide more = FirstWithin(step, Wide{1} << 64, low, low + 2 * Wide{close});
      if (more < 0 || more >= kBlock - i) break;
      i += static_cast<int64_t>(more);
    }
    all.push_back(i);
  }
  return all;
}

// A point close to center whose log is within 2^-60 of itself of the grid and whose factor is
// within about 2^-58 of a double; `fine`: within a quarter of that beside 1, where what is left of
// a logarithm may be its half.
Row Search(double center, bool decimal, bool fine) {
  mpfr_t log;
  mpfr_init2(log, 200);
  Log(log, center, decimal);
  mpfr_mul_d(log, log, kGrid, MPFR_RNDN);
  mpfr_t whole;
  mpfr_init2(whole, 200);
  mpfr_rint(whole, log, MPFR_RNDN);
  mpfr_sub(whole, log, whole, MPFR_RNDN);
  // The fraction of log(center + k ulp) on the grid, in units of 2^-64: start + k first - k^2
  // second + k^3 third, the linear term with 40 bits more.
  const long double scale = (decimal ? 0.43429448190325182765112891891660508L : 1.0L) * kGrid;
  const long double step = 0x1p-53L / center;
  const auto start =
      static_cast<uint64_t>(static_cast<int64_t>(mpfr_get_ld(whole, MPFR_RNDN) * 0x1p63L) * 2);
  const auto first = static_cast<__int128>(scale * step * 0x1p104L);
  const double second = static_cast<double>(scale * step * step / 2 * 0x1p64L);
  const double third = static_cast<double>(scale * step * step * step / 3 * 0x1p64L);
  // A larger logarithm bears a larger error.
  const double slack = std::fabs(std::log(center)) * 16;
  const double close_slack = fine && slack < 1.1 ? slack / 4 : slack;
  const auto close = static_cast<uint64_t>(0x1p42 * close_slack);
  const auto fraction = [&](int64_t k) {
    const auto x = static_cast<double>(k);
    return start + static_cast<uint64_t>((first * k) >> 40) -
           static_cast<uint64_t>(static_cast<int64_t>(x * x * (second - third * x)));
  };
  for (int64_t n = 1; n < int64_t{1} << 31; n += kBlock) {
    std::vector<int64_t> candidates;
    for (const int64_t sign : {1, -1}) {
      const uint64_t begin = fraction(sign * n), step = fraction(sign * (n + 1)) - begin;
      // Over a block the square's part is below 2^36.
      for (const int64_t i : Within(begin, step, close + (uint64_t{1} << 37))) {
        candidates.push_back(sign * (n + i));
      }
    }
    std::ranges::sort(candidates, [](int64_t j, int64_t k) {
      return std::abs(j) < std::abs(k) || (j == -k && j > 0);
    });
    for (const int64_t k : candidates) {
      if (fraction(k) + close > 2 * close) continue;
      const auto x = static_cast<double>(k);
      Row row;
      row.a = center + x * 0x1p-53;
      if ((row.a - center) * 0x1p53 != x) continue;
      Factor(row.a, decimal, fine, &row.c, &row.c_rest);
      if (std::fabs(row.c_rest) > 0x1p-58 * close_slack * row.c) continue;
      Log(log, row.a, decimal);
      mpfr_mul_d(log, log, kGrid, MPFR_RNDN);
      mpfr_rint(whole, log, MPFR_RNDN);
      row.log = mpfr_get_d(whole, MPFR_RNDN) / kGrid;
      mpfr_sub(whole, log, whole, MPFR_RNDN);
      if (std::fabs(mpfr_get_d(whole, MPFR_RNDN)) > 0x1p-22 * close_slack) continue;
      mpfr_clears(log, whole, nullptr);
      return row;
    }
  }
  mpfr_clears(log, whole, nullptr);
  return Search(center + 0x1p-21, decimal, fine);
}

void Table(const char* name, const char* type, bool decimal, bool fine) {
  Row rows[16] = {};
  for (int i = 12; i <= (fine ? 24 : 25); ++i) {
    Row& row = rows[i & 15];
    if (i == 16) {
      row.a = 1;
      row.log = 0;
      Factor(1, decimal, fine, &row.c, &row.c_rest);
    } else {
      // Off the sixteenth, where roundings fall at random.
      row = Search((fine && i == 12 ? 12.25 : i) / 16 + 0x1p-19, decimal, fine);
    }
  }
  std::printf("\ninline constexpr %s %s = {\n", type, name);
  const auto column = [&](double Row::*field) {
    std::printf("    {");
    for (int j = 0; j < 16; ++j) {
      std::printf("%s%a", j == 0 ? "" : j % 3 ? ", " : ",\n     ", rows[j].*field);
    }
    std::printf("},\n");
  };
  column(&Row::a);
  column(&Row::c);
  column(&Row::log);
  if (!fine) column(&Row::c_rest);
  std::printf("};\n");
}

// Whether log(x) can be within `tolerance` of a multiple of `grid`, by the C library's long
// doubles, which err by few units of 2^-63; so does x where it is not exact.
bool MayBeNear(long double log, double grid, double tolerance, double error_of_x = 0) {
  const long double places = log / grid;
  return std::fabs(places - std::nearbyint(places)) * grid <=
         tolerance + 0x1p-61L * std::fabs(log) + error_of_x;
}

// A factor c close to 16/i at which -log(c) is within 2^-61 of the grid.
Row ExactSearch(int i) {
  mpfr_t log, whole;
  mpfr_inits2(200, log, whole, nullptr);
  // Smaller for 14/16, so that |m c - 1| stays below 1/32 beside 1, where roundings weigh most.
  const double center = i == 14 ? 1.1375 : 16.0 / i;
  for (int64_t n = 1;; ++n) {
    Row row = {};
    row.c = center + static_cast<double>(n) * 0x1p-32;
    if (!MayBeNear(std::log(static_cast<long double>(row.c)), 1 / kGrid, 0x1p-19 / kGrid)) continue;
    Log(log, row.c, false);
    mpfr_mul_d(log, log, -kGrid, MPFR_RNDN);
    mpfr_rint(whole, log, MPFR_RNDN);
    row.log = mpfr_get_d(whole, MPFR_RNDN) / kGrid;
    mpfr_sub(whole, log, whole, MPFR_RNDN);
    if (std::fabs(mpfr_get_d(whole, MPFR_RNDN)) > 0x1p-19) continue;
    mpfr_clears(log, whole, nullptr);
    return row;
  }
}

// A factor c of 26 bits close to scale 16/i at which -log(c/scale) is a double to within 2^-9 of
// its ulp. Beside 1, where the logarithm is smallest and an error weighs most, c is better for that
// side of i; with a scale it is in the middle of what there is at both ends.
Row FactorSearch(int i, bool decimal, double scale = 1) {
  mpfr_t log;
  mpfr_init2(log, 200);
  double point = i + (i == 15 ? 1.0 : i == 17 ? -1.0 : 0) / 32;
  if (scale != 1) point += i == 12 ? 0.25 : i == 24 ? -0.25 : 0;
  const double center = scale * 16 / point;
  const double ulp = std::ldexp(1.0, std::ilogb(center) - 25);
  for (double n = std::nearbyint(center / ulp);; ++n) {
    Row row = {};
    row.c = n * ulp;
    const long double x = row.c / static_cast<long double>(scale);
    const long double rough = decimal ? std::log10(x) : std::log(x);
    const int binade = std::ilogb(static_cast<double>(rough));
    if (!MayBeNear(rough, std::ldexp(1.0, binade - 52), std::ldexp(1.0, binade - 61),
                   scale == 1 ? 0 : 0x1p-62)) {
      continue;
    }
    mpfr_set_d(log, row.c, MPFR_RNDN);
    mpfr_div_d(log, log, scale, MPFR_RNDN);
    decimal ? mpfr_log10(log, log, MPFR_RNDN) : mpfr_log(log, log, MPFR_RNDN);
    mpfr_neg(log, log, MPFR_RNDN);
    row.log = mpfr_get_d(log, MPFR_RNDN);
    mpfr_sub_d(log, log, row.log, MPFR_RNDN);
    const double rest = mpfr_get_d(log, MPFR_RNDN);
    if (std::fabs(rest) > std::ldexp(1.0, std::ilogb(row.log) - 61)) continue;
    mpfr_clear(log);
    return row;
  }
}

// Factors by rows; `one`, with the logarithm 0, for `first` to `last`.
template <class Search>
void FactorTable(const char* name, int first, int last, Search search, double one = 1) {
  std::printf("\ninline constexpr LogFactors %s = {{\n", name);
  for (int j = 0; j < 16; ++j) {
    const int i = j < 12 ? j + 16 : j;
    Row row = {};
    row.c = one;
    if (i <= 24 && (i < first || i > last)) row = search(i);
    std::printf("%s{%a, %a},\n", "    ", row.c, row.log);
  }
  std::printf("}};\n");
}

// The sixteen stretches of 2^48 units in the last place from 0x3FE7840000000000 on: the middle of
// stretch j, whose ends are at 31/64 before and 33/64 behind j - 8 sixteenths of a binade from 1.
double MiddleOfStretch(int j) {
  const auto at = [](double from_one) { return 1 + from_one / (from_one < 0 ? 32 : 16); };
  // Where the logarithm is small, |m c - 1| is below 2^-6.
  if (j == 6) return 0.939;
  return (at(j - 8 - 31.0 / 64) + at(j - 8 + 33.0 / 64)) / 2;
}

// A factor c next to 1/MiddleOfStretch(j), a multiple of `ulp`, at which -log(c) is within
// `tolerance` of a multiple of `grid`, and within 8 `tolerance` of its own size.
Row StretchSearch(int j, double ulp, double grid, double tolerance) {
  mpfr_t log, whole;
  mpfr_inits2(200, log, whole, nullptr);
  for (double n = std::nearbyint(1 / MiddleOfStretch(j) / ulp);; ++n) {
    Row row = {};
    row.c = n * ulp;
    if (!MayBeNear(std::log(static_cast<long double>(row.c)), grid, tolerance)) continue;
    Log(log, row.c, false);
    mpfr_div_d(log, log, -grid, MPFR_RNDN);
    mpfr_rint(whole, log, MPFR_RNDN);
    row.log = mpfr_get_d(whole, MPFR_RNDN) * grid;
    mpfr_sub(whole, log, whole, MPFR_RNDN);
    if (std::fabs(mpfr_get_d(whole, MPFR_RNDN)) * grid >
        std::fmin(tolerance, 8 * tolerance * std::fabs(row.log))) {
      continue;
    }
    mpfr_clears(log, whole, nullptr);
    return row;
  }
}

// The rows of all stretches, 1 with the logarithm 0 for `first` to `last`.
void StretchTable(const char* name, int first, int last, double ulp, double grid,
                  double tolerance) {
  std::printf("\ninline constexpr LogFactors %s = {{\n", name);
  for (int j = 0; j < 16; ++j) {
    Row row = {};
    row.c = 1;
    if (j < first || j > last) row = StretchSearch(j, ulp, grid, tolerance);
    std::printf("%s{%a, %a},\n", "    ", row.c, row.log);
  }
  std::printf("}};\n");
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/log_tables.cc: gen_log_tables > pex_core/_heap/real/log_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_LOG_TABLES_H_\n#define PEX_CORE__HEAP_REAL_LOG_TABLES_H_\n\n"
      "namespace pex {\n\n"
      "// Rows j = i & 15 for points a near i/16, i = 12 .. 25. log(a) is a multiple of 2^-42 to "
      "within\n"
      "// 2^-60 of itself; `factor` is 1/a, or log10(e)/a, to within 2^-58 or better, and `rest` "
      "what it lacks (of\n"
      "// use for a = 1 alone, where the decimal factor is no freer).\n"
      "struct LogTable {\n  alignas(64) double a[16], factor[16], log[16], rest[16];\n};\n");
  Table("kLnTable", "LogTable", false, false);
  Table("kLog10Table", "LogTable", true, false);
  std::printf(
      "\n// The same for i = 12 .. 24, of 12 the upper half alone, and better beside 1; the "
      "decimal factor\n// is the double next to log10(e) by a.\n"
      "struct LogFineTable {\n  alignas(64) double a[16], factor[16], log[16];\n};\n");
  Table("kLnFineTable", "LogFineTable", false, true);
  Table("kLog10FineTable", "LogFineTable", true, true);
  std::printf(
      "\n// Rows j = i & 15 of factors c near 16/i, i = 12 .. 24, 1 for i = 15, 16, 17, each with "
      "-log(c),\n"
      "// which is a multiple of 2^-42 to within 2^-61.\n"
      "struct LogFactors {\n  alignas(64) double row[16][2];\n};\n");
  FactorTable("kLnFactors", 15, 17, ExactSearch);
  std::printf("\n// c of at most 26 bits, 1 for i = 16 alone, with the double next to -log(c).");
  FactorTable("kLnShortFactors", 16, 16, [](int i) { return FactorSearch(i, false); });
  std::printf(
      "\n// c of at most 26 bits next to log10(e) 16/i, log10(e) as a double for i = 16 alone, "
      "with\n"
      "// the double next to -log10(c/log10(e)).");
  FactorTable(
      "kLog10Factors", 16, 16, [](int i) { return FactorSearch(i, true, kLogE); }, kLogE);
  std::printf(
      "\n// Factors c near 1/m for the stretches of 2^48 units in the last place from "
      "0x3FE7840000000000\n// on, 1 for that of 1 and the next to it, each with -log(c), a "
      "multiple "
      "of 2^-42 to within 2^-61\n// and 2^-58 of itself.");
  StretchTable("kLnStretches", 7, 9, 0x1p-32, 0x1p-42, 0x1p-61);
  std::printf(
      "\n// c of at most 26 bits, 1 for the stretch of 1 alone, -log(c) a multiple of 2^-38 to "
      "within "
      "2^-47.");
  StretchTable("kLnShortStretches", 8, 8, 0x1p-25, 0x1p-38, 0x1p-47);
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_LOG_TABLES_H_\n");
}
