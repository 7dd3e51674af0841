// NumPy's C interface for the files of the module: one table of its functions, filled by module.cc.
#ifndef PYTHON_MODULE_NUMPY_H_
#define PYTHON_MODULE_NUMPY_H_

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#define NPY_NO_DEPRECATED_API NPY_1_22_API_VERSION
#define PY_ARRAY_UNIQUE_SYMBOL pexquo_array_api
#define PY_UFUNC_UNIQUE_SYMBOL pexquo_ufunc_api
#ifndef PEXQUO_IMPORTS_NUMPY
#define NO_IMPORT_ARRAY
#define NO_IMPORT_UFUNC
#endif
#include <numpy/arrayobject.h>
#include <numpy/arrayscalars.h>
#include <numpy/ufuncobject.h>

#endif  // PYTHON_MODULE_NUMPY_H_
