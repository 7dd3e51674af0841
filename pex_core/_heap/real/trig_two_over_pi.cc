// 2/pi for the vector reduction of large arguments, spread from its bits at compile time.
#include "pex_core/_heap/real/trig_two_over_pi.h"

#include <cstdint>

#include "pex_core/_heap/real/trig_tables.h"

namespace pex {
namespace {

// Bits number `first` to `first` + 52 of 2/pi as an integer; there are none before number 1.
constexpr uint64_t Bits53(int first) {
  uint64_t bits = 0;
  for (int i = first; i < first + 53; ++i) {
    const int word = (i - 1) / 64, shift = 63 - (i - 1) % 64;
    bits = bits << 1 | (i < 1 ? 0 : kTwoOverPiBits[word] >> shift & 1);
  }
  return bits;
}

constexpr TwoOverPi Spread() {
  TwoOverPi table{};
  int g = 0;
  for (auto& row : table.row) {
    double last = 0x1p-52;  // the weight of a piece's last bit
    for (int i = 0; i < 4; ++i) {
      row[i] = static_cast<double>(Bits53(g + 53 * i)) * last;
      last *= 0x1p-53;
    }
    ++g;
  }
  return table;
}

}  // namespace

constinit const TwoOverPi kTwoOverPi = Spread();

}  // namespace pex
