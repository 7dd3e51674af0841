// Modular powers: the multipliers of leapfrogged and skipped streams.
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
