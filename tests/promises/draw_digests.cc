// The bits of random numbers from release to release: a digest of what every entry draws by each
// method from MT19937, and of the uniforms and words of every generator, the same on every vector
// level.
//
//   draw_digests FILE            compares each on each level of the processor with FILE
//   draw_digests --update FILE   rewrites FILE
#include "tests/promises/digest_table.h"
#include "tests/support/samplers.h"

namespace {

constexpr char kHead[] =
    "# Digests of what a stream draws: every entry and method from MT19937, the uniforms and "
    "words\n"
    "# of every generator, the same on every processor. A line that changes is a change of "
    "results:\n"
    "# say so where the change is made. Written by `draw_digests --update` (target\n"
    "# update_draw_digests).\n";

// Odd requests, which leave halves of pairs and partial blocks behind, one of several blocks.
constexpr int32_t kRequests[] = {1, 7, 3001, 2, 1490};
constexpr uint32_t kSeeds[] = {314159265, 271828182, 161803398, 141421356};
constexpr uint32_t kDimension = 13;  // in their place for quasi-random generators

// Of the statuses and of the results, which stand at an address that suits no element.
template <class Draw>
Digest DigestOfDraws(int32_t generator, size_t size, const Draw& draw) {
  Digest digest;
  StreamState* stream = nullptr;
  digest.Add(static_cast<uint32_t>(quo::Generator::IsQuasiRandom(generator)
                                       ? __quoNewStreamEx(&stream, generator, 1, &kDimension)
                                       : __quoNewStreamEx(&stream, generator, 4, kSeeds)));
  for (const int32_t n : kRequests) {
    std::vector<char> bytes(static_cast<size_t>(n) * size + 1);
    digest.Add(static_cast<uint32_t>(draw(stream, n, bytes.data() + 1)));
    for (size_t i = 1; i < bytes.size(); i += 4) {
      uint32_t word;
      std::memcpy(&word, &bytes[i], 4);
      digest.Add(word);
    }
  }
  __quoDeleteStream(&stream);
  return digest;
}

// A vector of 3 by each storage of its factor.
template <typename T, auto kEntry>
void AddVectors(const char* symbol, std::vector<Pinned>* all) {
  const std::string_view methods[] = {"boxmuller", "boxmuller2", "icdf"};
  const char* const storages[] = {"full", "packed", "diagonal"};
  for (uint32_t method = 0; method < 3; ++method) {
    for (int32_t storage = 0; storage < 3; ++storage) {
      const std::string name =
          std::string(symbol).append(":").append(methods[method]) + "," + storages[storage];
      all->push_back({name, [=] {
                        return DigestOfDraws(
                            QUO_BRNG_MT19937, 3 * sizeof(T),
                            [=](StreamState* stream, int32_t n, char* r) {
                              constexpr T kMean[] = {1, -2, T(0.1)};
                              constexpr T kFactor[] = {1,      T(0.5), T(-0.3), 2,     T(0.7),
                                                       T(0.9), T(1.1), T(0.2),  T(0.6)};
                              return kEntry(method, stream, n, reinterpret_cast<T*>(r), 3, storage,
                                            kMean, kFactor);
                            });
                      }});
    }
  }
}

void AddGenerator(const quo::Generator& generator, int32_t member, std::vector<Pinned>* all) {
  const int32_t id = generator.id + member;
  BrngProperties record{};
  __quoGetBrngProperties(id, &record);
  for (const Drawing& drawing : AllDrawings()) {
    const std::string_view distribution = drawing.sampler->distribution->name;
    if (distribution != "uniform" && distribution != "uniformbits") continue;
    const size_t size = drawing.ResultSize(static_cast<size_t>(record.WordBytes));
    all->push_back({drawing.name + "@" + std::string(generator.name) +
                        (generator.members > 1 ? ":" + std::to_string(member) : ""),
                    [=] { return DigestOfDraws(id, size, drawing); }});
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Pinned> all;
  for (const Drawing& drawing : AllDrawings()) {
    all.push_back({drawing.name, [=] {
                     return DigestOfDraws(QUO_BRNG_MT19937, drawing.ResultSize(4), drawing);
                   }});
  }
  AddVectors<double, _quodRngGaussianMV>("_quodRngGaussianMV", &all);
  AddVectors<float, _quosRngGaussianMV>("_quosRngGaussianMV", &all);
  for (const quo::Generator& generator : quo::Generators()) {
    if (generator.id == QUO_BRNG_MT19937) continue;  // above
    AddGenerator(generator, 0, &all);
    if (generator.members > 1) AddGenerator(generator, generator.members - 1, &all);
  }
  return RunDigests(all, kHead, argc, argv);
}
