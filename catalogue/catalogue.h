// The catalogue in code: functions and their entries, built from catalogue/*.def.
#ifndef CATALOGUE_CATALOGUE_H_
#define CATALOGUE_CATALOGUE_H_

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "pexquo/quo.h"

namespace pex {

// Of complex functions, ToReal has a complex argument and a real result, FromReal the reverse; all
// operands of the others are complex.
enum class Shape { Unary, Binary, UnaryScalar, UnaryTwo, ToReal, FromReal };
constexpr int ArgumentCount(Shape s) {
  return s == Shape::Binary || s == Shape::UnaryScalar ? 2 : 1;
}
constexpr int ResultCount(Shape s) { return s == Shape::UnaryTwo ? 2 : 1; }

enum class Tier { Plain, EP, LA, HA };
constexpr std::string_view TierName(Tier t) {
  constexpr std::string_view kNames[] = {"plain", "ep", "la", "ha"};
  return kNames[static_cast<int>(t)];
}

// What an error in ulp refers to: each part of a result, or the larger part of both, for complex
// results whose parts may cancel.
enum class Measure { Parts, Modulus };

// By tier: of sums that the EP tier rounds as they come.
inline constexpr std::array<Measure, 4> kEPByModulus = {Measure::Parts, Measure::Modulus,
                                                        Measure::Parts, Measure::Parts};

// Of functions that are one sum of products whatever the tier.
inline constexpr std::array<Measure, 4> kByModulus = {Measure::Modulus, Measure::Modulus,
                                                      Measure::Modulus, Measure::Modulus};

struct Range {
  double lo = 0, hi = 0;
};

inline constexpr int kMaxMarks = 12;

// What a function promises in one precision. The ranges of a complex argument are those of both its
// parts.
struct Precision {
  double ha = 0;       // largest error of the HA entry, ulp
  double la = 0;       // largest error of the LA entry, ulp
  double ep_bits = 0;  // least number of correct bits of the EP entry
  Range typical{};     // first argument
  Range typical2{};    // second argument, where there is one; {0, 0}: as the first
  std::array<double, kMaxMarks> marks{};  // points to visit closely
};

struct Function {
  std::string_view name;  // "Exp"
  Shape shape{};
  bool tiered = false;
  std::string_view group{};
  std::string_view formula{};         // with a, b for the arguments
  std::string_view notes{};           // domain, special values, status codes
  Precision d{}, s{};                 // of complex functions: double (z) and single (c)
  std::array<Measure, 4> measures{};  // by tier
};

// One exported entry.
struct Entry {
  std::string_view symbol;  // "_pexdExp_HA"
  const Function* function = nullptr;
  char type = 'd';  // d or s; z or c for complex functions
  Tier tier{};
  const void* address = nullptr;

  bool is_double() const { return type == 'd' || type == 'z'; }
  bool is_complex() const { return type == 'z' || type == 'c'; }
  // Numbers per element.
  int argument_parts() const { return is_complex() && function->shape != Shape::FromReal ? 2 : 1; }
  int result_parts() const { return is_complex() && function->shape != Shape::ToReal ? 2 : 1; }
  Measure measure() const { return function->measures[static_cast<int>(tier)]; }
  const Precision& precision() const { return is_double() ? function->d : function->s; }
  // The bound on the error in ulp; 0.5 where the result is exact or correctly rounded. For EP,
  // 2^(p - bits) with p the precision of the type.
  double ulp_bound() const;

  // The entry's call by its shape; arrays of double or float by `type`. Shapes without a second
  // argument or result ignore it. A UnaryScalar entry takes its second argument from b[0]. Complex
  // arrays hold PexComplex16 or PexComplex8.
  void Call(int32_t n, const void* a, const void* b, void* r, void* r2) const;
};

// Real functions, and apart from them complex ones: names occur in both.
std::span<const Function> Functions();
std::span<const Entry> Entries();
std::span<const Function> ComplexFunctions();
std::span<const Entry> ComplexEntries();
// Null where there is none. Names compare without regard to case; the type of an entry says whether
// the function is a real or a complex one.
const Function* FindFunction(std::string_view name);
const Function* FindComplexFunction(std::string_view name);
const Entry* FindEntry(std::string_view name, char type, Tier tier);
const Entry* FindEntry(std::string_view symbol);

}  // namespace pex

namespace quo {

// One generator of the registry.
struct Generator {
  std::string_view name;  // "MCG31M1"
  int32_t id = 0;         // new-scheme identifier of member 0
  int32_t members = 1;
  std::string_view what;

  // Points as even as can be: its numbers are not like random ones, and its seed is a dimension.
  constexpr bool is_quasi_random() const { return IsQuasiRandom(id); }
  static constexpr bool IsQuasiRandom(int32_t identifier) {
    return identifier == QUO_BRNG_SOBOL || identifier == QUO_BRNG_NIEDERR;
  }
};

// What a parameter has to be. All are finite.
// Count: an integer from 0 to 2^31 - 1.
enum class Condition { Finite, Positive, Probability, Count };

struct Parameter {
  std::string_view name;  // "beta"; empty beyond the last one
  double standard = 0;    // where it is not given
  Condition condition{};
  std::string_view what{};
};

inline constexpr int kMaxParameters = 4;

// One distribution.
struct Distribution {
  std::string_view name;  // "weibull"
  std::string_view what;
  std::array<Parameter, kMaxParameters> parameters{};  // in the order of the calls
  std::string_view methods{};   // names in the order of their values; empty: there is one only
  std::string_view result{};    // how a number comes from uniforms u on [0, 1)
  std::string_view uniforms{};  // generator outputs for one number
  // The density (of integers: the probability) at x, as gnuplot reads it, and what the
  // documentation draws of it: parameters other than the standard ones as "alpha=2", and the range
  // of x.
  std::string_view density{};
  std::string_view shown{};
  double lo = 0, hi = 1;

  int parameter_count() const;
  // The values of the parameters that the documentation and the benchmarks show.
  std::array<double, kMaxParameters> ShownParameters() const;
  // The value of a method's name (compared without regard to case); -1 where there is no such one.
  int FindMethod(std::string_view method) const;
};

// One exported entry that draws a distribution of scalars.
struct Sampler {
  std::string_view symbol;  // "_quodRngWeibull"
  const Distribution* distribution = nullptr;
  char type = 'd';  // d, s, i, or w: words of the generator
  // n results at r: double, float, int32_t, or the generator's words. The parameters are converted
  // to the entry's own types. Integers are below b, and all 1 for p = 1, also where the entry
  // rounds a uniform to its bound.
  int32_t (*draw)(uint32_t method, StreamState* stream, int32_t n, void* r,
                  const double* parameters) = nullptr;
};

std::span<const Generator> Generators();
std::span<const Distribution> Distributions();
std::span<const Sampler> Samplers();
// Null where there is none. Names compare without regard to case.
const Distribution* FindDistribution(std::string_view name);
const Sampler* FindSampler(const Distribution& distribution, char type);

}  // namespace quo

#endif  // CATALOGUE_CATALOGUE_H_
