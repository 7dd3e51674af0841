#include "tests/promises/arguments.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "tests/support/random.h"

uint64_t Numbers::bits(size_t i) const {
  uint64_t bits = 0;
  std::memcpy(&bits, at(i), width_);
  return bits;
}

double Numbers::value(size_t i) const {
  if (is_double()) return std::bit_cast<double>(bits(i));
  return std::bit_cast<float>(static_cast<uint32_t>(bits(i)));
}

void Numbers::set_bits(size_t i, uint64_t bits) { std::memcpy(at(i), &bits, width_); }

void Numbers::set(size_t i, double value) {
  set_bits(i, is_double() ? std::bit_cast<uint64_t>(value)
                          : std::bit_cast<uint32_t>(static_cast<float>(value)));
}

Numbers Numbers::part(size_t from, size_t count) const {
  Numbers n;
  n.width_ = width_;
  n.bytes_.assign(at(from), at(from + count));
  return n;
}

namespace {

struct Format {
  int fraction, exponent;  // bits
  uint64_t sign() const { return uint64_t{1} << (fraction + exponent); }
  uint64_t infinity() const { return ((uint64_t{1} << exponent) - 1) << fraction; }
  uint64_t quiet() const { return uint64_t{1} << (fraction - 1); }
  uint64_t one() const { return ((uint64_t{1} << (exponent - 1)) - 1) << fraction; }
};

Format FormatOf(bool is_double) { return is_double ? Format{52, 11} : Format{23, 8}; }

// Bit patterns that kernels trip over, both signs.
std::vector<uint64_t> Specials(bool is_double) {
  const Format f = FormatOf(is_double);
  const uint64_t ulp = uint64_t{1} << f.fraction;
  std::vector<uint64_t> list = {
      0,  // zero
      1,  // subnormals
      2,
      ulp / 2,
      ulp / 3,
      ulp - 1,
      ulp,  // smallest normal numbers
      ulp + 1,
      f.infinity() - 1,  // largest
      f.infinity(),
      f.infinity() | f.quiet(),  // NaNs
      f.infinity() | f.quiet() | 0x123,
      f.infinity() | 1,  // signalling
      f.infinity() | (f.quiet() >> 1),
      f.one(),
      f.one() - 1,
      f.one() + 1,
      f.one() + ulp,  // 2, 1/2, 3/2, 3, 4
      f.one() - ulp,
      f.one() + ulp / 2,
      f.one() + ulp + ulp / 2,
      f.one() + 2 * ulp,
      f.one() - 26 * ulp,  // small ones around powers of the precision
      f.one() - (f.fraction + 1ull) * ulp,
      f.one() - (f.fraction + 2ull) * ulp,
      f.one() + f.fraction * ulp,  // large ones: integers only
      f.one() + (f.fraction - 1ull) * ulp + 1,
      f.one() + 31 * ulp,
      f.one() + 63 * ulp,
  };
  const size_t n = list.size();
  for (size_t i = 0; i < n; ++i) list.push_back(list[i] | f.sign());
  return list;
}

uint64_t RandomPattern(Random& random, bool is_double) {
  return is_double ? random.Bits() : random.Bits() >> 32;
}

// Any sign and fraction; the exponent within `most` binades of one.
uint64_t Moderate(Random& random, bool is_double, uint32_t most) {
  const Format f = FormatOf(is_double);
  const uint64_t fraction = random.Bits() & ((uint64_t{1} << f.fraction) - 1);
  const uint64_t exponent = (f.one() >> f.fraction) + random.Below(2 * most + 1) - most;
  return (random.Bits() & f.sign()) | exponent << f.fraction | fraction;
}

double Within(Random& random, pex::Range range) {
  return range.lo + (range.hi - range.lo) * random.Unit();
}

Numbers FromPatterns(bool is_double, const std::vector<uint64_t>& patterns) {
  Numbers n(is_double, patterns.size());
  for (size_t i = 0; i < patterns.size(); ++i) n.set_bits(i, patterns[i]);
  return n;
}

pex::Range TypicalSecond(const pex::Precision& p) {
  return p.typical2.lo == 0 && p.typical2.hi == 0 ? p.typical : p.typical2;
}

// The values of a one-argument entry, and the first arguments of the others.
std::vector<uint64_t> FirstArguments(const pex::Entry& entry, Random& random, size_t count) {
  const bool is_double = entry.is_double();
  std::vector<uint64_t> list = Specials(is_double);
  Numbers one(is_double, 1);
  const auto add_value = [&](double value) {
    one.set(0, value);
    list.push_back(one.bits(0));
  };
  for (const double mark : entry.precision().marks) {
    if (mark == 0) continue;  // unused, or among the special values
    add_value(mark);
    const uint64_t centre = one.bits(0);
    for (uint64_t k = 1; k <= 20; ++k) {
      list.push_back(centre + k);
      list.push_back(centre - k);
    }
    for (int k = 0; k < 40; ++k) add_value(mark * (1 + std::ldexp(random.Unit() - 0.5, -k / 2)));
  }
  for (size_t i = 0; i < count; ++i) add_value(Within(random, entry.precision().typical));
  for (size_t i = 0; i < count; ++i) list.push_back(Moderate(random, is_double, 12));
  for (size_t i = 0; i < count; ++i) list.push_back(RandomPattern(random, is_double));
  return list;
}

// Puts a list in a random order, so that special elements sit between ordinary ones.
void Shuffle(Random& random, std::vector<uint64_t>& list) {
  for (size_t i = list.size(); i > 1; --i) {
    std::swap(list[i - 1], list[random.Below(static_cast<uint32_t>(i))]);
  }
}

constexpr double kScalars[] = {0,  -0.0, 1,  -1,      0.5,      -0.5,    1.5,   2,     3,   4,
                               -2, -3,   -4, 1.0 / 3, -1.0 / 3, 2.0 / 3, 17.25, -1e-5, 1e30};

// Of a function with one second argument for all, how many first arguments each of these gets, if
// not more.
constexpr size_t kPerScalar = 700;

// The long run gives it all of them.
bool EveryWithEach() { return std::getenv("PEXQUO_EVERY_WITH_EACH") != nullptr; }

// `count` numbers from `from` on, after the last the first.
Numbers Cyclic(const Numbers& x, size_t from, size_t count) {
  Numbers some(x.is_double(), count);
  for (size_t i = 0; i < count; ++i) some.set_bits(i, x.bits((from + i) % x.size()));
  return some;
}

// Complex numbers of parts from all the kinds of FirstArguments, and all pairs of special values.
std::vector<uint64_t> ComplexArguments(const pex::Entry& entry, Random& random, size_t count) {
  std::vector<uint64_t> re = FirstArguments(entry, random, count / 2);
  std::vector<uint64_t> im = re;
  // Moderate numbers are mostly paired with such, for functions of both parts.
  for (size_t i = 0; i < 2 * count; ++i) {
    re.push_back(Moderate(random, entry.is_double(), 12));
    im.push_back(Moderate(random, entry.is_double(), 12));
  }
  Shuffle(random, im);
  const std::vector<uint64_t> specials = Specials(entry.is_double());
  for (const uint64_t x : specials) {
    for (const uint64_t y : specials) {
      re.push_back(x);
      im.push_back(y);
    }
  }
  std::vector<uint64_t> list;
  std::vector<size_t> order(re.size());
  std::iota(order.begin(), order.end(), size_t{0});
  for (size_t i = order.size(); i > 1; --i) {
    std::swap(order[i - 1], order[random.Below(static_cast<uint32_t>(i))]);
  }
  for (const size_t i : order) {
    list.push_back(re[i]);
    list.push_back(im[i]);
  }
  return list;
}

std::vector<Arguments> ComplexSets(const pex::Entry& entry, Random& random, size_t count) {
  const bool is_double = entry.is_double();
  const auto numbers = [&] {
    return FromPatterns(is_double, ComplexArguments(entry, random, count));
  };
  switch (entry.function->shape) {
    case pex::Shape::Binary: {
      Numbers a = numbers();
      return {{a, numbers(), 2}};
    }
    case pex::Shape::UnaryScalar: {
      std::vector<Arguments> sets;
      const Numbers a = numbers(), b = numbers();
      const size_t all = a.size() / 2;
      const size_t some = EveryWithEach() ? all : std::min(all, std::max(kPerScalar, count));
      // One after the other, so that each is in some of the sets.
      for (size_t i = 0, from = 0; i < 60; ++i, from = (from + some) % all) {
        sets.push_back({Cyclic(a, 2 * from, 2 * some), b.part(2 * i, 2), 2});
      }
      return sets;
    }
    default:
      return {{numbers(), {}, 2}};
  }
}

}  // namespace

bool IsNaN(const Numbers& x, size_t i) { return std::isnan(x.value(i)); }

bool IsSignallingNaN(const Numbers& x, size_t i) {
  const Format f = FormatOf(x.is_double());
  const uint64_t magnitude = x.bits(i) & (f.sign() - 1);
  return magnitude > f.infinity() && !(magnitude & f.quiet());
}

std::vector<Arguments> EveryKind(const pex::Entry& entry, uint64_t seed, size_t random_count) {
  Random random(seed);
  if (entry.argument_parts() == 2) return ComplexSets(entry, random, random_count);
  const bool is_double = entry.is_double();
  std::vector<uint64_t> a = FirstArguments(entry, random, random_count);
  std::vector<Arguments> sets;
  switch (entry.function->shape) {
    case pex::Shape::Unary:
    case pex::Shape::UnaryTwo:
    case pex::Shape::ToReal:
    case pex::Shape::FromReal:
      Shuffle(random, a);
      sets.push_back({FromPatterns(is_double, a), {}});
      break;
    case pex::Shape::Binary: {
      std::vector<uint64_t> b;
      Numbers one(is_double, 1);
      Shuffle(random, a);
      for (size_t i = 0; i < a.size(); ++i) {
        const uint32_t kind = random.Below(3);
        if (kind == 0) {
          one.set(0, Within(random, TypicalSecond(entry.precision())));
          b.push_back(one.bits(0));
        } else {
          b.push_back(kind == 1 ? Moderate(random, is_double, 12)
                                : RandomPattern(random, is_double));
        }
      }
      const std::vector<uint64_t> specials = Specials(is_double);
      for (const uint64_t x : specials) {
        for (const uint64_t y : specials) {
          a.push_back(x);
          b.push_back(y);
        }
      }
      sets.push_back({FromPatterns(is_double, a), FromPatterns(is_double, b)});
      break;
    }
    case pex::Shape::UnaryScalar: {
      std::vector<uint64_t> b = Specials(is_double);
      Numbers one(is_double, 1);
      for (const double value : kScalars) {
        one.set(0, value);
        b.push_back(one.bits(0));
      }
      for (const uint64_t y : b) {
        Shuffle(random, a);
        const size_t count = EveryWithEach() ? a.size() : std::min(a.size(), kPerScalar);
        const std::vector<uint64_t> some(a.begin(), a.begin() + static_cast<ptrdiff_t>(count));
        sets.push_back({FromPatterns(is_double, some), FromPatterns(is_double, {y})});
      }
      break;
    }
  }
  return sets;
}

// The elements after the 7919th first, so that special values meet others.
static Numbers Rotated(const Numbers& x) {
  Numbers rotated = x;
  for (size_t i = 0; i < x.size(); ++i) {
    rotated.set_bits(i, x.bits((i + 2 * 7919) % x.size()));
  }
  return rotated;
}

std::vector<Arguments> DigestSet(const pex::Entry& entry) {
  Random random(20240229);
  const bool is_double = entry.is_double();
  std::vector<uint64_t> a = Specials(is_double);
  const bool is_complex = entry.argument_parts() == 2;
  const auto extend = [&](std::vector<uint64_t>& list, size_t n) {
    for (size_t i = 0; i < n; ++i) {
      list.push_back(i % 4 == 0   ? RandomPattern(random, is_double)
                     : i % 4 == 1 ? Moderate(random, is_double, 30)
                                  : Moderate(random, is_double, 10));
    }
  };
  // Of complex numbers, the parts in turn: after the pairs of special values those of like kinds.
  const auto complex_numbers = [&] {
    std::vector<uint64_t> list;
    for (const uint64_t re : Specials(is_double)) {
      for (const uint64_t im : Specials(is_double)) list.insert(list.end(), {re, im});
    }
    std::vector<uint64_t> re, im;
    extend(re, 20000);
    extend(im, 20000);
    for (size_t i = 0; i < re.size(); ++i) list.insert(list.end(), {re[i], im[i]});
    return FromPatterns(is_double, list);
  };
  if (is_complex && entry.function->shape != pex::Shape::UnaryScalar) {
    Numbers x = complex_numbers(), y;
    if (entry.function->shape == pex::Shape::Binary) y = Rotated(complex_numbers());
    return {{x, y, 2}};
  }
  extend(a, 20000);
  std::vector<uint64_t> b;
  switch (entry.function->shape) {
    case pex::Shape::Unary:
    case pex::Shape::UnaryTwo:
    case pex::Shape::ToReal:
    case pex::Shape::FromReal:
      return {{FromPatterns(is_double, a), {}}};
    case pex::Shape::Binary: {
      std::vector<uint64_t> x, y;
      for (const uint64_t first : Specials(is_double)) {
        for (const uint64_t second : Specials(is_double)) {
          x.push_back(first);
          y.push_back(second);
        }
      }
      extend(x, 20000);
      extend(y, 20000);
      return {{FromPatterns(is_double, x), FromPatterns(is_double, y)}};
    }
    case pex::Shape::UnaryScalar:
      break;
  }
  std::vector<Arguments> sets;
  Numbers one(is_double, 1);
  a.resize(2000);
  for (const double value : kScalars) {
    one.set(0, value);
    if (is_complex) {
      for (const uint64_t im : {uint64_t{0}, one.bits(0)}) {
        sets.push_back({FromPatterns(is_double, a), FromPatterns(is_double, {one.bits(0), im}), 2});
      }
    } else {
      sets.push_back({FromPatterns(is_double, a), one});
    }
  }
  return sets;
}

Arguments Ordinary(const pex::Entry& entry, uint64_t seed, size_t n) {
  Random random(seed);
  const pex::Precision& p = entry.precision();
  const size_t parts = static_cast<size_t>(entry.argument_parts());
  Arguments arguments{Numbers(entry.is_double(), n * parts), {}, parts};
  for (size_t i = 0; i < n * parts; ++i) arguments.a.set(i, Within(random, p.typical));
  if (pex::ArgumentCount(entry.function->shape) == 2) {
    const bool scalar = entry.function->shape == pex::Shape::UnaryScalar;
    arguments.b = Numbers(entry.is_double(), (scalar ? 1 : n) * parts);
    for (size_t i = 0; i < arguments.b.size(); ++i) {
      arguments.b.set(i, Within(random, TypicalSecond(p)));
    }
  }
  return arguments;
}

namespace {

thread_local std::vector<PexErrorContext>* notes = nullptr;

int Note(PexErrorContext* record) {
  PexErrorContext copy = {};  // no stale bytes behind the name
  copy.code = record->code;
  copy.index = record->index;
  copy.arg1 = record->arg1;
  copy.arg2 = record->arg2;
  copy.res1 = record->res1;
  copy.res2 = record->res2;
  copy.func_name_len = record->func_name_len;
  std::memcpy(copy.func_name, record->func_name, static_cast<size_t>(record->func_name_len));
  notes->push_back(copy);
  return 0;
}

// An array of the type with its first element `offset` elements behind a 64-byte boundary.
class Placed {
 public:
  // Room for `capacity` numbers, where that is more than the content.
  Placed(const Numbers& content, size_t offset, size_t capacity = 0) : width_(content.width()) {
    bytes_.resize((std::max(content.size(), capacity) + offset) * width_ + 64);
    const auto address = reinterpret_cast<uintptr_t>(bytes_.data());
    start_ = bytes_.data() + (64 - address % 64) % 64 + offset * width_;
    if (content.size() > 0) std::memcpy(start_, content.at(0), content.size() * width_);
  }
  uint8_t* data() { return start_; }
  Numbers Read(size_t n, bool is_double) const {
    Numbers r(is_double, n);
    if (n > 0) std::memcpy(r.at(0), start_, n * width_);
    return r;
  }

 private:
  size_t width_;
  std::vector<uint8_t> bytes_;
  uint8_t* start_;
};

}  // namespace

Outcome CallEntry(const pex::Entry& entry, const Arguments& arguments, const Control& control,
                  size_t offset, Place place) {
  const auto call = [&](size_t n, const void* a, const void* b, void* r1, void* r2) {
    entry.Call(static_cast<int32_t>(n), a, b, r1, r2);
  };
  return CallInPlaceOf(entry, call, arguments, control, offset, place);
}

Outcome CallInPlaceOf(const pex::Entry& entry, const StandIn& call, const Arguments& arguments,
                      const Control& control, size_t offset, Place place) {
  const size_t n = arguments.size();
  const bool is_double = entry.is_double();
  const size_t results = n * static_cast<size_t>(entry.result_parts());
  Placed a(arguments.a, offset, results), b(arguments.b, offset);
  Placed r1(Numbers(is_double, results), offset), r2(Numbers(is_double, n), offset);
  Placed& first = place == Place::OverA ? a : place == Place::OverB ? b : r1;
  Placed& second = place == Place::SecondOverA ? a : r2;

  Outcome outcome;
  notes = &outcome.records;
  const PexErrorCallBack callback = _pexSetErrorCallBack(Note);
  const uint32_t mode = _pexSetMode(PEX_ERRMODE_CALLBACK);
  _pexClearErrStatus();
  UseControl scope(control);
  call(n, a.data(), b.data(), first.data(), second.data());
  scope.Finish();
  outcome.flags = scope.flags() | scope.x87_flags();
  outcome.status = _pexClearErrStatus();
  _pexSetErrorCallBack(callback);
  _pexSetMode(mode);
  outcome.r1 = first.Read(results, is_double);
  if (pex::ResultCount(entry.function->shape) == 2) outcome.r2 = second.Read(n, is_double);
  if (!scope.kept()) {
    std::fprintf(stderr, "%.*s changed the caller's control words or left registers in use (%s)\n",
                 static_cast<int>(entry.symbol.size()), entry.symbol.data(), control.name);
    outcome.status = INT32_MIN;  // equal to no right outcome
  }
  return outcome;
}

std::string Difference(const Outcome& x, const Outcome& y) {
  char text[160];
  for (size_t i = 0; i < x.r1.size(); ++i) {
    const bool second = x.r1.bits(i) == y.r1.bits(i);
    const Numbers &p = second ? x.r2 : x.r1, &q = second ? y.r2 : y.r1;
    if (p.size() == 0 || p.bits(i) == q.bits(i)) continue;
    std::snprintf(text, sizeof(text), "result %d at %zu: %a (%#llx) for %a (%#llx)", second ? 2 : 1,
                  i, p.value(i), static_cast<unsigned long long>(p.bits(i)), q.value(i),
                  static_cast<unsigned long long>(q.bits(i)));
    return text;
  }
  if (x.status != y.status) {
    std::snprintf(text, sizeof(text), "status %d for %d", x.status, y.status);
    return text;
  }
  for (size_t k = 0; k < std::min(x.records.size(), y.records.size()); ++k) {
    if (std::memcmp(&x.records[k], &y.records[k], sizeof(PexErrorContext)) == 0) continue;
    std::snprintf(text, sizeof(text), "record %zu: code %d at %d for code %d at %d", k,
                  x.records[k].code, x.records[k].index, y.records[k].code, y.records[k].index);
    return text;
  }
  if (x.records.size() != y.records.size()) {
    std::snprintf(text, sizeof(text), "%zu records for %zu", x.records.size(), y.records.size());
    return text;
  }
  return "";
}

bool FollowsTheCaller(const pex::Entry& entry) {
  for (const char* name : {"Add", "Sub", "Mul", "Sqr", "Rint", "NearbyInt"}) {
    if (entry.function->name == name && entry.tier == pex::Tier::Plain) return true;
  }
  return false;
}

Control DecidingControl(const pex::Entry& entry, const Control& control) {
  if (FollowsTheCaller(entry)) return control;
  Control deciding = kDefaultControl;
  const std::string_view name = entry.function->name;
  if (entry.is_complex() && entry.tier == pex::Tier::EP &&
      (name == "Mul" || name == "MulByConj" || name == "Div")) {
    deciding.mxcsr |= control.mxcsr & 0x40;
  }
  return deciding;
}

std::vector<const pex::Entry*> AllEntries() {
  std::vector<const pex::Entry*> all;
  for (const pex::Entry& entry : pex::Entries()) all.push_back(&entry);
  for (const pex::Entry& entry : pex::ComplexEntries()) all.push_back(&entry);
  return all;
}

std::string EntryName(const pex::Entry& entry) { return std::string(entry.symbol.substr(1)); }
