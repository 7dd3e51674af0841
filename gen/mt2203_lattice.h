// Dimensions of equidistribution of the tempered words of a twister with 69 words, and the search
// of its tempering masks.
//
// The words of a full period are k(v)-dimensionally equidistributed to v bits, k(v) being the least
// degree in t, the step from one word to the next, of a linear relation between the first v bits of
// the words. These relations form a lattice over GF(2)[t] (R. Couture and P. L'Ecuyer, Math. Comp.
// 69, 2000), in which a reduced basis (A. K. Lenstra, 1985) has a shortest vector. The basis for
// v + 1 bits comes from that for v bits and one more relation, which expresses the new bit by the
// others.
//
// As in the polynomials, bit 0 of a word is the most significant one.
#ifndef GEN_MT2203_LATTICE_H_
#define GEN_MT2203_LATTICE_H_

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "gen/mt2203_polynomial.h"

namespace quo::mt2203 {

struct Masks {
  uint32_t b, c;
};

// k(1) to k(32).
using Dimensions = std::array<int, 32>;

inline int Defect(int v, int dimension) { return kDegree / v - dimension; }

inline int DefectSum(const Dimensions& k) {
  int sum = 0;
  for (int v = 1; v <= 32; ++v) sum += Defect(v, k[v - 1]);
  return sum;
}

// A vector of polynomials in t: bit j of element i is the coefficient of t^i in coordinate j. The
// last element is not zero; a block of zeros follows it.
template <class T>
class Row {
 public:
  static constexpr int kBlock = 64 / sizeof(T);

  Row() : x_(kBlock) {}
  explicit Row(const Poly& p) : size_(Degree(p) + 1), x_(size_ + kBlock) {
    for (int i = 0; i < size_; ++i) x_[i] = Coefficient(p, i);
  }
  template <class U>
  explicit Row(const Row<U>& r) : size_(r.size()), x_(size_ + kBlock) {
    for (int i = 0; i < size_; ++i) x_[i] = static_cast<T>(r[i]);
  }

  int size() const { return size_; }
  T operator[](int i) const { return x_[i]; }
  // The coordinate that decides between vectors of one degree.
  int Pivot() const { return std::countr_zero(x_[size_ - 1]); }

  // this += t^shift r.
  void Add(const Row& r, int shift = 0) {
    if (size_ < r.size_ + shift) {
      size_ = r.size_ + shift;
      x_.resize(size_ + kBlock);
    }
    AddBlocks(&x_[shift], r.x_.data(), (r.size_ + kBlock - 1) / kBlock);
    Trim();
  }
  // this += coordinate j times 1.
  void AddUnit(int j) {
    size_ = std::max(size_, 1);
    x_[0] ^= static_cast<T>(T{1} << j);
    Trim();
  }

 private:
  typedef uint64_t Block __attribute__((vector_size(64), aligned(1), may_alias));

  static void AddBlocks(T* to, const T* from, int n) {
    Block* p = reinterpret_cast<Block*>(to);
    const Block* q = reinterpret_cast<const Block*>(from);
    for (int i = 0; i < n; ++i) p[i] ^= q[i];
  }
  void Trim() {
    while (size_ > 0 && !x_[size_ - 1]) --size_;
    x_.resize(size_ + kBlock);
  }

  int size_ = 0;
  std::vector<T> x_;
};

// A basis of the relations between some bits, at most one vector to each pivot.
template <class T>
class Lattice {
 public:
  explicit Lattice(const Poly& characteristic) { rows_[0] = Row<T>(characteristic); }
  template <class U>
  explicit Lattice(const Lattice<U>& lattice) {
    for (size_t i = 0; i < lattice.rows_.size(); ++i) rows_[i] = Row<T>(lattice.rows_[i]);
  }

  // Adds a relation that is independent of the others.
  void Insert(Row<T> r) {
    for (;;) {
      Row<T>& row = rows_[r.Pivot()];
      if (r.size() < row.size() || row.size() == 0) std::swap(r, row);
      if (r.size() == 0) return;
      r.Add(row, r.size() - row.size());
    }
  }

  // Shortens r by the vectors whose pivots its leading elements have.
  void Reduce(Row<T>* r) const {
    while (r->size() > 0) {
      const Row<T>& row = rows_[r->Pivot()];
      if (row.size() == 0 || row.size() > r->size()) return;
      r->Add(row, r->size() - row.size());
    }
  }

  int ShortestDegree() const {
    int size = kLimbBits;
    for (const Row<T>& row : rows_) {
      if (row.size() > 0) size = std::min(size, row.size());
    }
    return size - 1;
  }
  int LongestDegree() const {
    int size = 0;
    for (const Row<T>& row : rows_) size = std::max(size, row.size());
    return size - 1;
  }

 private:
  template <class U>
  friend class Lattice;
  std::array<Row<T>, 8 * sizeof(T)> rows_;
};

// Calls add(y[j]) for the terms of bit i of the tempered words. With y = x ^ x >> 12, x being the
// word, they are
//   y[i] + b[i] y[i + 7] + c[i] (y[i + 15] + b[i + 15] y[i + 22]);
// the last step of tempering, which adds bits above, changes nothing between the first v bits.
template <class Element, class Add>
void AddTempered(int i, Masks masks, const std::array<Element, 32>& y, Add add) {
  auto is_set = [](uint32_t mask, int bit) { return mask >> (31 - bit) & 1; };
  add(y[i]);
  if (i + 7 < 32 && is_set(masks.b, i)) add(y[i + 7]);
  if (i + 15 >= 32 || !is_set(masks.c, i)) return;
  add(y[i + 15]);
  if (i + 22 < 32 && is_set(masks.b, i + 15)) add(y[i + 22]);
}

// The first bits of the tempered words of a twister whose characteristic polynomial is irreducible.
template <class T>
class Tempered {
 public:
  // Bit 0 alone, which has the full period.
  Tempered(const Twister& twister, const Modulus& modulus, Masks masks)
      : lattice_(twister.characteristic) {
    std::array<Poly, 32> y = twister.bit;
    for (int j = 12; j < 32; ++j) AddShifted(twister.bit[j - 12], 0, &y[j]);
    Poly first = {}, inverse;
    AddTempered(0, masks, y, [&first](const Poly& term) { AddShifted(term, 0, &first); });
    modulus.Invert(first, &inverse);
    for (int j = 1; j < 32; ++j) {
      y_[j] = Row<T>(modulus.Normalize(modulus.Multiply(y[j], inverse)));
    }
  }
  template <class U>
  explicit Tempered(const Tempered<U>& from) : level_(from.level_), lattice_(from.lattice_) {
    for (int j = 0; j < 32; ++j) y_[j] = Row<T>(from.y_[j]);
  }

  int level() const { return level_; }
  const Lattice<T>& lattice() const { return lattice_; }

  // The lattice with one bit more, by these masks.
  Lattice<T> Extended(Masks masks) const {
    Row<T> r;
    AddTempered(level_, masks, y_, [&r](const Row<T>& term) { r.Add(term); });
    r.AddUnit(level_);
    Lattice<T> lattice = lattice_;
    lattice.Insert(std::move(r));
    return lattice;
  }
  // Adds this bit.
  void Extend(Masks masks) {
    lattice_ = Extended(masks);
    ++level_;
    for (int j = level_; j < 32; ++j) lattice_.Reduce(&y_[j]);
  }

 private:
  template <class U>
  friend class Tempered;
  int level_ = 1;
  Lattice<T> lattice_;
  std::array<Row<T>, 32> y_;  // by the bits of the tempered words
};

// For a twist word whose characteristic polynomial is irreducible.
inline Dimensions ComputeDimensions(uint32_t a, Masks masks) {
  const Twister twister = MakeTwister(a);
  Tempered<uint32_t> tempered(twister, Modulus(twister.characteristic), masks);
  Dimensions k = {kDegree};
  for (int v = 2; v <= 32; ++v) {
    tempered.Extend(masks);
    k[v - 1] = tempered.lattice().ShortestDegree();
  }
  return k;
}

}  // namespace quo::mt2203

#endif  // GEN_MT2203_LATTICE_H_
