// Writes pex_core/_heap/real/log_single_tables.h, rows for each sixteenth a from 12/16 to 24/16.
//
// Where the logarithm is that of a given point, floats near log(a) and near 1/a. Neither need be
// the nearest: the pair is taken with which e log(2) + log(a) + (m - a)/a comes out best in ulps of
// the result over all m and e, for an error of the logarithm can be made good where it shows most,
// on the side of a next to 1.
//
// Where it is that of the factor, a float c near log(e)/a at which -log(c/log(e)) is almost a
// float.
//
// Where c m - 1 has to be exact, the c that keeps it smallest of those so short that it is, and
// -ln(c) in two parts, the first a multiple of 2^-16.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "gen/column.h"

namespace {

constexpr long double kLog2 = 0.693147180559945309417232121458176568L;
constexpr long double kLog10E = 0.434294481903251827651128918916605082L;

struct Row {
  float factor, log;
};

// The largest error in ulps for m within 1/32 of a.
double Worst(float a, Row row) {
  double worst = 0;
  for (int e = -16; e <= 16; ++e) {
    const float whole = static_cast<float>(kLog2) * static_cast<float>(e);
    for (int k = -16; k <= 16; ++k) {
      const float t = static_cast<float>(k) / 512;
      if (a + t < 0.75f || a + t > 1.5f) continue;
      const long double exact = e * kLog2 + std::log(static_cast<long double>(a + t));
      const long double error = (whole - e * kLog2) +
                                (row.log - std::log(static_cast<long double>(a))) +
                                t * (row.factor - 1.0L / a);
      const int exponent = std::ilogb(exact);
      worst = std::max(worst, static_cast<double>(std::fabs(std::ldexp(error, 23 - exponent))));
    }
  }
  return worst;
}

Row PointSearch(float a) {
  if (a == 1) return {1, 0};
  const Row nearest = {1 / a, static_cast<float>(std::log(static_cast<long double>(a)))};
  Row best = nearest;
  double least = Worst(a, nearest);
  for (int i = -2; i <= 2; ++i) {
    for (int k = -32; k <= 32; ++k) {
      const Row row = {
          nearest.factor +
              static_cast<float>(k) * std::ldexp(1.0f, std::ilogb(nearest.factor) - 23),
          nearest.log + static_cast<float>(i) * std::ldexp(1.0f, std::ilogb(nearest.log) - 23)};
      const double worst = Worst(a, row);
      if (worst < least) least = worst, best = row;
    }
  }
  return best;
}

// Where the factor of the multiple a of `step` is best: in the middle of its m, of which there are
// none below 0.75 and above 1.5; beside 1, where the logarithm is smallest and an error weighs
// most, nearer to 1.
float Center(float a, float step) {
  if (a == 0.75f) return a + step / 4;
  if (a == 1.5f) return a - step / 4;
  return std::fabs(a - 1) == step ? a + (1 - a) / 32 : a;
}

// A number c of so many bits next to log_e/a on whose logarithm is almost a float: the best of
// some, the distance counting too.
Row FactorSearch(long double log_e, int bits, float a, float step) {
  const float scale = static_cast<float>(log_e);
  if (a == 1) return {scale, 0};
  const float center = scale / Center(a, step);
  const float ulp = std::ldexp(1.0f, std::ilogb(center) - bits + 1);
  Row best = {};
  long double least = 1;
  for (int k = -16; k <= 16; ++k) {
    const float c = (std::nearbyint(center / ulp) + static_cast<float>(k)) * ulp;
    const long double log = -log_e * std::log(c / static_cast<long double>(scale));
    const float rounded = static_cast<float>(log);
    const long double error = std::fabs(std::ldexp(rounded - log, 23 - std::ilogb(rounded))) +
                              20 * std::fabs(c / static_cast<long double>(center) - 1);
    if (error < least) least = error, best = {c, rounded};
  }
  return best;
}

struct ExactRow {
  float factor, hi, lo;
};

// For the m within half a step of a, from 0.75 to 1.5: their last place is 2^-24, from 1 on 2^-23.
ExactRow ExactSearch(double a, double step) {
  if (a == 1) return {1, 0, 0};
  const double first = std::max(0.75, a - step / 2), last = std::min(1.5, a + step / 2);
  const int place = a < 1 ? -24 : -23;
  ExactRow best = {};
  double least = 1;
  for (int bits = 2; bits < 9; ++bits) {
    for (int k = 1; k < 3 << bits; k += 2) {
      const double c = std::ldexp(k, -bits);
      const double most = std::max(std::fabs(first * c - 1), std::fabs(last * c - 1));
      if (most > std::ldexp(1, 24 + place - bits) || most >= least) continue;
      least = most;
      const long double log = -std::log(static_cast<long double>(c));
      const long double hi = std::ldexp(std::nearbyint(std::ldexp(log, 16)), -16);
      best = {static_cast<float>(c), static_cast<float>(hi), static_cast<float>(log - hi)};
    }
  }
  return best;
}

template <int kSize>
void ExactTable(const char* name, int steps) {
  ExactRow rows[kSize] = {};
  for (int i = steps * 3 / 4; i <= steps * 3 / 2; ++i) {
    rows[i % kSize] = ExactSearch(static_cast<double>(i) / steps, 1.0 / steps);
  }
  std::printf("\ninline constexpr LogExactTable<%d> %s = {\n", kSize, name);
  for (const auto field : {&ExactRow::factor, &ExactRow::hi, &ExactRow::lo}) {
    std::printf("    {");
    for (int j = 0; j < kSize; ++j) {
      std::printf("%s%af",
                  j == 0  ? ""
                  : j % 4 ? ", "
                          : ",\n     ",
                  static_cast<double>(rows[j].*field));
    }
    std::printf("},\n");
  }
  std::printf("};\n");
}

template <class Search>
void Table(const char* name, Search search, int steps = 16) {
  Row rows[16] = {};
  for (int i = steps * 3 / 4; i <= steps * 3 / 2; ++i) {
    rows[i & 15] = search(static_cast<float>(i) / static_cast<float>(steps));
  }
  std::printf("\ninline constexpr LogSingleTable %s = {\n", name);
  PrintColumn<5>(rows, &Row::factor);
  PrintColumn<5>(rows, &Row::log);
  std::printf("};\n");
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/log_single_tables.cc:\n"
      "//   gen_log_single_tables > pex_core/_heap/real/log_single_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_LOG_SINGLE_TABLES_H_\n"
      "#define PEX_CORE__HEAP_REAL_LOG_SINGLE_TABLES_H_\n\nnamespace pex {\n\n"
      "// Rows i & 15 for a = i/16, i = 12 .. 24.\n"
      "struct LogSingleTable {\n  alignas(64) float factor[16], log[16];\n};\n\n"
      "// Points: 1/a and ln(a).");
  Table("kLnSingleTable", PointSearch);
  std::printf(
      "\n// Factors: c near log(e)/a and -log(c/log(e)), log(e) itself as a float; for ln of 12 "
      "bits. Rows\n// i for a = i/8, i = 6 .. 12.");
  Table(
      "kLnSingleEighths", [](float a) { return FactorSearch(1, 12, a, 1.0f / 8); }, 8);
  std::printf("\n");
  Table(
      "kLog10SingleEighths", [](float a) { return FactorSearch(kLog10E, 24, a, 1.0f / 8); }, 8);
  std::printf(
      "\n// Factors c near 1/a so short that c m - 1 is exact for the m next to a, and -ln(c) in "
      "two "
      "parts,\n// the first a multiple of 2^-16. Rows i mod 8 for a = i/8, i = 6 .. 12, and i mod "
      "32 "
      "for a = i/32,\n// i = 24 .. 48.\n"
      "template <int kSize>\nstruct LogExactTable {\n"
      "  alignas(64) float factor[kSize], hi[kSize], lo[kSize];\n};\n");
  ExactTable<8>("kLogExactEighths", 8);
  std::printf("\n");
  ExactTable<32>("kLogExactThirtySeconds", 32);
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_LOG_SINGLE_TABLES_H_\n");
}
