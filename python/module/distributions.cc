#include "python/module/distributions.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "python/module/shared_fill.h"

// Null in a library without it.
extern "C" int32_t _quoiRngPoissonV(uint32_t method, StreamState* stream, int32_t n, int32_t* r,
                                    const double* lambda) __attribute__((weak));

namespace pexquo::python {
namespace {

// A multiple of every block that the distributions draw by, so that the sequence is that of one
// call.
constexpr npy_intp kMostPerCall = npy_intp{1} << 30;

// From here on the time of a fill is well above that of giving the interpreter's lock away.
constexpr npy_intp kReleaseFrom = 1000;

char TypeLetter(int type) { return type == NPY_DOUBLE ? 'd' : type == NPY_FLOAT ? 's' : 'i'; }

enum class Scalar { kValue, kArray, kError };

Scalar ToDouble(PyObject* object, double* value) {
  if (PyFloat_Check(object)) {
    *value = PyFloat_AS_DOUBLE(object);
    return Scalar::kValue;
  }
  const bool scalar =
      PyLong_Check(object) || PyArray_IsScalar(object, Number) ||
      (PyArray_Check(object) && PyArray_NDIM(reinterpret_cast<PyArrayObject*>(object)) == 0);
  if (!scalar) return Scalar::kArray;
  *value = PyFloat_AsDouble(object);
  return *value == -1 && PyErr_Occurred() ? Scalar::kError : Scalar::kValue;
}

[[noreturn]] void Raised() { throw Failure{nullptr, {}}; }

PyArrayObject* CheckedOut(PyObject* out, int type, const std::string& name) {
  auto* array = reinterpret_cast<PyArrayObject*>(out);
  if (!PyArray_Check(out) || !PyArray_EquivTypenums(PyArray_TYPE(array), type) ||
      !PyArray_ISCARRAY(array)) {
    PyArray_Descr* expected = PyArray_DescrFromType(type);
    PyErr_Format(PyExc_TypeError,
                 "%s: out must be a writable C-contiguous array of %S in native byte order",
                 name.c_str(), expected);
    Py_XDECREF(expected);
    Raised();
  }
  return array;
}

// A new array of that type and size (None: one dimension less than any).
PyArrayObject* NewArray(PyObject* size, int type) {
  if (PyLong_Check(size)) {
    npy_intp length = PyLong_AsSsize_t(size);
    if (length == -1 && PyErr_Occurred()) Raised();
    PyObject* array = PyArray_SimpleNew(1, &length, type);
    if (array == nullptr) Raised();
    return reinterpret_cast<PyArrayObject*>(array);
  }
  PyArray_Dims shape = {nullptr, 0};
  if (!PyArray_IntpConverter(size, &shape)) Raised();
  PyObject* array = PyArray_SimpleNew(shape.len, shape.ptr, type);
  PyDimMem_FREE(shape.ptr);
  if (array == nullptr) Raised();
  return reinterpret_cast<PyArrayObject*>(array);
}

bool HasShape(PyArrayObject* array, PyObject* size) {
  PyArray_Dims shape = {nullptr, 0};
  if (!PyArray_IntpConverter(size, &shape)) Raised();
  const bool same = shape.len == PyArray_NDIM(array) &&
                    std::equal(shape.ptr, shape.ptr + shape.len, PyArray_DIMS(array));
  PyDimMem_FREE(shape.ptr);
  return same;
}

// Integers of 32 bits, packed in the upper half of the array of 64-bit ones that they become.
void Widen(char* r, npy_intp n, int shift) {
  for (npy_intp i = 0; i < n; ++i) {
    int32_t narrow;
    std::memcpy(&narrow, r + 4 * (n + i), sizeof narrow);
    const int64_t wide = int64_t{narrow} + shift;
    std::memcpy(r + 8 * i, &wide, sizeof wide);
  }
}

template <typename T>
void Negate(char* r, npy_intp n) {
  auto* numbers = reinterpret_cast<T*>(r);
  for (npy_intp i = 0; i < n; ++i) numbers[i] = -numbers[i];
}

}  // namespace

Distribution::Distribution(std::string name, std::string_view catalogue,
                           std::vector<std::string> arguments, bool integers, int shift,
                           bool mirrored)
    : name_(std::move(name)),
      distribution_(quo::FindDistribution(catalogue)),
      arguments_(std::move(arguments)),
      shift_(shift),
      mirrored_(mirrored) {
  if (distribution_ == nullptr) {
    throw Failure{PyExc_LookupError, "no distribution '" + std::string(catalogue) + "'"};
  }
  if (static_cast<int>(arguments_.size()) != distribution_->parameter_count()) {
    throw Failure{PyExc_ValueError, name_ + ": wrong number of parameter names"};
  }
  const auto find = [&](char type) {
    return (type == 'i') == integers ? quo::FindSampler(*distribution_, type) : nullptr;
  };
  double_ = find('d');
  single_ = find('s');
  integer_ = find('i');
}

std::string Distribution::Message(size_t parameter, std::string_view must) const {
  return name_ + ": " + arguments_[parameter] + " must be " + std::string(must);
}

void Distribution::Validate(char type, const double* parameters) const {
  for (size_t i = 0; i < arguments_.size(); ++i) {
    const double p = type == 's' ? static_cast<float>(parameters[i]) : parameters[i];
    switch (distribution_->parameters[i].condition) {
      case quo::Condition::Finite:
        if (!std::isfinite(p)) throw Failure{PyExc_ValueError, Message(i, "finite")};
        break;
      case quo::Condition::Positive:
        if (!(p > 0 && std::isfinite(p))) {
          throw Failure{PyExc_ValueError, Message(i, "positive and finite")};
        }
        break;
      case quo::Condition::Probability:
        if (!(p >= 0 && p <= 1)) throw Failure{PyExc_ValueError, Message(i, "from 0 to 1")};
        break;
      case quo::Condition::Count:
        if (!(p >= 0 && p <= std::numeric_limits<int32_t>::max() && p == std::floor(p))) {
          throw Failure{PyExc_ValueError, Message(i, "an integer from 0 to 2147483647")};
        }
        break;
    }
  }
  if (distribution_->name == "uniform" && type == 'i') {
    for (size_t i = 0; i < 2; ++i) {
      const double p = parameters[i];
      if (p < std::numeric_limits<int32_t>::min() || p > std::numeric_limits<int32_t>::max() ||
          p != std::floor(p)) {
        throw Failure{PyExc_ValueError, Message(i,
                                                "an integer of 32 bits (numpy.random.Generator on "
                                                "pexquo.bit_generator(stream) takes wider ones)")};
      }
    }
  }
  if (distribution_->name == "uniform") {
    const double low = type == 's' ? static_cast<float>(parameters[0]) : parameters[0];
    const double high = type == 's' ? static_cast<float>(parameters[1]) : parameters[1];
    const double width = type == 's' ? static_cast<float>(high - low) : high - low;
    // Some generators take half of the sum.
    const double sum = type == 's' ? static_cast<float>(high + low) : high + low;
    if (!(low < high)) {
      throw Failure{PyExc_ValueError, Message(0, "below " + arguments_[1])};
    }
    if (!std::isfinite(width) || !std::isfinite(sum)) {
      throw Failure{PyExc_OverflowError, name_ + ": the range exceeds the largest number"};
    }
  } else if (distribution_->name == "geometric" && 1 - parameters[0] == 1) {
    throw Failure{PyExc_ValueError, Message(0, "above 1.2e-16")};
  } else if (distribution_->name == "negbinomial" && !(parameters[1] > 0)) {
    throw Failure{PyExc_ValueError, Message(1, "above 0")};
  }
}

uint32_t Distribution::Method(PyObject* method) const {
  if (method == Py_None) return 0;
  Py_ssize_t length = 0;
  const char* text = PyUnicode_Check(method) ? PyUnicode_AsUTF8AndSize(method, &length) : nullptr;
  const int value =
      text == nullptr
          ? -1
          : distribution_->FindMethod(std::string_view(text, static_cast<size_t>(length)));
  if (value < 0) {
    PyErr_Clear();
    throw Failure{PyExc_ValueError,
                  name_ + ": method must be one of: " + std::string(distribution_->methods)};
  }
  return static_cast<uint32_t>(value);
}

const quo::Sampler* Distribution::sampler(char type) const {
  return type == 'd' ? double_ : type == 's' ? single_ : integer_;
}

int Distribution::ResultType(PyObject* dtype) const {
  int type = NPY_VOID;
  if (dtype == Py_None) {
    type = double_ != nullptr ? NPY_DOUBLE : NPY_INT64;
  } else if (dtype == reinterpret_cast<PyObject*>(&PyDoubleArrType_Type)) {
    type = NPY_DOUBLE;
  } else {
    PyArray_Descr* descriptor = nullptr;
    if (!PyArray_DescrConverter(dtype, &descriptor)) Raised();
    if (PyArray_ISNBO(descriptor->byteorder)) type = descriptor->type_num;
    if (type == NPY_LONGLONG) type = NPY_INT64;
    Py_DECREF(descriptor);
  }
  const bool integers = integer_ != nullptr && (type == NPY_INT32 || type == NPY_INT64);
  if ((type == NPY_DOUBLE && double_ != nullptr) || (type == NPY_FLOAT && single_ != nullptr) ||
      integers) {
    return type;
  }
  throw Failure{PyExc_TypeError,
                name_ + ": dtype must be " +
                    (integer_ != nullptr ? "int64 or int32" : "float64 or float32") +
                    " in native byte order"};
}

void Distribution::Fill(StreamState* stream, uint32_t method, int type, npy_intp n, char* r,
                        const double* parameters) const {
  const quo::Sampler& entry = *sampler(TypeLetter(type));
  const npy_intp size = type == NPY_DOUBLE || type == NPY_INT64 ? 8 : 4;
  char* const drawn = type == NPY_INT64 ? r + 4 * n : r;
  const npy_intp drawn_size = type == NPY_INT64 ? 4 : size;
  const bool shared = FillShared(entry, method, stream, n, drawn, parameters);
  for (npy_intp done = 0; done < n && !shared; done += kMostPerCall) {
    const auto count = static_cast<int32_t>(std::min(n - done, kMostPerCall));
    Check(entry.draw(method, stream, count, drawn + done * drawn_size, parameters), name_);
  }
  if (type == NPY_INT64) Widen(r, n, shift_);
  if (mirrored_) type == NPY_DOUBLE ? Negate<double>(r, n) : Negate<float>(r, n);
}

bool Distribution::HasMeansCall(uint32_t method) const {
  return distribution_->name == "poisson" && method == 1 && _quoiRngPoissonV != nullptr;
}

void Distribution::FillMeans(StreamState* stream, int type, npy_intp n, char* r,
                             const double* means) const {
  char* const drawn = type == NPY_INT64 ? r + 4 * n : r;
  for (npy_intp done = 0; done < n; done += kMostPerCall) {
    const auto count = static_cast<int32_t>(std::min(n - done, kMostPerCall));
    Check(
        _quoiRngPoissonV(0, stream, count, reinterpret_cast<int32_t*>(drawn) + done, means + done),
        name_);
  }
  if (type == NPY_INT64) Widen(r, n, shift_);
}

PyObject* Draw(Stream& stream, const Distribution& distribution, PyObject* const* args,
               Py_ssize_t count, PyObject* hook) {
  PyObject* const size = args[4];
  PyObject* const given = args[5];
  const auto parameter_count = static_cast<Py_ssize_t>(distribution.parameter_count());
  if (count != 6 + parameter_count) {
    throw Failure{PyExc_TypeError, distribution.name() + ": wrong number of parameters"};
  }
  std::array<double, quo::kMaxParameters> parameters{};
  for (Py_ssize_t i = 0; i < parameter_count; ++i) {
    switch (ToDouble(args[6 + i], &parameters[static_cast<size_t>(i)])) {
      case Scalar::kValue:
        break;
      case Scalar::kError:
        Raised();
      case Scalar::kArray: {
        PyObject* tuple = PyTuple_New(parameter_count);
        if (tuple == nullptr) Raised();
        for (Py_ssize_t k = 0; k < parameter_count; ++k) {
          PyTuple_SET_ITEM(tuple, k, Py_NewRef(args[6 + k]));
        }
        PyObject* result = PyObject_CallFunctionObjArgs(hook, args[0], args[1], args[2], args[3],
                                                        size, given, tuple, nullptr);
        Py_DECREF(tuple);
        if (result == nullptr) Raised();
        return result;
      }
    }
  }
  const int type = distribution.ResultType(args[2]);
  const uint32_t method = distribution.Method(args[3]);
  distribution.Convert(parameters.data());
  distribution.Validate(TypeLetter(type), parameters.data());
  if (size == Py_None && given == Py_None) {
    char one[8];
    const Stream::Access access(stream, false);
    distribution.Fill(access.state(), method, type, 1, one, parameters.data());
    double d = 0;
    float s = 0;
    int64_t i = 0;
    int32_t j = 0;
    switch (type) {
      case NPY_DOUBLE:
        std::memcpy(&d, one, sizeof d);
        return PyFloat_FromDouble(d);
      case NPY_FLOAT:
        std::memcpy(&s, one, sizeof s);
        return PyFloat_FromDouble(static_cast<double>(s));
      case NPY_INT64:
        std::memcpy(&i, one, sizeof i);
        return PyLong_FromLongLong(i);
      default:
        std::memcpy(&j, one, sizeof j);
        return PyLong_FromLong(j);
    }
  }
  PyArrayObject* array = nullptr;
  if (given == Py_None) {
    array = NewArray(size, type);
  } else {
    array = CheckedOut(given, type, distribution.name());
    if (size != Py_None && !HasShape(array, size)) {
      throw Failure{PyExc_ValueError, distribution.name() + ": size must be the shape of out"};
    }
    Py_INCREF(array);
  }
  const npy_intp n = PyArray_SIZE(array);
  try {
    const Stream::Access access(stream, n >= kReleaseFrom);
    distribution.Fill(access.state(), method, type, n, PyArray_BYTES(array), parameters.data());
  } catch (...) {
    Py_DECREF(array);
    throw;
  }
  return reinterpret_cast<PyObject*>(array);
}

void DrawEach(Stream& stream, const Distribution& distribution, PyObject* method_name,
              PyObject* out, PyObject* tuple) {
  auto* array = reinterpret_cast<PyArrayObject*>(out);
  const int type = PyArray_TYPE(array) == NPY_LONGLONG ? NPY_INT64 : PyArray_TYPE(array);
  const uint32_t method = distribution.Method(method_name);
  const npy_intp n = PyArray_SIZE(array);
  const size_t count = distribution.parameter_count();
  std::array<const double*, quo::kMaxParameters> columns{};
  for (size_t k = 0; k < count; ++k) {
    columns[k] = static_cast<const double*>(PyArray_DATA(
        reinterpret_cast<PyArrayObject*>(PyTuple_GET_ITEM(tuple, static_cast<Py_ssize_t>(k)))));
  }
  const auto row = [&](npy_intp i) {
    std::array<double, quo::kMaxParameters> parameters{};
    for (size_t k = 0; k < count; ++k) parameters[k] = columns[k][i];
    distribution.Convert(parameters.data());
    return parameters;
  };
  for (npy_intp i = 0; i < n; ++i) distribution.Validate(TypeLetter(type), row(i).data());
  const npy_intp item = PyArray_ITEMSIZE(array);
  const Stream::Access access(stream, n >= kReleaseFrom);
  if (distribution.HasMeansCall(method)) {
    return distribution.FillMeans(access.state(), type, n, PyArray_BYTES(array), columns[0]);
  }
  for (npy_intp i = 0; i < n;) {
    const auto parameters = row(i);
    npy_intp end = i + 1;
    while (end < n && row(end) == parameters) ++end;
    distribution.Fill(access.state(), method, type, end - i, PyArray_BYTES(array) + i * item,
                      parameters.data());
    i = end;
  }
}

void DrawMultivariate(Stream& stream, const Distribution& distribution, PyObject* method_name,
                      PyObject* mean, PyObject* factor, PyObject* out) {
  auto* array = reinterpret_cast<PyArrayObject*>(out);
  const uint32_t method = distribution.Method(method_name);
  const void* a = PyArray_DATA(reinterpret_cast<PyArrayObject*>(mean));
  const void* t = PyArray_DATA(reinterpret_cast<PyArrayObject*>(factor));
  const npy_intp dimension = PyArray_SIZE(reinterpret_cast<PyArrayObject*>(mean));
  const npy_intp n = PyArray_SIZE(array) / dimension;
  const npy_intp most = std::max<npy_intp>(kMostPerCall / dimension, 1);
  const bool is_double = PyArray_TYPE(array) == NPY_DOUBLE;
  const Stream::Access access(stream, PyArray_SIZE(array) >= kReleaseFrom);
  for (npy_intp done = 0; done < n; done += most) {
    const auto count = static_cast<int32_t>(std::min(n - done, most));
    char* r = PyArray_BYTES(array) + done * dimension * PyArray_ITEMSIZE(array);
    const auto m = static_cast<int32_t>(dimension);
    Check(is_double
              ? _quodRngGaussianMV(method, access.state(), count, reinterpret_cast<double*>(r), m,
                                   QUO_STORAGE_FULL, static_cast<const double*>(a),
                                   static_cast<const double*>(t))
              : _quosRngGaussianMV(method, access.state(), count, reinterpret_cast<float*>(r), m,
                                   QUO_STORAGE_FULL, static_cast<const float*>(a),
                                   static_cast<const float*>(t)),
          distribution.name());
  }
}

void DrawRaw(Stream& stream, PyObject* out) {
  auto* array = reinterpret_cast<PyArrayObject*>(out);
  const npy_intp words = stream.raw_words();
  const npy_intp n = PyArray_SIZE(array) / words;
  auto* r = static_cast<uint32_t*>(PyArray_DATA(array));
  const Stream::Access access(stream, n >= kReleaseFrom);
  for (npy_intp done = 0; done < n; done += kMostPerCall) {
    const auto count = static_cast<int32_t>(std::min(n - done, kMostPerCall));
    Check(_quoiRngUniformBits(0, access.state(), count, r + done * words), "raw");
  }
}

}  // namespace pexquo::python
