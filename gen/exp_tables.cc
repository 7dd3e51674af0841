// Writes pex_core/_heap/real/exp_tables.h: powers of two in steps of 1/1024 octave and larger ones.
#include <mpfr.h>

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>

#include "gen/over_chord.h"

namespace {

// Whether the rest below a double is given as it is or in units of the double.
enum class Rest { kAbsolute, kRelative };

// 2^(j/steps), and the rest below its double.
void Power(int j, int steps, double* hi, double* lo, Rest kind = Rest::kAbsolute) {
  mpfr_t x;
  mpfr_init2(x, 300);
  mpfr_set_si(x, j, MPFR_RNDN);
  mpfr_div_si(x, x, steps, MPFR_RNDN);
  mpfr_exp2(x, x, MPFR_RNDN);
  *hi = mpfr_get_d(x, MPFR_RNDN);
  mpfr_sub_d(x, x, *hi, MPFR_RNDN);
  if (kind == Rest::kRelative) mpfr_div_d(x, x, *hi, MPFR_RNDN);
  *lo = mpfr_get_d(x, MPFR_RNDN);
  mpfr_clear(x);
}

// factor * 2^(j/steps).
void Single(const char* name, int steps, double factor) {
  std::printf("\n// %g * 2^(j/%d), j = 0 .. %d.\n", factor, steps, steps - 1);
  std::printf("alignas(64) inline constexpr double %s[%d] = {\n", name, steps);
  for (int j = 0; j < steps; ++j) {
    double hi, lo;
    Power(j, steps, &hi, &lo);
    std::printf("%s%a,%s", j % 4 ? "" : "    ", hi * factor, j % 4 == 3 ? "\n" : " ");
  }
  std::printf("};\n");
}

// c and f with 2^(j/128)/2 = c[a] + c[a] f[b], j = 16 a + b, rounded once: the c[a] are 2^(a/8)
// times one number, chosen so that they are all within 0.045 ulp of doubles, and what they lack of
// the powers is in f. The search is for the first such number above kStart for which all the sums
// are right.
void Factors() {
  constexpr double kStart = 0x1.0b15b75p+0;  // makes f[b] about as large on both sides of 0
  mpfr_t power, x;
  mpfr_init2(power, 300);
  mpfr_init2(x, 300);
  const auto set_power = [&](int j) {
    mpfr_set_si(power, j, MPFR_RNDN);
    mpfr_div_si(power, power, 128, MPFR_RNDN);
    mpfr_exp2(power, power, MPFR_RNDN);
  };
  // Parts of an ulp beyond a double, in 2^-64, of kStart + i ulp times 2^(a/8).
  uint64_t part[8], step[8];
  for (int a = 0; a < 8; ++a) {
    set_power(16 * a);
    const auto fraction = [&](uint64_t* bits) {
      mpfr_frac(x, x, MPFR_RNDN);
      mpfr_mul_2si(x, x, 64, MPFR_RNDN);
      *bits = mpfr_get_ui(x, MPFR_RNDZ);
    };
    mpfr_set(x, power, MPFR_RNDN);
    fraction(&step[a]);
    mpfr_mul_d(x, power, kStart * 0x1p52, MPFR_RNDN);
    fraction(&part[a]);
  }
  double coarse[8], fine[16];
  for (uint64_t i = 0;; ++i) {
    constexpr auto kNear = static_cast<uint64_t>(0.045 * 0x1p64);
    bool right = true;
    for (int a = 1; a < 8; ++a) right = right && part[a] + kNear <= 2 * kNear;
    for (int a = 0; a < 8; ++a) part[a] += step[a];
    if (!right) continue;
    const double factor = kStart + static_cast<double>(i) * 0x1p-52;
    for (int a = 0; a < 8; ++a) {
      set_power(16 * a);
      mpfr_mul_d(x, power, factor / 2, MPFR_RNDN);
      coarse[a] = mpfr_get_d(x, MPFR_RNDN);
    }
    for (int b = 0; b < 16; ++b) {
      set_power(b);
      mpfr_div_d(x, power, factor, MPFR_RNDN);
      mpfr_sub_si(x, x, 1, MPFR_RNDN);
      fine[b] = mpfr_get_d(x, MPFR_RNDN);
      for (int a = 0; a < 8; ++a) {
        double hi, lo;
        Power(16 * a + b, 128, &hi, &lo);
        right = right && std::fma(coarse[a], fine[b], coarse[a]) == hi / 2;
      }
    }
    if (right) break;
  }
  std::printf(
      "\n// 2^(j/128)/2, j = 16 a + b, is dExpCoarse[a] + dExpCoarse[a] dExpFine[b], rounded "
      "once.\n");
  const auto print = [](const char* name, const double* table, int n) {
    std::printf("alignas(64) inline constexpr double %s[%d] = {\n", name, n);
    for (int i = 0; i < n; ++i) {
      std::printf("%s%a,%s", i % 4 ? "" : "    ", table[i], i % 4 == 3 ? "\n" : " ");
    }
    std::printf("};\n");
  };
  print("dExpCoarse", coarse, 8);
  print("dExpFine", fine, 16);
  mpfr_clear(power);
  mpfr_clear(x);
}

void OverChords(const char* name) {
  std::printf(
      "\n// 2^(j/16)/(1 + j/16) - 1, the last bits such that (1 - c) - c t, c = 2^n (1 + j/16), is "
      "the\n// same rounded once and twice for -1023 < n < 1024.\n"
      "alignas(64) inline constexpr double %s[16] = {\n",
      name);
  for (int j = 0; j < 16; ++j) {
    std::printf("%s%a,%s", j % 4 ? "" : "    ", OverChord<double>(j, 16), j % 4 == 3 ? "\n" : " ");
  }
  std::printf("};\n");
}

// 2^(j/16) as a number s of 21 bits, less j << 48 in its bits, and ln(2^(j/16)/s).
void ShortPowers(const char* name) {
  std::printf(
      "\n// Bits of s = 2^(j/16) in 21 bits, less j << 48; ln(2^(j/16)/s). By columns.\n"
      "struct ExpShortPowers {\n  int64_t bits[16];\n  double rest[16];\n};\n"
      "alignas(64) inline constexpr ExpShortPowers %s = {\n    {\n",
      name);
  double rest[16];
  mpfr_t x, y;
  mpfr_init2(x, 300);
  mpfr_init2(y, 21);
  for (int64_t j = 0; j < 16; ++j) {
    mpfr_set_si(x, j, MPFR_RNDN);
    mpfr_div_si(x, x, 16, MPFR_RNDN);
    mpfr_exp2(x, x, MPFR_RNDN);
    mpfr_set(y, x, MPFR_RNDN);
    mpfr_div(x, x, y, MPFR_RNDN);
    mpfr_log(x, x, MPFR_RNDN);
    rest[j] = mpfr_get_d(x, MPFR_RNDN);
    const int64_t bits = std::bit_cast<int64_t>(mpfr_get_d(y, MPFR_RNDN)) - (j << 48);
    std::printf("%s0x%016" PRIX64 ",%s", j % 4 ? "" : "        ", bits, j % 4 == 3 ? "\n" : " ");
  }
  std::printf("    },\n    {\n");
  for (int j = 0; j < 16; ++j) {
    std::printf("%s%a,%s", j % 4 ? "" : "        ", rest[j], j % 4 == 3 ? "\n" : " ");
  }
  std::printf("    },\n};\n");
  mpfr_clear(x);
  mpfr_clear(y);
}

// 2^(j/256), j = 16 a + b, as products of numbers of 26 and 27 bits, and their logarithms less
// those of 2^(a/16) and 2^(b/256), multiples of 2^-76, so that the sums of these are exact.
void ShortFactors(const char* name) {
  std::printf(
      "\n// 2^(a/16) in 26 bits, 2^(b/256) in 27 bits, and their logarithms less ln2 a/16 and ln2\n"
      "// b/256.\n"
      "struct ExpFactors {\n  double coarse[16], fine[16], coarse_log[16], fine_log[16];\n};\n"
      "alignas(64) inline constexpr ExpFactors %s = {\n",
      name);
  double factor[32], log[32];
  mpfr_t x, y;
  mpfr_init2(x, 300);
  for (int i = 0; i < 32; ++i) {
    mpfr_init2(y, i < 16 ? 26 : 27);
    mpfr_set_si(x, i & 15, MPFR_RNDN);
    mpfr_div_si(x, x, i < 16 ? 16 : 256, MPFR_RNDN);
    mpfr_exp2(x, x, MPFR_RNDN);
    mpfr_set(y, x, MPFR_RNDN);
    mpfr_div(x, y, x, MPFR_RNDN);
    mpfr_log(x, x, MPFR_RNDN);
    mpfr_mul_2si(x, x, 76, MPFR_RNDN);
    mpfr_rint(x, x, MPFR_RNDN);
    mpfr_mul_2si(x, x, -76, MPFR_RNDN);
    factor[i] = mpfr_get_d(y, MPFR_RNDN);
    log[i] = mpfr_get_d(x, MPFR_RNDN);
    mpfr_clear(y);
  }
  for (const double* column : {factor, factor + 16, log, log + 16}) {
    std::printf("    {\n");
    for (int j = 0; j < 16; ++j) {
      std::printf("%s%a,%s", j % 4 ? "" : "        ", column[j], j % 4 == 3 ? "\n" : " ");
    }
    std::printf("    },\n");
  }
  std::printf("};\n");
  mpfr_clear(x);
}

void Pairs(const char* name, int steps, Rest kind) {
  std::printf("\n// 2^(j/%d) as a double and the rest below it%s, j = 0 .. %d.\n", steps,
              kind == Rest::kRelative ? " in units of that double" : "", steps - 1);
  std::printf("alignas(64) inline constexpr double %s[%d][2] = {\n", name, steps);
  for (int j = 0; j < steps; ++j) {
    double hi, lo;
    Power(j, steps, &hi, &lo, kind);
    std::printf("    {%a, %a},\n", hi, lo);
  }
  std::printf("};\n");
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/exp_tables.cc: gen_exp_tables > pex_core/_heap/real/exp_tables.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_EXP_TABLES_H_\n#define "
      "PEX_CORE__HEAP_REAL_EXP_TABLES_H_\n\n#include <cstdint>\n\n"
      "namespace pex {\n");
  Single("dExp_HA_Table", 1024, 1);
  Single("dExp_EP_Table", 128, 0.5);
  Factors();
  OverChords("dExpOverChord");
  ShortPowers("kExpShortPowers");
  ShortFactors("kExpFactors");
  Pairs("_pexdExpHATab", 64, Rest::kRelative);
  Pairs("dHyperbolicTable", 64, Rest::kAbsolute);
  std::printf("\n}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_EXP_TABLES_H_\n");
}
