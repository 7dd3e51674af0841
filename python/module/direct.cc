// Calls that need none of NumPy's iteration, at a third of its cost.

#include "python/module/function.h"

namespace pexquo::python {
namespace {

// NumPy gives the interpreter's lock away from about here, too.
constexpr npy_intp kReleaseFrom = 500;

// Runs the loop; false with an exception set where the flags of the elements are errors.
bool Run(const Function& function, const Loop& loop, char** args, npy_intp n,
         const npy_intp* steps) {
  uint32_t flags = 0;
  const auto run = [&] {
    ClearFlags();
    RunLoop(args, &n, steps, const_cast<Loop*>(&loop));
    flags = RaisedFlags();
  };
  if (n >= kReleaseFrom) {
    Py_BEGIN_ALLOW_THREADS;
    run();
    Py_END_ALLOW_THREADS;
  } else {
    run();
  }
  if (flags == 0) return true;
  PyObject* number = PyFloat_FromDouble(flags);
  PyObject* result = number == nullptr ? nullptr : PyObject_CallOneArg(function.alarm, number);
  Py_XDECREF(number);
  Py_XDECREF(result);
  return result != nullptr;
}

PyObject* NewDouble(double value) {
  PyObject* scalar = PyArrayScalar_New(Double);
  if (scalar != nullptr) PyArrayScalar_ASSIGN(scalar, Double, value);
  return scalar;
}

PyObject* CallOnNumber(const Function& function, const Loop& loop, double x) {
  double results[2] = {};
  char* args[kMaxOperands] = {reinterpret_cast<char*>(&x), reinterpret_cast<char*>(&results[0]),
                              reinterpret_cast<char*>(&results[1]), nullptr};
  if (!Run(function, loop, args, 1, loop.sizes.data())) return nullptr;
  if (loop.results == 1) return NewDouble(results[0]);
  PyObject* first = NewDouble(results[0]);
  PyObject* second = NewDouble(results[1]);
  PyObject* tuple =
      first == nullptr || second == nullptr ? nullptr : PyTuple_Pack(2, first, second);
  Py_XDECREF(first);
  Py_XDECREF(second);
  return tuple;
}

PyArrayObject* AsSimpleArray(PyObject* object) {
  auto* array = reinterpret_cast<PyArrayObject*>(object);
  return PyArray_CheckExact(object) && PyArray_NDIM(array) > 0 && PyArray_ISCARRAY_RO(array)
             ? array
             : nullptr;
}

bool SameShape(PyArrayObject* a, PyArrayObject* b) {
  return PyArray_NDIM(a) == PyArray_NDIM(b) &&
         PyArray_CompareLists(PyArray_DIMS(a), PyArray_DIMS(b), PyArray_NDIM(a));
}

// Whether results at r may be written while arguments at a are read: element by element in place,
// or well apart.
bool MayWrite(PyArrayObject* r, PyArrayObject* a) {
  const char* const r0 = PyArray_BYTES(r);
  const char* const a0 = PyArray_BYTES(a);
  return (r0 == a0 && PyArray_ITEMSIZE(r) == PyArray_ITEMSIZE(a)) || r0 + PyArray_NBYTES(r) <= a0 ||
         a0 + PyArray_NBYTES(a) <= r0;
}

// A second argument that is a number, for an array of doubles.
bool ReadNumber(PyObject* object, double* value) {
  if (PyFloat_CheckExact(object) || PyArray_IsScalar(object, Double)) {
    *value = PyFloat_AS_DOUBLE(object);
    return true;
  }
  if (!PyLong_CheckExact(object)) return false;
  int overflow = 0;
  const long long integer = PyLong_AsLongLongAndOverflow(object, &overflow);
  constexpr long long kExact = 1LL << 53;
  if (overflow != 0 || integer > kExact || integer < -kExact) return false;
  *value = static_cast<double>(integer);
  return true;
}

}  // namespace

PyObject* CallDirectly(const Function& function, int tier, PyObject* const* args, Py_ssize_t count,
                       PyObject* out) {
  const Tables& tables = *function.tables[tier];
  const int arguments = tables.loops.front().arguments;
  const int results = tables.loops.front().results;
  if (count != arguments || (out != nullptr && results != 1)) return nullptr;
  if (arguments == 1 && out == nullptr && tables.by_type[1] != nullptr &&
      tables.by_type[1]->types[1] == NPY_DOUBLE &&
      (PyFloat_CheckExact(args[0]) || PyArray_IsScalar(args[0], Double))) {
    return CallOnNumber(function, *tables.by_type[1], PyFloat_AS_DOUBLE(args[0]));
  }
  PyArrayObject* const x = AsSimpleArray(args[0]);
  const int slot = x == nullptr ? -1 : TypeSlot(PyArray_TYPE(x));
  const Loop* const loop = slot < 0 ? nullptr : tables.by_type[static_cast<size_t>(slot)];
  if (loop == nullptr) return nullptr;

  std::array<npy_intp, kMaxOperands> steps = loop->sizes;
  std::array<char*, kMaxOperands> data = {PyArray_BYTES(x)};
  PyArrayObject* second = nullptr;
  double number = 0;
  if (arguments == 2) {
    second = AsSimpleArray(args[1]);
    if (second != nullptr && PyArray_TYPE(second) == PyArray_TYPE(x) && SameShape(x, second)) {
      data[1] = PyArray_BYTES(second);
    } else if (second == nullptr && slot == 1 && ReadNumber(args[1], &number)) {
      data[1] = reinterpret_cast<char*>(&number);
      steps[1] = 0;
    } else {
      return nullptr;
    }
  }

  std::array<PyObject*, 2> made{};
  if (out != nullptr) {
    PyArrayObject* const given = AsSimpleArray(out);
    if (given == nullptr || !PyArray_ISWRITEABLE(given) ||
        PyArray_TYPE(given) != loop->types[static_cast<size_t>(arguments)] ||
        !SameShape(x, given) || !MayWrite(given, x) ||
        (second != nullptr && !MayWrite(given, second))) {
      return nullptr;
    }
    made[0] = Py_NewRef(out);
  }
  for (int k = 0; k < results; ++k) {
    const auto i = static_cast<size_t>(k);
    const size_t operand = static_cast<size_t>(arguments) + i;
    if (made[i] == nullptr) {
      made[i] = PyArray_SimpleNew(PyArray_NDIM(x), PyArray_DIMS(x), loop->types[operand]);
    }
    if (made[i] == nullptr) {
      Py_XDECREF(made[0]);
      return nullptr;
    }
    data[operand] = PyArray_BYTES(reinterpret_cast<PyArrayObject*>(made[i]));
  }
  if (!Run(function, *loop, data.data(), PyArray_SIZE(x), steps.data())) {
    Py_XDECREF(made[0]);
    Py_XDECREF(made[1]);
    return nullptr;
  }
  if (results == 1) return made[0];
  PyObject* tuple = PyTuple_Pack(2, made[0], made[1]);
  Py_DECREF(made[0]);
  Py_DECREF(made[1]);
  return tuple;
}

}  // namespace pexquo::python
