// Highway's contributed functions as peers. They take ordinary arguments only: zeros, infinities,
// NaN and results beyond the range come out wrong, which is part of their speed.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/peers_highway.cc"
#include "hwy/foreach_target.h"

#include "bench/peers_level.h"
#include "hwy/contrib/math/math-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace bench::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#define HIGHWAY_LOOP(T, F)                                        \
  [](int n, const T* a, const T*, T* r, T*) HWY_ATTR {            \
    const hn::ScalableTag<T> d;                                   \
    for (int i = 0; i < n; i += static_cast<int>(hn::Lanes(d))) { \
      hn::Store(hn::F(d, hn::Load(d, a + i)), d, r + i);          \
    }                                                             \
  }
#define HIGHWAY(function, F, ulp_d, ulp_s)                          \
  {function, "Highway", ulp_d, HIGHWAY_LOOP(double, F), nullptr}, { \
    function, "Highway", ulp_s, nullptr, HIGHWAY_LOOP(float, F)     \
  }

constexpr Peer kRows[] = {
    HIGHWAY("Exp", Exp, 1.1, 1.0),     HIGHWAY("Expm1", Expm1, 4.0, 3.5),
    HIGHWAY("Ln", Log, 1.0, 0.9),      HIGHWAY("Log10", Log10, 1.9, 2.1),
    HIGHWAY("Log1p", Log1p, 2.4, 2.4), HIGHWAY("Sin", Sin, 3.0, 3.0),
    HIGHWAY("Cos", Cos, 3.0, 3.0),     HIGHWAY("Acos", Acos, 2.0, 2.0),
    HIGHWAY("Asin", Asin, 2.4, 2.5),   HIGHWAY("Atan", Atan, 3.0, 3.0),
    HIGHWAY("Acosh", Acosh, 3.5, 3.5), HIGHWAY("Asinh", Asinh, 3.0, 3.0),
    HIGHWAY("Atanh", Atanh, 3.0, 3.0), HIGHWAY("Sinh", Sinh, 4.0, 4.0),
    HIGHWAY("Tanh", Tanh, 4.0, 4.0),
};

}  // namespace

PeerRows Highway() { return {kRows, static_cast<int>(sizeof kRows / sizeof *kRows)}; }

}  // namespace bench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace bench {

HWY_EXPORT(Highway);
PeerRows PeersHighway() { return HWY_DYNAMIC_DISPATCH(Highway)(); }

}  // namespace bench
#endif
