// Exact arithmetic on the 80-bit format: the ground that the long-double kernels stand on.
//
// A Pair (hi, lo) stands for hi + lo with |lo| at most half an ulp of hi: about 128 bits. u =
// 2^-64. Everything here is x87 arithmetic and takes for granted what X87Guard sets: 64-bit
// significands and rounding to nearest. The theorems hold without overflow, and those on products
// without underflow of the error term (|a b| >= 2^-16250).
#ifndef PEX_CORE__HEAP_REAL_EXTENDED_H_
#define PEX_CORE__HEAP_REAL_EXTENDED_H_

#include <cstdint>
#include <cstring>

#include "pex_core/_kernel/control.h"

namespace pex::ldbl {

static_assert(__LDBL_MANT_DIG__ == 64, "long double is the 80-bit format of the x87");

struct Pair {
  long double hi, lo;
};

// ---- The format ----

// Value (-1)^sign significand 2^(exponent - 16383 - 63), sign in bit 15 of sign_exponent; the
// leading bit of the significand is explicit.
struct Bits {
  uint64_t significand;
  uint16_t sign_exponent;
};

// The instruction reads two bytes and no more: a wider load would wait for a store of ten to
// finish.
inline Bits ToBits(const long double& x) {
  typedef const uint16_t __attribute__((may_alias)) Word;
  Bits b;
  uint32_t word;
  __asm__("movzwl %1, %0" : "=r"(word) : "m"(reinterpret_cast<Word*>(&x)[4]));
  std::memcpy(&b.significand, &x, 8);
  b.sign_exponent = static_cast<uint16_t>(word);
  return b;
}

inline long double FromBits(Bits b) {
  long double x = 0;
  std::memcpy(&x, &b.significand, 8);
  std::memcpy(reinterpret_cast<char*>(&x) + 8, &b.sign_exponent, 2);
  return x;
}

// floor(log2 |x|) of a normal number.
inline int Exponent(long double x) { return (ToBits(x).sign_exponent & 0x7FFF) - 16383; }

// 2^n, -16382 <= n <= 16383.
inline long double PowerOfTwo(int n) {
  return FromBits({uint64_t{1} << 63, static_cast<uint16_t>(n + 16383)});
}

// ---- Exact operations ----

// a + b = hi + lo exactly, for |a| >= |b| or a = 0 (Dekker 1971).
inline Pair FastTwoSum(long double a, long double b) {
  const long double hi = a + b;
  return {hi, b - (hi - a)};
}

// a + b = hi + lo exactly, for any order (Knuth).
inline Pair TwoSum(long double a, long double b) {
  const long double hi = a + b;
  const long double t = hi - a;
  return {hi, (a - (hi - t)) + (b - t)};
}

// x = hi + lo with both halves of at most 32 bits, so that products of halves are exact (Veltkamp).
// |x| < 2^16350.
inline Pair SplitHalves(long double x) {
  const long double c = x * 0x1.00000001p32L;
  const long double hi = c - (c - x);
  return {hi, x - hi};
}

// a b = hi + lo exactly (Dekker 1971).
inline Pair TwoProduct(long double a, long double b) {
  const long double hi = a * b;
  const Pair x = SplitHalves(a), y = SplitHalves(b);
  return {hi, x.lo * y.lo - (((hi - x.hi * y.hi) - x.lo * y.hi) - x.hi * y.lo)};
}

// a^2 = hi + lo exactly.
inline Pair TwoSquare(long double a) {
  const long double hi = a * a;
  const Pair x = SplitHalves(a);
  return {hi, x.lo * x.lo - ((hi - x.hi * x.hi) - 2 * x.hi * x.lo)};
}

// ---- Pairs ----

inline Pair Negate(Pair a) { return {-a.hi, -a.lo}; }

// a 2^n for a power of two `scale`.
inline Pair ScaleBy(Pair a, long double scale) { return {a.hi * scale, a.lo * scale}; }

// a + b with an absolute error below 2 u^2 |a + b|, for |a.hi| >= |b| or a.hi = 0.
inline Pair AddFast(Pair a, long double b) {
  const Pair s = FastTwoSum(a.hi, b);
  return FastTwoSum(s.hi, s.lo + a.lo);
}

// a + b with an absolute error below 4 u^2 (|a| + |b|), for |a.hi| >= |b.hi| or a.hi = 0.
inline Pair AddFast(Pair a, Pair b) {
  const Pair s = FastTwoSum(a.hi, b.hi);
  return FastTwoSum(s.hi, s.lo + (a.lo + b.lo));
}

// The same in any order. The bound is relative to |a| + |b|: cancellation magnifies it.
inline Pair Add(Pair a, Pair b) {
  const Pair s = TwoSum(a.hi, b.hi);
  return FastTwoSum(s.hi, s.lo + (a.lo + b.lo));
}
inline Pair Add(Pair a, long double b) {
  const Pair s = TwoSum(a.hi, b);
  return FastTwoSum(s.hi, s.lo + a.lo);
}

// a b with a relative error below 4 u^2, and below 7 u^2 for two pairs.
inline Pair Mul(Pair a, long double b) {
  const Pair p = TwoProduct(a.hi, b);
  return FastTwoSum(p.hi, p.lo + a.lo * b);
}
inline Pair Mul(Pair a, Pair b) {
  const Pair p = TwoProduct(a.hi, b.hi);
  return FastTwoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}
inline Pair Square(Pair a) {
  const Pair p = TwoSquare(a.hi);
  return FastTwoSum(p.hi, p.lo + 2 * (a.hi * a.lo));
}

// a / b with a relative error below 16 u^2: the quotient of the leading parts is corrected by its
// remainder, whose leading difference is exact.
inline Pair Div(Pair a, Pair b) {
  const long double q = a.hi / b.hi;
  const Pair p = TwoProduct(q, b.hi);
  const long double rest = (((a.hi - p.hi) - p.lo) + a.lo) - q * b.lo;
  return FastTwoSum(q, rest / b.hi);
}

// The square root of a > 0 with a relative error below 8 u^2; 0 for a = 0. One Newton step from the
// root of the leading part.
inline Pair Sqrt(Pair a) {
  if (a.hi == 0) return {a.hi, 0};
  const long double s = __builtin_sqrtl(a.hi);
  const Pair p = TwoSquare(s);
  const long double rest = ((a.hi - p.hi) - p.lo) + a.lo;
  return FastTwoSum(s, rest / (2 * s));
}

// ---- From a pair to the result ----

// Whether hi is hi + lo + error to nearest for every |error| <= |lo| tolerance, where hi + lo
// rounds to hi. An approximation off by at most 2^-66 tolerance of its value that passes is rounded
// right.
inline bool RoundsTo(Pair v, long double tolerance) {
  return v.hi == v.hi + v.lo * (1 + tolerance);
}

// v rounded to a number that rounds to a float, a double or a subnormal one as v does: v.hi, made
// odd in its last place where v.lo is not 0, on v's side (Boldo and Melquiond 2008).
inline long double ToOdd(Pair v) {
  if (v.lo == 0 || v.hi == 0) return v.hi;
  Bits b = ToBits(v.hi);
  if (b.significand % 2 == 1) return v.hi;
  if ((v.hi < 0) == (v.lo < 0)) {
    b.significand |= 1;
  } else if (b.significand == uint64_t{1} << 63) {
    b.significand = ~uint64_t{0};
    --b.sign_exponent;
  } else {
    --b.significand;
  }
  return FromBits(b);
}

// A product that is carried out and raises its flags, whatever the compiler knows of a and b.
inline long double Raise(long double a, long double b) {
  __asm__ volatile("" : "+t"(a));
  long double r = a * b;
  __asm__ volatile("" : "+t"(r));
  return r;
}

// v 2^n rounded once, for 2^-8000 <= |v.hi| <= 2^8000 and any n of at most 2^30 in size. Beyond the
// largest number it is an infinity and raises overflow; an inexact result below the smallest normal
// number raises underflow.
inline long double Scale(Pair v, int n) {
  const int exponent = Exponent(v.hi) + n;
  if (exponent > 16383) return Raise(v.hi < 0 ? -0x1p16383L : 0x1p16383L, 0x1p16383L);
  if (exponent >= -16382) {
    const long double half = v.hi * PowerOfTwo(n / 2);
    return half * PowerOfTwo(n - n / 2);
  }
  if (exponent < -16446) return Raise(v.hi < 0 ? -0x1p-16382L : 0x1p-16382L, 0x1p-16382L);
  // |v| 2^n is rounded to the subnormals' grid, raised to 2^-64, by the addition of a number whose
  // ulp is that grid. The low part, below half an ulp of the high one, decides between the two
  // neighbours of a middle and nothing else.
  const bool negative = v.hi < 0;
  const Pair w = ScaleBy(negative ? Negate(v) : v, PowerOfTwo(n + 16381));
  constexpr long double kGrid = 0x1p-1L;
  long double rounded = (kGrid + w.hi) - kGrid;
  const long double rest = w.hi - rounded;
  if (rest == (w.lo > 0 ? 0x1p-65L : -0x1p-65L) && w.lo != 0) rounded += 2 * rest;
  const long double r = rounded * 0x1p-16381L;
  if (rounded < 0x1p-1L && (rest != 0 || w.lo != 0)) Raise(0x1p-16382L, 0x1p-16382L);
  return negative ? -r : r;
}

// ---- Entries ----

// F(x) with the control word put aside. Argument and result pass through barriers between the ends
// of the guard, so no arithmetic of F can move out of them.
template <auto F>
[[gnu::noinline]] long double UnderGuard(long double x) {
  const X87Guard guard;
  __asm__ volatile("" : "+m"(x));
  long double r = F(x);
  __asm__ volatile("" : "+t"(r));
  return r;
}

// F(x) under any control word of the caller. Under the usual one F is inlined, which spares a copy
// of x through a register.
template <auto F>
[[gnu::always_inline]] inline long double Guarded(long double x) {
  return X87Guard::Needed() ? UnderGuard<F>(x) : F(x);
}

// The same for two arguments.
template <auto F>
[[gnu::noinline]] long double UnderGuard(long double x, long double y) {
  const X87Guard guard;
  __asm__ volatile("" : "+m"(x), "+m"(y));
  long double r = F(x, y);
  __asm__ volatile("" : "+t"(r));
  return r;
}
template <auto F>
[[gnu::always_inline]] inline long double Guarded(long double x, long double y) {
  return X87Guard::Needed() ? UnderGuard<F>(x, y) : F(x, y);
}

// Two results in memory.
template <auto F>
[[gnu::noinline]] void UnderGuard(long double x, long double* r1, long double* r2) {
  const X87Guard guard;
  __asm__ volatile("" : "+m"(x));
  F(x, r1, r2);
  __asm__ volatile("" : "+m"(*r1), "+m"(*r2));
}
template <auto F>
[[gnu::always_inline]] inline void Guarded(long double x, long double* r1, long double* r2) {
  X87Guard::Needed() ? UnderGuard<F>(x, r1, r2) : F(x, r1, r2);
}

// NaN with the invalid flag.
inline long double Invalid() {
  long double zero = 0;
  __asm__ volatile("" : "+t"(zero));
  return zero / zero;
}

// x, with the underflow flag where it is subnormal: the result of functions that are almost x.
inline long double Tiny(long double x) {
  const Bits b = ToBits(x);
  if ((b.sign_exponent & 0x7FFF) == 0 && b.significand != 0) Raise(0x1p-16382L, 0x1p-16382L);
  return x;
}

}  // namespace pex::ldbl

#endif  // PEX_CORE__HEAP_REAL_EXTENDED_H_
