// Writes pex_core/_heap/real/atan_tables.h: the breakpoints of the vector arctangents, whose
// arctangents are almost doubles or floats (accurate tables of S. Gal, 1986), and the table of the
// scalar one.
#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

// atan(c) as the nearest T, and the rest.
template <typename T>
T Arctangent(T c, double* rest) {
  mpfr_t x;
  mpfr_init2(x, 200);
  mpfr_set_d(x, c, MPFR_RNDN);
  mpfr_atan(x, x, MPFR_RNDN);
  const T hi = sizeof(T) == 4 ? static_cast<T>(mpfr_get_flt(x, MPFR_RNDN))
                              : static_cast<T>(mpfr_get_d(x, MPFR_RNDN));
  mpfr_sub_d(x, x, hi, MPFR_RNDN);
  *rest = mpfr_get_d(x, MPFR_RNDN);
  mpfr_clear(x);
  return hi;
}

// Whether atan(c) can be a T to within `slack` of itself, by the C library's long doubles, which
// err by few units of 2^-63.
template <typename T>
bool MayBeAccurate(T c, double slack) {
  const long double angle = std::atan(static_cast<long double>(c));
  return std::fabs(angle - static_cast<T>(angle)) <= (slack + 0x1p-60L) * angle;
}

// In each octave from 1/16 to 16 a ratio y/x belongs to the first or the second bin by the
// difference of the bit patterns of y and x, which is the exponent and the mantissa of the ratio
// when x is a power of two. The first bin has ratios from 1 to 3/2 of the octave's foot, the second
// ones from 4/3 to 2.
double Center(int bin) {
  if (bin == 0) return 0;
  const double foot = std::ldexp(1.0, bin / 2 - 4);
  const double low = bin % 2 ? foot * 4 / 3 : foot;
  const double high = bin % 2 ? foot * 2 : foot * 3 / 2;
  return std::tan((std::atan(low) + std::atan(high)) / 2);
}

// A number near `center` whose arctangent is almost a T, and a multiple of `grain`.
template <typename T>
T Breakpoint(double center, T* angle, double grain = 0x1p-149) {
  const double slack = sizeof(T) == 8 ? 0x1p-64 : 0x1p-32;
  for (T c = static_cast<T>(center);; c = std::nextafter(c, T(100))) {
    if (!MayBeAccurate(c, slack)) continue;
    double rest;
    *angle = Arctangent(c, &rest);
    if (std::fabs(rest) <= slack * *angle && std::fmod(*angle, grain) == 0) return c;
  }
}

template <typename T, int N>
void Column(const T (&values)[N]) {
  std::printf("    {");
  for (int i = 0; i < N; ++i) {
    std::printf("%s%a%s",
                i == 0  ? ""
                : i % 4 ? ", "
                        : ",\n     ",
                static_cast<double>(values[i]), sizeof(T) == 4 ? "f" : "");
  }
  std::printf("},\n");
}

void BinTable() {
  double c[16], finite[16], angle[16], rest[16];
  for (int bin = 0; bin < 16; ++bin) {
    const int row = (bin + 6) & 15;
    finite[row] = 1;
    rest[row] = 0;
    c[row] = Breakpoint(Center(bin), &angle[row]);
    if (bin == 15) {
      c[row] = 1;
      finite[row] = 0;
      mpfr_t half_pi;
      mpfr_init2(half_pi, 200);
      mpfr_const_pi(half_pi, MPFR_RNDN);
      mpfr_div_ui(half_pi, half_pi, 2, MPFR_RNDN);
      angle[row] = mpfr_get_d(half_pi, MPFR_RNDN);
      mpfr_sub_d(half_pi, half_pi, angle[row], MPFR_RNDN);
      rest[row] = mpfr_get_d(half_pi, MPFR_RNDN);
      mpfr_clear(half_pi);
    }
  }
  std::printf("\ninline constexpr AtanBins kAtanBins = {\n");
  Column(c);
  Column(finite);
  Column(angle);
  Column(rest);
  std::printf("};\n");
}

// The one breakpoint of the short arctangents.
template <typename T>
void Middle(const char* type, const char* name, double near, double grain = 0x1p-149) {
  T angle;
  const T c = Breakpoint<T>(near, &angle, grain);
  const char* suffix = sizeof(T) == 4 ? "f" : "";
  std::printf("inline constexpr %s %s = %a%s, %sAngle = %a%s;\n", type, name,
              static_cast<double>(c), suffix, name, static_cast<double>(angle), suffix);
}

// Bins of a >= 0 by the leading bits of a + 3/8: 2^bits of each octave, `count` in all; the last
// one goes to infinity. Rows are numbered by those bits and as many of the exponent's lowest as
// there are rows for. The second bin's center lies at the share `second` of its angle.
template <typename T>
void PlainTable(const char* name, int bits, int count, double second) {
  const int N = 16;
  const double shift = 0.375;
  T c[N] = {}, angle[N] = {};
  double foot = 0;
  for (int bin = 0; bin < count; ++bin) {
    const double sum = foot + shift;
    const int exponent = std::ilogb(sum), biased = exponent + (sizeof(T) == 8 ? 1023 : 127);
    const double step = std::ldexp(1.0, exponent - bits);
    const int row = (biased << bits) + static_cast<int>((sum - std::ldexp(1.0, exponent)) / step);
    const double head = foot + step;
    if (bin > 0) {
      const double low = std::atan(foot), high = std::atan(bin < count - 1 ? head : INFINITY);
      const double center = std::tan(low + (high - low) * (bin == 1 ? second : 0.5));
      c[row & (count - 1)] = Breakpoint<T>(center, &angle[row & (count - 1)]);
    }
    foot = head;
  }
  for (int row = count; row < N; ++row) {
    c[row] = c[row - count];
    angle[row] = angle[row - count];
  }
  std::printf("\ninline constexpr AtanPlainBins<%s> %s = {\n", sizeof(T) == 8 ? "double" : "float",
              name);
  Column(c);
  Column(angle);
  std::printf("};\n");
}

void PlainTables() {
  std::printf(R"(
// Rows of atan(a) = angle + atan((a - c)/(1 + c a)), by the leading bits of a + 3/8, which goes up
// to the last bin. The angle is atan(c) to within 2^-64 (single: 2^-32) of itself; the row of the
// least a has c = 0.
template <typename T>
struct AtanPlainBins {
  alignas(64) T c[16], angle[16];
};

// Quarters of octaves: |t| < 0.0627 below 1/4, 0.0872 below 4.625, 0.1067 beyond.)");
  PlainTable<double>("kAtanBinsOfDouble", 2, 16, 0.5);
  std::printf(R"(
// Halves of octaves, twice over: |t| <= 0.125 below 1/8, from -0.092 to 0.145 below 3/8, less than
// 0.145 beyond.)");
  PlainTable<float>("kAtanBinsOfFloat", 1, 8, 0.387);
}

// The same by longer steps, for a small one hardly changes what the arctangent lacks of a double.
double FineBreakpoint(double center, double* angle) {
  for (double c = center;; c += 0x1.23456p-33 * center) {
    if (!MayBeAccurate(c, 0x1p-64)) continue;
    double rest;
    *angle = Arctangent(c, &rest);
    if (std::fabs(rest) <= 0x1p-64 * *angle) return c;
  }
}

// Rows of a >= 0 by its exponent and the five leading bits of its mantissa from 2^-7 to 2^6; one
// row for what is below, another one for what is beyond.
void FineTable() {
  std::printf(R"(
// Rows c, angle of atan(a) = angle + atan((a - c)/(1 + c a)), 32 of each octave from 2^-7 to 2^6 by
// the leading bits of a, between one with c = 0 for what is below and one for what is beyond. The
// angle is atan(c) to within 2^-64 of itself; the fraction is below 0.0079, and in the rows between
// below 1/64 of a.
alignas(64) inline constexpr double kAtanFineRows[418][2] = {
    {0x0p+0, 0x0p+0},
)");
  for (int row = 0; row <= 416; ++row) {
    const double step = std::ldexp(1.0, row / 32 - 12),
                 foot = std::ldexp(1.0, row / 32 - 7) + row % 32 * step;
    const double head = row < 416 ? foot + step : INFINITY;
    double angle;
    const double c = FineBreakpoint(std::tan((std::atan(foot) + std::atan(head)) / 2), &angle);
    std::printf("    {%a, %a},\n", c, angle);
  }
  std::printf("};\n");
}

// A number of 26 bits near `center` whose arctangent is almost a multiple of pi's last place.
double ShortBreakpoint(double center, double* angle) {
  const double step = std::ldexp(1.0, std::ilogb(center) - 25);
  const double middle = std::nearbyint(center / step) * step;
  for (int64_t k = 0;; k = k > 0 ? -k : 1 - k) {
    const double c = middle + static_cast<double>(k) * step;
    const long double places = std::atan(static_cast<long double>(c)) * 0x1p51L;
    *angle = static_cast<double>(std::nearbyint(places)) * 0x1p-51;
    const double slack = 0x1p-60 * *angle;
    if (std::fabs(places - std::nearbyint(places)) > 2 * slack * 0x1p51) continue;
    double rest;
    const double nearest = Arctangent(c, &rest);
    if (std::fabs(nearest - *angle + rest) <= slack) return c;
  }
}

// Rows of a ratio up to 1 by its exponent and the five leading bits of its mantissa from 2^-7 on;
// one row for what is below, and the last one twice, for 1.
void FineOctantTable() {
  std::printf(R"(
// Rows c, angle of atan(low/high) = angle + atan((low - c high)/(high + c low)), 32 of each octave
// from 2^-7 to 1 by the leading bits of the ratio, one with c = 0 for what is below before them, and
// the last one twice. c has 26 bits, the angle is a multiple of pi's last place and atan(c) to within
// 2^-60 of itself; the fraction is below 0.0079, and in the rows after the first one below 1/64 of
// the ratio.
alignas(64) inline constexpr double kAtanFineOctantRows[226][2] = {
    {0x0p+0, 0x0p+0},
)");
  double c = 0, angle = 0;
  for (int row = 0; row <= 224; ++row) {
    const double step = std::ldexp(1.0, row / 32 - 12);
    const double foot = std::ldexp(1.0, row / 32 - 7) + row % 32 * step;
    if (row < 224) c = ShortBreakpoint(foot + step / 2, &angle);
    std::printf("    {%a, %a},\n", c, angle);
  }
  std::printf("};\n");
}

// Quarters of octaves from 1/16 to 16, in rows by the exponent and the two leading bits of the
// mantissa; the first bin goes from 0 on, the last one to infinity.
void ShortTable() {
  const int N = 32;
  float c[N], finite[N], angle[N], rest[N];
  for (int bin = 0; bin < N; ++bin) {
    const double foot = std::ldexp(1 + 0.25 * (bin % 4), bin / 4 - 4);
    const double head = foot + std::ldexp(0.25, bin / 4 - 4);
    const int row = (bin + 4 * (127 - 4)) % N;
    double more = 0;
    c[row] = bin == 0       ? 0.0f
             : bin == N - 1 ? 1.0f
                            : static_cast<float>(std::tan((std::atan(foot) + std::atan(head)) / 2));
    finite[row] = bin == N - 1 ? 0.0f : 1.0f;
    // atan(1/0) is twice atan(1).
    angle[row] = Arctangent(c[row], &more);
    if (bin == N - 1) angle[row] *= 2, more *= 2;
    rest[row] = static_cast<float>(more);
  }
  std::printf(R"(
// Quarters of octaves from 1/16 to 16, rows i & 31 for the exponent and the two leading bits of the
// mantissa, i: atan(a) = angle + rest + atan((finite a - c)/(finite + c a)) with a fraction below
// 0.0782. The lowest bin, with all that is below it, has c = 0, the highest one stands for infinity.
struct AtanShortBins {
  alignas(64) float c[32], finite[32], angle[32], rest[32];
};

inline constexpr AtanShortBins kAtanShortBins = {
)");
  Column(c);
  Column(finite);
  Column(angle);
  Column(rest);
  std::printf("};\n");
}

// a (n[0] + n[1] a + n[2] a^2)/(d[0] + d[1] a + d[2] a^2 + a^3) with the least relative error as
// atan(a), for all a = u/(1 - u), by Remez's exchange of the seven points of the largest errors.
// The denominator of the round before makes the conditions linear.
struct Ratio {
  long double n[3], d[3], error;
};

long double ErrorOf(const Ratio& r, long double u) {
  const long double a = u / (1 - u);
  return a * (r.n[0] + a * (r.n[1] + a * r.n[2])) / (r.d[0] + a * (r.d[1] + a * (r.d[2] + a))) /
             std::atan(a) -
         1;
}

Ratio Solved(const Ratio& before, const long double (&points)[7]) {
  long double m[7][8];
  for (int i = 0; i < 7; ++i) {
    const long double u = points[i], v = 1 - u, y = std::atan(u / v) / u;
    const long double denominator =
        before.d[0] * v * v * v + u * (before.d[1] * v * v + u * (before.d[2] * v + u));
    const long double row[8] = {v * v,
                                u * v,
                                u * u,
                                -y * v * v * v,
                                -y * u * v * v,
                                -y * u * u * v,
                                (i % 2 ? -1 : 1) * y * denominator,
                                y * u * u * u};
    std::copy(row, row + 8, m[i]);
  }
  for (int i = 0; i < 7; ++i) {  // Gauss and Jordan
    int pivot = i;
    for (int j = i; j < 7; ++j) {
      if (std::fabs(m[j][i]) > std::fabs(m[pivot][i])) pivot = j;
    }
    std::swap(m[i], m[pivot]);
    for (int j = 0; j < 7; ++j) {
      const long double factor = j == i ? 0 : m[j][i] / m[i][i];
      for (int k = i; k < 8; ++k) m[j][k] -= factor * m[i][k];
    }
  }
  long double x[7];
  for (int i = 0; i < 7; ++i) x[i] = m[i][7] / m[i][i];
  return {{x[0], x[1], x[2]}, {x[3], x[4], x[5]}, std::fabs(x[6])};
}

Ratio BestRatio() {
  Ratio r = {{1.4L, 2, 1.6L}, {1.4L, 2, 1.9L}, 0};
  long double points[7];
  for (int i = 0; i < 7; ++i) points[i] = 0.5L - 0.49999L * std::cos(i * 3.14159265L / 6);
  for (int round = 0; round < 30; ++round) {
    for (int i = 0; i < 8; ++i) r = Solved(r, points);
    int at = 0;
    long double most = 0;
    bool positive = ErrorOf(r, points[0]) > 0;
    for (int i = 1; i < 100000 && at < 7; ++i) {
      const long double u = i * 1e-5L, e = ErrorOf(r, u);
      if ((e > 0) != positive) {
        positive = !positive;
        most = 0;
        ++at;
      }
      if (at < 7 && std::fabs(e) > most) {
        most = std::fabs(e);
        points[at] = u;
      }
    }
  }
  return r;
}

// The same as a (c[0] v + c[1])/((a + c[3]) (v + c[4]) + c[5]) with v = a (a + c[2]).
void RatioTable() {
  const Ratio r = BestRatio();
  const long double linear = r.n[1] / r.n[2], shift = r.d[2] - linear,
                    lift = r.d[1] - shift * linear;
  const long double c[6] = {r.n[2], r.n[0], linear, shift, lift, r.d[0] - shift * lift};
  std::printf(R"(
// atan(a) = a (c[0] v + c[1])/((a + c[3]) (v + c[4]) + c[5]) with v = a (a + c[2]), for all a >= 0
// with an error of 2^%.3f.
inline constexpr float kAtanRatioSingle[] = {
    )",
              static_cast<double>(std::log2(r.error)));
  for (int i = 0; i < 6; ++i) {
    std::printf("%af%s", static_cast<double>(static_cast<float>(c[i])),
                i == 5   ? "};\n"
                : i == 3 ? ",\n    "
                         : ", ");
  }
}

void ScalarTable() {
  std::printf(R"(
// Row j for the breakpoint c in the middle of the half octave j above 1/8, that is 1.25 2^(j/2 - 3)
// for even j and 1.75 2^((j-1)/2 - 3) for odd j: atan(c) in two parts.
alignas(64) inline constexpr double _pexdAtanHATab[114][2] = {
)");
  for (int j = 0; j < 114; ++j) {
    double rest;
    const double c = std::ldexp(j % 2 ? 1.75 : 1.25, j / 2 - 3);
    const double hi = Arctangent(c, &rest);
    std::printf("    {%a, %a},\n", hi, rest);
  }
  std::printf("};\n");
}

}  // namespace

int main() {
  std::printf(
      R"(// Generated by gen/atan_tables.cc: gen_atan_tables > pex_core/_heap/real/atan_tables.h
#ifndef PEX_CORE__HEAP_REAL_ATAN_TABLES_H_
#define PEX_CORE__HEAP_REAL_ATAN_TABLES_H_

namespace pex {

// Half octaves from 1/16 to 16, rows i & 15 for the exponent and the leading bit of the mantissa, i:
// atan(a) = angle + rest + atan((finite a - c)/(finite + c a)) with a fraction below 0.0999. The
// angle is atan(c) to within 2^-64 of itself; the lowest bin, with all that is below
// it, has c = 0, the highest one stands for infinity and has c = 1, finite = 0 and a rest.
struct AtanBins {
  alignas(64) double c[16], finite[16], angle[16], rest[16];
};
)");
  BinTable();
  std::printf("\n// Near 3/4, with its arctangent to within 2^-64 of itself.\n");
  // Off 3/4 itself, where the steps of the arctangent are 16/25 and fall on few fractions.
  Middle<double>("double", "kAtanMiddle", 0.7502);
  std::printf("// The same near 0.56; the angle is a multiple of pi's last place.\n");
  Middle<double>("double", "kAtanOctantMiddle", 0.56, 0x1p-51);
  PlainTables();
  FineTable();
  FineOctantTable();
  ShortTable();
  RatioTable();
  ScalarTable();
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_ATAN_TABLES_H_\n");
}
