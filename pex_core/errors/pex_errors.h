// Reporting one special element, for the drivers: the argument values are passed apart from the
// arrays, because in place the results have already overwritten them.
#ifndef PEX_CORE_ERRORS_PEX_ERRORS_H_
#define PEX_CORE_ERRORS_PEX_ERRORS_H_

#include <cstdint>

namespace pex {

// The element's arguments, and where its results stand (the same address for one result).
template <typename T>
struct ErrorElement {
  T arg1, arg2;
  T *res1, *res2;
};

// Reports the element at `index` of the argument array `args`. Callers ignore the result.
template <typename T>
int ReportError(int32_t code, int32_t index, const T* args, const ErrorElement<T>& element,
                const char* name);

extern template int ReportError(int32_t, int32_t, const double*, const ErrorElement<double>&,
                                const char*);
extern template int ReportError(int32_t, int32_t, const float*, const ErrorElement<float>&,
                                const char*);

}  // namespace pex

#endif  // PEX_CORE_ERRORS_PEX_ERRORS_H_
