// b ln a in fixed point, with as many bits as |b| takes away from its fraction.
//
// a = 2^e u. An estimate l of ln u with 60 bits leaves u e^-l = 1 + d, |d| < 2^-56, and ln u = l +
// ln(1 + d), all by Taylor's series: for e^-l their terms are made by numbers of one word. b is
// taken as 2^s times a number below 1; the product's place of the point, and its multiples of pi/2,
// follow from s.
#include "pex_core/_heap/complex/complex_long_log.h"

#include <bit>
#include <cstdint>

#include "pex_core/_heap/complex/complex_parts.h"
#include "pex_core/_heap/real/long_double_circle_tables.h"

namespace pex::cmplx {
namespace {

typedef unsigned __int128 Wide;

// The exponents of b reach 2^1024; 128 bits and more stay behind the product's point.
constexpr int kMostFraction = (1024 + 128 + 63) / 64;
static_assert(kMostFraction == kLn2DigitWords);

// (-1)^negative times n words, the lowest first, the point below the last one.
struct Fixed {
  uint64_t word[kMostFraction + 1];
  bool negative;
};

struct ComplexFixed {
  Fixed re, im;
};

// What all numbers of one product share: the words of the fraction, and one more.
class FixedPoint {
 public:
  explicit FixedPoint(int fraction) : fraction_(fraction), words_(fraction + 1) {}

  Fixed Zero() const {
    Fixed r;
    for (int i = 0; i < words_; ++i) r.word[i] = 0;
    r.negative = false;
    return r;
  }

  Fixed Integer(int64_t n) const {
    Fixed r = Zero();
    r.negative = n < 0;
    r.word[fraction_] = Size(n);
    return r;
  }

  // m 2^(place - 64 fraction) without the bits below the last place.
  Fixed Placed(uint64_t m, int place, bool negative) const {
    Fixed r = Zero();
    r.negative = negative;
    if (place <= -64) return r;
    if (place < 0) {
      r.word[0] = m >> -place;
      return r;
    }
    const int i = place / 64, shift = place % 64;
    r.word[i] = m << shift;
    if (shift != 0 && i + 1 < words_) r.word[i + 1] = m >> (64 - shift);
    return r;
  }

  // x 2^-scale, below 2^63 in size.
  Fixed Scaled(double x, int scale) const {
    const ldbl::Bits b = ldbl::ToBits(x);
    return Placed(b.significand, 64 * fraction_ + ((b.sign_exponent & 0x7FFF) - 16383) - 63 - scale,
                  b.sign_exponent >> 15);
  }

  // From the highest digit after the point on.
  Fixed Digits(const uint64_t* digits) const {
    Fixed r = Zero();
    for (int i = 0; i < fraction_; ++i) r.word[fraction_ - 1 - i] = digits[i];
    return r;
  }

  bool IsZero(const Fixed& x) const { return Length(x) == 0; }

  Fixed Add(const Fixed& x, const Fixed& y) const {
    if (x.negative == y.negative) return Sum(x, y);
    return IsLess(x, y) ? Difference(y, x) : Difference(x, y);
  }

  Fixed Mul(const Fixed& x, const Fixed& y) const {
    uint64_t product[2 * (kMostFraction + 1)] = {};
    const int length = Length(y);
    for (int i = 0; i < Length(x); ++i) {
      uint64_t carry = 0;
      for (int j = 0; j < length; ++j) {
        const Wide t = static_cast<Wide>(x.word[i]) * y.word[j] + product[i + j] + carry;
        product[i + j] = static_cast<uint64_t>(t);
        carry = static_cast<uint64_t>(t >> 64);
      }
      product[i + length] = carry;
    }
    Fixed r;
    for (int i = 0; i < words_; ++i) r.word[i] = product[fraction_ + i];
    r.negative = x.negative != y.negative;
    return r;
  }

  // x times an integer.
  Fixed Times(const Fixed& x, int64_t n) const {
    Fixed r;
    uint64_t carry = 0;
    for (int i = 0; i < words_; ++i) {
      const Wide t = static_cast<Wide>(x.word[i]) * Size(n) + carry;
      r.word[i] = static_cast<uint64_t>(t);
      carry = static_cast<uint64_t>(t >> 64);
    }
    r.negative = x.negative != (n < 0);
    return r;
  }

  // x m 2^-60 / n, |x| < 2^60, n < 2^32.
  Fixed TimesFractionOver(const Fixed& x, int64_t m, uint64_t n) const {
    Fixed r = Zero();
    const int length = Length(x);
    Wide above = 0;
    for (int i = 0; i < length; ++i) {
      const Wide t = static_cast<Wide>(x.word[i]) * Size(m) + (above >> 64);
      if (i > 0) r.word[i - 1] = static_cast<uint64_t>(t) << 4 | static_cast<uint64_t>(above) >> 60;
      above = t;
    }
    if (length > 0) r.word[length - 1] = static_cast<uint64_t>(above >> 60);
    if (length < words_ && length > 0) r.word[length] = static_cast<uint64_t>(above >> 124);
    r.negative = x.negative != (m < 0);
    return Over(r, n);
  }

  Fixed Over(const Fixed& x, uint64_t n) const {
    Fixed r = Zero();
    uint64_t rest = 0;
    for (int i = Length(x) - 1; i >= 0; --i) {
      // The quotient is a word, as rest < n.
      __asm__("divq %4" : "=a"(r.word[i]), "=d"(rest) : "a"(x.word[i]), "d"(rest), "r"(n) : "cc");
    }
    r.negative = x.negative;
    return r;
  }

  // The 64 bits of |x| from bit `place` on.
  uint64_t BitsAt(const Fixed& x, int place) const {
    const int i = place / 64, shift = place % 64;
    const uint64_t high = i + 1 < words_ ? x.word[i + 1] : 0;
    return shift == 0 ? x.word[i] : x.word[i] >> shift | high << (64 - shift);
  }

  ldbl::Pair ToPair(const Fixed& x, int scale) const {
    int top = words_ - 1;
    while (top > 1 && x.word[top] == 0) --top;
    const int place = 64 * (top - 1 - fraction_) + scale;
    const int zeros = top > 1 ? std::countl_zero(x.word[top]) : 0;
    const uint64_t low = top > 1 && zeros > 0 ? x.word[top - 2] >> (64 - zeros) : 0;
    const uint64_t middle = zeros > 0 ? x.word[top - 1] << zeros | low : x.word[top - 1];
    const uint64_t high =
        zeros > 0 ? x.word[top] << zeros | x.word[top - 1] >> (64 - zeros) : x.word[top];
    const ldbl::Pair r =
        ldbl::FastTwoSum(static_cast<long double>(high) * ldbl::PowerOfTwo(place + 64 - zeros),
                         static_cast<long double>(middle) * ldbl::PowerOfTwo(place - zeros));
    return x.negative ? ldbl::Negate(r) : r;
  }

  int fraction() const { return fraction_; }

 private:
  // Without the zeros above.
  int Length(const Fixed& x) const {
    int length = words_;
    while (length > 0 && x.word[length - 1] == 0) --length;
    return length;
  }

  static uint64_t Size(int64_t n) { return static_cast<uint64_t>(n < 0 ? -n : n); }

  bool IsLess(const Fixed& x, const Fixed& y) const {
    for (int i = words_ - 1; i >= 0; --i) {
      if (x.word[i] != y.word[i]) return x.word[i] < y.word[i];
    }
    return false;
  }

  Fixed Sum(const Fixed& x, const Fixed& y) const {
    Fixed r;
    uint64_t carry = 0;
    for (int i = 0; i < words_; ++i) {
      const Wide t = static_cast<Wide>(x.word[i]) + y.word[i] + carry;
      r.word[i] = static_cast<uint64_t>(t);
      carry = static_cast<uint64_t>(t >> 64);
    }
    r.negative = x.negative;
    return r;
  }

  // For |x| >= |y|.
  Fixed Difference(const Fixed& x, const Fixed& y) const {
    Fixed r;
    uint64_t borrow = 0;
    for (int i = 0; i < words_; ++i) {
      const Wide t = static_cast<Wide>(x.word[i]) - y.word[i] - borrow;
      r.word[i] = static_cast<uint64_t>(t);
      borrow = static_cast<uint64_t>(t >> 64) & 1;
    }
    r.negative = x.negative;
    return r;
  }

  int fraction_, words_;
};

Fixed Negate(Fixed x) {
  x.negative = !x.negative;
  return x;
}

ComplexFixed Product(const FixedPoint& point, const ComplexFixed& x, const ComplexFixed& y) {
  return {point.Add(point.Mul(x.re, y.re), Negate(point.Mul(x.im, y.im))),
          point.Add(point.Mul(x.re, y.im), point.Mul(x.im, y.re))};
}

// e^x of x = m 2^-60, |x| < 2.
Fixed Exp(const FixedPoint& point, int64_t m) {
  Fixed sum = point.Integer(1), term = sum;
  for (uint64_t k = 1; !point.IsZero(term); ++k) {
    term = point.TimesFractionOver(term, m, k);
    sum = point.Add(sum, term);
  }
  return sum;
}

// cos y + i sin y of y = m 2^-60, |y| < 4.
ComplexFixed Cis(const FixedPoint& point, int64_t m) {
  ComplexFixed sum = {point.Integer(1), point.Zero()};
  Fixed term = sum.re;
  for (uint64_t k = 1; !point.IsZero(term); ++k) {
    term = point.TimesFractionOver(term, m, k);
    Fixed& part = k % 2 == 0 ? sum.re : sum.im;
    part = point.Add(part, k & 2 ? Negate(term) : term);
  }
  return sum;
}

// ln(1 + d), |d| < 2^-56.
ComplexFixed Log1p(const FixedPoint& point, const ComplexFixed& d) {
  ComplexFixed sum = d, power = d;
  for (uint64_t k = 2; !point.IsZero(power.re) || !point.IsZero(power.im); ++k) {
    power = Product(point, power, {Negate(d.re), Negate(d.im)});
    sum.re = point.Add(sum.re, point.Over(power.re, k));
    sum.im = point.Add(sum.im, point.Over(power.im, k));
  }
  return sum;
}

int ExponentOfLarger(double x, double y) {
  const long double a = __builtin_fabs(x), b = __builtin_fabs(y);
  return ldbl::Exponent(a > b ? a : b);
}

ComplexFixed Log(const FixedPoint& point, double x, double y) {
  const int e = ExponentOfLarger(x, y);
  const long double scale = ldbl::PowerOfTwo(-e);
  const long double u = x * scale, v = y * scale;
  const int64_t size = static_cast<int64_t>(ldbl::Log(u * u + v * v) * 0x1p59L);
  const int64_t angle = static_cast<int64_t>(_pexatan2l_scalar(v, u) * 0x1p60L);
  const Fixed shrink = Exp(point, -size);
  const ComplexFixed back = Cis(point, -angle);
  ComplexFixed d = Product(point, {point.Scaled(x, e), point.Scaled(y, e)},
                           {point.Mul(shrink, back.re), point.Mul(shrink, back.im)});
  d.re = point.Add(d.re, point.Integer(-1));
  ComplexFixed r = Log1p(point, d);
  const auto estimate = [&point](int64_t m) {
    return point.Placed(static_cast<uint64_t>(m < 0 ? -m : m), 64 * point.fraction() - 60, m < 0);
  };
  r.re = point.Add(point.Add(r.re, estimate(size)), point.Times(point.Digits(kLn2Digits), e));
  r.im = point.Add(r.im, estimate(angle));
  return r;
}

}  // namespace

LongProduct TimesLogarithm(double a_re, double a_im, double b_re, double b_im) {
  const int b_exponent = ExponentOfLarger(b_re, b_im) + 1;
  const int scale = b_exponent < 0 ? 0 : b_exponent;
  const FixedPoint point((scale + 128 + 63) / 64);
  const ComplexFixed log = Log(point, a_re, a_im);
  const ComplexFixed product =
      Product(point, log, {point.Scaled(b_re, scale), point.Scaled(b_im, scale)});
  LongProduct r;
  r.re = point.ToPair(product.re, scale);
  // Quarters of the circle: the point is `scale` bits further down.
  const Fixed quarters = point.Mul(product.im, point.Digits(kTwoOverPiDigits + 2));
  const int place = 64 * point.fraction() - scale;
  Wide fraction = static_cast<Wide>(point.BitsAt(quarters, place - 64)) << 64 |
                  point.BitsAt(quarters, place - 128);
  r.quadrant = static_cast<int>(point.BitsAt(quarters, place) & 3);
  const bool above = fraction >> 127;
  if (above) {
    ++r.quadrant;
    fraction = ~fraction;
  }
  const auto high = static_cast<uint64_t>(fraction >> 64), low = static_cast<uint64_t>(fraction);
  r.rest = ldbl::Mul(ldbl::FastTwoSum(static_cast<long double>(high) * 0x1p-64L,
                                      static_cast<long double>(low) * 0x1p-128L),
                     ldbl::kPiOver2);
  if (above != quarters.negative) r.rest = ldbl::Negate(r.rest);
  if (quarters.negative) r.quadrant = -r.quadrant;
  return r;
}

}  // namespace pex::cmplx
