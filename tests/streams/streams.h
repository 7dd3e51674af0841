// What tests of streams share: streams that delete themselves, chunks, what is drawn.
#ifndef TESTS_STREAMS_STREAMS_H_
#define TESTS_STREAMS_STREAMS_H_

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "catalogue/catalogue.h"
#include "pexquo/kro.h"
#include "pexquo/quo.h"

namespace streams {

// A stream that is deleted at the end.
struct Owned {
  StreamState* p = nullptr;
  Owned() = default;
  explicit Owned(int32_t id)
      : Owned(id, quo::Generator::IsQuasiRandom(id) ? std::vector<uint32_t>{7}  // a dimension
                                                    : std::vector<uint32_t>{7, 8, 9, 10}) {}
  Owned(int32_t id, std::vector<uint32_t> seeds) {
    EXPECT_EQ(__quoNewStreamEx(&p, id, static_cast<int32_t>(seeds.size()), seeds.data()), QUO_OK);
  }
  ~Owned() { __quoDeleteStream(&p); }
  Owned(const Owned&) = delete;
  operator StreamState*() const { return p; }
  unsigned char* state() const { return reinterpret_cast<unsigned char*>(p) + 16; }
};

inline void AddChunk(StreamState* stream, uint32_t key, uint32_t size, int fill) {
  void* data = kro_serv_kro_malloc(size, 32);
  std::memset(data, fill, size);
  ASSERT_EQ(__quoAddChunk(stream, key, data, size), QUO_OK);
}

inline std::vector<uint32_t> Keys(const StreamState* stream) {
  std::vector<uint32_t> keys;
  for (const StreamChunk* c = stream->chunks; c != nullptr; c = c->next) keys.push_back(c->key);
  EXPECT_EQ(__quoGetNumChunks(stream), static_cast<int32_t>(keys.size()));
  return keys;
}

inline std::vector<double> Draw(StreamState* stream, int32_t n) {
  std::vector<double> r(static_cast<size_t>(n));
  EXPECT_EQ(_quodRngUniform(0, stream, n, r.data(), 0, 1), QUO_OK);
  return r;
}

using Words = std::vector<uint32_t>;

inline BrngProperties Properties(const StreamState* stream) {
  BrngProperties record{};
  EXPECT_EQ(__quoGetBrngProperties(stream->id, &record), QUO_OK);
  return record;
}

// n raw outputs, each of WordBytes bytes.
inline Words Raw(StreamState* stream, int32_t n) {
  const BrngProperties brng = Properties(stream);
  Words r(static_cast<size_t>(n) * static_cast<size_t>(brng.WordBytes) / 4);
  EXPECT_EQ(brng.iBRng(stream, n, r.data()), QUO_OK);
  return r;
}

// Elements start, start + step ... of a sequence of raw outputs.
inline Words Every(const Words& raw, size_t words, size_t start, size_t step) {
  Words r;
  for (size_t i = start; (i + 1) * words <= raw.size(); i += step) {
    r.insert(r.end(), raw.begin() + static_cast<ptrdiff_t>(i * words),
             raw.begin() + static_cast<ptrdiff_t>((i + 1) * words));
  }
  return r;
}

// The members of every catalogued generator that are worth a test each: the ends of families.
inline std::vector<int32_t> Identifiers() {
  std::vector<int32_t> ids;
  for (const quo::Generator& g : quo::Generators()) {
    ids.push_back(g.id);
    if (g.members > 1) ids.push_back(g.id + g.members - 1);
  }
  return ids;
}

}  // namespace streams

#endif  // TESTS_STREAMS_STREAMS_H_
