// Functions over ranges: what they accept, compute and refuse.
#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <deque>
#include <list>
#include <span>
#include <string>
#include <vector>

#include "pexquo/pexquo.hpp"

namespace {

using Z = std::complex<double>;
using C = std::complex<float>;
using pexquo::tier;

// ---- What compiles. ----

template <typename F, typename... Arguments>
concept Callable = std::invocable<const F&, Arguments...>;
using Exp = decltype(pexquo::exp);
using Pow = decltype(pexquo::pow);
using Powx = decltype(pexquo::powx);
using SinCos = decltype(pexquo::sincos);
using Abs = decltype(pexquo::abs);
using Cis = decltype(pexquo::cis);
using Erf = decltype(pexquo::erf);
template <typename T>
using V = std::vector<T>&;
template <typename T>
using CV = const std::vector<T>&;

// Every type, and contiguous ranges of any kind.
static_assert(Callable<Exp, CV<double>, V<double>> && Callable<Exp, CV<float>, V<float>>);
static_assert(Callable<Exp, CV<Z>, V<Z>> && Callable<Exp, CV<C>, V<C>>);
static_assert(Callable<Exp, std::array<double, 3>&, double (&)[3]>);
static_assert(Callable<Exp, std::span<const float>, std::span<float>>);
static_assert(Callable<Exp, std::vector<double>, std::span<double, 3>>);
static_assert(Callable<Exp, CV<double>, V<double>, tier>);
// Mixed types, results that cannot be written or die at once, ranges that are not contiguous.
static_assert(!Callable<Exp, CV<double>, V<float>> && !Callable<Exp, CV<double>, V<Z>>);
static_assert(!Callable<Exp, CV<double>, CV<double>>);
static_assert(!Callable<Exp, CV<double>, std::span<const double>>);
static_assert(!Callable<Exp, CV<double>, std::vector<double>>);
static_assert(!Callable<Exp, const std::list<double>&, V<double>>);
static_assert(!Callable<Exp, const std::deque<double>&, V<double>>);
static_assert(!Callable<Exp, CV<int>, V<int>> && !Callable<Exp, CV<long double>, V<long double>>);
static_assert(!Callable<Exp, int> && !Callable<Exp, std::string>);
// By shape.
static_assert(Callable<Pow, CV<C>, CV<C>, V<C>> &&
              !Callable<Pow, CV<double>, CV<float>, V<double>>);
static_assert(!Callable<Pow, CV<double>, V<double>, tier, double>);
static_assert(Callable<Powx, CV<Z>, Z, V<Z>> && Callable<Powx, CV<float>, int, V<float>>);
static_assert(Callable<SinCos, CV<float>, V<float>, V<float>>);
static_assert(!Callable<SinCos, CV<Z>, V<Z>, V<Z>>);
static_assert(Callable<Abs, CV<Z>, V<double>> && Callable<Abs, CV<double>, V<double>>);
static_assert(!Callable<Abs, CV<Z>, V<Z>>);
static_assert(Callable<Cis, CV<float>, V<C>> && !Callable<Cis, CV<float>, V<float>>);
static_assert(Callable<Erf, CV<double>, V<double>> && !Callable<Erf, CV<Z>, V<Z>>);
// What comes back.
static_assert(std::same_as<std::invoke_result_t<Exp, CV<C>>, std::vector<C>>);
static_assert(std::same_as<std::invoke_result_t<Abs, CV<C>>, std::vector<float>>);
static_assert(std::same_as<std::invoke_result_t<Cis, double>, Z>);
static_assert(std::same_as<std::invoke_result_t<Exp, float>, float>);
static_assert(std::same_as<std::invoke_result_t<SinCos, CV<double>>,
                           std::pair<std::vector<double>, std::vector<double>>>);

// ---- What is computed. ----

template <typename T>
bool SameBits(const std::vector<T>& a, const std::vector<T>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

const std::vector<double> kArguments = {0.1, 0.25, 0.5, 0.7, 0.9};

TEST(Functions, TiersAreThoseOfTheCCalls) {
  const auto n = static_cast<int64_t>(kArguments.size());
  std::vector<double> expected(kArguments.size());
  const std::pair<tier, std::uint32_t> tiers[] = {
      {tier::la, PEX_ACCURACY_LA}, {tier::ha, PEX_ACCURACY_HA}, {tier::ep, PEX_ACCURACY_EP}};
  for (const auto& [wanted, mode] : tiers) {
    vdErfInvMode(n, kArguments.data(), expected.data(), mode);
    EXPECT_TRUE(SameBits(pexquo::erfinv(kArguments, wanted), expected));
  }
  // Without one, the thread's.
  const std::uint32_t old = pexSetMode(PEX_ACCURACY_EP);
  EXPECT_TRUE(SameBits(pexquo::erfinv(kArguments), expected));
  pexSetMode(old);
  vdErfInv(n, kArguments.data(), expected.data());
  EXPECT_TRUE(SameBits(pexquo::erfinv(kArguments), expected));
}

TEST(Functions, EveryShapeAndTypeReachesItsCall) {
  const std::vector<float> f = {0.5f, 2, 3};
  const std::vector<Z> z = {{0.5, 1}, {2, -1}};
  const std::vector<C> c = {{0.5f, 1}, {2, -1}};
  std::vector<float> rf(3), rf2(3), ef(3), ef2(3);
  std::vector<Z> rz(2), ez(2);
  std::vector<C> rc(2), ec(2);
  std::vector<double> rd(2), ed(2);

  pexquo::atan2(f, f, rf);
  vsAtan2(3, f.data(), f.data(), ef.data());
  EXPECT_EQ(rf, ef);
  EXPECT_EQ(pexquo::atan2(f, f), ef);
  pexquo::modf(f, rf, rf2);
  vsModf(3, f.data(), ef.data(), ef2.data());
  EXPECT_EQ(rf, ef);
  EXPECT_EQ(rf2, ef2);
  EXPECT_EQ(pexquo::modf(f), std::pair(ef, ef2));
  pexquo::powx(f, 2, rf);
  EXPECT_EQ(rf, (std::vector<float>{0.25, 4, 9}));

  const auto* const pz = reinterpret_cast<const PexComplex16*>(z.data());
  auto* const qz = reinterpret_cast<PexComplex16*>(ez.data());
  const auto* const pc = reinterpret_cast<const PexComplex8*>(c.data());
  auto* const qc = reinterpret_cast<PexComplex8*>(ec.data());
  pexquo::mulbyconj(z, z, rz);
  vzMulByConj(2, pz, pz, qz);
  EXPECT_EQ(rz, ez);
  pexquo::powx(z, Z(0.5, 0.25), rz);
  vzPowx(2, pz, {0.5, 0.25}, qz);
  EXPECT_EQ(rz, ez);
  pexquo::pow(c, c, rc);
  vcPow(2, pc, pc, qc);
  EXPECT_EQ(rc, ec);
  pexquo::arg(z, rd);
  vzArg(2, pz, ed.data());
  EXPECT_EQ(rd, ed);
  EXPECT_EQ(pexquo::arg(z[1]), ed[1]);
  pexquo::cis(rd, rz);
  vzCIS(2, ed.data(), qz);
  EXPECT_EQ(rz, ez);
  EXPECT_EQ(pexquo::conj(Z(1, 2)), Z(1, -2));
  EXPECT_EQ(pexquo::hypot(3.0, 4.0), 5.0);
  EXPECT_EQ(pexquo::sincos(0.0), std::pair(0.0, 1.0));
  EXPECT_EQ(pexquo::log(1.0f), 0.0f);
}

TEST(Functions, EmptyArraysAreWell) {
  std::vector<double> none;
  pexquo::exp(none, none);
  pexquo::pow(none, none, none);
  pexquo::sincos(none, none, none);
  EXPECT_TRUE(pexquo::exp(none).empty());
}

// ---- What is refused. ----

// Runs f and returns what it throws.
template <typename F>
std::string Refusal(F&& f) {
  try {
    f();
  } catch (const pexquo::argument_error& e) {
    return e.what();
  }
  return "";
}

TEST(Functions, SizesAreCheckedAndNothingIsWritten) {
  std::vector<double> two(2, 7), three(3, 7);
  const auto ends_with = [](const std::string& text, const std::string& end) {
    return text.ends_with(end) && text.starts_with("functions_test.cc:");
  };
  EXPECT_PRED2(ends_with, Refusal([&] { pexquo::exp(three, two); }),
               ": pexquo::exp: r has 2 elements, a has 3");
  EXPECT_PRED2(ends_with, Refusal([&] { pexquo::pow(three, two, three); }),
               ": pexquo::pow: b has 2 elements, a has 3");
  EXPECT_PRED2(ends_with, Refusal([&] { pexquo::pow(two, two, three); }),
               ": pexquo::pow: r has 3 elements, a has 2");
  EXPECT_PRED2(ends_with, Refusal([&] { pexquo::sincos(three, three, two); }),
               ": pexquo::sincos: r2 has 2 elements, a has 3");
  EXPECT_PRED2(ends_with, Refusal([&] { (void)pexquo::hypot(two, three); }),
               ": pexquo::hypot: b has 3 elements, a has 2");
  EXPECT_PRED2(ends_with, Refusal([&] { pexquo::powx(two, 2, three); }),
               ": pexquo::powx: r has 3 elements, a has 2");
  EXPECT_EQ(two, std::vector<double>(2, 7));
  EXPECT_EQ(three, std::vector<double>(3, 7));
}

TEST(Functions, WhereIsTheLineOfTheCall) {
  std::vector<double> two(2), three(3);
  try {
    pexquo::exp(two, three);
    FAIL();
  } catch (const pexquo::error& e) {
    EXPECT_EQ(e.where().line(), __LINE__ - 3);
    EXPECT_EQ(e.status(), 0);
  }
}

TEST(Functions, OverlapInPartIsRefused) {
  std::vector<double> x(10, 1);
  const std::span all(x);
  const auto low = all.first(6), high = all.last(6);
  for (const auto& [a, r] : {std::pair(low, high), std::pair(high, low)}) {
    EXPECT_NE(Refusal([&] { pexquo::exp(a, r); }), "");
    EXPECT_NE(Refusal([&] { pexquo::mul(r, a, r); }), "");
    EXPECT_NE(Refusal([&] { pexquo::mul(a, r, r); }), "");
    EXPECT_NE(Refusal([&] { pexquo::powx(a, 2, r); }), "");
    EXPECT_NE(Refusal([&] { pexquo::sincos(a, a, r); }), "");
  }
  EXPECT_NE(Refusal([&] { pexquo::sincos(low, low, low); }), "");  // one array for two results
  EXPECT_EQ(x, std::vector<double>(10, 1));
  // Neighbours, arguments among themselves, and a result that is an argument.
  pexquo::mul(all.first(5), all.first(5), all.last(5));
  pexquo::exp(all.first(5), all.last(5));
  pexquo::add(low, low, low);
}

TEST(Functions, OverlapOfDifferentTypesIsRefused) {
  std::vector<Z> z(8, Z(3, 4));
  const std::span moduli(reinterpret_cast<double*>(z.data()), 8);
  EXPECT_NE(Refusal([&] { pexquo::abs(z, moduli); }), "");
  const std::span parts(reinterpret_cast<double*>(z.data()) + 8, 8);
  EXPECT_NE(Refusal([&] { pexquo::cis(parts, z); }), "");
  // The second half takes the results of the first.
  pexquo::abs(std::span(z).first(4), std::span(parts).first(4));
  EXPECT_EQ(parts[0], 5);
}

TEST(Functions, InPlace) {
  const auto expected = pexquo::exp(kArguments);
  auto x = kArguments;
  pexquo::exp(x, x);
  EXPECT_TRUE(SameBits(x, expected));
  x = kArguments;
  const auto [sine, cosine] = pexquo::sincos(x);
  std::vector<double> y(x.size());
  pexquo::sincos(x, y, x);
  EXPECT_TRUE(SameBits(y, sine) && SameBits(x, cosine));
  auto a = kArguments, b = kArguments;
  const auto power = pexquo::pow(a, b);
  pexquo::pow(a, b, b);
  EXPECT_TRUE(SameBits(b, power));
}

}  // namespace
