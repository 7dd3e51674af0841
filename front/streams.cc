// Streams and the registry of generators under their public names.
#include <cstdint>
#include <limits>

#include "front/check.h"
#include "pexquo/pexquo.h"

namespace pexquo_front {
namespace {

// A generator of the registry, and the member of its family.
struct Generator {
  explicit Generator(int32_t id) : table(__quoGetBrngBaseOffset(id, &row, &member)) {}
  bool exists() const { return row >= 0 && __quoIsBrngValid(table, row, member) == QUO_OK; }
  // Identifiers of both schemes may name the same one.
  bool operator==(const Generator& other) const {
    return NewRow() == other.NewRow() && member == other.member &&
           table[row].InitStream == other.table[other.row].InitStream;
  }
  // The row of the new scheme: the quasi-random generators have others in the legacy table.
  int32_t NewRow() const {
    constexpr int32_t kLegacySobol = 277, kSobol = (QUO_BRNG_SOBOL >> 20) - 1;
    return table == __RegBrngs && row >= kLegacySobol ? row - kLegacySobol + kSobol : row;
  }

  int32_t row = 0, member = 0;
  const BrngProperties* table;
};

// make(&stream) makes a stream or returns a negative status, and then the caller's pointer is null,
// whatever the maker left behind.
template <typename Make>
int32_t MakeStream(QuoStream** stream, const Make& make) {
  if (stream == nullptr) return QUO_NULL_POINTER;
  *stream = nullptr;
  QuoStream* made = nullptr;
  const int32_t status = make(&made);
  if (status < 0) {
    __quoDeleteStream(&made);
    return status;
  }
  *stream = made;
  return QUO_OK;
}

template <typename T, typename Refill>
int32_t AbstractRefusal(int32_t n, const T* buffer, Refill refill) {
  return First({Unless(n >= 1, QUO_BAD_COUNT), Unless(buffer != nullptr, QUO_NULL_ARRAY),
                Unless(refill != nullptr, QUO_NULL_FUNCTION)});
}

}  // namespace

int32_t LiveStream(const QuoStream* stream) {
  if (stream == nullptr) return QUO_NULL_STREAM;
  if (stream->header != kStreamHeader) return QUO_DEAD_STREAM;
  return Unless(Generator(stream->id).exists(), QUO_DEAD_STREAM);
}

}  // namespace pexquo_front

using pexquo_front::AbstractRefusal;
using pexquo_front::First;
using pexquo_front::Generator;
using pexquo_front::LiveStream;
using pexquo_front::MakeStream;
using pexquo_front::Range;
using pexquo_front::Unless;

extern "C" {

int32_t quoNewStream(QuoStream** stream, int32_t brng, uint32_t seed) {
  return quoNewStreamEx(stream, brng, 1, &seed);
}

int32_t quoNewStreamEx(QuoStream** stream, int32_t brng, int64_t n, const uint32_t* params) {
  return MakeStream(stream, [&](QuoStream** made) {
    const bool fits = n >= 0 && n <= std::numeric_limits<int32_t>::max();
    if (const int32_t refused = First(
            {Unless(fits, QUO_BAD_COUNT), Unless(params != nullptr || n == 0, QUO_NULL_ARRAY)})) {
      return refused;
    }
    return __quoNewStreamEx(made, brng, static_cast<int32_t>(n), params);
  });
}

int32_t quoiNewAbstractStream(QuoStream** stream, int32_t n, uint32_t* buffer, RefillI refill) {
  return MakeStream(stream, [&](QuoStream** made) {
    if (const int32_t refused = AbstractRefusal(n, buffer, refill)) return refused;
    return __quoiNewAbstractStream(made, n, buffer, refill);
  });
}

int32_t quodNewAbstractStream(QuoStream** stream, int32_t n, double* buffer, double a, double b,
                              RefillD refill) {
  return MakeStream(stream, [&](QuoStream** made) {
    if (const int32_t refused = First({AbstractRefusal(n, buffer, refill), Range(a, b)})) {
      return refused;
    }
    return __quodNewAbstractStream(made, n, buffer, a, b, refill);
  });
}

int32_t quosNewAbstractStream(QuoStream** stream, int32_t n, float* buffer, float a, float b,
                              RefillS refill) {
  return MakeStream(stream, [&](QuoStream** made) {
    if (const int32_t refused = First({AbstractRefusal(n, buffer, refill), Range(a, b)})) {
      return refused;
    }
    return __quosNewAbstractStream(made, n, buffer, a, b, refill);
  });
}

int32_t quoDeleteStream(QuoStream** stream) {
  if (stream == nullptr) return QUO_NULL_POINTER;
  if (*stream == nullptr) return QUO_OK;
  if (const int32_t refused = LiveStream(*stream)) return refused;
  return __quoDeleteStream(stream);
}

int32_t quoCopyStream(QuoStream** copy, const QuoStream* source) {
  return MakeStream(copy, [&](QuoStream** made) {
    if (const int32_t refused = LiveStream(source)) return refused;
    return __quoCopyStream(made, source);
  });
}

int32_t quoCopyStreamState(QuoStream* destination, const QuoStream* source) {
  if (const int32_t refused = First({LiveStream(destination), LiveStream(source)})) return refused;
  if (!(Generator(destination->id) == Generator(source->id))) return QUO_DIFFERENT_BRNGS;
  // Where a generator's rows differ, the kernel copies and says so.
  const int32_t status = __quoCopyStreamState(destination, source);
  return status == QUO_DIFFERENT_BRNGS ? QUO_OK : status;
}

int32_t quoLeapfrogStream(QuoStream* stream, int32_t k, int32_t nstreams) {
  if (const int32_t refused =
          First({LiveStream(stream), Unless(nstreams >= 1, QUO_BAD_STREAM_COUNT),
                 Unless(k >= 0 && k < nstreams, QUO_BAD_LEAP)})) {
    return refused;
  }
  return __quoLeapfrogStream(stream, k, nstreams);
}

int32_t quoSkipAheadStream(QuoStream* stream, uint64_t nskip) {
  if (const int32_t refused = LiveStream(stream)) return refused;
  return __quoSkipAheadStream(stream, nskip);
}

int32_t quoSaveStream(const QuoStream* stream, const char* path) {
  if (const int32_t refused =
          First({LiveStream(stream), Unless(path != nullptr, QUO_NULL_POINTER)})) {
    return refused;
  }
  return __quoSaveStreamF(stream, path, -1);
}

int32_t quoLoadStream(QuoStream** stream, const char* path) {
  return MakeStream(stream, [&](QuoStream** made) {
    if (path == nullptr) return QUO_NULL_POINTER;
    return __quoLoadStreamF(made, path, -1);
  });
}

int32_t quoGetStreamBrng(const QuoStream* stream) {
  if (const int32_t refused = LiveStream(stream)) return refused;
  return __quoGetStreamStateBrng(stream);
}

int32_t quoGetBrngProperties(int32_t brng, BrngProperties* properties) {
  if (properties == nullptr) return QUO_NULL_POINTER;
  return __quoGetBrngProperties(brng, properties);
}

int32_t quoGetNumBrngs(void) { return __quoGetNumRegBrngs(); }

int32_t quoRegisterBrng(const BrngProperties* properties) {
  if (properties == nullptr) return QUO_NULL_POINTER;
  return __quoRegisterBrng(properties);
}
}
