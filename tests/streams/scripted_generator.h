// A user's generator for tests: it hands out given values in a circle, without regard to the
// bounds, notes every call, and fails when told to. Its outputs may stand at any address.
#ifndef TESTS_STREAMS_SCRIPTED_GENERATOR_H_
#define TESTS_STREAMS_SCRIPTED_GENERATOR_H_

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "pexquo/quo.h"

namespace scripted {

struct Call {
  int32_t n;
  double a, b;
  uint32_t mxcsr;
};

struct Script {
  std::vector<double> values{0.5};
  int32_t status = 0;         // of a good call
  int32_t init_status = 0;    // of InitStream
  int32_t failing_call = -1;  // the call (from 0) that gives failure and writes nothing
  int32_t failure = -1;
  uint32_t raise = 0;  // exception flags that every call leaves behind
  std::vector<Call> calls;
};

inline Script script;

struct State {
  StreamState head;
  uint64_t position;
};

inline int32_t Init(int32_t method, StreamState* stream, int32_t, const uint32_t*) {
  if (method != QUO_INIT_STANDARD) return QUO_BAD_METHOD;
  reinterpret_cast<State*>(stream)->position = 0;
  return script.init_status;
}

template <typename T>
int32_t Generate(StreamState* stream, int32_t n, T* r, double a, double b) {
  auto* state = reinterpret_cast<State*>(stream);
  const auto call = static_cast<int32_t>(script.calls.size());
  script.calls.push_back({n, a, b, _mm_getcsr()});
  _mm_setcsr(_mm_getcsr() | script.raise);
  if (call == script.failing_call) return script.failure;
  for (int32_t i = 0; i < n; ++i) {
    const auto value = static_cast<T>(script.values[state->position++ % script.values.size()]);
    std::memcpy(reinterpret_cast<char*>(r) + sizeof(T) * static_cast<size_t>(i), &value, sizeof(T));
  }
  return script.status;
}

inline int32_t Double(StreamState* stream, int32_t n, double* r, double a, double b) {
  return Generate(stream, n, r, a, b);
}
inline int32_t Single(StreamState* stream, int32_t n, float* r, float a, float b) {
  return Generate(stream, n, r, a, b);
}
inline int32_t Integer(StreamState* stream, int32_t n, uint32_t* r) {
  return Generate(stream, n, r, 0, 0);
}

inline constexpr BrngProperties kRecord = {sizeof(State), 2,      1,      4,      32,
                                           Init,          Single, Double, Integer};

// The identifier, registered on first use.
inline int32_t Id() {
  static const int32_t id = __quoRegisterBrng(&kRecord);
  return id;
}

// A new stream at the start of a new script.
inline StreamState* Start(const Script& s) {
  script = s;
  StreamState* stream = nullptr;
  __quoNewStreamEx(&stream, Id(), 0, nullptr);
  return stream;
}

// A stream at the start of a new script, or of another generator.
struct Stream {
  StreamState* p = nullptr;
  explicit Stream(const Script& s) : p(Start(s)) {}
  explicit Stream(int32_t id, uint32_t seed = 20240229) { __quoNewStreamEx(&p, id, 1, &seed); }
  ~Stream() { __quoDeleteStream(&p); }
  Stream(const Stream&) = delete;
  operator StreamState*() const { return p; }
};

}  // namespace scripted

#endif  // TESTS_STREAMS_SCRIPTED_GENERATOR_H_
