// One catalogue entry as an inner loop of a NumPy ufunc.
#ifndef PYTHON_MODULE_LOOPS_H_
#define PYTHON_MODULE_LOOPS_H_

#include <array>
#include <vector>

#include "catalogue/catalogue.h"
#include "python/module/element_errors.h"
#include "python/module/numpy.h"

namespace pexquo::python {

// At most two arguments and two results.
inline constexpr int kMaxOperands = 4;

struct Loop {
  const pex::Entry* entry = nullptr;  // null: the result is the argument
  bool scalar_second = false;         // UnaryScalar: the second argument is one number a call
  // The entry takes or gives complex numbers, which have no status codes: what NumPy would call an
  // error is told from arguments and results.
  bool inspected = false;
  bool has_poles = false;  // an inspected infinity is a pole rather than an overflow
  bool swapped = false;    // the entry's first result is the ufunc's second
  int arguments = 1;
  int results = 1;
  std::array<int, kMaxOperands> types{};  // type numbers, arguments first
  std::array<npy_intp, kMaxOperands> sizes{};
};

Loop MakeLoop(const pex::Entry& entry, bool swapped);
Loop MakeIdentity(int type);

// The loop by NumPy's convention, `data` a Loop. Strided operands pass through buffers of a block;
// the element errors become exception flags. Long calls are shared by the threads.
void RunLoop(char** args, const npy_intp* dimensions, const npy_intp* steps, void* data);

// The same for `n` contiguous elements, results apart from arguments; returns the element errors in
// the order of the elements. Of entries without status codes they are told from the flags that each
// element raises. The thread's flags are cleared.
std::vector<ElementError> RunCollecting(const Loop& loop, npy_intp n, char* const* args);

// Elements that a thread takes of a long call at a time; what is shorter than two of these is done
// by the calling thread.
inline constexpr npy_intp kShare = 16384;

// How many threads share a long call of RunLoop, the calling one included; at first 1.
unsigned Threads();
void SetThreads(unsigned count);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_LOOPS_H_
