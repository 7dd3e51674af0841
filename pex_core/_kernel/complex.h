// A complex number in two parts of any kind: numbers, vectors, long doubles.
#ifndef PEX_CORE__KERNEL_COMPLEX_H_
#define PEX_CORE__KERNEL_COMPLEX_H_

namespace pex {

template <class V>
struct Complex {
  V re, im;
};

}  // namespace pex

#endif  // PEX_CORE__KERNEL_COMPLEX_H_
