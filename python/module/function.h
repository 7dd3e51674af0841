// The object behind pexquo.exp and its like.
#ifndef PYTHON_MODULE_FUNCTION_H_
#define PYTHON_MODULE_FUNCTION_H_

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "python/module/loops.h"
#include "python/module/numpy.h"

namespace pexquo::python {

inline constexpr int kTiers = 3;

// Place of a type number among float, double and their complex numbers; -1 of any other.
constexpr int TypeSlot(int type) {
  return type == NPY_FLOAT     ? 0
         : type == NPY_DOUBLE  ? 1
         : type == NPY_CFLOAT  ? 2
         : type == NPY_CDOUBLE ? 3
                               : -1;
}

// A ufunc reads these for as long as the process lives.
struct Tables {
  std::string name;
  std::deque<Loop> loops;
  std::array<const Loop*, 4> by_type{};  // by TypeSlot of the first argument
  std::vector<PyUFuncGenericFunction> functions;
  std::vector<void*> data;
  std::vector<char> types;
};

struct Function {
  PyObject_HEAD vectorcallfunc vectorcall;
  PyObject* name;
  PyObject* catalogue;  // the catalogue's name
  PyObject* doc;
  PyObject* module;
  PyObject* alarm;  // a ufunc that raises the flags given to it as a number
  PyObject* ufuncs[kTiers];
  const Tables* tables[kTiers];
};

// The call without NumPy's ufunc machinery, where it is simple: contiguous arrays of one shape and
// type (the second argument may be a number beside float64), or one Python float or float64 scalar;
// `out` null or an array of the result's type and shape. Null without an exception where it is not.
PyObject* CallDirectly(const Function& function, int tier, PyObject* const* args, Py_ssize_t count,
                       PyObject* out);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_FUNCTION_H_
