// The errors of the complex entries against MPC, part by part.
#ifndef ACCURACY_COMPLEX_H_
#define ACCURACY_COMPLEX_H_

#include <mpc.h>

#include <complex>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "accuracy/ulp.h"
#include "catalogue/catalogue.h"

namespace pex::accuracy {

// The exact function: each part of r rounded to nearest in r's precision; returns MPC's ternary
// value. A real argument is a's real part, a real result is r's. Functions of one argument ignore
// b.
struct ComplexOracle {
  std::string_view function;
  int (*exact)(mpc_ptr r, mpc_srcptr a, mpc_srcptr b);
};

// Throws std::runtime_error that names the function where there is none.
const ComplexOracle& ComplexOracleOf(const Function& function);

// The point of a regime's largest error. `error` is what the entry's bound limits: ulp of the part,
// for EP entries its relative error in units of 2^-precision; where the entry's measure is the
// modulus, the distance in units of the last place of the larger part.
struct ComplexWorst {
  double error = -1;
  std::complex<double> a, b, got, wanted;
};

struct ComplexRegimeResult {
  std::string name;
  uint64_t points = 0;
  ComplexWorst worst;
};

// `count` points of each regime: the typical range; moderate and all magnitudes; one part zero or
// much smaller than the other; parts nearly equal; sums of products that cancel; of
// elementary functions 1, -1, i, -i, the unit circle and the catalogue's marks closely; subnormal
// numbers; any finite bit patterns. Products, quotients and powers measured by the modulus take the
// first two alone: beyond them their steps overflow and underflow as they are specified to. Where
// an exact part is 0 the result's part is to be 0 of either sign.
std::vector<ComplexRegimeResult> MeasureComplex(const Entry& entry, uint64_t count, uint64_t seed);

// The same of several entries of one function, type and measure at once, which have their points
// and the exact values in common; throws std::invalid_argument where they have not.
std::vector<std::vector<ComplexRegimeResult>> MeasureComplexTiers(
    std::span<const Entry* const> entries, uint64_t count, uint64_t seed);

// "name: error at a, b: got, wanted".
std::string Text(const ComplexRegimeResult& result);

}  // namespace pex::accuracy

#endif  // ACCURACY_COMPLEX_H_
