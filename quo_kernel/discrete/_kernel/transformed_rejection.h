// Transformed rejection, for laws with a variance above kMostVariance: two uniforms u, v for a
// candidate k = floor((2a/(1/2 - |u - 1/2|) + b)(u - 1/2) + c), of which 82 to 88 of 100 are
// accepted, most of them by v alone. (W. Hoermann, "The generation of binomial random variates", J.
// Statistical Computation and Simulation 46, 1993: algorithm BTRS.) For variances from 20 on its
// hat and its squeeze hold for the hypergeometric law, too, with room: they are the binomial's,
// whose tails are longer.
//
// The exact test takes ln f(k)/f(mode) from deviances: 10^-11 off at most, whatever the counts.
#ifndef QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_
#define QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_

#include <cstdint>

#include "pexquo/quo.h"

#include "quo_kernel/discrete/_kernel/cells.h"

namespace quo {

// What of a law takes logarithms. The numbers depend on nothing else that could be out of place:
// with any other peak they are still from 0 to law.most, and come to an end.
struct Peak {
  double log;     // law.Log(law.mode)
  double height;  // the same without the cells' ln(2 pi x)/2, a sum of small terms
};
template <int kCells>
Peak PeakOf(const Cells<kCells>& law);

// n numbers.
int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<2>& law,
                        const Peak& peak, Reflection reflected);
int32_t DrawByRejection(StreamState* stream, int32_t n, int32_t* r, const Cells<4>& law,
                        const Peak& peak, Reflection reflected);

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE__KERNEL_TRANSFORMED_REJECTION_H_
