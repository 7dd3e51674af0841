// All peers of vector math at one level.
#ifndef BENCH_PEERS_H_
#define BENCH_PEERS_H_

#include <vector>

#include "bench/peers_level.h"
#include "bench/run.h"

namespace bench {

// The peers at `level`, which must be the level in use.
std::vector<Peer> PeersAt(const Level& level);

}  // namespace bench

#endif  // BENCH_PEERS_H_
