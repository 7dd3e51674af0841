// Polynomials with the order of operations written out. Coefficients come lowest first.

#include <cstddef>

#include "hwy/highway.h"
#include "pex_core/_kernel/hardware-inl.h"

#if defined(PEX_CORE__KERNEL_POLYNOMIAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef PEX_CORE__KERNEL_POLYNOMIAL_INL_H_
#undef PEX_CORE__KERNEL_POLYNOMIAL_INL_H_
#else
#define PEX_CORE__KERNEL_POLYNOMIAL_INL_H_
#endif

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// c[0] + x (c[1] + x (c[2] + ...)): the fewest operations.
template <class D, class V, size_t N>
HWY_INLINE V Horner(D d, V x, const hn::TFromD<D> (&c)[N]) {
  V p = hn::Set(d, c[N - 1]);
  for (size_t i = N - 1; i-- > 0;) p = hn::Add(hn::Mul(p, x), hn::Set(d, c[i]));
  return p;
}

// The same by silent products.
template <class D, class V, size_t N>
HWY_INLINE V SilentHorner(D d, V x, const hn::TFromD<D> (&c)[N]) {
  V p = hn::Set(d, c[N - 1]);
  for (size_t i = N - 1; i-- > 0;) p = hn::Add(SilentMul(p, x), hn::Set(d, c[i]));
  return p;
}

// The scheme for several vectors, a step at a time for all of them.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void Horner(D d, const V (&x)[K], const hn::TFromD<D> (&c)[N], V (&p)[K]) {
  for (size_t k = 0; k < K; ++k) p[k] = hn::Set(d, c[N - 1]);
  for (size_t i = N - 1; i-- > 0;) {
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(p[k], x[k]);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], hn::Set(d, c[i]));
  }
}

// Ends a part of one or several vectors' computation.
template <class V, size_t K>
HWY_INLINE void EndPart([[maybe_unused]] V (&v)[K]) {
#if HWY_TARGET != HWY_SSE4
  for (size_t k = 0; k < K; ++k) asm volatile("" : "+v"(v[k].raw));
#endif
}

// Ends a step of several vectors' computation: they are computed here. Left alone, GCC puts the
// steps of one vector behind one another again, and each waits for the one before it.
template <class V, size_t K>
HWY_INLINE void EndStep(V (&v)[K]) {
  if constexpr (K > 1) EndPart(v);
}

// A constant for a step of many vectors, read once: GCC would read some from memory for each of
// them.
template <size_t K, class V>
HWY_INLINE V ConstantOf(V v) {
#if HWY_TARGET != HWY_SSE4
  if constexpr (K > 3) asm volatile("" : "+v"(v.raw));
#endif
  return v;
}

// Horner's scheme in steps.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void HornerInSteps(D d, const V (&x)[K], const hn::TFromD<D> (&c)[N], V (&p)[K]) {
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(hn::Set(d, c[N - 1]), x[k]);
  EndStep(p);
  for (size_t i = N - 2;; --i) {
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], hn::Set(d, c[i]));
    EndStep(p);
    if (i == 0) break;
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(p[k], x[k]);
    EndStep(p);
  }
}

// The polynomial of degree 6 with y = (x + c[0]) x + c[1], v = (x + c[2]) y + c[3] and the value
// ((v + y + c[4]) v + c[5]) c[6] (Knuth): four multiplications instead of six, three without a
// c[6], which is 1 then. In steps of all vectors.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void AdaptedSextic(D d, const V (&x)[K], const hn::TFromD<D> (&c)[N], V (&p)[K]) {
  static_assert(N == 6 || N == 7);
  const auto term = [&](size_t i) HWY_ATTR { return hn::Set(d, c[i]); };
  V y[K];
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(x[k], term(0));
  EndStep(y);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Mul(y[k], x[k]);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(x[k], term(2));
  EndStep(y);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(y[k], term(1));
  EndStep(y);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(p[k], y[k]);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(y[k], term(4));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], term(3));
  EndStep(p);
  for (size_t k = 0; k < K; ++k) y[k] = hn::Add(y[k], p[k]);
  EndStep(y);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(y[k], p[k]);
  EndStep(p);
  for (size_t k = 0; k < K; ++k) p[k] = hn::Add(p[k], term(5));
  if constexpr (N == 7) {
    EndStep(p);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Mul(p[k], term(6));
  }
}

// Long computations of several vectors in three parts, three vectors in turn: while one waits for
// the results of its part, others are computed. Each has a P, with Reduce(x...), Evaluate() and
// Result(x...); the results may overwrite the x. kLag: of how many later P the first part comes
// before the second part of one.
template <size_t kLag = 1, size_t kStep = 0, class P, class R, size_t K, class... V>
HWY_INLINE void InTurn(P (&parts)[K], R (&r)[K], const V (&... x)[K]) {
  constexpr size_t kLast = kStep - kLag - 1;
  if constexpr (kStep < K) parts[kStep].Reduce(x[kStep]...);
  if constexpr (kStep >= kLag && kStep - kLag < K) parts[kStep - kLag].Evaluate();
  if constexpr (kStep > kLag) r[kLast] = parts[kLast].Result(x[kLast]...);
  if constexpr (kStep < K + kLag) InTurn<kLag, kStep + 1>(parts, r, x...);
}

// The same where each P takes its vectors from x and puts their results into r, kSize of them.
// Golden Cove's scheduler holds some hundred operations; those that wait for a division or a root
// fill it. A P with a kReduceKinds has Reduce<kind>(x) for kinds below that, in turn.
template <size_t kLag = 1, size_t kStep = 0, class P, size_t N, class V>
HWY_INLINE void SomeInTurn(P (&parts)[N], const V* x, V* r) {
  constexpr size_t kSize = P::kSize;
  constexpr size_t kLast = kStep - kLag - 1;
  if constexpr (kStep < N) {
    if constexpr (requires { P::kReduceKinds; }) {
      parts[kStep].template Reduce<kStep % P::kReduceKinds>(x + kStep * kSize);
    } else {
      parts[kStep].Reduce(x + kStep * kSize);
    }
  }
  if constexpr (kStep >= kLag && kStep - kLag < N) parts[kStep - kLag].Evaluate();
  if constexpr (kStep > kLag) parts[kLast].Result(x + kLast * kSize, r + kLast * kSize);
  if constexpr (kStep < N + kLag) SomeInTurn<kLag, kStep + 1>(parts, x, r);
}

// Pairs (c[0] + c[1] x) + x^2 ((c[2] + c[3] x) + x^2 ...): half the latency.
template <class D, class V, size_t N>
HWY_INLINE V EvenOdd(D d, V x, V x2, const hn::TFromD<D> (&c)[N]) {
  constexpr size_t kTop = (N - 1) / 2 * 2;  // index of the highest pair
  const auto pair = [&](size_t i) HWY_ATTR {
    const V low = hn::Set(d, c[i]);
    return i + 1 < N ? hn::Add(hn::Mul(hn::Set(d, c[i + 1]), x), low) : low;
  };
  V p = pair(kTop);
  for (size_t i = kTop; i >= 2; i -= 2) p = hn::Add(hn::Mul(p, x2), pair(i - 2));
  return p;
}

// The same for several vectors, a step at a time for all of them; kInSteps: with ends of steps.
template <bool kInSteps = false, class D, class V, size_t K, size_t N>
HWY_INLINE void EvenOdd(D d, const V (&x)[K], const V (&x2)[K], const hn::TFromD<D> (&c)[N],
                        V (&p)[K]) {
  constexpr size_t kTop = (N - 1) / 2 * 2;
  const auto pair = [&](size_t i, size_t k) HWY_ATTR {
    const V low = hn::Set(d, c[i]);
    return i + 1 < N ? hn::Add(hn::Mul(hn::Set(d, c[i + 1]), x[k]), low) : low;
  };
  for (size_t k = 0; k < K; ++k) p[k] = pair(kTop, k);
  for (size_t i = kTop; i >= 2; i -= 2) {
    if constexpr (kInSteps) EndStep(p);
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(hn::Mul(p[k], x2[k]), pair(i - 2, k));
  }
  if constexpr (kInSteps && N > 2) EndStep(p);
}

// The same by silent products.
template <class D, class V, size_t K, size_t N>
HWY_INLINE void SilentEvenOdd(D d, const V (&x)[K], const V (&x2)[K], const hn::TFromD<D> (&c)[N],
                              V (&p)[K]) {
  constexpr size_t kTop = (N - 1) / 2 * 2;
  const auto pair = [&](size_t i, size_t k) HWY_ATTR {
    const V low = hn::Set(d, c[i]);
    return i + 1 < N ? hn::Add(SilentMul(hn::Set(d, c[i + 1]), x[k]), low) : low;
  };
  for (size_t k = 0; k < K; ++k) p[k] = pair(kTop, k);
  for (size_t i = kTop; i >= 2; i -= 2) {
    for (size_t k = 0; k < K; ++k) p[k] = hn::Add(SilentMul(p[k], x2[k]), pair(i - 2, k));
  }
}

// Pairs of pairs (Estrin): the least latency, at the price of x^4. For 5 to 12 coefficients.
template <class D, class V, size_t N>
HWY_INLINE V Estrin(D d, V x, V x2, const hn::TFromD<D> (&c)[N]) {
  static_assert(N >= 5 && N <= 12);
  const V x4 = hn::Mul(x2, x2);
  // c[i] + c[i + 1] x + x^2 (c[i + 2] + c[i + 3] x), as far as there are coefficients
  const auto quad = [&](size_t i) HWY_ATTR {
    const auto pair = [&](size_t k) HWY_ATTR {
      const V low = hn::Set(d, c[k]);
      return k + 1 < N ? hn::Add(hn::Mul(hn::Set(d, c[k + 1]), x), low) : low;
    };
    return i + 2 < N ? hn::Add(hn::Mul(pair(i + 2), x2), pair(i)) : pair(i);
  };
  const V upper = N > 8 ? hn::Add(hn::Mul(quad(8 < N ? 8 : 0), x4), quad(4)) : quad(4);
  return hn::Add(hn::Mul(upper, x4), quad(0));
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // PEX_CORE__KERNEL_POLYNOMIAL_INL_H_
