// Powx looks at its exponent before any element: which kernel answers for which, and under which
// name that reports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "tests/promises/arguments.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class Powx : public testing::TestWithParam<const pex::Entry*> {
 protected:
  const pex::Entry& powx() const { return *GetParam(); }

  // The entry of another function for the same type and tier; single-precision EP is LA here.
  const pex::Entry& Other(const char* name) const {
    const bool raised = !powx().is_double() && powx().tier == pex::Tier::EP;
    return *pex::FindEntry(name, powx().type, raised ? pex::Tier::LA : powx().tier);
  }

  std::string Name(const char* function) const { return std::string("v") + powx().type + function; }

  Numbers List(std::initializer_list<double> values) const {
    Numbers list(powx().is_double(), values.size());
    size_t i = 0;
    for (const double x : values) list.set(i++, x);
    return list;
  }

  // All kinds of numbers, enough for whole groups of vectors and a tail, specials among ordinary
  // ones; and the exponent.
  Arguments With(double b) const {
    const double special[] = {0,          -0.0, 4,     -4,   27, -27, kInfinity,
                              -kInfinity, kNaN, 0.3,   -0.3, 1,  -1,  1e-40,
                              -1e-40,     1e30, -1e30, 8,    -8, 2.5};
    Numbers a(powx().is_double(), 203);
    for (size_t i = 0; i < a.size(); ++i) {
      a.set(i,
            i % 3 == 0 ? special[i / 3 % std::size(special)] : 0.7 + 0.01 * static_cast<double>(i));
    }
    return {a, List({b})};
  }

  // The second argument as an array.
  static Arguments Spread(const Arguments& x) {
    Numbers b(x.a.is_double(), x.size());
    for (size_t i = 0; i < b.size(); ++i) b.set_bits(i, x.b.bits(0));
    return {x.a, b};
  }
};

// The same results to the last bit, and the same codes for the same elements, under `name`.
void ExpectSame(const Outcome& got, const Outcome& wanted, const std::string& name) {
  Outcome results = got;
  results.records = wanted.records;
  EXPECT_EQ(Difference(results, wanted), "");
  ASSERT_EQ(got.records.size(), wanted.records.size());
  for (size_t i = 0; i < got.records.size(); ++i) {
    const PexErrorContext &x = got.records[i], &y = wanted.records[i];
    EXPECT_EQ(x.index, y.index);
    EXPECT_EQ(x.code, y.code);
    EXPECT_EQ(std::memcmp(&x.arg1, &y.arg1, sizeof(x.arg1)), 0);
    EXPECT_EQ(std::memcmp(&x.res1, &y.res1, sizeof(x.res1)), 0);
    EXPECT_EQ(x.func_name, name);
  }
}

TEST_P(Powx, HandsRootsAndReciprocalsToTheirKernels) {
  const struct {
    double b;
    const char* function;
    int code;  // that of some element at least, 0 for none
  } kernels[] = {
      {0.5, "Sqrt", 1},         {-0.5, "InvSqrt", 1},   {-0.5, "InvSqrt", 2}, {1.0 / 3, "Cbrt", 0},
      {-1.0 / 3, "InvCbrt", 2}, {2.0 / 3, "Pow2o3", 0}, {1.5, "Pow3o2", 1},   {-1, "Inv", 2}};
  for (const auto& kernel : kernels) {
    SCOPED_TRACE(kernel.function);
    // The reciprocal is the HA one in every tier.
    const pex::Entry& other = kernel.b == -1 ? *pex::FindEntry("Inv", powx().type, pex::Tier::HA)
                                             : Other(kernel.function);
    const Arguments arguments = With(kernel.b);
    const Outcome wanted = CallEntry(other, {arguments.a, {}}, kDefaultControl);
    for (const Place place : {Place::Apart, Place::OverA}) {
      const Outcome got = CallEntry(powx(), arguments, kDefaultControl, 1, place);
      ExpectSame(got, wanted, Name(kernel.function));
      bool met = kernel.code == 0 && got.records.empty();
      for (const PexErrorContext& record : got.records) met |= record.code == kernel.code;
      EXPECT_TRUE(met);
    }
  }
}

TEST_P(Powx, MultipliesForSmallIntegersUnderItsOwnName) {
  for (const double b : {2, 3, 4, -2, -3, -4}) {
    SCOPED_TRACE(b);
    const Arguments arguments = With(b);
    const Outcome got = CallEntry(powx(), arguments, kDefaultControl);
    // The special values and the codes are those of the power, results agree to its accuracy.
    const Outcome power = CallEntry(Other("Pow"), Spread(arguments), kDefaultControl);
    ASSERT_EQ(got.records.size(), power.records.size());
    EXPECT_EQ(got.records.empty(), b > 0);
    for (size_t i = 0; i < got.records.size(); ++i) {
      EXPECT_EQ(got.records[i].index, power.records[i].index);
      EXPECT_EQ(got.records[i].code, PEX_STATUS_DOMAIN);
      EXPECT_EQ(got.records[i].arg1, 0);
      EXPECT_EQ(got.records[i].arg2, b);
      EXPECT_EQ(std::fabs(got.records[i].res1), kInfinity);
      EXPECT_EQ(got.records[i].func_name, Name("Powx"));
    }
    for (size_t i = 0; i < arguments.size(); ++i) {
      const double x = got.r1.value(i), y = power.r1.value(i);
      if (std::isnan(y)) {
        EXPECT_TRUE(std::isnan(x)) << arguments.a.value(i);
      } else if (y == 0 || std::isinf(y)) {
        EXPECT_EQ(x, y) << arguments.a.value(i);
        EXPECT_EQ(std::signbit(x), std::signbit(y)) << arguments.a.value(i);
      } else {
        EXPECT_NEAR(x / y, 1, 1e-3) << arguments.a.value(i);
      }
    }
    const Outcome in_place = CallEntry(powx(), arguments, kDefaultControl, 1, Place::OverA);
    ExpectSame(in_place, got, Name("Powx"));
  }
}

TEST_P(Powx, IsThePowerForOtherExponents) {
  const double smallest = powx().is_double() ? 0x1p-1074 : 0x1p-149;
  for (const double b :
       {0.0, -0.0, kInfinity, -kInfinity, kNaN, 1.0, 0.25, -7.0, 5.0, smallest, 1e30}) {
    SCOPED_TRACE(b);
    const Arguments arguments = With(b);
    const Outcome wanted = CallEntry(Other("Pow"), Spread(arguments), kDefaultControl);
    for (const Place place : {Place::Apart, Place::OverA}) {
      ExpectSame(CallEntry(powx(), arguments, kDefaultControl, 1, place), wanted, Name("Powx"));
    }
  }
}

std::vector<const pex::Entry*> Entries() {
  std::vector<const pex::Entry*> entries;
  for (const pex::Entry& entry : pex::Entries()) {
    if (entry.function->name == "Powx") entries.push_back(&entry);
  }
  return entries;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Powx, testing::ValuesIn(Entries()),
                         [](const auto& info) { return EntryName(*info.param); });

}  // namespace
