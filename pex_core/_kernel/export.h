// Exported entries: the caller's floating-point control is put aside, then the call goes to the
// body compiled for the processor's vector level. The body is reached through a pointer, so no
// arithmetic of it moves across the change of control.
//
// Used under HWY_ONCE inside namespace pex, once for each body defined in HWY_NAMESPACE.
#ifndef PEX_CORE__KERNEL_EXPORT_H_
#define PEX_CORE__KERNEL_EXPORT_H_

#include "hwy/targets.h"
#include "pex_core/_kernel/control.h"
#include "pexquo/pex.h"

namespace pex {

// Where the vector level in use is kept, so that short calls need not call for it.
inline const hwy::ChosenTarget* const kChosenTarget = &hwy::GetChosenTarget();

// A body to be called under a guard of control.h.
template <class Guard, typename... T>
class GuardedBody {
 public:
  explicit GuardedBody(int (*body)(T...)) : body_(body) {}
  [[gnu::always_inline]] int operator()(T... arguments) const { return Call(body_, arguments...); }

 private:
  int (*body_)(T...);
  [[gnu::noinline, gnu::cold]] static int Call(int (*body)(T...), T... arguments) {
    [[maybe_unused]] const Guard guard;
    return body(arguments...);
  }
};
template <class Guard, typename... T>
GuardedBody<Guard, T...> Under(int (*body)(T...)) {
  return GuardedBody<Guard, T...>(body);
}

}  // namespace pex

// HWY_DYNAMIC_DISPATCH by it.
#define PEX_DISPATCH(body) (*HWY_DISPATCH_TABLE(body)[::pex::kChosenTarget->GetIndex()])

// The guard is seldom needed. Without it nothing is left to do when the body is done, and the body
// is jumped to.
#define PEX_CALL_UNDER(Guard, body, arguments)                   \
  do {                                                           \
    if (Guard::IsNeeded()) [[unlikely]]                          \
      return ::pex::Under<Guard>(&PEX_DISPATCH(body)) arguments; \
    return PEX_DISPATCH(body) arguments;                         \
  } while (false)

// pex::unguarded::dExp_50 and so on are the same for callers within the library that have put the
// control aside themselves: reading the control word takes as long as several elements.
#define PEX_EXPORT_BODY(body, parameters, arguments)           \
  HWY_EXPORT(body);                                            \
  namespace unguarded {                                        \
  int body parameters { return PEX_DISPATCH(body) arguments; } \
  }                                                            \
  extern "C" PEXQUO_API int _pex##body parameters {            \
    PEX_CALL_UNDER(::pex::ControlGuard, body, arguments);      \
  }

// The same with the caller's control word in force: entries that are the hardware's operations.
#define PEX_EXPORT_HARDWARE_BODY(body, parameters, arguments) \
  HWY_EXPORT(body);                                           \
  extern "C" PEXQUO_API int _pex##body parameters { return PEX_DISPATCH(body) arguments; }

// The same with the rounding mode to nearest and without flushing, exceptions masked as they are.
#define PEX_EXPORT_ROUNDING_BODY(body, parameters, arguments) \
  HWY_EXPORT(body);                                           \
  extern "C" PEXQUO_API int _pex##body parameters {           \
    PEX_CALL_UNDER(::pex::RoundingGuard, body, arguments);    \
  }

// One of the names of a body of complex numbers, under a guard of control.h or under NoGuard. The
// body's HWY_EXPORT stands before its names.
#define PEX_EXPORT_COMPLEX_UNARY(A, R, Guard, body, name)             \
  extern "C" PEXQUO_API int _pex##name(int32_t n, const A* a, R* r) { \
    PEX_CALL_UNDER(Guard, body, (n, a, r));                           \
  }
#define PEX_EXPORT_COMPLEX_BINARY(C, Guard, body, name)                           \
  extern "C" PEXQUO_API int _pex##name(int32_t n, const C* a, const C* b, C* r) { \
    PEX_CALL_UNDER(Guard, body, (n, a, b, r));                                    \
  }
#define PEX_EXPORT_COMPLEX_SCALAR(C, Guard, body, name)                    \
  extern "C" PEXQUO_API int _pex##name(int32_t n, const C* a, C b, C* r) { \
    PEX_CALL_UNDER(Guard, body, (n, a, b, r));                             \
  }

#define PEX_EXPORT_UNARY(T, body) PEX_EXPORT_BODY(body, (int32_t n, const T* a, T* r), (n, a, r))
#define PEX_EXPORT_BINARY(T, body) \
  PEX_EXPORT_BODY(body, (int32_t n, const T* a, const T* b, T* r), (n, a, b, r))
#define PEX_EXPORT_UNARY_SCALAR(T, body) \
  PEX_EXPORT_BODY(body, (int32_t n, const T* a, T b, T* r), (n, a, b, r))
#define PEX_EXPORT_UNARY_TWO(T, body) \
  PEX_EXPORT_BODY(body, (int32_t n, const T* a, T* r1, T* r2), (n, a, r1, r2))

#define PEX_EXPORT_HARDWARE_UNARY(T, body) \
  PEX_EXPORT_HARDWARE_BODY(body, (int32_t n, const T* a, T* r), (n, a, r))
#define PEX_EXPORT_HARDWARE_BINARY(T, body) \
  PEX_EXPORT_HARDWARE_BODY(body, (int32_t n, const T* a, const T* b, T* r), (n, a, b, r))
#define PEX_EXPORT_ROUNDING_UNARY(T, body) \
  PEX_EXPORT_ROUNDING_BODY(body, (int32_t n, const T* a, T* r), (n, a, r))
#define PEX_EXPORT_ROUNDING_UNARY_TWO(T, body) \
  PEX_EXPORT_ROUNDING_BODY(body, (int32_t n, const T* a, T* r1, T* r2), (n, a, r1, r2))

#endif  // PEX_CORE__KERNEL_EXPORT_H_
