// pexquo_bench_random: every generator's raw integers and uniforms, and every distribution on
// MT19937, beside those of the C++ library, Boost and GSL. Rows are named
// GENERATOR/OUTPUT/pexquo/n:N, with "uniform d clamped" and "uniform f clamped" for the accurate
// method, GENERATOR/OUTPUT/peer/NAME/n:N for engines with the same parameters, and
// GENERATOR/OUTPUT/other/NAME/n:N for those with others.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/random_peers.h"
#include "bench/run.h"
#include "catalogue/catalogue.h"
#include "hwy/aligned_allocator.h"
#include "pexquo/quo.h"

namespace {

constexpr int kLengths[] = {16, 1000, 1000000};
constexpr int kLongest = 1000000;
constexpr int kWidestOutput = 16;  // bytes
constexpr double kNoUlp = -1;

void* Results() {
  static const auto results = hwy::AllocateAligned<uint8_t>(size_t{kLongest} * kWidestOutput);
  return results.get();
}

void AddGenerator(const std::string& generator, StreamState* stream) {
  void* const r = Results();
  auto* const d = static_cast<double*>(r);
  auto* const s = static_cast<float*>(r);
  auto* const i = static_cast<int32_t*>(r);
  auto* const bits = static_cast<uint32_t*>(r);
  constexpr uint32_t kClamped = QUO_METHOD_ACCURATE;
  const auto add = [&](const char* output, auto draw) {
    for (int n : kLengths) {
      bench::Add(generator + "/" + output + "/pexquo", n, kNoUlp, [=] { draw(n); });
    }
  };
  add("bits", [=](int n) { _quoiRngUniformBits(0, stream, n, bits); });
  add("uniform d", [=](int n) { _quodRngUniform(0, stream, n, d, 0, 1); });
  add("uniform d clamped", [=](int n) { _quodRngUniform(kClamped, stream, n, d, 0, 1); });
  add("uniform f", [=](int n) { _quosRngUniform(0, stream, n, s, 0, 1); });
  add("uniform f clamped", [=](int n) { _quosRngUniform(kClamped, stream, n, s, 0, 1); });
  add("integers", [=](int n) { _quoiRngUniform(0, stream, n, i, 0, bench::kIntegers); });
}

// With the seed 1, quasi-random points with kPointDimension.
StreamState* NewStream(int32_t id) {
  StreamState* stream = nullptr;
  const bool points = id == QUO_BRNG_SOBOL || id == QUO_BRNG_NIEDERR;
  const uint32_t seed = points ? bench::kPointDimension : 1;
  const int status = __quoNewStreamEx(&stream, id, 1, &seed);
  if (status == QUO_OK) return stream;
  std::fprintf(stderr, "pexquo_bench_random: no stream of generator 0x%X: status %d\n",
               static_cast<unsigned>(id), status);
  return nullptr;
}

// Distributions whose speed depends on their parameters: a small set and a large one, as the peers
// have them.
struct ParameterSet {
  std::string_view distribution;
  const char* name;
  std::array<double, quo::kMaxParameters> parameters;
};
constexpr ParameterSet kSets[] = {
    {"gamma", "0.5", {0.5, 0, 1}},
    {"gamma", "2.5", {2.5, 0, 1}},
    {"beta", "0.5,0.5", {0.5, 0.5, 0, 1}},
    {"beta", "2.5,1.5", {2.5, 1.5, 0, 1}},
    {"binomial", "20,0.3", {20, 0.3}},
    {"binomial", "1000,0.4", {1000, 0.4}},
    {"poisson", "3", {3}},
    {"poisson", "1000", {1000}},
    {"hypergeometric", "100,30,20", {100, 30, 20}},
    {"hypergeometric", "100000,3000,40000", {100000, 3000, 40000}},
    {"negbinomial", "5,0.4", {5, 0.4}},
    {"negbinomial", "500,0.1", {500, 0.1}},
};
std::vector<ParameterSet> SetsOf(const quo::Distribution& d) {
  std::vector<ParameterSet> sets;
  std::copy_if(std::begin(kSets), std::end(kSets), std::back_inserter(sets),
               [&](const ParameterSet& set) { return set.distribution == d.name; });
  if (sets.empty()) sets.push_back({d.name, "", d.ShownParameters()});
  return sets;
}

// "gaussian icdf" for the method 2, and the type as the peers' outputs have it.
std::string OutputName(const ParameterSet& set, std::string_view method, char type) {
  const auto word = [](std::string_view text) {
    return text.empty() ? std::string() : std::string(text) + " ";
  };
  return word(set.distribution) + word(set.name) + word(method) + (type == 's' ? 'f' : type);
}

// The values of a distribution's methods with their names; a single one without a name.
std::vector<std::string> Methods(const quo::Distribution& d) {
  std::istringstream words{std::string(d.methods)};
  std::vector<std::string> names{std::istream_iterator<std::string>(words), {}};
  if (names.empty()) names.emplace_back();
  return names;
}

void AddDistributions(StreamState* stream) {
  void* const r = Results();
  for (const quo::Sampler& sampler : quo::Samplers()) {
    const quo::Distribution& d = *sampler.distribution;
    if (d.name.starts_with("uniform")) continue;
    for (const ParameterSet& set : SetsOf(d)) {
      uint32_t method = 0;
      for (const std::string& name : Methods(d)) {
        for (int n : kLengths) {
          bench::Add("MT19937/" + OutputName(set, name, sampler.type) + "/pexquo", n, kNoUlp,
                     [=] { sampler.draw(method, stream, n, r, set.parameters.data()); });
        }
        ++method;
      }
    }
  }
}

// Vectors of dimension 4 with the full factor of the identity, by the number.
template <typename T>
void AddVectors(StreamState* stream, const char* output, auto kernel) {
  constexpr int kSide = bench::kVectorDimension;
  T* const r = static_cast<T*>(Results());
  const quo::Distribution& d = *quo::FindDistribution("gaussianmv");
  uint32_t method = 0;
  for (const std::string& name : Methods(d)) {
    for (int n : kLengths) {
      bench::Add("MT19937/gaussianmv " + name + " " + output + "/pexquo", n, kNoUlp, [=] {
        static constexpr T kMean[kSide] = {};
        static constexpr T kFactor[kSide * kSide] = {1, 0, 0, 0, 0, 1, 0, 0,
                                                     0, 0, 1, 0, 0, 0, 0, 1};
        kernel(method, stream, n / kSide, r, kSide, QUO_STORAGE_FULL, kMean, kFactor);
      });
    }
    ++method;
  }
}

void AddVaryingPoisson(StreamState* stream) {
  static const std::vector<double> means = [] {
    std::vector<double> m(kLongest);
    for (size_t i = 0; i < m.size(); ++i) m[i] = bench::VaryingMeans()[i % bench::kVaryingMeans];
    return m;
  }();
  auto* const r = static_cast<int32_t*>(Results());
  for (int n : kLengths) {
    bench::Add("MT19937/poissonv i/pexquo", n, kNoUlp,
               [=] { _quoiRngPoissonV(0, stream, n, r, means.data()); });
  }
}

bool AddAll(const bench::Level&) {
  for (const quo::Generator& generator : quo::Generators()) {
    StreamState* const stream = NewStream(generator.id);
    if (stream == nullptr) return false;
    AddGenerator(std::string(generator.name), stream);
  }
  StreamState* const stream = NewStream(QUO_BRNG_MT19937);
  if (stream == nullptr) return false;
  AddDistributions(stream);
  AddVaryingPoisson(stream);
  AddVectors<double>(stream, "d", _quodRngGaussianMV);
  AddVectors<float>(stream, "f", _quosRngGaussianMV);
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    const std::string name = std::string(peer.generator) + "/" + peer.output +
                             (peer.same ? "/peer/" : "/other/") + peer.name;
    for (int n : kLengths) {
      if (n <= peer.longest)
        bench::Add(name, n, kNoUlp, [fill = peer.fill, n] { fill(n, Results()); });
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, "pexquo_bench_random", AddAll); }
