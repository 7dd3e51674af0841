// The vector functions under their public names, a pair for each type: with the thread's mode, and
// with one for the call.
#include "front/vector.h"

#include "pexquo/pexquo.h"

namespace pexquo_front {
namespace {

// The kernels of copies count in 64 bits, and take 64-bit indices where the last argument is 0.
template <auto K>
struct Copy {
  template <typename... Operands>
  static int32_t Call(const char* name, uint32_t mode, int64_t n, Operands... operands) {
    if (IsRefused(n, operands...)) return RefuseCallWithMode(name, mode, n, operands...);
    return K(n, operands..., 0);
  }
};

}  // namespace
}  // namespace pexquo_front

using pexquo_front::Call;
using pexquo_front::CallWithMode;
using pexquo_front::Copy;
using pexquo_front::Plain;
using pexquo_front::Tiered;

// The tiers come last because they hold commas.
#define FRONT_UNARY(name, A, R, ...)                                                             \
  int32_t v##name(int64_t n, const A* a, R* r) { return Call<__VA_ARGS__>("v" #name, n, a, r); } \
  int32_t v##name##Mode(int64_t n, const A* a, R* r, uint32_t mode) {                            \
    return CallWithMode<__VA_ARGS__>("v" #name, mode, n, a, r);                                  \
  }
#define FRONT_BINARY(name, A, R, ...)                                             \
  int32_t v##name(int64_t n, const A* a, const A* b, R* r) {                      \
    return Call<__VA_ARGS__>("v" #name, n, a, b, r);                              \
  }                                                                               \
  int32_t v##name##Mode(int64_t n, const A* a, const A* b, R* r, uint32_t mode) { \
    return CallWithMode<__VA_ARGS__>("v" #name, mode, n, a, b, r);                \
  }
#define FRONT_UNARY_SCALAR(name, A, R, ...)                                \
  int32_t v##name(int64_t n, const A* a, A b, R* r) {                      \
    return Call<__VA_ARGS__>("v" #name, n, a, b, r);                       \
  }                                                                        \
  int32_t v##name##Mode(int64_t n, const A* a, A b, R* r, uint32_t mode) { \
    return CallWithMode<__VA_ARGS__>("v" #name, mode, n, a, b, r);         \
  }
#define FRONT_UNARY_TWO(name, A, R, ...)                                      \
  int32_t v##name(int64_t n, const A* a, R* r1, R* r2) {                      \
    return Call<__VA_ARGS__>("v" #name, n, a, r1, r2);                        \
  }                                                                           \
  int32_t v##name##Mode(int64_t n, const A* a, R* r1, R* r2, uint32_t mode) { \
    return CallWithMode<__VA_ARGS__>("v" #name, mode, n, a, r1, r2);          \
  }

// A row's shape chooses among them and says what arguments and results hold.
#define FRONT_Unary(name, Real, Number, ...) FRONT_UNARY(name, Number, Number, __VA_ARGS__)
#define FRONT_ToReal(name, Real, Number, ...) FRONT_UNARY(name, Number, Real, __VA_ARGS__)
#define FRONT_FromReal(name, Real, Number, ...) FRONT_UNARY(name, Real, Number, __VA_ARGS__)
#define FRONT_Binary(name, Real, Number, ...) FRONT_BINARY(name, Number, Number, __VA_ARGS__)
#define FRONT_UnaryScalar(name, Real, Number, ...) \
  FRONT_UNARY_SCALAR(name, Number, Number, __VA_ARGS__)
#define FRONT_UnaryTwo(name, Real, Number, ...) FRONT_UNARY_TWO(name, Number, Number, __VA_ARGS__)

#define PEX_TIERED(Name, Shape, ...)                                          \
  FRONT_##Shape(d##Name, double, double,                                      \
                Tiered<_pexd##Name##_26, _pexd##Name##_50, _pexd##Name##_HA>) \
      FRONT_##Shape(s##Name, float, float,                                    \
                    Tiered<_pexs##Name##_11, _pexs##Name##_21, _pexs##Name##_HA>)
#define PEX_PLAIN(Name, Shape, ...)                          \
  FRONT_##Shape(d##Name, double, double, Plain<_pexd##Name>) \
      FRONT_##Shape(s##Name, float, float, Plain<_pexs##Name>)
#define PEX_COMPLEX_TIERED(Name, Shape, ...)                                         \
  FRONT_##Shape(z##Name, double, PexComplex16,                                       \
                Tiered<_pexz##Name##_26, _pexz##Name##_50, _pexz##Name##_HA, false>) \
      FRONT_##Shape(c##Name, float, PexComplex8,                                     \
                    Tiered<_pexc##Name##_11, _pexc##Name##_21, _pexc##Name##_HA, false>)
#define PEX_COMPLEX_PLAIN(Name, Shape, ...)                        \
  FRONT_##Shape(z##Name, double, PexComplex16, Plain<_pexz##Name>) \
      FRONT_##Shape(c##Name, float, PexComplex8, Plain<_pexc##Name>)

// Copies: the parameters behind the count, and how they are called.
#define FRONT_COPY(name, parameters, ...)                                  \
  int32_t v##name(int64_t n, FRONT_LIST parameters) {                      \
    return Copy<_pex##name>::Call("v" #name, 0, n, __VA_ARGS__);           \
  }                                                                        \
  int32_t v##name##Mode(int64_t n, FRONT_LIST parameters, uint32_t mode) { \
    return Copy<_pex##name>::Call("v" #name, mode, n, __VA_ARGS__);        \
  }
#define FRONT_LIST(...) __VA_ARGS__
#define FRONT_COPIES(t, T)                                                \
  FRONT_COPY(t##PackI, (const T* a, int64_t inca, T* y), a, inca, y)      \
  FRONT_COPY(t##PackV, (const T* a, const int64_t* ia, T* y), a, ia, y)   \
  FRONT_COPY(t##PackM, (const T* a, const int64_t* ma, T* y), a, ma, y)   \
  FRONT_COPY(t##UnpackI, (const T* a, T* y, int64_t incy), a, y, incy)    \
  FRONT_COPY(t##UnpackV, (const T* a, T* y, const int64_t* iy), a, y, iy) \
  FRONT_COPY(t##UnpackM, (const T* a, T* y, const int64_t* my), a, y, my)

extern "C" {
#include "catalogue/complex_functions.def"
#include "catalogue/functions.def"
FRONT_COPIES(d, double)
FRONT_COPIES(s, float)
}
