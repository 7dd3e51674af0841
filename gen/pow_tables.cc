// Writes pex_core/_heap/real/pow_tables.h: the table of the scalar power, and those of the vector
// kernels: short lists of factors near 1/(1 + i/64) whose logarithms are almost multiples of 2^-42,
// and powers of two.
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

// x as a multiple of `unit` and the rest, both rounded to nearest.
void Split(mpfr_t x, double unit, double* hi, double* lo) {
  mpfr_t whole;
  mpfr_init2(whole, 300);
  mpfr_div_d(whole, x, unit, MPFR_RNDN);
  mpfr_rint(whole, whole, MPFR_RNDN);
  mpfr_mul_d(whole, whole, unit, MPFR_RNDN);
  *hi = mpfr_get_d(whole, MPFR_RNDN) + 0.0;
  mpfr_sub(whole, x, whole, MPFR_RNDN);
  *lo = mpfr_get_d(whole, MPFR_RNDN) + 0.0;
  mpfr_clear(whole);
}

// r = -log2(a / b) - less.
void MinusLog2(mpfr_t r, double a, double b, int less) {
  mpfr_set_d(r, b, MPFR_RNDN);
  mpfr_div_d(r, r, a, MPFR_RNDN);
  mpfr_log2(r, r, MPFR_RNDN);
  mpfr_sub_si(r, r, less, MPFR_RNDN);
}

double ToUnit(double x, double unit) { return std::rint(x / unit) * unit; }

// Entries of the scalar table.
enum {
  kR1 = 0,
  kLog1 = 33,
  kR2 = 99,
  kLog2 = 132,
  kR3 = 198,
  kLog3 = 327,
  kPower = 585,
  kSize = 856
};
constexpr double kLogUnit = 0x1p-41;       // the high parts of logarithms: their sums are exact
constexpr double kFactor = 0x1.715474p+0;  // 1/ln2, truncated

void Scalar() {
  double t[kSize] = {};
  mpfr_t x;
  mpfr_init2(x, 300);
  for (int i = 0; i <= 32; ++i) {
    t[kR1 + i] = ToUnit(1 / (1 + i / 32.0), 0x1p-15);
    MinusLog2(x, t[kR1 + i], 1, i >= 16);
    Split(x, kLogUnit, &t[kLog1 + 2 * i], &t[kLog1 + 2 * i + 1]);
  }
  // The second and third indexes are bits of the significand: products below 1 have the upper
  // ones, with half the step.
  for (int j = 0; j <= 32; ++j) {
    t[kR2 + j] = ToUnit(j < 12 ? 1 / (1 + j / 512.0) : 1 / (1 - (32 - j) / 1024.0), 0x1p-13);
    MinusLog2(x, t[kR2 + j], 1, 0);
    Split(x, kLogUnit, &t[kLog2 + 2 * j], &t[kLog2 + 2 * j + 1]);
  }
  for (int k = 0; k <= 128; ++k) {
    t[kR3 + k] =
        ToUnit(kFactor * (k < 48 ? 1 / (1 + k / 32768.0) : 1 / (1 - (128 - k) / 65536.0)), 0x1p-22);
    MinusLog2(x, t[kR3 + k], kFactor, 0);
    Split(x, kLogUnit, &t[kLog3 + 2 * k], &t[kLog3 + 2 * k + 1]);
  }
  for (int j = 0; j < 128; ++j) {
    mpfr_set_d(x, j / 128.0, MPFR_RNDN);
    mpfr_exp2(x, x, MPFR_RNDN);
    t[kPower + 2 * j] = mpfr_get_d(x, MPFR_RNDN);
    mpfr_sub_d(x, x, t[kPower + 2 * j], MPFR_RNDN);
    t[kPower + 2 * j + 1] = mpfr_get_d(x, MPFR_RNDN) + 0.0;
  }
  t[850] = 0x1p1023;
  t[851] = 0x1p-1022;
  t[853] = 1;
  t[854] = -1;
  t[855] = 0x1.8p45;
  mpfr_clear(x);
  std::printf(
      "\n// The scalar power. From 0: 33 reciprocals of 1 + i/32, rounded to 2^-15; from 33 the "
      "pairs\n"
      "// -log2 of them, less 1 from i = 16 on. From 99: 33 reciprocals of 1 + j/512 (below j = "
      "12) or\n"
      "// 1 - (32 - j)/1024, rounded to 2^-13; from 132 their logarithms. From 198: 129 times "
      "1/ln2,\n"
      "// truncated, over 1 + k/2^15 (below k = 48) or 1 - (128 - k)/2^16; from 327 the "
      "logarithms\n"
      "// without 1/ln2. High parts of logarithms are multiples of 2^-41. From 585: the pairs "
      "2^(j/128).\n"
      "// From 850: 2^1023, 2^-1022, 0, 1, -1, 1.5 2^45.\n"
      "alignas(64) inline constexpr double _pexdPowHATab[%d] = {",
      kSize);
  for (int i = 0; i < kSize; ++i) std::printf("%s%a,", i % 4 ? " " : "\n    ", t[i]);
  std::printf("};\n");
}

// -ln(r) in multiples of 2^-42, to 300 bits.
void Logarithm(mpfr_t x, double r) {
  mpfr_set_d(x, r, MPFR_RNDN);
  mpfr_log(x, x, MPFR_RNDN);
  mpfr_neg(x, x, MPFR_RNDN);
  mpfr_mul_2si(x, x, 42, MPFR_RNDN);
}

double Fraction(mpfr_t x) {
  mpfr_t whole;
  mpfr_init2(whole, 300);
  mpfr_rint(whole, x, MPFR_RNDN);
  mpfr_sub(whole, x, whole, MPFR_RNDN);
  const double f = mpfr_get_d(whole, MPFR_RNDN);
  mpfr_clear(whole);
  return f;
}

// The least k >= 0 with low <= step k mod size <= high, for step < size and low <= high < size; -1
// for none.
__int128 FirstBetween(__int128 step, __int128 size, __int128 low, __int128 high) {
  if (low == 0) return 0;
  if (step == 0) return -1;
  const __int128 k = (low + step - 1) / step;
  if (step * k <= high) return k;
  // step k - size j lies between low and high: so does size j, modulo step, between -high and -low.
  const __int128 j =
      FirstBetween(size % step, step, (step - high % step) % step, (step - low % step) % step);
  return j < 0 ? -1 : (low + size * j + step - 1) / step;
}

// The double next to 1/center whose logarithm is, to within 2^-69 of itself, a multiple of 2^-42.
double Search(double center) {
  constexpr int64_t kBlock = 1 << 16;  // within which the logarithm is taken for linear
  constexpr __int128 kTurn = static_cast<__int128>(1) << 64;
  mpfr_t x;
  mpfr_init2(x, 300);
  const double first = 1 / center;
  const double ulp = first < 1 ? 0x1p-53 : 0x1p-52;
  const double close = std::fabs(std::log(center)) * 0x1p-27;  // in units of 2^-42
  // Twice as wide, for what the line misses; the unit is turned into 2^64 parts.
  const auto reach = static_cast<uint64_t>(close * 2 * 0x1p64);
  for (int64_t block = 1; block < int64_t{1} << 20; ++block) {
    const double start = first + static_cast<double>(block * kBlock) * ulp;
    Logarithm(x, start);
    const auto fraction = static_cast<uint64_t>(static_cast<int64_t>(Fraction(x) * 0x1p63)) * 2;
    // The logarithm falls by this much from one double to the next.
    const auto step = static_cast<uint64_t>(ulp / (start + kBlock / 2 * ulp) * 0x1p42 * 0x1p64);
    // fraction - step k is within reach of 0: step k is between fraction - reach and + reach.
    int64_t k = 0;
    for (;;) {
      const uint64_t low = fraction - reach - step * static_cast<uint64_t>(k);
      const uint64_t high = low + 2 * reach;
      const __int128 next = low > high ? 0 : FirstBetween(step, kTurn, low, high);
      if (next < 0 || k + next >= kBlock) break;
      k += static_cast<int64_t>(next);
      const double r = start + static_cast<double>(k) * ulp;
      Logarithm(x, r);
      if (std::fabs(Fraction(x)) <= close) {
        mpfr_clear(x);
        return r;
      }
      ++k;
    }
  }
  std::fprintf(stderr, "no factor near 1/%g\n", center);
  std::exit(1);
}

template <typename F>
void Column(const char* field, int n, F f) {
  std::printf("    {  // %s", field);
  for (int i = 0; i < n; ++i)
    std::printf("%s%a%s", i % 4 ? " " : "\n     ", f(i), i == n - 1 ? "" : ",");
  std::printf("},\n");
}

void Factors() {
  static double factor[64], log[64], log2[64];
  mpfr_t x;
  mpfr_init2(x, 300);
  for (int i = 0; i < 64; ++i) {
    factor[i] = i == 0 ? 1 : Search((1 + i / 64.0) / (i < 32 ? 1 : 2));
    Logarithm(x, factor[i]);
    mpfr_rint(x, x, MPFR_RNDN);
    log[i] = mpfr_get_d(x, MPFR_RNDN) * 0x1p-42 + 0.0;
    MinusLog2(x, factor[i], 1, 0);
    log2[i] = mpfr_get_d(x, MPFR_RNDN) + 0.0;
  }
  mpfr_clear(x);
  for (const int n : {64, 32}) {
    const int step = 64 / n;
    std::printf(
        "\n// %d factors near 1/(1 + i/%d), from i = %d on near 2/(1 + i/%d); minus their "
        "logarithms: natural, to\n"
        "// within 2^-69 of itself a multiple of 2^-42, and of base 2.\n"
        "inline constexpr PowFactors<%d> kPowFactors%d = {\n",
        n, n, n / 2, n, n, n);
    Column("factor", n, [=](int i) { return factor[i * step]; });
    Column("log", n, [=](int i) { return log[i * step]; });
    Column("log2", n, [=](int i) { return log2[i * step]; });
    std::printf("};\n");
  }
}

void Powers() {
  static double hi[32], lo[32];
  mpfr_t x;
  mpfr_init2(x, 300);
  for (int j = 0; j < 32; ++j) {
    mpfr_set_d(x, j / 32.0, MPFR_RNDN);
    mpfr_exp2(x, x, MPFR_RNDN);
    hi[j] = mpfr_get_d(x, MPFR_RNDN);
    mpfr_sub_d(x, x, hi[j], MPFR_RNDN);
    lo[j] = mpfr_get_d(x, MPFR_RNDN) + 0.0;
  }
  mpfr_clear(x);
  for (const int n : {32, 16}) {
    const int step = 32 / n;
    std::printf(
        "\n// 2^(j/%d) as a double and the rest below it.\ninline constexpr PowPowers<%d> "
        "kPowPowers%d = {\n",
        n, n, n);
    Column("hi", n, [=](int j) { return hi[j * step]; });
    Column("lo", n, [=](int j) { return lo[j * step]; });
    std::printf("};\n");
  }
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/pow_tables.cc: gen_pow_tables > pex_core/_heap/real/pow_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_POW_TABLES_H_\n#define PEX_CORE__HEAP_REAL_POW_TABLES_H_\n\n"
      "namespace pex {\n\n"
      "template <int kRows>\nstruct PowFactors {\n  alignas(64) double factor[kRows], log[kRows], "
      "log2[kRows];\n};\n\n"
      "template <int kRows>\nstruct PowPowers {\n  alignas(64) double hi[kRows], lo[kRows];\n};\n");
  Scalar();
  Factors();
  Powers();
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_POW_TABLES_H_\n");
}
