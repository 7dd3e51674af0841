// What every distribution of the front does around its kernel: the checks that they share, and the
// pieces of a request that is too long for a kernel's 32-bit count.
#ifndef FRONT_DRAW_H_
#define FRONT_DRAW_H_

#include <algorithm>
#include <cstdint>

#include "front/check.h"
#include "front/thread_state.h"
#include "pexquo/pexquo.h"

namespace pexquo_front {

// What the caller asks for, apart from the parameters. `methods` is how many there are, from 0 on.
template <typename T>
struct Request {
  int32_t method, methods;
  QuoStream* stream;
  int64_t n;
  T* r;
};

template <typename T>
int32_t Refusal(const Request<T>& request) {
  if (const int32_t refused = LiveStream(request.stream)) return refused;
  return First(
      {Unless(request.n >= 0, QUO_BAD_COUNT),
       Unless(request.r != nullptr || request.n == 0, QUO_NULL_ARRAY),
       Unless(request.method >= 0 && request.method < request.methods, QUO_UNKNOWN_METHOD)});
}

// draw(count, r) fills r[0] .. r[count * width - 1]; piece by piece, up to the first refusal of the
// generator.
template <typename T, typename DrawPiece>
int32_t InPieces(int64_t n, T* r, int64_t width, const DrawPiece& draw) {
  const int64_t most = std::max<int64_t>(1, piece / width);
  int32_t status = QUO_OK;
  for (int64_t done = 0; done < n && status >= 0; done += most) {
    status = draw(static_cast<int32_t>(std::min(most, n - done)), r + done * width);
  }
  return status;
}

// Nothing is wrong with it, and one piece holds it. Of a kernel some generators and the pairs of
// normal numbers draw one even when asked for none.
template <typename T>
[[gnu::always_inline]] inline bool IsPlain(const Request<T>& request) {
  return request.n > 0 && request.n <= piece && request.r != nullptr && request.method >= 0 &&
         request.method < request.methods && IsLive(request.stream);
}

// Any other. By value, so that no request has to be in memory for it.
template <typename Kernel, typename T, typename... Parameters>
[[gnu::noinline, gnu::cold]] int32_t DrawOther(Kernel kernel, Request<T> request, int32_t refused,
                                               Parameters... parameters) {
  if (const int32_t status = First({Refusal(request), refused})) return status;
  const WholeArray whole(request.r);  // for the records of lognormal and Cauchy
  return InPieces(request.n, request.r, 1, [&](int32_t n, T* r) {
    return kernel(static_cast<uint32_t>(request.method), request.stream, n, r, parameters...);
  });
}

// `refused` is the status of the parameters.
template <typename Kernel, typename T, typename... Parameters>
[[gnu::always_inline]] inline int32_t Draw(Kernel kernel, const Request<T>& request,
                                           int32_t refused, Parameters... parameters) {
  if (refused == QUO_OK && IsPlain(request)) [[likely]] {
    return kernel(static_cast<uint32_t>(request.method), request.stream,
                  static_cast<int32_t>(request.n), request.r, parameters...);
  }
  return DrawOther(kernel, request, refused, parameters...);
}

}  // namespace pexquo_front

// A distribution of doubles and one of floats: how many methods, a macro that declares its
// parameters of a type, their names, and their conditions.
#define FRONT_NAMES(...) __VA_ARGS__
#define FRONT_REAL(Name, methods, Declared, names, refused)                                        \
  int32_t quodRng##Name(int32_t method, QuoStream* stream, int64_t n, double* r,                   \
                        Declared(double)) {                                                        \
    return pexquo_front::Draw(_quodRng##Name,                                                      \
                              pexquo_front::Request<double>{method, methods, stream, n, r},        \
                              refused, FRONT_NAMES names);                                         \
  }                                                                                                \
  int32_t quosRng##Name(int32_t method, QuoStream* stream, int64_t n, float* r, Declared(float)) { \
    return pexquo_front::Draw(_quosRng##Name,                                                      \
                              pexquo_front::Request<float>{method, methods, stream, n, r},         \
                              refused, FRONT_NAMES names);                                         \
  }

#endif  // FRONT_DRAW_H_
