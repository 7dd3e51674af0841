#include "pex_core/_heap/complex/complex_parts.h"

namespace pex::cmplx {

SineCosine SinCos(double x) {
  SineCosine r;
  _pexsincosl_scalar(x, &r.sin, &r.cos);
  return r;
}

SinhCosh HyperbolicPair(double x) {
  SinhCosh r;
  _pexsinhcoshl_scalar(x, &r.sinh, &r.cosh);
  return r;
}

}  // namespace pex::cmplx
