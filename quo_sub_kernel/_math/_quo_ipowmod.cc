// Modular powers: the multipliers of leapfrogged and skipped streams.
#include "quo_sub_kernel/_math/powmod.h"

#include <bit>

#include "pexquo/quo.h"
#include "quo_sub_kernel/_math/modular.h"

namespace {

// Square and multiply over the bits of e from the lowest.
template <typename T, class Mul>
T Power(T base, uint64_t e, Mul mul) {
  T power = 1;
  for (; e != 0; e >>= 1) {
    if (e & 1) power = mul(power, base);
    base = mul(base, base);
  }
  return power;
}

// The powers of a companion matrix are polynomials in it, taken modulo its characteristic one, t^3
// - row[0] t^2 - row[1] t - row[2]: three coefficients stand for nine, lowest first.
class Polynomial3 {
 public:
  constexpr Polynomial3(const uint32_t* row, uint32_t m) : row_(row), m_(m), p_{1 % m, 0, 0} {}

  void Square() {
    const uint64_t a = p_[0], b = p_[1], c = p_[2];
    // Coefficients 0 to 4; then t^4 and t^3 are replaced.
    uint64_t q[5] = {a * a % m_, 2 * (a * b % m_), 2 * (a * c % m_) + b * b % m_, 2 * (b * c % m_),
                     c * c % m_};
    for (int k = 4; k >= 3; --k) {
      q[k] %= m_;
      for (int j = 0; j < 3; ++j) q[k - 1 - j] += q[k] * row_[j] % m_;
    }
    for (int k = 0; k < 3; ++k) p_[k] = static_cast<uint32_t>(q[k] % m_);
  }
  void TimesT() {
    const uint64_t c = p_[2];
    p_[2] = static_cast<uint32_t>((p_[1] + c * row_[0] % m_) % m_);
    p_[1] = static_cast<uint32_t>((p_[0] + c * row_[1] % m_) % m_);
    p_[0] = static_cast<uint32_t>(c * row_[2] % m_);
  }
  // The oldest word of the polynomial's value at the matrix times w.
  uint32_t Oldest(const uint32_t* w) const {
    uint64_t sum = 0;
    for (int k = 0; k < 3; ++k) sum += uint64_t{p_[k]} * w[k] % m_;
    return static_cast<uint32_t>(sum % m_);
  }

 private:
  const uint32_t* row_;
  uint64_t m_;
  uint32_t p_[3];
};

}  // namespace

// A base of 2^31 or more is first taken modulo 2^31 - 1, as the product of two such would not fold.
extern "C" uint32_t __quoiPowMod2P31M1(uint32_t base, uint64_t e) {
  return Power(base % quo::kM31, e, quo::MulMod2P31M1);
}

extern "C" uint64_t __quoiPowMod2P59(uint64_t base, uint64_t e) {
  return Power(base, e, quo::MulMod2P59);
}

// The power 0 modulo 1 is 1 by the rule that the exponent 0 gives 1.
extern "C" uint32_t __quoiPowMod(uint32_t base, uint64_t e, uint32_t m) {
  return Power(base, e, [m](uint32_t x, uint32_t y) { return quo::MulMod(x, y, m); });
}

extern "C" void __quoiVect3PowMod(uint32_t w[3], const uint32_t row[3], uint64_t e, uint32_t m) {
  Polynomial3 power(row, m);
  for (int bit = std::bit_width(e) - 1; bit >= 0; --bit) {
    power.Square();
    if (e >> bit & 1) power.TimesT();
  }
  uint32_t moved[3];
  for (uint32_t& word : moved) {
    word = power.Oldest(w);
    power.TimesT();
  }
  for (int k = 0; k < 3; ++k) w[k] = moved[k];
}
