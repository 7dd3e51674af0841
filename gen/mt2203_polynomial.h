// Characteristic polynomials of the twisters with 69 words of 32 bits, the middle word 34 and 5
// lower bits: polynomials over GF(2) of degree 2203, and whether they are irreducible.
//
// Bits of a word are counted from the most significant one, 0 to 31, as in the output. With t the
// step from one word to the next, the recurrence (M. Matsumoto and T. Nishimura, ACM TOMACS 8,
// 1998) makes every bit of a word a polynomial in t applied to bit 31.
#ifndef GEN_MT2203_POLYNOMIAL_H_
#define GEN_MT2203_POLYNOMIAL_H_

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace quo::mt2203 {

inline constexpr int kWords = 69;
inline constexpr int kMiddle = 34;
inline constexpr int kLowerBits = 5;
inline constexpr int kDegree = kWords * 32 - kLowerBits;  // 2^2203 - 1 is prime
inline constexpr int kLimbs = 36;
inline constexpr int kLimbBits = 64 * kLimbs;

// A polynomial of degree below 2304; bit i of the array is the coefficient of t^i.
using Poly = std::array<uint64_t, kLimbs>;
using Product = std::array<uint64_t, 2 * kLimbs>;

inline bool Coefficient(const Poly& p, int i) { return p[i / 64] >> (i % 64) & 1; }

// -1 for zero.
inline int Degree(const Poly& p) {
  for (int i = kLimbs; i-- > 0;) {
    if (p[i]) return 64 * i + 63 - std::countl_zero(p[i]);
  }
  return -1;
}

// sum += t^shift p, whose degree stays below 2304.
inline void AddShifted(const Poly& p, int shift, Poly* sum) {
  const int limbs = shift / 64, bits = shift % 64;
  for (int i = kLimbs; i-- > limbs;) {
    uint64_t x = p[i - limbs] << bits;
    if (bits && i > limbs) x |= p[i - limbs - 1] >> (64 - bits);
    (*sum)[i] ^= x;
  }
}

// sum[0 .. n] += q p[0 .. n - 1], carry-less.
inline void AddMultiplePortably(const uint64_t* p, int n, uint64_t q, uint64_t* sum) {
  uint64_t low[16] = {}, high[16] = {};  // q times every polynomial of degree below 4
  for (int k = 1; k < 16; ++k) {
    for (int bit = 0; bit < 4; ++bit) {
      if (!(k >> bit & 1)) continue;
      low[k] ^= q << bit;
      if (bit) high[k] ^= q >> (64 - bit);
    }
  }
  for (int i = 0; i < n; ++i) {
    uint64_t x = 0, carry = 0;
    for (int bit = 60; bit >= 0; bit -= 4) {
      const int k = p[i] >> bit & 15;
      carry = carry << 4 | x >> 60;
      x = x << 4 ^ low[k];
      carry ^= high[k];
    }
    sum[i] ^= x;
    sum[i + 1] ^= carry;
  }
}

// The same for even n, which may write sum[n + 1] unchanged.
__attribute__((target("pclmul,sse4.2"))) inline void AddMultipleByPclmul(const uint64_t* p, int n,
                                                                         uint64_t q,
                                                                         uint64_t* sum) {
  const __m128i factor = _mm_cvtsi64_si128(static_cast<long long>(q));
  __m128i odd = _mm_setzero_si128();
  for (int i = 0; i < n; i += 2) {
    const __m128i pair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    __m128i* to = reinterpret_cast<__m128i*>(sum + i);
    const __m128i next = _mm_clmulepi64_si128(factor, pair, 0x10);
    const __m128i x =
        _mm_xor_si128(_mm_clmulepi64_si128(factor, pair, 0x00), _mm_alignr_epi8(next, odd, 8));
    _mm_storeu_si128(to, _mm_xor_si128(_mm_loadu_si128(to), x));
    odd = next;
  }
  sum[n] ^= static_cast<uint64_t>(_mm_extract_epi64(odd, 1));
}

// n even.
inline void AddMultiple(const uint64_t* p, int n, uint64_t q, uint64_t* sum) {
  static const bool pclmul = __builtin_cpu_supports("pclmul");
  pclmul ? AddMultipleByPclmul(p, n, q, sum) : AddMultiplePortably(p, n, q, sum);
}

// Arithmetic modulo a polynomial of degree 2203. Residues have degrees below 2304 until Normalize.
class Modulus {
 public:
  explicit Modulus(const Poly& p) : p_(p) {
    power_ = p;  // t^2203, then t^2304
    power_[kDegree / 64] ^= uint64_t{1} << kDegree % 64;
    for (int i = kDegree; i < kLimbBits; ++i) {
      Poly twice = {};
      AddShifted(power_, 1, &twice);
      if (Coefficient(twice, kDegree)) AddShifted(p_, 0, &twice);
      power_ = twice;
    }
  }

  const Poly& polynomial() const { return p_; }

  Poly Multiply(const Poly& a, const Poly& b) const {
    std::array<uint64_t, 2 * kLimbs + 1> x = {};
    for (int i = 0; i < kLimbs; ++i) AddMultiple(a.data(), kLimbs, b[i], &x[i]);
    return Reduce(x.data());
  }

  Poly Square(const Poly& a) const {
    Product x;
    for (int i = 0; i < kLimbs; ++i) {
      x[2 * i] = Spread(static_cast<uint32_t>(a[i]));
      x[2 * i + 1] = Spread(static_cast<uint32_t>(a[i] >> 32));
    }
    return Reduce(x.data());
  }

  // The residue of degree below 2203.
  Poly Normalize(Poly a) const {
    for (int i = kLimbBits; i-- > kDegree;) {
      if (Coefficient(a, i)) AddShifted(p_, i - kDegree, &a);
    }
    return a;
  }

  // The inverse of a; false where a and the modulus have a common factor.
  bool Invert(const Poly& a, Poly* inverse) const {
    Poly u = p_, v = Normalize(a), of_u = {}, of_v = {1};  // u = of_u a, v = of_v a
    int degree_u = kDegree, degree_v = Degree(v);
    while (degree_v > 0) {
      if (degree_u < degree_v) {
        std::swap(u, v), std::swap(of_u, of_v), std::swap(degree_u, degree_v);
      }
      AddShifted(v, degree_u - degree_v, &u);
      AddShifted(of_v, degree_u - degree_v, &of_u);
      degree_u = Degree(u);
      if (degree_u < degree_v) {
        std::swap(u, v), std::swap(of_u, of_v), std::swap(degree_u, degree_v);
      }
    }
    *inverse = of_v;
    return degree_v == 0;
  }

 private:
  // The square of a polynomial of degree below 32.
  static uint64_t Spread(uint64_t x) {
    x = (x | x << 16) & 0x0000FFFF0000FFFF;
    x = (x | x << 8) & 0x00FF00FF00FF00FF;
    x = (x | x << 4) & 0x0F0F0F0F0F0F0F0F;
    x = (x | x << 2) & 0x3333333333333333;
    return (x | x << 1) & 0x5555555555555555;
  }

  Poly Reduce(uint64_t* x) const {
    for (int i = 2 * kLimbs; i-- > kLimbs;)
      AddMultiple(power_.data(), kLimbs, x[i], x + i - kLimbs);
    Poly r;
    std::copy_n(x, kLimbs, r.begin());
    return r;
  }

  Poly p_, power_;
};

// The bits of a word as polynomials in t applied to bit 31, and the polynomial that annihilates
// them all, which is the characteristic one. The top bit of the twist word has to be set.
struct Twister {
  std::array<Poly, 32> bit;
  Poly characteristic;
};

inline Twister MakeTwister(uint32_t a) {
  Twister twister = {};
  auto& bit = twister.bit;
  // (t^69 + t^34) x[i] = y[i - 1] + a[i] y[31], y being x, for the lower bits t x. What is left of
  // t after division by a common factor t is `lower`.
  auto add = [](const Poly& p, int lower, Poly* sum) {
    AddShifted(p, kWords - lower, sum);
    AddShifted(p, kMiddle - lower, sum);
  };
  bit[31] = {1};
  for (int i = 31; i > 0; --i) {
    const int lower = i > 32 - kLowerBits;
    add(bit[i], lower, &bit[i - 1]);
    if (a >> (31 - i) & 1) AddShifted(bit[31], 1 - lower, &bit[i - 1]);
  }
  twister.characteristic = bit[31];
  add(bit[0], 1, &twister.characteristic);
  return twister;
}

// Whether a polynomial of degree 2203, a prime, is irreducible: t^(2^2203) - t, which it has to
// divide, is the product of t, t + 1 and all irreducible polynomials of this degree. Most others
// have a factor of degree at most `kSieve` and are found out early.
inline bool IsIrreducible(const Poly& p) {
  constexpr int kSieve = 24;
  const Modulus modulus(p);
  const Poly t = {2};
  Poly power = t, product = {1};
  for (int i = 1; i <= kDegree; ++i) {
    power = modulus.Square(power);
    if (i <= kSieve / 2 || i > kSieve) continue;
    Poly difference = power;
    difference[0] ^= 2;
    product = modulus.Multiply(product, difference);
    if (i == kSieve && !modulus.Invert(product, &difference)) return false;
  }
  return modulus.Normalize(power) == t;
}

}  // namespace quo::mt2203

#endif  // GEN_MT2203_POLYNOMIAL_H_
