// The positions of the set bits of a byte, for masked copies without an expand instruction.
#ifndef PEX_CORE_PACK_POSITIONS_H_
#define PEX_CORE_PACK_POSITIONS_H_

#include <array>
#include <cstdint>

namespace pex {

// Byte j of entry b is the position of the j-th set bit of b; the bytes above are 0.
inline constexpr std::array<uint64_t, 256> kPositions = [] {
  std::array<uint64_t, 256> table{};
  for (unsigned b = 0; b < 256; ++b) {
    int j = 0;
    for (uint64_t position = 0; position < 8; ++position) {
      if (b >> position & 1) table[b] |= position << (8 * j++);
    }
  }
  return table;
}();

}  // namespace pex

#endif  // PEX_CORE_PACK_POSITIONS_H_
