// The matrices of Niederreiter sequences, and the polynomials that users bring.
//
// Digits behind the point of a fraction of polynomials stand in a word, the first one lowest. With
// a polynomial of degree e the first 32 + e are made, of which rows of 32 need all but one.
#include <algorithm>
#include <bit>
#include <utility>

#include "quo_sub_kernel/_math/gf2.h"
#include "quo_sub_kernel/niederr/niederr.h"
#include "quo_sub_kernel/niederr/niederr_table.h"

namespace quo {
namespace {

// The digits of f/p from those of f, a fraction below 1: digit n + e is digit n of f less what the
// lower coefficients of p make of digits n .. n + e - 1.
uint64_t Divided(uint64_t f, uint32_t p) {
  const int e = gf2::Degree(p);
  const uint64_t lower = p ^ (uint64_t{1} << e);
  uint64_t digits = 0;
  for (int n = 0; n < kDigits; ++n) {
    const uint64_t digit = (f >> n ^ static_cast<uint64_t>(std::popcount(digits >> n & lower))) & 1;
    digits |= digit << (n + e);
  }
  return digits;
}

// The digits of y/p from the first e.
uint64_t Continued(uint64_t digits, uint32_t p) {
  const int e = gf2::Degree(p);
  const uint64_t lower = p ^ (uint64_t{1} << e);
  for (int n = 0; n < kDigits; ++n) {
    digits |= static_cast<uint64_t>(std::popcount(digits >> n & lower) & 1) << (n + e);
  }
  return digits;
}

// Rows of bits to columns of bits: bit c of row j becomes bit 31 - j of column c. By halves,
// quarters ... of the square.
void Transpose(uint32_t* rows) {
  std::reverse(rows, rows + kDigits);
  uint32_t mask = 0x0000FFFF;
  for (uint32_t j = kDigits / 2; j != 0; j /= 2, mask ^= mask << j) {
    for (uint32_t k = 0; k < kDigits; k = (k + j + 1) & ~j) {
      const uint32_t swap = (rows[k] >> j ^ rows[k + j]) & mask;
      rows[k] ^= swap << j;
      rows[k + j] ^= swap;
    }
  }
}

void NiederrColumns(uint32_t p, uint32_t first_digits, uint32_t* v) {
  const int e = gf2::Degree(p);
  uint64_t digits = Continued(first_digits, p);
  for (int row = 0; row < kDigits; ++row) {
    const int u = row % e;
    if (row != 0 && u == 0) digits = Divided(digits, p);
    v[row] = static_cast<uint32_t>(digits >> u);
  }
  Transpose(v);
}

// The first digits of y/p that the table would have. A fraction has partial quotients of degree 1
// when its digits s_1, s_2 ... meet s_1 = 1 and s_(2i+1) = s_(2i) + s_i (M. Wang, J. L. Massey,
// Eurocrypt 1986); e of these conditions, linear in s_1 .. s_e, make y, and of two solutions the
// greater fraction is taken.
uint32_t FirstDigits(uint32_t p) {
  const int e = gf2::Degree(p);
  // The conditions, bit t the coefficient of s_(t+1), bit 32 the constant.
  uint64_t unknowns[32], rows[32];
  for (int t = 0; t < e; ++t) unknowns[t] = Continued(uint64_t{1} << t, p);
  for (int i = 0; i < e; ++i) {
    rows[i] = i == 0 ? uint64_t{1} << 32 : 0;
    for (int t = 0; t < e; ++t) {
      const uint64_t s = unknowns[t];
      const uint64_t condition = i == 0 ? s : s >> (2 * i) ^ s >> (2 * i - 1) ^ s >> (i - 1);
      rows[i] |= (condition & 1) << t;
    }
  }
  // Last unknowns first, so that a free one is an early digit: it becomes 1.
  int used = 0;
  int pivots[32];
  uint32_t free = (uint32_t{1} << e) - 1;
  for (int t = e - 1; t >= 0; --t) {
    int row = used;
    while (row < e && (rows[row] >> t & 1) == 0) ++row;
    if (row == e) continue;
    std::swap(rows[row], rows[used]);
    for (int other = 0; other < e; ++other) {
      if (other != used && rows[other] >> t & 1) rows[other] ^= rows[used];
    }
    pivots[used++] = t;
    free &= ~(uint32_t{1} << t);
  }
  uint32_t digits = free;
  for (int k = 0; k < used; ++k) {
    const auto bit = static_cast<uint32_t>(std::popcount(rows[k] & (uint64_t{1} << 32 | free)) & 1);
    digits |= bit << pivots[k];
  }
  return digits;
}

bool IsSoundSet(uint32_t dimension, size_t n, const uint32_t* polynomials) {
  if (n != dimension) return false;
  for (size_t i = 0; i < n; ++i) {
    if (!gf2::IsIrreducible(polynomials[i])) return false;
    if (std::find(polynomials, polynomials + i, polynomials[i]) != polynomials + i) return false;
  }
  return true;
}

}  // namespace

int32_t SeedNiederr(StreamState* stream, int32_t n, const uint32_t* params) {
  const uint32_t dimension = SeededDimension(kNiederrShape, n, params);
  const size_t words = n < 2 ? 0 : static_cast<size_t>(n);
  if (words != 0 && !IsSoundSet(dimension, words - 1, params + 1)) return QUO_BAD_ARGUMENT;
  const int32_t status = KeepSeeds(stream, kNiederrShape.key, words, params);
  if (status != QUO_OK) return status;
  DigitalState& s = *DigitalOf(stream);
  BeginDigital(kNiederrShape, s, dimension);
  for (uint32_t i = 0; i < dimension; ++i) {
    uint32_t v[kDigits];
    if (words != 0) {
      NiederrColumns(params[1 + i], FirstDigits(params[1 + i]), v);
    } else {
      NiederrColumns(kNiederrTable[i].polynomial, kNiederrTable[i].digits, v);
    }
    SetCoordinate(s, i, v);
  }
  SeekDigital(s, 1, 0);
  return QUO_OK;
}

}  // namespace quo
