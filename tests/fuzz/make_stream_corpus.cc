// make_stream_corpus FOLDER: a stream file of every catalogued generator and of every abstract
// kind, for the fuzzer to start from.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "catalogue/catalogue.h"
#include "pexquo/kro.h"
#include "pexquo/quo.h"

namespace {

std::string folder;

// Saves the stream, with chunks, and deletes it.
bool Save(StreamState* stream, const std::string& name) {
  if (stream == nullptr) return false;
  for (const uint32_t size : {8u, 16u, 0u, 5u}) {
    void* const data = kro_serv_kro_malloc(size, 32);
    if (data == nullptr) return false;
    std::memset(data, 0x3F, size);
    if (__quoAddChunk(stream, size / 8, data, size) != QUO_OK) return false;
  }
  const int32_t status = __quoSaveStreamF(stream, (folder + "/" + name).c_str(), -1);
  __quoDeleteStream(&stream);
  return status == QUO_OK;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  folder = argv[1];
  std::filesystem::create_directories(folder);
  bool good = true;
  const uint32_t seed[] = {1, 2, 3, 4};
  for (const quo::Generator& g : quo::Generators()) {
    StreamState* stream = nullptr;
    __quoNewStreamEx(&stream, g.id, g.is_quasi_random() ? 1 : 4, seed);
    good &= Save(stream, std::string(g.name));
  }
  double d;
  float s;
  uint32_t i;
  StreamState *doubles, *singles, *words;
  __quodNewAbstractStream(&doubles, 1, &d, 0, 1, [](auto...) { return 1; });
  __quosNewAbstractStream(&singles, 1, &s, 0, 1, [](auto...) { return 1; });
  __quoiNewAbstractStream(&words, 1, &i, [](auto...) { return 1; });
  good &= Save(doubles, "dAbstract") && Save(singles, "sAbstract") && Save(words, "iAbstract");
  if (!good) std::fprintf(stderr, "%s: a stream could not be saved\n", argv[0]);
  return good ? 0 : 1;
}
