// The arithmetic entries, one element at a time, from their definitions: results as bits, and the
// exception flags of the element under a control word.
#ifndef TESTS_ARITHMETIC_REFERENCE_H_
#define TESTS_ARITHMETIC_REFERENCE_H_

#include <functional>

#include "pexquo/pex.h"
#include "tests/arithmetic/support.h"

namespace pex::test {

template <typename T>
struct Expected {
  BitsOf<T> r1 = 0, r2 = 0;
  uint32_t flags = 0;
};

template <typename T>
struct Entry {
  using Bits = BitsOf<T>;
  const char* name;
  int arguments, results;
  std::function<void(int32_t, const T*, const T*, T*, T*)> call;
  std::function<Expected<T>(Bits, Bits, uint32_t)> expect;  // of two arguments under a control word
};

template <typename T>
bool IsNan(BitsOf<T> x) {
  return (x & ~Format<T>::kSign) > Format<T>::kInfinity;
}
template <typename T>
bool IsSignalling(BitsOf<T> x) {
  return IsNan<T>(x) && !(x & Format<T>::kQuiet);
}
template <typename T>
bool IsSubnormal(BitsOf<T> x) {
  const auto magnitude = x & ~Format<T>::kSign;
  return magnitude != 0 && magnitude >> Format<T>::kFractionBits == 0;
}

// The machine's operation; NaNs by the rule that the first one comes out, quiet.
template <typename T, typename Op>
Expected<T> Hardware(BitsOf<T> x, BitsOf<T> y, uint32_t word, Op op) {
  volatile T a = std::bit_cast<T>(x), b = std::bit_cast<T>(y), r;
  Expected<T> e;
  e.flags = Under(word, [&] { r = op(a, b); }) & kFlags;
  const T result = r;
  e.r1 = std::bit_cast<BitsOf<T>>(result);
  if (IsNan<T>(x)) {
    e.r1 = x | Format<T>::kQuiet;
  } else if (IsNan<T>(y)) {
    e.r1 = y | Format<T>::kQuiet;
  }
  return e;
}

// An integer near a number, from its bits. `mode` is a rounding field of MXCSR, or kTiesAway.
enum : uint32_t { kTiesAway = 1 };
template <typename T>
BitsOf<T> Integer(BitsOf<T> x, uint32_t mode) {
  using F = Format<T>;
  using Bits = BitsOf<T>;
  const Bits sign = x & F::kSign, magnitude = x & ~F::kSign;
  const Bits one = std::bit_cast<Bits>(T(1)), half = std::bit_cast<Bits>(T(0.5));
  if (IsNan<T>(x)) return x | F::kQuiet;
  if (magnitude == 0) return x;
  const bool away = sign ? mode == kRoundDown : mode == kRoundUp;
  const bool to_nearest = mode == 0 || mode == kTiesAway;
  if (magnitude < one) {
    const bool up = away || (to_nearest && (magnitude > half || (magnitude == half && mode)));
    return sign | (up ? one : 0);
  }
  const int shift = static_cast<int>(magnitude >> F::kFractionBits) - (sizeof(T) == 8 ? 1023 : 127);
  if (shift >= F::kFractionBits) return x;
  const Bits unit = Bits{1} << (F::kFractionBits - shift);
  const Bits rest = magnitude & (unit - 1), whole = magnitude - rest;
  const bool odd = unit == Bits{1} << F::kFractionBits ? true : (whole & unit) != 0;  // 1 is odd
  const bool up =
      rest != 0 &&
      (away || (to_nearest && (2 * rest > unit || (2 * rest == unit && (mode || odd)))));
  return sign | (whole + (up ? unit : 0));
}

template <typename T>
Expected<T> Rounded(BitsOf<T> x, uint32_t word, uint32_t mode, bool may_be_inexact) {
  Expected<T> e;
  if ((word & kDenormalsAreZero) && IsSubnormal<T>(x)) x &= Format<T>::kSign;
  e.r1 = Integer<T>(x, mode);
  if (IsSignalling<T>(x)) e.flags |= kInvalid;
  if (!IsNan<T>(x) && e.r1 != x && may_be_inexact) e.flags |= kInexact;
  return e;
}

template <typename T>
std::vector<Entry<T>> Entries() {
  using F = Format<T>;
  using Bits = BitsOf<T>;
  constexpr bool kDouble = sizeof(T) == 8;
  const auto pick = [](auto d, auto s) {
    if constexpr (kDouble) {
      (void)s;
      return d;
    } else {
      (void)d;
      return s;
    }
  };
  const auto binary = [&](auto d, auto s) {
    return [f = pick(d, s)](int32_t n, const T* a, const T* b, T* r, T*) { f(n, a, b, r); };
  };
  const auto unary = [&](auto d, auto s) {
    return [f = pick(d, s)](int32_t n, const T* a, const T*, T* r, T*) { f(n, a, r); };
  };
  const auto rounded = [](uint32_t mode) {
    return [mode](Bits x, Bits, uint32_t) { return Rounded<T>(x, 0, mode, true); };
  };
  return {
      {"Add", 2, 1, binary(_pexdAdd, _pexsAdd),
       [](Bits x, Bits y, uint32_t word) {
         return Hardware<T>(x, y, word, [](T a, T b) { return a + b; });
       }},
      {"Sub", 2, 1, binary(_pexdSub, _pexsSub),
       [](Bits x, Bits y, uint32_t word) {
         return Hardware<T>(x, y, word, [](T a, T b) { return a - b; });
       }},
      {"Mul", 2, 1, binary(_pexdMul, _pexsMul),
       [](Bits x, Bits y, uint32_t word) {
         return Hardware<T>(x, y, word, [](T a, T b) { return a * b; });
       }},
      {"Sqr", 1, 1, unary(_pexdSqr, _pexsSqr),
       [](Bits x, Bits, uint32_t word) {
         return Hardware<T>(x, x, word, [](T a, T b) { return a * b; });
       }},
      {"Abs", 1, 1, unary(_pexdAbs, _pexsAbs),
       [](Bits x, Bits, uint32_t) {
         const Bits one = std::bit_cast<Bits>(T(1)) | (x & F::kSign);
         return Hardware<T>(x, one, kMasks, [](T a, T b) { return a * b; });
       }},
      {"Ceil", 1, 1, unary(_pexdCeil, _pexsCeil), rounded(kRoundUp)},
      {"Floor", 1, 1, unary(_pexdFloor, _pexsFloor), rounded(kRoundDown)},
      {"Trunc", 1, 1, unary(_pexdTrunc, _pexsTrunc), rounded(kRoundToZero)},
      {"Rint", 1, 1, unary(_pexdRint, _pexsRint),
       [](Bits x, Bits, uint32_t word) { return Rounded<T>(x, word, word & kRoundToZero, true); }},
      {"NearbyInt", 1, 1, unary(_pexdNearbyInt, _pexsNearbyInt),
       [](Bits x, Bits, uint32_t word) { return Rounded<T>(x, word, word & kRoundToZero, false); }},
      {"Round", 1, 1, unary(_pexdRound, _pexsRound),
       [](Bits x, Bits, uint32_t) {
         Expected<T> e = Rounded<T>(x, 0, kTiesAway, true);
         if ((x & ~F::kSign) == F::kInfinity) e.flags |= kInvalid;  // it minus itself
         if (IsSubnormal<T>(x)) e.flags |= kDenormal;
         return e;
       }},
      {"Modf", 1, 2,
       [f = pick(_pexdModf, _pexsModf)](int32_t n, const T* a, const T*, T* r1, T* r2) {
         f(n, a, r1, r2);
       },
       [](Bits x, Bits, uint32_t) {
         Expected<T> e = Rounded<T>(x, 0, kRoundToZero, true);
         if (IsNan<T>(x)) {
           e.r2 = e.r1;
         } else if (e.r1 == x) {
           e.r2 = x & F::kSign;
         } else {
           e.r2 = std::bit_cast<Bits>(std::bit_cast<T>(x) - std::bit_cast<T>(e.r1));  // exact
         }
         if (IsSubnormal<T>(x)) e.flags |= kDenormal;
         return e;
       }},
  };
}

}  // namespace pex::test

#endif  // TESTS_ARITHMETIC_REFERENCE_H_
