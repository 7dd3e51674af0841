// The engines of packages and their loops. Their speed is the latency of one step: wider
// instruction sets make none of them faster, so they are compiled once, for the baseline.
#include "bench/random_peers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>
#include <type_traits>

#include <gsl/gsl_qrng.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <boost/random.hpp>
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/sobol.hpp>

#include "bench/wh_loop.h"
#include "pexquo/quo.h"

namespace bench {
namespace {

constexpr uint32_t kMcg31Multiplier = 1132489760, kMcg31Modulus = 2147483647;
constexpr uint64_t kMcg59Multiplier = 302875106592253, kMcg59Modulus = uint64_t{1} << 59;

using StdMcg31 = std::linear_congruential_engine<uint32_t, kMcg31Multiplier, 0, kMcg31Modulus>;
using StdMcg59 = std::linear_congruential_engine<uint64_t, kMcg59Multiplier, 0, kMcg59Modulus>;
using BoostMcg31 =
    boost::random::linear_congruential_engine<uint32_t, kMcg31Multiplier, 0, kMcg31Modulus>;
using BoostMcg59 =
    boost::random::linear_congruential_engine<uint64_t, kMcg59Multiplier, 0, kMcg59Modulus>;

// The seed sequence that puts a Mersenne twister of n words into the state that the library's has
// for the seed 1.
template <int32_t kId>
struct LibraryState {
  using result_type = uint32_t;
  template <typename Iterator>
  void generate(Iterator begin, Iterator end) const {
    StreamState* stream = nullptr;
    const uint32_t seed = 1;
    if (__quoNewStreamEx(&stream, kId, 1, &seed) != QUO_OK) std::abort();
    std::copy_n(reinterpret_cast<const uint32_t*>(stream + 1), end - begin, begin);
    __quoDeleteStream(&stream);
  }
};
template <class Engine, int32_t kId>
struct Twister : Engine {
  explicit Twister(int) {
    LibraryState<kId> state;
    Engine::seed(state);
  }
};
constexpr uint32_t k2203A = 0xAF81055F, k2203B = 0xDD7EEF80, k2203C = 0xEFD78000;
using StdMt19937 = Twister<std::mt19937, QUO_BRNG_MT19937>;
using BoostMt19937 = Twister<boost::random::mt19937, QUO_BRNG_MT19937>;
using StdMt2203 =
    Twister<std::mersenne_twister_engine<uint32_t, 32, 69, 34, 5, k2203A, 12, 0xFFFFFFFF, 7, k2203B,
                                         15, k2203C, 18, 1812433253>,
            QUO_BRNG_MT2203>;
using BoostMt2203 =
    Twister<boost::random::mersenne_twister_engine<uint32_t, 32, 69, 34, 5, k2203A, 12, 0xFFFFFFFF,
                                                   7, k2203B, 15, k2203C, 18, 1812433253>,
            QUO_BRNG_MT2203>;

// Fills by distribution(engine). A small engine is local to the loop, so that its state stays in
// registers whatever r points to; a large one lives in memory anyway. Congruential engines of C++
// and Boost step before they output: their first integer is the library's second.
template <typename Engine, typename T, typename Distribution>
void Fill(int n, void* r) {
  static Engine kept(1);
  static Distribution distribution = Distribution();
  T* out = static_cast<T*>(r);
  if constexpr (sizeof(Engine) <= 64) {
    Engine engine = kept;
    for (int i = 0; i < n; ++i) out[i] = static_cast<T>(distribution(engine));
    kept = engine;
  } else {
    for (int i = 0; i < n; ++i) out[i] = static_cast<T>(distribution(kept));
  }
}

struct Raw {
  template <typename Engine>
  auto operator()(Engine& engine) {
    return engine();
  }
};
struct StdIntegers : std::uniform_int_distribution<int32_t> {
  StdIntegers() : uniform_int_distribution(0, kIntegers - 1) {}
};
struct BoostIntegers : boost::random::uniform_int_distribution<int32_t> {
  BoostIntegers() : uniform_int_distribution(0, kIntegers - 1) {}
};

// GSL's engines, by name.
template <const gsl_rng_type** type>
gsl_rng* Gsl() {
  static gsl_rng* engine = gsl_rng_alloc(*type);
  return engine;
}
template <const gsl_rng_type** type, typename T, auto draw>
void FillGsl(int n, void* r) {
  gsl_rng* engine = Gsl<type>();
  T* out = static_cast<T*>(r);
  for (int i = 0; i < n; ++i) out[i] = static_cast<T>(draw(engine));
}
unsigned long GslInteger(gsl_rng* engine) { return gsl_rng_uniform_int(engine, kIntegers); }

template <typename T>
using StdReal = std::uniform_real_distribution<T>;
template <typename T>
using BoostReal = boost::random::uniform_01<T>;

// clang-format off
#define ENGINES(generator, Word, Std, Boost)                                                  \
  {generator, "bits", "std", true, Fill<Std, Word, Raw>},                                     \
  {generator, "bits", "Boost", true, Fill<Boost, Word, Raw>},                                 \
  {generator, "uniform d", "std", true, Fill<Std, double, StdReal<double>>},                  \
  {generator, "uniform d", "Boost", true, Fill<Boost, double, BoostReal<double>>},            \
  {generator, "uniform f", "std", true, Fill<Std, float, StdReal<float>>},                    \
  {generator, "uniform f", "Boost", true, Fill<Boost, float, BoostReal<float>>},              \
  {generator, "integers", "std", true, Fill<Std, int32_t, StdIntegers>},                      \
  {generator, "integers", "Boost", true, Fill<Boost, int32_t, BoostIntegers>}
#define GSL_ENGINE(generator, Word, gsl_name, gsl_type)                                       \
  {generator, "bits", gsl_name, false, FillGsl<&gsl_type, Word, gsl_rng_get>},                \
  {generator, "uniform d", gsl_name, false, FillGsl<&gsl_type, double, gsl_rng_uniform>},     \
  {generator, "uniform f", gsl_name, false, FillGsl<&gsl_type, float, gsl_rng_uniform>},      \
  {generator, "integers", gsl_name, false, FillGsl<&gsl_type, int32_t, GslInteger>}
// clang-format on

const RandomPeer kEngines[] = {
    ENGINES("MCG31M1", uint32_t, StdMcg31, BoostMcg31),
    GSL_ENGINE("MCG31M1", uint32_t, "GSL minstd", gsl_rng_minstd),
    ENGINES("MCG59", uint64_t, StdMcg59, BoostMcg59),
    GSL_ENGINE("MCG59", uint64_t, "GSL rand48", gsl_rng_rand48),
    GSL_ENGINE("R250", uint32_t, "GSL r250", gsl_rng_r250),
    GSL_ENGINE("R250", uint32_t, "GSL gfsr4", gsl_rng_gfsr4),
    {"R250", "uniform d", "Boost lagged_fibonacci607", false,
     Fill<boost::random::lagged_fibonacci607, double, BoostReal<double>>},
    GSL_ENGINE("MRG32K3A", uint32_t, "GSL cmrg", gsl_rng_cmrg),
    GSL_ENGINE("MRG32K3A", uint32_t, "GSL mrg", gsl_rng_mrg),
    {"MRG32K3A", "bits", "Boost ecuyer1988", false, Fill<boost::random::ecuyer1988, uint32_t, Raw>},
    {"MRG32K3A", "uniform d", "Boost ecuyer1988", false,
     Fill<boost::random::ecuyer1988, double, BoostReal<double>>},
    ENGINES("MT19937", uint32_t, StdMt19937, BoostMt19937),
    GSL_ENGINE("MT19937", uint32_t, "GSL mt19937", gsl_rng_mt19937),
    ENGINES("MT2203", uint32_t, StdMt2203, BoostMt2203),
};

// ---- Distributions, all on the package's own MT19937, with the parameters that the catalogue
// shows. ----

// Distributions with parameters, made of T.
#define PARAMETERS(Name, Base, ...)  \
  template <typename T>              \
  struct Name : Base<T> {            \
    Name() : Base<T>(__VA_ARGS__) {} \
  };
PARAMETERS(StdWeibull, std::weibull_distribution, T(1.8), T(1))
PARAMETERS(BoostWeibull, boost::random::weibull_distribution, T(1.8), T(1))
PARAMETERS(StdRayleigh, std::weibull_distribution, T(2), T(1))
PARAMETERS(BoostLargest, boost::random::extreme_value_distribution, T(0), T(1))
PARAMETERS(StdLognormal, std::lognormal_distribution, T(0), T(0.5))
PARAMETERS(BoostLognormal, boost::random::lognormal_distribution, T(0), T(0.5))
// Of least values, where the packages draw largest ones.
template <class Largest>
struct Least : Largest {
  Least() : Largest() {}
  template <typename Engine>
  auto operator()(Engine& engine) {
    return -Largest::operator()(engine);
  }
};
struct StdBernoulli : std::bernoulli_distribution {
  StdBernoulli() : bernoulli_distribution(0.3) {}
};
struct BoostBernoulli : boost::random::bernoulli_distribution<double> {
  BoostBernoulli() : bernoulli_distribution(0.3) {}
};
struct StdGeometric : std::geometric_distribution<int32_t> {
  StdGeometric() : geometric_distribution(0.3) {}
};
struct BoostGeometric : boost::random::geometric_distribution<int32_t> {
  BoostGeometric() : geometric_distribution(0.3) {}
};

// Distributions with the parameters kA and kB, in the order of the base's constructor.
#define SETS(Name, Base, Kind)                             \
  template <typename T, auto... kParameters>               \
  struct Name : Base<T> {                                  \
    Name() : Base<T>(static_cast<Kind>(kParameters)...) {} \
  };
SETS(StdGamma, std::gamma_distribution, T)
SETS(BoostGamma, boost::random::gamma_distribution, T)
SETS(BoostBeta, boost::random::beta_distribution, T)
SETS(StdPoisson, std::poisson_distribution, double)
SETS(BoostPoisson, boost::random::poisson_distribution, double)
#undef SETS
// Of a count and a probability.
#define COUNTED(Name, Base)                  \
  template <int kCount, double kProbability> \
  struct Name : Base {                       \
    Name() : Base(kCount, kProbability) {}   \
  };
COUNTED(StdBinomial, std::binomial_distribution<int32_t>)
COUNTED(BoostBinomial, boost::random::binomial_distribution<int32_t>)
COUNTED(StdNegbinomial, std::negative_binomial_distribution<int32_t>)
COUNTED(BoostNegbinomial, boost::random::negative_binomial_distribution<int32_t>)
#undef COUNTED

template <double kShape>
double GslGamma(gsl_rng* g) {
  return gsl_ran_gamma(g, kShape, 1);
}
template <double kP, double kQ>
double GslBeta(gsl_rng* g) {
  return gsl_ran_beta(g, kP, kQ);
}
template <unsigned kCount, double kProbability>
unsigned GslBinomial(gsl_rng* g) {
  return gsl_ran_binomial(g, kProbability, kCount);
}
template <double kMean>
unsigned GslPoisson(gsl_rng* g) {
  return gsl_ran_poisson(g, kMean);
}
template <unsigned kLot, unsigned kDrawn, unsigned kMarked>
unsigned GslHypergeometric(gsl_rng* g) {
  return gsl_ran_hypergeometric(g, kMarked, kLot - kMarked, kDrawn);
}
template <double kSuccesses, double kProbability>
unsigned GslNegbinomial(gsl_rng* g) {
  return gsl_ran_negative_binomial(g, kProbability, kSuccesses);
}

// A mean of its own for each number.
template <class Distribution, class Engine>
void FillPoissonV(int n, void* r) {
  static Engine engine(1);
  const double* const means = VaryingMeans();
  auto* const out = static_cast<int32_t*>(r);
  for (int i = 0; i < n; ++i) out[i] = Distribution(means[i % kVaryingMeans])(engine);
}
void FillGslPoissonV(int n, void* r) {
  gsl_rng* const engine = Gsl<&gsl_rng_mt19937>();
  const double* const means = VaryingMeans();
  auto* const out = static_cast<int32_t*>(r);
  for (int i = 0; i < n; ++i)
    out[i] = static_cast<int32_t>(gsl_ran_poisson(engine, means[i % kVaryingMeans]));
}

double GslNormal(gsl_rng* g) { return gsl_ran_gaussian_ziggurat(g, 1); }
double GslExponential(gsl_rng* g) { return gsl_ran_exponential(g, 1); }
double GslLaplace(gsl_rng* g) { return gsl_ran_laplace(g, 1); }
double GslWeibull(gsl_rng* g) { return gsl_ran_weibull(g, 1, 1.8); }
double GslCauchy(gsl_rng* g) { return gsl_ran_cauchy(g, 1); }
double GslRayleigh(gsl_rng* g) { return gsl_ran_rayleigh(g, 0.70710678118654752); }
double GslLognormal(gsl_rng* g) { return gsl_ran_lognormal(g, 0, 0.5); }
double GslGumbel(gsl_rng* g) { return -gsl_ran_gumbel1(g, 1, 1); }
unsigned GslBernoulli(gsl_rng* g) { return gsl_ran_bernoulli(g, 0.3); }
unsigned GslGeometric(gsl_rng* g) { return gsl_ran_geometric(g, 0.3) - 1; }

// n numbers are n / kVectorDimension vectors.
template <typename T>
void FillGslVectors(int n, void* r) {
  constexpr size_t kSide = kVectorDimension;
  gsl_rng* const engine = Gsl<&gsl_rng_mt19937>();
  static gsl_vector* const mean = gsl_vector_calloc(kSide);
  static gsl_vector* const result = gsl_vector_alloc(kSide);
  static gsl_matrix* const factor = gsl_matrix_alloc(kSide, kSide);
  gsl_matrix_set_identity(factor);
  T* out = static_cast<T*>(r);
  for (int i = 0; i + kVectorDimension <= n; i += kVectorDimension) {
    gsl_ran_multivariate_gaussian(engine, mean, factor, result);
    for (size_t k = 0; k < kSide; ++k) *out++ = static_cast<T>(gsl_vector_get(result, k));
  }
}

template <typename T, auto draw>
constexpr PeerFill kGsl = FillGsl<&gsl_rng_mt19937, T, draw>;
template <typename T, typename Distribution>
constexpr PeerFill kStd = Fill<StdMt19937, T, Distribution>;
template <typename T, typename Distribution>
constexpr PeerFill kBoost = Fill<BoostMt19937, T, Distribution>;

// clang-format off
#define REAL(output, T)                                                                             \
  {"MT19937", "gaussian " output, "std", false, kStd<T, std::normal_distribution<T>>},              \
  {"MT19937", "gaussian " output, "Boost", false, kBoost<T, boost::random::normal_distribution<T>>}, \
  {"MT19937", "gaussian " output, "GSL ziggurat", false, kGsl<T, GslNormal>},                       \
  {"MT19937", "gaussianmv " output, "GSL", false, FillGslVectors<T>},                               \
  {"MT19937", "exponential " output, "std", false, kStd<T, std::exponential_distribution<T>>},      \
  {"MT19937", "exponential " output, "Boost", false,                                                \
   kBoost<T, boost::random::exponential_distribution<T>>},                                          \
  {"MT19937", "exponential " output, "GSL", false, kGsl<T, GslExponential>},                        \
  {"MT19937", "laplace " output, "Boost", false, kBoost<T, boost::random::laplace_distribution<T>>}, \
  {"MT19937", "laplace " output, "GSL", false, kGsl<T, GslLaplace>},                                \
  {"MT19937", "weibull " output, "std", false, kStd<T, StdWeibull<T>>},                             \
  {"MT19937", "weibull " output, "Boost", false, kBoost<T, BoostWeibull<T>>},                       \
  {"MT19937", "weibull " output, "GSL", false, kGsl<T, GslWeibull>},                                \
  {"MT19937", "cauchy " output, "std", false, kStd<T, std::cauchy_distribution<T>>},                \
  {"MT19937", "cauchy " output, "Boost", false, kBoost<T, boost::random::cauchy_distribution<T>>},  \
  {"MT19937", "cauchy " output, "GSL", false, kGsl<T, GslCauchy>},                                  \
  {"MT19937", "rayleigh " output, "std weibull", false, kStd<T, StdRayleigh<T>>},                   \
  {"MT19937", "rayleigh " output, "GSL", false, kGsl<T, GslRayleigh>},                              \
  {"MT19937", "lognormal " output, "std", false, kStd<T, StdLognormal<T>>},                         \
  {"MT19937", "lognormal " output, "Boost", false, kBoost<T, BoostLognormal<T>>},                   \
  {"MT19937", "lognormal " output, "GSL", false, kGsl<T, GslLognormal>},                            \
  {"MT19937", "gumbel " output, "std", false, kStd<T, Least<std::extreme_value_distribution<T>>>},         \
  {"MT19937", "gumbel " output, "Boost", false,                                                     \
   kBoost<T, Least<BoostLargest<T>>>},                                        \
  {"MT19937", "gumbel " output, "GSL", false, kGsl<T, GslGumbel>},                                  \
  {"MT19937", "gamma 0.5 " output, "std", false, kStd<T, StdGamma<T, 0.5>>},                        \
  {"MT19937", "gamma 0.5 " output, "Boost", false, kBoost<T, BoostGamma<T, 0.5>>},                  \
  {"MT19937", "gamma 0.5 " output, "GSL", false, kGsl<T, GslGamma<0.5>>},                           \
  {"MT19937", "gamma 2.5 " output, "std", false, kStd<T, StdGamma<T, 2.5>>},                        \
  {"MT19937", "gamma 2.5 " output, "Boost", false, kBoost<T, BoostGamma<T, 2.5>>},                  \
  {"MT19937", "gamma 2.5 " output, "GSL", false, kGsl<T, GslGamma<2.5>>},                           \
  {"MT19937", "beta 0.5,0.5 " output, "Boost", false, kBoost<T, BoostBeta<T, 0.5, 0.5>>},           \
  {"MT19937", "beta 0.5,0.5 " output, "GSL", false, kGsl<T, GslBeta<0.5, 0.5>>},                    \
  {"MT19937", "beta 2.5,1.5 " output, "Boost", false, kBoost<T, BoostBeta<T, 2.5, 1.5>>},           \
  {"MT19937", "beta 2.5,1.5 " output, "GSL", false, kGsl<T, GslBeta<2.5, 1.5>>}
#define BINOMIAL(set, n, p)                                                                         \
  {"MT19937", "binomial " set " i", "std", false, kStd<int32_t, StdBinomial<n, p>>},                \
  {"MT19937", "binomial " set " i", "Boost", false, kBoost<int32_t, BoostBinomial<n, p>>},          \
  {"MT19937", "binomial " set " i", "GSL", false, kGsl<int32_t, GslBinomial<n, p>>}
#define POISSON(set, mean)                                                                          \
  {"MT19937", "poisson " set " i", "std", false, kStd<int32_t, StdPoisson<int32_t, mean>>},         \
  {"MT19937", "poisson " set " i", "Boost", false, kBoost<int32_t, BoostPoisson<int32_t, mean>>},   \
  {"MT19937", "poisson " set " i", "GSL", false, kGsl<int32_t, GslPoisson<mean>>, 1000}
#define NEGBINOMIAL(set, a, p)                                                                      \
  {"MT19937", "negbinomial " set " i", "std", false, kStd<int32_t, StdNegbinomial<a, p>>},          \
  {"MT19937", "negbinomial " set " i", "Boost", false, kBoost<int32_t, BoostNegbinomial<a, p>>},    \
  {"MT19937", "negbinomial " set " i", "GSL", false, kGsl<int32_t, GslNegbinomial<double{a}, p>>, 1000}
// clang-format on

const RandomPeer kDistributions[] = {
    REAL("d", double),
    REAL("f", float),
    {"MT19937", "bernoulli i", "std", false, kStd<int32_t, StdBernoulli>},
    {"MT19937", "bernoulli i", "Boost", false, kBoost<int32_t, BoostBernoulli>},
    {"MT19937", "bernoulli i", "GSL", false, kGsl<int32_t, GslBernoulli>},
    {"MT19937", "geometric i", "std", false, kStd<int32_t, StdGeometric>},
    {"MT19937", "geometric i", "Boost", false, kBoost<int32_t, BoostGeometric>},
    {"MT19937", "geometric i", "GSL", false, kGsl<int32_t, GslGeometric>},
    BINOMIAL("20,0.3", 20, 0.3),
    BINOMIAL("1000,0.4", 1000, 0.4),
    POISSON("3", 3.0),
    POISSON("1000", 1000.0),
    {"MT19937", "poissonv i", "std", false,
     FillPoissonV<std::poisson_distribution<int32_t>, StdMt19937>},
    {"MT19937", "poissonv i", "Boost", false,
     FillPoissonV<boost::random::poisson_distribution<int32_t>, BoostMt19937>},
    {"MT19937", "poissonv i", "GSL", false, FillGslPoissonV, 1000},
    {"MT19937", "hypergeometric 100,30,20 i", "GSL", false,
     kGsl<int32_t, GslHypergeometric<100, 30, 20>>},
    {"MT19937", "hypergeometric 100000,3000,40000 i", "GSL", false,
     kGsl<int32_t, GslHypergeometric<100000, 3000, 40000>>, 1000},
    NEGBINOMIAL("5,0.4", 5, 0.4),
    NEGBINOMIAL("500,0.1", 500, 0.1),
};

// ---- Quasi-random points of kPointDimension coordinates, one after the other. ----

template <class Base>
struct Points : Base {
  explicit Points(int) : Base(kPointDimension) {}
};
using BoostSobol = Points<boost::random::sobol>;
using BoostNiederreiter = Points<boost::random::niederreiter_base2>;

// Engines are kept from call to call, and started again before they have run out of points.
template <class Engine, typename T>
void FillPoints(int n, void* r) {
  static Engine engine(1);
  static int64_t left = 0;
  if (left < n) {
    engine = Engine(1);
    left = int64_t{1} << 31;
  }
  left -= n;
  T* out = static_cast<T*>(r);
  for (int i = 0; i < n; ++i) {
    if constexpr (std::is_integral_v<T>) {
      out[i] = static_cast<T>(engine());
    } else {
      out[i] = boost::random::uniform_01<T>()(engine);
    }
  }
}
template <const gsl_qrng_type** type>
void FillGslPoints(int n, void* r) {
  static gsl_qrng* const engine = gsl_qrng_alloc(*type, kPointDimension);
  auto* const out = static_cast<double*>(r);
  for (int i = 0; i + kPointDimension <= n; i += kPointDimension) gsl_qrng_get(engine, out + i);
}

const RandomPeer kPoints[] = {
    {"Sobol", "bits", "Boost", false, FillPoints<BoostSobol, uint32_t>},
    {"Sobol", "uniform d", "Boost", false, FillPoints<BoostSobol, double>},
    {"Sobol", "uniform f", "Boost", false, FillPoints<BoostSobol, float>},
    {"Sobol", "uniform d", "GSL", false, FillGslPoints<&gsl_qrng_sobol>},
    {"Niederr", "bits", "Boost", false, FillPoints<BoostNiederreiter, uint32_t>},
    {"Niederr", "uniform d", "Boost", false, FillPoints<BoostNiederreiter, double>},
    {"Niederr", "uniform f", "Boost", false, FillPoints<BoostNiederreiter, float>},
    {"Niederr", "uniform d", "GSL", false, FillGslPoints<&gsl_qrng_niederreiter_2>},
};

}  // namespace

const double* VaryingMeans() {
  static const auto means = [] {
    std::array<double, kVaryingMeans> m;
    for (int i = 0; i < kVaryingMeans; ++i)
      m[static_cast<size_t>(i)] = std::exp2((i * 389 % 1024) / 64.0 - 6);
    return m;
  }();
  return means.data();
}

std::vector<RandomPeer> RandomPeers() {
  std::vector<RandomPeer> peers(std::begin(kEngines), std::end(kEngines));
  const WhLoops wh = WhLoop();
  peers.push_back({"WH", "bits", "plain loop", true, wh.bits});
  peers.push_back({"WH", "uniform d", "plain loop", true, wh.doubles});
  peers.push_back({"WH", "uniform f", "plain loop", true, wh.floats});
  peers.push_back({"WH", "integers", "plain loop", true, wh.integers});
  peers.insert(peers.end(), std::begin(kDistributions), std::end(kDistributions));
  peers.insert(peers.end(), std::begin(kPoints), std::end(kPoints));
  return peers;
}

}  // namespace bench
