#include "accuracy/complex.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <stdexcept>

#include "pexquo/pex.h"

namespace pex::accuracy {
namespace {

using Number = std::complex<double>;
using Random = std::mt19937_64;

constexpr long kBits = 240;  // of the exact parts

template <int (*F)(mpc_ptr, mpc_srcptr, mpc_srcptr, mpc_rnd_t)>
int OfTwo(mpc_ptr r, mpc_srcptr a, mpc_srcptr b) {
  return F(r, a, b, MPC_RNDNN);
}

template <int (*F)(mpfr_ptr, mpc_srcptr, mpfr_rnd_t)>
int ToReal(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  return MPC_INEX(F(mpc_realref(r), a, MPFR_RNDN), 0);
}

int ByConj(mpc_ptr r, mpc_srcptr a, mpc_srcptr b) {
  mpc_t conj;
  mpc_init2(conj, kBits);
  mpc_conj(conj, b, MPC_RNDNN);
  const int inexact = mpc_mul(r, a, conj, MPC_RNDNN);
  mpc_clear(conj);
  return inexact;
}

int CIS(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  const int cos = mpfr_cos(mpc_realref(r), mpc_realref(a), MPFR_RNDN);
  return MPC_INEX(cos, mpfr_sin(mpc_imagref(r), mpc_realref(a), MPFR_RNDN));
}

template <int (*F)(mpc_ptr, mpc_srcptr, mpc_rnd_t)>
int OfOne(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  return F(r, a, MPC_RNDNN);
}

// MPC's routines of the next three functions, and of the same turned, take up to twenty times as
// long: they go on until both parts are rounded for sure, tanh for ever where e^x is huge.

// (sinh x cosh x + i sin y cos y)/(sinh^2 x + cos^2 y), of which no sum cancels, to some units of
// 2^-240 of each part; from 100 on +-1 + 2i sin(2y)/e^2|x| to 2^-280.
int Tanh(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  const mpfr_srcptr x = mpc_realref(a), y = mpc_imagref(a);
  if (mpfr_zero_p(x) || mpfr_zero_p(y)) return mpc_tanh(r, a, MPC_RNDNN);
  const mpfr_ptr re = mpc_realref(r), im = mpc_imagref(r);
  const int sign = mpfr_sgn(x);
  Real sine(kBits), cosine(kBits), sinh(kBits), cosh(kBits);
  mpfr_sin_cos(sine, cosine, y, MPFR_RNDN);
  mpfr_mul(im, sine, cosine, MPFR_RNDN);
  if (mpfr_cmpabs_ui(x, 100) < 0) {
    mpfr_sinh_cosh(sinh, cosh, x, MPFR_RNDN);
    mpfr_mul(re, sinh, cosh, MPFR_RNDN);
    mpfr_sqr(sinh, sinh, MPFR_RNDN);
    mpfr_sqr(cosine, cosine, MPFR_RNDN);
    mpfr_add(cosine, cosine, sinh, MPFR_RNDN);
    mpfr_div(re, re, cosine, MPFR_RNDN);
    mpfr_div(im, im, cosine, MPFR_RNDN);
  } else {
    mpfr_mul_si(re, x, -2 * sign, MPFR_RNDN);
    mpfr_exp(re, re, MPFR_RNDN);
    mpfr_mul_2ui(re, re, 2, MPFR_RNDN);
    mpfr_mul(im, im, re, MPFR_RNDN);
    mpfr_set_si(re, sign, MPFR_RNDN);
  }
  return MPC_INEX(sign, mpfr_sgn(im));
}

// With |x| for x: log1p(4x/((1 - x)^2 + y^2))/4 + i atan2(2y, (1 - x)(1 + x) - y^2)/2. The
// difference cancels only where it is small beside 2y.
int Atanh(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  const mpfr_srcptr x = mpc_realref(a), y = mpc_imagref(a);
  if (mpfr_zero_p(x) || mpfr_zero_p(y)) return mpc_atanh(r, a, MPC_RNDNN);
  const mpfr_ptr re = mpc_realref(r), im = mpc_imagref(r);
  const int sign = mpfr_sgn(x);
  Real size(kBits), less(kBits), more(kBits), square(kBits);
  mpfr_abs(size, x, MPFR_RNDN);
  mpfr_ui_sub(less, 1, size, MPFR_RNDN);
  mpfr_add_ui(more, size, 1, MPFR_RNDN);
  mpfr_sqr(square, y, MPFR_RNDN);
  mpfr_mul(more, more, less, MPFR_RNDN);
  mpfr_sub(more, more, square, MPFR_RNDN);
  mpfr_sqr(less, less, MPFR_RNDN);
  mpfr_add(less, less, square, MPFR_RNDN);
  mpfr_div(re, size, less, MPFR_RNDN);
  mpfr_mul_2ui(re, re, 2, MPFR_RNDN);
  mpfr_log1p(re, re, MPFR_RNDN);
  mpfr_mul_si(re, re, sign, MPFR_RNDN);
  mpfr_div_2ui(re, re, 2, MPFR_RNDN);
  mpfr_mul_2ui(im, y, 1, MPFR_RNDN);
  mpfr_atan2(im, im, more, MPFR_RNDN);
  mpfr_div_2ui(im, im, 1, MPFR_RNDN);
  return MPC_INEX(sign, mpfr_sgn(im));
}

// cosh x cos y + i sinh x sin y.
int Cosh(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  const mpfr_srcptr x = mpc_realref(a), y = mpc_imagref(a);
  if (mpfr_zero_p(x) || mpfr_zero_p(y)) return mpc_cosh(r, a, MPC_RNDNN);
  const mpfr_ptr re = mpc_realref(r), im = mpc_imagref(r);
  Real sine(kBits), cosine(kBits);
  mpfr_sinh_cosh(im, re, x, MPFR_RNDN);
  mpfr_sin_cos(sine, cosine, y, MPFR_RNDN);
  mpfr_mul(re, re, cosine, MPFR_RNDN);
  mpfr_mul(im, im, sine, MPFR_RNDN);
  return MPC_INEX(mpfr_sgn(re), mpfr_sgn(im));
}

// f(ia), the result turned back for odd functions.
template <int (*F)(mpc_ptr, mpc_srcptr, mpc_srcptr), bool kOdd>
int Turned(mpc_ptr r, mpc_srcptr a, mpc_srcptr) {
  mpc_t turned;
  mpc_init2(turned, kBits);
  mpc_mul_i(turned, a, 1, MPC_RNDNN);
  const int inexact = F(r, turned, turned);
  mpc_clear(turned);
  if (!kOdd) return inexact;
  mpc_mul_i(r, r, -1, MPC_RNDNN);
  return MPC_INEX(MPC_INEX_IM(inexact), -MPC_INEX_RE(inexact));
}

constexpr ComplexOracle kOracles[] = {
    {"Exp", OfOne<mpc_exp>},
    {"Ln", OfOne<mpc_log>},
    {"Log10", OfOne<mpc_log10>},
    {"Sqrt", OfOne<mpc_sqrt>},
    {"Cosh", Cosh},
    {"Sinh", OfOne<mpc_sinh>},
    {"Tanh", Tanh},
    {"Cos", Turned<Cosh, false>},
    {"Sin", OfOne<mpc_sin>},
    {"Tan", Turned<Tanh, true>},
    {"Acosh", OfOne<mpc_acosh>},
    {"Asinh", OfOne<mpc_asinh>},
    {"Atanh", Atanh},
    {"Acos", OfOne<mpc_acos>},
    {"Asin", OfOne<mpc_asin>},
    {"Atan", Turned<Atanh, true>},
    {"Pow", OfTwo<mpc_pow>},
    {"Powx", OfTwo<mpc_pow>},
    {"Mul", OfTwo<mpc_mul>},
    {"MulByConj", ByConj},
    {"Div", OfTwo<mpc_div>},
    {"Abs", ToReal<mpc_abs>},
    {"Arg", ToReal<mpc_arg>},
    {"CIS", CIS},
};

class Complex {
 public:
  Complex() { mpc_init2(x_, kBits); }
  ~Complex() { mpc_clear(x_); }
  Complex(const Complex&) = delete;
  Complex& operator=(const Complex&) = delete;
  operator mpc_ptr() { return x_; }
  mpfr_ptr part(int i) { return i == 0 ? mpc_realref(x_) : mpc_imagref(x_); }

 private:
  mpc_t x_;
};

double Unit(Random& random) { return static_cast<double>(random() >> 11) * 0x1p-53; }

class Points {
 public:
  Points(const Entry& entry, uint64_t seed) : entry_(entry), random_(seed) {}

  Number Typical(Range range) {
    const auto one = [&] { return Round(range.lo + (range.hi - range.lo) * Unit(random_)); };
    const double re = one();
    return {re, one()};
  }
  // Parts with exponents in [lo, hi).
  Number Magnitudes(int lo, int hi) {
    const double re = Magnitude(lo, hi);
    return {re, Magnitude(lo, hi)};
  }
  // One part 0, or smaller than the other by up to 2^-120.
  Number NearAxis() {
    const double large = Magnitude(-12, 12);
    const double small =
        random_() % 4 == 0 ? 0.0 : Round(std::ldexp(large, -static_cast<int>(random_() % 120)));
    return random_() % 2 ? Number(large, small) : Number(small, large);
  }
  Number NearDiagonal() {
    const double x = Magnitude(-12, 12);
    const double y =
        Round(x * (1 + std::ldexp(Unit(random_) - 0.5, -static_cast<int>(random_() % 54))));
    return {x, random_() % 2 ? y : -y};
  }
  // A second number whose product or quotient with a has a part that nearly cancels.
  Number Cancelling(Number a) {
    const double c = Magnitude(-2, 3);
    const double near = 1 + std::ldexp(Unit(random_) - 0.5, -static_cast<int>(random_() % 54));
    const double x = Round(a.real() * c), y = Round(a.imag() * c * near);
    switch (random_() % 4) {
      case 0:
        return {x, y};
      case 1:
        return {x, -y};
      case 2:
        return {y, x};
      default:
        return {-y, x};
    }
  }
  // An exponent of a whose product with ln a has a small real part, between large ones.
  Number WeightyExponent(Number a) {
    const long double x = std::fabs(a.real()), y = std::fabs(a.imag());
    const long double more = std::max(x, y), less = std::min(x, y);
    const long double log = std::log1p((more - 1) * (more + 1) + less * less) / 2;
    double im = Magnitude(4, entry_.is_double() ? 56 : 26);
    const double most = 0x1p56 * static_cast<double>(std::fabs(log / std::arg(a)));
    if (!(std::fabs(im) < most)) im = Round(im < 0 ? -most : most);
    if (log == 0) return {1, im};
    return {Round(static_cast<double>((im * std::arg(a) + 60 * (Unit(random_) - 0.5)) / log)), im};
  }
  // Close to 1, -1, i or -i, or to the unit circle.
  Number NearUnit() {
    const auto closeness = [&] {
      return -static_cast<int>(random_() % (entry_.is_double() ? 60 : 30));
    };
    const double d = std::ldexp(Unit(random_) - 0.5, closeness()), e = Magnitude(-60, 0);
    const double one = random_() % 2 ? 1 + d : -1 - d;
    const double angle = 6.283185307179586 * Unit(random_);
    switch (random_() % 4) {
      case 0:
        return {Round(one), e};
      case 1:
        return {e, Round(one)};
      case 2: {  // 1 - |d| and sqrt(2 |d|): the circle next to the axes
        const double x = Round(1 - std::fabs(d)), y = Round(std::sqrt(2 * std::fabs(d)));
        return random_() % 2 ? Number(x, y) : Number(y, -x);
      }
      default:
        return {Round((1 + d) * std::cos(angle)), Round((1 + d) * std::sin(angle))};
    }
  }
  // One part, or both, close to a mark of either sign.
  Number NearMark() {
    const auto& marks = entry_.precision().marks;
    const auto one = [&] {
      const double mark = marks[random_() % marks.size()];
      const int closeness = -static_cast<int>(random_() % (entry_.is_double() ? 54 : 25));
      const double x = Round(mark * (1 + std::ldexp(Unit(random_) - 0.5, closeness)));
      return random_() % 2 ? x : -x;
    };
    const double x = one(), y = x == 0 || random_() % 2 ? Magnitude(-12, 12) : one();
    return random_() % 2 ? Number(x, y) : Number(y, x);
  }
  Number AnyPattern() {
    for (;;) {
      const Number x = {Pattern(), Pattern()};
      if (std::isfinite(x.real()) && std::isfinite(x.imag())) return x;
    }
  }

 private:
  // Through memory: GCC 12 leaves the conversions of two neighbours to float and back out.
  double Round(double x) const {
    if (entry_.is_double()) return x;
    const volatile float rounded = static_cast<float>(x);
    return rounded;
  }
  double Magnitude(int lo, int hi) {
    const int exponent = lo + static_cast<int>(random_() % static_cast<uint64_t>(hi - lo));
    const double m = Round(std::ldexp(1 + Unit(random_), exponent));
    return random_() & 1 ? -m : m;
  }
  double Pattern() {
    if (entry_.is_double()) return std::bit_cast<double>(random_());
    return std::bit_cast<float>(static_cast<uint32_t>(random_() >> 32));
  }

  const Entry& entry_;
  Random random_;
};

// The entry's arrays from numbers, and back.
template <typename T>
std::vector<Number> CallAs(const Entry& entry, const std::vector<Number>& a,
                           const std::vector<Number>& b) {
  const auto pack = [](const std::vector<Number>& x, int parts) {
    std::vector<T> packed;
    for (const Number& z : x) {
      packed.push_back(static_cast<T>(z.real()));
      if (parts == 2) packed.push_back(static_cast<T>(z.imag()));
    }
    return packed;
  };
  const std::vector<T> x = pack(a, entry.argument_parts()), y = pack(b, entry.argument_parts());
  const size_t parts = static_cast<size_t>(entry.result_parts());
  std::vector<T> r(a.size() * parts);
  if (entry.function->shape == Shape::UnaryScalar) {
    for (size_t i = 0; i < a.size(); ++i) {
      entry.Call(1, &x[2 * i], &y[2 * i], &r[2 * i], nullptr);
    }
  } else {
    entry.Call(static_cast<int32_t>(a.size()), x.data(), y.data(), r.data(), nullptr);
  }
  std::vector<Number> results(a.size());
  for (size_t i = 0; i < a.size(); ++i) {
    results[i] = {r[i * parts], parts == 2 ? r[i * parts + 1] : T(0)};
  }
  return results;
}

// |got - exact| in units of the last place of the larger part.
double ModulusError(Complex& exact, Number got, const Format& format) {
  long exponent = format.lowest + format.precision;
  for (int part = 0; part < 2; ++part) {
    if (mpfr_regular_p(exact.part(part))) {
      exponent = std::max<long>(exponent, mpfr_get_exp(exact.part(part)));
    }
  }
  if (exponent >= format.highest) {
    return 0;  // next to the largest number or beyond it: a matter of the special values
  }
  double largest = 0;
  Real distance(kBits);
  for (int part = 0; part < 2; ++part) {
    mpfr_sub_d(distance, exact.part(part), part == 0 ? got.real() : got.imag(), MPFR_RNDN);
    mpfr_mul_2si(distance, distance, format.precision - exponent, MPFR_RNDN);
    const double error = std::fabs(mpfr_get_d(distance, MPFR_RNDA));
    largest = error >= largest ? error : std::isnan(error) ? HUGE_VAL : largest;
  }
  return largest;
}

double PartsError(const Entry& entry, Complex& exact, int inexact, Number got,
                  const Format& format) {
  double largest = 0;
  for (int part = 0; part < entry.result_parts(); ++part) {
    const double value = part == 0 ? got.real() : got.imag();
    if (mpfr_zero_p(exact.part(part)) && value == 0) continue;
    const int ternary = part == 0 ? MPC_INEX_RE(inexact) : MPC_INEX_IM(inexact);
    const Error error = ErrorOf(exact.part(part), ternary, value, format);
    largest = std::max(largest, entry.tier == Tier::EP ? error.relative : error.ulp);
  }
  return largest;
}

// The results of the regime are appended to `results`, those of one entry after those of another.
void MeasurePoints(std::span<const Entry* const> entries, const std::string& name,
                   const std::vector<Number>& a, const std::vector<Number>& b,
                   std::vector<std::vector<ComplexRegimeResult>>& results) {
  const Entry& first = *entries[0];
  const ComplexOracle& oracle = ComplexOracleOf(*first.function);
  const Format& format = first.is_double() ? kDouble : kSingle;
  std::vector<std::vector<Number>> got;
  for (size_t e = 0; e < entries.size(); ++e) {
    got.push_back(first.is_double() ? CallAs<double>(*entries[e], a, b)
                                    : CallAs<float>(*entries[e], a, b));
    results[e].push_back({name, a.size(), {}});
  }
  Complex x, y, exact;
  for (size_t i = 0; i < a.size(); ++i) {
    mpc_set_d_d(x, a[i].real(), a[i].imag(), MPC_RNDNN);
    mpc_set_d_d(y, b[i].real(), b[i].imag(), MPC_RNDNN);
    const int inexact = oracle.exact(exact, x, y);
    for (size_t e = 0; e < entries.size(); ++e) {
      ComplexWorst& worst = results[e].back().worst;
      const double error = entries[e]->measure() == Measure::Modulus
                               ? ModulusError(exact, got[e][i], format)
                               : PartsError(*entries[e], exact, inexact, got[e][i], format);
      if (!(error > worst.error)) continue;
      const Number wanted = {mpfr_get_d(exact.part(0), MPFR_RNDN),
                             first.result_parts() == 2 ? mpfr_get_d(exact.part(1), MPFR_RNDN) : 0};
      worst = {error, a[i], b[i], got[e][i], wanted};
    }
  }
}

}  // namespace

const ComplexOracle& ComplexOracleOf(const Function& function) {
  for (const ComplexOracle& oracle : kOracles) {
    if (oracle.function == function.name) return oracle;
  }
  throw std::runtime_error("no oracle for complex " + std::string(function.name));
}

std::vector<std::vector<ComplexRegimeResult>> MeasureComplexTiers(
    std::span<const Entry* const> entries, uint64_t count, uint64_t seed) {
  const Entry& entry = *entries[0];
  for (const Entry* other : entries) {
    if (other->function != entry.function || other->is_double() != entry.is_double() ||
        other->measure() != entry.measure()) {
      throw std::invalid_argument("measured together: " + std::string(entry.symbol) + " and " +
                                  std::string(other->symbol));
    }
  }
  Points points(entry, seed);
  const Range typical = entry.precision().typical;
  const bool is_double = entry.is_double();
  const int least = is_double ? -1022 : -126, most = is_double ? 1023 : 127;
  const bool binary = ArgumentCount(entry.function->shape) == 2;
  const bool is_elementary = entry.function->group == "complex-elementary";
  std::vector<std::vector<ComplexRegimeResult>> results(entries.size());
  const auto measure = [&](const char* name, auto first, auto second) {
    std::vector<Number> a, b;
    while (a.size() < count) {
      const Number x = first(), y = second(x);
      if (binary && y == Number(0)) continue;  // a quotient's special case
      a.push_back(x);
      b.push_back(y);
    }
    MeasurePoints(entries, name, a, b, results);
  };
  const auto alike = [&](const char* name, auto point) {
    measure(name, point, [&](Number) { return point(); });
  };
  alike("typical", [&] { return points.Typical(typical); });
  alike("moderate", [&] { return points.Magnitudes(-12, 12); });
  if (binary && is_elementary) {
    const auto weighty = [&](Number a) { return points.WeightyExponent(a); };
    measure(
        "weighty exponent", [&] { return points.Magnitudes(-12, 12); }, weighty);
    measure(
        "of near a unit", [&] { return points.NearUnit(); }, weighty);
  }
  if (entry.measure() == Measure::Modulus && (binary || !is_elementary)) return results;
  alike("all magnitudes", [&] { return points.Magnitudes(least, most); });
  alike("near an axis", [&] { return points.NearAxis(); });
  alike("near a diagonal", [&] { return points.NearDiagonal(); });
  if (binary) {
    measure(
        "cancelling", [&] { return points.Magnitudes(-12, 12); },
        [&](Number a) { return points.Cancelling(a); });
  }
  if (!binary && is_elementary) {
    alike("near a unit", [&] { return points.NearUnit(); });
    alike("near a mark", [&] { return points.NearMark(); });
  }
  alike("subnormal", [&] { return points.Magnitudes(least - (is_double ? 52 : 23), least + 2); });
  alike("any", [&] { return points.AnyPattern(); });
  return results;
}

std::vector<ComplexRegimeResult> MeasureComplex(const Entry& entry, uint64_t count, uint64_t seed) {
  const Entry* const entries[] = {&entry};
  return MeasureComplexTiers(entries, count, seed)[0];
}

std::string Text(const ComplexRegimeResult& r) {
  char text[400];
  std::snprintf(text, sizeof(text),
                "%-16s %8llu points, %9.6f at (%a, %a), (%a, %a): got (%a, %a), wanted (%a, %a)",
                r.name.c_str(), static_cast<unsigned long long>(r.points), r.worst.error,
                r.worst.a.real(), r.worst.a.imag(), r.worst.b.real(), r.worst.b.imag(),
                r.worst.got.real(), r.worst.got.imag(), r.worst.wanted.real(),
                r.worst.wanted.imag());
  return text;
}

}  // namespace pex::accuracy
