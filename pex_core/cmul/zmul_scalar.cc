#include "pex_core/cmul/zmul_scalar.h"

#include <cmath>

#include "pex_core/cmul/products.h"

namespace pex {
namespace {

using ldbl::Pair;

bool AllFinite(Complex<double> a, Complex<double> b) {
  return std::isfinite(a.re) && std::isfinite(a.im) && std::isfinite(b.re) && std::isfinite(b.im);
}

double Rounded(Pair p, Pair q) {
  const Pair sum = ldbl::SumOfProducts(p, q);
  return static_cast<double>(sum.hi == 0 ? p.hi + q.hi : ldbl::ToOdd(sum));
}

template <bool kConjugate>
Complex<double> Product(Complex<double> a, Complex<double> b) {
  const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
  if (!AllFinite(a, b)) {
    if (kConjugate) {
      return {static_cast<double>(ar * br + ai * bi), static_cast<double>(ai * br - ar * bi)};
    }
    return {static_cast<double>(ar * br - ai * bi), static_cast<double>(ar * bi + ai * br)};
  }
  const Pair rr = ldbl::TwoProduct(ar, br), ii = ldbl::TwoProduct(ai, bi);
  const Pair ri = ldbl::TwoProduct(ar, bi), ir = ldbl::TwoProduct(ai, br);
  if (kConjugate) return {Rounded(rr, ii), Rounded(ir, ldbl::Negate(ri))};
  return {Rounded(rr, ldbl::Negate(ii)), Rounded(ri, ir)};
}

}  // namespace

Complex<double> zMulScalar(Complex<double> a, Complex<double> b) {
  return ldbl::UnderX87Guard<Product<false>>(a, b);
}

Complex<double> zMulByConjScalar(Complex<double> a, Complex<double> b) {
  return ldbl::UnderX87Guard<Product<true>>(a, b);
}

}  // namespace pex
