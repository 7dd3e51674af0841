// Long fills from one stream by several threads.
#ifndef PYTHON_MODULE_SHARED_FILL_H_
#define PYTHON_MODULE_SHARED_FILL_H_

#include "catalogue/catalogue.h"
#include "python/module/numpy.h"

namespace pexquo::python {

// n results at r, as the sampler's calls in one thread would give them, by the threads of Threads()
// (loops.h); the stream goes on as theirs would. False, with nothing drawn, where the distribution
// by that method or the generator does not allow it, or the fill is short. Throws Failure.
bool FillShared(const quo::Sampler& sampler, uint32_t method, StreamState* state, npy_intp n,
                char* r, const double* parameters);

}  // namespace pexquo::python

#endif  // PYTHON_MODULE_SHARED_FILL_H_
