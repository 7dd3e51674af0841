// Blocks of candidates of counts for rejection (rejection.h), some of which are decided on apart:
// what their generators share.
#ifndef QUO_KERNEL__KERNEL_CANDIDATES_H_
#define QUO_KERNEL__KERNEL_CANDIDATES_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quo {

inline constexpr int32_t kCandidates = 512;  // at most in a block
inline constexpr int32_t kPad = 8;           // lanes of the widest vector of doubles

// n rounded up to whole vectors, and an array filled up to that.
constexpr int32_t Whole(int32_t n, int32_t pad = kPad) { return (n + pad - 1) / pad * pad; }
inline void FillUp(int32_t n, double* x, double filling, int32_t pad = kPad) {
  std::fill(x + n, x + Whole(n, pad), filling);
}

// A buffer of a number for each candidate aside, and room for whole vectors behind.
struct alignas(64) PerCandidate {
  double x[kCandidates + kPad];
  operator double*() { return x; }
};

// The counts of a block of candidates, -1 for those that are rejected.
class Counts {
 public:
  int32_t* data() { return counts_; }

  // Puts what was decided on the candidates of some indices, whole numbers, in place.
  void Insert(int32_t n, const double* indices, const double* counts) {
    for (int32_t i = 0; i < n; ++i) {
      counts_[static_cast<int32_t>(indices[i])] = static_cast<int32_t>(counts[i]);
    }
  }

  // Stores the accepted of m candidates in order at r, which may stand at any address, and returns
  // how many there are. When none of thousands was accepted, which no sound generator and constants
  // bring about, the candidates become 0: a call ends even so.
  int32_t Accepted(int32_t m, int32_t* r) {
    constexpr int32_t kHopeless = 1 << 14;
    int32_t accepted = 0, in_order[kCandidates];
    for (int32_t i = 0; i < m; ++i) {
      in_order[accepted] = counts_[i];
      accepted += counts_[i] >= 0;
    }
    fruitless_ = accepted > 0 ? 0 : fruitless_ + m;
    if (fruitless_ > kHopeless) {
      fruitless_ = kHopeless;
      accepted = m;
      std::fill_n(in_order, m, 0);
    }
    std::memcpy(static_cast<void*>(r), in_order, static_cast<size_t>(accepted) * sizeof(int32_t));
    return accepted;
  }

 private:
  alignas(64) int32_t counts_[kCandidates];
  int32_t fruitless_ = 0;
};

}  // namespace quo

#endif  // QUO_KERNEL__KERNEL_CANDIDATES_H_
