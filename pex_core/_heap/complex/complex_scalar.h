// Elementary functions of one complex number: what the looping entries and the rare elements of the
// vector entries are made of.
//
// The parts of the argument are doubles (single-precision arguments are widened exactly); those of
// the result are 80-bit numbers, to be rounded once to the type of the element. Principal branches,
// signed zeros and special values are those of the C standard's Annex G. The error of each part is
// at most a few units of its 64th bit; results of Pow are off by at most 2^-56 of their modulus,
// whatever |b ln a| is.
//
// All take 64-bit precision and rounding to nearest for granted (X87Guard of control.h around the
// loop). They set no errno and raise no flag but inexact unless the result warrants it; overflow
// and underflow show when the result is rounded.
#ifndef PEX_CORE__HEAP_COMPLEX_COMPLEX_SCALAR_H_
#define PEX_CORE__HEAP_COMPLEX_COMPLEX_SCALAR_H_

#pragma GCC visibility push(hidden)
namespace pex {

struct ComplexExtended {
  long double re, im;
};

struct ComplexDouble {
  double re, im;
};

}  // namespace pex

extern "C" {

// Square root in the right half-plane. Cut: the negative real axis.
pex::ComplexExtended _pexcsqrt_scalar(double re, double im);

// e^z, and the same rounded to doubles.
pex::ComplexExtended _pexcexpl_scalar(double re, double im);
pex::ComplexDouble _pexcexp_scalar(double re, double im);

// ln z and log10 z; the imaginary part of ln in [-pi, pi]. Cut: the negative real axis.
pex::ComplexExtended _pexclog_scalar(double re, double im);
pex::ComplexExtended _pexclog10_scalar(double re, double im);

// (a_re + i a_im)^(b_re + i b_im) = e^(b ln a). A part of b that is zero takes no part in the
// product, whatever ln a is, so a^0 is 1, and 0^b is 0 for real b > 0. Quarters of the circle are
// exact: a part that they make 0 is 0, with the sign that it has on the side of a's own zero.
pex::ComplexExtended _pexcpow_scalar(double a_re, double a_im, double b_re, double b_im);

pex::ComplexExtended _pexccosh_scalar(double re, double im);
pex::ComplexExtended _pexcsinh_scalar(double re, double im);
pex::ComplexExtended _pexctanh_scalar(double re, double im);

// Cuts: asinh the imaginary axis beyond +-i, acosh the real axis below 1, atanh the real axis
// beyond +-1, acos likewise.
pex::ComplexExtended _pexcasinh_scalar(double re, double im);
pex::ComplexExtended _pexcacosh_scalar(double re, double im);
pex::ComplexExtended _pexcatanh_scalar(double re, double im);
pex::ComplexExtended _pexcacos_scalar(double re, double im);

// Rotations of the above: cos z = cosh(iz), f z = -i fh(iz) for sin, tan, asin, atan.
pex::ComplexExtended _pexccos_scalar(double re, double im);
pex::ComplexExtended _pexcsin_scalar(double re, double im);
pex::ComplexExtended _pexctan_scalar(double re, double im);
pex::ComplexExtended _pexcasin_scalar(double re, double im);
pex::ComplexExtended _pexcatan_scalar(double re, double im);

}  // extern "C"
#pragma GCC visibility pop

#endif  // PEX_CORE__HEAP_COMPLEX_COMPLEX_SCALAR_H_
