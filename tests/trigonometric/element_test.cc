// The entries that compute one element: values, special values, the error record and its name, and
// that nothing else is touched, under any control word.
#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <limits>
#include <string>

#include "pexquo/pex.h"
#include "tests/support/control.h"
#include "tests/trigonometric/arguments.h"

namespace trigonometric_test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr uint64_t kSeed = 20;

// One entry; those of one result leave `second` alone.
struct Entry {
  const char* name;  // as reported
  int results;
  int (*call)(int32_t i, const double* a, double* r, double* second);
  int (*exact[2])(mpfr_t, const mpfr_t, mpfr_rnd_t);
};

#define ONE(F, function, tier)                               \
  {                                                          \
    "d" #F "_" #tier, 1,                                     \
        [](int32_t i, const double* a, double* r, double*) { \
          return _pexd##F##_SC_##tier(i, a, r, nullptr);     \
        },                                                   \
    {                                                        \
      function, nullptr                                      \
    }                                                        \
  }
#define TWO(tier)                                                   \
  {                                                                 \
    "dSinCos_" #tier, 2,                                            \
        [](int32_t i, const double* a, double* r, double* second) { \
          return _pexdSinCos_SC_##tier(i, a, r, second);            \
        },                                                          \
    {                                                               \
      mpfr_sin, mpfr_cos                                            \
    }                                                               \
  }
#define TIERS(F, function) ONE(F, function, A11), ONE(F, function, LA), ONE(F, function, HA)

const Entry kEntries[] = {
    TIERS(Sin, mpfr_sin), TIERS(Cos, mpfr_cos), TIERS(Tan, mpfr_tan), TWO(A11), TWO(LA), TWO(HA)};

class Element : public testing::TestWithParam<Entry> {};
INSTANTIATE_TEST_SUITE_P(Entries, Element, testing::ValuesIn(kEntries),
                         [](const auto& info) { return std::string(info.param.name); });

struct Results {
  double first = 0, second = 0;
  bool operator==(const Results& o) const {
    return std::bit_cast<uint64_t>(first) == std::bit_cast<uint64_t>(o.first) &&
           std::bit_cast<uint64_t>(second) == std::bit_cast<uint64_t>(o.second);
  }
};

Results Call(const Entry& entry, double x) {
  Results r;
  entry.call(0, &x, &r.first, &r.second);
  return r;
}

double UlpError(double got, mpfr_t exact) {
  Real difference(kExactAngle);
  mpfr_sub_d(difference.get(), exact, got, MPFR_RNDN);
  const mpfr_exp_t ulp = mpfr_get_exp(exact) - 53;
  return std::fabs(std::ldexp(mpfr_get_d(difference.get(), MPFR_RNDN), -static_cast<int>(ulp)));
}

// Largest error seen in 6 10^5 arguments: 0.53 ulp.
TEST_P(Element, IsWithin55HundredthsOfAnUlp) {
  std::printf("seed %d\n", static_cast<int>(kSeed));
  Real x(64), exact(200);
  for (const double a : Arguments(4000, kSeed)) {
    const Results r = Call(GetParam(), a);
    mpfr_set_d(x.get(), a, MPFR_RNDN);
    for (int k = 0; k < GetParam().results; ++k) {
      GetParam().exact[k](exact.get(), x.get(), MPFR_RNDN);
      ASSERT_LE(UlpError(k == 0 ? r.first : r.second, exact.get()), 0.55) << std::hexfloat << a;
    }
  }
}

// All entries of a function have the value of its first one.
TEST_P(Element, HasTheValueOfTheOtherTiersUnderAnyControlWord) {
  const std::string family = std::string(GetParam().name).substr(0, 4);
  for (const Entry& other : kEntries) {
    if (std::string(other.name).substr(0, 4) != family || other.results != GetParam().results) {
      continue;
    }
    for (const double a : Arguments(300, kSeed + 1)) {
      const Results want = Call(other, a);
      for (const Control& control : kControls) {
        UseControl use(control);
        const Results got = Call(GetParam(), a);
        use.Finish();
        ASSERT_TRUE(got == want) << control.name << std::hexfloat << " " << a;
        ASSERT_TRUE(use.kept()) << control.name;
        ASSERT_EQ(use.flags() & ~kInexact, 0u) << control.name << std::hexfloat << " " << a;
      }
    }
  }
}

TEST_P(Element, KeepsZerosAndTinyArguments) {
  const bool cosine = GetParam().exact[0] == mpfr_cos;
  for (const double a : {0.0, -0.0, 0x1p-1074, -0x1p-1074, 0x1p-1022, 0x1p-300, -0x1p-300}) {
    const Results want = {cosine ? 1 : a, GetParam().results == 2 ? 1.0 : 0.0};
    EXPECT_TRUE(Call(GetParam(), a) == want) << std::hexfloat << a;
  }
}

TEST_P(Element, TakesElementIAlone) {
  double a[5] = {7, 7, 2, 7, 7}, r[5] = {8, 8, 8, 8, 8}, second[5] = {9, 9, 9, 9, 9};
  GetParam().call(2, a, r, second);
  const Results want = Call(GetParam(), 2);
  for (int i = 0; i < 5; ++i) {
    const bool it = i == 2;
    EXPECT_EQ(r[i], it ? want.first : 8) << i;
    EXPECT_EQ(second[i], it && GetParam().results == 2 ? want.second : 9) << i;
  }
  GetParam().call(2, a, a, second);  // in place
  EXPECT_EQ(a[2], want.first);
}

PexErrorContext last_record;
int records = 0;
int Keep(PexErrorContext* record) {
  last_record = *record;
  ++records;
  return 0;
}

TEST_P(Element, ReportsInfinitiesUnderItsOwnNameAndNothingElse) {
  const Entry& entry = GetParam();
  _pexSetErrorCallBack(Keep);
  records = 0;
  for (const double inf : {kInf, -kInf}) {
    double a[4] = {1, 2, 3, inf}, r[4] = {}, second[4] = {};
    _pexClearErrStatus();
    entry.call(3, a, r, second);
    EXPECT_EQ(std::bit_cast<uint64_t>(r[3]), 0xFFF8000000000000u);
    EXPECT_EQ(_pexGetErrStatus(), PEX_STATUS_DOMAIN);
    EXPECT_EQ(last_record.code, PEX_STATUS_DOMAIN);
    EXPECT_EQ(last_record.index, 3);
    EXPECT_EQ(last_record.arg1, inf);
    EXPECT_TRUE(std::isnan(last_record.res1));
    EXPECT_TRUE(std::isnan(last_record.res2));
    EXPECT_EQ(std::string(last_record.func_name, static_cast<size_t>(last_record.func_name_len)),
              entry.name);
    EXPECT_EQ(std::isnan(second[3]), entry.results == 2);
  }
  EXPECT_EQ(records, 2);
  for (const double a : {std::numeric_limits<double>::quiet_NaN(), 1e22, 1.7e308, 0.0}) {
    Call(entry, a);
  }
  EXPECT_EQ(records, 2);
  _pexClearErrorCallBack();

  UseControl use(kDefaultControl);
  const Results nan = Call(entry, std::bit_cast<double>(uint64_t{0x7FF8000000000123}));
  use.Finish();
  EXPECT_EQ(std::bit_cast<uint64_t>(nan.first), 0x7FF8000000000123u);
  EXPECT_EQ(use.flags(), 0u);
}

// Where both are one array, the first result wins.
TEST_P(Element, TakesBothResultsFromTheCallback) {
  _pexSetErrorCallBack([](PexErrorContext* record) {
    record->res1 = 5;
    record->res2 = 6;
    return 0;
  });
  double a = kInf, r = 0, second = 0;
  GetParam().call(0, &a, &r, &second);
  _pexClearErrorCallBack();
  EXPECT_EQ(r, 5);
  EXPECT_EQ(second, GetParam().results == 2 ? 6 : 0);
}

}  // namespace
}  // namespace trigonometric_test
