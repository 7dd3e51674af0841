// State and constants of MRG32K3A.
#ifndef QUO_SUB_KERNEL_MRG32K3A_MRG32K3A_H_
#define QUO_SUB_KERNEL_MRG32K3A_MRG32K3A_H_

#include <cstddef>
#include <cstdint>

namespace quo {

// Behind the stream's head. Both components oldest word first.
struct StateMRG32K3A {
  uint32_t x[3];
  uint32_t y[3];
};

// w(n) = (plus w(n-3+kPlus) - minus w(n-3)) mod m.
struct ComponentMRG {
  uint32_t m, plus, minus;
  size_t plus_at;   // the word of the state that `plus` multiplies; `minus` the oldest
  uint64_t bias;    // a multiple of m from `minus` times any 32-bit word up
  uint32_t row[3];  // coefficients of the newest, the middle and the oldest word

  constexpr uint32_t Next(uint32_t oldest, uint32_t middle, uint32_t newest) const {
    const uint32_t other = plus_at == 1 ? middle : newest;
    return static_cast<uint32_t>((uint64_t{plus} * other + bias - uint64_t{minus} * oldest) % m);
  }
};

inline constexpr uint32_t kM1 = 4294967087;              // 2^32 - 209
inline constexpr uint32_t kM2 = 4294944443;              // 2^32 - 22853
inline constexpr double kInvM1 = 0x1.000000d10000bp-32;  // 1/m1
inline constexpr ComponentMRG kX = {
    kM1, 1403580, 810728, 1, (810728 + 1) * uint64_t{kM1}, {0, 1403580, kM1 - 810728}};
inline constexpr ComponentMRG kY = {
    kM2, 527612, 1370589, 2, (1370589 + 8) * uint64_t{kM2}, {527612, 0, kM2 - 1370589}};
static_assert(kX.bias >= uint64_t{kX.minus} * UINT32_MAX &&
              kY.bias >= uint64_t{kY.minus} * UINT32_MAX);

// What takes a component's three words to those of lanes, lane i being i kSteps steps ahead: word k
// of lane i is the sum over j of (high[k][j][i] 2^16 + low[k][j][i]) w[j] mod m. The halves are
// below 2^15 + 1 in size.
inline constexpr size_t kLanesMRG = 32;
struct LanesMRG {
  double high[3][3][kLanesMRG];
  double low[3][3][kLanesMRG];
};

template <size_t kSteps>
constexpr LanesMRG MakeLanesMRG(const ComponentMRG& c) {
  LanesMRG lanes{};
  for (size_t j = 0; j < 3; ++j) {
    uint32_t w[3] = {j == 0, j == 1, j == 2};
    for (size_t n = 0; n < kLanesMRG * kSteps; ++n) {
      for (size_t k = 0; n % kSteps == 0 && k < 3; ++k) {
        const int64_t residue = w[k] > c.m / 2 ? int64_t{w[k]} - c.m : int64_t{w[k]};
        const int64_t low = (residue + 0x80008000) % 0x10000 - 0x8000;
        lanes.low[k][j][n / kSteps] = static_cast<double>(low);
        lanes.high[k][j][n / kSteps] = static_cast<double>((residue - low) / 0x10000);
      }
      const uint32_t next = c.Next(w[0], w[1], w[2]);
      w[0] = w[1];
      w[1] = w[2];
      w[2] = next;
    }
  }
  return lanes;
}
template <size_t kSteps>
alignas(64) inline constexpr LanesMRG kLanesX = MakeLanesMRG<kSteps>(kX);
template <size_t kSteps>
alignas(64) inline constexpr LanesMRG kLanesY = MakeLanesMRG<kSteps>(kY);

}  // namespace quo

#endif  // QUO_SUB_KERNEL_MRG32K3A_MRG32K3A_H_
