// Sobol: digital sequences of up to 40 coordinates (I. M. Sobol', USSR Comput. Math. Math. Phys. 7
// (1967) 86-112; P. Bratley, B. L. Fox, ACM TOMS 14 (1988) 88-100), coordinate i of the recurrence
// of a primitive polynomial of degree e_i. The first has the identity as its matrix. Every matrix
// is regular and triangular, so that each coordinate is a (0, 1)-sequence; s coordinates are a
// (t, s)-sequence with t the sum of e_i - 1 over the coordinates behind the first.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "quo_sub_kernel/sobol/sobol.cc"
#include "hwy/foreach_target.h"  // compiles this file once per vector level
//
#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/digital-inl.h"
#include "quo_sub_kernel/_math/gf2.h"
#include "quo_sub_kernel/_math/params.h"
#include "quo_sub_kernel/sobol/sobol.h"
#include "quo_sub_kernel/sobol/sobol_table.h"

HWY_BEFORE_NAMESPACE();
namespace quo::HWY_NAMESPACE {

QUO_DIGITAL_BODIES(Sobol)

}  // namespace quo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quo {
namespace {

// The column of an odd m below 2^(c + 1).
constexpr uint32_t Column(uint32_t m, int c) { return m << (kDigits - 1 - c); }

// v_k = a_1 v_(k-1) + ... + a_e v_(k-e) + v_(k-e) 2^-e, where a_j is the coefficient of x^(e-j),
// from m_1 .. m_e.
template <typename M>
void SobolColumns(uint32_t polynomial, const M* m, uint32_t* v) {
  const int e = gf2::Degree(polynomial);
  if (e == 0) {
    for (int c = 0; c < kDigits; ++c) v[c] = Column(1, c);
    return;
  }
  for (int c = 0; c < e; ++c) v[c] = Column(m[c], c);
  for (int c = e; c < kDigits; ++c) {
    v[c] = v[c - e] >> e;
    for (int k = 0; k < e; ++k) v[c] ^= polynomial >> k & 1 ? v[c - e + k] : 0;
  }
}

// A user's coordinate at *at: 0 and 32 columns, or a polynomial and its m.
struct UserCoordinate {
  uint32_t polynomial;
  const uint32_t* numbers;
  uint32_t count;  // of the numbers
};

UserCoordinate Next(const uint32_t* words) {
  const uint32_t count = words[0] == 0 ? kDigits : static_cast<uint32_t>(gf2::Degree(words[0]));
  return {words[0], words + 1, count};
}

bool IsSound(const UserCoordinate& u) {
  const bool columns = u.polynomial == 0;
  if (!columns && u.polynomial != 1 && !gf2::IsPrimitive(u.polynomial)) return false;
  for (uint32_t c = 0; c < u.count; ++c) {
    // The lowest bit of column c is bit 31 - c.
    const uint32_t low = columns ? kDigits - 1 - c : 0;
    if (static_cast<uint32_t>(std::countr_zero(u.numbers[c])) != low) return false;
    if (!columns && u.numbers[c] >> c >> 1 != 0) return false;
  }
  return true;
}

// The sets of `dimension` coordinates, n words in all, none with the polynomial of another.
bool IsSoundSet(uint32_t dimension, size_t n, const uint32_t* words) {
  uint32_t polynomials[kSobolShape.dimensions];
  for (uint32_t i = 0; i < dimension; ++i) {
    if (n == 0) return false;
    const UserCoordinate u = Next(words);
    if (n - 1 < u.count || !IsSound(u)) return false;
    const auto* const end = polynomials + i;
    if (u.polynomial != 0 && std::find(polynomials, polynomials + i, u.polynomial) != end) {
      return false;
    }
    polynomials[i] = u.polynomial;
    n -= 1 + u.count;
    words += 1 + u.count;
  }
  return n == 0;
}

void SetUserCoordinates(DigitalState& s, const uint32_t* words) {
  for (uint32_t i = 0; i < s.dimension; ++i) {
    const UserCoordinate u = Next(words);
    uint32_t v[kDigits];
    if (u.polynomial != 0) SobolColumns(u.polynomial, u.numbers, v);
    SetCoordinate(s, i, u.polynomial == 0 ? u.numbers : v);
    words += 1 + u.count;
  }
}

void SetCoordinates(DigitalState& s) {
  for (uint32_t i = 0; i < s.dimension; ++i) {
    uint32_t v[kDigits];
    SobolColumns(i == 0 ? 1 : kSobolTable[i - 1].polynomial, kSobolTable[i == 0 ? 0 : i - 1].m, v);
    SetCoordinate(s, i, v);
  }
}

int32_t Seed(StreamState* stream, int32_t n, const uint32_t* params) {
  const uint32_t dimension = SeededDimension(kSobolShape, n, params);
  const size_t words = n < 2 ? 0 : static_cast<size_t>(n);
  if (words != 0 && !IsSoundSet(dimension, words - 1, params + 1)) return QUO_BAD_ARGUMENT;
  const int32_t status = KeepSeeds(stream, kSobolShape.key, words, params);
  if (status != QUO_OK) return status;
  DigitalState& s = *DigitalOf(stream);
  BeginDigital(kSobolShape, s, dimension);
  if (words != 0) {
    SetUserCoordinates(s, params + 1);
  } else {
    SetCoordinates(s);
  }
  SeekDigital(s, 1, 0);
  return QUO_OK;
}

}  // namespace

extern "C" QUO_API int32_t __quoBRngSobolInitStream(int32_t method, StreamState* stream, int32_t n,
                                                    const uint32_t* params) {
  if (method == QUO_INIT_STANDARD) return Seed(stream, n, params);
  return MoveDigital(kSobolShape, method, *DigitalOf(stream), n, params);
}

QUO_EXPORT_DIGITAL(Sobol, kSobolShape)

}  // namespace quo
#endif
