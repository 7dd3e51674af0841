// Writes pex_core/_heap/real/erf_series.h: coefficients of sums of several variables whose largest
// error in the result is least over the rows of the error functions' tables.
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "pex_core/_heap/real/cdfnorm_tables.h"

namespace {

using Real = long double;

constexpr Real kPi = 3.14159265358979323846264338327950288L;

// A number that the terms' sum is to approach; what an error of it weighs in the result; the share
// that the iteration gives it.
template <size_t N>
struct Sample {
  std::array<Real, N> terms;
  Real wanted, weight, share = 1;
};

Real Slope(Real c) { return 2 / std::sqrt(kPi) * std::exp(-c * c); }

// (erf(c + d) - erf(c))/(d Slope(c)) - 1: the sum of (-1)^n H_n(c) d^n/(n + 1)! from n = 1.
Real Series(Real c, Real d) {
  Real before = 1, now = -2 * c * d, factorial = 1, sum = 0;
  for (int n = 1; n < 40; ++n) {
    factorial *= n + 1;
    sum += now / factorial;
    const Real next = -2 * d * (c * now + n * d * before);
    before = now, now = next;
  }
  return sum;
}

// The coefficients by least squares whose weights rise where the error is large (Lawson), and the
// comment of their error.
template <size_t N>
std::array<Real, N> Fit(std::vector<Sample<N>> samples) {
  std::array<Real, N> best = {};
  Real least = INFINITY;
  for (int round = 0; round < 80; ++round) {
    Real a[N][N + 1] = {};
    for (const auto& s : samples) {
      const Real w = s.share * s.weight * s.weight;
      for (size_t i = 0; i < N; ++i) {
        for (size_t j = 0; j < N; ++j) a[i][j] += w * s.terms[i] * s.terms[j];
        a[i][N] += w * s.terms[i] * s.wanted;
      }
    }
    for (size_t i = 0; i < N; ++i) {
      for (size_t k = 0; k < N; ++k) {
        const Real m = a[k][i] / a[i][i];
        for (size_t j = i; j <= N && k != i; ++j) a[k][j] -= m * a[i][j];
      }
    }
    std::array<Real, N> x;
    for (size_t i = 0; i < N; ++i) x[i] = a[i][N] / a[i][i];
    Real most = 0, total = 0;
    std::vector<Real> errors;
    for (const auto& s : samples) {
      Real sum = -s.wanted;
      for (size_t i = 0; i < N; ++i) sum += x[i] * s.terms[i];
      errors.push_back(std::fabs(sum) * s.weight);
      most = std::fmax(most, errors.back());
    }
    if (most < least) least = most, best = x;
    for (size_t i = 0; i < samples.size(); ++i) {
      total += samples[i].share *= errors[i] + most / 1000;
    }
    for (auto& s : samples) s.share *= static_cast<Real>(samples.size()) / total;
  }
  std::printf("in relation to the result an error of 2^%.1f.\n",
              static_cast<double>(std::log2(least)));
  return best;
}

// Points of [-1, 1] that lie closer together at its ends.
constexpr int kPoints = 14;
Real Point(int i) { return std::cos(kPi * (i + 0.5L) / kPoints); }

template <size_t N>
void Write(const char* name, const std::array<Real, N>& x) {
  std::printf("// clang-format off\ninline constexpr double %s[] = {", name);
  for (size_t i = 0; i < N; ++i) {
    std::printf("%s%a",
                i == 0       ? "\n    "
                : i % 4 == 0 ? ",\n    "
                             : ", ",
                static_cast<double>(x[i]));
  }
  std::printf("};\n// clang-format on\n\n");
}

// Of u, y, u y, y^2, u^3 and u^4.
void Erf() {
  std::vector<Sample<6>> samples;
  for (int j = 0; j < 1434; ++j) {
    const Real c = j / 256.0L;
    for (int i = 0; i < kPoints; ++i) {
      const Real d = Point(i) / 512;
      if (c + d < 0) continue;
      const Real u = c * d, y = 2 * u * u - d * d;
      samples.push_back({{u, y, u * y, y * y, u * u * u, u * u * u * u},
                         Series(c, d),
                         std::fabs(Slope(c) * d) / std::erf(c + d)});
    }
  }
  std::printf(
      "// erf(c + d) = erf(c) + s d (1 + g), s the derivative at c and g the sum of these "
      "multiples of u,\n"
      "// y, u y, y^2, u^3 and u^4, u = c d, y = 2 u^2 - d^2, |d| <= 1/512;\n// ");
  const auto x = Fit(samples);
  Write("kErfFine", x);
}

// Of 1, w^2 and v.
void Ratio() {
  std::vector<Sample<3>> samples;
  for (int j = 36; j < pex::kErfcPointCount; j += j < 800 ? 1 : 23) {
    const Real near = std::sqrt(j / static_cast<Real>(pex::kErfcUnit));
    const Real far = std::sqrt((j + 1) / static_cast<Real>(pex::kErfcUnit));
    const Real c = pex::kErfcVertex + (near + far) / 2;
    for (int i = 0; i < kPoints; ++i) {
      const Real d = Point(i) * (far - near) / 2, w = d * (d + 2 * c), v = d * d;
      const Real mean = -std::expm1(-w) / w;
      const Real result = std::erfc(c + d);
      samples.push_back({{1, w * w, v},
                         (Series(c, d) - (mean - 1)) / (mean * v),
                         std::fabs(Slope(c) * d) * mean * v / result});
    }
  }
  std::printf(
      "// (T/F(w) - 1)/v for T, F, w and v of erfc-inl.h and the points of kErfcPoints, as the sum "
      "of\n"
      "// these multiples of 1, w^2 and v; ");
  const auto x = Fit(samples);
  Write("kErfcPointRatio", x);
}

}  // namespace

int main() {
  std::printf(
      "// Generated by gen/erf_series.cc:\n"
      "//   gen_erf_series > pex_core/_heap/real/erf_series.h\n"
      "#ifndef PEX_CORE__HEAP_REAL_ERF_SERIES_H_\n#define PEX_CORE__HEAP_REAL_ERF_SERIES_H_\n\n"
      "namespace pex {\n\n");
  Erf();
  Ratio();
  std::printf("}  // namespace pex\n\n#endif  // PEX_CORE__HEAP_REAL_ERF_SERIES_H_\n");
}
