// The Sobol and Niederreiter sequences by their definitions, a bit or a coordinate at a time.
#ifndef TESTS_QUASI_PLAIN_H_
#define TESTS_QUASI_PLAIN_H_

#include <array>
#include <bit>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "pexquo/quo.h"
#include "quo_sub_kernel/sobol/sobol_table.h"

namespace quasi {

using Columns = std::array<uint32_t, 32>;
using Words = std::vector<uint32_t>;

inline int Degree(uint64_t p) { return std::bit_width(p) - 1; }

// m_k = 2 a_1 m_(k-1) + 4 a_2 m_(k-2) + ... + 2^e m_(k-e) + m_(k-e), sums without carries.
inline Columns SobolColumns(uint32_t polynomial, std::vector<uint64_t> m) {
  const auto e = static_cast<size_t>(Degree(polynomial));
  for (size_t k = e; k < 32; ++k) {
    m.push_back(e == 0 ? 1 : m[k - e]);
    for (size_t j = 1; j <= e; ++j) {
      if (polynomial >> (e - j) & 1) m[k] ^= m[k - j] << j;
    }
  }
  Columns v;
  for (size_t k = 0; k < 32; ++k) v[k] = static_cast<uint32_t>(m[k] << (31 - k));
  return v;
}

inline Columns SobolColumns(size_t coordinate) {
  if (coordinate == 0) return SobolColumns(1, {});
  const quo::SobolCoordinate& c = quo::kSobolTable[coordinate - 1];
  return SobolColumns(c.polynomial, {c.m, c.m + Degree(c.polynomial)});
}

// The remainder of a and, where asked for, the quotient.
inline uint64_t Divide(uint64_t a, uint64_t p, uint64_t* quotient = nullptr) {
  uint64_t q = 0;
  for (; Degree(a) >= Degree(p); a ^= p << (Degree(a) - Degree(p))) {
    q |= uint64_t{1} << (Degree(a) - Degree(p));
  }
  if (quotient != nullptr) *quotient = q;
  return a;
}

inline bool IsIrreducible(uint32_t p) {
  for (uint32_t d = 2; 2 * Degree(d) <= Degree(p); ++d) {
    if (Divide(p, d) == 0) return false;
  }
  return p > 1;
}

// The digits of y/p, the first one highest.
inline uint32_t Digits(uint64_t y, uint64_t p) {
  uint32_t digits = 0;
  for (int k = 0; k < 32; ++k) {
    y <<= 1;
    const bool one = Degree(y) == Degree(p);
    if (one) y ^= p;
    digits = digits << 1 | one;
  }
  return digits;
}

// Of the numerators with partial quotients of degree 1 alone that with the greatest fraction.
inline uint64_t Numerator(uint64_t p) {
  uint64_t best = 0;
  for (uint64_t y = p == 2 || p == 3 ? 1 : 2; Degree(y) < Degree(p); ++y) {
    uint64_t a = p, b = y, quotient = 2;
    while (b != 0 && Degree(quotient) == 1) {
      const uint64_t rest = Divide(a, b, &quotient);
      a = b;
      b = rest;
    }
    const bool flat = a == 1 && Degree(quotient) == 1;
    if (flat && (best == 0 || Digits(y, p) > Digits(best, p))) best = y;
  }
  return best;
}

inline uint64_t Product(uint64_t a, uint64_t b) {
  uint64_t product = 0;
  for (; b != 0; b >>= 1, a <<= 1) product ^= b & 1 ? a : 0;
  return product;
}

// Row Q e + u holds the digits of x^u y / p^(Q+1).
inline Columns NiederrColumns(uint64_t p, uint64_t y) {
  Columns v{};
  uint64_t power = 1;
  const int e = Degree(p);
  for (int row = 0; row < 32; ++row) {
    if (row % e == 0) power = Product(power, p);
    const uint32_t digits = Digits(Divide(y << (row % e), power), power);
    for (int c = 0; c < 32; ++c) {
      v[static_cast<size_t>(c)] |= (digits >> (31 - c) & 1) << (31 - row);
    }
  }
  return v;
}

inline Columns NiederrColumns(size_t coordinate) {
  static const std::vector<Columns> all = [] {
    std::vector<Columns> columns;
    for (uint32_t p = 2; columns.size() < 318; ++p) {
      if (IsIrreducible(p)) columns.push_back(NiederrColumns(p, Numerator(p)));
    }
    return columns;
  }();
  return all[coordinate];
}

// A generator under test.
struct Kind {
  const char* name;
  int32_t id;
  uint32_t dimensions;
  uint32_t key;  // of its chunk
  Columns (*columns)(size_t coordinate);
};
inline const Kind kKinds[] = {{"Sobol", QUO_BRNG_SOBOL, 40, 9, SobolColumns},
                              {"Niederr", QUO_BRNG_NIEDERR, 318, 10, NiederrColumns}};
inline void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

// The outputs of some coordinates, from any place.
class Plain {
 public:
  explicit Plain(std::vector<Columns> columns) : columns_(std::move(columns)) {}
  Plain(const Kind& kind, uint32_t dimension) {
    for (size_t i = 0; i < dimension; ++i) columns_.push_back(kind.columns(i));
  }
  // Coordinate `i` of point `index`.
  uint32_t Coordinate(uint32_t index, size_t i) const {
    const uint32_t gray = index ^ index >> 1;
    uint32_t x = 0;
    for (size_t c = 0; c < 32; ++c) x ^= gray >> c & 1 ? columns_[i][c] : 0;
    return x;
  }
  // Point 1 comes first, and again after point 2^32 - 1.
  uint32_t Next() {
    const uint32_t x = Coordinate(index_, place_);
    if (++place_ == columns_.size()) {
      place_ = 0;
      index_ = index_ == 0xFFFFFFFF ? 1 : index_ + 1;
    }
    return x;
  }
  Words Take(size_t n) {
    Words r(n);
    for (uint32_t& w : r) w = Next();
    return r;
  }
  void Skip(uint64_t count) {
    __extension__ typedef unsigned __int128 Wide;
    const Wide d = columns_.size();
    const Wide at = ((index_ - 1) * d + place_ + count) % (d * 0xFFFFFFFF);
    index_ = static_cast<uint32_t>(at / d) + 1;
    place_ = static_cast<size_t>(at % d);
  }

 private:
  std::vector<Columns> columns_;
  uint32_t index_ = 1;
  size_t place_ = 0;
};

// A stream that deletes itself.
struct Owned {
  StreamState* p = nullptr;
  int32_t status;
  Owned(int32_t id, const Words& seeds)
      : status(__quoNewStreamEx(&p, id, static_cast<int32_t>(seeds.size()), seeds.data())) {}
  ~Owned() { __quoDeleteStream(&p); }
  Owned(const Owned&) = delete;
  operator StreamState*() const { return p; }
  Words Take(size_t n) const {
    Words r(n);
    BrngProperties record;
    __quoGetBrngProperties(p->id, &record);
    record.iBRng(p, static_cast<int32_t>(n), r.data());
    return r;
  }
  // All that a file would keep.
  std::string Bytes() const {
    BrngProperties record;
    __quoGetBrngProperties(p->id, &record);
    std::string bytes(reinterpret_cast<const char*>(p + 1),
                      static_cast<size_t>(record.StateSize) - sizeof(*p));
    for (const StreamChunk* c = p->chunks; c != nullptr; c = c->next) {
      bytes +=
          std::to_string(c->key) + std::string(static_cast<const char*>(c->data), size_t{c->size});
    }
    return bytes;
  }
};

}  // namespace quasi

#endif  // TESTS_QUASI_PLAIN_H_
