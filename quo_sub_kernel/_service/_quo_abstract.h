// Abstract streams: a circular buffer of the caller's numbers and the function that refills it.
#ifndef QUO_SUB_KERNEL__SERVICE__QUO_ABSTRACT_H_
#define QUO_SUB_KERNEL__SERVICE__QUO_ABSTRACT_H_

#include <algorithm>
#include <cstring>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_service/_quo_brng.h"

namespace quo {

// Where the buffered numbers lie: on [c, d). Integers are words and have no bounds.
template <typename T>
struct Interval {
  T c, d;
};
template <>
struct Interval<uint32_t> {};

template <typename T>
using Refill = int32_t (*)(StreamState*, int32_t*, T*, int32_t*, int32_t*, int32_t*);

// Behind the stream's head. Buffer and function belong to the caller.
template <typename T>
struct AbstractState {
  int32_t n;     // slots of the buffer
  int32_t idx;   // slot of the next number to deliver
  int32_t free;  // slots without an undelivered number
  [[no_unique_address]] Interval<T> interval;
  T* buffer;
  Refill<T> refill;
};
static_assert(kHeaderBytes + sizeof(AbstractState<uint32_t>) == 48);
static_assert(kHeaderBytes + sizeof(AbstractState<double>) == 64);
static_assert(kHeaderBytes + sizeof(AbstractState<float>) == 56);

template <typename T>
AbstractState<T>* AbstractStateOf(StreamState* stream) {
  return reinterpret_cast<AbstractState<T>*>(StateOf(stream));
}

// The state that a constructor of this thread is about to store. Method 0 takes this one and no
// other: whoever calls it with words of his own, as a generator that is seeded would want, is
// refused before one of them could pass for a pointer.
inline constinit thread_local const void* constructed_state = nullptr;

template <typename T>
int32_t InitAbstract(int32_t method, StreamState* stream, const uint32_t* params) {
  switch (method) {
    case QUO_INIT_STANDARD:
      if (params == nullptr || params != constructed_state) return QUO_BAD_ARGUMENT;
      std::memcpy(StateOf(stream), params, sizeof(AbstractState<T>));
      return QUO_OK;
    case QUO_INIT_LEAPFROG:
      return QUO_LEAPFROG_UNSUPPORTED;
    case QUO_INIT_SKIPAHEAD:
      return QUO_SKIPAHEAD_UNSUPPORTED;
    default:
      return QUO_BAD_METHOD;
  }
}

template <typename T>
int32_t NewAbstract(StreamState** stream, int32_t id, int32_t n, T* buffer, Interval<T> interval,
                    Refill<T> refill) {
  *stream = nullptr;
  if (n < 1 || buffer == nullptr || refill == nullptr) return QUO_BAD_ARGUMENT;
  AbstractState<T> state;
  std::memset(static_cast<void*>(&state), 0, sizeof(state));  // its padding goes into files
  state.n = state.free = n;
  state.interval = interval;
  state.buffer = buffer;
  state.refill = refill;

  int32_t row, member;
  const BrngProperties* table = __quoGetBrngBaseOffset(id, &row, &member);
  int32_t status = __quoAllocateStream(stream, table, id, row, member);
  if (status != QUO_OK) return status;
  constructed_state = &state;
  status = InitAbstract<T>(QUO_INIT_STANDARD, *stream, reinterpret_cast<const uint32_t*>(&state));
  constructed_state = nullptr;
  return status;
}

// Delivers `count` numbers. deliver(from, n, r) brings n numbers that lie side by side into r.
// The stream moves on only if all of them came.
template <typename T, typename Deliver>
int32_t GenerateAbstract(StreamState* stream, int32_t count, T* r, const Deliver& deliver) {
  AbstractState<T>* const s = AbstractStateOf<T>(stream);
  if (s->buffer == nullptr) return QUO_NULL_FUNCTION;
  if (count < 1) return QUO_OK;
  T* const buffer = s->buffer;
  const int32_t n = s->n;
  int32_t idx = s->idx;
  int32_t ready = n - s->free;
  for (int32_t owed = count;;) {
    const int32_t taken = std::min(ready, owed);
    const int32_t before_end = std::min(taken, n - idx);
    const int32_t wrapped = taken - before_end;
    deliver(buffer + idx, static_cast<size_t>(before_end), r);
    deliver(buffer, static_cast<size_t>(wrapped), r + before_end);
    r += taken;
    idx = wrapped != 0 ? wrapped : (idx + before_end) % n;
    ready -= taken;
    owed -= taken;
    if (owed == 0) break;

    // All slots are free. The function gets copies: what it makes of them is its own.
    int32_t slots = n, nmin = std::min(n, owed), nmax = n, pos = idx;
    const int32_t k = s->refill(stream, &slots, buffer, &nmin, &nmax, &pos);
    if (k == 0) return QUO_EMPTY_REFILL;
    if (k < 0 || k > n) return QUO_BAD_REFILL;
    ready = k;
  }
  s->idx = idx;
  s->free = n - ready;
  return QUO_OK;
}

// Takes buffer and function from an abstract stream that came out of a file, where they are the
// addresses of another process at best: such a stream generates nothing and says so by -5.
inline void DetachAbstract(StreamState* stream) {
  const auto detach = [](auto* state) {
    state->buffer = nullptr;
    state->refill = nullptr;
  };
  switch (stream->id) {
    case QUO_BRNG_IABSTRACT:
      return detach(AbstractStateOf<uint32_t>(stream));
    case QUO_BRNG_DABSTRACT:
      return detach(AbstractStateOf<double>(stream));
    case QUO_BRNG_SABSTRACT:
      return detach(AbstractStateOf<float>(stream));
  }
}

}  // namespace quo

#endif  // QUO_SUB_KERNEL__SERVICE__QUO_ABSTRACT_H_
