// The peers of vector math, one row each. None has array entries, so each is called in a plain loop
// over whole vectors with aligned loads and stores, compiled for the level it stands for.
//
// Included by sources compiled for different levels, hence plain declarations and nothing inline.
#ifndef BENCH_PEERS_LEVEL_H_
#define BENCH_PEERS_LEVEL_H_

namespace bench {

// n elements; n a multiple of 16, arrays aligned to 64 bytes. Functions of one argument ignore b,
// functions of one result r2.
template <typename T>
using PeerCall = void (*)(int n, const T* a, const T* b, T* r, T* r2);

struct Peer {
  const char* function;  // as in the catalogue
  const char* name;      // "SLEEF u10"
  double ulp;            // no error above it was seen on any level (tests/bench measures them)
  PeerCall<double> d;    // exactly one of the two is set
  PeerCall<float> s;
};

struct PeerRows {
  const Peer* rows;
  int count;
};

// SLEEF, libmvec and plain loops of the compiler, by level.
PeerRows PeersAVX512();
PeerRows PeersAVX2();
PeerRows PeersSSE4();
// Highway's own functions at the level in use.
PeerRows PeersHighway();
// Boost.Math in scalar loops, for functions without a vector peer.
PeerRows PeersBoost();

}  // namespace bench

#endif  // BENCH_PEERS_LEVEL_H_
