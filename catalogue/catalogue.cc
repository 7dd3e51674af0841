#include "catalogue/catalogue.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <vector>

#include "pexquo/pex.h"
#include "quo_kernel/discrete/_kernel/ends.h"

namespace pex {
namespace {

#define PEX_TIERED(Name, shape_, ...) \
  Function{.name = #Name, .shape = Shape::shape_, .tiered = true, __VA_ARGS__},
#define PEX_PLAIN(Name, shape_, ...) \
  Function{.name = #Name, .shape = Shape::shape_, .tiered = false, __VA_ARGS__},
constexpr Function kFunctions[] = {
#include "catalogue/functions.def"
};
#undef PEX_TIERED
#undef PEX_PLAIN

#define PEX_COMPLEX_TIERED(Name, shape_, ...) \
  Function{.name = #Name, .shape = Shape::shape_, .tiered = true, __VA_ARGS__},
#define PEX_COMPLEX_PLAIN(Name, shape_, ...) \
  Function{.name = #Name, .shape = Shape::shape_, .tiered = false, __VA_ARGS__},
constexpr Function kComplexFunctions[] = {
#include "catalogue/complex_functions.def"
};
#undef PEX_COMPLEX_TIERED
#undef PEX_COMPLEX_PLAIN

struct Exported {
  std::string_view name;
  char type;
  Tier tier;
  std::string_view symbol;
  const void* address;
};

#define PEX_ONE(Name, type, tier, symbol) \
  Exported{#Name, type, Tier::tier, #symbol, reinterpret_cast<const void*>(&symbol)},
#define PEX_TIERED(Name, ...)              \
  PEX_ONE(Name, 'd', EP, _pexd##Name##_26) \
  PEX_ONE(Name, 'd', LA, _pexd##Name##_50) \
  PEX_ONE(Name, 'd', HA, _pexd##Name##_HA) \
  PEX_ONE(Name, 's', EP, _pexs##Name##_11) \
  PEX_ONE(Name, 's', LA, _pexs##Name##_21) \
  PEX_ONE(Name, 's', HA, _pexs##Name##_HA)
#define PEX_PLAIN(Name, ...)             \
  PEX_ONE(Name, 'd', Plain, _pexd##Name) \
  PEX_ONE(Name, 's', Plain, _pexs##Name)

#define PEX_COMPLEX_TIERED(Name, ...)      \
  PEX_ONE(Name, 'z', EP, _pexz##Name##_26) \
  PEX_ONE(Name, 'z', LA, _pexz##Name##_50) \
  PEX_ONE(Name, 'z', HA, _pexz##Name##_HA) \
  PEX_ONE(Name, 'c', EP, _pexc##Name##_11) \
  PEX_ONE(Name, 'c', LA, _pexc##Name##_21) \
  PEX_ONE(Name, 'c', HA, _pexc##Name##_HA)
#define PEX_COMPLEX_PLAIN(Name, ...)     \
  PEX_ONE(Name, 'z', Plain, _pexz##Name) \
  PEX_ONE(Name, 'c', Plain, _pexc##Name)

const Exported kExported[] = {
#include "catalogue/functions.def"
};
const Exported kComplexExported[] = {
#include "catalogue/complex_functions.def"
};

// The entries of functions in the order of their rows.
std::vector<Entry> MakeEntries(const Function* function, std::span<const Exported> exported) {
  std::vector<Entry> entries;
  for (const Exported& e : exported) {
    while (function->name != e.name) ++function;
    entries.push_back({e.symbol, function, e.type, e.tier, e.address});
  }
  return entries;
}

bool SameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

// Null where there is none.
template <typename T, typename Predicate>
const T* FindIf(std::span<const T> all, Predicate predicate) {
  const auto found = std::ranges::find_if(all, predicate);
  return found == all.end() ? nullptr : &*found;
}

// A is what argument arrays hold, R what result arrays hold.
template <typename A, typename R = A>
void CallAs(const Entry& e, int32_t n, const void* a, const void* b, void* r, void* r2) {
  const auto* x = static_cast<const A*>(a);
  const auto* y = static_cast<const A*>(b);
  auto* z = static_cast<R*>(r);
  auto* w = static_cast<R*>(r2);
  void* const address = const_cast<void*>(e.address);
  switch (e.function->shape) {
    case Shape::Unary:
    case Shape::ToReal:
    case Shape::FromReal:
      reinterpret_cast<int (*)(int32_t, const A*, R*)>(address)(n, x, z);
      return;
    case Shape::Binary:
      reinterpret_cast<int (*)(int32_t, const A*, const A*, R*)>(address)(n, x, y, z);
      return;
    case Shape::UnaryScalar:
      reinterpret_cast<int (*)(int32_t, const A*, A, R*)>(address)(n, x, *y, z);
      return;
    case Shape::UnaryTwo:
      reinterpret_cast<int (*)(int32_t, const A*, R*, R*)>(address)(n, x, z, w);
      return;
  }
}

template <typename Real, typename Complex>
void CallComplex(const Entry& e, int32_t n, const void* a, const void* b, void* r, void* r2) {
  if (e.argument_parts() == 1) {
    CallAs<Real, Complex>(e, n, a, b, r, r2);
  } else if (e.result_parts() == 1) {
    CallAs<Complex, Real>(e, n, a, b, r, r2);
  } else {
    CallAs<Complex>(e, n, a, b, r, r2);
  }
}

}  // namespace

double Entry::ulp_bound() const {
  switch (tier) {
    case Tier::HA:
      return precision().ha;
    case Tier::LA:
      return precision().la;
    case Tier::EP:
      return std::ldexp(1.0, (is_double() ? 53 : 24) - static_cast<int>(precision().ep_bits));
    case Tier::Plain:
      break;
  }
  return 0.5;
}

void Entry::Call(int32_t n, const void* a, const void* b, void* r, void* r2) const {
  switch (type) {
    case 'd':
      return CallAs<double>(*this, n, a, b, r, r2);
    case 's':
      return CallAs<float>(*this, n, a, b, r, r2);
    case 'z':
      return CallComplex<double, PexComplex16>(*this, n, a, b, r, r2);
    case 'c':
      return CallComplex<float, PexComplex8>(*this, n, a, b, r, r2);
  }
}

std::span<const Function> Functions() { return kFunctions; }

std::span<const Entry> Entries() {
  static const std::vector<Entry> entries = MakeEntries(kFunctions, kExported);
  return entries;
}

std::span<const Function> ComplexFunctions() { return kComplexFunctions; }

std::span<const Entry> ComplexEntries() {
  static const std::vector<Entry> entries = MakeEntries(kComplexFunctions, kComplexExported);
  return entries;
}

const Function* FindFunction(std::string_view name) {
  return FindIf(Functions(), [&](const Function& f) { return SameName(f.name, name); });
}

const Function* FindComplexFunction(std::string_view name) {
  return FindIf(ComplexFunctions(), [&](const Function& f) { return SameName(f.name, name); });
}

const Entry* FindEntry(std::string_view name, char type, Tier tier) {
  return FindIf(type == 'z' || type == 'c' ? ComplexEntries() : Entries(), [&](const Entry& e) {
    return e.type == type && e.tier == tier && SameName(e.function->name, name);
  });
}

const Entry* FindEntry(std::string_view symbol) {
  const auto has_symbol = [&](const Entry& e) { return e.symbol == symbol; };
  const Entry* const real = FindIf(Entries(), has_symbol);
  return real != nullptr ? real : FindIf(ComplexEntries(), has_symbol);
}

}  // namespace pex

namespace quo {
namespace {

#define QUO_GENERATOR(name, id, members, what) {#name, id, members, what},
constexpr Generator kGenerators[] = {
#include "catalogue/generators.def"
};

#define QUO_DISTRIBUTION(...) Distribution{__VA_ARGS__},
#define QUO_SAMPLER(distribution, type, entry)
constexpr Distribution kDistributions[] = {
#include "catalogue/distributions.def"
};
#undef QUO_DISTRIBUTION
#undef QUO_SAMPLER

// An entry's call with its parameters as doubles.
template <auto kEntry>
struct Call;
template <typename T, typename... P, int32_t (*kEntry)(uint32_t, StreamState*, int32_t, T*, P...)>
struct Call<kEntry> {
  static int32_t Draw(uint32_t method, StreamState* stream, int32_t n, void* r,
                      const double* parameters) {
    return [&]<size_t... I>(std::index_sequence<I...>) {
      return kEntry(method, stream, n, static_cast<T*>(r), static_cast<P>(parameters[I])...);
    }
    (std::index_sequence_for<P...>());
  }
};
// What the program and the Python module promise.
template <>
struct Call<_quoiRngUniform> : Call<DrawIntegers> {};
template <>
struct Call<_quoiRngBernoulli> : Call<DrawBernoulli> {};

constexpr const Distribution* Named(std::string_view name) {
  for (const Distribution& d : kDistributions) {
    if (d.name == name) return &d;
  }
  return nullptr;
}

#define QUO_DISTRIBUTION(...)
#define QUO_SAMPLER(distribution, type, entry) \
  Sampler{#entry, Named(#distribution), type, Call<entry>::Draw},
const Sampler kSamplers[] = {
#include "catalogue/distributions.def"
};

}  // namespace

int Distribution::parameter_count() const {
  int count = 0;
  while (count < kMaxParameters && !parameters[static_cast<size_t>(count)].name.empty()) ++count;
  return count;
}

std::array<double, kMaxParameters> Distribution::ShownParameters() const {
  std::array<double, kMaxParameters> values{};
  const size_t equals = shown.find('=');
  for (size_t i = 0; i < kMaxParameters; ++i) {
    values[i] = parameters[i].standard;
    if (equals == std::string_view::npos || parameters[i].name != shown.substr(0, equals)) continue;
    std::from_chars(shown.data() + equals + 1, shown.data() + shown.size(), values[i]);
  }
  return values;
}

int Distribution::FindMethod(std::string_view method) const {
  int value = 0;
  for (std::string_view rest = methods; !rest.empty(); ++value) {
    const std::string_view name = rest.substr(0, rest.find(' '));
    if (pex::SameName(name, method)) return value;
    rest.remove_prefix(std::min(rest.size(), name.size() + 1));
  }
  return -1;
}

std::span<const Generator> Generators() { return kGenerators; }
std::span<const Distribution> Distributions() { return kDistributions; }
std::span<const Sampler> Samplers() { return kSamplers; }

const Distribution* FindDistribution(std::string_view name) {
  for (const Distribution& d : kDistributions) {
    if (pex::SameName(d.name, name)) return &d;
  }
  return nullptr;
}

const Sampler* FindSampler(const Distribution& distribution, char type) {
  for (const Sampler& s : kSamplers) {
    if (s.distribution == &distribution && s.type == type) return &s;
  }
  return nullptr;
}

}  // namespace quo
