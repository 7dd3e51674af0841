// pexquo_bench_random: every generator's raw integers and uniforms, and every distribution on
// MT19937, beside those of the C++ library, Boost and GSL. Rows are named
// GENERATOR/OUTPUT/pexquo/n:N, with "uniform d clamped" and "uniform f clamped" for the accurate
// method, GENERATOR/OUTPUT/peer/NAME/n:N for engines with the same parameters, and
// GENERATOR/OUTPUT/other/NAME/n:N for those with others.
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

StreamState* NewStream(int32_t id) {
  StreamState* stream = nullptr;
  const uint32_t seed = 1;
  const int status = __quoNewStreamEx(&stream, id, 1, &seed);
  if (status == QUO_OK) return stream;
  std::fprintf(stderr, "pexquo_bench_random: no stream of generator 0x%X: status %d\n",
               static_cast<unsigned>(id), status);
  return nullptr;
}

// "gaussian icdf" for the method 2, and the type as the peers' outputs have it.
std::string OutputName(const quo::Distribution& d, std::string_view method, char type) {
  return std::string(d.name) + " " + (method.empty() ? "" : std::string(method) + " ") +
         (type == 's' ? 'f' : type);
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
    uint32_t method = 0;
    for (const std::string& name : Methods(d)) {
      for (int n : kLengths) {
        bench::Add("MT19937/" + OutputName(d, name, sampler.type) + "/pexquo", n, kNoUlp,
                   [=, parameters = d.ShownParameters()] {
                     sampler.draw(method, stream, n, r, parameters.data());
                   });
      }
      ++method;
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

bool AddAll(const bench::Level&) {
  for (const quo::Generator& generator : quo::Generators()) {
    StreamState* const stream = NewStream(generator.id);
    if (stream == nullptr) return false;
    AddGenerator(std::string(generator.name), stream);
  }
  StreamState* const stream = NewStream(QUO_BRNG_MT19937);
  if (stream == nullptr) return false;
  AddDistributions(stream);
  AddVectors<double>(stream, "d", _quodRngGaussianMV);
  AddVectors<float>(stream, "f", _quosRngGaussianMV);
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    const std::string name = std::string(peer.generator) + "/" + peer.output +
                             (peer.same ? "/peer/" : "/other/") + peer.name;
    for (int n : kLengths)
      bench::Add(name, n, kNoUlp, [fill = peer.fill, n] { fill(n, Results()); });
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, "pexquo_bench_random", AddAll); }
