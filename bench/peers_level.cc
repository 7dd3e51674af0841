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
typedef __m512d VectorD;
typedef __m512 VectorS;
#elif defined(__AVX2__)
#define LEVEL_ROWS PeersAVX2
#define SLEEF_D(name, u) Sleef_##name##d4_##u##avx2
#define SLEEF_S(name, u) Sleef_##name##f8_##u##avx2
#define MVEC_D(name) _ZGVdN4v_##name
#define MVEC_S(name) _ZGVdN8v_##name##f
typedef __m256d VectorD;
typedef __m256 VectorS;
#else
#define LEVEL_ROWS PeersSSE4
#define SLEEF_D(name, u) Sleef_##name##d2_##u##sse4
#define SLEEF_S(name, u) Sleef_##name##f4_##u##sse4
#define MVEC_D(name) _ZGVbN2v_##name
#define MVEC_S(name) _ZGVbN4v_##name##f
typedef __m128d VectorD;
typedef __m128 VectorS;
#endif

extern "C" {
#define DECLARE_MVEC(name)       \
  VectorD MVEC_D(name)(VectorD); \
  VectorS MVEC_S(name)(VectorS);
DECLARE_MVEC(exp)
DECLARE_MVEC(expm1)
DECLARE_MVEC(log)
DECLARE_MVEC(log10)
DECLARE_MVEC(log1p)
}

// A vector function F in a loop over vectors of type V.
#define LOOP(T, V, F)                                                       \
  [](int n, const T* a, const T*, T* r, T*) {                               \
    for (int i = 0; i < n; i += static_cast<int>(sizeof(V) / sizeof(T))) {  \
      *reinterpret_cast<V*>(r + i) = F(*reinterpret_cast<const V*>(a + i)); \
    }                                                                       \
  }
// The rows of one peer's function in double and single: their errors, then the functions.
#define PEER(...) PEER_ROWS(__VA_ARGS__)
#define PEER_ROWS(function, name, ulp_d, ulp_s, F, G)           \
  {function, name, ulp_d, LOOP(double, VectorD, F), nullptr}, { \
    function, name, ulp_s, nullptr, LOOP(float, VectorS, G)     \
  }
#define SLEEF(name, u) SLEEF_D(name, u), SLEEF_S(name, u)
#define MVEC(name) MVEC_D(name), MVEC_S(name)

#define PLAIN_LOOP(T, statement)                                                            \
  []([[maybe_unused]] int n, const T* __restrict a, [[maybe_unused]] const T* __restrict b, \
     T* __restrict r, [[maybe_unused]] T* __restrict r2) {                                  \
    for (int i = 0; i < n; ++i) statement;                                                  \
  }
#define PLAIN(function, statement)                                         \
  {function, "plain loop", 0.5, PLAIN_LOOP(double, statement), nullptr}, { \
    function, "plain loop", 0.5, nullptr, PLAIN_LOOP(float, statement)     \
  }
#define PLAIN_CALL(function, name)                                                             \
  {function, "plain loop", 0.5, PLAIN_LOOP(double, r[i] = __builtin_##name(a[i])), nullptr}, { \
    function, "plain loop", 0.5, nullptr, PLAIN_LOOP(float, r[i] = __builtin_##name##f(a[i]))  \
  }

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
