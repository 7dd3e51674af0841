// Quotients of doubles by estimates of the inverse are correctly rounded.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "tests/kernel/quotient_kernels.h"
#include "tests/support/levels.h"
#include "tests/support/random.h"

namespace {

constexpr size_t kCount = 4096;  // of a call's elements

void Check(const std::vector<double>& a, const std::vector<double>& b, const double* estimates) {
  std::vector<double> r = a;
  ASSERT_TRUE(RunQuotients(r.size(), r.data(), b.data(), estimates));
  for (size_t i = 0; i < r.size(); ++i) {
    ASSERT_EQ(r[i], a[i] / b[i]) << std::hexfloat << a[i] << " / " << b[i] << " from "
                                 << (estimates != nullptr ? estimates[i] : 0);
  }
}

// From estimates with all errors up to the greatest, and with 16 bits, as processors give them.
void CheckFromEstimates(Random& random, const std::vector<double>& a,
                        const std::vector<double>& b) {
  std::vector<double> y(b.size());
  for (const double error : {-1.0, 1.0, 0.0, 2 * random.Unit() - 1, random.Unit() * 0x1p-8}) {
    for (size_t i = 0; i < b.size(); ++i) y[i] = (1 + error * 0x1p-14) / b[i];
    Check(a, b, y.data());
    for (double& x : y) {
      const int scale = 15 - std::ilogb(x);
      x = std::ldexp(std::floor(std::ldexp(x, scale)), -scale);
    }
    Check(a, b, y.data());
  }
}

// The one a for which a/b and the middle of two numbers differ by `distance` units of 2^-54/b, b an
// odd integer of 53 bits: a 2^54 = b middle + distance with an odd middle of 54 bits. 0: none.
uint64_t HardNumerator(uint64_t b, int64_t distance) {
  uint64_t inverse = b;  // modulo 8; twice the bits by each step
  for (int step = 0; step < 5; ++step) inverse *= 2 - b * inverse;
  const uint64_t middle = -static_cast<uint64_t>(distance) * inverse % (uint64_t{1} << 54);
  if (middle >> 53 == 0) return 0;
  const auto product = static_cast<unsigned __int128>(b) * middle + static_cast<__int128>(distance);
  return static_cast<uint64_t>(product >> 54);
}

// Collects quotients to be checked many at a time.
class Quotients {
 public:
  explicit Quotients(uint64_t seed) : random_(seed) {}
  void Add(double a, double b) {
    a_.push_back(a);
    b_.push_back(b);
    if (a_.size() == kCount) Flush();
  }
  void Flush() {
    if (a_.empty()) return;
    a_.resize(kCount, 1.0);
    b_.resize(kCount, 1.0);
    CheckFromEstimates(random_, a_, b_);
    a_.clear();
    b_.clear();
  }
  Random& Numbers() { return random_; }

 private:
  Random random_;
  std::vector<double> a_, b_;
};

TEST(Quotients, OfAnyNumbers) {
  SKIP_WITHOUT(kLevels[2]);
  Random random(22);
  const auto number = [&random](int octaves) {
    const double x = std::ldexp(1 + random.Unit(), static_cast<int>(random.Below(octaves)));
    return std::ldexp(random.Below(2) ? x : -x, -octaves / 2);
  };
  for (int round = 0; round < 200; ++round) {
    std::vector<double> a(kCount), b(kCount);
    for (double& x : a) x = random.Below(50) ? number(400) : 0.0;
    for (double& x : b) x = number(200);
    Check(a, b, nullptr);
    CheckFromEstimates(random, a, b);
    if (HasFatalFailure()) return;
  }
}

TEST(Quotients, NextToTheMiddleOfTwoNumbers) {
  SKIP_WITHOUT(kLevels[2]);
  Quotients quotients(23);
  for (int round = 0; round < 200000; ++round) {
    const uint64_t b = uint64_t{1} << 52 | quotients.Numbers().Bits() >> 12 | 1;
    for (const int64_t distance : {-5, -3, -1, 1, 3, 5}) {
      const uint64_t a = HardNumerator(b, distance);
      if (a != 0) quotients.Add(static_cast<double>(a), static_cast<double>(b));
    }
    if (HasFatalFailure()) return;
  }
  quotients.Flush();
}

// Divisors just below a power of two, whose inverses lie next to the middle of two numbers, and
// numbers next to powers of two.
TEST(Quotients, ByDivisorsJustBelowAPowerOfTwo) {
  SKIP_WITHOUT(kLevels[2]);
  constexpr uint64_t kTwo = uint64_t{1} << 53;
  Quotients quotients(24);
  for (uint64_t less = 1; less < uint64_t{1} << 28;
       less += less < 1 << 22 ? 2 : 2 * quotients.Numbers().Below(1 << 8)) {
    for (const int64_t distance : {-1, 1}) {
      const uint64_t a = HardNumerator(kTwo - less, distance);
      if (a != 0) quotients.Add(static_cast<double>(a), static_cast<double>(kTwo - less));
    }
    if (HasFatalFailure()) return;
  }
  for (uint64_t a = kTwo - 40; a <= kTwo + 80; a += a < kTwo ? 1 : 2) {
    for (uint64_t b = kTwo - 40; b <= kTwo + 80; b += b < kTwo ? 1 : 2) {
      quotients.Add(static_cast<double>(a), static_cast<double>(b));
    }
  }
  quotients.Flush();
}

}  // namespace
