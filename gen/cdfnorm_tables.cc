// Writes pex_core/_heap/real/cdfnorm_tables.cc: the normal distribution function and the
// complementary error function at points where they are next to a double.
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "gen/normal_tail.h"
#include "pex_core/_heap/real/cdfnorm_tables.h"

namespace {

// Twice what a double to within 2^-9 of its last place takes: two of MPFR's limbs.
constexpr mpfr_prec_t kBits = 128;

// Registers of the working precision.
mpfr_t value, slope, work;

// A function whose derivative at c + t is that at c times e^(-kRate (c t + t^2/2)).
struct Normal {
  static constexpr double kRate = 1, kVertex = pex::kCdfNormVertex, kSign = -1;
  static constexpr double kUnit = pex::kCdfNormUnit, kLimit = 1, kFlat = 6.4, kEnd = 8.29;
  static constexpr int kCount = pex::kCdfNormPointCount;
  // value = the normal distribution function at c, slope = its density there.
  static void At(double c) { NormalTail(-c, value, slope, work); }
};

struct Complement {
  static constexpr double kRate = 2, kVertex = pex::kErfcVertex, kSign = 1;
  static constexpr double kUnit = pex::kErfcUnit, kLimit = 2, kFlat = 4.52, kEnd = 5.87;
  static constexpr int kCount = pex::kErfcPointCount;
  // value = erfc(c), slope = its derivative.
  static void At(double c) {
    mpfr_set_d(work, c, MPFR_RNDN);
    mpfr_erfc(value, work, MPFR_RNDN);
    mpfr_sqr(slope, work, MPFR_RNDN);
    mpfr_neg(slope, slope, MPFR_RNDN);
    mpfr_exp(slope, slope, MPFR_RNDN);
    mpfr_const_pi(work, MPFR_RNDN);
    mpfr_rec_sqrt(work, work, MPFR_RNDN);
    mpfr_mul(slope, slope, work, MPFR_RNDN);
    mpfr_mul_si(slope, slope, -2, MPFR_RNDN);
  }
};

double Nearest(mpfr_t x) { return mpfr_get_d(x, MPFR_RNDN); }

// The last place of the double next to x.
double Ulp(mpfr_t x) { return std::ldexp(1, std::ilogb(Nearest(x)) - 52); }

// How far x is above the double next to it, in ulps.
long double Excess(mpfr_t x) {
  mpfr_sub_d(work, x, Nearest(x), MPFR_RNDN);
  return mpfr_get_ld(work, MPFR_RNDN) / Ulp(x);
}

long double OffGrid(long double ulps) { return std::fabs(ulps - std::nearbyint(ulps)); }

// The same roughly, for numbers of ulps up to 2^40.
bool NearGrid(double ulps) {
  constexpr double kShifter = 0x1.8p52;
  return std::fabs(ulps - ((ulps + kShifter) - kShifter)) <= 0x1.2p-9;
}

// A point near the middle of an interval of 2 half where the function is a double to within 2^-9
// ulp and, where the slope weighs as much, the slope to within 2^-5, and with a 0 as its last bit.
// `value` and `slope` are those of the point.
template <class F>
double AccuratePoint(double middle, double half) {
  const double first = std::nearbyint(middle * 0x1p32) * 0x1p-32;
  F::At(first);
  const bool and_slope = std::fabs(Nearest(slope)) * half > 0x1p-7 * Nearest(value);
  const long double y = Excess(value), value_per_offset = Nearest(slope) / Ulp(value);
  const long double slope_ulps = Nearest(slope) / Ulp(slope), s = slope_ulps + Excess(slope);
  for (uint32_t k = 0;; ++k) {
    // In no order, lest the two conditions exclude each other for long.
    const double offset = (static_cast<int32_t>(k * 0x9E3779B1u) >> 12) * 0x1p-38;
    const double e = F::kRate * offset * first;
    // The mean slope on the way, in relation to the slope, and the slope's change, as far as
    // offsets to 2^-19 need them.
    const double square = F::kRate * offset * offset;
    const double less = (e + square / 3) / 2 - e * e / 6 + e * e * e / 24;
    const double step = static_cast<double>(value_per_offset) * offset;
    if (!NearGrid(static_cast<double>(y) + (step - step * less))) continue;
    if (OffGrid(y + value_per_offset * offset * (1 - static_cast<long double>(less))) > 0x1p-9) {
      continue;
    }
    const long double change = std::expm1(-(e + 0.5L * square));
    if (and_slope && OffGrid((s + slope_ulps * change) / 2) > 0x1p-6) continue;
    F::At(first + offset);
    if (OffGrid(Excess(value)) <= 0x1p-9) return first + offset;
  }
}

// Where the function is so flat that hardly a double lies near: the point whose value is the double
// next to that of `middle`.
template <class F>
double FlatPoint(double middle) {
  double c = middle;
  F::At(c);
  const double target = std::fmin(Nearest(value), F::kLimit * (1 - 0x1p-53));
  for (int i = 0; i < 50; ++i) {
    F::At(c);
    mpfr_sub_d(value, value, target, MPFR_RNDN);
    const double before = c;
    c = std::nearbyint((c - Nearest(value) / Nearest(slope)) * 0x1p44) * 0x1p-44;
    if (c == before) break;
  }
  return c;
}

// Distances from the vertex, where the function is flat, grow from row to row.
template <class F>
void Write(const char* name) {
  std::printf("\nalignas(64) const CurvePoint k%sPoints[k%sPointCount] = {", name, name);
  for (int j = 0; j < F::kCount; ++j) {
    const double far = std::sqrt((j + 1) / F::kUnit), near = std::sqrt(j / F::kUnit);
    const double end = F::kVertex + F::kSign * far;
    if (-F::kSign * end > F::kEnd) {
      std::printf("\n    {%a, %a, 0, 0},", end, F::kLimit);
      continue;
    }
    const double middle = F::kVertex + F::kSign * (near + far) / 2;
    const bool flat = -F::kSign * middle > F::kFlat;
    const double c = flat ? FlatPoint<F>(middle) : AccuratePoint<F>(middle, (far - near) / 2);
    if (flat) F::At(c);
    const double even =
        std::ldexp(std::nearbyint(Nearest(slope) / (2 * Ulp(slope))), 1) * Ulp(slope);
    std::printf("\n    {%a, %a, %a, 0},", c, Nearest(value), even);
  }
  std::printf("\n};\n");
}

}  // namespace

int main() {
  mpfr_inits2(kBits, value, slope, work, nullptr);
  std::printf(
      "// Generated by gen/cdfnorm_tables.cc:\n"
      "//   gen_cdfnorm_tables > pex_core/_heap/real/cdfnorm_tables.cc\n"
      "#include \"pex_core/_heap/real/cdfnorm_tables.h\"\n\nnamespace pex {\n");
  Write<Normal>("CdfNorm");
  Write<Complement>("Erfc");
  std::printf("\n}  // namespace pex\n");
}
