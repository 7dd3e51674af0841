// Every single-precision entry over all 2^32 arguments, all tiers of a function in one pass.
#include <gtest/gtest.h>

#include <thread>

#include "accuracy/exhaustive.h"
#include "accuracy/report.h"

namespace pex::accuracy {
namespace {

class EverySingle : public testing::TestWithParam<const Function*> {};

TEST_P(EverySingle, IsWithinItsBoundEverywhere) {
  std::vector<const Entry*> entries;
  for (const Entry& e : Entries()) {
    if (e.function == GetParam() && !e.is_double()) entries.push_back(&e);
  }
  if (entries.empty()) GTEST_SKIP() << "no single-precision entry";
  const int jobs = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
  for (const ExhaustiveResult& r : Exhaust(entries, OracleOf(*GetParam()), jobs)) {
    EXPECT_LE(r.worst.error, r.entry->ulp_bound())
        << r.entry->symbol << ": " << ErrorText(*r.entry, r.worst) << " at " << Hex(r.worst.a)
        << ", got " << Hex(r.worst.got) << ", wanted " << Hex(r.worst.wanted);
    if (r.entry->ulp_bound() <= 0.5) {
      EXPECT_EQ(r.wrong, 0u) << r.entry->symbol;
    }
  }
}

std::vector<const Function*> UnaryFunctions() {
  std::vector<const Function*> functions;
  for (const Function& f : Functions()) {
    if (f.tiered && ArgumentCount(f.shape) == 1) functions.push_back(&f);
  }
  return functions;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EverySingle, testing::ValuesIn(UnaryFunctions()),
                         [](const auto& info) { return std::string(info.param->name); });

}  // namespace
}  // namespace pex::accuracy
