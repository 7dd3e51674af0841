// The entries of a basic generator's outputs: n numbers by its bodies dNAME, sNAME and iNAME of the
// processor's vector level. Counts below 1 are no error and leave the stream as it is.
#ifndef QUO_SUB_KERNEL__MATH_OUTPUTS_H_
#define QUO_SUB_KERNEL__MATH_OUTPUTS_H_

#include <cstddef>
#include <cstdint>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/quiet_guard.h"

namespace quo {

// Uniforms on [a, b). A generator that has a FewUniforms for its state is asked first whether that
// serves the request, without a guard.
template <class State, typename T, class Body>
inline int32_t Uniforms(Body& body, State* state, int32_t n, T* r, T a, T b) {
  if (n < 1) return QUO_OK;
  if constexpr (requires { FewUniforms(*state, n, r, a, b); }) {
    if (FewUniforms(*state, n, r, a, b)) return QUO_OK;
  }
  const QuietGuard guard(ArePlainBounds(a, b));
  body(state, static_cast<size_t>(n), r, a, b);
  return QUO_OK;
}

// Words, as the bodies make them.
template <class State, typename Word, class Body>
inline int32_t Words(Body& body, State* state, int32_t n, Word* r) {
  if (n >= 1) body(state, static_cast<size_t>(n), r);
  return QUO_OK;
}

}  // namespace quo

// Within namespace quo under HWY_ONCE. State(stream) is the generator's state in a stream.
#define QUO_EXPORT_UNIFORMS(Name)                                                                  \
  HWY_EXPORT(d##Name);                                                                             \
  HWY_EXPORT(s##Name);                                                                             \
  extern "C" QUO_API int32_t __quodBRng##Name(StreamState* stream, int32_t n, double* r, double a, \
                                              double b) {                                          \
    return Uniforms(HWY_DYNAMIC_DISPATCH(d##Name), State(stream), n, r, a, b);                     \
  }                                                                                                \
  extern "C" QUO_API int32_t __quosBRng##Name(StreamState* stream, int32_t n, float* r, float a,   \
                                              float b) {                                           \
    return Uniforms(HWY_DYNAMIC_DISPATCH(s##Name), State(stream), n, r, a, b);                     \
  }

#define QUO_EXPORT_WORDS(Name)                                                               \
  HWY_EXPORT(i##Name);                                                                       \
  extern "C" QUO_API int32_t __quoiBRng##Name(StreamState* stream, int32_t n, uint32_t* r) { \
    return Words(HWY_DYNAMIC_DISPATCH(i##Name), State(stream), n, r);                        \
  }

#endif  // QUO_SUB_KERNEL__MATH_OUTPUTS_H_
