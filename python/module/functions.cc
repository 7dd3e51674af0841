#include "python/module/functions.h"

#include <structmember.h>

#include <cstring>
#include <string>
#include <vector>

#include "python/module/function.h"
#include "python/module/names.h"

namespace pexquo::python {
namespace {

constexpr pex::Tier kTierOf[kTiers] = {pex::Tier::HA, pex::Tier::LA, pex::Tier::EP};
constexpr const char* kTierNames[kTiers] = {"ha", "la", "ep"};

// What NumPy has bears NumPy's name, everything else the catalogue's in small letters.
struct Renamed {
  std::string_view catalogue, python;
};
constexpr Renamed kRenamed[] = {
    {"Sub", "subtract"},     {"Mul", "multiply"},  {"Sqr", "square"},     {"Abs", "absolute"},
    {"Round", "round_away"},  // numpy.round takes ties to even
    {"Ln", "log"},           {"Pow", "power"},     {"Inv", "reciprocal"}, {"Div", "divide"},
    {"Acos", "arccos"},      {"Asin", "arcsin"},   {"Atan", "arctan"},    {"Atan2", "arctan2"},
    {"Acosh", "arccosh"},    {"Asinh", "arcsinh"}, {"Atanh", "arctanh"},  {"Conj", "conjugate"},
    {"Arg", "angle"},
};

std::string PythonName(std::string_view catalogue) {
  for (const Renamed& r : kRenamed) {
    if (r.catalogue == catalogue) return std::string(r.python);
  }
  return SmallLetters(catalogue);
}

PyObject* tier_keyword = nullptr;
PyObject* out_keyword = nullptr;
PyObject* tier_names[kTiers];
PyObject* collect_hook = nullptr;
PyObject* document_hook = nullptr;
long collectors = 0;  // the interpreter's lock guards it

int FindTier(PyObject* value) {
  for (int t = 0; t < kTiers; ++t) {
    if (value == tier_names[t]) return t;
  }
  for (int t = 0; t < kTiers && PyUnicode_Check(value); ++t) {
    if (PyUnicode_Compare(value, tier_names[t]) == 0) return t;
  }
  PyErr_Format(PyExc_ValueError, "tier must be 'ha', 'la' or 'ep', not %R", value);
  return -1;
}

PyObject* CallHook(Function* self, int tier, PyObject* const* args, Py_ssize_t positional,
                   PyObject* names) {
  PyObject* tuple = PyTuple_New(positional);
  PyObject* keywords = PyDict_New();
  bool failed = tuple == nullptr || keywords == nullptr;
  for (Py_ssize_t i = 0; !failed && i < positional; ++i) {
    PyTuple_SET_ITEM(tuple, i, Py_NewRef(args[i]));
  }
  for (Py_ssize_t i = 0; !failed && names != nullptr && i < PyTuple_GET_SIZE(names); ++i) {
    failed = PyDict_SetItem(keywords, PyTuple_GET_ITEM(names, i), args[positional + i]) < 0;
  }
  PyObject* result = nullptr;
  if (!failed) {
    result = PyObject_CallFunction(collect_hook, "OsOOO", self, kTierNames[tier],
                                   self->ufuncs[tier], tuple, keywords);
  }
  Py_XDECREF(tuple);
  Py_XDECREF(keywords);
  return result;
}

// What a call's keywords say: those of the short way, or the place of others.
struct Keywords {
  int tier = 0;
  Py_ssize_t tier_at = -1;
  PyObject* out = nullptr;
  bool others = false;
};

bool Is(PyObject* name, PyObject* keyword) {
  return name == keyword || PyUnicode_Compare(name, keyword) == 0;
}

// False with an exception set for an unknown tier.
bool ReadKeywords(PyObject* const* values, PyObject* names, Keywords* keywords) {
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(names); ++i) {
    PyObject* name = PyTuple_GET_ITEM(names, i);
    if (Is(name, tier_keyword)) {
      keywords->tier_at = i;
      keywords->tier = FindTier(values[i]);
      if (keywords->tier < 0) return false;
    } else if (Is(name, out_keyword)) {
      keywords->out = values[i] == Py_None ? nullptr : values[i];
    } else {
      keywords->others = true;
    }
  }
  return true;
}

PyObject* CallUfunc(Function* self, int tier, PyObject* const* args, size_t flagged_count,
                    PyObject* names) {
  if (collectors != 0) [[unlikely]] {
    return CallHook(self, tier, args, PyVectorcall_NARGS(flagged_count), names);
  }
  return PyObject_Vectorcall(self->ufuncs[tier], args, flagged_count, names);
}

// The ufunc's call without the keyword `tier`, which stands at names[at].
PyObject* CallWithTier(Function* self, int tier, PyObject* const* args, Py_ssize_t positional,
                       PyObject* names, Py_ssize_t at) {
  const Py_ssize_t count = PyTuple_GET_SIZE(names);
  PyObject* rest = nullptr;
  if (count > 1) {
    rest = PyTuple_New(count - 1);
    if (rest == nullptr) return nullptr;
  }
  std::vector<PyObject*> values(args, args + positional);
  for (Py_ssize_t i = 0, kept = 0; i < count; ++i) {
    if (i == at || rest == nullptr) continue;
    PyTuple_SET_ITEM(rest, kept++, Py_NewRef(PyTuple_GET_ITEM(names, i)));
    values.push_back(args[positional + i]);
  }
  PyObject* result = CallUfunc(self, tier, values.data(), static_cast<size_t>(positional), rest);
  Py_XDECREF(rest);
  return result;
}

PyObject* Call(PyObject* object, PyObject* const* args, size_t flagged_count, PyObject* names) {
  auto* self = reinterpret_cast<Function*>(object);
  const Py_ssize_t positional = PyVectorcall_NARGS(flagged_count);
  Keywords keywords;
  if (names != nullptr && !ReadKeywords(args + positional, names, &keywords)) return nullptr;
  if (collectors == 0 && !keywords.others) {
    PyObject* result = CallDirectly(*self, keywords.tier, args, positional, keywords.out);
    if (result != nullptr || PyErr_Occurred()) return result;
  }
  if (keywords.tier_at < 0) return CallUfunc(self, 0, args, flagged_count, names);
  return CallWithTier(self, keywords.tier, args, positional, names, keywords.tier_at);
}

PyObject* Repr(PyObject* self) {
  return PyUnicode_FromFormat("<function pexquo.%U>", reinterpret_cast<Function*>(self)->name);
}

// Found again by its name in the package: for pickle and copy.
PyObject* Reduce(PyObject* self, PyObject*) {
  return Py_NewRef(reinterpret_cast<Function*>(self)->name);
}

PyObject* Ufunc(PyObject* self, PyObject* args, PyObject* keywords) {
  static const char* names[] = {"tier", nullptr};
  PyObject* name = tier_names[0];
  if (!PyArg_ParseTupleAndKeywords(args, keywords, "|O", const_cast<char**>(names), &name)) {
    return nullptr;
  }
  const int tier = FindTier(name);
  return tier < 0 ? nullptr : Py_NewRef(reinterpret_cast<Function*>(self)->ufuncs[tier]);
}

// _collect(tier, operand, ...): one loop over contiguous arrays of one dimension; a list of the
// element errors as (index, code).
PyObject* Collect(PyObject* object, PyObject* const* args, Py_ssize_t count) {
  auto* self = reinterpret_cast<Function*>(object);
  const int tier = count < 1 ? 0 : FindTier(args[0]);
  if (tier < 0) return nullptr;
  const Py_ssize_t operands = count - 1;
  for (Py_ssize_t k = 0; k < operands; ++k) {
    const bool usable = PyArray_Check(args[k + 1]) &&
                        PyArray_ISCARRAY_RO(reinterpret_cast<PyArrayObject*>(args[k + 1])) &&
                        PyArray_SIZE(reinterpret_cast<PyArrayObject*>(args[k + 1])) ==
                            PyArray_SIZE(reinterpret_cast<PyArrayObject*>(args[1]));
    if (!usable) {
      PyErr_SetString(PyExc_TypeError, "_collect takes contiguous arrays of one length");
      return nullptr;
    }
  }
  for (const Loop& loop : self->tables[tier]->loops) {
    bool fits = operands == loop.arguments + loop.results;
    std::array<char*, kMaxOperands> data{};
    for (Py_ssize_t k = 0; fits && k < operands; ++k) {
      auto* array = reinterpret_cast<PyArrayObject*>(args[k + 1]);
      fits = PyArray_TYPE(array) == loop.types[static_cast<size_t>(k)];
      data[static_cast<size_t>(k)] = PyArray_BYTES(array);
    }
    if (!fits) continue;
    const npy_intp n = PyArray_SIZE(reinterpret_cast<PyArrayObject*>(args[1]));
    std::vector<ElementError> errors;
    Py_BEGIN_ALLOW_THREADS;
    errors = RunCollecting(loop, n, data.data());
    Py_END_ALLOW_THREADS;
    PyObject* list = PyList_New(static_cast<Py_ssize_t>(errors.size()));
    for (size_t i = 0; list != nullptr && i < errors.size(); ++i) {
      PyObject* item = Py_BuildValue("Li", static_cast<long long>(errors[i].index),
                                     static_cast<int>(errors[i].code));
      if (item == nullptr) Py_CLEAR(list);
      if (list != nullptr) PyList_SET_ITEM(list, static_cast<Py_ssize_t>(i), item);
    }
    return list;
  }
  PyErr_SetString(PyExc_TypeError, "_collect has no loop for these types");
  return nullptr;
}

// Composed when it is first asked for.
PyObject* Doc(PyObject* object, void*) {
  auto* self = reinterpret_cast<Function*>(object);
  if (self->doc == Py_None && document_hook != nullptr) {
    PyObject* doc = PyObject_CallOneArg(document_hook, object);
    if (doc == nullptr) return nullptr;
    Py_SETREF(self->doc, doc);
  }
  return Py_NewRef(self->doc);
}

PyObject* Nin(PyObject* self, void*) {
  return PyObject_GetAttrString(reinterpret_cast<Function*>(self)->ufuncs[0], "nin");
}
PyObject* Nout(PyObject* self, void*) {
  return PyObject_GetAttrString(reinterpret_cast<Function*>(self)->ufuncs[0], "nout");
}
PyObject* Types(PyObject* self, void*) {
  return PyObject_GetAttrString(reinterpret_cast<Function*>(self)->ufuncs[0], "types");
}

PyMethodDef function_methods[] = {
    {"ufunc", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(Ufunc)),
     METH_VARARGS | METH_KEYWORDS,
     "ufunc(tier='ha')\n--\n\nThe NumPy ufunc behind a tier, with its methods (reduce, outer, "
     "at)."},
    {"_collect", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(Collect)),
     METH_FASTCALL, nullptr},
    {"__reduce__", Reduce, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr}};

PyMemberDef function_members[] = {
    {"__name__", T_OBJECT, offsetof(Function, name), READONLY, nullptr},
    {"__qualname__", T_OBJECT, offsetof(Function, name), READONLY, nullptr},
    {"__module__", T_OBJECT, offsetof(Function, module), READONLY, nullptr},
    {"_catalogue", T_OBJECT, offsetof(Function, catalogue), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr}};

PyGetSetDef function_properties[] = {
    {"__doc__", Doc, nullptr, nullptr, nullptr},
    {"nin", Nin, nullptr, "The number of arguments.", nullptr},
    {"nout", Nout, nullptr, "The number of results.", nullptr},
    {"types", Types, nullptr, "The loops, as of a NumPy ufunc.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

PyTypeObject MakeFunctionType() {
  PyTypeObject type{};
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = "pexquo._pexquo.Function";
  type.tp_basicsize = sizeof(Function);
  type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_VECTORCALL;
  type.tp_vectorcall_offset = offsetof(Function, vectorcall);
  type.tp_call = PyVectorcall_Call;
  type.tp_repr = Repr;
  type.tp_methods = function_methods;
  type.tp_members = function_members;
  type.tp_getset = function_properties;
  return type;
}
PyTypeObject function_type = MakeFunctionType();

const pex::Entry* FindTiered(std::string_view name, char type, pex::Tier tier) {
  const pex::Entry* plain = pex::FindEntry(name, type, pex::Tier::Plain);
  return plain != nullptr ? plain : pex::FindEntry(name, type, tier);
}

// The loops of one tier in NumPy's order of types: f, d, F, D.
Tables* MakeTables(std::string_view catalogue, const std::string& name, pex::Tier tier) {
  auto* tables = new Tables{.name = name, .loops = {}, .functions = {}, .data = {}, .types = {}};
  const bool swapped = name == "modf";  // numpy.modf gives the fractional part first
  if (name == "conjugate") {
    for (const int type : {NPY_FLOAT, NPY_DOUBLE}) tables->loops.push_back(MakeIdentity(type));
  }
  for (const char type : {'s', 'd', 'c', 'z'}) {
    const pex::Entry* entry = FindTiered(catalogue, type, tier);
    if (entry != nullptr) tables->loops.push_back(MakeLoop(*entry, swapped));
  }
  for (Loop& loop : tables->loops) {
    tables->by_type[static_cast<size_t>(TypeSlot(loop.types[0]))] = &loop;
    tables->functions.push_back(RunLoop);
    tables->data.push_back(&loop);
    for (int k = 0; k < loop.arguments + loop.results; ++k) {
      tables->types.push_back(static_cast<char>(loop.types[static_cast<size_t>(k)]));
    }
  }
  return tables;
}

PyObject* MakeUfunc(Tables& tables) {
  const Loop& loop = tables.loops.front();
  return PyUFunc_FromFuncAndData(tables.functions.data(), tables.data.data(), tables.types.data(),
                                 static_cast<int>(tables.loops.size()), loop.arguments,
                                 loop.results, PyUFunc_None, tables.name.c_str(), nullptr, 0);
}

// A ufunc of the function's name that raises the flags of its argument: NumPy's own way from there
// to warnings and exceptions.
PyObject* MakeAlarm(const Tables& tables) {
  static PyUFuncGenericFunction loops[] = {
      [](char** args, const npy_intp*, const npy_intp*, void*) {
        double flags;
        std::memcpy(&flags, args[0], sizeof flags);
        RaiseFlags(static_cast<uint32_t>(flags));
      }};
  static void* data[] = {nullptr};
  static char types[] = {NPY_DOUBLE, NPY_DOUBLE};
  return PyUFunc_FromFuncAndData(loops, data, types, 1, 1, 1, PyUFunc_None, tables.name.c_str(),
                                 nullptr, 0);
}

PyObject* MakeFunction(const pex::Function& function, const std::string& name) {
  const pex::Function* complex = pex::FindComplexFunction(function.name);
  const bool tiered = function.tiered || (complex != nullptr && complex->tiered);
  auto* self = PyObject_New(Function, &function_type);
  if (self == nullptr) return nullptr;
  self->vectorcall = Call;
  self->name = PyUnicode_InternFromString(name.c_str());
  self->catalogue = PyUnicode_FromStringAndSize(function.name.data(),
                                                static_cast<Py_ssize_t>(function.name.size()));
  self->doc = Py_NewRef(Py_None);
  self->module = PyUnicode_InternFromString("pexquo");
  for (int t = 0; t < kTiers; ++t) {
    const bool shared = !tiered && t > 0;
    Tables* tables =
        shared ? const_cast<Tables*>(self->tables[0]) : MakeTables(function.name, name, kTierOf[t]);
    self->tables[t] = tables;
    self->ufuncs[t] = shared ? Py_NewRef(self->ufuncs[0]) : MakeUfunc(*tables);
    if (self->ufuncs[t] == nullptr) return nullptr;
  }
  self->alarm = MakeAlarm(*self->tables[0]);
  if (self->alarm == nullptr) return nullptr;
  return reinterpret_cast<PyObject*>(self);
}

}  // namespace

PyObject* MakeFunctions() {
  tier_keyword = PyUnicode_InternFromString("tier");
  out_keyword = PyUnicode_InternFromString("out");
  for (int t = 0; t < kTiers; ++t) tier_names[t] = PyUnicode_InternFromString(kTierNames[t]);
  if (PyType_Ready(&function_type) < 0) return nullptr;
  PyObject* functions = PyDict_New();
  for (const auto& rows : {pex::Functions(), pex::ComplexFunctions()}) {
    for (const pex::Function& row : rows) {
      const std::string name = PythonName(row.name);
      if (functions == nullptr || PyDict_GetItemString(functions, name.c_str()) != nullptr)
        continue;
      PyObject* function = MakeFunction(row, name);
      if (function == nullptr || PyDict_SetItemString(functions, name.c_str(), function) < 0) {
        Py_CLEAR(functions);
      }
      Py_XDECREF(function);
    }
  }
  return functions;
}

PyObject* SetCollectHook(PyObject*, PyObject* hook) {
  Py_XSETREF(collect_hook, Py_NewRef(hook));
  Py_RETURN_NONE;
}

PyObject* SetDocumentHook(PyObject*, PyObject* hook) {
  Py_XSETREF(document_hook, Py_NewRef(hook));
  Py_RETURN_NONE;
}

PyObject* CountCollectors(PyObject*, PyObject* change) {
  collectors += PyLong_AsLong(change);
  if (PyErr_Occurred()) return nullptr;
  Py_RETURN_NONE;
}

}  // namespace pexquo::python
