// Writes pex_core/_heap/real/erf_tables.cc: the error function and its complement at multiples of
// 1/128 and 1/256 or next to them.
#include <mpfr.h>

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "gen/normal_tail.h"
#include "pex_core/_heap/real/erf_tables.h"

namespace {

constexpr mpfr_prec_t kBits = 240;

// Registers of the working precision.
mpfr_t value, slope, work;

// erfc(c/root) at the multiples c of 1/512 from `low` to `high`, relative to 2^-220: from the
// highest on, each from the one above by Taylor's series, whose terms are positive where the
// function is small. A fiftieth of the time that MPFR takes for each by itself.
class Tails {
 public:
  Tails(double root_squared, int low, int high)
      : low_(low * kStep), values_(static_cast<size_t>((high - low) * kStep + 1)) {
    mpfr_t root, h, x, term, before, next, sum, factor, square;
    mpfr_inits2(kBits, root, h, x, term, before, next, sum, factor, square, nullptr);
    mpfr_set_d(root, root_squared, MPFR_RNDN);
    mpfr_rec_sqrt(root, root, MPFR_RNDN);
    mpfr_div_ui(h, root, kStep, MPFR_RNDN);
    mpfr_sqr(square, h, MPFR_RNDN);
    mpfr_mul_2ui(square, square, 1, MPFR_RNDN);
    for (auto& one : values_) mpfr_init2(&one, kBits);
    mpfr_mul_si(x, h, high * kStep, MPFR_RNDN);
    mpfr_erfc(&values_.back(), x, MPFR_RNDN);
    for (int k = high * kStep; k > low_; --k) {
      // The terms H_n(x) h^(n+1)/(n+1)! of erfc(x - h) - erfc(x), over 2/sqrt(pi) e^(-x^2).
      mpfr_mul_si(x, h, k, MPFR_RNDN);
      mpfr_set_zero(before, 1);
      mpfr_set(term, h, MPFR_RNDN);
      mpfr_set(sum, h, MPFR_RNDN);
      mpfr_mul(factor, x, h, MPFR_RNDN);
      mpfr_mul_2ui(factor, factor, 1, MPFR_RNDN);
      for (unsigned n = 0; n < 200; ++n) {
        mpfr_mul(next, factor, term, MPFR_RNDN);
        mpfr_mul(before, before, square, MPFR_RNDN);
        mpfr_mul_ui(before, before, n, MPFR_RNDN);
        mpfr_div_ui(before, before, n + 1, MPFR_RNDN);
        mpfr_sub(next, next, before, MPFR_RNDN);
        mpfr_div_ui(next, next, n + 2, MPFR_RNDN);
        mpfr_add(sum, sum, next, MPFR_RNDN);
        mpfr_swap(before, term);
        mpfr_swap(term, next);
        // One term alone may be next to 0.
        if (Below(term, sum) && Below(before, sum)) break;
      }
      mpfr_sqr(x, x, MPFR_RNDN);
      mpfr_neg(x, x, MPFR_RNDN);
      mpfr_exp(x, x, MPFR_RNDN);
      mpfr_mul(sum, sum, x, MPFR_RNDN);
      mpfr_const_pi(x, MPFR_RNDN);
      mpfr_rec_sqrt(x, x, MPFR_RNDN);
      mpfr_mul(sum, sum, x, MPFR_RNDN);
      mpfr_mul_2ui(sum, sum, 1, MPFR_RNDN);
      mpfr_add(At(k - 1), At(k), sum, MPFR_RNDN);
      if (k == 1) mpfr_set_ui(At(0), 1, MPFR_RNDN);  // exactly
    }
    mpfr_clears(root, h, x, term, before, next, sum, factor, square, nullptr);
  }
  // Null where c is not one of the multiples.
  mpfr_srcptr operator()(double c) {
    const double k = c * kStep - low_;
    if (k != std::nearbyint(k) || k < 0 || k >= static_cast<double>(values_.size())) return nullptr;
    return &values_[static_cast<size_t>(k)];
  }

 private:
  static constexpr int kStep = 512;
  static bool Below(mpfr_t term, mpfr_t sum) {
    return mpfr_zero_p(term) || mpfr_get_exp(term) < mpfr_get_exp(sum) - kBits - 8;
  }
  mpfr_ptr At(int k) { return &values_[static_cast<size_t>(k - low_)]; }

  int low_;
  std::vector<__mpfr_struct> values_;
};

mpfr_srcptr ErfcOnGrid(double c) {
  static Tails tails(1, -7, 28);
  return tails(c);
}

// value = erf(c) or, with `complement`, erfc(c); slope = 2/sqrt(pi) e^(-c^2).
void At(double c, bool complement) {
  mpfr_set_d(work, c, MPFR_RNDN);
  const mpfr_srcptr known = complement ? ErfcOnGrid(c) : nullptr;
  if (known != nullptr) {
    mpfr_set(value, known, MPFR_RNDN);
  } else {
    complement ? mpfr_erfc(value, work, MPFR_RNDN) : mpfr_erf(value, work, MPFR_RNDN);
  }
  mpfr_sqr(slope, work, MPFR_RNDN);
  mpfr_neg(slope, slope, MPFR_RNDN);
  mpfr_exp(slope, slope, MPFR_RNDN);
  mpfr_const_pi(work, MPFR_RNDN);
  mpfr_rec_sqrt(work, work, MPFR_RNDN);
  mpfr_mul(slope, slope, work, MPFR_RNDN);
  mpfr_mul_2ui(slope, slope, 1, MPFR_RNDN);
}

// The double next to x, and how far x is from it.
double Round(mpfr_t x, double* rest) {
  const double y = mpfr_get_d(x, MPFR_RNDN);
  mpfr_sub_d(work, x, y, MPFR_RNDN);
  *rest = mpfr_get_d(work, MPFR_RNDN);
  return y;
}

// How far x is from the double next to it, in ulps.
double RoundingError(mpfr_t x) {
  double rest;
  const double y = Round(x, &rest);
  return std::fabs(rest) / (std::nextafter(y, INFINITY) - y);
}

// Whether erf(c) can be a double to within 2^-9 ulp, by the C library's long doubles, whose ulp is
// 2^-11 of the double's and which err by few.
bool MayBeAccurate(double c) {
  const long double value = std::erf(static_cast<long double>(c));
  const auto nearest = static_cast<double>(value);
  const double ulp = std::nextafter(nearest, INFINITY) - nearest;
  return std::fabs(value - nearest) <= (0x1p-9L + 0x1p-7L) * ulp;
}

// A point near `grid` where erf is a double to within 2^-9 ulp, and the slope, divided by
// `slope_unit`, to within `slope_error`.
double AccuratePoint(double grid, double slope_error, mpfr_t slope_unit) {
  for (int k = 0;; ++k) {
    const double c = grid + (k % 2 ? k / 2 + 1 : -k / 2) * 0x1p-30;
    if (!MayBeAccurate(c)) continue;
    At(c, false);
    if (RoundingError(value) > 0x1p-9) continue;
    mpfr_div(slope, slope, slope_unit, MPFR_RNDN);
    if (RoundingError(slope) <= slope_error) return c;
  }
}

// Where erf is so flat that hardly a double lies near: the point whose erf is the double of
// [.., 1 - 2^-53] next to that of `grid`.
double FlatPoint(double grid) {
  mpfr_t x, target;
  mpfr_inits2(kBits, x, target, nullptr);
  At(grid, true);
  mpfr_mul_2ui(value, value, 53, MPFR_RNDN);
  const double steps = std::fmax(1, mpfr_get_d(value, MPFR_RNDN) + 0.5 - 0x1p-30);
  mpfr_set_d(target, std::floor(steps) * 0x1p-53, MPFR_RNDN);
  mpfr_set_d(x, grid, MPFR_RNDN);
  double c = grid;
  for (int i = 0; i < 50; ++i) {
    At(c, true);
    mpfr_sub(value, value, target, MPFR_RNDN);
    mpfr_div(value, value, slope, MPFR_RNDN);
    mpfr_add(x, x, value, MPFR_RNDN);
    const double before = c;
    c = mpfr_get_d(x, MPFR_RNDN);
    if (c == before) break;
    mpfr_set_d(x, c, MPFR_RNDN);
  }
  mpfr_clears(x, target, nullptr);
  return c;
}

void Erf() {
  mpfr_t one;
  mpfr_init2(one, kBits);
  mpfr_set_ui(one, 1, MPFR_RNDN);
  std::printf("\nalignas(64) const ErfRow kErfRows[kErfRowCount] = {");
  for (int j = 0; j < pex::kErfRowCount; ++j) {
    const double grid = j / 128.0;
    double c = 0, f = 0, rest;
    At(0, false);
    if (j > 0) {
      c = j < 640 ? AccuratePoint(grid, j <= 32 ? 0x1p-4 : 1, one) : FlatPoint(grid);
      At(c, false);
      f = mpfr_get_d(value, MPFR_RNDN);
    }
    double s = Round(slope, &rest);
    if (j == pex::kErfRowCount - 1) c = grid, f = 1, s = 0;
    std::printf("\n    {%a, %a, %a, %a},", c, f, s, (2 * c * c - 1) / 3);
  }
  std::printf("\n};\n");
  mpfr_clear(one);
}

// The slopes are divided by the ratio of 2/sqrt(pi) to the double next to it.
void ErfFine() {
  mpfr_t unit;
  mpfr_init2(unit, kBits);
  At(0, false);
  double rest;
  const double nearest = Round(slope, &rest);
  mpfr_div_d(unit, slope, nearest, MPFR_RNDN);
  std::printf("\nalignas(64) const ErfPoint kErfPoints[kErfPointCount] = {");
  for (int j = 0; j < pex::kErfPointCount; ++j) {
    const double grid = j / 256.0;
    double c = 0, f = 0, s = nearest;
    if (j == pex::kErfPointCount - 1) {
      c = grid, f = 1, s = 0;
    } else if (j > 0) {
      c = j < 1280 ? AccuratePoint(grid, j < 64 ? j * 0x1p-6 : 1, unit) : FlatPoint(grid);
      At(c, false);
      f = mpfr_get_d(value, MPFR_RNDN);
      mpfr_div(slope, slope, unit, MPFR_RNDN);
      s = mpfr_get_d(slope, MPFR_RNDN);
    }
    std::printf("\n    {%a, %a, %a, 0},", c, f, s);
  }
  std::printf("\n};\n");
  mpfr_clear(unit);
}

// What a value and a slope that are off by these contribute to the error next to c, in ulps of the
// result, which can be in the binade below that of erf(c).
double ErrorAround(double c, double value_rest, double slope_rest) {
  double most = 0;
  for (int i = -8; i <= 8; ++i) {
    const double d = i * 0x1p-11, y = std::erf(c + d);
    most = std::fmax(most, std::fabs(value_rest + d * slope_rest) / (std::nextafter(y, 2.0) - y));
  }
  return most;
}

void ErfPlain() {
  std::printf("\nalignas(64) const ErfcRow kErfPlainRows[kErfRowCount] = {");
  for (int j = 0; j < pex::kErfRowCount; ++j) {
    const double c = j / 128.0;
    At(c, false);
    double rest_f, rest_s;
    const double f = Round(value, &rest_f), s = Round(slope, &rest_s);
    const double f_ulp = std::nextafter(f, INFINITY) - f, s_ulp = std::nextafter(s, INFINITY) - s;
    double best_f = f, best_s = s, least = j == 0 ? 0 : ErrorAround(c, rest_f, rest_s);
    for (int i = -1; i <= 1; ++i) {
      for (int k = -2; k <= 2; ++k) {
        const double error = ErrorAround(c, rest_f - i * f_ulp, rest_s - k * s_ulp);
        if (error < least) least = error, best_f = f + i * f_ulp, best_s = s + k * s_ulp;
      }
    }
    std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ", best_f, best_s);
  }
  std::printf("\n};\n");
}

void ErfShort() {
  std::printf("\nalignas(64) const ErfcRow kErfShortRows[kErfRowCount] = {");
  for (int j = 0; j < pex::kErfRowCount; ++j) {
    const double c = j / 128.0;
    At(c, false);
    const double s = mpfr_get_d(slope, MPFR_RNDN) * (1 + 0x1p-17 * c * c);
    std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ", mpfr_get_d(value, MPFR_RNDN), s);
  }
  std::printf("\n};\n");
}

// The upper words of two doubles.
uint64_t Packed(double upper, double lower) {
  const auto top = [](double x) { return (std::bit_cast<uint64_t>(x) + 0x80000000u) >> 32; };
  return top(upper) << 32 | top(lower);
}

void Erfc(bool rests) {
  std::printf(rests ? "\nalignas(64) const uint64_t kErfcRests[kErfcRowCount] = {"
                    : "\nalignas(64) const ErfcRow kErfcRows[kErfcRowCount] = {");
  for (int j = 0; j < pex::kErfcRowCount; ++j) {
    At(j / 128.0, true);
    double rest_f, rest_s;
    mpfr_mul_2ui(value, value, pex::kErfcScale, MPFR_RNDN);
    mpfr_mul_2ui(slope, slope, pex::kErfcScale, MPFR_RNDN);
    const double f = Round(value, &rest_f), s = Round(slope, &rest_s);
    if (rests) {
      std::printf("%s0x%016" PRIX64 ",", j % 4 ? " " : "\n    ", Packed(rest_f, rest_s));
    } else {
      std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ", f, s);
    }
  }
  std::printf("\n};\n");
}

// value = the normal distribution's tail beyond c, slope = half its density.
void TailAt(double c) {
  static Tails tails(2, -9, 37);
  mpfr_set(value, tails(c), MPFR_RNDN);
  mpfr_div_2ui(value, value, 1, MPFR_RNDN);
  NormalDensity(c, slope, work);
  mpfr_div_2ui(slope, slope, 1, MPFR_RNDN);
}

void ErfcFine() {
  std::printf("\nalignas(64) const ErfcRow kErfcFineRows[kErfcFineRowCount] = {");
  for (int j = 0; j < pex::kErfcFineRowCount; ++j) {
    At((j - pex::kErfcFineFirst) / 256.0, true);
    std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ", mpfr_get_d(value, MPFR_RNDN),
                -mpfr_get_d(slope, MPFR_RNDN));
  }
  std::printf("\n};\n");
}

// The normal distribution function at c and its density, from value and slope of TailAt(-c).
void CdfNorm() {
  std::printf("\nalignas(64) const ErfcRow kCdfNormRows[kCdfNormRowCount] = {");
  for (int j = 0; j < pex::kCdfNormRowCount; ++j) {
    TailAt((pex::kCdfNormFirst - j) / 256.0);
    std::printf("%s{%a, %a},", j % 2 ? " " : "\n    ", mpfr_get_d(value, MPFR_RNDN),
                2 * mpfr_get_d(slope, MPFR_RNDN));
  }
  std::printf("\n};\n");
}

void Single(const char* name, const char* count_name, int first, int count, bool normal) {
  std::printf("\nalignas(64) const ErfcSingleRow %s[%s] = {", name, count_name);
  for (int j = 0; j < count; ++j) {
    const double c = (j - first) / 128.0;
    normal ? TailAt(c) : At(c, true);
    mpfr_mul_2ui(value, value, pex::kErfcSingleScale, MPFR_RNDN);
    mpfr_mul_2ui(slope, slope, pex::kErfcSingleScale, MPFR_RNDN);
    std::printf("%s{%af, %af},", j % 3 ? " " : "\n    ", mpfr_get_flt(value, MPFR_RNDN),
                mpfr_get_flt(slope, MPFR_RNDN));
  }
  std::printf("\n};\n");
}

// The lines with the slope of the chord, halfway between it and the curve.
void Linear(const char* name, const char* count_name, double first, int count, bool normal) {
  const auto f = [normal](double c) {
    normal ? TailAt(c) : At(c, true);
    return mpfr_get_d(value, MPFR_RNDN);
  };
  std::printf("\nalignas(64) const ErfcSingleRow %s[%s] = {", name, count_name);
  for (int j = 0; j < count; ++j) {
    constexpr double kHalf = 1.0 / 512;
    const double t = j / 256.0, c = t - first, left = f(c - kHalf), right = f(c + kHalf);
    int exponent;
    const double chord = std::frexp((left - right) * (1 / (2 * kHalf)), &exponent);
    const double slope12 = std::ldexp(std::nearbyint(chord * 4096), exponent - 12);
    const double middle = (f(c) + (left + right) / 2) / 2;
    std::printf("%s{%af, %af},", j % 3 ? " " : "\n    ", static_cast<float>(middle + slope12 * t),
                static_cast<float>(slope12));
  }
  std::printf("\n};\n");
}

}  // namespace

int main() {
  mpfr_inits2(kBits, value, slope, work, nullptr);
  std::printf(
      "// Generated by gen/erf_tables.cc:\n"
      "//   gen_erf_tables > pex_core/_heap/real/erf_tables.cc\n"
      "#include \"pex_core/_heap/real/erf_tables.h\"\n\nnamespace pex {\n");
  Erf();
  ErfFine();
  ErfPlain();
  ErfShort();
  Erfc(false);
  Erfc(true);
  ErfcFine();
  CdfNorm();
  Single("kErfcSingleRows", "kErfcSingleRowCount", pex::kErfcSingleFirst, pex::kErfcSingleRowCount,
         false);
  Single("kCdfNormSingleRows", "kCdfNormSingleRowCount", pex::kCdfNormSingleFirst,
         pex::kCdfNormSingleRowCount, true);
  Linear("kErfcLinearRows", "kErfcLinearRowCount", 4, pex::kErfcLinearRowCount, false);
  Linear("kCdfNormLinearRows", "kCdfNormLinearRowCount", 6, pex::kCdfNormLinearRowCount, true);
  std::printf("\n}  // namespace pex\n");
}
