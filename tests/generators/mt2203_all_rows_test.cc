// The members of MT2203, all of them.
#include "tests/generators/mt2203_rows.h"

namespace quo::mt2203 {
namespace {

TEST(Mt2203AllRows, PeriodAndEquidistribution) {
  for (int member = 0; member < kMembers; ++member) ExpectGoodRow(member);
}

TEST(Mt2203AllRows, FollowFromTheirNumbers) {
  for (int member = 7; member < kMembers; member += 64) {
    EXPECT_EQ(RowOf(member), FindMember(member)) << "member " << member;
  }
}

}  // namespace
}  // namespace quo::mt2203
