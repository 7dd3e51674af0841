// SLEEF, libmvec and the compiler's plain loops at one level. Compiled once for each level with
// that level's options, so nothing here may have a copy that the linker could share with other
// code: no templates or inline functions but local ones.
#include <immintrin.h>
#include <sleef.h>

#include "bench/peers_level.h"

namespace {

#if defined(__AVX512F__)
#define LEVEL_ROWS PeersAVX512
#define SLEEF_D(name, u) Sleef_##name##d8_##u##avx512f
#define SLEEF_S(name, u) Sleef_##name##f16_##u##avx512f
#define MVEC_D(name) _ZGVeN8v_##name
#define MVEC_S(name) _ZGVeN16v_##name##f
#define MVEC_TWO_D(name) _ZGVeN8vv_##name
#define MVEC_TWO_S(name) _ZGVeN16vv_##name##f
typedef __m512d VectorD;
typedef __m512 VectorS;
typedef Sleef___m512d_2 PairD;
typedef Sleef___m512_2 PairS;
#elif defined(__AVX2__)
#define LEVEL_ROWS PeersAVX2
#define SLEEF_D(name, u) Sleef_##name##d4_##u##avx2
#define SLEEF_S(name, u) Sleef_##name##f8_##u##avx2
#define MVEC_D(name) _ZGVdN4v_##name
#define MVEC_S(name) _ZGVdN8v_##name##f
#define MVEC_TWO_D(name) _ZGVdN4vv_##name
#define MVEC_TWO_S(name) _ZGVdN8vv_##name##f
typedef __m256d VectorD;
typedef __m256 VectorS;
typedef Sleef___m256d_2 PairD;
typedef Sleef___m256_2 PairS;
#else
#define LEVEL_ROWS PeersSSE4
#define SLEEF_D(name, u) Sleef_##name##d2_##u##sse4
#define SLEEF_S(name, u) Sleef_##name##f4_##u##sse4
#define MVEC_D(name) _ZGVbN2v_##name
#define MVEC_S(name) _ZGVbN4v_##name##f
#define MVEC_TWO_D(name) _ZGVbN2vv_##name
#define MVEC_TWO_S(name) _ZGVbN4vv_##name##f
typedef __m128d VectorD;
typedef __m128 VectorS;
typedef Sleef___m128d_2 PairD;
typedef Sleef___m128_2 PairS;
#endif

extern "C" {
#define DECLARE_MVEC(name)       \
  VectorD MVEC_D(name)(VectorD); \
  VectorS MVEC_S(name)(VectorS);
#define DECLARE_MVEC_TWO(name)                \
  VectorD MVEC_TWO_D(name)(VectorD, VectorD); \
  VectorS MVEC_TWO_S(name)(VectorS, VectorS);
DECLARE_MVEC(exp)
DECLARE_MVEC(expm1)
DECLARE_MVEC(log)
DECLARE_MVEC(log10)
DECLARE_MVEC(log1p)
DECLARE_MVEC(sin)
DECLARE_MVEC(cos)
DECLARE_MVEC(tan)
DECLARE_MVEC(cbrt)
DECLARE_MVEC(acos)
DECLARE_MVEC(asin)
DECLARE_MVEC(atan)
DECLARE_MVEC(acosh)
DECLARE_MVEC(asinh)
DECLARE_MVEC(atanh)
DECLARE_MVEC(cosh)
DECLARE_MVEC(sinh)
DECLARE_MVEC(tanh)
DECLARE_MVEC(erf)
DECLARE_MVEC(erfc)
DECLARE_MVEC_TWO(pow)
DECLARE_MVEC_TWO(hypot)
DECLARE_MVEC_TWO(atan2)
}

// A vector function F in a loop over vectors of type V.
#define LOOP(T, V, F)                                                       \
  [](int n, const T* a, const T*, T* r, T*) {                               \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) {  \
      *reinterpret_cast<V*>(r + i) = F(*reinterpret_cast<const V*>(a + i)); \
    }                                                                       \
  }
// The same for two arguments, for one argument and a number, and for two results.
#define LOOP_TWO(T, V, F)                                                            \
  [](int n, const T* a, const T* b, T* r, T*) {                                      \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) {           \
      *reinterpret_cast<V*>(r + i) =                                                 \
          F(*reinterpret_cast<const V*>(a + i), *reinterpret_cast<const V*>(b + i)); \
    }                                                                                \
  }
#define LOOP_SCALAR(T, V, F)                                                        \
  [](int n, const T* a, const T* b, T* r, T*) {                                     \
    const V second = *b - V{};                                                      \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) {          \
      *reinterpret_cast<V*>(r + i) = F(*reinterpret_cast<const V*>(a + i), second); \
    }                                                                               \
  }
#define LOOP_PAIR(T, V, P, F)                                              \
  [](int n, const T* a, const T*, T* r, T* r2) {                           \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) { \
      const P both = F(*reinterpret_cast<const V*>(a + i));                \
      *reinterpret_cast<V*>(r + i) = both.x;                               \
      *reinterpret_cast<V*>(r2 + i) = both.y;                              \
    }                                                                      \
  }
#define LOOP_BOTH(T, V, F, G)                                              \
  [](int n, const T* a, const T*, T* r, T* r2) {                           \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) { \
      const V x = *reinterpret_cast<const V*>(a + i);                      \
      *reinterpret_cast<V*>(r + i) = F(x);                                 \
      *reinterpret_cast<V*>(r2 + i) = G(x);                                \
    }                                                                      \
  }
#define PEER_TWO(...) PEER_TWO_ROWS(__VA_ARGS__)
#define PEER_TWO_ROWS(function, name, ulp_d, ulp_s, F, G)           \
  {function, name, ulp_d, LOOP_TWO(double, VectorD, F), nullptr}, { \
    function, name, ulp_s, nullptr, LOOP_TWO(float, VectorS, G)     \
  }
#define PEER_SCALAR(...) PEER_SCALAR_ROWS(__VA_ARGS__)
#define PEER_SCALAR_ROWS(function, name, ulp_d, ulp_s, F, G)           \
  {function, name, ulp_d, LOOP_SCALAR(double, VectorD, F), nullptr}, { \
    function, name, ulp_s, nullptr, LOOP_SCALAR(float, VectorS, G)     \
  }
// The rows of one peer's function in double and single: their errors, then the functions.
#define PEER(...) PEER_ROWS(__VA_ARGS__)
#define PEER_ROWS(function, name, ulp_d, ulp_s, F, G)           \
  {function, name, ulp_d, LOOP(double, VectorD, F), nullptr}, { \
    function, name, ulp_s, nullptr, LOOP(float, VectorS, G)     \
  }
#define SLEEF(name, u) SLEEF_D(name, u), SLEEF_S(name, u)
#define MVEC(name) MVEC_D(name), MVEC_S(name)
#define MVEC_TWO(name) MVEC_TWO_D(name), MVEC_TWO_S(name)

#define PLAIN_LOOP(T, statement)                                                            \
  []([[maybe_unused]] int n, const T* __restrict a, [[maybe_unused]] const T* __restrict b, \
     T* __restrict r, [[maybe_unused]] T* __restrict r2) {                                  \
    for (int i = 0; i < n; ++i) statement;                                                  \
  }
#define PLAIN(function, statement)                                         \
  {function, "plain loop", 0.5, PLAIN_LOOP(double, statement), nullptr}, { \
    function, "plain loop", 0.5, nullptr, PLAIN_LOOP(float, statement)     \
  }
#define PLAIN_AS(function, name, ulp_d, ulp_s, statement)            \
  {function, name, ulp_d, PLAIN_LOOP(double, statement), nullptr}, { \
    function, name, ulp_s, nullptr, PLAIN_LOOP(float, statement)     \
  }
#define PLAIN_CALL(function, name)                                                             \
  {function, "plain loop", 0.5, PLAIN_LOOP(double, r[i] = __builtin_##name(a[i])), nullptr}, { \
    function, "plain loop", 0.5, nullptr, PLAIN_LOOP(float, r[i] = __builtin_##name##f(a[i]))  \
  }

#define SQRT(x) (sizeof(x) == 8 ? __builtin_sqrt(x) : __builtin_sqrtf(x))
#define CBRT(x) (sizeof(x) == 8 ? __builtin_cbrt(x) : __builtin_cbrtf(x))
#define HALF_ERFC(x)                                                    \
  (sizeof(x) == 8 ? 0.5 * __builtin_erfc((x) * -0.70710678118654752440) \
                  : 0.5f * __builtin_erfcf((x) * -0.70710678f))

constexpr bench::Peer kRows[] = {
    PEER("Exp", "SLEEF u10", 1.0, 1.0, SLEEF(exp, u10)),
    PEER("Exp", "libmvec", 3.0, 2.9, MVEC(exp)),
    PEER("Expm1", "SLEEF u10", 1.0, 1.0, SLEEF(expm1, u10)),
    PEER("Expm1", "libmvec", 3.0, 2.3, MVEC(expm1)),
    PEER("Ln", "SLEEF u10", 1.0, 1.0, SLEEF(log, u10)),
    PEER("Ln", "SLEEF u35", 2.3, 2.6, SLEEF(log, u35)),
    PEER("Ln", "libmvec", 1.6, 3.9, MVEC(log)),
    PEER("Log10", "SLEEF u10", 1.0, 1.0, SLEEF(log10, u10)),
    PEER("Log10", "libmvec", 1.8, 2.2, MVEC(log10)),
    PEER("Log1p", "SLEEF u10", 1.0, 1.0, SLEEF(log1p, u10)),
    PEER("Log1p", "libmvec", 1.9, 2.0, MVEC(log1p)),
    PEER("Sin", "SLEEF u10", 1.0, 1.0, SLEEF(sin, u10)),
    PEER("Sin", "SLEEF u35", 3.5, 3.5, SLEEF(sin, u35)),
    PEER("Sin", "libmvec", 3.2, 2.3, MVEC(sin)),
    PEER("Cos", "SLEEF u10", 1.0, 1.0, SLEEF(cos, u10)),
    PEER("Cos", "SLEEF u35", 3.5, 3.5, SLEEF(cos, u35)),
    PEER("Cos", "libmvec", 3.5, 2.4, MVEC(cos)),
    PEER("Tan", "SLEEF u10", 1.0, 1.0, SLEEF(tan, u10)),
    PEER("Tan", "SLEEF u35", 3.5, 3.5, SLEEF(tan, u35)),
    PEER("Tan", "libmvec", 3.3, 3.5, MVEC(tan)),
    {"SinCos", "SLEEF u10", 1.0, LOOP_PAIR(double, VectorD, PairD, SLEEF_D(sincos, u10)), nullptr},
    {"SinCos", "SLEEF u10", 1.0, nullptr, LOOP_PAIR(float, VectorS, PairS, SLEEF_S(sincos, u10))},
    {"SinCos", "SLEEF u35", 3.5, LOOP_PAIR(double, VectorD, PairD, SLEEF_D(sincos, u35)), nullptr},
    {"SinCos", "SLEEF u35", 3.5, nullptr, LOOP_PAIR(float, VectorS, PairS, SLEEF_S(sincos, u35))},
    {"SinCos", "libmvec sin, cos", 3.5, LOOP_BOTH(double, VectorD, MVEC_D(sin), MVEC_D(cos)),
     nullptr},
    {"SinCos", "libmvec sin, cos", 2.4, nullptr,
     LOOP_BOTH(float, VectorS, MVEC_S(sin), MVEC_S(cos))},
    PEER_TWO("Pow", "SLEEF u10", 1.0, 1.0, SLEEF(pow, u10)),
    PEER_TWO("Pow", "libmvec", 1.0, 0.7, MVEC_TWO(pow)),
    PEER_SCALAR("Powx", "SLEEF u10", 1.0, 1.0, SLEEF(pow, u10)),
    PEER_SCALAR("Powx", "libmvec", 1.0, 0.7, MVEC_TWO(pow)),
    PLAIN_AS("Pow2o3", "C library", 8.0, 4.0, r[i] = CBRT(a[i]) * CBRT(a[i])),
    PLAIN_AS("Pow3o2", "plain loop", 1.4, 1.4, r[i] = a[i] * SQRT(a[i])),
    PLAIN("Sqrt", r[i] = SQRT(a[i])),
    PLAIN_AS("InvSqrt", "plain loop", 1.5, 1.5, r[i] = 1 / SQRT(a[i])),
    PLAIN_AS("InvCbrt", "C library", 4.5, 2.0, r[i] = 1 / CBRT(a[i])),
    PLAIN("Inv", r[i] = 1 / a[i]),
    PLAIN("Div", r[i] = a[i] / b[i]),
    PLAIN_AS("CdfNorm", "C library", 1300.0, 300.0, r[i] = HALF_ERFC(a[i])),
    PEER("Cbrt", "SLEEF u10", 1.0, 1.0, SLEEF(cbrt, u10)),
    PEER("Cbrt", "SLEEF u35", 3.5, 3.5, SLEEF(cbrt, u35)),
    PEER("Cbrt", "libmvec", 1.9, 2.9, MVEC(cbrt)),
    PEER_TWO("Hypot", "SLEEF u05", 0.5, 0.5, SLEEF(hypot, u05)),
    PEER_TWO("Hypot", "SLEEF u35", 3.5, 3.5, SLEEF(hypot, u35)),
    PEER_TWO("Hypot", "libmvec", 1.8, 1.5, MVEC_TWO(hypot)),
    PEER("Acos", "SLEEF u10", 1.0, 1.0, SLEEF(acos, u10)),
    PEER("Acos", "SLEEF u35", 3.5, 3.5, SLEEF(acos, u35)),
    PEER("Acos", "libmvec", 2.0, 2.2, MVEC(acos)),
    PEER("Asin", "SLEEF u10", 1.0, 1.0, SLEEF(asin, u10)),
    PEER("Asin", "SLEEF u35", 3.5, 3.5, SLEEF(asin, u35)),
    PEER("Asin", "libmvec", 2.5, 2.8, MVEC(asin)),
    PEER("Atan", "SLEEF u10", 1.0, 1.0, SLEEF(atan, u10)),
    PEER("Atan", "SLEEF u35", 3.5, 3.5, SLEEF(atan, u35)),
    PEER("Atan", "libmvec", 2.5, 2.5, MVEC(atan)),
    PEER_TWO("Atan2", "SLEEF u10", 1.0, 1.0, SLEEF(atan2, u10)),
    PEER_TWO("Atan2", "SLEEF u35", 3.5, 3.5, SLEEF(atan2, u35)),
    PEER_TWO("Atan2", "libmvec", 2.5, 3.0, MVEC_TWO(atan2)),
    PEER("Acosh", "SLEEF u10", 1.0, 1.0, SLEEF(acosh, u10)),
    PEER("Acosh", "libmvec", 3.5, 3.0, MVEC(acosh)),
    PEER("Asinh", "SLEEF u10", 1.0, 1.01, SLEEF(asinh, u10)),
    PEER("Asinh", "libmvec", 2.0, 1.9, MVEC(asinh)),
    PEER("Atanh", "SLEEF u10", 1.0, 1.01, SLEEF(atanh, u10)),
    PEER("Atanh", "libmvec", 2.0, 2.0, MVEC(atanh)),
    PEER("Cosh", "SLEEF u10", 1.0, 1.0, SLEEF(cosh, u10)),
    PEER("Cosh", "SLEEF u35", 3.5, 3.5, SLEEF(cosh, u35)),
    PEER("Cosh", "libmvec", 2.0, 2.4, MVEC(cosh)),
    PEER("Sinh", "SLEEF u10", 1.0, 1.0, SLEEF(sinh, u10)),
    PEER("Sinh", "SLEEF u35", 3.5, 3.5, SLEEF(sinh, u35)),
    PEER("Sinh", "libmvec", 2.0, 1.9, MVEC(sinh)),
    PEER("Tanh", "SLEEF u10", 1.01, 1.01, SLEEF(tanh, u10)),
    PEER("Tanh", "SLEEF u35", 3.5, 3.5, SLEEF(tanh, u35)),
    PEER("Tanh", "libmvec", 2.9, 1.4, MVEC(tanh)),
    PEER("Erf", "SLEEF u10", 1.0, 1.0, SLEEF(erf, u10)),
    PEER("Erf", "libmvec", 2.4, 4.0, MVEC(erf)),
    PEER("Erfc", "SLEEF u15", 1.5, 1.5, SLEEF(erfc, u15)),
    PEER("Erfc", "libmvec", 2.1, 1.6, MVEC(erfc)),
    PLAIN("Add", r[i] = a[i] + b[i]),
    PLAIN("Sub", r[i] = a[i] - b[i]),
    PLAIN("Mul", r[i] = a[i] * b[i]),
    PLAIN("Sqr", r[i] = a[i] * a[i]),
    PLAIN_CALL("Abs", fabs),
    PLAIN_CALL("Ceil", ceil),
    PLAIN_CALL("Floor", floor),
    PLAIN_CALL("Trunc", trunc),
    PLAIN_CALL("Rint", rint),
    PLAIN_CALL("NearbyInt", nearbyint),
    PLAIN_CALL("Round", round),
    {"Modf", "plain loop", 0.5,
     PLAIN_LOOP(double,
                (r[i] = __builtin_trunc(a[i]), r2[i] = __builtin_copysign(a[i] - r[i], a[i]))),
     nullptr},
    {"Modf", "plain loop", 0.5, nullptr,
     PLAIN_LOOP(float,
                (r[i] = __builtin_truncf(a[i]), r2[i] = __builtin_copysignf(a[i] - r[i], a[i])))},
};

}  // namespace

namespace bench {

PeerRows LEVEL_ROWS() { return {kRows, static_cast<int>(sizeof kRows / sizeof *kRows)}; }

}  // namespace bench
