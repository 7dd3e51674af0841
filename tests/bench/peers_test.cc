// The benchmarks compare like with like: a peer computes the function its row names, no worse than
// the row says, at every level; an engine said to have a generator's parameters draws its sequence.
#include "bench/peers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "bench/random_peers.h"
#include "catalogue/catalogue.h"
#include "hwy/aligned_allocator.h"
#include "pexquo/quo.h"

namespace {

using Reference = std::function<long double(long double a, long double b)>;
using Wide = long double;

// y with erf(y) = x, of which q = 1 - |x| is exact where x is not, by Newton's method from 0.
Wide InverseErf(Wide x, Wide q) {
  Wide y = 0;
  for (int i = 0; i < 60; ++i) {
    const Wide rest = q > 0.5L ? std::fabs(x) - std::erf(y) : std::erfc(y) - q;
    const Wide before = y;
    y += rest * std::exp(y * y) * 0.886226925452758013649L;
    if (y == before) break;
  }
  return std::copysign(y, x);
}

const std::map<std::string, Reference> kReferences = {
    {"ErfInv", [](Wide a, Wide) { return InverseErf(a, 1 - std::fabs(a)); }},
    {"ErfcInv", [](Wide a, Wide) { return InverseErf(1 - a, std::min(a, 2 - a)); }},
    {"CdfNormInv",
     [](Wide a, Wide) {
       return InverseErf(2 * a - 1, 2 * std::min(a, 1 - a)) * 1.41421356237309504880L;
     }},
    {"Exp", [](Wide a, Wide) { return std::exp(a); }},
    {"Expm1", [](Wide a, Wide) { return std::expm1(a); }},
    {"Ln", [](Wide a, Wide) { return std::log(a); }},
    {"Log10", [](Wide a, Wide) { return std::log10(a); }},
    {"Log1p", [](Wide a, Wide) { return std::log1p(a); }},
    {"Sin", [](Wide a, Wide) { return std::sin(a); }},
    {"Cos", [](Wide a, Wide) { return std::cos(a); }},
    {"Tan", [](Wide a, Wide) { return std::tan(a); }},
    {"Acos", [](Wide a, Wide) { return std::acos(a); }},
    {"Asin", [](Wide a, Wide) { return std::asin(a); }},
    {"Atan", [](Wide a, Wide) { return std::atan(a); }},
    {"Acosh", [](Wide a, Wide) { return std::acosh(a); }},
    {"Asinh", [](Wide a, Wide) { return std::asinh(a); }},
    {"Atanh", [](Wide a, Wide) { return std::atanh(a); }},
    {"Cosh", [](Wide a, Wide) { return std::cosh(a); }},
    {"Sinh", [](Wide a, Wide) { return std::sinh(a); }},
    {"Tanh", [](Wide a, Wide) { return std::tanh(a); }},
    {"Erf", [](Wide a, Wide) { return std::erf(a); }},
    {"Erfc", [](Wide a, Wide) { return std::erfc(a); }},
    {"Sqrt", [](Wide a, Wide) { return std::sqrt(a); }},
    {"Cbrt", [](Wide a, Wide) { return std::cbrt(a); }},
    {"SinCos", [](Wide a, Wide) { return std::sin(a); }},
    {"Pow", [](Wide a, Wide b) { return std::pow(a, b); }},
    {"Powx", [](Wide a, Wide b) { return std::pow(a, b); }},
    {"Pow2o3", [](Wide a, Wide) { return std::cbrt(a * a); }},
    {"Pow3o2", [](Wide a, Wide) { return a * std::sqrt(a); }},
    {"InvSqrt", [](Wide a, Wide) { return 1 / std::sqrt(a); }},
    {"InvCbrt", [](Wide a, Wide) { return 1 / std::cbrt(a); }},
    {"Inv", [](Wide a, Wide) { return 1 / a; }},
    {"Div", [](Wide a, Wide b) { return a / b; }},
    {"Hypot", [](Wide a, Wide b) { return std::hypot(a, b); }},
    {"Atan2", [](Wide a, Wide b) { return std::atan2(a, b); }},
    {"CdfNorm", [](Wide a, Wide) { return std::erfc(-a * std::sqrt(Wide(0.5))) / 2; }},
    {"Add", [](Wide a, Wide b) { return a + b; }},
    {"Sub", [](Wide a, Wide b) { return a - b; }},
    {"Mul", [](Wide a, Wide b) { return a * b; }},
    {"Sqr", [](Wide a, Wide) { return a * a; }},
    {"Abs", [](Wide a, Wide) { return std::fabs(a); }},
    {"Ceil", [](Wide a, Wide) { return std::ceil(a); }},
    {"Floor", [](Wide a, Wide) { return std::floor(a); }},
    {"Trunc", [](Wide a, Wide) { return std::trunc(a); }},
    {"Rint", [](Wide a, Wide) { return std::rint(a); }},
    {"NearbyInt", [](Wide a, Wide) { return std::nearbyint(a); }},
    {"Round", [](Wide a, Wide) { return std::round(a); }},
    {"Modf", [](Wide a, Wide) { return std::trunc(a); }},
};

template <typename T>
double UlpError(T got, Wide want) {
  using Limits = std::numeric_limits<T>;
  if (want == 0) return got == 0 ? 0 : HUGE_VAL;
  if (std::fabs(want) > Limits::max()) return std::isinf(got) ? 0 : HUGE_VAL;
  const int exponent = std::max(std::ilogb(want), Limits::min_exponent - 1);
  return static_cast<double>(std::fabs(got - want) /
                             std::ldexp(Wide(1), exponent - Limits::digits + 1));
}

// Half the arguments uniform on the typical range, half spread over magnitudes from 1e-30 up to its
// greater end; a quarter of those of a function of positive arguments reach 1e30.
template <typename T>
void Draw(pex::Range range, std::mt19937_64& engine, int n, T* a) {
  std::uniform_real_distribution<double> uniform(range.lo, range.hi);
  const double most = std::max(std::fabs(range.lo), range.hi);
  std::uniform_real_distribution<double> magnitude(std::log(1e-30), std::log(most));
  for (int i = 0; i < n; ++i) {
    double x = i % 2 == 0 ? uniform(engine) : std::exp(magnitude(engine));
    if (i % 4 == 3 && range.lo < 0) x = -x;
    if (i % 8 == 7 && range.lo == 0) x = 1 / x;
    a[i] = static_cast<T>(std::clamp(x, range.lo == 0 ? 1e-30 : range.lo, std::max(range.hi, x)));
  }
}

template <typename T>
void CheckPeer(const bench::Peer& peer, bench::PeerCall<T> call, const pex::Precision& precision,
               int n) {
  constexpr unsigned kSeed = 20240607;
  std::mt19937_64 engine(kSeed);
  hwy::AlignedFreeUniquePtr<T[]> x[4];
  for (auto& array : x) array = hwy::AllocateAligned<T>(n);
  Draw(precision.typical, engine, n, x[0].get());
  const bool same = precision.typical2.lo == precision.typical2.hi;
  Draw(same ? precision.typical : precision.typical2, engine, n, x[1].get());
  call(n, x[0].get(), x[1].get(), x[2].get(), x[3].get());
  const Reference& reference = kReferences.at(peer.function);
  const bool one_second = std::string_view(peer.function) == "Powx";
  double worst = 0;
  int where = 0;
  for (int i = 0; i < n; ++i) {
    const double error = UlpError(x[2][i], reference(x[0][i], x[1][one_second ? 0 : i]));
    if (!(error <= worst)) worst = error, where = i;
    if (std::string_view(peer.function) == "Modf") {
      ASSERT_EQ(x[3][i], x[0][i] - x[2][i]) << x[0][i];
    }
    if (std::string_view(peer.function) == "SinCos") {
      ASSERT_LE(UlpError(x[3][i], std::cos(Wide(x[0][i]))), peer.ulp) << x[0][i];
    }
  }
  EXPECT_LE(worst, peer.ulp) << "at " << x[0][where] << ", seed " << kSeed;
}

TEST(Peers, ComputeTheirFunctionAsWellAsTheySay) {
  constexpr int kCount = 40000;
  for (const bench::Level& level : bench::Levels()) {
    if (!bench::ProcessorHas(level)) {
      std::printf("skipped: no %s\n", level.title);
      continue;
    }
    bench::UseLevel(level);
    for (const bench::Peer& peer : bench::PeersAt(level)) {
      SCOPED_TRACE(std::string(level.name) + " " + peer.name + " " + peer.function +
                   (peer.d != nullptr ? " double" : " single"));
      const pex::Function* function = pex::FindFunction(peer.function);
      ASSERT_NE(function, nullptr);
      if (peer.d != nullptr) {
        CheckPeer(peer, peer.d, function->d, kCount);
      } else {
        CheckPeer(peer, peer.s, function->s, kCount);
      }
    }
  }
}

// Words of 32 bits of a raw integer.
int WordsOf(std::string_view generator) {
  return generator == "WH" ? 4 : generator == "MCG59" ? 2 : 1;
}

std::vector<uint32_t> LibraryBits(std::string_view generator, int n) {
  const uint32_t seed[] = {1};
  StreamState* stream = nullptr;
  for (const quo::Generator& g : quo::Generators()) {
    if (g.name != generator) continue;
    EXPECT_EQ(__quoNewStreamEx(&stream, g.id, 1, seed), QUO_OK);
  }
  std::vector<uint32_t> bits(static_cast<size_t>(n) * WordsOf(generator));
  EXPECT_EQ(_quoiRngUniformBits(0, stream, n, bits.data()), QUO_OK);
  __quoDeleteStream(&stream);
  return bits;
}

TEST(RandomPeers, DrawTheSequenceOfTheirGenerator) {
  constexpr int n = 1000;
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    if (!peer.same || peer.output != std::string_view("bits")) continue;
    SCOPED_TRACE(std::string(peer.generator) + " " + peer.name);
    const int words = WordsOf(peer.generator);
    std::vector<uint32_t> got(n * words);
    for (int i = 0; i < n; i += 8) peer.fill(8, got.data() + i * words);
    // Congruential engines of packages step before they output, all others after.
    const bool late = std::string_view(peer.generator).starts_with("MCG");
    const std::vector<uint32_t> bits = LibraryBits(peer.generator, n + 1);
    const auto begin = bits.begin() + (late ? words : 0);
    EXPECT_EQ(got, std::vector<uint32_t>(begin, begin + n * words));
  }
}

template <typename T>
void CheckUniform(const bench::RandomPeer& peer, T end) {
  constexpr int n = 10000;
  std::vector<T> r(n);
  peer.fill(n, r.data());
  const auto [least, most] = std::minmax_element(r.begin(), r.end());
  EXPECT_GE(*least, T(0));
  EXPECT_LE(*most, end);
  EXPECT_LE(*least, end / T(100));
  EXPECT_GE(*most, end - end / T(100));
}

TEST(RandomPeers, AreUniformOnTheirInterval) {
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    SCOPED_TRACE(std::string(peer.generator) + " " + peer.name + " " + peer.output);
    const std::string_view output = peer.output;
    if (output == "uniform d") CheckUniform<double>(peer, 1);
    if (output == "uniform f") CheckUniform<float>(peer, 1);
    if (output == "integers") CheckUniform<int32_t>(peer, bench::kIntegers - 1);
  }
}

// The peers of a distribution draw what the library draws: quantiles lie between those of the
// library a hundredth below and above, or near them.
constexpr int kQuantiles[] = {5, 15, 25, 35, 45, 55, 65, 75, 85, 95};  // hundredths
template <typename T>
std::vector<double> Hundredths(const std::function<void(int, void*)>& fill) {
  constexpr int n = 100000;
  std::vector<T> r(n);
  fill(n, r.data());
  std::ranges::sort(r);
  std::vector<double> quantiles;
  for (int i = 0; i < 100; ++i) quantiles.push_back(static_cast<double>(r[i * n / 100]));
  return quantiles;
}

// The parameters of an output: those in its name ("beta 2.5,1.5 d"), else the ones that the
// catalogue shows.
std::array<double, quo::kMaxParameters> ParametersOf(const quo::Distribution& d,
                                                     std::string_view output) {
  std::array<double, quo::kMaxParameters> values = d.ShownParameters();
  const size_t first = output.find(' '), last = output.rfind(' ');
  if (first == last) return values;
  for (size_t i = 0; i < values.size(); ++i) values[i] = d.parameters[i].standard;
  std::istringstream list(std::string(output.substr(first + 1, last - first - 1)));
  std::string number;
  for (size_t i = 0; std::getline(list, number, ','); ++i) values.at(i) = std::stod(number);
  return values;
}

TEST(RandomPeers, DrawTheDistributionsOfTheLibrary) {
  StreamState* stream = nullptr;
  const uint32_t seed = 1;
  ASSERT_EQ(__quoNewStreamEx(&stream, QUO_BRNG_MT19937, 1, &seed), QUO_OK);
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    const std::string_view output = peer.output;
    const quo::Distribution* d = quo::FindDistribution(output.substr(0, output.find(' ')));
    if (d == nullptr || d->name == "uniform") continue;
    SCOPED_TRACE(std::string(peer.name) + " " + peer.output);
    const char type = output.back() == 'f' ? 's' : output.back();
    // Vectors of uncorrelated components are scalars of the normal distribution.
    const bool vectors = d->name == "gaussianmv";
    const quo::Sampler* sampler =
        quo::FindSampler(vectors ? *quo::FindDistribution("gaussian") : *d, type);
    const bool varying = d->name == "poissonv";
    ASSERT_TRUE(varying || sampler != nullptr);
    const auto parameters = varying ? std::array<double, quo::kMaxParameters>()
                                    : ParametersOf(*sampler->distribution, output);
    const auto ours = [&](int n, void* r) {
      if (!varying) {
        EXPECT_EQ(sampler->draw(0, stream, n, r, parameters.data()), QUO_OK);
        return;
      }
      std::vector<double> means(static_cast<size_t>(n));
      for (size_t i = 0; i < means.size(); ++i)
        means[i] = bench::VaryingMeans()[i % bench::kVaryingMeans];
      EXPECT_EQ(_quoiRngPoissonV(0, stream, n, static_cast<int32_t*>(r), means.data()), QUO_OK);
    };
    const auto quantiles = [&](const std::function<void(int, void*)>& fill) {
      return type == 'd'   ? Hundredths<double>(fill)
             : type == 's' ? Hundredths<float>(fill)
                           : Hundredths<int32_t>(fill);
    };
    const std::vector<double> expected = quantiles(ours), got = quantiles(peer.fill);
    for (const int i : kQuantiles) {
      const auto at = static_cast<size_t>(i);
      const double slack = 0.06 * std::max(1.0, std::fabs(expected[at]));
      EXPECT_GE(got[at], expected[at - 1] - slack) << i;
      EXPECT_LE(got[at], expected[at + 1] + slack) << i;
    }
  }
  __quoDeleteStream(&stream);
}

}  // namespace
