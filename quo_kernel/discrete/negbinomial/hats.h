// Constants of the negative binomial generator, shared by its vector levels.
#ifndef QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_H_
#define QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_H_

#include <cstdint>

#include "quo_kernel/_kernel/candidates.h"

namespace quo {

inline constexpr int32_t kNbFewest = 16;  // Stirling's series serves from this count on

// ln f(k), less what all counts have in common, z = k + 1/2 and w = k + a - 1/2: in the form
//   w log1p((k - origin)/w0) - z log1p((k - origin)/z0) + (k - origin) drift + c(z) - c(w) - norm,
// w0 and z0 the w and z of `origin`, for a >= 1: no cancellation, however large a and k are; or
//   w log1p((a - 1)/z) + (a - 1) log1p(z - 1) + k drift + c(z) - c(w) - norm,
// drift = ln q, for a < 1. Both for k >= 16.
struct NbLogRatio {
  double a, drift, norm;
  double origin, over_w0, over_z0;
  double small[kNbFewest];  // for smaller counts
};

// The hat of log-concave probabilities, f(mode) = 1: 1 on the counts of the centre and geometric
// series on either side, the tangents of ln f at counts of about f = 1/e. A linear squeeze below
// the chords from the mode to the ends of the centre.
struct NbConcave {
  NbLogRatio f;
  double mode, first, width;       // the centre's first count and how many there are
  double fall_left, fall_right;    // of the squeeze, by count
  double end_left, total;          // masses: centre, centre and left tail, all
  double over_left, over_right;    // 1 by the masses of the tails
  double begin_left, begin_right;  // the counts nearest to the mode in the tails
  double top_left, top_right;      // ln hat there
  double decay_left, decay_right;  // -ln of the tails' ratios
};

// The hat for a < 1, where probabilities fall from 0 on like k^(a - 1) q^k: the counts below 16 by
// their own masses; then (x + a/2)^(a - 1) q^15 to x = bend, (bend + a/2)^(a - 1) q^x beyond, for
// the count k on k - 1 <= x < k.
struct NbConvex {
  NbLogRatio f;
  double head[kNbFewest];            // sums of masses up to each count; the last is the head's
  double end_power, total;           // masses: to the bend, all
  double over_power, over_tail;      // 1 by the masses beyond the head
  double log_begin, growth, over_a;  // ln(15 + a/2), ((bend + a/2)/(15 + a/2))^a - 1, 1/a
  double bend, theta;                // theta = -ln q
  double log_top, log_bend;          // 15 ln q, (a - 1) ln(bend + a/2)
};

// Candidates that are not accepted at sight.
struct NbAside {
  PerCandidate index;  // in the block
  PerCandidate place;  // between 0 and `total`; then the count
  PerCandidate v;      // the second uniform; then its logarithm
  PerCandidate t;      // then the logarithm of the hat
  PerCandidate log1;   // arguments, then values of logarithms
  PerCandidate log2;
};

}  // namespace quo

#endif  // QUO_KERNEL_DISCRETE_NEGBINOMIAL_HATS_H_
