// Writes pex_core/_heap/real/trig_tables.h: points near the multiples of pi/16 with their sines and
// cosines, the tangents of those multiples and of points next to them, the binary expansion of 2/pi
// in the two forms of the reductions, and the sines and cosines of the multiples of pi/32.
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

constexpr mpfr_prec_t kBits = 1400;  // 2/pi for the largest double, and some

double Double(mpfr_t x) { return mpfr_get_d(x, MPFR_RNDN); }

// x as a double and the rest.
void Split(mpfr_t x, double* hi, double* lo) {
  *hi = Double(x);
  mpfr_sub_d(x, x, *hi, MPFR_RNDN);
  *lo = Double(x);
}

void Print(const double* x, int n) {
  for (int i = 0; i < n; ++i) std::printf("%s%a", i == 0 ? "" : i % 3 ? ", " : ",\n     ", x[i]);
}

// The columns of 16 that end a table.
void PrintColumns(std::initializer_list<const double*> columns) {
  const char* between = "\n    {";
  for (const double* column : columns) {
    std::printf("%s", between);
    Print(column, 16);
    between = "},\n    {";
  }
  std::printf("},\n};\n\n");
}

constexpr double kGrid = 0x1p-44;

struct Point {
  double offset, sin, cos;
};

// sin and cos of j pi/16 + m 2^-44 in units of 2^-120, for small m.
class Neighbourhood {
 public:
  explicit Neighbourhood(int j) {
    mpfr_t angle, s, c;
    mpfr_inits2(200, angle, s, c, nullptr);
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_si(angle, angle, j, MPFR_RNDN);
    mpfr_div_ui(angle, angle, 16, MPFR_RNDN);
    mpfr_sin_cos(s, c, angle, MPFR_RNDN);
    sin_ = Fixed(s);
    cos_ = Fixed(c);
    mpfr_clears(angle, s, c, nullptr);
  }
  __int128 Sin(int64_t m) const { return Sum(sin_, cos_, m); }
  __int128 Cos(int64_t m) const { return Sum(cos_, -sin_, m); }

 private:
  static __int128 Fixed(mpfr_t x) {
    mpfr_mul_2ui(x, x, 60, MPFR_RNDN);
    const int64_t high = mpfr_get_si(x, MPFR_RNDD);
    mpfr_sub_si(x, x, high, MPFR_RNDN);
    mpfr_mul_2ui(x, x, 60, MPFR_RNDN);
    return (static_cast<__int128>(high) << 60) + mpfr_get_si(x, MPFR_RNDN);
  }
  // The terms to the third order; the fourth stays below 2^-88.
  static __int128 Sum(__int128 value, __int128 slope, int64_t m) {
    const double x = static_cast<double>(m) * kGrid;
    const double curve = static_cast<double>(value) + static_cast<double>(slope) * (x / 3);
    return value + (slope >> 44) * m - static_cast<__int128>(curve * (x * x / 2));
  }
  __int128 sin_, cos_;
};

// How far x is from a double, in ulp.
double Distance(__int128 x) {
  if (x < 0) x = -x;
  int ulp = 120 - 53;
  while (x < (__int128{1} << (ulp + 52))) --ulp;
  const __int128 rest = x & ((__int128{1} << ulp) - 1), one = __int128{1} << ulp;
  return static_cast<double>(2 * rest > one ? one - rest : rest) / static_cast<double>(one);
}

// The point within 2^-22 of j pi/16 whose sine and cosine are both next to doubles (the accurate
// tables of S. Gal, 1986); exact ones for the multiples of pi/2.
Point Search(int j) {
  if (j == 0) return {0, 0, 1};
  if (j == 8) return {0, 1, 0};
  const Neighbourhood near(j);
  int64_t best = 0;
  double least = 1;
  for (int64_t m = -(1 << 22); m <= 1 << 22; ++m) {
    const double distance = std::fmax(Distance(near.Sin(m)), Distance(near.Cos(m)));
    if (distance < least) {
      least = distance;
      best = m;
    }
  }
  if (least > 0x1p-11) {
    std::fprintf(stderr, "no point near %d pi/16\n", j);
    std::exit(1);
  }
  mpfr_t angle, s, c;
  mpfr_inits2(200, angle, s, c, nullptr);
  mpfr_const_pi(angle, MPFR_RNDN);
  mpfr_mul_si(angle, angle, j, MPFR_RNDN);
  mpfr_div_ui(angle, angle, 16, MPFR_RNDN);
  const Point point{static_cast<double>(best) * kGrid, 0, 0};
  mpfr_add_d(angle, angle, point.offset, MPFR_RNDN);
  mpfr_sin_cos(s, c, angle, MPFR_RNDN);
  const Point result{point.offset, Double(s), Double(c)};
  mpfr_clears(angle, s, c, nullptr);
  return result;
}

void Points() {
  double offset[16], sin[16], cos[16];
  for (int j = 0; j <= 8; ++j) {
    const Point p = Search(j);
    if (j < 8) {
      offset[8 + j] = p.offset;
      sin[8 + j] = p.sin;
      cos[8 + j] = p.cos;
    }
    offset[8 - j] = j % 8 == 0 ? 0 : -p.offset;
    sin[8 - j] = j == 0 ? 0 : -p.sin;
    cos[8 - j] = p.cos;
  }
  std::printf(
      "// Points a near j pi/16, j = -8 .. 7, in row j + 8: a - j pi/16, a multiple of 2^-44, and\n"
      "// sin(a) and cos(a) to within 2^-64 of themselves.\n"
      "struct TrigTable {\n  alignas(64) double offset[16], sin[16], cos[16];\n};\n\n"
      "inline constexpr TrigTable kTrigTable = {");
  PrintColumns({offset, sin, cos});
}

void Tangents() {
  double tan[16], cos2[16], sin_cos[16], infinite[16];
  mpfr_t angle, s, c, t;
  mpfr_inits2(200, angle, s, c, t, nullptr);
  for (int j = -8; j < 8; ++j) {
    const int row = j + 8;
    infinite[row] = 0;
    if (j == -8) {
      tan[row] = 0x1p-60;
      cos2[row] = 0;
      sin_cos[row] = infinite[row] = 0x1p60;
      continue;
    }
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_si(angle, angle, j, MPFR_RNDN);
    mpfr_div_ui(angle, angle, 16, MPFR_RNDN);
    mpfr_sin_cos(s, c, angle, MPFR_RNDN);
    mpfr_div(t, s, c, MPFR_RNDN);
    tan[row] = Double(t);
    mpfr_mul(t, c, c, MPFR_RNDN);
    cos2[row] = Double(t);
    mpfr_mul(t, s, c, MPFR_RNDN);
    sin_cos[row] = Double(t);
  }
  mpfr_clears(angle, s, c, t, nullptr);
  std::printf(
      "// tan(a), cos(a)^2 and sin(a) cos(a) for a = j pi/16, j = -8 .. 7, in row j + 8. For "
      "-pi/2,\n"
      "// with `infinite`, they are those of -cot(y) = t + (1/t + y)/(0 - y/t), t = 2^-60, where "
      "y\n"
      "// and t are lost in the sums.\n"
      "struct TangentTable {\n  alignas(64) double tan[16], cos2[16], sin_cos[16], "
      "infinite[16];\n};\n\n"
      "inline constexpr TangentTable kTangentTable = {");
  PrintColumns({tan, cos2, sin_cos, infinite});
}

// Points whose tangents are doubles, some 2^-23 from the multiples of pi/16: common arguments are
// next to those, but then not next to the points.
void TangentPoints() {
  double offset[16], tan[16];
  mpfr_t angle, t;
  mpfr_inits2(200, angle, t, nullptr);
  for (int j = -8; j < 8; ++j) {
    const int row = j + 8;
    offset[row] = 0;
    tan[row] = j == -8 ? 0x1p130 : 0;
    if (j % 8 == 0) continue;
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_si(angle, angle, j, MPFR_RNDN);
    mpfr_div_ui(angle, angle, 16, MPFR_RNDN);
    mpfr_add_d(t, angle, j < 0 ? -0x1p-23 : 0x1p-23, MPFR_RNDN);
    mpfr_tan(t, t, MPFR_RNDN);
    tan[row] = Double(t);
    mpfr_set_d(t, tan[row], MPFR_RNDN);
    mpfr_atan(t, t, MPFR_RNDN);
    mpfr_sub(t, t, angle, MPFR_RNDN);
    mpfr_mul_2ui(t, t, 73, MPFR_RNDN);
    mpfr_rint(t, t, MPFR_RNDN);
    mpfr_div_2ui(t, t, 73, MPFR_RNDN);
    offset[row] = Double(t);
  }
  mpfr_clears(angle, t, nullptr);
  std::printf(
      "// Points a near j pi/16, j = -8 .. 7, in row j + 8: a - j pi/16 to a multiple of 2^-73, "
      "and\n"
      "// tan(a), a double. For -pi/2 it is so large that in (t + tan(y))/(1 - t tan(y)) what is "
      "added\n"
      "// to it or to its products is lost.\n"
      "struct TangentPointTable {\n  alignas(64) double offset[16], tan[16];\n};\n\n"
      "inline constexpr TangentPointTable kTangentPointTable = {");
  PrintColumns({offset, tan});
}

void TwoOverPi(mpfr_t x) {
  mpfr_const_pi(x, MPFR_RNDN);
  mpfr_ui_div(x, 2, x, MPFR_RNDN);
}

// The bits of x with weights 2^-(from+1) to 2^-(from+count), with those weights times 2^scale.
double Piece(mpfr_t x, int from, int count, int scale) {
  mpfr_t high, low;
  mpfr_inits2(kBits + 64, high, low, nullptr);
  mpfr_mul_2si(low, x, from, MPFR_RNDN);
  mpfr_frac(low, low, MPFR_RNDN);
  mpfr_mul_2si(high, low, count, MPFR_RNDN);
  mpfr_trunc(high, high);
  mpfr_mul_2si(high, high, scale - from - count, MPFR_RNDN);
  const double piece = Double(high);
  mpfr_clears(high, low, nullptr);
  return piece;
}

void Expansions() {
  mpfr_t x;
  mpfr_init2(x, kBits);
  TwoOverPi(x);
  std::printf(
      "// The bits of 2/pi after the binary point, the first one at the top of the first word.\n"
      "inline constexpr uint64_t kTwoOverPiBits[19] = {");
  mpfr_t word, rest;
  mpfr_inits2(kBits, word, rest, nullptr);
  mpfr_set(rest, x, MPFR_RNDN);
  for (int i = 0; i < 19; ++i) {
    mpfr_mul_2ui(rest, rest, 64, MPFR_RNDN);
    mpfr_trunc(word, rest);
    mpfr_sub(rest, rest, word, MPFR_RNDN);
    std::printf("%s0x%016lx",
                i == 0  ? "\n    "
                : i % 4 ? ", "
                        : ",\n    ",
                mpfr_get_ui(word, MPFR_RNDN));
  }
  mpfr_clears(word, rest, nullptr);
  std::printf(
      "};\n\n"
      "// The scalar reduction by pi/2: constants, of which entries 6 to 8 and 10 to 18 are pi/4 "
      "in\n"
      "// two parts, 4/pi, and pi/4 in four and in five parts; from entry 20 on the bits of 2/pi,\n"
      "// 25 in each entry from the second one of them on, times 2^201. Entry 19 is all ones.\n"
      "alignas(64) inline constexpr double _pexReductionTab[72] = {\n     ");
  double t[72] = {0.0,
                  -1.0,
                  1.0,
                  -1.0,
                  100663296.0,
                  134217728.0,
                  0.7853981256484985,
                  3.774894977445941e-08,
                  1.2732395447351628,
                  4096.0,
                  0.7853981629014015,
                  4.960467904491228e-10,
                  -6.088525906594782e-19,
                  1.7607799325916e-27,
                  0.7853975296020508,
                  6.337954800983425e-07,
                  -8.256991011063031e-14,
                  -6.675151087907452e-20,
                  8.223128468162129e-27};
  for (int i = 1; i <= 51; ++i) t[20 + i] = Piece(x, 25 * (i - 1), 25, 201);
  for (int i = 0; i < 72; ++i) {
    if (i > 0) std::printf(i % 3 ? ", " : ",\n     ");
    i == 19 ? std::printf("__builtin_bit_cast(double, ~0ul)") : std::printf("%a", t[i]);
  }
  std::printf("};\n\n");
  mpfr_clear(x);
}

void Circle() {
  std::printf(
      "// Row j: sin(j pi/32) and cos(j pi/32), each as a double and the rest.\n"
      "alignas(64) inline constexpr double _dCosTab[64][4] = {\n");
  mpfr_t angle, s, c;
  mpfr_inits2(200, angle, s, c, nullptr);
  for (int j = 0; j < 64; ++j) {
    mpfr_const_pi(angle, MPFR_RNDN);
    mpfr_mul_ui(angle, angle, j, MPFR_RNDN);
    mpfr_div_ui(angle, angle, 32, MPFR_RNDN);
    mpfr_sin_cos(s, c, angle, MPFR_RNDN);
    if (j % 32 == 0) mpfr_set_zero(s, 1);
    if (j % 32 == 16) mpfr_set_zero(c, 1);
    double row[4];
    Split(s, &row[0], &row[1]);
    Split(c, &row[2], &row[3]);
    std::printf("    {%a, %a, %a, %a},\n", row[0], row[1], row[2], row[3]);
  }
  mpfr_clears(angle, s, c, nullptr);
  std::printf("};\n\n");
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/trig_tables.cc: gen_trig_tables > pex_core/_heap/real/trig_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_TRIG_TABLES_H_\n#define PEX_CORE__HEAP_REAL_TRIG_TABLES_H_\n\n"
      "#include <cstdint>\n\nnamespace pex {\n\n");
  Points();
  Tangents();
  TangentPoints();
  Expansions();
  Circle();
  std::printf("}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_TRIG_TABLES_H_\n");
}
