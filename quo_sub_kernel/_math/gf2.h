// Polynomials over GF(2) of degrees up to 31: bit k of a word is the coefficient of x^k.
#ifndef QUO_SUB_KERNEL__MATH_GF2_H_
#define QUO_SUB_KERNEL__MATH_GF2_H_

#include <bit>
#include <cstdint>
#include <utility>

namespace quo::gf2 {

constexpr int Degree(uint64_t p) { return std::bit_width(p) - 1; }

constexpr uint64_t Mod(uint64_t a, uint64_t p) {
  while (Degree(a) >= Degree(p)) a ^= p << (Degree(a) - Degree(p));
  return a;
}

constexpr uint64_t MulMod(uint64_t a, uint64_t b, uint64_t p) {
  uint64_t product = 0;
  for (; b != 0; b >>= 1, a <<= 1) {
    if (b & 1) product ^= a;
  }
  return Mod(product, p);
}

constexpr uint64_t PowMod(uint64_t a, uint64_t e, uint64_t p) {
  uint64_t power = Mod(1, p);
  for (a = Mod(a, p); e != 0; e >>= 1, a = MulMod(a, a, p)) {
    if (e & 1) power = MulMod(power, a, p);
  }
  return power;
}

constexpr uint64_t Gcd(uint64_t a, uint64_t b) {
  while (b != 0) a = std::exchange(b, Mod(a, b));
  return a;
}

// Of degree 1 or more, and no factor of degree up to half of it: such a factor of degree i divides
// x^(2^i) - x.
constexpr bool IsIrreducible(uint32_t p) {
  if (p < 2) return false;
  uint64_t power = 2;
  for (int i = 1; 2 * i <= Degree(p); ++i) {
    power = MulMod(power, power, p);
    if (Gcd(p, power ^ 2) != 1) return false;
  }
  return true;
}

// Irreducible, and x generates all nonzero residues: no quotient of 2^degree - 1 by a prime is a
// period.
constexpr bool IsPrimitive(uint32_t p) {
  if (!IsIrreducible(p) || p == 2) return false;
  const uint64_t order = (uint64_t{1} << Degree(p)) - 1;
  uint64_t rest = order;
  const auto has_period = [&](uint64_t prime) { return PowMod(2, order / prime, p) == 1; };
  for (uint64_t prime = 3; prime * prime <= rest; prime += 2) {
    if (rest % prime != 0) continue;
    if (has_period(prime)) return false;
    while (rest % prime == 0) rest /= prime;
  }
  return rest == 1 || !has_period(rest);
}

}  // namespace quo::gf2

#endif  // QUO_SUB_KERNEL__MATH_GF2_H_
