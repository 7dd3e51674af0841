// The one-element sine, cosine and tangent in single precision: values beside the C library's in
// double precision, special values, and the names in the error record.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "pexquo/pex.h"
#include "tests/support/control.h"

namespace {

enum Function { kSin, kCos, kTan, kSinCos };

// An entry; those with one result take an unused pointer where the others have the second result.
struct Entry {
  const char* name;  // as reported
  Function function;
  int (*one)(int32_t, const float*, float*, void*);
  int (*two)(int32_t, const float*, float*, float*);
};

const Entry kEntries[] = {
    {"sSin_A11", kSin, _pexsSin_SC_A11, nullptr},
    {"sSin_LA", kSin, _pexsSin_SC_LA, nullptr},
    {"sSin_HA", kSin, _pexsSin_SC_HA, nullptr},
    {"sCos_A11", kCos, _pexsCos_SC_A11, nullptr},
    {"sCos_LA", kCos, _pexsCos_SC_LA, nullptr},
    {"sCos_HA", kCos, _pexsCos_SC_HA, nullptr},
    {"sTan_A11", kTan, _pexsTan_SC_A11, nullptr},
    {"sTan_LA", kTan, _pexsTan_SC_LA, nullptr},
    {"sTan_HA", kTan, _pexsTan_SC_HA, nullptr},
    {"sSinCos_A11", kSinCos, nullptr, _pexsSinCos_SC_A11},
    {"sSinCos_LA", kSinCos, nullptr, _pexsSinCos_SC_LA},
    {"sSinCos_HA", kSinCos, nullptr, _pexsSinCos_SC_HA},
};

void Call(const Entry& entry, int32_t i, const float* a, float* r1, float* r2) {
  if (entry.two) {
    EXPECT_EQ(entry.two(i, a, r1, r2), 0);
  } else {
    EXPECT_EQ(entry.one(i, a, r1, nullptr), 0);
  }
}

double First(Function function, double x) {
  return function == kCos ? std::cos(x) : function == kTan ? std::tan(x) : std::sin(x);
}

// Off the value by more than half a last place and a little.
bool Wrong(float got, double value) {
  int exponent;
  std::frexp(value, &exponent);
  return !(std::fabs(got - value) <= std::ldexp(0.5000001, std::max(exponent, -125) - 24));
}

class SingleElement : public testing::TestWithParam<Entry> {
 protected:
  void TearDown() override {
    _pexSetErrorCallBack(nullptr);
    _pexSetMode(PEX_MODE_DEFAULT);
    _pexClearErrStatus();
  }
};

TEST_P(SingleElement, IsTheRoundedValueUnderAnyControlWord) {
  const Entry& entry = GetParam();
  std::vector<float> arguments = {0x1.921fb6p+0f, 0x1.921fb6p+1f,  0x1.fffffep+16f, 0x1p+17f,
                                  1e22f,          0x1.f37c8ap+95f, 0x1.fffffep+127f};
  const uint32_t seed = 20251;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  while (arguments.size() < 20000) {
    const float x = std::bit_cast<float>(static_cast<uint32_t>(random()));
    if (std::isfinite(x)) arguments.push_back(x);
  }
  for (const Control& control : kControls) {
    std::vector<float> r1(arguments.size()), r2(arguments.size());
    uint32_t flags = 0;
    {
      UseControl use(control);
      for (size_t i = 0; i < arguments.size(); ++i) {
        Call(entry, static_cast<int32_t>(i), arguments.data(), r1.data(), r2.data());
      }
      use.Finish();
      flags = use.flags();
    }
    EXPECT_EQ(flags & ~(kInexact | kDenormal), 0u) << control.name;
    int wrong = 0;
    for (size_t i = 0; i < arguments.size() && wrong < 5; ++i) {
      const double x = arguments[i];
      const bool bad = Wrong(r1[i], First(entry.function, x)) ||
                       (entry.function == kSinCos && Wrong(r2[i], std::cos(x)));
      if (bad) {
        ++wrong;
        ADD_FAILURE() << control.name << ": x = " << std::hexfloat << x << " gave " << r1[i] << ", "
                      << r2[i];
      }
    }
  }
}

TEST_P(SingleElement, TouchesItsElementAlone) {
  const Entry& entry = GetParam();
  float a[3] = {0.5f, 1.0f, 2.0f}, r1[3] = {7, 7, 7}, r2[3] = {7, 7, 7};
  Call(entry, -1, a + 1, r1 + 1, r2 + 1);
  EXPECT_FALSE(Wrong(r1[0], First(entry.function, 0.5)));
  EXPECT_EQ(r1[1], 7);
  EXPECT_EQ(r1[2], 7);
  EXPECT_EQ(r2[1], 7);
  Call(entry, 2, a, a, r2);  // in place
  EXPECT_EQ(a[1], 1.0f);
  EXPECT_FALSE(Wrong(a[2], First(entry.function, 2.0)));
}

TEST_P(SingleElement, KeepsZerosTinyNumbersAndNaNs) {
  const Entry& entry = GetParam();
  const auto bits = [](float x) { return std::bit_cast<uint32_t>(x); };
  for (const float x :
       {0.0f, -0.0f, 0x1p-149f, -0x1.8p-148f, 0x1p-126f, -0x1p-60f, 0x1.fffffep-29f}) {
    float r1 = 7, r2 = 7;
    UseControl use(kDefaultControl);
    Call(entry, 0, &x, &r1, &r2);
    use.Finish();
    EXPECT_EQ(use.flags() & ~(kInexact | kDenormal), 0u) << x;
    EXPECT_EQ(bits(r1), bits(entry.function == kCos ? 1.0f : x)) << x;
    if (entry.function == kSinCos) {
      EXPECT_EQ(r2, 1.0f) << x;
    }
  }
  for (const uint32_t nan : {0x7FC00123u, 0xFFC00000u}) {
    const float x = std::bit_cast<float>(nan);
    float r1 = 7, r2 = 7;
    Call(entry, 0, &x, &r1, &r2);
    EXPECT_EQ(bits(r1), nan);
    if (entry.function == kSinCos) {
      EXPECT_EQ(bits(r2), nan);
    }
  }
  EXPECT_EQ(_pexGetErrStatus(), PEX_STATUS_OK);
}

PexErrorContext record;
int reports = 0;
int Keep(PexErrorContext* seen) {
  record = *seen;
  ++reports;
  return 0;
}

TEST_P(SingleElement, ReportsInfinitiesUnderItsOwnName) {
  const Entry& entry = GetParam();
  _pexSetErrorCallBack(Keep);
  for (const float infinity : {INFINITY, -INFINITY}) {
    const float a[6] = {1, 1, 1, 1, infinity, 1};
    float r1[6] = {}, r2[6] = {};
    reports = 0;
    _pexClearErrStatus();
    UseControl use(kDefaultControl);
    Call(entry, 4, a, r1, r2);
    use.Finish();
    EXPECT_EQ(use.flags() & ~(kInexact | kDenormal), uint32_t{kInvalid});
    EXPECT_EQ(std::bit_cast<uint32_t>(r1[4]), 0xFFC00000u);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(_pexGetErrStatus(), PEX_STATUS_DOMAIN);
    EXPECT_EQ(record.code, PEX_STATUS_DOMAIN);
    EXPECT_EQ(record.index, 4);
    EXPECT_EQ(record.arg1, infinity);
    EXPECT_TRUE(std::isnan(record.res1));
    EXPECT_STREQ(record.func_name, entry.name);
    if (entry.function == kSinCos) {
      EXPECT_EQ(std::bit_cast<uint32_t>(r2[4]), 0xFFC00000u);
      EXPECT_TRUE(std::isnan(record.res2));
    }
  }
}

// Where both are one array, the first result wins.
TEST_P(SingleElement, TakesBothResultsFromTheCallback) {
  _pexSetErrorCallBack([](PexErrorContext* seen) {
    seen->res1 = 5;
    seen->res2 = 6;
    return 0;
  });
  const float a = INFINITY;
  float r1 = 0, r2 = 0;
  Call(GetParam(), 0, &a, &r1, &r2);
  _pexClearErrorCallBack();
  EXPECT_EQ(r1, 5);
  EXPECT_EQ(r2, GetParam().function == kSinCos ? 6 : 0);
}

INSTANTIATE_TEST_SUITE_P(All, SingleElement, testing::ValuesIn(kEntries),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
