// Reproducible random numbers (SplitMix64), the same on every machine.
#ifndef TESTS_SUPPORT_RANDOM_H_
#define TESTS_SUPPORT_RANDOM_H_

#include <cstdint>

class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  uint64_t Bits() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
  }
  // From 0 to n - 1, n below 2^32.
  uint32_t Below(uint32_t n) { return static_cast<uint32_t>((Bits() >> 32) * n >> 32); }
  // On [0, 1).
  double Unit() { return static_cast<double>(Bits() >> 11) * 0x1p-53; }

 private:
  uint64_t state_;
};

#endif  // TESTS_SUPPORT_RANDOM_H_
