// Special values, flags, errno and the caller's control word.
#include <fenv.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

#include "tests/long_double/reference.h"

namespace long_double_test {
namespace {

struct Entry {
  const char* name;
  Function volatile f;
};

Entry kEntries[] = {{"exp", _pexexpl_scalar},
                    {"log", _pexlogl_scalar},
                    {"log1p", _pexlog1pl_scalar},
                    {"fabs", _pexfabsl_scalar}};
enum { kExp, kLog, kLog1p, kFabs };

bool SameBits(long double a, long double b) {
  const auto x = pex::ldbl::ToBits(a), y = pex::ldbl::ToBits(b);
  return x.significand == y.significand && x.sign_exponent == y.sign_exponent;
}

const long double kNaN = __builtin_nanl("");
const long double kSignaling = pex::ldbl::FromBits({0xA000000000000001, 0xFFFF});

// Flags other than inexact.
int Flags() { return fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT); }

TEST(LongDoubleBehaviour, SpecialValues) {
  constexpr long double kTiny = 0x1p-100L;
  const struct {
    int function;
    long double x, want;
    int flags;
  } rows[] = {
      {kExp, 0.0L, 1, 0},
      {kExp, -0.0L, 1, 0},
      {kExp, kTiny, 1, 0},
      {kExp, -kDenormMin, 1, 0},
      {kExp, kInf, kInf, 0},
      {kExp, -kInf, 0.0L, 0},
      {kExp, 0xb.17217f7d1cf79abp+10L, 0xf.fffffffffffcd87p+16380L, 0},  // the last finite result
      {kExp, 0xb.17217f7d1cf79acp+10L, kInf, FE_OVERFLOW},
      {kExp, 0x1p14L, kInf, FE_OVERFLOW},
      {kExp, kMax, kInf, FE_OVERFLOW},
      {kExp, -0xb.21dfe7f09e2baa9p+10L, kDenormMin, FE_UNDERFLOW},  // the last result but 0
      {kExp, -0xb.21dfe7f09e2baaap+10L, 0.0L, FE_UNDERFLOW},
      {kExp, -0x1p14L, 0.0L, FE_UNDERFLOW},
      {kExp, -kMax, 0.0L, FE_UNDERFLOW},
      {kLog, 1, 0.0L, 0},
      {kLog, 0.0L, -kInf, FE_DIVBYZERO},
      {kLog, -0.0L, -kInf, FE_DIVBYZERO},
      {kLog, -kDenormMin, kNaN, FE_INVALID},
      {kLog, -1, kNaN, FE_INVALID},
      {kLog, -kInf, kNaN, FE_INVALID},
      {kLog, kInf, kInf, 0},
      {kLog1p, 0.0L, 0.0L, 0},
      {kLog1p, -0.0L, -0.0L, 0},
      {kLog1p, kTiny, kTiny, 0},
      {kLog1p, -kTiny, -kTiny, 0},
      {kLog1p, kDenormMin, kDenormMin, FE_UNDERFLOW},
      {kLog1p, -0x1.8p-16384L, -0x1.8p-16384L, FE_UNDERFLOW},
      {kLog1p, -1, -kInf, FE_DIVBYZERO},
      {kLog1p, -0x8.000000000000001p-3L, kNaN, FE_INVALID},
      {kLog1p, -kMax, kNaN, FE_INVALID},
      {kLog1p, -kInf, kNaN, FE_INVALID},
      {kLog1p, kInf, kInf, 0},
      {kFabs, -0.0L, 0.0L, 0},
      {kFabs, -kInf, kInf, 0},
      {kFabs, -kDenormMin, kDenormMin, 0},
      {kFabs, -2.5L, 2.5L, 0},
      {kFabs, kMax, kMax, 0},
  };
  errno = 0;
  for (const auto& row : rows) {
    const Entry& entry = kEntries[row.function];
    feclearexcept(FE_ALL_EXCEPT);
    const long double got = entry.f(row.x);
    EXPECT_EQ(Flags(), row.flags) << entry.name << "(" << std::hexfloat << row.x << ")";
    EXPECT_TRUE(std::isnan(row.want) ? std::isnan(got) : SameBits(got, row.want))
        << entry.name << "(" << std::hexfloat << row.x << ") = " << got;
  }
  EXPECT_EQ(errno, 0);
}

TEST(LongDoubleBehaviour, NaN) {
  constexpr uint64_t kQuiet = uint64_t{1} << 62;
  for (const Entry& entry : kEntries) {
    for (const long double nan : {kNaN, -kNaN, pex::ldbl::FromBits({0xC000000000000123, 0x7FFF})}) {
      feclearexcept(FE_ALL_EXCEPT);
      const auto got = pex::ldbl::ToBits(entry.f(nan));
      EXPECT_EQ(Flags(), 0) << entry.name;
      EXPECT_EQ(got.significand, pex::ldbl::ToBits(nan).significand) << entry.name;
      EXPECT_EQ(got.sign_exponent & 0x7FFF, 0x7FFF) << entry.name;
    }
    const auto got = pex::ldbl::ToBits(entry.f(kSignaling));
    EXPECT_EQ(got.significand, 0xA000000000000001 | kQuiet) << entry.name;
    EXPECT_EQ(got.sign_exponent & 0x7FFF, 0x7FFF) << entry.name;
  }
  EXPECT_EQ(pex::ldbl::ToBits(_pexfabsl_scalar(-kNaN)).sign_exponent, 0x7FFF);
}

// Arguments of every kind for one entry.
std::vector<long double> Arguments(Random& random, int count) {
  std::vector<long double> x = {0.0L,      -0.0L,  1,          -1,       2,
                                kInf,      -kInf,  kNaN,       kMax,     -kMax,
                                kMin,      -kMin,  kDenormMin, 11356.5L, 11356.6L,
                                -11355.2L, -11380, -11399.6L,  1e4000L,  kSignaling};
  for (int i = 0; i < count; ++i) {
    x.push_back(random.Exponents(-16383, 16383, true));
    x.push_back(random.Exponents(-70, 14, true));
    x.push_back(random.Uniform(-11400, 11357));
    x.push_back(random.Uniform(-1, 2));
    x.push_back(std::ldexp(1.0L, random.Int(-16445, 16383)));
  }
  return x;
}

// Overflow, underflow, invalid and divide-by-zero stand after a call exactly if the result is of
// that kind; nothing sets errno.
TEST(LongDoubleBehaviour, FlagsMatchResults) {
  Random random(1);
  errno = 0;
  for (const Entry& entry : kEntries) {
    for (const long double x : Arguments(random, 5000)) {
      if (std::isnan(x)) continue;
      feclearexcept(FE_ALL_EXCEPT);
      const long double y = entry.f(x);
      const int got = Flags();
      int want = 0;
      if (entry.f != _pexfabsl_scalar && !std::isinf(x)) {
        if (std::isinf(y)) want = y > 0 ? FE_OVERFLOW : FE_DIVBYZERO;
        const bool exact = x == 0 || (entry.f == _pexlogl_scalar && x == 1);
        if (std::fabs(y) < kMin && !exact) want = FE_UNDERFLOW;
      }
      if (std::isnan(y)) want = FE_INVALID;
      EXPECT_EQ(got, want) << entry.name << "(" << std::hexfloat << x << ") = " << y;
    }
  }
  EXPECT_EQ(errno, 0);
}

uint16_t ControlWord() {
  uint16_t word;
  __asm__ volatile("fnstcw %0" : "=m"(word));
  return word;
}

void SetControlWord(uint16_t word) { __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(word)); }

// f(x) under a control word, and the word afterwards. A pending unmasked exception would trap at
// the wait.
[[gnu::noinline]] long double CallUnder(uint16_t word, Function f, long double x, uint16_t* after) {
  const uint16_t usual = ControlWord();
  SetControlWord(word);
  long double y = f(x);
  __asm__ volatile("fwait" : "+t"(y));
  *after = ControlWord();
  SetControlWord(usual);
  return y;
}

TEST(LongDoubleBehaviour, ControlWord) {
  Random random(2);
  for (const Entry& entry : kEntries) {
    for (const long double x : Arguments(random, 100)) {
      const long double want = entry.f(x);
      for (const int precision : {0, 2, 3}) {
        for (int rounding = 0; rounding < 4; ++rounding) {
          for (const int masks : {0x3F, 0x1F, 0x3A, 0x00}) {
            const auto word = static_cast<uint16_t>(0x40 | precision << 8 | rounding << 10 | masks);
            uint16_t after;
            const long double got = CallUnder(word, entry.f, x, &after);
            ASSERT_EQ(after, word) << entry.name;
            ASSERT_TRUE(SameBits(got, want))
                << entry.name << "(" << std::hexfloat << x << ") = " << got << " for " << want
                << " under " << word;
          }
        }
      }
    }
  }
}

// Leaving a guard where an exception is unmasked clears the flag that would trap, and no other.
TEST(LongDoubleBehaviour, GuardKeepsMaskedFlags) {
  const uint16_t usual = ControlWord();
  feclearexcept(FE_ALL_EXCEPT);
  const uint16_t word = 0x0277;  // 53 bits, overflow unmasked
  SetControlWord(word);
  long double overflow = kEntries[kExp].f(20000), pole = kEntries[kLog].f(0);
  __asm__ volatile("fwait" : "+m"(overflow), "+m"(pole));
  uint16_t status;
  __asm__ volatile("fnstsw %0" : "=m"(status));
  EXPECT_EQ(status & 0x0D, 0x04);  // of invalid, divide-by-zero and overflow
  EXPECT_EQ(ControlWord(), word);
  SetControlWord(usual);
  EXPECT_EQ(overflow, kInf);
  EXPECT_EQ(pole, -kInf);
}

// SSE rounding and flushing have no part in the results.
TEST(LongDoubleBehaviour, VectorControl) {
  Random random(3);
  for (const Entry& entry : kEntries) {
    for (const long double x : Arguments(random, 500)) {
      const long double want = entry.f(x);
      const unsigned usual = __builtin_ia32_stmxcsr();
      __builtin_ia32_ldmxcsr(0xFFC0);  // toward zero, FTZ, DAZ
      const long double got = entry.f(x);
      __builtin_ia32_ldmxcsr(usual);
      ASSERT_TRUE(SameBits(got, want)) << entry.name << "(" << std::hexfloat << x << ")";
    }
  }
}

}  // namespace
}  // namespace long_double_test
