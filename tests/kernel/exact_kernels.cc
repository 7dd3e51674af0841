#include "tests/kernel/exact_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tests/kernel/exact_kernels.cc"
#include "hwy/foreach_target.h"
//
#include "hwy/highway.h"
#include "pex_core/_kernel/exact-inl.h"
#include "pex_core/_kernel/polynomial-inl.h"

HWY_BEFORE_NAMESPACE();
namespace pex::HWY_NAMESPACE {

template <class D, class V>
HWY_INLINE Pair<V> Apply(ExactOp op, D d, Pair<V> a, Pair<V> b) {
  switch (op) {
    case ExactOp::TwoSum:
      return TwoSum(a.hi, b.hi);
    case ExactOp::FastTwoSum:
      return FastTwoSum(a.hi, b.hi);
    case ExactOp::TwoProduct:
      return TwoProduct(d, a.hi, b.hi);
    case ExactOp::AddFast:
      return AddFast(a, b.hi);
    case ExactOp::AddPairs:
      return Add(a, b);
    case ExactOp::MulByNumber:
      return Mul(d, a, b.hi);
    case ExactOp::MulPairs:
      break;
  }
  return Mul(d, a, b);
}

template <typename T>
void Exact(ExactOp op, size_t n, PairArrays<const T> a, PairArrays<const T> b, PairArrays<T> r) {
  const hn::ScalableTag<T> d;
  using V = hn::Vec<decltype(d)>;
  for (size_t i = 0; i < n; i += hn::Lanes(d)) {
    const Pair<V> x = {hn::LoadU(d, a.hi + i), hn::LoadU(d, a.lo + i)};
    const Pair<V> y = {hn::LoadU(d, b.hi + i), hn::LoadU(d, b.lo + i)};
    const Pair<V> z = Apply(op, d, x, y);
    hn::StoreU(z.hi, d, r.hi + i);
    hn::StoreU(z.lo, d, r.lo + i);
  }
}

template <typename T, size_t N>
HWY_INLINE void Polynomial(bool even_odd, size_t n, const T* x, T* r) {
  const hn::ScalableTag<T> d;
  static constexpr T kAll[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  T c[N];
  for (size_t k = 0; k < N; ++k) c[k] = kAll[k];
  for (size_t i = 0; i < n; i += hn::Lanes(d)) {
    const auto v = hn::LoadU(d, x + i);
    hn::StoreU(even_odd ? EvenOdd(d, v, hn::Mul(v, v), c) : Horner(d, v, c), d, r + i);
  }
}

template <typename T>
void PolynomialOf(bool even_odd, int degree, size_t n, const T* x, T* r) {
  switch (degree) {
    case 0:
      return Polynomial<T, 1>(even_odd, n, x, r);
    case 1:
      return Polynomial<T, 2>(even_odd, n, x, r);
    case 2:
      return Polynomial<T, 3>(even_odd, n, x, r);
    case 3:
      return Polynomial<T, 4>(even_odd, n, x, r);
    case 4:
      return Polynomial<T, 5>(even_odd, n, x, r);
    case 7:
      return Polynomial<T, 8>(even_odd, n, x, r);
    default:
      return Polynomial<T, 9>(even_odd, n, x, r);
  }
}

void ExactDouble(ExactOp op, size_t n, PairArrays<const double> a, PairArrays<const double> b,
                 PairArrays<double> r) {
  Exact<double>(op, n, a, b, r);
}
void ExactSingle(ExactOp op, size_t n, PairArrays<const float> a, PairArrays<const float> b,
                 PairArrays<float> r) {
  Exact<float>(op, n, a, b, r);
}
void PolynomialDouble(bool even_odd, int degree, size_t n, const double* x, double* r) {
  PolynomialOf(even_odd, degree, n, x, r);
}
void PolynomialSingle(bool even_odd, int degree, size_t n, const float* x, float* r) {
  PolynomialOf(even_odd, degree, n, x, r);
}

}  // namespace pex::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pex {
HWY_EXPORT(ExactDouble);
HWY_EXPORT(ExactSingle);
HWY_EXPORT(PolynomialDouble);
HWY_EXPORT(PolynomialSingle);

void RunDouble(ExactOp op, size_t n, PairArrays<const double> a, PairArrays<const double> b,
               PairArrays<double> r) {
  HWY_DYNAMIC_DISPATCH(ExactDouble)(op, n, a, b, r);
}
void RunSingle(ExactOp op, size_t n, PairArrays<const float> a, PairArrays<const float> b,
               PairArrays<float> r) {
  HWY_DYNAMIC_DISPATCH(ExactSingle)(op, n, a, b, r);
}
void RunPolynomialDouble(bool even_odd, int degree, size_t n, const double* x, double* r) {
  HWY_DYNAMIC_DISPATCH(PolynomialDouble)(even_odd, degree, n, x, r);
}
void RunPolynomialSingle(bool even_odd, int degree, size_t n, const float* x, float* r) {
  HWY_DYNAMIC_DISPATCH(PolynomialSingle)(even_odd, degree, n, x, r);
}
}  // namespace pex

template <>
void RunExact(ExactOp op, size_t n, PairArrays<const double> a, PairArrays<const double> b,
              PairArrays<double> r) {
  pex::RunDouble(op, n, a, b, r);
}
template <>
void RunExact(ExactOp op, size_t n, PairArrays<const float> a, PairArrays<const float> b,
              PairArrays<float> r) {
  pex::RunSingle(op, n, a, b, r);
}
template <>
void RunPolynomial(bool even_odd, int degree, size_t n, const double* x, double* r) {
  pex::RunPolynomialDouble(even_odd, degree, n, x, r);
}
template <>
void RunPolynomial(bool even_odd, int degree, size_t n, const float* x, float* r) {
  pex::RunPolynomialSingle(even_odd, degree, n, x, r);
}
#endif
