// The peers of the generators and distributions: those of the C++ library, Boost and GSL, and for
// WH, which no package has, the plain loop over its definition.
#ifndef BENCH_RANDOM_PEERS_H_
#define BENCH_RANDOM_PEERS_H_

#include <vector>

#include "bench/wh_loop.h"

namespace bench {

struct RandomPeer {
  const char* generator;  // as in the catalogue
  // What is drawn: "bits", "uniform d", "uniform f" on [0, 1), "integers" on [0, 100), or a
  // distribution of the catalogue, with the parameters shown there or those in its name, and the
  // type d, f or i.
  const char* output;
  const char* name;  // "Boost"; GSL's, which have other parameters, with the name of the engine
  bool same;         // the generator's own parameters, seed 1: the same sequence
  PeerFill fill;
  int longest = 1000000;  // less for loops that take microseconds a number
};

inline constexpr int kVectorDimension = 4;  // of "gaussianmv"
inline constexpr int kPointDimension = 8;   // of quasi-random points

// The means of "poissonv", from 2^-6 to 2^10 in mixed order; number i has the mean i modulo their
// count.
inline constexpr int kVaryingMeans = 1024;
const double* VaryingMeans();

std::vector<RandomPeer> RandomPeers();

}  // namespace bench

#endif  // BENCH_RANDOM_PEERS_H_
