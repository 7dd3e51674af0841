// The extension module pexquo._pexquo: what the package's Python files build on.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <atomic>
#include <memory>
#include <thread>

#define PEXQUO_IMPORTS_NUMPY
#include "python/module/distributions.h"
#include "python/module/functions.h"
#include "python/module/loops.h"
#include "python/module/names.h"
#include "python/module/stream.h"
// After numpy.h, which includes Python.h as it has to be.
#include <numpy/random/bitgen.h>

namespace pexquo::python {
namespace {

namespace py = pybind11;

void SetException(const Failure& failure) {
  if (failure.type != nullptr) PyErr_SetString(failure.type, failure.text.c_str());
}

PyObject* broadcast_hook = nullptr;

// draw(stream, distribution, dtype, method, size, out, *parameters)
PyObject* DrawCall(PyObject*, PyObject* const* args, Py_ssize_t count) {
  try {
    if (count < 6) throw Failure{PyExc_TypeError, "draw: six arguments and the parameters"};
    auto& stream = py::cast<Stream&>(py::handle(args[0]));
    const auto& distribution = py::cast<const Distribution&>(py::handle(args[1]));
    return Draw(stream, distribution, args, count, broadcast_hook);
  } catch (const Failure& failure) {
    SetException(failure);
  } catch (const py::cast_error& error) {
    PyErr_SetString(PyExc_TypeError, "draw: a stream and a distribution come first");
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
  return nullptr;
}

// ---- NumPy's bit generators. ----

uint32_t NextWord(void* stream) { return static_cast<Stream*>(stream)->NextWord(); }
uint64_t NextTwoWords(void* stream) {
  const uint64_t high = NextWord(stream);
  return high << 32 | NextWord(stream);
}
double NextDouble(void* stream) {
  const uint32_t high = NextWord(stream) >> 5;
  const uint32_t low = NextWord(stream) >> 6;
  return (high * 67108864.0 + low) / 9007199254740992.0;
}
uint64_t NextRaw(void* stream) { return NextWord(stream); }

// Makes a bit generator's capsule draw from the stream, which has to outlive it.
void Attach(const py::capsule& capsule, Stream& stream) {
  stream.Require();
  auto* generator = static_cast<bitgen_t*>(PyCapsule_GetPointer(capsule.ptr(), "BitGenerator"));
  if (generator == nullptr) throw py::error_already_set();
  *generator = {&stream, NextTwoWords, NextWord, NextDouble, NextRaw};
}

// The stream's lock as an object for `with`, in one thread or several at a time.
class Lock {
 public:
  explicit Lock(py::object owner) : owner_(std::move(owner)), stream_(py::cast<Stream&>(owner_)) {}
  bool Acquire() {
    stream_.Lock();
    holder_ = std::this_thread::get_id();
    ++depth_;
    return true;
  }
  void Release() {
    if (holder_ != std::this_thread::get_id()) {
      throw Failure{PyExc_RuntimeError, "the stream's lock is not held by this thread"};
    }
    if (--depth_ == 0) holder_ = std::thread::id();
    stream_.Unlock();
  }

 private:
  py::object owner_;
  Stream& stream_;
  std::atomic<std::thread::id> holder_;
  int depth_ = 0;
};

// ---- What the documentation of the functions is made of. ----

py::dict Row(const pex::Function& f, bool complex) {
  py::dict bounds;
  for (const char type : complex ? std::string_view("cz") : std::string_view("sd")) {
    for (const pex::Tier tier : {pex::Tier::HA, pex::Tier::LA, pex::Tier::EP}) {
      const pex::Entry* entry = pex::FindEntry(f.name, type, tier);
      if (entry == nullptr) continue;
      bounds[py::make_tuple(std::string(1, type), std::string(pex::TierName(tier)))] =
          tier == pex::Tier::EP ? entry->precision().ep_bits : entry->ulp_bound();
    }
  }
  return py::dict(py::arg("name") = std::string(f.name), py::arg("group") = std::string(f.group),
                  py::arg("formula") = std::string(f.formula),
                  py::arg("notes") = std::string(f.notes), py::arg("bounds") = bounds);
}

py::list Rows() {
  py::list rows;
  for (const pex::Function& f : pex::Functions()) rows.append(py::make_tuple(false, Row(f, false)));
  for (const pex::Function& f : pex::ComplexFunctions()) {
    rows.append(py::make_tuple(true, Row(f, true)));
  }
  return rows;
}

py::dict GeneratorTexts() {
  py::dict texts;
  for (const quo::Generator& g : quo::Generators()) {
    texts[py::str(SmallLetters(g.name))] = py::make_tuple(g.members, std::string(g.what));
  }
  return texts;
}

std::vector<std::string> DistributionNames() {
  std::vector<std::string> names;
  for (const quo::Distribution& d : quo::Distributions()) names.emplace_back(d.name);
  return names;
}

PyMethodDef plain_functions[] = {
    {"draw", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(DrawCall)), METH_FASTCALL,
     nullptr},
    {"set_collect_hook", SetCollectHook, METH_O, nullptr},
    {"count_collectors", CountCollectors, METH_O, nullptr},
    {"set_document_hook", SetDocumentHook, METH_O, nullptr},
    {nullptr, nullptr, 0, nullptr}};

void BindStreams(py::module_& m) {
  py::class_<Lock>(m, "Lock", "The lock of a stream, as `with` takes it.")
      .def("__enter__", &Lock::Acquire)
      .def("__exit__", [](Lock& lock, const py::args&) { lock.Release(); })
      .def("acquire", &Lock::Acquire)
      .def("release", &Lock::Release);

  py::class_<Stream>(m, "Stream")
      .def(py::init<std::string_view, int64_t, const std::vector<uint32_t>&>())
      .def(py::init(
          [](const py::bytes& bytes) { return std::make_unique<Stream>(std::string_view(bytes)); }))
      .def(py::init(&LoadStream), py::kw_only(), py::arg("path"))
      .def("to_bytes", [](Stream& s) { return py::bytes(s.Serialize()); })
      .def("restore", [](Stream& s, const py::bytes& bytes) { s.Restore(bytes); })
      .def("to_file", SaveStream)
      .def_property_readonly("generator",
                             [](const Stream& s) { return SmallLetters(s.generator()); })
      .def_property_readonly("member", &Stream::member)
      .def_property_readonly("raw_words", &Stream::raw_words)
      .def("skip",
           [](Stream& s, uint64_t count) {
             const Stream::Access access(s, true);
             Check(__quoSkipAheadStream(access.state(), count), "skip");
           })
      .def("leapfrog",
           [](Stream& s, int32_t k, int32_t streams) {
             const Stream::Access access(s, true);
             Check(__quoLeapfrogStream(access.state(), k, streams), "leapfrog");
           })
      .def("lock", [](py::object self) { return std::make_unique<Lock>(std::move(self)); });

  py::class_<Distribution>(m, "Distribution")
      .def(py::init<std::string, std::string_view, std::vector<std::string>, bool, int, bool>(),
           py::arg("name"), py::arg("catalogue"), py::arg("arguments"), py::arg("integers") = false,
           py::arg("shift") = 0, py::arg("mirrored") = false)
      .def("result_type", [](const Distribution& d, const py::object& dtype) {
        return py::reinterpret_steal<py::object>(
            reinterpret_cast<PyObject*>(PyArray_DescrFromType(d.ResultType(dtype.ptr()))));
      });

  m.def("draw_each", [](Stream& stream, const Distribution& distribution, const py::object& method,
                        const py::object& out, const py::tuple& parameters) {
    DrawEach(stream, distribution, method.ptr(), out.ptr(), parameters.ptr());
  });
  m.def("draw_multivariate",
        [](Stream& stream, const Distribution& distribution, const py::object& method,
           const py::object& mean, const py::object& factor, const py::object& out) {
          DrawMultivariate(stream, distribution, method.ptr(), mean.ptr(), factor.ptr(), out.ptr());
        });
  m.def("draw_raw", [](Stream& stream, const py::object& out) { DrawRaw(stream, out.ptr()); });
  m.def("set_broadcast_hook",
        [](const py::object& hook) { Py_XSETREF(broadcast_hook, Py_NewRef(hook.ptr())); });
  m.def("attach", Attach);
}

int ImportNumpy() {
  import_array1(-1);
  import_umath1(-1);
  return 0;
}

}  // namespace
}  // namespace pexquo::python

PYBIND11_MODULE(_pexquo, m) {
  using namespace pexquo::python;
  if (ImportNumpy() < 0) throw pybind11::error_already_set();
  // NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 calls
  pybind11::register_exception_translator([](std::exception_ptr pointer) {
    try {
      if (pointer) std::rethrow_exception(pointer);
    } catch (const Failure& failure) {
      SetException(failure);
    }
  });
  if (PyModule_AddFunctions(m.ptr(), plain_functions) < 0) throw pybind11::error_already_set();
  PyObject* functions = MakeFunctions();
  if (functions == nullptr) throw pybind11::error_already_set();
  m.add_object("functions", functions);
  m.def("rows", Rows);
  m.def("threads", Threads);
  m.def("set_threads", SetThreads);
  m.def("generators", GeneratorTexts);
  m.def("distributions", DistributionNames);
  BindStreams(m);
}
