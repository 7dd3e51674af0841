// Distributions with the parameters of NumPy's names: arguments checked, arrays made and filled.
#ifndef PYTHON_MODULE_DISTRIBUTIONS_H_
#define PYTHON_MODULE_DISTRIBUTIONS_H_

#include <string>
#include <vector>

#include "python/module/stream.h"

namespace pexquo::python {

// What Python draws: a distribution of the catalogue and how NumPy names and counts.
class Distribution {
 public:
  // `name` as messages say it, `arguments` NumPy's names of the catalogue's parameters in their
  // order (empty where the caller gives a constant); the results are integers, to which `shift` is
  // added, or floating-point numbers; `mirrored`: the first parameter is negated, and so are the
  // results.
  Distribution(std::string name, std::string_view catalogue, std::vector<std::string> arguments,
               bool integers, int shift, bool mirrored);

  size_t parameter_count() const { return arguments_.size(); }
  const std::string& name() const { return name_; }
  // NumPy's parameters as the entries have them.
  void Convert(double* parameters) const {
    if (mirrored_) parameters[0] = -parameters[0];
  }
  // Throws for parameters that the entry of that type ('d', 's', 'i') would not stand.
  void Validate(char type, const double* parameters) const;
  // The value of a method's name; `method` null is the first one. Throws.
  uint32_t Method(PyObject* method) const;
  // n results at r, of NumPy type NPY_DOUBLE, NPY_FLOAT, NPY_INT32 or NPY_INT64.
  void Fill(StreamState* stream, uint32_t method, int type, npy_intp n, char* r,
            const double* parameters) const;
  // The Poisson distribution by method "normal" has a call for a mean for each count: n integers of
  // NPY_INT32 or NPY_INT64.
  bool HasMeansCall(uint32_t method) const;
  void FillMeans(StreamState* stream, int type, npy_intp n, char* r, const double* means) const;
  // The NumPy type for a dtype argument (None: the widest). Throws.
  int ResultType(PyObject* dtype) const;
  const quo::Sampler* sampler(char type) const;

 private:
  std::string Message(size_t parameter, std::string_view must) const;

  std::string name_;
  const quo::Distribution* distribution_;
  std::vector<std::string> arguments_;
  int shift_;
  bool mirrored_;
  const quo::Sampler* double_;
  const quo::Sampler* single_;
  const quo::Sampler* integer_;
};

// The results as NumPy's methods return them; args are the stream and the distribution again,
// dtype, method, size, out and the parameters. Where a parameter is an array, what `hook` returns
// that is called with the same arguments, the parameters as one tuple.
PyObject* Draw(Stream& stream, const Distribution& distribution, PyObject* const* args,
               Py_ssize_t count, PyObject* hook);

// Fills `out`, a contiguous array, element i with the i-th elements of the parameters: contiguous
// arrays of doubles, each as long as `out`. The stream gives what one call for each element would.
void DrawEach(Stream& stream, const Distribution& distribution, PyObject* method, PyObject* out,
              PyObject* parameters);

// n vectors of the multivariate normal: mean[m], the lower triangular factor[m][m], out[n][m], all
// contiguous arrays of doubles or floats.
void DrawMultivariate(Stream& stream, const Distribution& distribution, PyObject* method,
                      PyObject* mean, PyObject* factor, PyObject* out);

// Raw output words into a contiguous array of uint32, a whole number of outputs.
void DrawRaw(Stream& stream, PyObject* out);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_DISTRIBUTIONS_H_
