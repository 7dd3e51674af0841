// The engines of packages and their loops. Their speed is the latency of one step: wider
// instruction sets make none of them faster, so they are compiled once, for the baseline.
#include "bench/random_peers.h"

#include <iterator>
#include <random>

#include <gsl/gsl_rng.h>

#include <boost/random/linear_congruential.hpp>
#include <boost/random/uniform_01.hpp>
#include <boost/random/uniform_int_distribution.hpp>

#include "bench/wh_loop.h"

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

// Fills by distribution(engine). The engine is local to the loop, so that its state stays in
// registers whatever r points to. Engines of C++ and Boost step before they output: their first
// integer is the library's second.
template <typename Engine, typename T, typename Distribution>
void Fill(int n, void* r) {
  static Engine kept(1);
  Engine engine = kept;
  Distribution distribution{};
  T* out = static_cast<T*>(r);
  for (int i = 0; i < n; ++i) out[i] = static_cast<T>(distribution(engine));
  kept = engine;
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

#define ENGINES(generator, Word, Std, Boost, gsl_name, gsl_type)                                 \
  {generator, Output::Bits, "std", true, Fill<Std, Word, Raw>},                                  \
      {generator, Output::Bits, "Boost", true, Fill<Boost, Word, Raw>},                          \
      {generator, Output::Bits, gsl_name, false, FillGsl<&gsl_type, Word, gsl_rng_get>},         \
      {generator, Output::Double, "std", true, Fill<Std, double, StdReal<double>>},              \
      {generator, Output::Double, "Boost", true, Fill<Boost, double, BoostReal<double>>},        \
      {generator, Output::Double, gsl_name, false, FillGsl<&gsl_type, double, gsl_rng_uniform>}, \
      {generator, Output::Float, "std", true, Fill<Std, float, StdReal<float>>},                 \
      {generator, Output::Float, "Boost", true, Fill<Boost, float, BoostReal<float>>},           \
      {generator, Output::Float, gsl_name, false, FillGsl<&gsl_type, float, gsl_rng_uniform>},   \
      {generator, Output::Integers, "std", true, Fill<Std, int32_t, StdIntegers>},               \
      {generator, Output::Integers, "Boost", true, Fill<Boost, int32_t, BoostIntegers>}, {       \
    generator, Output::Integers, gsl_name, false, FillGsl<&gsl_type, int32_t, GslInteger>        \
  }

const RandomPeer kRows[] = {
    ENGINES("MCG31M1", uint32_t, StdMcg31, BoostMcg31, "GSL minstd", gsl_rng_minstd),
    ENGINES("MCG59", uint64_t, StdMcg59, BoostMcg59, "GSL rand48", gsl_rng_rand48),
};

}  // namespace

std::vector<RandomPeer> RandomPeers() {
  std::vector<RandomPeer> peers(std::begin(kRows), std::end(kRows));
  const WhLoops wh = WhLoop();
  const PeerFill fills[] = {wh.bits, wh.doubles, wh.floats, wh.integers};
  for (int i = 0; i < 4; ++i) {
    peers.push_back({"WH", static_cast<Output>(i), "plain loop", true, fills[i]});
  }
  return peers;
}

}  // namespace bench
