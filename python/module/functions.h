// The module's functions: a NumPy ufunc for each tier behind one callable that takes `tier=`.
#ifndef PYTHON_MODULE_FUNCTIONS_H_
#define PYTHON_MODULE_FUNCTIONS_H_

#include "python/module/numpy.h"

namespace pexquo::python {

// A new dictionary from the names of all functions to the functions; null with an exception set.
PyObject* MakeFunctions();

// _pexquo._collect_calls(hook): `hook(function, ufunc, args, kwargs)` is called instead of the
// ufunc while any collector is open; _pexquo._count_collectors(change) opens (1) and closes (-1)
// one.
PyObject* SetCollectHook(PyObject* module, PyObject* hook);
PyObject* CountCollectors(PyObject* module, PyObject* change);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_FUNCTIONS_H_
