// The tables of the inverse error functions in single precision: polynomials for each octave of q,
// of f(q) = erfcinv(q) or of that times sqrt(2),
//   LA: f(q)              q < 1/2
//       f(q)/(1 - q) - 1  q >= 1/2
//   EP: f(q)/(1 - q).
#ifndef PEX_CORE__HEAP_REAL_ERFINV_SINGLE_TABLE_H_
#define PEX_CORE__HEAP_REAL_ERFINV_SINGLE_TABLE_H_

#include <bit>
#include <cstddef>
#include <cstdint>

namespace pex {

inline constexpr float kErfInvSingleLeast = 0x1p-31f;

// Row j serves 2^(j - 31) <= q < 2^(j - 30), row 31 only q = 1: coefficients 0 to kDegree - 1, and
// zeros up to kColumns, in t = (mantissa of q) - 3/2; that of t^kDegree is the same in all rows.
// Within 2^-25 and 2^-11.3.
template <bool kLA_>
struct ErfInvOctaveRows {
  static constexpr bool kLA = kLA_;
  static constexpr size_t kDegree = kLA ? 8 : 3, kColumns = kLA ? 8 : 4;
  float leading;
  alignas(64) float rows[32][kColumns];
  alignas(64) float columns[kColumns][32];
  // Of the upper 16 rows the lower eight, and the bits in which the upper eight differ from them.
  alignas(64) uint32_t upper[kColumns][16];
};

template <size_t kColumns>
struct ErfInvOctaveData {
  float rows[32][kColumns];
};

template <bool kLA>
constexpr auto ErfInvOctaveTable(float leading,
                                 const ErfInvOctaveData<ErfInvOctaveRows<kLA>::kColumns>& data) {
  ErfInvOctaveRows<kLA> table = {};
  table.leading = leading;
  for (size_t j = 0; j < 32; ++j) {
    for (size_t i = 0; i < table.kColumns; ++i) {
      table.rows[j][i] = table.columns[i][j] = data.rows[j][i];
    }
  }
  for (size_t i = 0; i < table.kColumns; ++i) {
    for (size_t j = 0; j < 8; ++j) {
      const auto low = std::bit_cast<uint32_t>(data.rows[16 + j][i]);
      table.upper[i][j] = low;
      table.upper[i][8 + j] = low ^ std::bit_cast<uint32_t>(data.rows[24 + j][i]);
    }
  }
  return table;
}

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ERFINV_SINGLE_TABLE_H_
