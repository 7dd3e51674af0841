// The state of digital sequences: seeding, positions, leapfrog.
#include "quo_sub_kernel/_math/digital.h"

#include <algorithm>
#include <cstring>

#include "pexquo/kro.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/_service/_quo_brng.h"

namespace quo {
namespace {

// Of the table: what stays in the first-level cache beside the results.
constexpr uint32_t kTableWords = 2048;

// The outputs from one passage of the sequence to the next.
uint64_t Period(const DigitalState& s) { return uint64_t{0xFFFFFFFF} * s.dimension; }

void DeleteChunk(StreamChunk** link) {
  StreamChunk* const chunk = *link;
  *link = chunk->next;
  if (chunk->data != nullptr) kro_serv_kro_free(chunk->data);
  kro_serv_kro_free(chunk);
}

}  // namespace

void BeginDigital(const DigitalShape& shape, DigitalState& s, uint32_t dimension) {
  std::memset(&s, 0, shape.all_words * sizeof(uint32_t));
  s.dimension = dimension;
  while (dimension << (s.log_block + 1) <= kTableWords &&
         HasRoom(shape, dimension, s.log_block + 1)) {
    ++s.log_block;
  }
}

void SetCoordinate(DigitalState& s, uint32_t coordinate, const uint32_t* v) {
  const uint32_t q = s.log_block;
  for (uint32_t j = 0; q + j < kDigits; ++j) {
    s.Step(j)[coordinate] = v[q + j] ^ (q == 0 ? 0 : v[q - 1]);
  }
  if (q == 0) return;
  uint32_t* to = s.Table() + coordinate;
  uint32_t x = *to = 0;
  for (uint32_t i = 1; i < 1u << q; ++i) *(to += s.dimension) = x ^= v[std::countr_zero(i)];
}

void SeekDigital(DigitalState& s, uint32_t index, uint32_t place) {
  s.index = index;
  s.place = place;
  uint32_t* const base = s.Base();
  std::fill_n(base, s.dimension, 0);
  const uint32_t block = index >> s.log_block;
  for (uint32_t gray = block ^ (block >> 1); gray != 0; gray &= gray - 1) {
    const uint32_t* const step = s.Step(static_cast<size_t>(std::countr_zero(gray)));
    for (uint32_t k = 0; k < s.dimension; ++k) base[k] ^= step[k];
  }
  WrapBase(base, s.dimension);
}

namespace {

int32_t Leapfrog(const DigitalShape& shape, DigitalState& s, int32_t streams, uint32_t k) {
  if (streams < 1 || static_cast<uint32_t>(streams) != s.dimension || k >= s.dimension) {
    return QUO_LEAPFROG_UNSUPPORTED;
  }
  const uint32_t q = s.log_block;
  uint32_t v[kDigits];
  uint32_t before = 0;  // column q - 1
  for (uint32_t c = 0, last = 0; c < q; ++c) {
    const uint32_t power = s.Table()[(size_t{1} << c) * s.dimension + k];  // v[c] ^ v[c - 1]
    v[c] = last = power ^ last;
    before = last;
  }
  for (uint32_t c = q; c < kDigits; ++c) v[c] = s.Step(c - q)[k] ^ before;
  const uint32_t delivered = k < s.place ? 1 : 0;
  const uint32_t index = delivered && s.index == 0xFFFFFFFF ? 1 : s.index + delivered;
  BeginDigital(shape, s, 1);
  SetCoordinate(s, 0, v);
  SeekDigital(s, index, 0);
  return QUO_OK;
}

void Skip(DigitalState& s, uint64_t count) {
  const uint64_t period = Period(s);
  uint64_t at = (uint64_t{s.index} - 1) * s.dimension + s.place + count % period;
  if (at >= period) at -= period;
  SeekDigital(s, static_cast<uint32_t>(at / s.dimension) + 1,
              static_cast<uint32_t>(at % s.dimension));
}

}  // namespace

int32_t MoveDigital(const DigitalShape& shape, int32_t method, DigitalState& s, int32_t n,
                    const uint32_t* params) {
  switch (method) {
    case QUO_INIT_LEAPFROG:
      Repair(shape, s);
      return Leapfrog(shape, s, n, params[0]);
    case QUO_INIT_SKIPAHEAD:
      Repair(shape, s);
      Skip(s, SkipCount(params));
      return QUO_OK;
    default:
      return QUO_BAD_METHOD;
  }
}

int32_t KeepSeeds(StreamState* stream, uint32_t key, size_t n, const uint32_t* words) {
  StreamChunk* kept = nullptr;
  if (n != 0) {
    const size_t bytes = n * sizeof(*words);
    void* const data = kro_serv_kro_malloc(bytes, kAlignment);
    if (data == nullptr) return QUO_NO_MEMORY;
    std::memcpy(data, words, bytes);
    if (__quoAddChunk(stream, key, data, static_cast<uint32_t>(bytes)) != QUO_OK) {
      kro_serv_kro_free(data);
      return QUO_NO_MEMORY;
    }
    kept = stream->chunks;
  }
  for (StreamChunk** link = &stream->chunks; *link != nullptr;) {
    if ((*link)->key == key && *link != kept) {
      DeleteChunk(link);
    } else {
      link = &(*link)->next;
    }
  }
  return QUO_OK;
}

}  // namespace quo
