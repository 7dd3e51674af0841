// Rejection from the uniforms of a stream, so that the accepted numbers and the uniforms they take
// do not depend on how a request is split.
//
// A candidate takes a fixed number of double uniforms on [0, 1). As many candidates are drawn as
// numbers are still wanted: none accepted is ever left over, and the call ends with the candidate
// that became its last number. So the numbers of a stream are its accepted candidates in order,
// whatever the lengths of the requests.
#ifndef QUO_KERNEL__KERNEL_REJECTION_H_
#define QUO_KERNEL__KERNEL_REJECTION_H_

#include <algorithm>
#include <cstdint>

#include "pexquo/quo.h"
#include "quo_kernel/_kernel/generate.h"

namespace quo {

// sieve(m, u, r): of m candidates, m at most kBlock, the uniforms of candidate i are
// u[kUniforms i], u[kUniforms i + 1] ...; it stores the accepted ones in order at r, which has room
// for m numbers and no more, and returns their count. u is its to overwrite. The status is the
// generator's; after a negative one the numbers stored so far stay in r.
template <int kUniforms, int32_t kBlock, class T, class Sieve>
int32_t Reject(StreamState* stream, int32_t n, T* r, Sieve&& sieve) {
  alignas(64) double u[kUniforms * kBlock];
  int32_t status = QUO_OK;
  while (n > 0) {
    const int32_t m = std::min(n, kBlock);
    status = Generate(stream, kUniforms * m, u, 0.0, 1.0);
    if (status < 0) break;
    const int32_t accepted = sieve(m, u, r);
    r += accepted;
    n -= accepted;
  }
  return status;
}

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_REJECTION_H_
