// pexquo_bench_random: every generator's raw integers and uniforms beside the engines of the C++
// library, Boost and GSL. Rows are named GENERATOR/OUTPUT/pexquo/n:N, with "uniform d clamped" and
// "uniform f clamped" for the accurate method, GENERATOR/OUTPUT/peer/NAME/n:N for engines with the
// same parameters, and GENERATOR/OUTPUT/other/NAME/n:N for those with others.
#include <cstdio>
#include <string>

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

bool AddAll(const bench::Level&) {
  for (const quo::Generator& generator : quo::Generators()) {
    StreamState* stream = nullptr;
    const uint32_t seed = 1;
    if (const int status = __quoNewStreamEx(&stream, generator.id, 1, &seed); status != QUO_OK) {
      std::fprintf(stderr, "pexquo_bench_random: no stream of %s: status %d\n",
                   generator.name.data(), status);
      return false;
    }
    AddGenerator(std::string(generator.name), stream);
  }
  for (const bench::RandomPeer& peer : bench::RandomPeers()) {
    const std::string name = std::string(peer.generator) + "/" + bench::OutputName(peer.output) +
                             (peer.same ? "/peer/" : "/other/") + peer.name;
    for (int n : kLengths)
      bench::Add(name, n, kNoUlp, [fill = peer.fill, n] { fill(n, Results()); });
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, "pexquo_bench_random", AddAll); }
