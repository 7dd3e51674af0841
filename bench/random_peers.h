// The peers of the generators: the engines of the C++ library, Boost and GSL, and for WH, which no
// package has, the plain loop over its definition.
#ifndef BENCH_RANDOM_PEERS_H_
#define BENCH_RANDOM_PEERS_H_

#include <cstdint>
#include <vector>

#include "bench/wh_loop.h"

namespace bench {

// What is drawn: raw integers, doubles and floats on [0, 1), integers on [0, 100).
enum class Output { Bits, Double, Float, Integers };

constexpr const char* OutputName(Output output) {
  constexpr const char* kNames[] = {"bits", "uniform d", "uniform f", "integers"};
  return kNames[static_cast<int>(output)];
}

struct RandomPeer {
  const char* generator;  // as in the catalogue
  Output output;
  const char* name;  // "Boost"; GSL's, which have other parameters, with the name of the engine
  bool same;         // the generator's own parameters, seed 1: the same sequence
  PeerFill fill;
};

std::vector<RandomPeer> RandomPeers();

}  // namespace bench

#endif  // BENCH_RANDOM_PEERS_H_
