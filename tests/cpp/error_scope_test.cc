// Scopes of element errors.
#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "pexquo/pexquo.hpp"

namespace {

using pexquo::error_scope;
using pexquo::reason;

constexpr double kInf = std::numeric_limits<double>::infinity();

int callback_calls = 0;
int CountCalls(PexErrorContext*) {
  ++callback_calls;
  return 1;
}

TEST(ErrorScope, RecordsSayWhatWhereAndWhy) {
  error_scope errors;
  EXPECT_TRUE(errors.empty());
  (void)pexquo::ln(std::vector<double>{1, 0, 2, -4});
  (void)pexquo::exp(std::vector<float>{1000, -1000});
  (void)pexquo::atan2(std::vector<double>{0}, std::vector<double>{0});
  (void)pexquo::div(std::vector<double>{1, 3}, std::vector<double>{1, 0});
  (void)pexquo::sincos(std::vector<double>{0, kInf});
  std::vector<std::string> texts;
  for (const auto& e : errors) texts.push_back(e.text());
  EXPECT_EQ(texts, (std::vector<std::string>{
                       "element 1: vdLn(0) = -inf, singularity",
                       "element 3: vdLn(-4) = nan, domain",
                       "element 0: vsExp(1000) = inf, overflow",
                       "element 1: vsExp(-1000) = 0, underflow",
                       "element 1: vdDiv(3, 0) = inf, singularity",
                       "element 1: vdSinCos(inf) = (nan, nan), domain",
                   }));
  ASSERT_EQ(errors.size(), 6u);
  EXPECT_EQ(errors[0].why, reason::singularity);
  EXPECT_EQ(errors[0].index, 1u);
  EXPECT_EQ(errors[0].function, "vdLn");
  EXPECT_EQ(errors[4].arguments().size(), 2u);
  EXPECT_EQ(errors[5].results().size(), 2u);
  errors.clear();
  EXPECT_TRUE(errors.empty() && errors.errors().empty());
  errors.check();
}

TEST(ErrorScope, NothingElseHappensUnlessAsked) {
  const auto effects = [](std::uint32_t also) {
    error_scope errors{{.also = also}};
    errno = 0;
    std::feclearexcept(FE_ALL_EXCEPT);
    (void)pexquo::ln(0.0);
    EXPECT_EQ(errors.size(), 1u);
    return std::pair(errno, std::fetestexcept(FE_DIVBYZERO) != 0);
  };
  EXPECT_EQ(effects(0).first, 0);
  EXPECT_EQ(effects(PEX_ERRMODE_ERRNO).first, ERANGE);
  EXPECT_EQ(effects(PEX_ERRMODE_ERRNO | PEX_ERRMODE_EXCEPT), std::pair(ERANGE, true));
}

TEST(ErrorScope, ModeAndCallbackAreAsBefore) {
  pexSetErrorCallBack(CountCalls);
  const std::uint32_t before = pexSetMode(PEX_ACCURACY_LA | PEX_ERRMODE_ERRNO);
  const std::uint32_t mode = pexGetMode();
  {
    const error_scope outer(pexquo::tier::ep);
    EXPECT_EQ(pexGetMode() & PEX_MODE_ACCURACY, PEX_ACCURACY_EP);
    {
      const error_scope inner;
      EXPECT_EQ(pexGetMode() & PEX_MODE_ACCURACY, PEX_ACCURACY_EP);
      (void)pexquo::ln(0.0);
      EXPECT_EQ(inner.size(), 1u);
    }
    EXPECT_TRUE(outer.empty());
    (void)pexquo::ln(-1.0);
    EXPECT_EQ(outer.size(), 1u);
  }
  EXPECT_EQ(pexGetMode(), mode);
  EXPECT_EQ(pexGetErrorCallBack(), &CountCalls);
  EXPECT_EQ(callback_calls, 0);
  pexSetMode(before);
  (void)pexquo::ln(0.0);
  EXPECT_EQ(callback_calls, 1);
  pexClearErrorCallBack();
  pexSetMode(before);
}

TEST(ErrorScope, ReplacementsAreWritten) {
  error_scope errors{{.replace = [](pexquo::element_error& e) {
    for (double& r : e.results()) r = e.why == reason::domain ? 5 : 6;
  }}};
  EXPECT_EQ(pexquo::ln(std::vector<double>{1, 0, -1}), (std::vector<double>{0, 6, 5}));
  EXPECT_EQ(pexquo::ln(std::vector<float>{1, 0, -1}), (std::vector<float>{0, 6, 5}));
  EXPECT_EQ(pexquo::sincos(kInf), std::pair(5.0, 5.0));
  EXPECT_EQ(errors[0].results()[0], 6);
}

TEST(ErrorScope, KeepsNoMoreThanAskedButCountsAll) {
  error_scope errors{{.keep = 2}};
  (void)pexquo::ln(std::vector<double>{0, 0, -1, 0});
  EXPECT_EQ(errors.size(), 4u);
  EXPECT_EQ(errors.errors().size(), 2u);
  error_scope none{{.keep = 0}};
  (void)pexquo::ln(std::vector<double>{1, -1, 0});
  EXPECT_TRUE(none.errors().empty());
  EXPECT_THROW(none.check(), pexquo::evaluation_error);
}

TEST(ErrorScope, CheckThrowsTheFirst) {
  error_scope errors;
  (void)pexquo::ln(std::vector<double>{1, 0, -1});
  try {
    errors.check();
    FAIL();
  } catch (const pexquo::evaluation_error& e) {
    EXPECT_EQ(e.first().index, 1u);
    EXPECT_EQ(e.count(), 2u);
    EXPECT_EQ(e.status(), PEX_STATUS_SINGULARITY);
    EXPECT_TRUE(
        std::string(e.what()).ends_with("element 1: vdLn(0) = -inf, singularity (and 1 more)"))
        << e.what();
  }
}

// A replacement's exception waits until the arrays are complete, and comes out once.
TEST(ErrorScope, ExceptionsOfReplacementsComeOut) {
  std::vector<double> x = {0, 1, 0, 4}, r(4, 7);
  {
    error_scope errors{{.replace = [](pexquo::element_error& e) {
      if (e.index == 2) throw std::range_error("2");
      e.results()[0] = -1;
    }}};
    EXPECT_THROW(pexquo::ln(x, r), std::range_error);
    EXPECT_EQ(r, (std::vector<double>{-1, 0, -kInf, std::log(4.0)}));
    EXPECT_EQ(pexquo::ln(1.0), 0);
    // One that nobody lets out goes with its scope.
    vdLn(4, x.data(), r.data());
  }
  EXPECT_EQ(pexquo::ln(1.0), 0);
}

TEST(ErrorScope, ThreadsAreIndependent) {
  error_scope mine;
  std::jthread([] {
    EXPECT_EQ(pexGetMode(), PEX_MODE_DEFAULT);
    error_scope theirs;
    (void)pexquo::ln(std::vector<double>{0, 0});
    EXPECT_EQ(theirs.size(), 2u);
  }).join();
  (void)pexquo::ln(0.0);
  EXPECT_EQ(mine.size(), 1u);
}

TEST(ErrorScope, DistributionsReportNothing) {
  error_scope errors;
  pexquo::stream s("mt19937", 1);
  (void)pexquo::normal{}.sample(s, 1000);
  (void)pexquo::weibull{}.sample(s, 1000);
  EXPECT_TRUE(errors.empty());
}

// But for the exponential of lognormal.
TEST(ErrorScope, ExceptionsOfReplacementsComeOutOfLognormal) {
  pexquo::stream s("mt19937", 1), same(s);
  std::vector<double> r(1000);
  std::size_t thrown_at = 0;
  error_scope errors{{.replace = [&](pexquo::element_error& e) {
    if (errors.size() < 3) return;
    thrown_at = e.index;
    throw std::range_error("4");
  }}};
  EXPECT_THROW((pexquo::lognormal{0, 500}.fill(s, r)), std::range_error);
  EXPECT_EQ(errors.size(), 3u);
  EXPECT_GT(thrown_at, errors[2].index);
  EXPECT_EQ(pexquo::ln(1.0), 0);  // it is gone
  // The array is complete, and the stream has moved.
  pexquo::error_scope inner;
  EXPECT_EQ(r, (pexquo::lognormal{0, 500}.sample(same, 1000)));
  EXPECT_EQ(pexquo::uniform{}(s), pexquo::uniform{}(same));
}

}  // namespace
