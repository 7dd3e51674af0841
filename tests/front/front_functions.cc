#include "tests/front/front_functions.h"

#include "pexquo/pexquo.h"

namespace {

// A public function of any shape with untyped arrays. `Mode` is uint32_t or nothing.
template <typename A, typename R, typename... Mode>
int32_t Invoke(int32_t (*f)(int64_t, const A*, R*, Mode...), int64_t n, const void* a, const void*,
               void* r1, void*, Mode... mode) {
  return f(n, static_cast<const A*>(a), static_cast<R*>(r1), mode...);
}
template <typename A, typename R, typename... Mode>
int32_t Invoke(int32_t (*f)(int64_t, const A*, const A*, R*, Mode...), int64_t n, const void* a,
               const void* b, void* r1, void*, Mode... mode) {
  return f(n, static_cast<const A*>(a), static_cast<const A*>(b), static_cast<R*>(r1), mode...);
}
template <typename A, typename R, typename... Mode>
int32_t Invoke(int32_t (*f)(int64_t, const A*, A, R*, Mode...), int64_t n, const void* a,
               const void* b, void* r1, void*, Mode... mode) {
  return f(n, static_cast<const A*>(a), *static_cast<const A*>(b), static_cast<R*>(r1), mode...);
}
template <typename A, typename R, typename... Mode>
int32_t Invoke(int32_t (*f)(int64_t, const A*, R*, R*, Mode...), int64_t n, const void* a,
               const void*, void* r1, void* r2, Mode... mode) {
  return f(n, static_cast<const A*>(a), static_cast<R*>(r1), static_cast<R*>(r2), mode...);
}

#define FRONT_ROW(Name, letter, type)                                                            \
  FrontFunction{#Name, letter,                                                                   \
                [](int64_t n, const void* a, const void* b, void* r1, void* r2) {                \
                  return Invoke(v##type##Name, n, a, b, r1, r2);                                 \
                },                                                                               \
                [](int64_t n, const void* a, const void* b, void* r1, void* r2, uint32_t mode) { \
                  return Invoke(v##type##Name##Mode, n, a, b, r1, r2, mode);                     \
                }},
#define PEX_TIERED(Name, ...) FRONT_ROW(Name, 'd', d) FRONT_ROW(Name, 's', s)
#define PEX_PLAIN(Name, ...) PEX_TIERED(Name)
#define PEX_COMPLEX_TIERED(Name, ...) FRONT_ROW(Name, 'z', z) FRONT_ROW(Name, 'c', c)
#define PEX_COMPLEX_PLAIN(Name, ...) PEX_COMPLEX_TIERED(Name)

const FrontFunction kFunctions[] = {
#include "catalogue/complex_functions.def"
#include "catalogue/functions.def"
};

pex::Tier TierOf(const pex::Function& function, uint32_t accuracy) {
  if (!function.tiered) return pex::Tier::Plain;
  return accuracy == PEX_ACCURACY_EP   ? pex::Tier::EP
         : accuracy == PEX_ACCURACY_LA ? pex::Tier::LA
                                       : pex::Tier::HA;
}

}  // namespace

const pex::Entry& FrontFunction::Kernel(uint32_t accuracy) const {
  return *pex::FindEntry(name, type, TierOf(function(), accuracy));
}

std::span<const FrontFunction> FrontFunctions() { return kFunctions; }
