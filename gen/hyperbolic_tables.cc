// Writes pex_core/_heap/real/hyperbolic_tables.h: exponentials at points beside the eighths of
// ln2 where e^x and e^-x both lie so close to floating-point numbers that those need no low part
// (Gal 1986).
#include <mpfr.h>

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

constexpr int kSteps = 8;

struct Format {
  const char* prefix;   // of the names of the tables
  const char* real;     // type of the offsets
  const char* integer;  // type of the patterns
  const char* suffix;   // of literals
  int precision;        // bits of a significand
  int grid;             // offsets are multiples of 2^-grid
  int64_t reach;        // below this many of them
  int copies;           // of the table in a row
};

constexpr Format kDouble = {"dHyperbolic", "double", "int64_t", "", 53, 50, int64_t{1} << 24, 1};
constexpr Format kSingle = {"sHyperbolic", "float", "int32_t", "f", 24, 28, int64_t{1} << 17, 2};

struct Point {
  double offset;    // from j ln2/8
  double grow;      // e^x/2
  double decay;     // e^-x/2
  double error[2];  // relative distances of the two from the exponentials
};

// x 2^shift less its integer, in units of 2^-64.
uint64_t Fraction(mpfr_t x, int shift) {
  mpfr_t y;
  mpfr_init2(y, 300);
  mpfr_mul_2si(y, x, shift, MPFR_RNDN);
  mpfr_frac(y, y, MPFR_RNDN);
  mpfr_mul_2si(y, y, 64, MPFR_RNDN);
  const uint64_t fraction = mpfr_get_ui(y, MPFR_RNDZ);
  mpfr_clear(y);
  return fraction;
}

uint64_t ToInteger(uint64_t fraction) { return fraction >> 63 ? 0 - fraction : fraction; }

// Half of e^x rounded to `precision` bits, and its relative distance from there.
double HalfExp(mpfr_t x, int precision, double* error) {
  mpfr_t y, rounded;
  mpfr_init2(y, 300);
  mpfr_init2(rounded, precision);
  mpfr_exp(y, x, MPFR_RNDN);
  mpfr_div_2ui(y, y, 1, MPFR_RNDN);
  mpfr_set(rounded, y, MPFR_RNDN);
  const double result = mpfr_get_d(rounded, MPFR_RNDN);
  mpfr_sub(rounded, rounded, y, MPFR_RNDN);
  mpfr_div(rounded, rounded, y, MPFR_RNDN);
  *error = std::fabs(mpfr_get_d(rounded, MPFR_RNDN));
  mpfr_clears(y, rounded, nullptr);
  return result;
}

void SetEighth(mpfr_t x, int j) {
  mpfr_const_log2(x, MPFR_RNDN);
  mpfr_mul_si(x, x, j, MPFR_RNDN);
  mpfr_div_si(x, x, kSteps, MPFR_RNDN);
}

// The point with the least offset where e^x/2 is to 2^-64 a double that ends in a zero, such that a
// half can be added without a rounding error.
double Nearest(int j) {
  if (j == 0) return 0;
  constexpr int kGrid = 50;
  mpfr_t x, y;
  mpfr_inits2(300, x, y, nullptr);
  SetEighth(x, j);
  mpfr_exp(y, x, MPFR_RNDN);
  const uint64_t grow = Fraction(y, 51), step = Fraction(y, 51 - kGrid);
  mpfr_clears(x, y, nullptr);
  for (int64_t i = 0;; i = i > 0 ? -i : 1 - i) {
    const uint64_t n = static_cast<uint64_t>(i);
    if (ToInteger(grow + n * step) >> 51 == 0) return std::ldexp(static_cast<double>(i), -kGrid);
  }
}

Point At(const Format& f, int j, double offset) {
  mpfr_t x;
  mpfr_init2(x, 300);
  SetEighth(x, j);
  mpfr_add_d(x, x, offset, MPFR_RNDN);
  double error_up, error_down;
  const double grow = HalfExp(x, f.precision, &error_up);
  mpfr_neg(x, x, MPFR_RNDN);
  const double decay = HalfExp(x, f.precision, &error_down);
  mpfr_clear(x);
  return {offset, grow, decay, {error_up, error_down}};
}

// The point within reach of j ln2/8 whose two exponentials are closest to numbers of the format
// that end in zeros, such that their sum and difference are exact.
Point Best(const Format& f, int j) {
  mpfr_t x, y;
  mpfr_inits2(300, x, y, nullptr);
  SetEighth(x, j);
  double offset = 0;
  if (j > 0) {
    // e^x/2 is in [1/2, 1), e^-x/2 in [1/4, 1/2). In the offset both are as good as quadratic; the
    // square matters where they would otherwise be the same number, at ln2/2.
    // Both on the grid of the sum, which then has no rounding error, nor has the difference.
    const int up = f.precision - 2, down = f.precision - 2;
    mpfr_exp(y, x, MPFR_RNDN);
    const uint64_t grow[] = {Fraction(y, up), Fraction(y, up - f.grid),
                             Fraction(y, up - 2 * f.grid - 1)};
    mpfr_ui_div(y, 1, y, MPFR_RNDN);
    const uint64_t decay[] = {Fraction(y, down), Fraction(y, down - f.grid),
                              Fraction(y, down - 2 * f.grid - 1)};
    uint64_t least = UINT64_MAX;
    for (int64_t i = 1 - f.reach; i < f.reach; ++i) {
      const uint64_t n = static_cast<uint64_t>(i);
      const uint64_t growth = ToInteger(grow[0] + n * (grow[1] + n * grow[2]));
      const uint64_t decline = ToInteger(decay[0] - n * (decay[1] - n * decay[2]));
      const uint64_t distance = growth > decline ? growth : decline;
      if (distance < least) {
        least = distance;
        offset = std::ldexp(static_cast<double>(i), -f.grid);
      }
    }
  }
  mpfr_clears(x, y, nullptr);
  return At(f, j, offset);
}

int64_t Pattern(const Format& f, double x) {
  return f.precision == 53 ? std::bit_cast<int64_t>(x)
                           : std::bit_cast<int32_t>(static_cast<float>(x));
}

void Patterns(const Format& f, const char* name, const Point (&points)[kSteps],
              double Point::*value, int64_t sign) {
  const int shift = f.precision - 4;  // moves k, in eighths, to the exponent
  std::printf("alignas(64) inline constexpr %s %s%s[%d] = {", f.integer, f.prefix, name,
              kSteps * f.copies);
  for (int i = 0; i < kSteps * f.copies; ++i) {
    const int64_t j = i % kSteps;
    const int64_t word = Pattern(f, points[j].*value) + sign * (j << shift);
    std::printf(i % 4 ? " " : "\n    ");
    if (f.precision == 53) {
      std::printf("0x%016" PRIX64 ",", static_cast<uint64_t>(word));
    } else {
      std::printf("0x%08" PRIX32 ",", static_cast<uint32_t>(word));
    }
  }
  std::printf("\n};\n");
}

void Offsets(const Format& f, const char* name, const Point (&points)[kSteps], double factor) {
  std::printf("alignas(64) inline constexpr %s %s%s[%d] = {", f.real, f.prefix, name,
              kSteps * f.copies);
  for (int i = 0; i < kSteps * f.copies; ++i) {
    std::printf("%s%a%s,", i % 4 ? " " : "\n    ", points[i % kSteps].offset * factor, f.suffix);
  }
  std::printf("\n};\n");
}

void Tables(const Format& f) {
  Point points[kSteps], plain[kSteps];
  double error = 0;
  for (int j = 0; j < kSteps; ++j) {
    points[j] = Best(f, j);
    plain[j] = At(f, j, 0);
    error = std::fmax(error, points[j].error[0]);
  }
  const char* twice = f.copies == 2 ? ", twice" : "";
  const int shift = f.precision - 4;
  std::printf("\n// How far the points x[j] are from j ln2/8%s: multiples of 2^-%d.\n", twice,
              f.grid);
  Offsets(f, "Offset", points, 1);
  std::printf(
      "\n// Bits of e^x[j]/2 less j << %d%s: adding k << %d, k = 8 n + j, gives those of\n"
      "// 2^n e^x[j]/2. Relative distance from the exponential, here and below, at most 2^%.2f.\n",
      shift, twice, shift, std::log2(error));
  Patterns(f, "Grow", points, &Point::grow, -1);
  std::printf("\n// Bits of e^-x[j]/2 plus j << %d%s, from which k << %d is to be subtracted.\n",
              shift, twice, shift);
  Patterns(f, "Decay", points, &Point::decay, 1);
  std::printf("\n// The same for the eighths themselves, without the accuracy.\n");
  Patterns(f, "PlainGrow", plain, &Point::grow, -1);
  Patterns(f, "PlainDecay", plain, &Point::decay, 1);
}

// The points of the hyperbolic tangent, which needs no e^-x.
void Tangent() {
  Point points[kSteps];
  double error = 0, offset = 0;
  for (int j = 0; j < kSteps; ++j) {
    points[j] = At(kDouble, j, Nearest(j));
    error = std::fmax(error, points[j].error[0]);
    offset = std::fmax(offset, std::fabs(points[j].offset));
  }
  std::printf(
      "\n// Half of how far other points y[j] are from j ln2/8, at most 2^%.1f: those where "
      "e^y[j]/2\n"
      "// ends in a zero bit.\n",
      std::log2(offset / 2));
  Offsets(kDouble, "TangentHalfOffset", points, 0.5);
  std::printf("\n// Bits of e^y[j]/2 less j << 49. Relative distance at most 2^%.2f.\n",
              std::log2(error));
  Patterns(kDouble, "TangentGrow", points, &Point::grow, -1);
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/hyperbolic_tables.cc:\n"
      "//   gen_hyperbolic_tables > pex_core/_heap/real/hyperbolic_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_HYPERBOLIC_TABLES_H_\n"
      "#define PEX_CORE__HEAP_REAL_HYPERBOLIC_TABLES_H_\n\n#include <cstdint>\n\n"
      "namespace pex {\n");
  Tables(kDouble);
  Tangent();
  Tables(kSingle);
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_HYPERBOLIC_TABLES_H_\n");
}
