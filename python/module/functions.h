// The module's functions: a NumPy ufunc for each tier behind one callable that takes `tier=`.
#ifndef PYTHON_MODULE_FUNCTIONS_H_
#define PYTHON_MODULE_FUNCTIONS_H_

#include "python/module/numpy.h"

namespace pexquo::python {

// A new dictionary from the names of all functions to the functions; null with an exception set.
PyObject* MakeFunctions();

// Functions of the module. set_collect_hook(hook): `hook(function, tier, ufunc, args, kwargs)` is
// called instead of the ufunc while any collector is open; count_collectors(change) opens (1) and
// closes (-1) one. set_document_hook(hook): `hook(function)` makes a function's documentation.
PyObject* SetCollectHook(PyObject* module, PyObject* hook);
PyObject* CountCollectors(PyObject* module, PyObject* change);
PyObject* SetDocumentHook(PyObject* module, PyObject* hook);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_FUNCTIONS_H_
