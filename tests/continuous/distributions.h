// The continuous distributions by type, and each of them written plainly from its definition, one
// element at a time on top of the vector functions.
#ifndef TESTS_CONTINUOUS_DISTRIBUTIONS_H_
#define TESTS_CONTINUOUS_DISTRIBUTIONS_H_

#include <bit>
#include <cstdint>
#include <vector>

#include "pexquo/pex.h"
#include "pexquo/quo.h"

namespace continuous {

enum class Name { kExponential, kLaplace, kWeibull, kCauchy, kRayleigh, kGumbel, kLognormal };

// Parameters in the order of the call; `first` is alpha of Weibull and (with sigma) the mean of the
// normal numbers of lognormal.
struct Distribution {
  Name name;
  double a = 0, beta = 1, first = 1, sigma = 1;
};

inline int32_t Draw(const Distribution& d, uint32_t method, StreamState* s, int32_t n, double* r) {
  switch (d.name) {
    case Name::kExponential:
      return _quodRngExponential(method, s, n, r, d.a, d.beta);
    case Name::kLaplace:
      return _quodRngLaplace(method, s, n, r, d.a, d.beta);
    case Name::kWeibull:
      return _quodRngWeibull(method, s, n, r, d.first, d.a, d.beta);
    case Name::kCauchy:
      return _quodRngCauchy(method, s, n, r, d.a, d.beta);
    case Name::kRayleigh:
      return _quodRngRayleigh(method, s, n, r, d.a, d.beta);
    case Name::kGumbel:
      return _quodRngGumbel(method, s, n, r, d.a, d.beta);
    case Name::kLognormal:
      return _quodRngLognormal(method, s, n, r, d.first, d.sigma, d.a, d.beta);
  }
  return 1;
}

inline int32_t Draw(const Distribution& d, uint32_t method, StreamState* s, int32_t n, float* r) {
  const auto a = float(d.a), beta = float(d.beta), first = float(d.first), sigma = float(d.sigma);
  switch (d.name) {
    case Name::kExponential:
      return _quosRngExponential(method, s, n, r, a, beta);
    case Name::kLaplace:
      return _quosRngLaplace(method, s, n, r, a, beta);
    case Name::kWeibull:
      return _quosRngWeibull(method, s, n, r, first, a, beta);
    case Name::kCauchy:
      return _quosRngCauchy(method, s, n, r, a, beta);
    case Name::kRayleigh:
      return _quosRngRayleigh(method, s, n, r, a, beta);
    case Name::kGumbel:
      return _quosRngGumbel(method, s, n, r, a, beta);
    case Name::kLognormal:
      return _quosRngLognormal(method, s, n, r, first, sigma, a, beta);
  }
  return 1;
}

// The bits of -744.4400719213812 and -103.27893.
template <typename T>
T LnSmallest() {
  if constexpr (sizeof(T) == 8)
    return std::bit_cast<double>(uint64_t{0xC0874385446D71C3});
  else
    return std::bit_cast<float>(0xC2CE8ED0u);
}

template <typename T>
struct Vector;  // the vector functions of a type
template <>
struct Vector<double> {
  static constexpr auto Ln = _pexdLn_26, Tan = _pexdTan_26, Sqrt = _pexdSqrt_26, Exp = _pexdExp_26;
  static constexpr auto Powx = _pexdPowx_26;
  static constexpr auto Uniform = _quodRngUniform, Gaussian = _quodRngGaussian;
};
template <>
struct Vector<float> {
  static constexpr auto Ln = _pexsLn_21, Tan = _pexsTan_21, Sqrt = _pexsSqrt_21, Exp = _pexsExp_21;
  static constexpr auto Powx = _pexsPowx_21;
  static constexpr auto Uniform = _quosRngUniform, Gaussian = _quosRngGaussian;
};

// What f gives for one element, and its status.
template <typename T>
struct Element {
  T value;
  int32_t status;
  T OrIfSpecial(T replacement) const { return status != 0 ? replacement : value; }
  T OrAtPole(T replacement) const { return status == 2 ? replacement : value; }
};

template <typename T, class F, class... More>
Element<T> Eval(F f, T x, More... more) {
  const uint32_t mode = _pexSetMode(PEX_ERRMODE_IGNORE);
  const int32_t before = _pexClearErrStatus();
  T r;
  f(1, &x, more..., &r);
  const int32_t status = _pexSetErrStatus(before);
  _pexSetMode(mode);
  return {r, status};
}

template <typename T>
T Larger(T a, T x) {
  return a > x ? a : x;
}

// One number from one uniform (from two by Laplace, from a normal number by lognormal).
template <typename T>
T FromUniform(const Distribution& d, T u, T u2) {
  using F = Vector<T>;
  const T a = T(d.a), beta = T(d.beta), replacement = LnSmallest<T>();
  const auto ln = Eval<T>(F::Ln, u);
  switch (d.name) {
    case Name::kExponential:
      return Larger(a, a - ln.OrIfSpecial(replacement) * beta);
    case Name::kLaplace: {
      const T log = ln.OrIfSpecial(replacement);
      return u2 <= T(0.5) ? log * -beta + a : log * beta + a;
    }
    case Name::kWeibull: {
      const T x = T(0) - ln.OrAtPole(replacement);
      const T power = T(1) / T(d.first);
      return Larger(a, Eval<T>(F::Powx, x, power).OrAtPole(replacement) * beta + a);
    }
    case Name::kCauchy:
      return Eval<T>(F::Tan, u).value * beta + a;
    case Name::kRayleigh: {
      const T x = T(0) - ln.OrAtPole(replacement);
      return Larger(a, Eval<T>(F::Sqrt, x).OrAtPole(replacement) * beta + a);
    }
    case Name::kGumbel: {
      const T e = Larger(T(0), T(0) - ln.OrIfSpecial(replacement) * T(1));
      return Eval<T>(F::Ln, e).OrIfSpecial(replacement) * beta + a;
    }
    case Name::kLognormal:
      return Larger(a, Eval<T>(F::Exp, u).value * beta + a);
  }
  return 0;
}

// n numbers from a stream.
template <typename T>
std::vector<T> Reference(const Distribution& d, StreamState* stream, int32_t n) {
  const auto size = static_cast<size_t>(n);
  std::vector<T> u(2 * size), r;
  const T end = T(1.5707963267948966);
  if (d.name == Name::kLaplace) {
    Vector<T>::Uniform(0, stream, 2 * n, u.data(), 0, 1);
  } else if (d.name == Name::kLognormal) {
    Vector<T>::Gaussian(1, stream, n, u.data(), T(d.first), T(d.sigma));
  } else if (d.name == Name::kCauchy) {
    Vector<T>::Uniform(0, stream, n, u.data(), -end, end);
  } else {
    Vector<T>::Uniform(0, stream, n, u.data(), 0, 1);
  }
  const size_t step = d.name == Name::kLaplace ? 2 : 1;
  for (size_t i = 0; i < size; ++i) {
    r.push_back(FromUniform(d, u[step * i], u[step * i + step - 1]));
  }
  return r;
}

// Ordinary parameters, and such as a caller's check would refuse, all of single precision: so they
// are converted without rounding.
inline const std::vector<Distribution>& All() {
  constexpr double kInfinity = __builtin_inf();
  static const std::vector<Distribution> all = [=] {
    std::vector<Distribution> list;
    for (const Name name :
         {Name::kExponential, Name::kLaplace, Name::kCauchy, Name::kRayleigh, Name::kGumbel}) {
      const double parameters[][2] = {{0, 1},    {-1.5, 2.25}, {1e7, 1e-7},  {0, 1e-36},
                                      {-0.0, 0}, {3, -2},      {1e38, 1e38}, {kInfinity, 1}};
      for (const auto& [a, beta] : parameters) list.push_back({name, a, beta});
    }
    for (const double alpha :
         {1.0, 2.5, 2.0, 0.5, 0.03, 1e-30, 0.0, 200.0, 1e30, -0.7, kInfinity}) {
      list.push_back({Name::kWeibull, -0.5, 3, alpha});
    }
    list.push_back({Name::kWeibull, 0, 1e-36, 2.5});
    for (const auto& [mean, sigma] : {std::pair{0.0, 1.0}, {-3.0, 0.01}, {5.0, 300.0}}) {
      list.push_back({Name::kLognormal, 0, 1, mean, sigma});
      list.push_back({Name::kLognormal, -7, -2, mean, sigma});
    }
    for (Distribution& d : list) {
      for (double* p : {&d.a, &d.beta, &d.first, &d.sigma}) *p = static_cast<float>(*p);
    }
    return list;
  }();
  return all;
}

}  // namespace continuous

#endif  // TESTS_CONTINUOUS_DISTRIBUTIONS_H_
