#include "pex_core/cdiv/zdiv_scalar.h"

#include <cmath>

#include "pex_core/cmul/products.h"

namespace pex {
namespace {

using ldbl::Pair;

// (p + q)/m rounded once.
double Rounded(Pair p, Pair q, Pair m) {
  const Pair sum = ldbl::SumOfProducts(p, q);
  if (sum.hi == 0) return static_cast<double>(p.hi + q.hi);
  return static_cast<double>(ldbl::ToOdd(ldbl::Div(sum, m)));
}

Complex<double> Quotient(Complex<double> a, Complex<double> b) {
  const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
  const bool finite =
      std::isfinite(a.re) && std::isfinite(a.im) && std::isfinite(b.re) && std::isfinite(b.im);
  if (!finite || (b.re == 0 && b.im == 0)) {
    const long double inverse = 1 / (br * br + bi * bi);
    return {static_cast<double>((ar * br + ai * bi) * inverse),
            static_cast<double>((ai * br - ar * bi) * inverse)};
  }
  const Pair m = ldbl::SumOfProducts(ldbl::TwoSquare(br), ldbl::TwoSquare(bi));
  return {Rounded(ldbl::TwoProduct(ar, br), ldbl::TwoProduct(ai, bi), m),
          Rounded(ldbl::TwoProduct(ai, br), ldbl::TwoProduct(-ar, bi), m)};
}

}  // namespace

Complex<double> zDivScalar(Complex<double> a, Complex<double> b) {
  return ldbl::UnderX87Guard<Quotient>(a, b);
}

}  // namespace pex
